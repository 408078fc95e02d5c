// SPDX-License-Identifier: MIT
// How a long-running check is told how much to do, and how it says what it has done.
#ifndef ORB_TESTS_TORTURE_SUPPORT_RUN_H_
#define ORB_TESTS_TORTURE_SUPPORT_RUN_H_

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace orb::torture {

/// One run of a check: its share of work, its seed, its findings. Any thread may use it.
///
/// Command line: `--count N` items (what an item is, the check says), `--seed N`, and
/// `--seconds N` after which no new item is begun.
class Run {
 public:
  /// Ends the program with a usage message when the command line is not as above.
  Run(int argc, char** argv, std::uint64_t usualCount);

  std::uint64_t seed() const { return seed_; }
  std::uint64_t count() const { return count_; }
  /// Whether item number `done`, counted from 0, is still to be begun.
  bool wants(std::uint64_t done) const;

  /// Prints what was found, and the arguments of this program that make it happen again.
  void finding(const std::string& what, const std::string& replayArguments);
  /// Prints what was reached: "30,000 replies". Returns the program's exit code, which is
  /// 1 after a finding.
  int finish(const std::string& reached) const;

 private:
  std::string program_;
  std::uint64_t seed_ = 1;
  std::uint64_t count_;
  std::chrono::steady_clock::time_point end_;
  mutable std::mutex mutex_;
  std::uint64_t findings_ = 0;
};

/// 30000 as "30,000".
std::string grouped(std::uint64_t number);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_SUPPORT_RUN_H_
