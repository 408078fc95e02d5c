// SPDX-License-Identifier: MIT
// What this process has cost so far.
#ifndef ORB_BENCH_CLIENT_USAGE_H_
#define ORB_BENCH_CLIENT_USAGE_H_

#include <cstdint>

namespace orb::bench {

struct Usage {
  int64_t cpuNs;  // of all threads, in the program and in the kernel
  int64_t pageFaults;
};

Usage currentUsage();

/// Watches how far the resident memory of the process rises above what it is now.
class MemoryPeak {
 public:
  MemoryPeak();
  uint64_t addedBytes() const;

 private:
  uint64_t before_;
};

}  // namespace orb::bench

#endif  // ORB_BENCH_CLIENT_USAGE_H_
