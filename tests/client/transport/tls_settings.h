// SPDX-License-Identifier: MIT
// Settings for calls over TLS, and how such calls fail.
#ifndef ORB_TESTS_CLIENT_TRANSPORT_TLS_SETTINGS_H_
#define ORB_TESTS_CLIENT_TRANSPORT_TLS_SETTINGS_H_

#include <string>

#include "client/transport/caller.h"
#include "client/transport/certificates.h"

namespace orb::test {

inline constexpr const char* kNotTrusted =
    "SSL peer certificate or SSH remote key was not OK";
inline constexpr const char* kNoClientFile = "Problem with the local SSL certificate";

inline const Certificates& files() { return Certificates::get(); }

inline Settings trusting(const std::string& authority) {
  Settings settings;
  settings.serverCertFile = authority;
  return settings;
}

inline Settings verifying(bool host, bool peer) {
  Settings settings = trusting(peer ? files().authority() : "");
  settings.verifyHost = host;
  settings.verifyPeer = peer;
  return settings;
}

inline Settings revoking(const std::string& list) {
  Settings settings = trusting(files().authority());
  settings.crlFile = list;
  return settings;
}

inline Settings showing(const std::string& certificate, const std::string& key,
                        const std::string& password) {
  Settings settings = trusting(files().authority());
  settings.clientCertFile = certificate;
  settings.clientPrivateKeyFile = key;
  settings.clientPrivateKeyPassword = password;
  return settings;
}

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_TRANSPORT_TLS_SETTINGS_H_
