// SPDX-License-Identifier: MIT
// The wire form of messages, byte by byte, where the message library's own is too slow.
#ifndef ORB_ARRAY_WIRE_FORMAT_H_
#define ORB_ARRAY_WIRE_FORMAT_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace orb::wire {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "Numbers go to the wire as they are in memory.");

/// Bytes that somebody else owns.
struct Slice {
  const uint8_t* data;
  size_t size;
};

enum WireType : uint32_t { kVarint = 0, kLengthDelimited = 2 };

constexpr uint32_t tagOf(int field, WireType type) {
  return static_cast<uint32_t>(field) << 3 | type;
}

constexpr size_t kMaxVarintSize = 10;

inline size_t varintSize(uint64_t value) {
  size_t size = 1;
  for (; value >= 0x80; value >>= 7) ++size;
  return size;
}

inline uint8_t* writeVarint(uint64_t value, uint8_t* target) {
  for (; value >= 0x80; value >>= 7) *target++ = static_cast<uint8_t>(value | 0x80);
  *target++ = static_cast<uint8_t>(value);
  return target;
}

/// The size of a length-delimited field of `size` bytes.
inline size_t fieldSize(int field, size_t size) {
  return varintSize(tagOf(field, kLengthDelimited)) + varintSize(size) + size;
}

/// Writes tag and length; the bytes follow.
inline uint8_t* writeFieldHead(int field, size_t size, uint8_t* target) {
  return writeVarint(size, writeVarint(tagOf(field, kLengthDelimited), target));
}

/// Reads what the message library itself would write, and nothing else: every function
/// says whether it found such bytes inside the slice. After a false the reader is of no
/// more use.
class Reader {
 public:
  explicit Reader(Slice bytes) : at_(bytes.data), end_(bytes.data + bytes.size) {}

  bool atEnd() const { return at_ == end_; }
  const uint8_t* position() const { return at_; }

  /// A varint in its shortest form.
  bool readVarint(uint64_t& value) {
    if (at_ != end_ && *at_ < 0x80) {
      value = *at_++;
      return true;
    }
    return readLongVarint(value);
  }

  /// A length and as many bytes.
  bool readLengthDelimited(Slice& bytes) {
    uint64_t length = 0;
    if (!readVarint(length) || length > static_cast<size_t>(end_ - at_)) return false;
    bytes = {at_, static_cast<size_t>(length)};
    at_ += length;
    return true;
  }

 private:
  bool readLongVarint(uint64_t& value) {
    value = 0;
    for (size_t i = 0; i < kMaxVarintSize && at_ != end_; ++i) {
      const uint8_t byte = *at_++;
      value |= uint64_t{byte & 0x7Fu} << (7 * i);
      if (byte >= 0x80) continue;
      const bool shortest = byte != 0;
      const bool fits = i + 1 < kMaxVarintSize || byte == 1;
      return shortest && fits;
    }
    return false;
  }

  const uint8_t* at_;
  const uint8_t* end_;
};

}  // namespace orb::wire

#endif  // ORB_ARRAY_WIRE_FORMAT_H_
