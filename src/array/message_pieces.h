// SPDX-License-Identifier: MIT
// A message on its way out. Its small parts are written into one block; its large lists
// stay where they are, and are read, and encoded where need be, while libcurl sends.
#ifndef ORB_ARRAY_MESSAGE_PIECES_H_
#define ORB_ARRAY_MESSAGE_PIECES_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "array/packed_varints.h"
#include "array/wire_format.h"

namespace orb::wire {

/// Whether a list of this size is lent. libcurl sends a smaller body in one packet with
/// the header lines, and wants it in one piece for that.
constexpr bool isLarge(size_t size) { return size >= size_t{64} << 10; }

/// The elements of a packed field.
struct PackedList {
  using Encode = uint8_t* (*)(const uint8_t* elements, size_t count, uint8_t* target);

  const uint8_t* elements;
  size_t count;
  size_t wireSize;  // bytes
  // Of elements that are encoded one by one; null where memory holds the wire form, whose
  // elements are then counted in bytes.
  Encode encode;
  size_t elementSize;
  size_t greatestWireSize;  // of one element

  /// The bytes that need not be written, because the list is lent.
  size_t lentSize() const { return isLarge(wireSize) ? wireSize : 0; }
};

/// A list whose memory is its wire form.
inline PackedList asStored(const void* bytes, size_t size) {
  return {static_cast<const uint8_t*>(bytes), size, size, nullptr, 1, 1};
}

/// The first `count` of 16-bit elements, which become varints of packedSize() bytes.
template <class Native>
PackedList asVarints(const std::vector<Native>& elements, size_t count, size_t wireSize);

/// The pieces of a message, in order; they are views of bytes that somebody else keeps.
class MessagePieces {
 public:
  /// Starts to write at the block, which has room for all that is not lent.
  void start(uint8_t* block);

  /// Where the next bytes go, and where they ended.
  uint8_t* end() const { return end_; }
  void setEnd(uint8_t* end) { end_ = end; }
  /// Writes a list, or lends it when it is large.
  void append(const PackedList& list);
  /// The same with tag and length before it, unless it is empty.
  void appendField(int field, const PackedList& list);
  /// Ends the writing.
  void finish();

  /// Whether nothing is lent: the message is then what was written, and not read here.
  bool isInBlock() const { return pieces_.empty(); }
  /// Copies the next bytes, `capacity` of them unless the message ends.
  size_t read(uint8_t* target, size_t capacity) noexcept;
  void rewind() noexcept;

 private:
  void addWritten();
  uint8_t* readFrom(const PackedList& list, uint8_t* target, const uint8_t* end) noexcept;

  uint8_t* written_ = nullptr;  // what is not yet among the pieces begins here
  uint8_t* end_ = nullptr;
  std::vector<PackedList> pieces_;
  size_t piece_ = 0;
  size_t done_ = 0;  // elements of that piece
  // Encoded, but without room in the last read.
  uint8_t spill_[kMaxVarintSize] = {};
  size_t spillBegin_ = 0;
  size_t spillEnd_ = 0;
};

}  // namespace orb::wire

#endif  // ORB_ARRAY_MESSAGE_PIECES_H_
