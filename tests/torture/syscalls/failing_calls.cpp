// SPDX-License-Identifier: MIT
#include "torture/syscalls/failing_calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <iterator>

namespace orb::torture {
namespace {

struct Plan {
  bool active;
  std::size_t nth;
  int fault;
  bool sparesFcntl;
  std::size_t calls;
  const char* failed;
};

constexpr int kMostDescriptors = 1024;

thread_local Plan plan{};
thread_local bool isOpen[kMostDescriptors];

/// Whether this call is to fail; sets errno.
bool mustFail(const char* name) {
  if (!plan.active || ++plan.calls != plan.nth || plan.fault == FailingCalls::kOneByte) {
    return false;
  }
  plan.failed = name;
  errno = plan.fault;
  return true;
}

/// How many of `size` bytes a call that mustFail() let pass may move.
std::size_t allowed(const char* name, std::size_t size) {
  if (!plan.active || plan.calls != plan.nth || plan.fault != FailingCalls::kOneByte) {
    return size;
  }
  plan.failed = name;
  return std::min<std::size_t>(size, 1);
}

template <class Function>
Function* next(Function*, const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

void note(int descriptor, bool open) {
  if (descriptor >= 0 && descriptor < kMostDescriptors) isOpen[descriptor] = open;
}

}  // namespace

FailingCalls::FailingCalls(std::size_t nth, int fault, bool sparesFcntl) {
  plan = {true, nth, fault, sparesFcntl, 0, nullptr};
}

FailingCalls::~FailingCalls() { plan.active = false; }

std::size_t FailingCalls::calls() const { return plan.calls; }

const char* FailingCalls::failed() const { return plan.failed; }

int openDescriptors() {
  return static_cast<int>(std::count(std::begin(isOpen), std::end(isOpen), true));
}

}  // namespace orb::torture

using orb::torture::allowed;
using orb::torture::mustFail;
using orb::torture::next;
using orb::torture::note;

extern "C" {

int socket(int domain, int type, int protocol) {
  static const auto real = next(&::socket, "socket");
  if (mustFail("socket")) return -1;
  const int descriptor = real(domain, type, protocol);
  note(descriptor, true);
  return descriptor;
}

int socketpair(int domain, int type, int protocol, int* pair) {
  static const auto real = next(&::socketpair, "socketpair");
  if (mustFail("socketpair")) return -1;
  const int result = real(domain, type, protocol, pair);
  if (result == 0) {
    note(pair[0], true);
    note(pair[1], true);
  }
  return result;
}

// A descriptor is gone also when its closing fails.
int close(int descriptor) {
  static const auto real = next(&::close, "close");
  const bool fails = mustFail("close");
  const int error = errno;
  note(descriptor, false);
  const int result = real(descriptor);
  if (!fails) return result;
  errno = error;
  return -1;
}

int connect(int descriptor, const sockaddr* address, socklen_t size) {
  static const auto real = next(&::connect, "connect");
  return mustFail("connect") ? -1 : real(descriptor, address, size);
}

ssize_t send(int descriptor, const void* bytes, size_t size, int flags) {
  static const auto real = next(&::send, "send");
  return mustFail("send") ? -1 : real(descriptor, bytes, allowed("send", size), flags);
}

ssize_t recv(int descriptor, void* bytes, size_t size, int flags) {
  static const auto real = next(&::recv, "recv");
  return mustFail("recv") ? -1 : real(descriptor, bytes, allowed("recv", size), flags);
}

ssize_t read(int descriptor, void* bytes, size_t size) {
  static const auto real = next(&::read, "read");
  return mustFail("read") ? -1 : real(descriptor, bytes, allowed("read", size));
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
  static const auto real = next(&::write, "write");
  return mustFail("write") ? -1 : real(descriptor, bytes, allowed("write", size));
}

int poll(pollfd* descriptors, nfds_t count, int timeout) {
  static const auto real = next(&::poll, "poll");
  return mustFail("poll") ? -1 : real(descriptors, count, timeout);
}

int getsockopt(int descriptor, int level, int option, void* value,
               socklen_t* size) noexcept {
  static const auto real = next(&::getsockopt, "getsockopt");
  return mustFail("getsockopt") ? -1 : real(descriptor, level, option, value, size);
}

int setsockopt(int descriptor, int level, int option, const void* value,
               socklen_t size) noexcept {
  static const auto real = next(&::setsockopt, "setsockopt");
  return mustFail("setsockopt") ? -1 : real(descriptor, level, option, value, size);
}

int getsockname(int descriptor, sockaddr* address, socklen_t* size) noexcept {
  static const auto real = next(&::getsockname, "getsockname");
  return mustFail("getsockname") ? -1 : real(descriptor, address, size);
}

int getpeername(int descriptor, sockaddr* address, socklen_t* size) noexcept {
  static const auto real = next(&::getpeername, "getpeername");
  return mustFail("getpeername") ? -1 : real(descriptor, address, size);
}

int fcntl(int descriptor, int command, ...) {
  static const auto real = next(&::fcntl, "fcntl");
  va_list rest;
  va_start(rest, command);
  void* argument = va_arg(rest, void*);
  va_end(rest);
  const bool isSpared = orb::torture::plan.sparesFcntl;
  return !isSpared && mustFail("fcntl") ? -1 : real(descriptor, command, argument);
}

}  // extern "C"
