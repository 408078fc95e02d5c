// SPDX-License-Identifier: MIT
// Which reply is damaged in which way.
#ifndef ORB_TESTS_TORTURE_REPLIES_ITEM_H_
#define ORB_TESTS_TORTURE_REPLIES_ITEM_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "torture/replies/answer.h"

namespace orb::torture {

enum class Damage { kNone, kDripped, kCut, kFlipped };

/// Whether the reply comes on a new connection or on one that was used before.
enum class Road { kFirst, kReused };

struct Item {
  Answer answer;
  Framing framing;
  Road road;
  Damage damage;
  std::size_t place;  // bytes before a cut, or the number of the bit that is flipped

  Reply reply() const { return framed(answer, framing); }
  std::string describe() const;
};

/// The item that a seed, counted from 1, gives. The first fixedItems() cut every fixed
/// answer at every byte, drip it and flip every bit of it; those behind are random.
Item itemOf(std::uint64_t seed);
std::uint64_t fixedItems();

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_REPLIES_ITEM_H_
