// SPDX-License-Identifier: MIT
#ifndef ORB_BENCH_NET_SOCKET_H_
#define ORB_BENCH_NET_SOCKET_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace orb::bench {

/// One TCP connection. Its functions throw std::system_error.
class Socket {
 public:
  static Socket connectTo(uint16_t port);
  explicit Socket(int descriptor);
  Socket(Socket&& other) noexcept;
  Socket& operator=(Socket&&) = delete;
  ~Socket();

  /// Sends both pieces as one.
  void send(std::string_view head, std::string_view body);
  /// Gives what has arrived, at least one byte; 0 when the other side has closed.
  size_t receiveSome(void* buffer, size_t capacity);
  /// False when the other side closed before the first byte.
  bool receiveAll(void* buffer, size_t size);
  /// Receives bytes that nobody wants.
  void discard(size_t size);

 private:
  int descriptor_;
};

/// Listens on a port of the system's choice at 127.0.0.1 and serves every connection in a
/// thread of its own, until the process ends.
class Listener {
 public:
  using Serve = std::function<void(Socket&)>;

  explicit Listener(Serve serve);

  uint16_t port() const { return port_; }

 private:
  uint16_t port_ = 0;
};

}  // namespace orb::bench

#endif  // ORB_BENCH_NET_SOCKET_H_
