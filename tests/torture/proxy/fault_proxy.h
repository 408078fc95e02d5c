// SPDX-License-Identifier: MIT
// A TCP proxy that spoils calls on their way between one context and a server.
#ifndef ORB_TESTS_TORTURE_PROXY_FAULT_PROXY_H_
#define ORB_TESTS_TORTURE_PROXY_FAULT_PROXY_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

namespace orb::torture {

/// The name, and whether a call may fail of it.
#define ORB_TORTURE_FAULTS(X)   \
  X(kDelayedRequest, false)     \
  X(kDelayedReply, false)       \
  X(kTrickledRequest, false)    \
  X(kTrickledReply, false)      \
  X(kClosedIdle, true)          \
  X(kResetIdle, true)           \
  X(kHalfClosedIdle, true)      \
  X(kClosedInRequest, true)     \
  X(kResetInRequest, true)      \
  X(kHalfClosedInRequest, true) \
  X(kRequestCutToServer, true)  \
  X(kClosedInReply, true)       \
  X(kResetInReply, true)        \
  X(kStalledReply, true)

enum class FaultKind {
#define ORB_TORTURE_ENUMERATOR(name, harmful) name,
  ORB_TORTURE_FAULTS(ORB_TORTURE_ENUMERATOR)
#undef ORB_TORTURE_ENUMERATOR
      kNone
};
inline constexpr std::size_t kFaultKinds = static_cast<std::size_t>(FaultKind::kNone);

std::string_view nameOf(FaultKind kind);
bool isHarmful(FaultKind kind);
/// Whether it happens to a kept connection between two calls.
bool isIdle(FaultKind kind);

struct Fault {
  FaultKind kind = FaultKind::kNone;
  std::size_t atByte = 0;             // so many of the direction's bytes still arrive
  std::chrono::microseconds pause{};  // before what is delayed or trickled
};

/// What became of one call. An attempt is a connection that carried bytes of it.
struct CallHistory {
  unsigned attempts = 0;
  bool beganOnKept = false;    // the first attempt's connection had carried calls before
  bool isLastSpoiled = false;  // the last attempt met a harmful fault on its way
  std::vector<FaultKind> hit;
};

/// Serves the contexts of one thread, one call at a time, in a thread of its own.
class FaultProxy {
 public:
  explicit FaultProxy(std::uint16_t serverPort);
  ~FaultProxy();
  FaultProxy(const FaultProxy&) = delete;
  FaultProxy& operator=(const FaultProxy&) = delete;

  std::uint16_t port() const { return port_; }

  /// What is to happen to the next call: to its first attempt, its second one, and so on.
  /// A fault for idle connections counts for no attempt; it stands first.
  void beginCall(std::vector<Fault> faults);
  /// A call that failed in transport leaves no connection behind.
  CallHistory endCall(bool keepsConnections);

 private:
  struct Link;

  void serve();
  void accept();
  void harmIdle();
  void onClientBytes(Link& link);
  void onServerBytes(Link& link);
  void forwardRequest(Link& link, std::string_view bytes);
  void forwardReply(Link& link, std::string_view bytes);
  /// Whether the link's fault falls into these bytes; counts it and forgets it.
  bool strikes(Link& link, std::size_t passed, std::size_t count);
  void hit(FaultKind kind);
  void wake();

  const std::uint16_t serverPort_;
  int listener_;
  int wake_;  // an eventfd
  std::uint16_t port_;
  std::mutex mutex_;  // for the members below, except the thread
  bool stopping_ = false;
  Fault idleFault_;
  std::vector<Fault> faults_;  // one for each attempt
  CallHistory history_;
  std::list<Link> links_;
  std::thread thread_;
};

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_PROXY_FAULT_PROXY_H_
