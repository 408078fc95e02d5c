// SPDX-License-Identifier: MIT
// Blocks that nobody freed, by who allocated them.
#ifndef ORB_TESTS_TORTURE_ALLOCATIONS_LEAKS_H_
#define ORB_TESTS_TORTURE_ALLOCATIONS_LEAKS_H_

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "torture/allocations/failing_malloc.h"

namespace orb::torture {

class Leaks {
 public:
  /// Takes blocks with their stacks.
  void add(const std::vector<Block>& blocks, const std::string& where);

  /// A line for each place in the program that left blocks.
  std::string describe() const;
  /// The places that the library is to answer for, each once.
  std::vector<std::string> takeOurs();

 private:
  struct Place {
    std::uint64_t blocks;
    std::string firstWhere;
    std::string stack;
    bool isOurs;
    bool isTaken;
  };

  std::map<std::string, Place> places_;  // by owner and function
  std::map<void*, std::vector<std::string>> names_;
};

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_ALLOCATIONS_LEAKS_H_
