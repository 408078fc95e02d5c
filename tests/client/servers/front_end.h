// SPDX-License-Identifier: MIT
// Servers as people deploy them: a web server in front of compute servers.
#ifndef ORB_TESTS_CLIENT_SERVERS_FRONT_END_H_
#define ORB_TESTS_CLIENT_SERVERS_FRONT_END_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/server_process.h"

namespace orb::test {

/// A folder for temporary files. Gone with the object.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

/// A TCP socket that listens on 127.0.0.1 and a port of the system's choice. A program
/// that takes it over answers every connection, however late it is ready.
class Listener {
 public:
  Listener();
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  int descriptor() const { return descriptor_; }
  std::uint16_t port() const { return port_; }
  std::string address() const;

 private:
  int descriptor_;
  std::uint16_t port_;
};

/// The compute server.
class Backend {
 public:
  Backend();

  /// "127.0.0.1:40123"
  std::string address() const;
  /// Of a demonstration function, without anything between.
  std::string url(const std::string& function) const;
  void kill() { process_.stop(SIGKILL); }

 private:
  ServerProcess process_;
};

/// nginx with one server block.
class Nginx {
 public:
  /// @param server  Directives of the server block. Those of a TLS server add "ssl" to
  ///                `listenOptions` and name the certificate.
  /// @param http    Directives beside the server block.
  explicit Nginx(const std::string& server, const std::string& http = "",
                 const std::string& listenOptions = "");

  /// "127.0.0.1:40123"
  const std::string& address() const { return address_; }
  /// One line per request, of the variables that logFormat names; ends the server.
  std::vector<std::string> stopAndReadLog();

  /// Number of the connection, number of the request on it, status, address of the
  /// backend, transfer coding of the reply.
  static constexpr const char* kLogFormat =
      "$connection $connection_requests $status $upstream_addr "
      "$sent_http_transfer_encoding";

 private:
  Folder folder_;
  std::string address_;
  std::optional<ServerProcess> process_;
};

/// Directives for Nginx: a group "backends", and a location that passes requests on to it
/// over connections that are kept.
std::string nginxGroup(const std::vector<std::string>& addresses);
std::string nginxPass(const std::string& path, const std::string& directives = "");

/// HAProxy with one front end in HTTP mode.
class Haproxy {
 public:
  /// @param frontend  Lines of the front end.
  /// @param backends  Whole backend sections.
  Haproxy(const std::string& frontend, const std::string& backends);

  const std::string& address() const { return address_; }

 private:
  Folder folder_;
  std::string address_;
  std::optional<ServerProcess> process_;
};

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_SERVERS_FRONT_END_H_
