// SPDX-License-Identifier: MIT
#include "net/socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace orb::bench {
namespace {

constexpr int kBacklog = 128;
constexpr size_t kDiscardBytes = 256 * 1024;

template <class Result>
Result checked(Result result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

sockaddr_in loopback(uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

void serveConnection(int descriptor, const Listener::Serve& serve) {
  try {
    Socket socket(descriptor);
    serve(socket);
  } catch (const std::exception& failure) {
    // A client that is stopped in mid-call costs its own connection only.
    std::fprintf(stderr, "%s\n", failure.what());
  }
}

}  // namespace

Socket Socket::connectTo(uint16_t port) {
  Socket connection(checked(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"));
  const sockaddr_in address = loopback(port);
  checked(::connect(connection.descriptor_, reinterpret_cast<const sockaddr*>(&address),
                    sizeof address),
          "connect");
  return connection;
}

Socket::Socket(int descriptor) : descriptor_(descriptor) {
  const int on = 1;
  ::setsockopt(descriptor_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

Socket::Socket(Socket&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

Socket::~Socket() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

void Socket::send(std::string_view head, std::string_view body) {
  while (!head.empty() || !body.empty()) {
    iovec pieces[] = {{const_cast<char*>(head.data()), head.size()},
                      {const_cast<char*>(body.data()), body.size()}};
    msghdr message{};
    message.msg_iov = pieces;
    message.msg_iovlen = 2;
    const size_t sent = static_cast<size_t>(
        checked(::sendmsg(descriptor_, &message, MSG_NOSIGNAL), "sendmsg"));
    const size_t ofHead = std::min(sent, head.size());
    head.remove_prefix(ofHead);
    body.remove_prefix(sent - ofHead);
  }
}

size_t Socket::receiveSome(void* buffer, size_t capacity) {
  return static_cast<size_t>(checked(::recv(descriptor_, buffer, capacity, 0), "recv"));
}

bool Socket::receiveAll(void* buffer, size_t size) {
  size_t received = 0;
  while (received < size) {
    const size_t count =
        receiveSome(static_cast<char*>(buffer) + received, size - received);
    if (count == 0 && received == 0) return false;
    if (count == 0) {
      throw std::system_error(ECONNRESET, std::generic_category(), "recv");
    }
    received += count;
  }
  return true;
}

void Socket::discard(size_t size) {
  thread_local const auto buffer = std::make_unique<char[]>(kDiscardBytes);
  while (size > 0) {
    const size_t count = std::min(size, kDiscardBytes);
    if (!receiveAll(buffer.get(), count)) {
      throw std::system_error(ECONNRESET, std::generic_category(), "recv");
    }
    size -= count;
  }
}

Listener::Listener(Serve serve) {
  const int listener =
      checked(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  auto* const any = reinterpret_cast<sockaddr*>(&address);
  checked(::bind(listener, any, size), "bind");
  checked(::listen(listener, kBacklog), "listen");
  checked(::getsockname(listener, any, &size), "getsockname");
  port_ = ntohs(address.sin_port);
  std::thread([listener, serve = std::move(serve)] {
    for (;;) {
      const int descriptor = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
      if (descriptor >= 0) std::thread(serveConnection, descriptor, serve).detach();
    }
  }).detach();
}

}  // namespace orb::bench
