// SPDX-License-Identifier: MIT
// Mutations that keep most inputs valid replies, for the fuzzer that links this.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "orb.client.KALDEXResult.pb.h"
#include "torture/fuzz/mutate_message.h"
#include "unit/wire/random_array.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

namespace {

using orb::client::KALDEX_Result;
using orb::torture::MessageMutator;

size_t place(const std::string& bytes, uint8_t* data, size_t maxSize) {
  const size_t size = std::min(bytes.size(), maxSize);
  std::memcpy(data, bytes.data(), size);
  return size;
}

/// Bytes that hold an array, or all, twice, the second time changed: nothing is in order
/// then.
std::string doubled(const KALDEX_Result& result, MessageMutator& mutator) {
  KALDEX_Result another = result;
  mutator.mutate(another);
  if (another.lhs_size() == 0 || result.lhs_size() == 0) {
    return another.SerializeAsString() + result.SerializeAsString();
  }
  KALDEX_Result merged;
  merged.GetReflection()->MutableUnknownFields(&merged)->AddLengthDelimited(
      KALDEX_Result::kLhsFieldNumber,
      another.lhs(0).SerializeAsString() + result.lhs(0).SerializeAsString());
  return merged.SerializeAsString();
}

/// Adds an array whose parts fit together, as an output or somewhere inside.
void addArray(KALDEX_Result& result, MessageMutator& mutator, unsigned seed) {
  const auto array = orb::test::RandomArrays(seed).array(mutator.oneIn(4));
  if (mutator.oneIn(2)) {
    mutator.cross(result, array);
  } else {
    *result.add_lhs() = array;
  }
}

}  // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize,
                                          unsigned seed) {
  MessageMutator mutator(seed);
  KALDEX_Result result;
  const bool isReply = result.ParseFromArray(data, static_cast<int>(size));
  if (mutator.oneIn(16) || (!isReply && mutator.oneIn(2))) {
    return LLVMFuzzerMutate(data, size, maxSize);
  }
  if (mutator.oneIn(32)) return place(doubled(result, mutator), data, maxSize);
  if (mutator.oneIn(8)) addArray(result, mutator, seed);
  for (uint32_t left = 1 + mutator.below(4); left > 0; --left) mutator.mutate(result);
  if (mutator.oneIn(8)) mutator.damage(result);
  return place(result.SerializeAsString(), data, maxSize);
}

extern "C" size_t LLVMFuzzerCustomCrossOver(const uint8_t* first, size_t firstSize,
                                            const uint8_t* second, size_t secondSize,
                                            uint8_t* out, size_t maxSize, unsigned seed) {
  MessageMutator mutator(seed);
  KALDEX_Result result;
  KALDEX_Result other;
  static_cast<void>(result.ParseFromArray(first, static_cast<int>(firstSize)));
  static_cast<void>(other.ParseFromArray(second, static_cast<int>(secondSize)));
  mutator.cross(result, other);
  return place(result.SerializeAsString(), out, maxSize);
}
