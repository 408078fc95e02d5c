// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_FUZZ_TALLY_H_
#define ORB_TESTS_TORTURE_FUZZ_TALLY_H_

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include "torture/support/run.h"

namespace orb::torture {

/// Counts what the inputs of a program led to, and says so when it ends. A kind that a
/// long run never met makes the program fail.
class Tally {
 public:
  Tally(std::string inputs, std::initializer_list<const char*> kinds)
      : inputs_(std::move(inputs)), kinds_(kinds), counts_(kinds.size()) {}
  Tally(const Tally&) = delete;
  Tally& operator=(const Tally&) = delete;

  ~Tally() {
    std::string text = grouped(total_) + " " + inputs_;
    bool isMissing = false;
    for (std::size_t i = 0; i < kinds_.size(); ++i) {
      text += (i == 0 ? ": " : ", ") + grouped(counts_[i]) + " " + kinds_[i];
      if (counts_[i] != 0 || total_ < kLongRun) continue;
      std::printf("finding: a run without %s\n", kinds_[i]);
      isMissing = true;
    }
    std::printf("reached: %s; %d findings\n", text.c_str(), isMissing ? 1 : 0);
    std::fflush(stdout);
    if (isMissing) std::_Exit(EXIT_FAILURE);
  }

  void addInput() { ++total_; }
  void add(std::size_t kind) { ++counts_[kind]; }

 private:
  static constexpr std::uint64_t kLongRun = 50000;

  std::string inputs_;
  std::vector<const char*> kinds_;
  std::vector<std::uint64_t> counts_;
  std::uint64_t total_ = 0;
};

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_FUZZ_TALLY_H_
