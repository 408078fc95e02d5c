// SPDX-License-Identifier: MIT
#ifndef ORB_BENCH_VALUE_CHECKSUM_H_
#define ORB_BENCH_VALUE_CHECKSUM_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace orb::bench {

/// Adds up everything that a contender reads, so that no compiler leaves the reading out
/// and contenders that read the same array agree. Doubles count as their bit patterns:
/// integers add up in any order, and therefore many at a time.
class Checksum {
 public:
  template <class Element>
  void add(Element element) {
    if constexpr (std::is_same_v<Element, double>) {
      uint64_t bits;
      std::memcpy(&bits, &element, sizeof bits);
      sum_ += bits;
    } else {
      sum_ += static_cast<uint64_t>(element);
    }
  }

  template <class Element>
  void addAll(const Element* first, size_t count) {
    for (size_t i = 0; i < count; ++i) add(first[i]);
  }

  template <class Range>
  void addAll(const Range& range) {
    for (const auto& element : range) add(element);
  }

  uint64_t sum() const { return sum_; }

 private:
  uint64_t sum_ = 0;
};

}  // namespace orb::bench

#endif  // ORB_BENCH_VALUE_CHECKSUM_H_
