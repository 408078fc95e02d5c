// SPDX-License-Identifier: MIT
// A server under a test's full control: it sends any bytes at any pace.
#ifndef ORB_TESTS_SUPPORT_SCRIPTED_SERVER_H_
#define ORB_TESTS_SUPPORT_SCRIPTED_SERVER_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orb::test {

class Connection;

/// One thing that the server does on a connection. Steps after the one that ends the
/// connection, or that finds the client gone, do nothing.
using Step = std::function<void(Connection&)>;
using Script = std::vector<Step>;

Step send(std::string bytes);
/// Sends byte by byte with a gap after each.
Step drip(std::string bytes, std::chrono::milliseconds gap);
Step pause(std::chrono::milliseconds time);
/// Waits until the client closes the connection.
Step stall();
/// Sends no more, and goes on reading.
Step shutDownWriting();
/// Ends the connection in order; under TLS with a closing alert.
Step close();
/// Ends the connection in order; under TLS without a closing alert.
Step cut();
/// Ends the connection by a TCP reset.
Step reset();

/// What a client sent, to the byte.
struct Request {
  std::string head;  // up to and with the empty line
  std::string body;
  std::size_t connection;  // 0 for the first one accepted
};

/// The PEM files of a TLS server.
struct TlsServerFiles {
  std::string certificate;
  std::string key;
  std::string clientAuthority;  // clients must show a certificate of it, unless empty
};

/// Listens on 127.0.0.1 and a port of the system's choice, in threads of its own. Each
/// request takes the next script that was queued, and the usual one when none is.
class ScriptedServer {
 public:
  explicit ScriptedServer(Script usual);
  ScriptedServer(Script usual, const TlsServerFiles& files);
  /// Ends all connections.
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  /// Queues what a request is answered with.
  void onRequest(Script script);
  /// Queues what happens on a new connection before TLS starts and a request is read.
  void onConnection(Script script);

  std::uint16_t port() const;
  /// "http://127.0.0.1:40123/f", or with "https".
  std::string url() const;
  std::vector<Request> requests() const;
  std::size_t connections() const;

 private:
  class State;
  std::unique_ptr<State> state_;
};

/// A port on 127.0.0.1 that refuses connections, or leaves them without any answer, as
/// long as this lives.
class DeadPort {
 public:
  enum class Answer { kRefusal, kSilence };
  explicit DeadPort(Answer answer);
  ~DeadPort();
  DeadPort(const DeadPort&) = delete;
  DeadPort& operator=(const DeadPort&) = delete;

  /// "127.0.0.1:40123"
  std::string address() const;
  std::string url() const;

 private:
  std::vector<int> sockets_;
  std::uint16_t port_;
};

}  // namespace orb::test

#endif  // ORB_TESTS_SUPPORT_SCRIPTED_SERVER_H_
