// SPDX-License-Identifier: MIT
#include "torture/replies/item.h"

#include <vector>

namespace orb::torture {
namespace {

/// An item of a fixed answer.
struct Entry {
  std::size_t answer;
  Framing framing;
  Road road;
  Damage damage;
  std::size_t place;
};

/// Heads differ little: those of a few replies come before the others.
bool isFlippedWhole(const Answer& answer) {
  for (const char* name : {"double", "three outputs", "error", "404 Not Found"}) {
    if (answer.name == name) return true;
  }
  return false;
}

std::vector<Entry> makeEntries() {
  std::vector<Entry> entries;
  std::vector<Entry> last;
  for (std::size_t i = 0; i < fixedAnswers().size(); ++i) {
    const Answer& answer = fixedAnswers()[i];
    for (const Framing framing : kFramings) {
      const Reply reply = framed(answer, framing);
      const bool flipsHead = isFlippedWhole(answer);
      const bool flipsBody = flipsHead || framing == Framing::kLength;
      entries.push_back({i, framing, Road::kReused, Damage::kDripped, 0});
      for (std::size_t n = 0; n <= reply.bytes.size(); ++n) {
        entries.push_back({i, framing, Road::kFirst, Damage::kCut, n});
        if (n < reply.head) {
          entries.push_back({i, framing, Road::kReused, Damage::kCut, n});
        }
      }
      for (std::size_t bit = 0; bit < 8 * reply.bytes.size(); ++bit) {
        const bool isHead = bit < 8 * reply.head;
        const bool isSoon = isHead ? flipsHead : flipsBody;
        (isSoon ? entries : last)
            .push_back({i, framing, Road::kFirst, Damage::kFlipped, bit});
      }
    }
  }
  entries.insert(entries.end(), last.begin(), last.end());
  return entries;
}

const std::vector<Entry>& entries() {
  static const std::vector<Entry> all = makeEntries();
  return all;
}

Item randomItem(std::uint64_t seed) {
  Random random(seed);
  Item item{randomAnswer(random), kFramings[below(random, 3)],
            below(random, 2) == 0 ? Road::kFirst : Road::kReused, Damage::kNone, 0};
  const std::size_t size = item.reply().bytes.size();
  const std::uint64_t choice = below(random, 20);
  if (choice == 0 || (choice < 3 && size > 1000)) return item;
  if (choice < 3) {
    item.damage = Damage::kDripped;
  } else if (choice < 9) {
    item.damage = Damage::kCut;
    item.place = below(random, size + 1);
  } else {
    item.damage = Damage::kFlipped;
    item.place = below(random, 8 * size);
  }
  return item;
}

}  // namespace

std::string Item::describe() const {
  constexpr const char* kFramingNames[] = {"with a length", "chunked", "until the end"};
  constexpr const char* kRoadNames[] = {"first", "reused"};
  constexpr const char* kDamageNames[] = {"whole", "dripped", "cut at byte",
                                          "flipped at bit"};
  return answer.name + ", " + kFramingNames[static_cast<int>(framing)] + ", on a " +
         kRoadNames[static_cast<int>(road)] + " connection, " +
         kDamageNames[static_cast<int>(damage)] + " " + std::to_string(place);
}

Item itemOf(std::uint64_t seed) {
  if (seed == 0 || seed > fixedItems()) return randomItem(seed);
  const Entry& entry = entries()[seed - 1];
  return {fixedAnswers()[entry.answer], entry.framing, entry.road, entry.damage,
          entry.place};
}

std::uint64_t fixedItems() { return entries().size(); }

}  // namespace orb::torture
