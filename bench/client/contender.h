// SPDX-License-Identifier: MIT
#ifndef ORB_BENCH_CLIENT_CONTENDER_H_
#define ORB_BENCH_CLIENT_CONTENDER_H_

#include <cstdint>
#include <memory>

#include "value/workload.h"

namespace orb::bench {

/// Where the contender's server listens.
struct Endpoint {
  uint16_t port;
  uint16_t rawPort;  // of the server of ready bytes; else 0
};

/// One way to send an array to a server and to get one back, over a connection of its own
/// that stays open. Used by the thread that made it. Failures are exceptions.
class Contender {
 public:
  virtual ~Contender() = default;
  /// Puts the input into the form in which a program that uses this contender has it at
  /// hand before a call. May be called again, with another workload.
  virtual void prepare(const Workload& workload) = 0;
  /// Sends the input, receives the answer and keeps it.
  virtual void call() = 0;
  /// Reads all of the answer: the dimensions and the elements of every array.
  /// @return Their Checksum.
  virtual uint64_t read() = 0;
  /// Frees the answer.
  virtual void release() = 0;
};

/// Every client program holds one contender; this makes it.
std::unique_ptr<Contender> makeContender(const Endpoint& endpoint);

}  // namespace orb::bench

#endif  // ORB_BENCH_CLIENT_CONTENDER_H_
