// SPDX-License-Identifier: MIT
#include "torture/proxy/fault_proxy.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace orb::torture {
namespace {

constexpr std::size_t kChunkBytes = 1 << 16;
constexpr std::size_t kTrickledPieces = 40;  // the rest goes in one

int checked(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

sockaddr_in loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

int newSocket() {
  return checked(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
}

void sendAtOnce(int socket) {
  const int on = 1;
  ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// A peer that has left takes nothing any more; its end is noticed where it is read.
void sendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

void trickle(int socket, std::string_view bytes, const Fault& fault) {
  for (std::size_t i = 0; i < kTrickledPieces && !bytes.empty(); ++i) {
    const std::size_t piece = std::min<std::size_t>(1 + i % 3, bytes.size());
    sendAll(socket, bytes.substr(0, piece));
    bytes.remove_prefix(piece);
    std::this_thread::sleep_for(fault.pause);
  }
  sendAll(socket, bytes);
}

}  // namespace

std::string_view nameOf(FaultKind kind) {
  static constexpr std::string_view kNames[] = {
#define ORB_TORTURE_NAME(name, harmful) #name,
      ORB_TORTURE_FAULTS(ORB_TORTURE_NAME)
#undef ORB_TORTURE_NAME
          "kNone"};
  return kNames[static_cast<std::size_t>(kind)].substr(1);
}

bool isHarmful(FaultKind kind) {
  static constexpr bool kHarmful[] = {
#define ORB_TORTURE_HARMFUL(name, harmful) harmful,
      ORB_TORTURE_FAULTS(ORB_TORTURE_HARMFUL)
#undef ORB_TORTURE_HARMFUL
          false};
  return kHarmful[static_cast<std::size_t>(kind)];
}

bool isIdle(FaultKind kind) {
  return kind == FaultKind::kClosedIdle || kind == FaultKind::kResetIdle ||
         kind == FaultKind::kHalfClosedIdle;
}

/// A client's connection and the one to the server that belongs to it.
struct FaultProxy::Link {
  Link(int clientSocket, int serverSocket) : client(clientSocket), server(serverSocket) {}
  ~Link() {
    closeServer();
    if (client >= 0) ::close(client);
  }
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  void closeServer() {
    if (server >= 0) ::close(server);
    server = -1;
  }
  /// Ends both connections; the kernel resets the client's if it has bytes under way.
  void close() {
    closeServer();
    ::close(std::exchange(client, -1));
  }
  void reset() {
    const linger discard{1, 0};
    ::setsockopt(client, SOL_SOCKET, SO_LINGER, &discard, sizeof discard);
    close();
  }
  /// Sends the client nothing more, and lets it send what it has.
  void halfClose() {
    closeServer();
    ::shutdown(client, SHUT_WR);
  }
  bool isOver() const { return client < 0; }

  int client;
  int server;           // -1: what the client sends leads nowhere
  bool isKept = false;  // it carried a call
  bool isInCall = false;
  std::size_t requestBytes = 0;
  std::size_t replyBytes = 0;
  Fault fault;
};

FaultProxy::FaultProxy(std::uint16_t serverPort)
    : serverPort_(serverPort),
      listener_(newSocket()),
      wake_(checked(::eventfd(0, EFD_CLOEXEC), "eventfd")) {
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  auto* general = reinterpret_cast<sockaddr*>(&address);
  checked(::bind(listener_, general, size), "bind");
  checked(::listen(listener_, SOMAXCONN), "listen");
  checked(::getsockname(listener_, general, &size), "getsockname");
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { serve(); });
}

FaultProxy::~FaultProxy() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  wake();
  thread_.join();
  ::close(listener_);
  ::close(wake_);
}

void FaultProxy::wake() {
  const std::uint64_t one = 1;
  checked(static_cast<int>(::write(wake_, &one, sizeof one)), "write");
}

void FaultProxy::beginCall(std::vector<Fault> faults) {
  const std::lock_guard<std::mutex> lock(mutex_);
  history_ = CallHistory{};
  for (Link& link : links_) link.isInCall = false;
  const bool isFirstIdle = !faults.empty() && isIdle(faults.front().kind);
  if (isFirstIdle) {
    idleFault_ = faults.front();
    faults.erase(faults.begin());
    wake();
  }
  faults_ = std::move(faults);
}

CallHistory FaultProxy::endCall(bool keepsConnections) {
  const std::lock_guard<std::mutex> lock(mutex_);
  idleFault_ = Fault{};
  if (!keepsConnections) {
    for (Link& link : links_) {
      if (!link.isOver()) link.close();
    }
    wake();
  }
  return history_;
}

void FaultProxy::serve() {
  for (;;) {
    std::vector<pollfd> watched = {{wake_, POLLIN, 0}, {listener_, POLLIN, 0}};
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      links_.remove_if([](const Link& link) { return link.isOver(); });
      for (const Link& link : links_) {
        watched.push_back({link.client, POLLIN, 0});
        watched.push_back({link.server, POLLIN, 0});
      }
    }
    ::poll(watched.data(), watched.size(), -1);
    const std::lock_guard<std::mutex> lock(mutex_);
    if (stopping_) return;
    if (watched[0].revents != 0) {
      std::uint64_t ignored = 0;
      checked(static_cast<int>(::read(wake_, &ignored, sizeof ignored)), "read");
      harmIdle();
    }
    auto ready = watched.begin() + 2;
    for (Link& link : links_) {
      const short client = (ready++)->revents;
      const short server = (ready++)->revents;
      if (client != 0 && link.client >= 0) onClientBytes(link);
      if (server != 0 && link.server >= 0) onServerBytes(link);
    }
    if (watched[1].revents != 0) accept();
  }
}

void FaultProxy::accept() {
  const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
  if (client < 0) return;  // the client left while it waited
  const int server = newSocket();
  const sockaddr_in address = loopback(serverPort_);
  checked(::connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address),
          "connect");
  sendAtOnce(client);
  sendAtOnce(server);
  links_.emplace_back(client, server);
}

void FaultProxy::harmIdle() {
  const FaultKind kind = std::exchange(idleFault_, Fault{}).kind;
  if (kind == FaultKind::kNone) return;
  for (Link& link : links_) {
    // One that was half-closed before has nothing left that could be spoiled.
    if (link.isOver() || link.server < 0) continue;
    hit(kind);
    if (kind == FaultKind::kClosedIdle) link.close();
    if (kind == FaultKind::kResetIdle) link.reset();
    if (kind == FaultKind::kHalfClosedIdle) link.halfClose();
  }
}

void FaultProxy::onClientBytes(Link& link) {
  char bytes[kChunkBytes];
  const ssize_t count = ::recv(link.client, bytes, sizeof bytes, 0);
  if (count <= 0) return link.close();
  if (link.server < 0) return;
  if (!link.isInCall) {
    link.isInCall = true;
    if (history_.attempts == 0) history_.beganOnKept = link.isKept;
    history_.isLastSpoiled = false;
    const std::size_t attempt = history_.attempts++;
    link.fault = attempt < faults_.size() ? faults_[attempt] : Fault{};
    link.isKept = true;
    link.requestBytes = 0;
    link.replyBytes = 0;
  }
  forwardRequest(link, {bytes, static_cast<std::size_t>(count)});
  link.requestBytes += static_cast<std::size_t>(count);
}

void FaultProxy::hit(FaultKind kind) {
  history_.hit.push_back(kind);
  if (isHarmful(kind) && !isIdle(kind)) history_.isLastSpoiled = true;
}

bool FaultProxy::strikes(Link& link, std::size_t passed, std::size_t count) {
  if (passed + count < link.fault.atByte) return false;
  hit(std::exchange(link.fault.kind, FaultKind::kNone));
  return true;
}

void FaultProxy::forwardRequest(Link& link, std::string_view bytes) {
  const Fault fault = link.fault;
  const auto strikesHere = [&] {
    if (!strikes(link, link.requestBytes, bytes.size())) return false;
    sendAll(link.server, bytes.substr(0, fault.atByte - link.requestBytes));
    return true;
  };
  switch (fault.kind) {
    case FaultKind::kDelayedRequest:
      hit(std::exchange(link.fault.kind, FaultKind::kNone));
      std::this_thread::sleep_for(fault.pause);
      break;
    case FaultKind::kTrickledRequest:
      hit(std::exchange(link.fault.kind, FaultKind::kNone));
      return trickle(link.server, bytes, fault);
    case FaultKind::kClosedInRequest:
      if (strikesHere()) return link.close();
      break;
    case FaultKind::kResetInRequest:
      if (strikesHere()) return link.reset();
      break;
    case FaultKind::kHalfClosedInRequest:
      if (strikesHere()) return link.halfClose();
      break;
    case FaultKind::kRequestCutToServer:
      if (!strikesHere()) break;
      ::shutdown(link.server, SHUT_WR);
      return;
    case FaultKind::kDelayedReply:
    case FaultKind::kTrickledReply:
    case FaultKind::kClosedIdle:
    case FaultKind::kResetIdle:
    case FaultKind::kHalfClosedIdle:
    case FaultKind::kClosedInReply:
    case FaultKind::kResetInReply:
    case FaultKind::kStalledReply:
    case FaultKind::kNone:
      break;
  }
  sendAll(link.server, bytes);
}

void FaultProxy::onServerBytes(Link& link) {
  char bytes[kChunkBytes];
  const ssize_t count = ::recv(link.server, bytes, sizeof bytes, 0);
  if (count <= 0) return link.close();
  forwardReply(link, {bytes, static_cast<std::size_t>(count)});
  link.replyBytes += static_cast<std::size_t>(count);
}

void FaultProxy::forwardReply(Link& link, std::string_view bytes) {
  const Fault fault = link.fault;
  const auto strikesHere = [&] {
    if (!strikes(link, link.replyBytes, bytes.size())) return false;
    sendAll(link.client, bytes.substr(0, fault.atByte - link.replyBytes));
    return true;
  };
  switch (fault.kind) {
    case FaultKind::kDelayedReply:
      hit(std::exchange(link.fault.kind, FaultKind::kNone));
      std::this_thread::sleep_for(fault.pause);
      break;
    case FaultKind::kTrickledReply:
      hit(std::exchange(link.fault.kind, FaultKind::kNone));
      return trickle(link.client, bytes, fault);
    case FaultKind::kClosedInReply:
      if (strikesHere()) return link.close();
      break;
    case FaultKind::kResetInReply:
      if (strikesHere()) return link.reset();
      break;
    case FaultKind::kStalledReply:
      hit(fault.kind);
      return link.closeServer();
    case FaultKind::kDelayedRequest:
    case FaultKind::kTrickledRequest:
    case FaultKind::kClosedIdle:
    case FaultKind::kResetIdle:
    case FaultKind::kHalfClosedIdle:
    case FaultKind::kClosedInRequest:
    case FaultKind::kResetInRequest:
    case FaultKind::kHalfClosedInRequest:
    case FaultKind::kRequestCutToServer:
    case FaultKind::kNone:
      break;
  }
  sendAll(link.client, bytes);
}

}  // namespace orb::torture
