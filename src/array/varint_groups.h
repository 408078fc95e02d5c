// SPDX-License-Identifier: MIT
// Four varints of up to three bytes at a time, on processors that move bytes about by a
// table. ORB_VARINT_GROUPS is defined where the compiler can make such code.
#ifndef ORB_ARRAY_VARINT_GROUPS_H_
#define ORB_ARRAY_VARINT_GROUPS_H_

#ifdef __SSE2__
#define ORB_VARINT_GROUPS

#include <smmintrin.h>

#include <array>
#include <cstddef>
#include <cstdint>

#define ORB_SSE41 __attribute__((target("sse4.1")))

namespace orb::wire {

constexpr size_t kGroup = 4;
/// What is read and written for a group, however small it is.
constexpr size_t kGroupBytes = 16;

/// Where the bytes of a group go, between varints one behind the other and lanes of 32
/// bits each, and how many bytes the varints take.
struct GroupMove {
  alignas(16) std::array<uint8_t, kGroupBytes> sources{};
  uint8_t size = 0;
};

/// A place in the table of moves; a group that is none has size 0.
struct GroupShape {
  uint8_t move;
  uint8_t size;
};

namespace detail {

constexpr uint8_t kNoSource = 0x80;  // gives a byte of 0
constexpr size_t kMoves = 81;        // four varints of three sizes

constexpr std::array<GroupMove, kMoves> gatheringMoves() {
  std::array<GroupMove, kMoves> moves{};
  for (size_t i = 0; i < kMoves; ++i) {
    GroupMove& move = moves[i];
    size_t sizes = i;
    for (size_t lane = 0; lane < kGroup; ++lane, sizes /= 3) {
      for (size_t byte = 0; byte < 4; ++byte) {
        move.sources[4 * lane + byte] = byte <= sizes % 3 ? move.size++ : kNoSource;
      }
    }
  }
  return moves;
}

/// By the bits that say which varints take more than one byte, and which take three.
constexpr std::array<GroupMove, 256> scatteringMoves() {
  std::array<GroupMove, 256> moves{};
  for (size_t i = 0; i < moves.size(); ++i) {
    for (size_t lane = 0; lane < kGroup; ++lane) {
      const size_t size = 1 + (i >> lane & 1) + (i >> (kGroup + lane) & 1);
      for (size_t byte = 0; byte < size; ++byte) {
        moves[i].sources[moves[i].size++] = static_cast<uint8_t>(4 * lane + byte);
      }
    }
  }
  return moves;
}

/// By the bits that say which of twelve bytes end a varint.
constexpr std::array<GroupShape, 4096> groupShapes() {
  std::array<GroupShape, 4096> shapes{};
  for (size_t i = 0; i < shapes.size(); ++i) {
    size_t move = 0;
    size_t weight = 1;
    size_t begin = 0;
    for (size_t lane = 0; lane < kGroup; ++lane, weight *= 3) {
      size_t size = 1;
      while (size <= 3 && (i >> (begin + size - 1) & 1) == 0) ++size;
      if (size > 3) break;
      move += weight * (size - 1);
      begin += size;
    }
    const bool isGroup = weight == kMoves;
    if (isGroup) shapes[i] = {static_cast<uint8_t>(move), static_cast<uint8_t>(begin)};
  }
  return shapes;
}

constexpr std::array<GroupMove, kMoves> kGatheringMoves = gatheringMoves();
constexpr std::array<GroupMove, 256> kScatteringMoves = scatteringMoves();
constexpr std::array<GroupShape, 4096> kGroupShapes = groupShapes();

ORB_SSE41 inline __m128i moved(__m128i bytes, const GroupMove& move) {
  const auto* sources = reinterpret_cast<const __m128i*>(move.sources.data());
  return _mm_shuffle_epi8(bytes, _mm_load_si128(sources));
}

}  // namespace detail

/// Whether this processor can run the functions below.
inline bool hasVarintGroups() {
  static const bool has = __builtin_cpu_supports("sse4.1");
  return has;
}

/// Writes four elements and gives their end; kGroupBytes at the target are overwritten.
ORB_SSE41 inline uint8_t* writeGroup(const void* elements, uint8_t* target) {
  const __m128i units =
      _mm_cvtepu16_epi32(_mm_loadl_epi64(static_cast<const __m128i*>(elements)));
  const auto bitsOf = [&](int mask) ORB_SSE41 {
    return _mm_and_si128(units, _mm_set1_epi32(mask));
  };
  const __m128i hasTwo = _mm_cmpgt_epi32(units, _mm_set1_epi32(0x7F));
  const __m128i hasThree = _mm_cmpgt_epi32(units, _mm_set1_epi32(0x3FFF));
  const __m128i more = _mm_or_si128(_mm_and_si128(hasTwo, _mm_set1_epi32(0x80)),
                                    _mm_and_si128(hasThree, _mm_set1_epi32(0x8000)));
  const __m128i spread =
      _mm_or_si128(_mm_or_si128(bitsOf(0x7F), _mm_slli_epi32(bitsOf(0x3F80), 1)),
                   _mm_or_si128(_mm_slli_epi32(bitsOf(0xC000), 2), more));
  const int index = _mm_movemask_ps(_mm_castsi128_ps(hasTwo)) |
                    _mm_movemask_ps(_mm_castsi128_ps(hasThree)) << kGroup;
  const GroupMove& move = detail::kScatteringMoves[static_cast<size_t>(index)];
  _mm_storeu_si128(reinterpret_cast<__m128i*>(target), detail::moved(spread, move));
  return target + move.size;
}

/// Reads groups from a block of 64 bytes, of which bit i of `ends` says whether byte i
/// ends a varint, and gives their end: the start where the first varints are no group.
template <class Native>
ORB_SSE41 const uint8_t* readGroups(const uint8_t* block, uint64_t ends,
                                    Native*& target) {
  const uint8_t* at = block;
  while (at <= block + 64 - kGroupBytes) {
    const GroupShape shape = detail::kGroupShapes[ends & 0xFFF];
    if (shape.size == 0) break;
    const __m128i lanes =
        detail::moved(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)),
                      detail::kGatheringMoves[shape.move]);
    const auto bitsOf = [](__m128i shifted, int mask) ORB_SSE41 {
      return _mm_and_si128(shifted, _mm_set1_epi32(mask));
    };
    const __m128i units = _mm_or_si128(
        bitsOf(lanes, 0x7F), _mm_or_si128(bitsOf(_mm_srli_epi32(lanes, 1), 0x3F80),
                                          bitsOf(_mm_srli_epi32(lanes, 2), 0xC000)));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(target), _mm_packus_epi32(units, units));
    target += kGroup;
    at += shape.size;
    ends >>= shape.size;
  }
  return at;
}

}  // namespace orb::wire

#undef ORB_SSE41

#endif  // __SSE2__
#endif  // ORB_ARRAY_VARINT_GROUPS_H_
