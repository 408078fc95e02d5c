// SPDX-License-Identifier: MIT
// Arrays within arrays: within themselves, within each other and very deep.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include "support/array.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

Array elementOf(orbArray cell, size_t index = 0) {
  return Array(orbGetCell(cell, index));
}

double scalarAt(orbArray cell, size_t index = 0) {
  return orbGetScalar(elementOf(cell, index));
}

TEST(SetCell, OfACellIntoItselfStoresACopyOfWhatItWas) {
  const Array cell = cellRow(doubleRow({1}), doubleRow({2}));
  orbSetCell(cell, 0, cell);
  EXPECT_EQ(scalarAt(cell, 1), 2);
  const Array inner = elementOf(cell);
  EXPECT_THAT(dimensionsOf(inner), ElementsAre(1, 2));
  EXPECT_EQ(scalarAt(inner, 0), 1);
  EXPECT_EQ(scalarAt(inner, 1), 2);
}

TEST(SetCell, OfACellIntoItselfSharesNothingWithTheCopy) {
  const Array cell = cellRow(doubleRow({1}), doubleRow({2}));
  orbSetCell(cell, 0, cell);
  orbSetCell(cell, 1, doubleRow({3}));
  orbSetN(cell, 3);
  EXPECT_THAT(dimensionsOf(elementOf(cell)), ElementsAre(1, 2));
  EXPECT_EQ(scalarAt(elementOf(cell), 1), 2);
}

TEST(SetCell, OfACellIntoItselfCanBeDuplicatedAndStoredAgain) {
  const Array cell = cellRow(doubleRow({1}));
  for (int depth = 1; depth <= 5; ++depth) orbSetCell(cell, 0, cell);
  Array inner(orbDuplicateArray(cell));
  for (int depth = 0; depth <= 5; ++depth) {
    ASSERT_TRUE(orbIsCell(inner));
    inner = elementOf(inner);
  }
  EXPECT_EQ(orbGetScalar(inner), 1);

  const Array outer(orbCreateCellMatrix(1, 1));
  orbSetCell(outer, 0, cell);
  EXPECT_TRUE(orbIsCell(elementOf(outer)));
}

TEST(SetCell, OfACellIntoItselfThroughTwoHandlesStoresACopyOfWhatItWas) {
  const Array root = cellRow(cellRow(doubleRow({1}), doubleRow({2})));
  const Array first = elementOf(root);
  const Array second = elementOf(root);
  orbSetCell(first, 0, second);
  EXPECT_EQ(scalarAt(elementOf(first), 0), 1);
  EXPECT_EQ(scalarAt(elementOf(first), 1), 2);
  orbSetCell(root, 0, first);
  EXPECT_EQ(scalarAt(elementOf(elementOf(root)), 1), 2);
  EXPECT_EQ(scalarAt(elementOf(elementOf(Array(orbDuplicateArray(root)))), 0), 1);
}

TEST(SetField, OfAStructIntoItselfStoresACopyOfWhatItWas) {
  const Array s = structOf({"a", "b"});
  orbSetField(s, 0, "b", doubleRow({2}));
  orbSetField(s, 0, "a", s);
  orbSetFieldByNumber(s, 0, 0, s);
  const Array copy(orbDuplicateArray(s));
  const Array inner(orbGetField(copy, 0, "a"));
  EXPECT_EQ(orbGetScalar(Array(orbGetField(inner, 0, "b"))), 2);
  const Array innermost(orbGetField(inner, 0, "a"));
  EXPECT_EQ(orbGetScalar(Array(orbGetField(innermost, 0, "b"))), 2);
  EXPECT_TRUE(orbIsEmpty(Array(orbGetField(innermost, 0, "a"))));
}

TEST(SetCell, OfTwoCellsIntoEachOtherHoldsWhatEachWasAndEnds) {
  const Array first = cellRow(doubleRow({1}), doubleRow({10}));
  const Array second = cellRow(doubleRow({2}), doubleRow({20}));
  orbSetCell(first, 0, second);
  orbSetCell(second, 0, first);
  EXPECT_EQ(scalarAt(elementOf(first), 1), 20);
  EXPECT_EQ(scalarAt(elementOf(second), 1), 10);

  const Array copy(orbDuplicateArray(second));
  EXPECT_EQ(scalarAt(elementOf(copy), 1), 10);
  EXPECT_EQ(scalarAt(elementOf(elementOf(copy)), 1), 20);
  EXPECT_EQ(scalarAt(elementOf(elementOf(copy)), 0), 2);
}

/// Wraps a 1-by-1 double array alternately into cells and structs.
Array nested(int depth) {
  Array inner = doubleRow({42});
  for (int level = 0; level < depth; ++level) {
    Array outer = level % 2 == 0 ? Array(orbCreateCellMatrix(1, 1)) : structOf({"f"});
    orbSetCell(outer, 0, inner);
    orbSetField(outer, 0, "f", inner);
    inner = std::move(outer);
  }
  return inner;
}

int depthOf(Array a) {
  int depth = 0;
  for (; orbGetScalar(a) != 42; ++depth) {
    a = Array(orbIsCell(a) ? orbGetCell(a, 0) : orbGetField(a, 0, "f"));
  }
  return depth;
}

void* nestCopyAndDestroy(void* depth) {
  const Array deep = nested(1000);
  *static_cast<int*>(depth) = depthOf(Array(orbDuplicateArray(deep)));
  return nullptr;
}

TEST(DuplicateArray, Of1000LevelsWorksOnAStackOf8Mebibytes) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, size_t{8} << 20), 0);
  pthread_t thread;
  int depth = 0;
  ASSERT_EQ(pthread_create(&thread, &attributes, nestCopyAndDestroy, &depth), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
  EXPECT_EQ(depth, 1000);
}

}  // namespace
}  // namespace orb::test
