// SPDX-License-Identifier: MIT
// A malloc() that fails when it is told so, and knows what was not freed. Linking
// failing_malloc.cpp replaces that of the program and of all shared libraries, and operator
// new with it.
#ifndef ORB_TESTS_TORTURE_ALLOCATIONS_FAILING_MALLOC_H_
#define ORB_TESTS_TORTURE_ALLOCATIONS_FAILING_MALLOC_H_

#include <cstddef>
#include <vector>

namespace orb::torture {

/// While one lives, allocations of the thread that made it fail; at most one lives.
class FailingMalloc {
 public:
  /// The nth from now on, counted from 1, and those after it if so; none for 0.
  FailingMalloc(std::size_t nth, bool andLater);
  ~FailingMalloc() { stop(); }
  FailingMalloc(const FailingMalloc&) = delete;
  FailingMalloc& operator=(const FailingMalloc&) = delete;

  void stop();
  std::size_t calls() const;
  std::size_t failures() const;
};

struct Block {
  std::size_t size;
  std::vector<void*> stack;  // of the allocation, innermost first
  bool isTraced;             // or the stack is its first frame only
};

/// While one lives, what its thread allocates is watched; at most one lives.
class WatchedBlocks {
 public:
  /// Of the blocks that OpenSSL allocates, those of the sizes of these are traced; all
  /// others always are.
  explicit WatchedBlocks(const std::vector<Block>& likeThese);
  ~WatchedBlocks() { stop(); }
  WatchedBlocks(const WatchedBlocks&) = delete;
  WatchedBlocks& operator=(const WatchedBlocks&) = delete;

  /// Ends the watch and gives what was not freed.
  std::vector<Block> stop();
};

/// While one lives, new blocks are not watched; those that are stay so until they are freed.
class WatchPause {
 public:
  WatchPause();
  ~WatchPause();
  WatchPause(const WatchPause&) = delete;
  WatchPause& operator=(const WatchPause&) = delete;

 private:
  const bool before_;
};

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_ALLOCATIONS_FAILING_MALLOC_H_
