// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_SYSCALLS_TRIAL_H_
#define ORB_TESTS_TORTURE_SYSCALLS_TRIAL_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace orb::torture {

struct Tally {
  std::map<std::string, std::uint64_t> functions;  // how often each failed
  std::map<std::string, std::uint64_t> texts;      // of the last errors
  std::uint64_t calls = 0;                         // that a fault met
  std::uint64_t successes = 0;                     // of them
};

/// A way of calling and a fault.
struct Scenario {
  bool isLarge;   // request and reply of 300 KB
  bool isReused;  // the connection has served a call before
  bool isTls;
  int fault;

  std::string describe() const;
};

constexpr std::size_t kWays = 8;
constexpr std::size_t kScenarios = kWays * 9;
/// All ways with the first fault, a connection that is reset, then with the second, a
/// single byte that is moved, then with the other errors.
/// @param number  Below kScenarios.
Scenario scenarioOf(std::size_t number);

/// Makes the call once for each of its system calls, with the fault in that one's place;
/// calls `report` for a call that succeeds with another result, fails without a reason that
/// libcurl gives, changes its input or loses a descriptor, and when the next call fails.
void tryScenario(const Scenario& scenario, Tally& tally,
                 const std::function<void(const std::string&)>& report);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_SYSCALLS_TRIAL_H_
