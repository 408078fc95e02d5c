// SPDX-License-Identifier: MIT
#include "array/packed_varints.h"

#include <algorithm>
#include <type_traits>

#include "array/varint_groups.h"

namespace orb::wire {
namespace {

// Elements or bytes that are looked at together. Text is mostly ASCII and small integers
// are common: blocks in which every element takes one byte are moved as a whole.
constexpr size_t kBlock = 64;
// The most that writing a block writes behind its end.
constexpr size_t kScratch = 12;

bool isNegative(int16_t element) { return element < 0; }
bool isNegative(uint16_t) { return false; }
bool isNegative(char16_t) { return false; }

// Sums in 16 bits, which the compiler does many at a time.
template <class Element, class Count>
size_t sum(const Element* elements, size_t size, Count countOf) {
  constexpr size_t kNoOverflow = UINT16_MAX / kMaxVarintSize;
  size_t total = 0;
  for (size_t i = 0; i < size; i += kNoOverflow) {
    const size_t end = std::min(size, i + kNoOverflow);
    uint16_t part = 0;
    for (size_t j = i; j < end; ++j)
      part = static_cast<uint16_t>(part + countOf(elements[j]));
    total += part;
  }
  return total;
}

/// A varint of up to three bytes, lowest first, as a number; the bytes behind it are 0.
uint32_t spread(uint16_t element) {
  const uint32_t value = element;
  const uint32_t more = (value >= 0x80 ? 0x80u : 0) | (value >= 0x4000 ? 0x8000u : 0);
  return (value & 0x7F) | (value & 0x3F80) << 1 | (value & 0xC000) << 2 | more;
}

uint32_t spreadSize(uint16_t element) {
  return 1u + (element >= 0x80) + (element >= 0x4000);
}

/// Writes a block of varints of up to three bytes. Nothing branches on their sizes, which
/// in random data no processor can guess. Up to kScratch bytes behind the last are
/// scratch.
template <class Native>
uint8_t* writeBlock(const Native* elements, uint8_t* target) {
#ifdef ORB_VARINT_GROUPS
  if (hasVarintGroups()) {
    for (size_t i = 0; i < kBlock; i += kGroup) target = writeGroup(elements + i, target);
    return target;
  }
#endif
  uint32_t bytes[kBlock];
  uint32_t sizes[kBlock];
  for (size_t i = 0; i < kBlock; ++i) {
    bytes[i] = spread(static_cast<uint16_t>(elements[i]));
    sizes[i] = spreadSize(static_cast<uint16_t>(elements[i]));
  }
  for (size_t i = 0; i < kBlock; i += 2) {
    const uint64_t pair = bytes[i] | uint64_t{bytes[i + 1]} << (8 * sizes[i]);
    std::memcpy(target, &pair, sizeof pair);
    target += sizes[i] + sizes[i + 1];
  }
  return target;
}

/// Writes a varint of up to three bytes, or of ten for a negative element; up to nine
/// bytes behind it are scratch.
uint8_t* writeSigned(int16_t element, uint8_t* target) {
  const auto bits = static_cast<uint16_t>(element);
  const auto sign = static_cast<uint64_t>(int64_t{element} >> 16);  // all bits, or none
  const uint64_t low = spread(bits) | sign << 18;
  std::memcpy(target, &low, sizeof low);
  constexpr uint8_t kEndOfNegative[] = {0xFF, 0x01};
  std::memcpy(target + sizeof low, kEndOfNegative, sizeof kEndOfNegative);
  return target + spreadSize(bits) + (sign & (kMaxVarintSize - 3));
}

template <class Native>
uint16_t allBits(const Native* block) {
  uint16_t bits = 0;
  for (size_t i = 0; i < kBlock; ++i) bits |= static_cast<uint16_t>(block[i]);
  return bits;
}

/// Bit i says whether byte i of a block ends a varint.
uint64_t endsOfVarints(const uint8_t* block) {
  uint64_t ends = 0;
#ifdef ORB_VARINT_GROUPS
  for (size_t i = 0; i < kBlock; i += 16) {
    const __m128i part = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + i));
    ends |= uint64_t{static_cast<uint16_t>(~_mm_movemask_epi8(part))} << i;
  }
#else
  for (size_t i = 0; i < kBlock; ++i) ends |= uint64_t{block[i] < 0x80} << i;
#endif
  return ends;
}

/// Reads one varint of any length the message library takes; null when there is none.
const uint8_t* readOne(const uint8_t* at, const uint8_t* end, uint16_t& bits) {
  uint64_t value = 0;
  for (size_t i = 0; i < kMaxVarintSize && at != end; ++i) {
    const uint8_t byte = *at++;
    value |= uint64_t{byte & 0x7Fu} << (7 * i);
    if (byte < 0x80) {
      bits = static_cast<uint16_t>(value);
      return at;
    }
  }
  return nullptr;
}

/// The low 16 bits of a varint that a word begins with.
uint16_t gather(uint32_t word, size_t size) {
  word &= 0xFFFFFFu >> 8 * (3 - std::min(size, size_t{3}));
  return static_cast<uint16_t>((word & 0x7F) | (word >> 1 & 0x3F80) |
                               (word >> 2 & 0xC000));
}

/// Reads the varints that begin in a block, except in its last three bytes, as far as
/// they end in it, and gives their end.
template <class Native>
const uint8_t* readBlock(const uint8_t* block, Native*& target) {
  uint64_t ends = endsOfVarints(block);
#ifdef ORB_VARINT_GROUPS
  if (hasVarintGroups()) {
    const uint8_t* const end = readGroups(block, ends, target);
    if (end != block) return end;
  }
#endif
  const uint8_t* start = block;
  for (; ends != 0; ends &= ends - 1) {
    const uint8_t* const next = block + __builtin_ctzll(ends) + 1;
    const size_t size = static_cast<size_t>(next - start);
    uint32_t word = 0;
    if (size > kMaxVarintSize || start > block + kBlock - sizeof word) break;
    std::memcpy(&word, start, sizeof word);
    *target++ = static_cast<Native>(gather(word, size));
    start = next;
  }
  return start;
}

}  // namespace

template <class Native>
size_t packedSize(const Native* elements, size_t count) {
  return sum(elements, count, [](Native element) {
    const auto bits = static_cast<uint16_t>(element);
    const int unsignedSize = 1 + (bits >= 0x80) + (bits >= 0x4000);
    return unsignedSize + isNegative(element) * (int{kMaxVarintSize} - 3);
  });
}

template <class Native>
uint8_t* writePacked(const Native* elements, size_t count, uint8_t* target) {
  size_t i = 0;
  // As many elements stay behind every block as scratch bytes may be written.
  for (; count - i >= kBlock + kScratch; i += kBlock) {
    const uint16_t bits = allBits(elements + i);
    if (bits < 0x80) {
      std::transform(elements + i, elements + i + kBlock, target,
                     [](Native element) { return static_cast<uint8_t>(element); });
      target += kBlock;
    } else if (isNegative(static_cast<Native>(bits))) {
      for (size_t j = i; j < i + kBlock; ++j) {
        target = writeSigned(static_cast<int16_t>(elements[j]), target);
      }
    } else {
      target = writeBlock(elements + i, target);
    }
  }
  for (; i < count; ++i) {
    target = writeVarint(static_cast<uint64_t>(int64_t{elements[i]}), target);
  }
  return target;
}

template <class Native>
bool readPacked(Slice bytes, std::vector<Native>& elements) {
  elements.resize(sum(bytes.data, bytes.size, [](uint8_t byte) { return byte < 0x80; }));
  const uint8_t* at = bytes.data;
  const uint8_t* const end = at + bytes.size;
  Native* target = elements.data();
  while (at != end) {
    const bool isBlock = end - at >= static_cast<ptrdiff_t>(kBlock);
    if (isBlock && endsOfVarints(at) == UINT64_MAX) {
      target = std::copy_n(at, kBlock, target);
      at += kBlock;
      continue;
    }
    if (isBlock) {
      const uint8_t* const start = at;
      at = readBlock(at, target);
      if (at != start) continue;
    }
    uint16_t bits = 0;
    at = readOne(at, end, bits);
    if (at == nullptr) return false;
    *target++ = static_cast<Native>(bits);
  }
  return true;
}

template size_t packedSize(const uint16_t*, size_t);
template size_t packedSize(const int16_t*, size_t);
template size_t packedSize(const char16_t*, size_t);
template uint8_t* writePacked(const uint16_t*, size_t, uint8_t*);
template uint8_t* writePacked(const int16_t*, size_t, uint8_t*);
template uint8_t* writePacked(const char16_t*, size_t, uint8_t*);
template bool readPacked(Slice, std::vector<uint16_t>&);
template bool readPacked(Slice, std::vector<int16_t>&);
template bool readPacked(Slice, std::vector<char16_t>&);

}  // namespace orb::wire
