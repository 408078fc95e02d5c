// SPDX-License-Identifier: MIT
#include "support/scripted_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace orb::test {
namespace {

constexpr std::string_view kEndOfHead = "\r\n\r\n";
constexpr int kBacklog = 64;

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

/// Gives a TCP socket bound to 127.0.0.1 and a port of the system's choice.
int boundSocket() {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socket < 0) fail("socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    fail("bind");
  }
  return socket;
}

sockaddr_in addressOf(int socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    fail("getsockname");
  }
  return address;
}

std::size_t contentLengthOf(std::string head) {
  std::transform(head.begin(), head.end(), head.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const std::string name = "\r\ncontent-length:";
  const std::size_t at = head.find(name);
  if (at == std::string::npos) return 0;
  return std::strtoull(head.c_str() + at + name.size(), nullptr, 10);
}

}  // namespace

/// One accepted socket, used by its own thread; others only interrupt it.
class Connection {
 public:
  Connection(int socket, SSL_CTX* tls)
      : socket_(socket), session_(tls == nullptr ? nullptr : SSL_new(tls), &SSL_free) {
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (session_) SSL_set_fd(session_.get(), socket);
  }

  ~Connection() { end(); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool isOpen() const { return open_; }

  void greet() {
    if (!open_ || !session_) return;
    if (SSL_accept(session_.get()) == 1) {
      encrypted_ = true;
    } else {
      // The client is to see the alert, not a connection that is gone while it writes.
      ::shutdown(socket_, SHUT_WR);
      awaitClientsEnd();
    }
  }

  void write(std::string_view bytes) {
    while (open_ && !bytes.empty()) {
      const ssize_t written =
          encrypted_
              ? SSL_write(session_.get(), bytes.data(), static_cast<int>(bytes.size()))
              : ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (written <= 0) return end();
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void wait(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    interruption_.wait_for(lock, time, [this] { return interrupted_; });
  }

  void awaitClientsEnd() {
    char ignored[4096];
    while (open_ && ::recv(socket_, ignored, sizeof ignored, 0) > 0) {
    }
    end();
  }

  /// Reads one request; false when the client left instead.
  bool read(std::string& head, std::string& body) {
    std::size_t end = 0;
    while ((end = received_.find(kEndOfHead)) == std::string::npos) {
      if (!receive()) return false;
    }
    head = received_.substr(0, end + kEndOfHead.size());
    const std::size_t length = contentLengthOf(head);
    while (received_.size() < head.size() + length) {
      if (!receive()) return false;
    }
    body = received_.substr(head.size(), length);
    received_.erase(0, head.size() + length);
    return true;
  }

  void sayGoodbye() {
    if (open_ && encrypted_) SSL_shutdown(session_.get());
  }

  void shutDownWriting() {
    sayGoodbye();
    if (open_) ::shutdown(socket_, SHUT_WR);
  }

  void resetAtEnd() {
    if (!open_) return;
    const linger discard{1, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &discard, sizeof discard);
  }

  void end() {
    const std::lock_guard lock(mutex_);
    if (!open_) return;
    open_ = false;
    ::close(socket_);
  }

  /// Makes every wait end, from any thread.
  void interrupt() {
    const std::lock_guard lock(mutex_);
    interrupted_ = true;
    interruption_.notify_all();
    if (open_) ::shutdown(socket_, SHUT_RDWR);
  }

 private:
  bool receive() {
    if (!open_) return false;
    char bytes[65536];
    const ssize_t count = encrypted_ ? SSL_read(session_.get(), bytes, sizeof bytes)
                                     : ::recv(socket_, bytes, sizeof bytes, 0);
    if (count <= 0) return false;
    received_.append(bytes, static_cast<std::size_t>(count));
    return true;
  }

  const int socket_;
  const std::unique_ptr<SSL, decltype(&SSL_free)> session_;  // null without TLS
  bool encrypted_ = false;
  std::string received_;  // not yet part of a request
  std::mutex mutex_;      // for the members below, and closing
  std::condition_variable interruption_;
  bool interrupted_ = false;
  std::atomic<bool> open_ = true;
};

Step send(std::string bytes) {
  return [bytes = std::move(bytes)](Connection& connection) { connection.write(bytes); };
}

Step drip(std::string bytes, std::chrono::milliseconds gap) {
  return [bytes = std::move(bytes), gap](Connection& connection) {
    for (const char byte : bytes) {
      connection.write({&byte, 1});
      connection.wait(gap);
    }
  };
}

Step pause(std::chrono::milliseconds time) {
  return [time](Connection& connection) { connection.wait(time); };
}

Step stall() {
  return [](Connection& connection) { connection.awaitClientsEnd(); };
}

Step shutDownWriting() {
  return [](Connection& connection) { connection.shutDownWriting(); };
}

Step close() {
  return [](Connection& connection) {
    connection.sayGoodbye();
    connection.end();
  };
}

Step cut() {
  return [](Connection& connection) { connection.end(); };
}

Step reset() {
  return [](Connection& connection) {
    connection.resetAtEnd();
    connection.end();
  };
}

/// What the accepting thread, the connections' threads and the test share.
class ScriptedServer::State {
 public:
  State(Script usual, const TlsServerFiles* files)
      : usual_(std::move(usual)),
        tls_(files == nullptr ? nullptr : makeTls(*files), &SSL_CTX_free),
        listener_(boundSocket()),
        port_(ntohs(addressOf(listener_).sin_port)) {
    if (::listen(listener_, kBacklog) != 0) fail("listen");
    acceptor_ = std::thread([this] { acceptAll(); });
  }

  ~State() {
    {
      const std::lock_guard lock(mutex_);
      stopping_ = true;
      for (const auto& connection : connections_) connection->interrupt();
    }
    ::shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    for (std::thread& server : servers_) server.join();
    ::close(listener_);
  }

  State(const State&) = delete;
  State& operator=(const State&) = delete;

  void queueForRequest(Script script) {
    const std::lock_guard lock(mutex_);
    requestScripts_.push_back(std::move(script));
  }

  void queueForConnection(Script script) {
    const std::lock_guard lock(mutex_);
    connectionScripts_.push_back(std::move(script));
  }

  std::uint16_t port() const { return port_; }
  bool isEncrypted() const { return tls_ != nullptr; }

  std::vector<Request> requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
  }

  std::size_t connections() const {
    const std::lock_guard lock(mutex_);
    return connections_.size();
  }

 private:
  static SSL_CTX* makeTls(const TlsServerFiles& files) {
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls(
        SSL_CTX_new(TLS_server_method()), &SSL_CTX_free);
    if (!tls ||
        SSL_CTX_use_certificate_chain_file(tls.get(), files.certificate.c_str()) != 1 ||
        SSL_CTX_use_PrivateKey_file(tls.get(), files.key.c_str(), SSL_FILETYPE_PEM) !=
            1) {
      throw std::runtime_error("no TLS with " + files.certificate);
    }
    if (!files.clientAuthority.empty()) {
      const char* authority = files.clientAuthority.c_str();
      if (SSL_CTX_load_verify_locations(tls.get(), authority, nullptr) != 1) {
        throw std::runtime_error("no client authority in " + files.clientAuthority);
      }
      SSL_CTX_set_verify(tls.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT,
                         nullptr);
    }
    return tls.release();
  }

  void acceptAll() {
    for (;;) {
      const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      if (socket < 0) return;
      const std::lock_guard lock(mutex_);
      const std::size_t number = connections_.size();
      connections_.push_back(std::make_unique<Connection>(socket, tls_.get()));
      if (stopping_) return;
      servers_.emplace_back([this, number, connection = connections_.back().get()] {
        serve(*connection, number);
      });
    }
  }

  void serve(Connection& connection, std::size_t number) {
    // OpenSSL writes to a connection that the client closed without MSG_NOSIGNAL.
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);

    run(takeScript(connectionScripts_, {}), connection);
    connection.greet();
    std::string head;
    std::string body;
    while (connection.isOpen() && connection.read(head, body)) {
      {
        const std::lock_guard lock(mutex_);
        requests_.push_back({head, body, number});
      }
      run(takeScript(requestScripts_, usual_), connection);
    }
    connection.end();
  }

  static void run(const Script& script, Connection& connection) {
    for (const Step& step : script) step(connection);
  }

  Script takeScript(std::deque<Script>& queue, const Script& otherwise) {
    const std::lock_guard lock(mutex_);
    if (queue.empty()) return otherwise;
    Script script = std::move(queue.front());
    queue.pop_front();
    return script;
  }

  const Script usual_;
  const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls_;  // null without TLS
  const int listener_;
  const std::uint16_t port_;
  mutable std::mutex mutex_;  // for the members below, except the acceptor
  bool stopping_ = false;
  std::deque<Script> requestScripts_;
  std::deque<Script> connectionScripts_;
  std::vector<Request> requests_;
  std::vector<std::unique_ptr<Connection>> connections_;
  std::vector<std::thread> servers_;  // the acceptor's until it is joined
  std::thread acceptor_;
};

ScriptedServer::ScriptedServer(Script usual)
    : state_(std::make_unique<State>(std::move(usual), nullptr)) {}

ScriptedServer::ScriptedServer(Script usual, const TlsServerFiles& files)
    : state_(std::make_unique<State>(std::move(usual), &files)) {}

ScriptedServer::~ScriptedServer() = default;

void ScriptedServer::onRequest(Script script) {
  state_->queueForRequest(std::move(script));
}

void ScriptedServer::onConnection(Script script) {
  state_->queueForConnection(std::move(script));
}

std::uint16_t ScriptedServer::port() const { return state_->port(); }

std::string ScriptedServer::url() const {
  return (state_->isEncrypted() ? "https" : "http") + std::string("://127.0.0.1:") +
         std::to_string(port()) + "/f";
}

std::vector<Request> ScriptedServer::requests() const { return state_->requests(); }

std::size_t ScriptedServer::connections() const { return state_->connections(); }

DeadPort::DeadPort(Answer answer) : sockets_{boundSocket()} {
  const sockaddr_in address = addressOf(sockets_.front());
  port_ = ntohs(address.sin_port);
  // A bound socket that does not listen refuses.
  if (answer == Answer::kRefusal) return;
  // One whose queue of connections is full drops what else arrives.
  if (::listen(sockets_.front(), 0) != 0) fail("listen");
  const int queued = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (queued < 0) fail("socket");
  sockets_.push_back(queued);
  if (::connect(queued, reinterpret_cast<const sockaddr*>(&address), sizeof address) !=
      0) {
    fail("connect");
  }
}

DeadPort::~DeadPort() {
  for (const int socket : sockets_) ::close(socket);
}

std::string DeadPort::address() const { return "127.0.0.1:" + std::to_string(port_); }

std::string DeadPort::url() const { return "http://" + address() + "/f"; }

}  // namespace orb::test
