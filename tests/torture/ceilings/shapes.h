// SPDX-License-Identifier: MIT
// Bodies of replies in which one thing is there as often as the size allows.
#ifndef ORB_TESTS_TORTURE_CEILINGS_SHAPES_H_
#define ORB_TESTS_TORTURE_CEILINGS_SHAPES_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orb::torture {

struct Body {
  std::string bytes;
  std::uint32_t outputs;  // that a call has to want
};

/// How the bytes travel: as a body with its length or in a chunk, or as the lines behind
/// the last chunk of a small reply.
enum class Framing { kAnnounced, kChunked, kTrailer };

struct Shape {
  std::string name;
  /// Gives a body of about this many bytes.
  std::function<Body(std::size_t bytes)> make;
  /// The most memory per byte of the body that a client may need at any time while it
  /// receives, and while it receives and then reads every element.
  double receivingCeiling;
  double readingCeiling;
  Framing framing = Framing::kAnnounced;
};

const std::vector<Shape>& shapes();
std::string replyOf(Framing framing, const std::string& bytes);

/// A reply of one output: a number inside so many cells, or inside cells and structs by
/// turns.
enum class Nesting { kCells, kCellsAndStructs };
Body nested(Nesting nesting, int depth);
/// Nesting that a client does not look into: groups that it does not know, objects in
/// properties of objects, arrays in shared data of arrays.
Body nestedGroups(int depth);
Body nestedObjects(int depth);
Body nestedSharedData(int depth);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_CEILINGS_SHAPES_H_
