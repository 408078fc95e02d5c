// SPDX-License-Identifier: MIT
// TLS as nginx speaks it, in front of two compute servers.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "client/servers/calls.h"
#include "client/servers/front_end.h"
#include "client/transport/tls_settings.h"

namespace orb::test {
namespace {

std::string certificate(const TlsServerFiles& server) {
  return "ssl_certificate " + server.certificate + ";\nssl_certificate_key " +
         server.key + ";\n";
}

struct TlsRow {
  std::string name;
  Settings settings;
  Outcome expected;
};

class BehindNginxWithTls : public ::testing::TestWithParam<const char*> {
 protected:
  /// Each row calls twice on one context: on a first connection, and on one that is kept
  /// or, after a failure, made anew.
  void expectRows(const std::string& directives, const std::vector<TlsRow>& rows) {
    const Nginx nginx(nginxPass("/") + "ssl_protocols " + GetParam() + ";\n" + directives,
                      nginxGroup({one_.address(), two_.address()}), "ssl");
    for (const TlsRow& row : rows) {
      SCOPED_TRACE(row.name);
      Caller caller(row.settings);
      for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(doubleOnServer(caller, "https://" + nginx.address() + "/mtimes", i),
                  row.expected);
      }
    }
  }

 private:
  Backend one_;
  Backend two_;
};

TEST_P(BehindNginxWithTls, OnlyAKnownAuthorityIsTrusted) {
  expectRows(certificate(files().server()),
             {{"its authority", trusting(files().authority()), success()},
              {"another authority", trusting(files().clientCertificate()),
               genericError(kNotTrusted)},
              {"the authorities of the system", trusting(""), genericError(kNotTrusted)},
              {"no check of the chain", verifying(true, false), success()}});
}

TEST_P(BehindNginxWithTls, TheNameIsCheckedUnlessTurnedOff) {
  expectRows(certificate(files().otherHost()),
             {{"checked", verifying(true, true), genericError(kNotTrusted)},
              {"not checked", verifying(false, true), success()},
              {"checked alone", verifying(true, false), genericError(kNotTrusted)},
              {"nothing checked", verifying(false, false), success()}});
}

TEST_P(BehindNginxWithTls, ARevokedCertificateIsRefusedThroughTheList) {
  expectRows(certificate(files().server()),
             {{"on the list", revoking(files().fullList()), genericError(kNotTrusted)},
              {"not on the list", revoking(files().emptyList()), success()},
              {"no list", revoking(""), success()}});
}

TEST_P(BehindNginxWithTls, AClientCertificateIsShownWithItsKey) {
  const std::string shown = files().clientCertificate();
  const std::string locked = files().lockedClientKey();
  // nginx completes the handshake and answers the request itself.
  const Outcome unshown = httpError(400, "Bad Request\r\n");
  expectRows(
      certificate(files().server()) + "ssl_verify_client on;\n" +
          "ssl_client_certificate " + files().authority() + ";\n",
      {{"plain key", showing(shown, files().clientKey(), ""), success()},
       {"encrypted key", showing(shown, locked, Certificates::kPassword), success()},
       {"wrong pass phrase", showing(shown, locked, "open barley"),
        genericError(kNoClientFile)},
       {"key of another", showing(shown, files().server().key, ""),
        genericError(kNoClientFile)},
       {"nothing", trusting(files().authority()), unshown}});
}

/// OpenSSL asks the terminal for a pass phrase that nobody set: this has none to ask.
[[noreturn]] void callWithoutTerminal(const std::string& url, const Settings& settings) {
  ::setsid();
  if (std::freopen("/dev/null", "r", stdin) == nullptr) ::_exit(2);
  Caller caller(settings);
  const Outcome outcome = doubleOnServer(caller, url, 1);
  std::cerr << outcome;
  ::_exit(outcome == genericError(kNoClientFile) ? 0 : 1);
}

TEST(NginxWithTlsDeathTest, AnEncryptedKeyNeedsAPassPhrase) {
  const Backend backend;
  const Nginx nginx(nginxPass("/") + certificate(files().server()),
                    nginxGroup({backend.address()}), "ssl");
  const Settings settings =
      showing(files().clientCertificate(), files().lockedClientKey(), "");
  EXPECT_EXIT(callWithoutTerminal("https://" + nginx.address() + "/mtimes", settings),
              ::testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Versions, BehindNginxWithTls,
                         ::testing::Values("TLSv1.2", "TLSv1.3"),
                         [](const auto& version) {
                           return std::string(version.param) == "TLSv1.2" ? "Tls12"
                                                                          : "Tls13";
                         });

}  // namespace
}  // namespace orb::test
