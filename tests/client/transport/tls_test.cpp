// SPDX-License-Identifier: MIT
// The TLS settings of a configuration, as a server and the call see them.
#include <gtest/gtest.h>

#include "client/transport/tls_settings.h"

namespace orb::test {
namespace {

struct TlsRow {
  std::string name;
  Settings settings;
  std::string expected;  // the error's text, empty for success
};

void expectRows(const TlsServerFiles& server, const std::vector<TlsRow>& rows) {
  for (const TlsRow& row : rows) {
    SCOPED_TRACE(row.name);
    ScriptedServer scripted(usualReply(), server);
    Caller caller(row.settings);
    for (int i = 0; i < 2; ++i) {
      std::vector<Array> outputs(1);
      EXPECT_EQ(caller.call(scripted.url(), outputs),
                row.expected.empty() ? success() : genericError(row.expected));
    }
  }
}

TEST(TlsSettings, DecideWhichServersAreTrusted) {
  expectRows(
      files().server(),
      {
          {"its authority", trusting(files().authority()), ""},
          {"no authority", trusting(""), kNotTrusted},
          {"another authority", trusting(files().clientCertificate()), kNotTrusted},
          {"no such file", trusting(files().authority() + "x"),
           "Problem with the SSL CA cert (path? access rights?)"},
          {"no check of the chain", verifying(true, false), ""},
          {"no check at all", verifying(false, false), ""},
      });
}

TEST(TlsSettings, DecideWhetherTheNameIsChecked) {
  expectRows(files().otherHost(),
             {
                 {"checked", verifying(true, true), kNotTrusted},
                 {"not checked", verifying(false, true), ""},
                 {"checked without the chain", verifying(true, false), kNotTrusted},
                 {"nothing checked", verifying(false, false), ""},
             });
}

TEST(TlsSettings, DecideWhichCertificatesAreRevoked) {
  expectRows(files().server(),
             {
                 {"none", revoking(files().emptyList()), ""},
                 {"the server's", revoking(files().fullList()), kNotTrusted},
                 {"no such file", revoking(files().fullList() + "x"),
                  "Failed to load CRL file (path? access rights?, format?)"},
             });
}

TEST(TlsSettings, DecideWhatTheClientShows) {
  TlsServerFiles server = files().server();
  server.clientAuthority = files().authority();
  const std::string certificate = files().clientCertificate();
  expectRows(
      server,
      {
          {"its certificate", showing(certificate, files().clientKey(), ""), ""},
          {"with an encrypted key",
           showing(certificate, files().lockedClientKey(), Certificates::kPassword), ""},
          {"with a wrong password",
           showing(certificate, files().lockedClientKey(), "sesame"), kNoClientFile},
          {"with another key", showing(certificate, files().server().key, ""),
           kNoClientFile},
          {"without a key", showing(certificate, "", ""), kNoClientFile},
          {"no such file", showing(certificate + "x", files().clientKey(), ""),
           kNoClientFile},
          {"nothing", showing("", "", ""), "Failure when receiving data from the peer"},
      });
}

TEST(TlsSettings, SetToNothingAreOffInLaterContexts) {
  ScriptedServer server(usualReply(), files().server());
  const orbClientRuntime& table = runtime();
  orbClientConfig* config = nullptr;
  orbClientContext* trusted = nullptr;
  orbClientContext* untrusted = nullptr;
  ASSERT_EQ(table.createConfig(&config), ORB_OK);
  table.setServerCertFile(config, files().authority().c_str());
  ASSERT_EQ(table.createContext(&trusted, config), ORB_OK);
  table.setServerCertFile(config, "");
  ASSERT_EQ(table.createContext(&untrusted, config), ORB_OK);
  table.destroyConfig(config);
  const auto callWith = [&](orbClientContext* context) {
    orbArray output = nullptr;
    const orbStatus status =
        table.feval(context, server.url().c_str(), 1, &output, 0, nullptr);
    orbDestroyArray(output);
    return status;
  };
  EXPECT_EQ(callWith(trusted), ORB_OK);
  EXPECT_EQ(callWith(untrusted), ORB_FAILURE);
  EXPECT_EQ(callWith(trusted), ORB_OK);
  table.destroyContext(trusted);
  table.destroyContext(untrusted);
}

}  // namespace
}  // namespace orb::test
