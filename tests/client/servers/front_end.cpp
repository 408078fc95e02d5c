// SPDX-License-Identifier: MIT
#include "client/servers/front_end.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace orb::test {
namespace {

constexpr const char* kNginx = "/usr/sbin/nginx";
constexpr const char* kHaproxy = "/usr/sbin/haproxy";
const std::string kHttp = "http://";

void requireProgram(const std::string& path) {
  if (::access(path.c_str(), X_OK) != 0) {
    throw std::runtime_error(path + " is not installed");
  }
}

void write(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text;
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

/// Returns when a server has taken a connection off the listener and seen its end.
void awaitServer(const Listener& listener) {
  const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const timeval patience{30, 0};
  ::setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(listener.port());
  char answer;
  const bool isServed =
      ::connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      ::shutdown(client, SHUT_WR) == 0 && ::recv(client, &answer, 1, 0) >= 0;
  ::close(client);
  if (!isServed) throw std::runtime_error("no server on " + listener.address());
}

/// Starts a program that takes over the listener. Neither server prints an address, and
/// its user knows it: a line in its place lets ServerProcess go on.
void startWith(const Listener& listener, const std::string& command,
               std::optional<ServerProcess>& process) {
  ::fcntl(listener.descriptor(), F_SETFD, 0);
  process.emplace(
      std::vector<std::string>{"/bin/sh", "-c", "echo started; exec " + command});
  ::fcntl(listener.descriptor(), F_SETFD, FD_CLOEXEC);
}

}  // namespace

Folder::Folder() {
  std::string path = std::filesystem::temp_directory_path() / "servers-XXXXXX";
  if (::mkdtemp(path.data()) == nullptr) throw std::runtime_error("mkdtemp " + path);
  path_ = path;
}

Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

Listener::Listener()
    : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (::bind(descriptor_, generic, length) != 0 || ::listen(descriptor_, 511) != 0 ||
      ::getsockname(descriptor_, generic, &length) != 0) {
    ::close(descriptor_);
    throw std::runtime_error("no port to listen on");
  }
  port_ = ntohs(address.sin_port);
}

Listener::~Listener() { ::close(descriptor_); }

std::string Listener::address() const { return "127.0.0.1:" + std::to_string(port_); }

Backend::Backend() : process_({ORBSERVE_PATH}) {}

std::string Backend::address() const { return process_.url().substr(kHttp.size()); }

std::string Backend::url(const std::string& function) const {
  return process_.url() + "/demo/" + function;
}

Nginx::Nginx(const std::string& server, const std::string& http,
             const std::string& listenOptions) {
  requireProgram(kNginx);
  const Listener listener;
  address_ = listener.address();
  const std::string& folder = folder_.path();
  std::string folders;
  for (const char* use : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"}) {
    folders += std::string(use) + "_temp_path " + folder + "/" + use + ";\n";
  }
  // A worker of root's would give up its rights, and with them this folder.
  const std::string user = ::geteuid() == 0 ? "user root root;\n" : "";
  write(folder + "/nginx.conf",
        "daemon off;\nworker_processes 1;\n" + user + "pid " + folder +
            "/pid;\n"
            "error_log stderr crit;\nevents { worker_connections 1024; }\nhttp {\n" +
            folders + "log_format requests '" + kLogFormat + "';\naccess_log " + folder +
            "/requests.log requests;\nkeepalive_requests 1000000;\n"
            "client_max_body_size 64m;\nproxy_http_version 1.1;\n"
            "proxy_set_header Connection '';\n" +
            http + "\nserver {\nlisten " + address_ + " " + listenOptions + ";\n" +
            server + "\n}\n}\n");
  // nginx takes over the sockets that this variable counts out, as it does from the
  // nginx that it replaces.
  startWith(listener,
            "env NGINX='" + std::to_string(listener.descriptor()) + ";' " + kNginx +
                " -e stderr -p " + folder + " -c " + folder + "/nginx.conf",
            process_);
  // It loses a signal that comes before, and stop() would wait for ever.
  awaitServer(listener);
}

std::vector<std::string> Nginx::stopAndReadLog() {
  process_->stop();
  std::ifstream log(folder_.path() + "/requests.log");
  std::vector<std::string> lines;
  for (std::string line; std::getline(log, line);) lines.push_back(line);
  return lines;
}

std::string nginxGroup(const std::vector<std::string>& addresses) {
  std::string group = "upstream backends {\n";
  for (const std::string& address : addresses) group += "server " + address + ";\n";
  return group + "keepalive 16;\n}\n";
}

std::string nginxPass(const std::string& path, const std::string& directives) {
  return "location " + path + " {\nproxy_pass http://backends/demo/;\n" + directives +
         "\n}\n";
}

Haproxy::Haproxy(const std::string& frontend, const std::string& backends) {
  requireProgram(kHaproxy);
  const Listener listener;
  address_ = listener.address();
  const std::string file = folder_.path() + "/haproxy.cfg";
  write(file,
        "defaults\n  mode http\n  timeout connect 5s\n  timeout client 30s\n"
        "  timeout server 30s\nfrontend calls\n  bind fd@" +
            std::to_string(listener.descriptor()) + "\n" + frontend + "\n" + backends +
            "\n");
  startWith(listener, std::string(kHaproxy) + " -q -db -f " + file, process_);
}

}  // namespace orb::test
