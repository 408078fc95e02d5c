// SPDX-License-Identifier: MIT
#include "client/transport/certificates.h"

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace orb::test {
namespace {

// What revoking and listing need; the other commands carry all on their line.
constexpr const char* kAuthoritySettings =
    "[ca]\ndefault_ca = authority\n"
    "[authority]\ndatabase = index.txt\ndefault_md = sha256\ndefault_crl_days = 2\n";

constexpr const char* kNewKey =
    "openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes ";

}  // namespace

const Certificates& Certificates::get() {
  static const Certificates certificates;
  return certificates;
}

Certificates::Certificates() {
  std::string folder = std::filesystem::temp_directory_path() / "certificates-XXXXXX";
  if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("mkdtemp " + folder);
  folder_ = folder;
  makeAuthority();
  makeSigned("server", "IP:127.0.0.1");
  makeSigned("other", "DNS:elsewhere.invalid");
  makeSigned("client", "DNS:client.invalid");
  run("openssl ec -in client.key -aes256 -passout 'pass:" + std::string(kPassword) +
      "' -out locked.key");
  run("openssl ca -config ca.cnf -cert authority.pem -keyfile authority.key -gencrl "
      "-out empty.crl");
  run("openssl ca -config ca.cnf -cert authority.pem -keyfile authority.key -revoke "
      "server.pem");
  run("openssl ca -config ca.cnf -cert authority.pem -keyfile authority.key -gencrl "
      "-out full.crl");
}

Certificates::~Certificates() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

TlsServerFiles Certificates::server() const {
  return {folder_ + "/server.pem", folder_ + "/server.key", ""};
}

TlsServerFiles Certificates::otherHost() const {
  return {folder_ + "/other.pem", folder_ + "/other.key", ""};
}

void Certificates::run(const std::string& command) const {
  const std::string line = "cd '" + folder_ + "' && " + command + " >log 2>&1";
  if (std::system(line.c_str()) == 0) return;
  std::ifstream log(folder_ + "/log");
  throw std::runtime_error(command + "\n" +
                           std::string(std::istreambuf_iterator<char>(log), {}));
}

void Certificates::makeAuthority() const {
  std::ofstream(folder_ + "/ca.cnf") << kAuthoritySettings;
  std::ofstream(folder_ + "/index.txt");
  run(std::string(kNewKey) +
      "-x509 -days 2 -subj '/CN=Authority of a test' -keyout authority.key "
      "-out authority.pem");
}

void Certificates::makeSigned(const std::string& name,
                              const std::string& subjectAltName) const {
  run(std::string(kNewKey) + "-subj /CN=" + name + " -addext subjectAltName=" +
      subjectAltName + " -keyout " + name + ".key -out " + name + ".csr");
  run("openssl x509 -req -in " + name +
      ".csr -CA authority.pem -CAkey authority.key "
      "-days 2 -copy_extensions copy -out " +
      name + ".pem");
}

}  // namespace orb::test
