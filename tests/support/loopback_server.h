// SPDX-License-Identifier: MIT
// A small server that answers thousands of calls a second with what a check computes.
#ifndef ORB_TESTS_SUPPORT_LOOPBACK_SERVER_H_
#define ORB_TESTS_SUPPORT_LOOPBACK_SERVER_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace orb::test {

/// What a client asks; it lasts as long as the call of the handler.
struct HttpCall {
  std::string_view target;  // "/echo/17"
  std::string_view body;
};

/// What it is answered with, to the byte.
struct HttpAnswer {
  std::string bytes;
  bool closesConnection = false;
};

/// Listens on 127.0.0.1 and a port of the system's choice from its construction on, and
/// serves all connections, which it keeps alive, in the one thread that runs it.
class LoopbackServer {
 public:
  /// Called in the thread of run() for each whole request.
  using Handler = std::function<HttpAnswer(const HttpCall&)>;

  explicit LoopbackServer(Handler handler);
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  std::uint16_t port() const { return port_; }
  /// "http://127.0.0.1:40123" and the target.
  std::string url(const std::string& target) const;

  /// Serves until stop().
  void run();
  /// Ends run(), from any thread.
  void stop();

 private:
  struct Connection;

  void accept();
  void answerWhole(Connection& connection);
  /// Give false when the connection is over.
  bool receive(Connection& connection);
  bool flush(Connection& connection);

  Handler handler_;
  int listener_;
  int stopping_;  // an eventfd
  int poll_;
  std::uint16_t port_ = 0;
  std::unordered_map<int, std::unique_ptr<Connection>> connections_;  // by socket
};

}  // namespace orb::test

#endif  // ORB_TESTS_SUPPORT_LOOPBACK_SERVER_H_
