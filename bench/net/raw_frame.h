// SPDX-License-Identifier: MIT
// What travels between F0 and its server.
#ifndef ORB_BENCH_NET_RAW_FRAME_H_
#define ORB_BENCH_NET_RAW_FRAME_H_

#include <cstdint>

namespace orb::bench {

/// Stands before the bytes of a request; an answer has the size alone before its own.
struct RawFrame {
  enum Purpose : uint64_t {
    kSelect,  // the bytes are a workload's name; the answer is its ready request
    kCall,    // the bytes are a request; the answer is the ready reply
  };
  Purpose purpose;
  uint64_t size;
};

}  // namespace orb::bench

#endif  // ORB_BENCH_NET_RAW_FRAME_H_
