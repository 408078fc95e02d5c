// SPDX-License-Identifier: MIT
// Numbered calls: what one asks for, what is sent with it, and whether its outcome belongs
// to it and to no other.
#ifndef ORB_TESTS_TORTURE_PROXY_CALLS_H_
#define ORB_TESTS_TORTURE_PROXY_CALLS_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "client/transport/caller.h"
#include "support/loopback_server.h"

namespace orb::torture {

/// How the server answers; the name stands in the target, before the number.
enum class Asked { kEcho, kChunked, kClosing, kServerError, kHttpError };
inline constexpr std::size_t kAskedKinds = 5;

struct Call {
  std::uint64_t number;
  Asked asked;
  std::size_t elements;  // of the second input; the first is the number
  std::size_t outputs;   // 1 or 2, the first inputs

  std::string target() const;
  std::vector<test::Array> inputs() const;
  /// What the call comes to when nothing goes wrong.
  test::Outcome wanted() const;
  bool areItsOutputs(const std::vector<test::Array>& received) const;
};

/// How often the server executed each call.
class ExecutionLog {
 public:
  explicit ExecutionLog(std::size_t calls) : counts_(calls) {}

  /// Executes what Call::target() and Call::inputs() ask for.
  test::HttpAnswer answer(const test::HttpCall& call);

  unsigned executionsOf(std::uint64_t number) const { return counts_[number]; }
  /// The requests that no client would send.
  std::uint64_t damagedRequests() const { return damaged_; }

 private:
  std::vector<std::atomic<unsigned char>> counts_;
  std::atomic<std::uint64_t> damaged_{0};
};

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_PROXY_CALLS_H_
