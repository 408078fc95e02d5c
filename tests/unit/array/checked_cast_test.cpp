// SPDX-License-Identifier: MIT
#include "array/checked_cast.h"

#include <gtest/gtest.h>

namespace orb::test {
namespace {

TEST(CheckedInt32, KeepsWhatFits) {
  EXPECT_EQ(checkedInt32(uint64_t{0}), 0);
  EXPECT_EQ(checkedInt32(uint64_t{2147483647}), 2147483647);
  EXPECT_EQ(checkedInt32(int64_t{2147483647}), 2147483647);
}

TEST(CheckedInt32, RefusesCountsAbove32Bits) {
  for (const uint64_t count : {uint64_t{2147483648}, uint64_t{1} << 32, ~uint64_t{0}}) {
    SCOPED_TRACE(count);
    try {
      checkedInt32(count);
      ADD_FAILURE() << "accepted";
    } catch (const boost::numeric::positive_overflow& overflow) {
      EXPECT_STREQ(overflow.what(), "bad numeric conversion: positive overflow");
    }
  }
}

}  // namespace
}  // namespace orb::test
