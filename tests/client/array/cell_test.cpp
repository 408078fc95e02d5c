// SPDX-License-Identifier: MIT
// Cells: reading and storing their elements.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "client/array/types.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

TEST(GetCell, OnAFresh1By2CellIsA0By0DoubleThatTheCellNowHolds) {
  const Array cell(orbCreateCellMatrix(1, 2));
  const Array element(orbGetCell(cell, 1));
  EXPECT_EQ(orbGetClassID(element), orbDOUBLE_CLASS);
  EXPECT_THAT(dimensionsOf(element), ElementsAre(0, 0));
  EXPECT_FALSE(orbIsComplex(element));

  const size_t dims[] = {1, 1};
  ASSERT_EQ(orbSetDimensions(element, dims, 2), 0);
  orbGetPr(element)[0] = 5;
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 1))), 5);
  EXPECT_TRUE(orbIsEmpty(Array(orbGetCell(cell, 0))));
}

TEST(GetCell, GivesANewHandleEachTime) {
  const Array cell = cellRow(doubleRow({1}));
  const Array first(orbGetCell(cell, 0));
  const Array second(orbGetCell(cell, 0));
  EXPECT_NE(first.get(), second.get());
}

TEST(GetCell, GivesNullOutsideTheElements) {
  const Array cell(orbCreateCellMatrix(2, 2));
  EXPECT_EQ(orbGetCell(cell, 4), nullptr);
  EXPECT_EQ(orbGetCell(cell, SIZE_MAX), nullptr);
  EXPECT_EQ(orbGetCell(Array(orbCreateCellMatrix(0, 0)), 0), nullptr);
}

TEST(GetCell, KeepsEveryTypeShapeAndComplexity) {
  for (const Type& type : types()) {
    for (const Shape& shape : shapesOf(type)) {
      for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
        SCOPED_TRACE(type.name + (" " + describe(shape, flag)));
        Array value = create(type, shape, flag);
        const size_t count = countOf(shape);
        if (realData(type, value) != nullptr) fill(type, realData(type, value), count, 1);
        if (orbGetImagData(value) != nullptr) {
          fill(type, orbGetImagData(value), count, 101);
        }
        const Bytes real = bytesOf(type, realData(type, value), count);
        const Bytes imag = bytesOf(type, orbGetImagData(value), count);
        const bool isComplex = orbIsComplex(value);

        const Array cell = cellRow(std::move(value));
        const Array element(orbGetCell(cell, 0));
        EXPECT_EQ(orbGetClassID(element), type.id);
        EXPECT_EQ(orbIsSparse(element), type.isSparse);
        EXPECT_EQ(orbGetElementSize(element), type.elementSize);
        EXPECT_EQ(orbIsComplex(element), isComplex);
        EXPECT_EQ(dimensionsOf(element), shape);
        EXPECT_EQ(bytesOf(type, realData(type, element), count), real);
        EXPECT_EQ(bytesOf(type, orbGetImagData(element), count), imag);
      }
    }
  }
}

TEST(GetCell, OfAnotherTypeIsNullAndStoringIntoItHasNoEffect) {
  for (const Type& type : types()) {
    if (type.id == orbCELL_CLASS) continue;
    SCOPED_TRACE(type.name);
    const Array other = create(type, {1, 2});
    EXPECT_EQ(orbGetCell(other, 0), nullptr);
    orbSetCell(other, 0, doubleRow({1}));
    EXPECT_EQ(orbGetClassID(other), type.id);
    EXPECT_EQ(orbGetScalar(other), 0.0);
  }
}

TEST(SetCell, StoresByLinearIndex) {
  const Array cell(orbCreateCellMatrix(2, 2));
  orbSetCell(cell, 1, doubleRow({1}));
  orbSetCell(cell, 2, charRow(u"two"));
  EXPECT_TRUE(orbIsEmpty(Array(orbGetCell(cell, 0))));
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 1))), 1);
  EXPECT_EQ(unitsOf(Array(orbGetCell(cell, 2))), u"two");
  EXPECT_TRUE(orbIsEmpty(Array(orbGetCell(cell, 3))));
}

TEST(SetCell, WithAnOutOfRangeIndexLeavesTheCellUnchanged) {
  const Array cell = cellRow(doubleRow({1}), doubleRow({2}));
  orbSetCell(cell, 2, doubleRow({9}));
  orbSetCell(cell, SIZE_MAX, doubleRow({9}));
  EXPECT_THAT(dimensionsOf(cell), ElementsAre(1, 2));
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 0))), 1);
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 1))), 2);
}

TEST(SetCell, LeavesAHandleToTheReplacedElementUsable) {
  const Array cell = cellRow(doubleRow({1}));
  const Array old(orbGetCell(cell, 0));
  orbSetCell(cell, 0, doubleRow({2}));
  EXPECT_EQ(orbGetScalar(old), 1);
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 0))), 2);
}

TEST(SetCell, OfTheElementThatIsThereKeepsIt) {
  const Array cell = cellRow(doubleRow({1}));
  orbSetCell(cell, 0, Array(orbGetCell(cell, 0)));
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 0))), 1);
}

}  // namespace
}  // namespace orb::test
