// SPDX-License-Identifier: MIT
// Sparse arrays: their indices and their capacity for stored values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "client/array/types.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

std::vector<size_t> rowsOf(orbArray a) {
  return std::vector<size_t>(orbGetIr(a), orbGetIr(a) + orbGetNzmax(a));
}

std::vector<double> valuesOf(orbArray a) {
  return std::vector<double>(orbGetPr(a), orbGetPr(a) + orbGetNzmax(a));
}

std::vector<double> imagValuesOf(orbArray a) {
  return std::vector<double>(orbGetPi(a), orbGetPi(a) + orbGetNzmax(a));
}

std::vector<bool> logicalsOf(orbArray a) {
  return std::vector<bool>(orbGetLogicals(a), orbGetLogicals(a) + orbGetNzmax(a));
}

/// 3-by-3 with the values 5 at row 1 and 6 at row 2 of column 0, imaginary parts negated.
Array sparseDouble(orbComplexity flag) {
  Array a(orbCreateSparse(3, 3, 2, flag));
  orbGetIr(a)[0] = 1;
  orbGetIr(a)[1] = 2;
  std::fill_n(orbGetJc(a) + 1, 3, size_t{2});
  orbGetPr(a)[0] = 5;
  orbGetPr(a)[1] = 6;
  if (flag == orbCOMPLEX) {
    orbGetPi(a)[0] = -5;
    orbGetPi(a)[1] = -6;
  }
  return a;
}

Array sparseLogical() {
  Array a(orbCreateSparseLogicalMatrix(3, 3, 2));
  orbGetIr(a)[0] = 1;
  orbGetIr(a)[1] = 2;
  std::fill_n(orbGetLogicals(a), 2, true);
  return a;
}

TEST(GetNzmax, OfANonSparseArrayIsAllOnesAndSettingItHasNoEffect) {
  for (const Type& type : types()) {
    if (type.isSparse) continue;
    SCOPED_TRACE(type.name);
    const Array a = create(type, {2, 3});
    EXPECT_EQ(orbGetNzmax(a), SIZE_MAX);
    EXPECT_EQ(orbGetIr(a), nullptr);
    EXPECT_EQ(orbGetJc(a), nullptr);
    orbSetNzmax(a, 1);
    EXPECT_EQ(orbGetNzmax(a), SIZE_MAX);
    EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 3));
  }
}

TEST(GetIr, LeadsToTheArraysOwnStorage) {
  const Array a = sparseDouble(orbREAL);
  EXPECT_THAT(rowsOf(a), ElementsAre(1, 2));
  EXPECT_THAT(std::vector<size_t>(orbGetJc(a), orbGetJc(a) + 4), ElementsAre(0, 2, 2, 2));
}

TEST(SetNzmax, ToMoreAddsZerosToIndicesAndValues) {
  const Array real = sparseDouble(orbREAL);
  orbSetNzmax(real, 4);
  EXPECT_EQ(orbGetNzmax(real), 4u);
  EXPECT_THAT(rowsOf(real), ElementsAre(1, 2, 0, 0));
  EXPECT_THAT(valuesOf(real), ElementsAre(5, 6, 0, 0));
  EXPECT_EQ(orbGetPi(real), nullptr);

  const Array complex = sparseDouble(orbCOMPLEX);
  orbSetNzmax(complex, 4);
  EXPECT_THAT(valuesOf(complex), ElementsAre(5, 6, 0, 0));
  EXPECT_THAT(imagValuesOf(complex), ElementsAre(-5, -6, 0, 0));

  const Array logical = sparseLogical();
  orbSetNzmax(logical, 4);
  EXPECT_THAT(rowsOf(logical), ElementsAre(1, 2, 0, 0));
  EXPECT_THAT(logicalsOf(logical), ElementsAre(true, true, false, false));
}

TEST(SetNzmax, ToLessCutsIndicesAndValuesOff) {
  const Array complex = sparseDouble(orbCOMPLEX);
  orbSetNzmax(complex, 1);
  orbSetNzmax(complex, 2);
  EXPECT_THAT(rowsOf(complex), ElementsAre(1, 0));
  EXPECT_THAT(valuesOf(complex), ElementsAre(5, 0));
  EXPECT_THAT(imagValuesOf(complex), ElementsAre(-5, 0));

  const Array logical = sparseLogical();
  orbSetNzmax(logical, 1);
  orbSetNzmax(logical, 2);
  EXPECT_THAT(rowsOf(logical), ElementsAre(1, 0));
  EXPECT_THAT(logicalsOf(logical), ElementsAre(true, false));
}

TEST(SetNzmax, LeavesTheColumnStartsAlone) {
  const Array a = sparseDouble(orbREAL);
  orbSetNzmax(a, 1);
  EXPECT_THAT(std::vector<size_t>(orbGetJc(a), orbGetJc(a) + 4), ElementsAre(0, 2, 2, 2));
}

TEST(SetNzmax, ToZeroSetsOne) {
  const Array a = sparseDouble(orbREAL);
  orbSetNzmax(a, 0);
  EXPECT_EQ(orbGetNzmax(a), 1u);
  EXPECT_THAT(valuesOf(a), ElementsAre(5));
}

TEST(SetNzmax, ToZeroSetsOneEvenWithoutElements) {
  const Array a(orbCreateSparse(0, 3, 0, orbREAL));
  orbSetNzmax(a, 1);
  EXPECT_EQ(orbGetNzmax(a), 0u);
  orbSetNzmax(a, 0);
  EXPECT_EQ(orbGetNzmax(a), 1u);
  EXPECT_THAT(valuesOf(a), ElementsAre(0));
}

TEST(SetNzmax, AboveTheNumberOfElementsChangesNothing) {
  const Array a = sparseDouble(orbREAL);
  orbSetNzmax(a, 10);
  EXPECT_EQ(orbGetNzmax(a), 2u);
  orbSetNzmax(a, SIZE_MAX);
  EXPECT_EQ(orbGetNzmax(a), 2u);
  orbSetNzmax(a, 9);
  EXPECT_EQ(orbGetNzmax(a), 9u);
}

TEST(SetNzmax, GivesNoImaginaryPartsToAComplexArrayThatStoredNone) {
  const Array a(orbCreateSparse(3, 3, 0, orbCOMPLEX));
  EXPECT_TRUE(orbIsComplex(a));
  EXPECT_EQ(orbGetPi(a), nullptr);
  orbSetNzmax(a, 2);
  EXPECT_THAT(valuesOf(a), ElementsAre(0, 0));
  EXPECT_EQ(orbGetPi(a), nullptr);
}

}  // namespace
}  // namespace orb::test
