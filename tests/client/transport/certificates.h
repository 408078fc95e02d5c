// SPDX-License-Identifier: MIT
// Keys and certificates made anew for a test program by the openssl command.
#ifndef ORB_TESTS_CLIENT_TRANSPORT_CERTIFICATES_H_
#define ORB_TESTS_CLIENT_TRANSPORT_CERTIFICATES_H_

#include <string>

#include "support/scripted_server.h"

namespace orb::test {

/// A folder with an authority and what it signed. Gone with the object.
class Certificates {
 public:
  /// Those of the test program, made at the first call.
  static const Certificates& get();

  ~Certificates();
  Certificates(const Certificates&) = delete;
  Certificates& operator=(const Certificates&) = delete;

  std::string authority() const { return folder_ + "/authority.pem"; }
  /// A list in which nothing, or the server's certificate is revoked.
  std::string emptyList() const { return folder_ + "/empty.crl"; }
  std::string fullList() const { return folder_ + "/full.crl"; }
  /// For 127.0.0.1.
  TlsServerFiles server() const;
  /// For another host's name.
  TlsServerFiles otherHost() const;
  std::string clientCertificate() const { return folder_ + "/client.pem"; }
  std::string clientKey() const { return folder_ + "/client.key"; }
  /// The client's key, encrypted with kPassword.
  std::string lockedClientKey() const { return folder_ + "/locked.key"; }
  static constexpr const char* kPassword = "open sesame";

 private:
  Certificates();
  void run(const std::string& command) const;
  void makeAuthority() const;
  void makeSigned(const std::string& name, const std::string& subjectAltName) const;

  std::string folder_;
};

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_TRANSPORT_CERTIFICATES_H_
