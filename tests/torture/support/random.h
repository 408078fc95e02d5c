// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_SUPPORT_RANDOM_H_
#define ORB_TESTS_TORTURE_SUPPORT_RANDOM_H_

#include <cstdint>
#include <random>

namespace orb::torture {

/// The choices of one item. The same on every platform, unlike std::distributions.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}
  std::uint64_t number() { return engine_(); }
  std::uint64_t below(std::uint64_t limit) { return engine_() % limit; }
  bool chance(unsigned percent) { return below(100) < percent; }

 private:
  std::mt19937_64 engine_;
};

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_SUPPORT_RANDOM_H_
