// SPDX-License-Identifier: MIT
#ifndef ORB_BENCH_CLIENT_CREW_H_
#define ORB_BENCH_CLIENT_CREW_H_

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "client/contender.h"

namespace orb::bench {

/// Contenders that call at the same time, each on its own thread: the first on the thread
/// that makes the crew, so that a crew of one needs no other.
class Crew {
 public:
  /// Connects all contenders, lets each make a small call, and prepares the workload.
  Crew(const Endpoint& endpoint, const std::string& workloadName, size_t size);
  ~Crew();
  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;

  struct Round {
    std::vector<int64_t> callNs;  // of every call of every contender
    uint64_t checksum;            // of one answer; 0 when they were not read
  };

  /// Every contender calls that often. Throws what any of them throws.
  Round run(size_t callsEach, bool read);

 private:
  explicit Crew(size_t size);

  using Job = std::function<void(size_t member)>;

  void runOnAll(const Job& job);
  void runOne(size_t member, const Job& job);
  void serveJobs(size_t member);

  std::vector<std::unique_ptr<Contender>> contenders_;
  std::mutex mutex_;
  std::condition_variable changed_;
  const Job* job_ = nullptr;  // null when the threads shall end
  size_t jobNumber_ = 0;
  size_t unfinished_ = 0;
  std::exception_ptr failure_;
  std::vector<std::thread> threads_;
};

}  // namespace orb::bench

#endif  // ORB_BENCH_CLIENT_CREW_H_
