// SPDX-License-Identifier: MIT
// Random arrays, as messages and as bytes on the way from a server.
#ifndef TESTS_UNIT_WIRE_RANDOM_ARRAY_H_
#define TESTS_UNIT_WIRE_RANDOM_ARRAY_H_

#include <cstdint>
#include <random>
#include <string>

#include "array/payload.h"
#include "array/wire_format.h"

namespace orb::test {

inline wire::Slice sliceOf(const std::string& bytes) {
  return {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()};
}

/// Seeded, so that a failure can be repeated.
class RandomArrays {
 public:
  explicit RandomArrays(uint32_t seed) : engine_(seed) {}

  /// A number below `bound`.
  uint32_t below(uint32_t bound) { return static_cast<uint32_t>(engine_() % bound); }
  bool oneIn(uint32_t n) { return below(n) == 0; }

  /// An array of any type that a client can hold. An odd one may also carry fields that
  /// clients do not use, unknown fields, or lists that do not match its shape.
  KALDEX_Array array(bool mayBeOdd, int depth = 0);

  /// A dense array of tens of thousands of elements, also an odd one.
  KALDEX_Array largeArray();
  /// An array of a dense type and so many elements.
  KALDEX_Array arrayOf(QXType type, uint32_t count);

  /// The bytes cut, or with some of them changed.
  std::string damaged(std::string bytes);

 private:
  void fillPayload(KALDEX_Array& message, uint32_t count, int depth);
  void makeOdd(KALDEX_Array& message);
  void fillSparse(KALDEX_Array::Sparse& sparse, uint32_t count);
  uint64_t number();
  std::string text(uint32_t length);

  std::mt19937_64 engine_;
};

}  // namespace orb::test

#endif  // TESTS_UNIT_WIRE_RANDOM_ARRAY_H_
