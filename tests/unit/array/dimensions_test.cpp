// SPDX-License-Identifier: MIT
#include "array/dimensions.h"

#include <gmock/gmock.h>

#include <boost/numeric/conversion/cast.hpp>
#include <stdexcept>
#include <vector>

#include "unit/array/message.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

using Extents = std::vector<size_t>;

KALDEX_Array withDimensions(const Extents& extents) {
  KALDEX_Array message;
  for (const size_t extent : extents) message.add_dimension(extent);
  return message;
}

TEST(NumberOfElements, IsTheProductOfTheExtents) {
  const struct {
    Extents extents;
    uint64_t count;
  } rows[] = {
      {{}, 0},
      {{0}, 0},
      {{3}, 3},
      {{2, 3, 4}, 24},
      {{5, 0, 7}, 0},
      {{1, 1, 1, 1}, 1},
      {{4294967296, 4294967295}, 18446744069414584320u},
      {{4294967296, 4294967296}, 0},
      {{9223372036854775809u, 2}, 2},
  };
  for (const auto& [extents, count] : rows) {
    EXPECT_EQ(numberOfElements(withDimensions(extents)), count)
        << ::testing::PrintToString(extents);
  }
}

TEST(Extent, IsZeroWhereThereIsNone) {
  const KALDEX_Array message = withDimensions({5, 4294967296, 7});
  EXPECT_EQ(extent(message, 0), 5u);
  EXPECT_EQ(extent(message, 1), 4294967296u);
  EXPECT_EQ(extent(message, 2), 7u);
  EXPECT_EQ(extent(message, 3), 0u);
  EXPECT_EQ(extent(KALDEX_Array(), 0), 0u);
}

TEST(SetDimensions, ReplacesTheList) {
  const struct {
    Extents extents;
    Extents list;
  } rows[] = {
      {{5}, {5, 1}},
      {{0}, {0, 1}},
      {{1}, {1, 1}},
      {{2, 3}, {2, 3}},
      {{2, 3, 1, 1}, {2, 3, 1, 1}},
      {{0, 0}, {0, 0}},
      {{7, 0, 18446744073709551615u}, {7, 0, 18446744073709551615u}},
  };
  for (const auto& [extents, list] : rows) {
    SCOPED_TRACE(::testing::PrintToString(extents));
    for (const Extents& before : {Extents{}, Extents{9, 8, 7}}) {
      KALDEX_Array message = withDimensions(before);
      setDimensions(message, extents.data(), extents.size());
      EXPECT_THAT(message.dimension(), ElementsAreArray(list));
    }
  }
}

TEST(SetDimensions, TakesExtentsOutOfTheListItself) {
  KALDEX_Array message = withDimensions({2, 3, 4, 5});
  setDimensions(message, message.dimension().data() + 1, 3);
  EXPECT_THAT(message.dimension(), ElementsAre(3, 4, 5));
  setDimensions(message, message.dimension().data(), 2);
  EXPECT_THAT(message.dimension(), ElementsAre(3, 4));
  setDimensions(message, message.dimension().data() + 1, 1);
  EXPECT_THAT(message.dimension(), ElementsAre(4, 1));
}

TEST(SetDimensions, LeavesTheElementsAlone) {
  KALDEX_Array message =
      parsed("type: DOUBLE dimension: [1, 2] qxdouble { elements: [1, 2] }");
  const size_t extents[] = {3, 3};
  setDimensions(message, extents, 2);
  EXPECT_THAT(message,
              IsMessage("type: DOUBLE dimension: [3, 3] qxdouble { elements: [1, 2] }"));
}

TEST(SetDimensions, RefusesNoneAndKeepsTheList) {
  KALDEX_Array message = withDimensions({2, 3});
  const size_t extents[] = {1};
  try {
    setDimensions(message, extents, 0);
    FAIL() << "accepted";
  } catch (const std::invalid_argument& refusal) {
    EXPECT_STREQ(refusal.what(), "Number of dimensions must be greater than zero.");
  }
  EXPECT_THAT(message.dimension(), ElementsAre(2, 3));
}

TEST(SetDimensions, RefusesCountsAbove32BitsWithTheListEmptied) {
  const size_t extents[] = {4, 5};
  for (const size_t count : {size_t{2147483648}, (size_t{1} << 32) + 2, ~size_t{0}}) {
    SCOPED_TRACE(count);
    KALDEX_Array message = withDimensions({2, 3});
    EXPECT_THROW(setDimensions(message, extents, count),
                 boost::numeric::positive_overflow);
    EXPECT_THAT(message.dimension(), IsEmpty());
  }
}

}  // namespace
}  // namespace orb::test
