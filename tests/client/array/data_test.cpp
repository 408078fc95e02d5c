// SPDX-License-Identifier: MIT
// Data pointers of every class, and the first element as a number.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "client/array/types.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

class DataPointers : public ::testing::TestWithParam<Type> {};

TEST_P(DataPointers, AreGivenByTheAccessorsOfTheClassAlone) {
  const Type& type = GetParam();
  for (const Shape& shape : shapesOf(type)) {
    for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
      SCOPED_TRACE(describe(shape, flag));
      const Array a = create(type, shape, flag);
      const bool stored = countOf(shape) != 0;
      const bool isDouble = type.id == orbDOUBLE_CLASS;
      const bool isComplex = flag == orbCOMPLEX;
      EXPECT_EQ(orbGetPr(a) != nullptr, stored && isDouble);
      EXPECT_EQ(orbGetPi(a) != nullptr, stored && isDouble && isComplex);
      EXPECT_EQ(orbGetData(a) != nullptr, stored && isNumeric(type));
      EXPECT_EQ(orbGetImagData(a) != nullptr, stored && isNumeric(type) && isComplex);
      EXPECT_EQ(orbGetChars(a) != nullptr, stored && type.id == orbCHAR_CLASS);
      EXPECT_EQ(orbGetLogicals(a) != nullptr, stored && type.id == orbLOGICAL_CLASS);
    }
  }
}

TEST_P(DataPointers, LeadToTheArraysOwnStorage) {
  const Type& type = GetParam();
  const Array a = create(type, {2, 3}, orbCOMPLEX);
  if (realData(type, a) == nullptr) return;
  fill(type, realData(type, a), 6, 1);
  const Bytes real = bytesOf(type, realData(type, a), 6);
  EXPECT_EQ(real.front(), 1);
  EXPECT_EQ(real[5 * type.elementSize], type.id == orbLOGICAL_CLASS ? 1 : 6);
  EXPECT_EQ(orbGetScalar(a) != 0.0, true);

  if (orbGetImagData(a) == nullptr) return;
  fill(type, orbGetImagData(a), 6, 101);
  EXPECT_EQ(bytesOf(type, orbGetImagData(a), 6)[5 * type.elementSize], 106);
  EXPECT_EQ(bytesOf(type, realData(type, a), 6), real);
}

INSTANTIATE_TEST_SUITE_P(Types, DataPointers, ::testing::ValuesIn(types()), TypeName());

TEST(GetPr, OfASingleArrayIsNullAndItsDataIsNot) {
  const Array a(orbCreateNumericMatrix(1, 2, orbSINGLE_CLASS, orbCOMPLEX));
  EXPECT_EQ(orbGetPr(a), nullptr);
  EXPECT_EQ(orbGetPi(a), nullptr);
  EXPECT_NE(orbGetData(a), nullptr);
  EXPECT_NE(orbGetImagData(a), nullptr);
}

TEST(GetData, OfADoubleArrayIsItsPr) {
  const Array dense(orbCreateDoubleMatrix(1, 2, orbCOMPLEX));
  EXPECT_EQ(orbGetData(dense), orbGetPr(dense));
  EXPECT_EQ(orbGetImagData(dense), orbGetPi(dense));
  const Array sparse(orbCreateSparse(1, 2, 2, orbCOMPLEX));
  EXPECT_EQ(orbGetData(sparse), orbGetPr(sparse));
  EXPECT_EQ(orbGetImagData(sparse), orbGetPi(sparse));
}

TEST(GetLogicals, OfASparseLogicalArrayIsItsValues) {
  const Array a(orbCreateSparseLogicalMatrix(3, 3, 2));
  orbGetLogicals(a)[1] = true;
  EXPECT_THAT(std::vector<bool>(orbGetLogicals(a), orbGetLogicals(a) + 2),
              ElementsAre(false, true));
}

TEST(GetImagData, OfA16BitArrayIsNullWhenRealAndItsImaginaryPartWhenComplex) {
  for (const orbClassID id : {orbUINT16_CLASS, orbINT16_CLASS}) {
    EXPECT_EQ(orbGetImagData(Array(orbCreateNumericMatrix(1, 2, id, orbREAL))), nullptr);
    const Array a(orbCreateNumericMatrix(1, 2, id, orbCOMPLEX));
    auto* imag = static_cast<uint16_t*>(orbGetImagData(a));
    ASSERT_NE(imag, nullptr);
    imag[1] = 0x8001;
    EXPECT_EQ(static_cast<uint16_t*>(orbGetImagData(Array(orbDuplicateArray(a))))[1],
              0x8001);
  }
}

TEST(GetImagData, OfACharArrayIsAlwaysNull) {
  EXPECT_EQ(orbGetImagData(charRow(u"ab")), nullptr);
}

template <class T>
Array scalarOf(orbClassID classid, T value) {
  Array a(orbCreateNumericMatrix(1, 2, classid, orbCOMPLEX));
  static_cast<T*>(orbGetData(a))[0] = value;
  static_cast<T*>(orbGetData(a))[1] = T{77};
  static_cast<T*>(orbGetImagData(a))[0] = T{55};
  return a;
}

template <class T>
void expectLimitsAsScalar(orbClassID classid) {
  using Limits = std::numeric_limits<T>;
  for (const T value : {Limits::lowest(), Limits::max(), T{1}}) {
    EXPECT_EQ(orbGetScalar(scalarOf(classid, value)), static_cast<double>(value));
  }
}

TEST(GetScalar, IsTheFirstRealElementOfItsClassAsADouble) {
  expectLimitsAsScalar<uint8_t>(orbUINT8_CLASS);
  expectLimitsAsScalar<int8_t>(orbINT8_CLASS);
  expectLimitsAsScalar<uint16_t>(orbUINT16_CLASS);
  expectLimitsAsScalar<int16_t>(orbINT16_CLASS);
  expectLimitsAsScalar<uint32_t>(orbUINT32_CLASS);
  expectLimitsAsScalar<int32_t>(orbINT32_CLASS);
  expectLimitsAsScalar<uint64_t>(orbUINT64_CLASS);
  expectLimitsAsScalar<int64_t>(orbINT64_CLASS);
  expectLimitsAsScalar<float>(orbSINGLE_CLASS);
  expectLimitsAsScalar<double>(orbDOUBLE_CLASS);
}

TEST(GetScalar, OfALogicalIsZeroOrOne) {
  EXPECT_EQ(orbGetScalar(Array(orbCreateLogicalScalar(false))), 0.0);
  EXPECT_EQ(orbGetScalar(Array(orbCreateLogicalScalar(true))), 1.0);
}

TEST(GetScalar, OfACharIsItsFirstCodeUnitUnsigned) {
  EXPECT_EQ(orbGetScalar(charRow(u"\xFFE9z")), 65513.0);
}

TEST(GetScalar, OfAStructOrCellIsZeroEvenWithElements) {
  const Array s = structOf({"a"});
  orbSetField(s, 0, "a", doubleRow({5}));
  EXPECT_EQ(orbGetScalar(s), 0.0);
  EXPECT_EQ(orbGetScalar(cellRow(doubleRow({5}))), 0.0);
}

TEST(GetScalar, OfASparseArrayIsItsFirstStoredValue) {
  const Array numbers(orbCreateSparse(9, 9, 2, orbCOMPLEX));
  orbGetPr(numbers)[0] = -4.5;
  EXPECT_EQ(orbGetScalar(numbers), -4.5);
  const Array logicals(orbCreateSparseLogicalMatrix(9, 9, 2));
  orbGetLogicals(logicals)[0] = true;
  EXPECT_EQ(orbGetScalar(logicals), 1.0);
}

TEST(GetScalar, OfAnEmptyArrayOfAnyClassIsZero) {
  for (const Type& type : types()) {
    SCOPED_TRACE(type.name);
    EXPECT_EQ(orbGetScalar(create(type, {0, 3})), 0.0);
    EXPECT_EQ(orbGetScalar(Array(orbDuplicateArray(create(type, {0, 3})))), 0.0);
  }
}

}  // namespace
}  // namespace orb::test
