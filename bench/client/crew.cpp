// SPDX-License-Identifier: MIT
#include "client/crew.h"

#include <chrono>
#include <stdexcept>

namespace orb::bench {
namespace {

constexpr char kWarmUp[] = "double-1x1";

std::vector<int64_t> timeCalls(Contender& contender, size_t calls, bool read,
                               uint64_t& checksum) {
  std::vector<int64_t> callNs;
  callNs.reserve(calls);
  for (size_t i = 0; i < calls; ++i) {
    const auto start = std::chrono::steady_clock::now();
    contender.call();
    if (read) checksum = contender.read();
    contender.release();
    const std::chrono::nanoseconds time = std::chrono::steady_clock::now() - start;
    callNs.push_back(time.count());
  }
  return callNs;
}

}  // namespace

Crew::Crew(size_t size) : contenders_(size) {
  for (size_t member = 1; member < size; ++member) {
    threads_.emplace_back([this, member] { serveJobs(member); });
  }
}

// The threads exist before anything can fail: the destructor ends them in either case.
Crew::Crew(const Endpoint& endpoint, const std::string& workloadName, size_t size)
    : Crew(size) {
  const Workload warmUp = workloadNamed(kWarmUp);
  const Workload workload = workloadNamed(workloadName);
  runOnAll([&](size_t member) {
    contenders_[member] = makeContender(endpoint);
    contenders_[member]->prepare(warmUp);
    contenders_[member]->call();
    contenders_[member]->read();
    contenders_[member]->release();
    contenders_[member]->prepare(workload);
  });
}

Crew::~Crew() {
  runOnAll([this](size_t member) { contenders_[member].reset(); });
  {
    const std::lock_guard lock(mutex_);
    job_ = nullptr;
    ++jobNumber_;
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

Crew::Round Crew::run(size_t callsEach, bool read) {
  std::vector<std::vector<int64_t>> callNs(contenders_.size());
  std::vector<uint64_t> checksums(contenders_.size());
  runOnAll([&](size_t member) {
    callNs[member] = timeCalls(*contenders_[member], callsEach, read, checksums[member]);
  });
  Round round{{}, checksums.front()};
  for (const std::vector<int64_t>& one : callNs) {
    round.callNs.insert(round.callNs.end(), one.begin(), one.end());
  }
  return round;
}

void Crew::runOnAll(const Job& job) {
  {
    const std::lock_guard lock(mutex_);
    job_ = &job;
    ++jobNumber_;
    unfinished_ = contenders_.size();
    failure_ = nullptr;
  }
  changed_.notify_all();
  runOne(0, job);
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return unfinished_ == 0; });
  if (failure_) std::rethrow_exception(failure_);
}

void Crew::runOne(size_t member, const Job& job) {
  std::exception_ptr failure;
  try {
    job(member);
  } catch (...) {
    failure = std::current_exception();
  }
  const std::lock_guard lock(mutex_);
  if (failure) failure_ = failure;
  if (--unfinished_ == 0) changed_.notify_all();
}

void Crew::serveJobs(size_t member) {
  for (size_t done = 0;;) {
    const Job* job = nullptr;
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [&] { return jobNumber_ > done; });
      done = jobNumber_;
      job = job_;
    }
    if (job == nullptr) return;
    runOne(member, *job);
  }
}

}  // namespace orb::bench
