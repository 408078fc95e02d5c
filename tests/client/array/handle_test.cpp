// SPDX-License-Identifier: MIT
// Handles: releasing and duplicating them, and what they tell about class and complexity.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "client/array/types.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

class OfType : public ::testing::TestWithParam<Type> {};

TEST_P(OfType, TellsClassNameAndElementSizeInEveryShapeAndComplexity) {
  const Type& type = GetParam();
  for (const Shape& shape : shapesOf(type)) {
    for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
      SCOPED_TRACE(describe(shape, flag));
      const Array a = create(type, shape, flag);
      EXPECT_EQ(orbGetClassID(a), type.id);
      EXPECT_STREQ(orbGetClassName(a), type.className);
      EXPECT_EQ(orbGetElementSize(a), type.elementSize);
    }
  }
}

TEST_P(OfType, IsComplexWhenNumericAskedForAndNotEmpty) {
  const Type& type = GetParam();
  for (const Shape& shape : shapesOf(type)) {
    SCOPED_TRACE(describe(shape, orbCOMPLEX));
    EXPECT_EQ(orbIsComplex(create(type, shape, orbCOMPLEX)),
              isNumeric(type) && countOf(shape) != 0);
    EXPECT_FALSE(orbIsComplex(create(type, shape, orbREAL)));
  }
}

TEST_P(OfType, DuplicateEqualsItsSourceInEveryShapeAndComplexity) {
  const Type& type = GetParam();
  for (const Shape& shape : shapesOf(type)) {
    for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
      SCOPED_TRACE(describe(shape, flag));
      const Array a = create(type, shape, flag);
      const size_t count = countOf(shape);
      if (realData(type, a) != nullptr) fill(type, realData(type, a), count, 1);
      if (orbGetImagData(a) != nullptr) fill(type, orbGetImagData(a), count, 101);

      const Array copy(orbDuplicateArray(a));
      EXPECT_NE(copy.get(), a.get());
      EXPECT_EQ(orbGetClassID(copy), type.id);
      EXPECT_EQ(orbIsSparse(copy), type.isSparse);
      EXPECT_EQ(orbIsComplex(copy), orbIsComplex(a));
      EXPECT_EQ(dimensionsOf(copy), shape);
      EXPECT_EQ(bytesOf(type, realData(type, copy), count),
                bytesOf(type, realData(type, a), count));
      EXPECT_EQ(bytesOf(type, orbGetImagData(copy), count),
                bytesOf(type, orbGetImagData(a), count));
    }
  }
}

TEST_P(OfType, WritingToTheDuplicateLeavesTheSourceUnchanged) {
  const Type& type = GetParam();
  const Array a = create(type, {2, 3}, orbCOMPLEX);
  const Bytes real = bytesOf(type, realData(type, a), 6);
  const Bytes imag = bytesOf(type, orbGetImagData(a), 6);

  const Array copy(orbDuplicateArray(a));
  if (realData(type, copy) != nullptr) fill(type, realData(type, copy), 6, 1);
  if (orbGetImagData(copy) != nullptr) fill(type, orbGetImagData(copy), 6, 101);
  orbSetM(copy, 5);

  EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 3));
  EXPECT_EQ(bytesOf(type, realData(type, a), 6), real);
  EXPECT_EQ(bytesOf(type, orbGetImagData(a), 6), imag);
}

INSTANTIATE_TEST_SUITE_P(Types, OfType, ::testing::ValuesIn(types()), TypeName());

TEST(DestroyArray, OfNullDoesNothing) { orbDestroyArray(nullptr); }

TEST(DestroyArray, OfACellLeavesAnElementHandleUsable) {
  Array cell = cellRow(doubleRow({7, 8}));
  const Array element(orbGetCell(cell, 0));
  orbDestroyArray(cell.release());
  EXPECT_THAT(elementsOf<double>(element), ElementsAre(7, 8));
  orbGetPr(element)[0] = 9;
  EXPECT_EQ(orbGetScalar(element), 9);
}

TEST(DestroyArray, OfAStructLeavesAnElementHandleUsable) {
  Array s = structOf({"f"});
  orbSetField(s, 0, "f", charRow(u"xy"));
  const Array element(orbGetField(s, 0, "f"));
  orbDestroyArray(s.release());
  EXPECT_EQ(unitsOf(element), u"xy");
}

TEST(DestroyArray, OfAParentLeavesAStoredHandleUsable) {
  Array cell(orbCreateCellMatrix(1, 1));
  const Array value = doubleRow({7});
  orbSetCell(cell, 0, value);
  orbDestroyArray(cell.release());
  EXPECT_EQ(orbGetScalar(value), 7);
}

TEST(DestroyArray, OfAnElementHandleLeavesTheParentUsable) {
  const Array cell = cellRow(doubleRow({7}));
  orbDestroyArray(orbGetCell(cell, 0));
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 0))), 7);
}

TEST(DuplicateArray, OfADoubleMatrixSharesNoStorageWithIt) {
  const Array a = doubleRow({1, 2});
  const Array copy(orbDuplicateArray(a));
  orbGetPr(copy)[0] = 10;
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(1, 2));
  orbGetPr(a)[1] = 20;
  EXPECT_THAT(elementsOf<double>(copy), ElementsAre(10, 2));
}

TEST(DuplicateArray, OfACellCopiesItsElements) {
  const Array cell = cellRow(doubleRow({1}), charRow(u"a"));
  const Array copy(orbDuplicateArray(cell));

  orbGetPr(Array(orbGetCell(copy, 0)))[0] = 2;
  orbSetCell(copy, 1, doubleRow({3}));

  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 0))), 1);
  EXPECT_EQ(unitsOf(Array(orbGetCell(cell, 1))), u"a");
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(copy, 0))), 2);
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(copy, 1))), 3);
}

TEST(DuplicateArray, OfAStructCopiesItsFieldsAndTheirValues) {
  const Array s = structOf({"a", "b"});
  orbSetField(s, 0, "b", doubleRow({1}));
  const Array copy(orbDuplicateArray(s));

  EXPECT_STREQ(orbGetFieldNameByNumber(copy, 0), "a");
  EXPECT_STREQ(orbGetFieldNameByNumber(copy, 1), "b");
  EXPECT_TRUE(orbIsEmpty(Array(orbGetField(copy, 0, "a"))));
  orbGetPr(Array(orbGetField(copy, 0, "b")))[0] = 2;
  orbRemoveField(copy, 0);

  EXPECT_EQ(orbGetNumberOfFields(s), 2);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 0, "b"))), 1);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(copy, 0, "b"))), 2);
}

TEST(DuplicateArray, OfASparseArrayCopiesIndicesAndValues) {
  const Array sparse(orbCreateSparse(4, 3, 2, orbCOMPLEX));
  orbGetIr(sparse)[1] = 3;
  orbGetJc(sparse)[3] = 2;
  orbGetPr(sparse)[1] = 1.5;
  orbGetPi(sparse)[1] = -2.5;

  const Array copy(orbDuplicateArray(sparse));
  EXPECT_EQ(orbGetNzmax(copy), 2u);
  EXPECT_EQ(orbGetIr(copy)[1], 3u);
  EXPECT_EQ(orbGetJc(copy)[3], 2u);
  EXPECT_EQ(orbGetPr(copy)[1], 1.5);
  EXPECT_EQ(orbGetPi(copy)[1], -2.5);

  orbGetIr(copy)[1] = 0;
  orbGetPr(copy)[1] = 0;
  EXPECT_EQ(orbGetIr(sparse)[1], 3u);
  EXPECT_EQ(orbGetPr(sparse)[1], 1.5);
}

TEST(Free, ReleasesTheTextOfArrayToString) {
  orbFree(orbArrayToString(charRow(u"text")));
}

TEST(Free, OfNullDoesNothing) { orbFree(nullptr); }

TEST(GetClassID, OfASparseLogicalArrayIsTenNamedLogical) {
  const Array sparse(orbCreateSparseLogicalMatrix(2, 2, 1));
  EXPECT_EQ(static_cast<int>(orbGetClassID(sparse)), 10);
  EXPECT_STREQ(orbGetClassName(sparse), "logical");
}

TEST(GetClassID, OfASparseDoubleArrayIsNineNamedDouble) {
  const Array sparse(orbCreateSparse(2, 2, 1, orbREAL));
  EXPECT_EQ(static_cast<int>(orbGetClassID(sparse)), 9);
  EXPECT_STREQ(orbGetClassName(sparse), "double");
}

TEST(GetClassName, IsStaticText) {
  Array first = doubleRow({1});
  const char* name = orbGetClassName(first);
  orbDestroyArray(first.release());
  EXPECT_STREQ(name, "double");
}

TEST(IsComplex, OnlyOneAsksForComplex) {
  const size_t dims[] = {2, 2};
  for (const int value : {-1, 0, 1, 2, 257, INT32_MIN}) {
    SCOPED_TRACE(value);
    const auto flag = static_cast<orbComplexity>(value);
    const Array arrays[] = {Array(orbCreateNumericArray(2, dims, orbINT16_CLASS, flag)),
                            Array(orbCreateNumericMatrix(2, 2, orbUINT8_CLASS, flag)),
                            Array(orbCreateDoubleMatrix(2, 2, flag)),
                            Array(orbCreateSparse(2, 2, 1, flag))};
    for (const Array& a : arrays) {
      EXPECT_EQ(orbIsComplex(a), value == 1);
      EXPECT_EQ(orbGetImagData(a) != nullptr, value == 1);
    }
  }
}

TEST(IsComplex, StaysTrueWhenResizedToNoElementsButACopyIsReal) {
  const Array a(orbCreateDoubleMatrix(2, 2, orbCOMPLEX));
  orbSetM(a, 0);
  EXPECT_TRUE(orbIsComplex(a));
  EXPECT_FALSE(orbIsComplex(Array(orbDuplicateArray(a))));
}

TEST(IsComplex, OfAnElementSaysWhetherAnImaginaryPartIsStored) {
  Array emptied(orbCreateDoubleMatrix(2, 2, orbCOMPLEX));
  orbSetM(emptied, 0);
  EXPECT_TRUE(orbIsComplex(emptied));
  Array storesNone(orbCreateSparse(3, 3, 0, orbCOMPLEX));
  EXPECT_TRUE(orbIsComplex(storesNone));
  Array withoutElements(orbCreateSparse(0, 3, 2, orbCOMPLEX));
  EXPECT_FALSE(orbIsComplex(withoutElements));

  const auto isComplexAsElement = [](Array array) {
    const Array parent = cellRow(std::move(array));
    return orbIsComplex(Array(orbGetCell(parent, 0)));
  };
  EXPECT_FALSE(isComplexAsElement(std::move(emptied)));
  EXPECT_FALSE(isComplexAsElement(std::move(storesNone)));
  EXPECT_TRUE(isComplexAsElement(std::move(withoutElements)));
}

}  // namespace
}  // namespace orb::test
