// SPDX-License-Identifier: MIT
#include "client/usage.h"

#include <malloc.h>
#include <sys/resource.h>

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace orb::bench {
namespace {

constexpr int64_t kNsPerSec = 1'000'000'000;
constexpr int64_t kNsPerUs = 1'000;

int64_t nanoseconds(const timeval& time) {
  return time.tv_sec * kNsPerSec + time.tv_usec * kNsPerUs;
}

uint64_t statusBytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    uint64_t kilobytes = 0;
    if (word == field + ":" && status >> kilobytes) return kilobytes * 1024;
  }
  throw std::runtime_error("/proc/self/status has no " + field);
}

}  // namespace

Usage currentUsage() {
  rusage usage;
  if (getrusage(RUSAGE_SELF, &usage) != 0) {
    throw std::system_error(errno, std::generic_category(), "getrusage");
  }
  return {nanoseconds(usage.ru_utime) + nanoseconds(usage.ru_stime),
          usage.ru_minflt + usage.ru_majflt};
}

MemoryPeak::MemoryPeak() {
  // What was freed so far but is still resident would be used again and not be counted.
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";  // sets VmHWM to VmRSS
  before_ = statusBytes("VmRSS");
}

uint64_t MemoryPeak::addedBytes() const { return statusBytes("VmHWM") - before_; }

}  // namespace orb::bench
