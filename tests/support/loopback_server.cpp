// SPDX-License-Identifier: MIT
#include "support/loopback_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace orb::test {
namespace {

constexpr std::string_view kEndOfHead = "\r\n\r\n";
constexpr std::size_t kChunkBytes = 1 << 18;

int checked(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

void watch(int poll, int operation, int descriptor, std::uint32_t events) {
  epoll_event event{};
  event.events = events;
  event.data.fd = descriptor;
  checked(::epoll_ctl(poll, operation, descriptor, &event), "epoll_ctl");
}

std::size_t contentLengthOf(std::string_view head) {
  constexpr std::string_view kName = "\r\nContent-Length: ";
  const std::size_t at = head.find(kName);
  if (at == std::string_view::npos) return 0;
  return std::strtoull(head.data() + at + kName.size(), nullptr, 10);
}

std::string_view targetOf(std::string_view head) {
  const std::size_t first = head.find(' ') + 1;
  return head.substr(first, head.find(' ', first) - first);
}

}  // namespace

struct LoopbackServer::Connection {
  explicit Connection(int fd) : socket(fd) {}
  ~Connection() { ::close(socket); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  const int socket;
  std::string received;
  std::size_t headBytes = 0;  // of the request under way; 0 until all of it is there
  std::size_t bodyBytes = 0;
  std::string toSend;
  bool closesWhenSent = false;
  bool waitsForSpace = false;
};

LoopbackServer::LoopbackServer(Handler handler)
    : handler_(std::move(handler)),
      listener_(checked(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket")),
      stopping_(checked(::eventfd(0, EFD_CLOEXEC), "eventfd")),
      poll_(checked(::epoll_create1(EPOLL_CLOEXEC), "epoll_create1")) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* general = reinterpret_cast<sockaddr*>(&address);
  checked(::bind(listener_, general, size), "bind");
  checked(::listen(listener_, SOMAXCONN), "listen");
  checked(::getsockname(listener_, general, &size), "getsockname");
  port_ = ntohs(address.sin_port);
  watch(poll_, EPOLL_CTL_ADD, listener_, EPOLLIN);
  watch(poll_, EPOLL_CTL_ADD, stopping_, EPOLLIN);
}

LoopbackServer::~LoopbackServer() {
  for (const int descriptor : {listener_, stopping_, poll_}) ::close(descriptor);
}

std::string LoopbackServer::url(const std::string& target) const {
  return "http://127.0.0.1:" + std::to_string(port_) + target;
}

void LoopbackServer::run() {
  std::array<epoll_event, 64> events{};
  for (;;) {
    const int count = ::epoll_wait(poll_, events.data(), events.size(), -1);
    if (count < 0 && errno == EINTR) continue;
    checked(count, "epoll_wait");
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
      const int ready = events[i].data.fd;
      if (ready == stopping_) return;
      if (ready == listener_) {
        accept();
        continue;
      }
      Connection& connection = *connections_.at(ready);
      const bool goesOn =
          (events[i].events & EPOLLOUT) == 0 ? receive(connection) : flush(connection);
      if (!goesOn) connections_.erase(ready);
    }
  }
}

void LoopbackServer::stop() {
  const std::uint64_t one = 1;
  checked(static_cast<int>(::write(stopping_, &one, sizeof one)), "write");
}

void LoopbackServer::accept() {
  const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
  if (socket < 0) return;  // the client left while it waited
  const int on = 1;
  ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  connections_.emplace(socket, std::make_unique<Connection>(socket));
  watch(poll_, EPOLL_CTL_ADD, socket, EPOLLIN);
}

bool LoopbackServer::receive(Connection& connection) {
  static thread_local std::string chunk(kChunkBytes, '\0');
  const ssize_t count = ::recv(connection.socket, chunk.data(), chunk.size(), 0);
  if (count < 0) return errno == EAGAIN || errno == EINTR;
  if (count == 0) return false;
  connection.received.append(chunk, 0, static_cast<std::size_t>(count));
  answerWhole(connection);
  return flush(connection);
}

void LoopbackServer::answerWhole(Connection& connection) {
  std::string& received = connection.received;
  while (!connection.closesWhenSent) {
    if (connection.headBytes == 0) {
      const std::size_t end = received.find(kEndOfHead);
      if (end == std::string::npos) return;
      connection.headBytes = end + kEndOfHead.size();
      connection.bodyBytes = contentLengthOf({received.data(), connection.headBytes});
      received.reserve(connection.headBytes + connection.bodyBytes);
    }
    const std::size_t whole = connection.headBytes + connection.bodyBytes;
    if (received.size() < whole) return;
    const std::string_view text = received;
    const HttpAnswer answer = handler_(
        {targetOf(text), text.substr(connection.headBytes, connection.bodyBytes)});
    connection.toSend += answer.bytes;
    connection.closesWhenSent = answer.closesConnection;
    received.erase(0, whole);
    connection.headBytes = 0;
  }
}

bool LoopbackServer::flush(Connection& connection) {
  std::string& toSend = connection.toSend;
  if (toSend.empty()) return true;
  const ssize_t sent =
      ::send(connection.socket, toSend.data(), toSend.size(), MSG_NOSIGNAL);
  if (sent < 0 && errno != EAGAIN) return false;
  if (sent > 0) toSend.erase(0, static_cast<std::size_t>(sent));
  if (toSend.empty() && connection.closesWhenSent) return false;
  // Nothing more is read before the answer has left.
  if (connection.waitsForSpace != !toSend.empty()) {
    connection.waitsForSpace = !toSend.empty();
    watch(poll_, EPOLL_CTL_MOD, connection.socket,
          connection.waitsForSpace ? EPOLLOUT : EPOLLIN);
  }
  return true;
}

}  // namespace orb::test
