// SPDX-License-Identifier: MIT
// Dimensions: reading and changing them, and what becomes of the elements.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "client/array/types.h"

namespace orb::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

/// A double array with the elements 1, 2, ...
Array rampOf(const Shape& shape, orbComplexity flag = orbREAL) {
  Array a(orbCreateNumericArray(shape.size(), shape.data(), orbDOUBLE_CLASS, flag));
  for (size_t i = 0; i < countOf(shape); ++i) {
    orbGetPr(a)[i] = static_cast<double>(i + 1);
    if (flag == orbCOMPLEX) orbGetPi(a)[i] = -static_cast<double>(i + 1);
  }
  return a;
}

std::vector<double> imagOf(orbArray a) {
  return std::vector<double>(orbGetPi(a), orbGetPi(a) + orbGetNumberOfElements(a));
}

void expectEmptyDouble(orbArray a) {
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(orbGetClassID(a), orbDOUBLE_CLASS);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(0, 0));
}

TEST(GetDimensions, CountsAndListsThem) {
  const Array a = rampOf({2, 1, 3, 1});
  EXPECT_EQ(orbGetNumberOfDimensions(a), 4u);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 1, 3, 1));
}

TEST(GetNumberOfElements, IsTheProductOfAllDimensions) {
  EXPECT_EQ(orbGetNumberOfElements(rampOf({2, 3, 4})), 24u);
  EXPECT_EQ(orbGetNumberOfElements(rampOf({2, 0, 4})), 0u);
}

TEST(GetN, OfA2By3By4ArrayIsThree) {
  const Array a = rampOf({2, 3, 4});
  EXPECT_EQ(orbGetM(a), 2u);
  EXPECT_EQ(orbGetN(a), 3u);
}

TEST(CalcSingleSubscript, Of1And2And3InA2By3By4ArrayIs23) {
  const size_t subs[] = {1, 2, 3};
  EXPECT_EQ(orbCalcSingleSubscript(rampOf({2, 3, 4}), 3, subs), 23u);
}

TEST(CalcSingleSubscript, CountsFromZero) {
  const size_t subs[] = {0, 0, 0};
  EXPECT_EQ(orbCalcSingleSubscript(rampOf({2, 3, 4}), 3, subs), 0u);
}

TEST(CalcSingleSubscript, TakesFewerSubscriptsThanDimensions) {
  const size_t subs[] = {1, 2};
  const Array a = rampOf({2, 3, 4});
  EXPECT_EQ(orbCalcSingleSubscript(a, 2, subs), 5u);
  EXPECT_EQ(orbCalcSingleSubscript(a, 1, subs), 1u);
}

TEST(CalcSingleSubscript, OfNoSubscriptsIsZero) {
  EXPECT_EQ(orbCalcSingleSubscript(rampOf({2, 3}), 0, nullptr), 0u);
}

TEST(CalcSingleSubscript, IgnoresSubscriptsBeyondTheDimensions) {
  const size_t subs[] = {1, 2, 7, 9};
  EXPECT_EQ(orbCalcSingleSubscript(rampOf({2, 3}), 4, subs), 5u);
}

TEST(CalcSingleSubscript, ComparesNoSubscriptWithItsExtent) {
  const size_t subs[] = {5, 10};
  EXPECT_EQ(orbCalcSingleSubscript(rampOf({2, 3}), 2, subs), 25u);
  EXPECT_EQ(orbCalcSingleSubscript(rampOf({0, 3}), 2, subs), 5u);
}

class Resize : public ::testing::TestWithParam<Type> {};

TEST_P(Resize, KeepsLinearIndicesAndAddsZeros) {
  const Type& type = GetParam();
  if (type.isSparse) return;
  for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
    for (const Shape& to : shapes()) {
      SCOPED_TRACE(describe(to, flag));
      const Array a = create(type, {2, 3}, flag);
      if (realData(type, a) != nullptr) fill(type, realData(type, a), 6, 1);
      if (orbGetImagData(a) != nullptr) fill(type, orbGetImagData(a), 6, 101);
      const size_t count = countOf(to);
      Bytes real = bytesOf(type, realData(type, a), 6);
      Bytes imag = bytesOf(type, orbGetImagData(a), 6);
      if (!real.empty()) real.resize(count * type.elementSize);
      if (!imag.empty()) imag.resize(count * type.elementSize);

      EXPECT_EQ(orbSetDimensions(a, to.data(), to.size()), 0);

      EXPECT_EQ(dimensionsOf(a), to);
      EXPECT_EQ(bytesOf(type, realData(type, a), count), real);
      EXPECT_EQ(bytesOf(type, orbGetImagData(a), count), imag);
      EXPECT_EQ(orbGetClassID(a), type.id);
      EXPECT_EQ(orbIsComplex(a), flag == orbCOMPLEX && isNumeric(type));
    }
  }
}

TEST_P(Resize, ShrinksAndGrowsToZeros) {
  const Type& type = GetParam();
  if (type.isSparse || realData(type, create(type, {1, 1})) == nullptr) return;
  const Array a = create(type, {1, 4}, orbCOMPLEX);
  fill(type, realData(type, a), 4, 1);
  orbSetN(a, 2);
  const Bytes kept = bytesOf(type, realData(type, a), 2);
  orbSetN(a, 4);
  Bytes expected = kept;
  expected.resize(4 * type.elementSize);
  EXPECT_EQ(bytesOf(type, realData(type, a), 4), expected);
}

TEST_P(Resize, ToNoElementsLeavesNoDataPointer) {
  const Type& type = GetParam();
  if (type.isSparse) return;
  const Array a = create(type, {2, 3}, orbCOMPLEX);
  orbSetM(a, 0);
  EXPECT_EQ(realData(type, a), nullptr);
  EXPECT_EQ(orbGetImagData(a), nullptr);
  EXPECT_EQ(orbGetScalar(a), 0.0);
}

TEST_P(Resize, SurvivesInADuplicate) {
  const Type& type = GetParam();
  if (type.isSparse) return;
  const Array a = create(type, {1, 2}, orbCOMPLEX);
  const size_t dims[] = {3, 1, 2};
  EXPECT_EQ(orbSetDimensions(a, dims, 3), 0);
  if (realData(type, a) != nullptr) fill(type, realData(type, a), 6, 1);
  if (orbGetImagData(a) != nullptr) fill(type, orbGetImagData(a), 6, 101);

  const Array copy(orbDuplicateArray(a));
  EXPECT_THAT(dimensionsOf(copy), ElementsAre(3, 1, 2));
  EXPECT_EQ(bytesOf(type, realData(type, copy), 6), bytesOf(type, realData(type, a), 6));
  EXPECT_EQ(bytesOf(type, orbGetImagData(copy), 6), bytesOf(type, orbGetImagData(a), 6));
}

INSTANTIATE_TEST_SUITE_P(Types, Resize, ::testing::ValuesIn(types()), TypeName());

TEST(SetM, ChangesTheFirstExtentOnly) {
  const Array a = rampOf({2, 2, 2});
  orbSetM(a, 1);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(1, 2, 2));
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(1, 2, 3, 4));
}

TEST(SetN, ChangesTheSecondExtentOnly) {
  const Array a = rampOf({2, 2, 2});
  orbSetN(a, 1);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 1, 2));
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(1, 2, 3, 4));
}

TEST(SetM, OfAComplex2By2MatrixTo3Leaves6RealAnd6ImaginaryValuesTheNewOnesZero) {
  const Array a = rampOf({2, 2}, orbCOMPLEX);
  orbSetM(a, 3);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(3, 2));
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(1, 2, 3, 4, 0, 0));
  EXPECT_THAT(imagOf(a), ElementsAre(-1, -2, -3, -4, 0, 0));
}

TEST(SetM, OfARealMatrixLeavesNoImaginaryValues) {
  const Array a = rampOf({2, 2});
  orbSetM(a, 3);
  EXPECT_FALSE(orbIsComplex(a));
  EXPECT_EQ(orbGetPi(a), nullptr);
}

TEST(SetM, RegrowsAComplexArrayWithoutImaginaryValues) {
  const Array a = rampOf({2, 2}, orbCOMPLEX);
  orbSetM(a, 0);
  orbSetM(a, 2);
  EXPECT_TRUE(orbIsComplex(a));
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(0, 0, 0, 0));
  EXPECT_EQ(orbGetPi(a), nullptr);
}

TEST(SetDimensions, OfNoneFailsAndChangesNothing) {
  const Array a = rampOf({2, 3});
  EXPECT_EQ(orbSetDimensions(a, nullptr, 0), 1);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 3));
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(SetDimensions, OfOneGivesAColumn) {
  const Array a = rampOf({2, 3});
  const size_t dims[] = {7};
  EXPECT_EQ(orbSetDimensions(a, dims, 1), 0);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(7, 1));
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(1, 2, 3, 4, 5, 6, 0));
}

TEST(SetDimensions, KeepsTrailingOnes) {
  const Array a = rampOf({2, 3});
  const size_t dims[] = {2, 3, 1, 1};
  EXPECT_EQ(orbSetDimensions(a, dims, 4), 0);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 3, 1, 1));
}

TEST(SetDimensions, TakesExtentsOfZero) {
  const Array a = rampOf({2, 3});
  const size_t dims[] = {3, 0, 5};
  EXPECT_EQ(orbSetDimensions(a, dims, 3), 0);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(3, 0, 5));
}

TEST(SetDimensions, TakesFewerDimensionsThanBefore) {
  const Array a = rampOf({2, 3, 1});
  const size_t dims[] = {3, 2};
  EXPECT_EQ(orbSetDimensions(a, dims, 2), 0);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(3, 2));
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(SetDimensions, TakesTheArraysOwnDimensionsAsSource) {
  const Array a = rampOf({2, 3, 4});
  EXPECT_EQ(orbSetDimensions(a, orbGetDimensions(a), 3), 0);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 3, 4));
  EXPECT_EQ(orbGetPr(a)[23], 24);

  EXPECT_EQ(orbSetDimensions(a, orbGetDimensions(a) + 1, 2), 0);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(3, 4));

  EXPECT_EQ(orbSetDimensions(a, orbGetDimensions(a), 1), 0);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(3, 1));
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(1, 2, 3));
}

TEST(SetDimensions, AboveTheElementLimitFailsWithDimensionsReplacedAndElementsKept) {
  for (const Type& type : types()) {
    SCOPED_TRACE(type.name);
    const Array a = create(type, {1, 2});
    if (realData(type, a) != nullptr) fill(type, realData(type, a), 2, 1);
    const Bytes bytes = bytesOf(type, realData(type, a), 2);
    const size_t dims[] = {65536, 32768};
    EXPECT_EQ(orbSetDimensions(a, dims, 2), 1);
    EXPECT_THAT(dimensionsOf(a), ElementsAre(65536, 32768));
    EXPECT_EQ(bytesOf(type, realData(type, a), 2), bytes);
  }
}

TEST(SetDimensions, CountsElementsModulo2ToThe64th) {
  const Array a = rampOf({2, 3});
  const size_t dims[] = {size_t{1} << 32, size_t{1} << 32};
  EXPECT_EQ(orbSetDimensions(a, dims, 2), 0);
  EXPECT_EQ(orbGetNumberOfElements(a), 0u);
  EXPECT_EQ(orbGetPr(a), nullptr);
}

TEST(SetN, ShrinkingACellFrom4To2DropsCells2And3AndGrowingGivesEmptyOnes) {
  const Array cell =
      cellRow(doubleRow({1}), doubleRow({2}), doubleRow({3}), doubleRow({4}));
  orbSetN(cell, 2);
  EXPECT_EQ(orbGetCell(cell, 2), nullptr);
  orbSetN(cell, 4);
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 0))), 1);
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 1))), 2);
  expectEmptyDouble(Array(orbGetCell(cell, 2)));
  expectEmptyDouble(Array(orbGetCell(cell, 3)));
}

TEST(SetN, ShrinkingACellAlsoShrinksItsDuplicate) {
  const Array cell = cellRow(doubleRow({1}), doubleRow({2}), doubleRow({3}));
  const Array before(orbDuplicateArray(cell));
  orbSetN(cell, 1);
  const Array copy(orbDuplicateArray(cell));
  EXPECT_THAT(dimensionsOf(copy), ElementsAre(1, 1));
  orbSetN(copy, 2);
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(copy, 0))), 1);
  expectEmptyDouble(Array(orbGetCell(copy, 1)));
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(before, 2))), 3);
}

TEST(SetN, ShrinkingACellLeavesADroppedElementsHandleUsable) {
  const Array cell = cellRow(doubleRow({1}), doubleRow({2}));
  const Array element(orbGetCell(cell, 1));
  orbSetN(cell, 0);
  EXPECT_EQ(orbGetScalar(element), 2);
}

TEST(SetN, To6OfAStructWith2FieldsGives12EmptyDoubles) {
  const Array s = structOf({"a", "b"});
  orbSetField(s, 0, "b", doubleRow({7}));
  orbSetN(s, 6);
  expectEmptyDouble(Array(orbGetField(s, 0, "a")));
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 0, "b"))), 7);
  for (size_t i = 1; i < 6; ++i) {
    expectEmptyDouble(Array(orbGetField(s, i, "a")));
    expectEmptyDouble(Array(orbGetField(s, i, "b")));
  }
  EXPECT_EQ(orbGetField(s, 6, "a"), nullptr);
}

TEST(SetN, OfAStructShrinksAndGrowsWholeElements) {
  const char* fields[] = {"a", "b"};
  const Array s(orbCreateStructMatrix(1, 3, 2, fields));
  for (size_t i = 0; i < 3; ++i) {
    orbSetField(s, i, "a", doubleRow({static_cast<double>(10 * i)}));
    orbSetField(s, i, "b", doubleRow({static_cast<double>(10 * i + 1)}));
  }
  orbSetN(s, 2);
  orbSetN(s, 3);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 1, "a"))), 10);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 1, "b"))), 11);
  expectEmptyDouble(Array(orbGetField(s, 2, "a")));
  expectEmptyDouble(Array(orbGetField(s, 2, "b")));
}

TEST(SetN, GrowsAStructWithoutElements) {
  const char* fields[] = {"a"};
  const Array s(orbCreateStructMatrix(1, 0, 1, fields));
  orbSetN(s, 2);
  orbSetField(s, 1, "a", doubleRow({3}));
  expectEmptyDouble(Array(orbGetField(s, 0, "a")));
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 1, "a"))), 3);
}

TEST(SetM, OfAStructWithoutFieldsHasNoElementsToKeep) {
  const Array s(orbCreateStructMatrix(1, 1, 0, nullptr));
  orbSetM(s, 2147483647);
  EXPECT_EQ(orbGetNumberOfElements(s), 2147483647u);
}

/// Sparse arrays of both kinds.
class ResizeSparse : public ::testing::TestWithParam<bool> {
 protected:
  static Array create(size_t m, size_t n, size_t nzmax) {
    return Array(GetParam() ? orbCreateSparseLogicalMatrix(m, n, nzmax)
                            : orbCreateSparse(m, n, nzmax, orbREAL));
  }
};

TEST_P(ResizeSparse, ChangesOnlyTheColumnStartsToOneMoreThanColumns) {
  const Array a = create(4, 3, 2);
  std::fill_n(orbGetJc(a), 4, size_t{2});
  orbGetIr(a)[1] = 3;

  orbSetN(a, 5);
  EXPECT_THAT(std::vector<size_t>(orbGetJc(a), orbGetJc(a) + 6),
              ElementsAre(2, 2, 2, 2, 0, 0));
  EXPECT_EQ(orbGetNzmax(a), 2u);
  EXPECT_EQ(orbGetIr(a)[1], 3u);

  orbSetN(a, 1);
  orbSetN(a, 2);
  EXPECT_THAT(std::vector<size_t>(orbGetJc(a), orbGetJc(a) + 3), ElementsAre(2, 2, 0));
  EXPECT_EQ(orbGetNzmax(a), 2u);
}

TEST_P(ResizeSparse, ByTheFirstExtentChangesNothingElse) {
  const Array a = create(4, 3, 2);
  std::fill_n(orbGetJc(a), 4, size_t{2});
  orbSetM(a, 100000000);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(100000000, 3));
  EXPECT_THAT(std::vector<size_t>(orbGetJc(a), orbGetJc(a) + 4), Each(2));
  EXPECT_EQ(orbGetNzmax(a), 2u);
}

TEST_P(ResizeSparse, ByDimensionsTakesTheColumnsFromTheSecond) {
  const Array a = create(4, 3, 2);
  const size_t dims[] = {2, 4, 2};
  EXPECT_EQ(orbSetDimensions(a, dims, 3), 0);
  EXPECT_THAT(std::vector<size_t>(orbGetJc(a), orbGetJc(a) + 5), Each(0));
  EXPECT_EQ(orbGetNzmax(a), 2u);
}

INSTANTIATE_TEST_SUITE_P(Types, ResizeSparse, ::testing::Bool(), [](const auto& type) {
  return type.param ? "sparseLogical" : "sparseDouble";
});

TEST(SetN, OfASparseArrayLeavesItsValuesAlone) {
  const Array a(orbCreateSparse(2, 2, 2, orbCOMPLEX));
  orbGetPr(a)[1] = 3;
  orbGetPi(a)[1] = 4;
  orbSetN(a, 0);
  EXPECT_EQ(orbGetPr(a)[1], 3);
  EXPECT_EQ(orbGetPi(a)[1], 4);
}

}  // namespace
}  // namespace orb::test
