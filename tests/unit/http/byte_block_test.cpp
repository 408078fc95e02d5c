// SPDX-License-Identifier: MIT
#include "http/byte_block.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>

#include "support/failing_new.h"

namespace orb::test {
namespace {

constexpr size_t kMiB = size_t{1} << 20;

TEST(ByteBlock, StartsWithNothing) {
  const ByteBlock block;
  EXPECT_EQ(block.data(), nullptr);
  EXPECT_EQ(block.capacity(), 0u);
}

TEST(ByteBlock, KeepsTheUsedBytesWhenItGrows) {
  ByteBlock block;
  block.reserve(3, 0);
  std::memcpy(block.data(), "abc", 3);
  block.reserve(kMiB, 3);
  EXPECT_EQ(block.capacity(), kMiB);
  EXPECT_EQ(std::memcmp(block.data(), "abc", 3), 0);
}

TEST(ByteBlock, StaysWhereItIsLargeEnough) {
  ByteBlock block;
  block.reserve(100, 0);
  const uint8_t* const before = block.data();
  block.reserve(99, 0);
  block.reserve(100, 50);
  EXPECT_EQ(block.data(), before);
  EXPECT_EQ(block.capacity(), 100u);
}

struct Trim {
  size_t capacity;
  size_t used;
  bool kept;
};

class ByteBlockTrim : public ::testing::TestWithParam<Trim> {};

TEST_P(ByteBlockTrim, ReleasesWhatIsFarTooLarge) {
  ByteBlock block;
  block.reserve(GetParam().capacity, 0);
  block.trim(GetParam().used);
  EXPECT_EQ(block.capacity(), GetParam().kept ? GetParam().capacity : 0);
}

INSTANTIATE_TEST_SUITE_P(Sizes, ByteBlockTrim,
                         ::testing::Values(Trim{kMiB, 0, true}, Trim{kMiB + 1, 0, false},
                                           Trim{32 * kMiB, 2 * kMiB, true},
                                           Trim{32 * kMiB, 2 * kMiB - 1, false},
                                           Trim{64 * kMiB, 64 * kMiB, true},
                                           Trim{64 * kMiB + 1, 64 * kMiB, false}));

TEST(KeptBlock, IsGivenToOneAtATime) {
  KeptBlock kept;
  {
    const auto block = kept.take();
    ASSERT_NE(block, nullptr);
    EXPECT_NE(kept.take(), block);
  }
  const ByteBlock* const now = kept.take().get();
  EXPECT_EQ(kept.take().get(), now);
}

TEST(KeptBlock, IsKeptWhenMemoryEnds) {
  KeptBlock kept;
  const auto block = kept.take();
  FailingNew failure = FailingNew::always();
  EXPECT_THROW(kept.take(), std::bad_alloc);
  failure.stop();
  EXPECT_EQ(block.use_count(), 2);
}

}  // namespace
}  // namespace orb::test
