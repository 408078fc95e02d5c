// SPDX-License-Identifier: MIT
// Calls through the function table, with all that a call comes to in one value.
#ifndef ORB_TESTS_CLIENT_TRANSPORT_CALLER_H_
#define ORB_TESTS_CLIENT_TRANSPORT_CALLER_H_

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "orb/qxorbclient.h"
#include "support/array.h"
#include "support/scripted_server.h"
#include "support/wire.h"

namespace orb::test {

/// The table, version 1.1, of a library that stays initialised until the program ends.
const orbClientRuntime& runtime();

/// The status of a call and, unless it succeeded, what getLastErrorInfo() tells.
struct Outcome {
  orbStatus status = ORB_OK;
  orbErrorType type = ORB_HTTP_ERROR;
  std::string summary;
  std::string detail;  // the message of the error's own kind
  std::uint32_t responseCode = 0;
  std::string identifier;
};

bool operator==(const Outcome& left, const Outcome& right);
std::ostream& operator<<(std::ostream& out, const Outcome& outcome);

Outcome success();
Outcome httpError(std::uint32_t code, const std::string& phrase);
Outcome kaldexError(const std::string& message, const std::string& identifier);
Outcome genericError(const std::string& message);
/// A generic error for other than the wanted number of outputs.
Outcome countMismatch(std::size_t received, std::size_t wanted);
/// A generic error for a reply announced above the response size limit.
Outcome refusal();

struct Settings {
  std::uint64_t timeoutSec = 20;
  std::uint32_t limitBytes = 67108864;
  bool verifyHost = true;
  bool verifyPeer = true;
  std::string serverCertFile;
  std::string clientCertFile;
  std::string clientPrivateKeyFile;
  std::string clientPrivateKeyPassword;
  std::string crlFile;
};

/// One context.
class Caller {
 public:
  explicit Caller(const Settings& settings = {});
  ~Caller();
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;

  orbClientContext* context() const { return context_; }

  /// Calls with as many outputs as there are slots. Slots keep what they held unless the
  /// call fills them.
  Outcome call(const char* url, std::vector<Array>& outputs,
               const std::vector<orbArray>& inputs = {});
  Outcome call(const std::string& url, std::vector<Array>& outputs,
               const std::vector<orbArray>& inputs = {});

  /// What getLastErrorInfo() tells.
  Outcome lastError() const;

 private:
  orbClientContext* context_ = nullptr;
};

/// A reply with one output that holds kUsualValue.
Script usualReply();
constexpr double kUsualValue = 42.5;

/// A server and a context for arrays on their way in and out.
class Exchange {
 public:
  Exchange();

  /// Receives one array, given as its message.
  Array receive(const std::string& message);
  /// The body of a call without outputs.
  std::string bodyWith(const std::vector<orbArray>& inputs);
  ScriptedServer& server() { return server_; }
  Caller& caller() { return caller_; }

 private:
  ScriptedServer server_;
  Caller caller_;
};

/// Expects a call for one output to succeed with kUsualValue.
void expectUsualCall(Caller& caller, const std::string& url);

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_TRANSPORT_CALLER_H_
