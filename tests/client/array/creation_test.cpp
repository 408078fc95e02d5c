// SPDX-License-Identifier: MIT
// Creators: shapes, starting values and what each puts into the array.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "client/array/types.h"

namespace orb::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

class CreateArray : public ::testing::TestWithParam<Type> {};

TEST_P(CreateArray, KeepsEveryShapeItIsGiven) {
  const Type& type = GetParam();
  for (const Shape& shape : shapesOf(type)) {
    for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
      SCOPED_TRACE(describe(shape, flag));
      const Array a = create(type, shape, flag);
      EXPECT_EQ(dimensionsOf(a), shape);
      EXPECT_EQ(orbGetNumberOfElements(a), countOf(shape));
    }
  }
}

TEST_P(CreateArray, StartsWithZeros) {
  const Type& type = GetParam();
  for (const Shape& shape : shapesOf(type)) {
    for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
      SCOPED_TRACE(describe(shape, flag));
      const Array a = create(type, shape, flag);
      EXPECT_THAT(bytesOf(type, realData(type, a), countOf(shape)), Each(0));
      EXPECT_THAT(bytesOf(type, orbGetImagData(a), countOf(shape)), Each(0));
    }
  }
}

TEST_P(CreateArray, OfNoDimensionsIsEmpty0By0WithoutReadingThem) {
  const Type& type = GetParam();
  if (type.isSparse) return;
  const char* fields[] = {"a"};
  const Array a(type.id == orbSTRUCT_CLASS ? orbCreateStructArray(0, nullptr, 1, fields)
                : type.id == orbCELL_CLASS ? orbCreateCellArray(0, nullptr)
                : type.id == orbCHAR_CLASS ? orbCreateCharArray(0, nullptr)
                : type.id == orbLOGICAL_CLASS
                    ? orbCreateLogicalArray(0, nullptr)
                    : orbCreateNumericArray(0, nullptr, type.id, orbCOMPLEX));
  EXPECT_EQ(orbGetClassID(a), type.id);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(0, 0));
  EXPECT_FALSE(orbIsComplex(a));
}

TEST_P(CreateArray, OfOneDimensionIsAColumn) {
  const Type& type = GetParam();
  if (type.isSparse) return;
  EXPECT_THAT(dimensionsOf(create(type, {5})), ElementsAre(5, 1));
  EXPECT_THAT(dimensionsOf(create(type, {0})), ElementsAre(0, 1));
}

TEST_P(CreateArray, TakesExtentsAbove32BitsWhenThereAreNoElements) {
  const Type& type = GetParam();
  if (type.isSparse) return;
  const Array a = create(type, {2147483648, 0}, orbCOMPLEX);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(2147483648, 0));
  EXPECT_FALSE(orbIsComplex(a));
}

TEST_P(CreateArray, CountsElementsModulo2ToThe64th) {
  const Type& type = GetParam();
  if (type.isSparse) return;
  const Array a = create(type, {size_t{1} << 32, size_t{1} << 32});
  EXPECT_EQ(orbGetNumberOfElements(a), 0u);
  EXPECT_EQ(realData(type, a), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Types, CreateArray, ::testing::ValuesIn(types()), TypeName());

TEST(CreateNumericArray, KeepsThreeDimensionsWithATrailingOne) {
  const size_t dims[] = {2, 3, 1};
  const Array a(orbCreateNumericArray(3, dims, orbDOUBLE_CLASS, orbREAL));
  EXPECT_EQ(orbGetNumberOfDimensions(a), 3u);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 3, 1));
}

TEST(CreateNumericArray, GivesNullForAClassThatIsNotNumeric) {
  const size_t dims[] = {2, 2};
  for (const int id : {INT32_MIN, -2, -1, 10, 11, 12, 13, 14, 15, INT32_MAX}) {
    SCOPED_TRACE(id);
    const auto classid = static_cast<orbClassID>(id);
    EXPECT_EQ(orbCreateNumericArray(2, dims, classid, orbREAL), nullptr);
    EXPECT_EQ(orbCreateNumericMatrix(2, 2, classid, orbREAL), nullptr);
  }
}

TEST(CreateNumericMatrix, MakesEveryNumericClass) {
  for (const Type& type : types()) {
    if (!isNumeric(type) || type.isSparse) continue;
    for (const Shape& shape : matrixShapes()) {
      for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
        SCOPED_TRACE(type.name + (" " + describe(shape, flag)));
        const Array a(orbCreateNumericMatrix(shape[0], shape[1], type.id, flag));
        EXPECT_EQ(orbGetClassID(a), type.id);
        EXPECT_EQ(dimensionsOf(a), shape);
        EXPECT_EQ(orbIsComplex(a), flag == orbCOMPLEX && countOf(shape) != 0);
        EXPECT_THAT(bytesOf(type, orbGetData(a), countOf(shape)), Each(0));
        EXPECT_THAT(bytesOf(type, orbGetImagData(a), countOf(shape)), Each(0));
        EXPECT_EQ(orbGetData(a) != nullptr, countOf(shape) != 0);
        EXPECT_EQ(orbGetImagData(a) != nullptr, orbIsComplex(a));
      }
    }
  }
}

TEST(CreateDoubleMatrix, IsDoubleWithZeros) {
  const Array a(orbCreateDoubleMatrix(2, 3, orbCOMPLEX));
  EXPECT_EQ(orbGetClassID(a), orbDOUBLE_CLASS);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 3));
  EXPECT_TRUE(orbIsComplex(a));
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(0, 0, 0, 0, 0, 0));
  EXPECT_EQ(orbGetPi(a)[5], 0);
}

TEST(CreateDoubleMatrix, ComplexWithoutElementsIsReal) {
  const Array a(orbCreateDoubleMatrix(0, 3, orbCOMPLEX));
  EXPECT_FALSE(orbIsComplex(a));
  EXPECT_EQ(orbGetPi(a), nullptr);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(0, 3));
}

TEST(CreateDoubleMatrix, ComplexWithoutElementsStaysRealWhenItGrows) {
  const Array a(orbCreateDoubleMatrix(0, 3, orbCOMPLEX));
  orbSetM(a, 2);
  EXPECT_FALSE(orbIsComplex(a));
  EXPECT_NE(orbGetPr(a), nullptr);
  EXPECT_EQ(orbGetPi(a), nullptr);
}

TEST(CreateDoubleScalar, HoldsItsValue) {
  for (const double value : {0.0, -2.5, 1e308}) {
    const Array a(orbCreateDoubleScalar(value));
    EXPECT_EQ(orbGetClassID(a), orbDOUBLE_CLASS);
    EXPECT_FALSE(orbIsComplex(a));
    EXPECT_THAT(dimensionsOf(a), ElementsAre(1, 1));
    EXPECT_THAT(elementsOf<double>(a), ElementsAre(value));
  }
}

TEST(CreateLogicalMatrix, IsLogicalAndFalse) {
  const Array a(orbCreateLogicalMatrix(1, 2));
  EXPECT_EQ(orbGetClassID(a), orbLOGICAL_CLASS);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(1, 2));
  EXPECT_THAT(elementsOf<bool>(a), ElementsAre(false, false));
}

TEST(CreateLogicalScalar, HoldsItsValue) {
  for (const bool value : {false, true}) {
    const Array a(orbCreateLogicalScalar(value));
    EXPECT_EQ(orbGetClassID(a), orbLOGICAL_CLASS);
    EXPECT_THAT(dimensionsOf(a), ElementsAre(1, 1));
    EXPECT_THAT(elementsOf<bool>(a), ElementsAre(value));
  }
}

TEST(CreateString, OfNothingIs0By0Char) {
  const Array a(orbCreateString(""));
  EXPECT_EQ(orbGetClassID(a), orbCHAR_CLASS);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(0, 0));
}

TEST(CreateString, OfTwoCharactersIs1By2) {
  const Array a(orbCreateString("Hi"));
  EXPECT_EQ(orbGetClassID(a), orbCHAR_CLASS);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(1, 2));
  EXPECT_EQ(unitsOf(a), u"Hi");
}

TEST(CreateString, ExtendsTheSignOfEveryByte) {
  std::string bytes;
  std::u16string units;
  for (unsigned byte = 1; byte <= 0xFF; ++byte) {
    bytes += static_cast<char>(byte);
    units += static_cast<char16_t>(byte < 0x80 ? byte : 0xFF00 + byte);
  }
  EXPECT_EQ(unitsOf(Array(orbCreateString(bytes.c_str()))), units);
}

TEST(CreateString, MakesFfe9OfByteE9) {
  EXPECT_EQ(orbGetChars(Array(orbCreateString("\xE9")))[0], 0xFFE9);
}

TEST(CreateCharMatrixFromStrings, FillsShorterRowsWithNul) {
  const char* rows[] = {"a", "bcd"};
  const Array a(orbCreateCharMatrixFromStrings(2, rows));
  EXPECT_EQ(orbGetClassID(a), orbCHAR_CLASS);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 3));
  EXPECT_THAT(elementsOf<char16_t>(a), ElementsAre(u'a', u'b', 0, u'c', 0, u'd'));
}

TEST(CreateCharMatrixFromStrings, ExtendsTheSignOfEveryByte) {
  const char* rows[] = {"\x7F\x80", "\xFF"};
  EXPECT_THAT(elementsOf<char16_t>(Array(orbCreateCharMatrixFromStrings(2, rows))),
              ElementsAre(0x007F, 0xFFFF, 0xFF80, 0));
}

TEST(CreateCharMatrixFromStrings, OfNoStringsIs0By0WithoutReadingThem) {
  const Array a(orbCreateCharMatrixFromStrings(0, nullptr));
  EXPECT_EQ(orbGetClassID(a), orbCHAR_CLASS);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(0, 0));
}

TEST(CreateCharMatrixFromStrings, OfEmptyStringsHasNoColumns) {
  const char* rows[] = {"", "", ""};
  EXPECT_THAT(dimensionsOf(Array(orbCreateCharMatrixFromStrings(3, rows))),
              ElementsAre(3, 0));
}

TEST(CreateCellMatrix, HoldsEmptyDoubles) {
  const Array a(orbCreateCellMatrix(2, 3));
  EXPECT_EQ(orbGetClassID(a), orbCELL_CLASS);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(2, 3));
  for (size_t i = 0; i < 6; ++i) {
    const Array element(orbGetCell(a, i));
    EXPECT_EQ(orbGetClassID(element), orbDOUBLE_CLASS);
    EXPECT_THAT(dimensionsOf(element), ElementsAre(0, 0));
  }
}

TEST(CreateCellArray, HoldsEmptyDoublesInEveryDimension) {
  const size_t dims[] = {2, 1, 2};
  const Array a(orbCreateCellArray(3, dims));
  for (size_t i = 0; i < 4; ++i) {
    const Array element(orbGetCell(a, i));
    EXPECT_EQ(orbGetClassID(element), orbDOUBLE_CLASS);
    EXPECT_THAT(dimensionsOf(element), ElementsAre(0, 0));
  }
  EXPECT_EQ(orbGetCell(a, 4), nullptr);
}

/// The same struct by both creators.
class CreateStruct : public ::testing::TestWithParam<const char*> {
 protected:
  static Array create(size_t m, size_t n, int nfields, const char** names) {
    const size_t dims[] = {m, n};
    return Array(GetParam() == std::string("Array")
                     ? orbCreateStructArray(2, dims, nfields, names)
                     : orbCreateStructMatrix(m, n, nfields, names));
  }
};

TEST_P(CreateStruct, KeepsFieldNamesInOrderAndValuesEmpty) {
  const char* names[] = {"b", "a"};
  const Array s = create(2, 2, 2, names);
  EXPECT_EQ(orbGetClassID(s), orbSTRUCT_CLASS);
  EXPECT_THAT(dimensionsOf(s), ElementsAre(2, 2));
  EXPECT_EQ(orbGetNumberOfFields(s), 2);
  EXPECT_STREQ(orbGetFieldNameByNumber(s, 0), "b");
  EXPECT_STREQ(orbGetFieldNameByNumber(s, 1), "a");
  for (size_t index = 0; index < 4; ++index) {
    for (const char* name : names) {
      const Array value(orbGetField(s, index, name));
      EXPECT_EQ(orbGetClassID(value), orbDOUBLE_CLASS);
      EXPECT_THAT(dimensionsOf(value), ElementsAre(0, 0));
    }
  }
}

TEST_P(CreateStruct, TakesNoNamesWhenTheirNumberIsZeroOrNegative) {
  for (const int nfields : {0, -1, INT32_MIN}) {
    SCOPED_TRACE(nfields);
    const Array s = create(2, 3, nfields, nullptr);
    EXPECT_EQ(orbGetNumberOfFields(s), 0);
    EXPECT_THAT(dimensionsOf(s), ElementsAre(2, 3));
    EXPECT_EQ(orbGetField(s, 0, "a"), nullptr);
    EXPECT_EQ(orbGetNumberOfFields(Array(orbDuplicateArray(s))), 0);
  }
}

TEST_P(CreateStruct, GainsAFieldInEveryElementAfterANegativeNumberOfNames) {
  const Array s = create(1, 2, -1, nullptr);
  EXPECT_EQ(orbAddField(s, "f"), 0);
  orbSetField(s, 1, "f", doubleRow({5}));
  EXPECT_TRUE(orbIsEmpty(Array(orbGetField(s, 0, "f"))));
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 1, "f"))), 5);
}

TEST_P(CreateStruct, TakesNamesUnchecked) {
  const char* names[] = {"", "a b", "1", "\xC3\xA9"};
  const Array s = create(1, 1, 4, names);
  for (int n = 0; n < 4; ++n) EXPECT_STREQ(orbGetFieldNameByNumber(s, n), names[n]);
  EXPECT_EQ(orbGetFieldNumber(s, ""), 0);
}

TEST_P(CreateStruct, TakesANameTwice) {
  const char* names[] = {"a", "a"};
  const Array s = create(1, 1, 2, names);
  EXPECT_EQ(orbGetNumberOfFields(s), 2);
  EXPECT_STREQ(orbGetFieldNameByNumber(s, 1), "a");
}

TEST_P(CreateStruct, CopiesTheNames) {
  char name[] = "field";
  const char* names[] = {name};
  const Array s = create(1, 1, 1, names);
  name[0] = 'F';
  EXPECT_STREQ(orbGetFieldNameByNumber(s, 0), "field");
}

TEST_P(CreateStruct, WithoutElementsHasItsFields) {
  const char* names[] = {"a", "b"};
  const Array s = create(0, 0, 2, names);
  EXPECT_EQ(orbGetNumberOfFields(s), 2);
  EXPECT_EQ(orbGetField(s, 0, "a"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Creators, CreateStruct, ::testing::Values("Array", "Matrix"),
                         [](const auto& creator) { return creator.param; });

TEST(CreateSparse, Of4By3WithCapacity5HoldsFiveFourAndFiveZeros) {
  const Array a(orbCreateSparse(4, 3, 5, orbREAL));
  EXPECT_TRUE(orbIsSparse(a));
  EXPECT_TRUE(orbIsDouble(a));
  EXPECT_FALSE(orbIsComplex(a));
  EXPECT_THAT(dimensionsOf(a), ElementsAre(4, 3));
  EXPECT_EQ(orbGetNzmax(a), 5u);
  EXPECT_THAT(std::vector<size_t>(orbGetIr(a), orbGetIr(a) + 5),
              ElementsAre(0, 0, 0, 0, 0));
  EXPECT_THAT(std::vector<size_t>(orbGetJc(a), orbGetJc(a) + 4), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(std::vector<double>(orbGetPr(a), orbGetPr(a) + 5),
              ElementsAre(0, 0, 0, 0, 0));
  EXPECT_EQ(orbGetPi(a), nullptr);
}

TEST(CreateSparse, ComplexHasAnImaginaryZeroForEveryValue) {
  const Array a(orbCreateSparse(4, 3, 5, orbCOMPLEX));
  EXPECT_TRUE(orbIsComplex(a));
  EXPECT_THAT(std::vector<double>(orbGetPi(a), orbGetPi(a) + 5),
              ElementsAre(0, 0, 0, 0, 0));
}

TEST(CreateSparse, ComplexWithoutElementsIsRealThoughItsValuesHaveImaginaryParts) {
  const Array a(orbCreateSparse(0, 3, 2, orbCOMPLEX));
  EXPECT_FALSE(orbIsComplex(a));
  ASSERT_NE(orbGetPi(a), nullptr);
  EXPECT_THAT(std::vector<double>(orbGetPi(a), orbGetPi(a) + 2), ElementsAre(0, 0));
  EXPECT_TRUE(orbIsComplex(Array(orbDuplicateArray(a))));
}

TEST(CreateSparse, KeepsACapacityOfZero) {
  const Array a(orbCreateSparse(4, 3, 0, orbREAL));
  EXPECT_EQ(orbGetNzmax(a), 0u);
  EXPECT_EQ(orbGetIr(a), nullptr);
  EXPECT_EQ(orbGetPr(a), nullptr);
}

TEST(CreateSparse, TakesACapacityAboveItsNumberOfElements) {
  EXPECT_EQ(orbGetNzmax(Array(orbCreateSparse(1, 1, 9, orbREAL))), 9u);
}

TEST(CreateSparse, OfNoColumnsHasOneColumnStart) {
  const Array a(orbCreateSparse(3, 0, 0, orbREAL));
  ASSERT_NE(orbGetJc(a), nullptr);
  EXPECT_EQ(orbGetJc(a)[0], 0u);
}

TEST(CreateSparse, TakesMoreThan2147483647ElementsAsTheyAreNotStored) {
  EXPECT_EQ(orbGetNumberOfElements(Array(orbCreateSparse(2147483647, 3, 1, orbREAL))),
            6442450941u);
}

TEST(CreateSparseLogicalMatrix, HoldsFalseValues) {
  const Array a(orbCreateSparseLogicalMatrix(4, 3, 5));
  EXPECT_TRUE(orbIsSparse(a));
  EXPECT_TRUE(orbIsLogical(a));
  EXPECT_FALSE(orbIsComplex(a));
  EXPECT_THAT(dimensionsOf(a), ElementsAre(4, 3));
  EXPECT_EQ(orbGetNzmax(a), 5u);
  EXPECT_THAT(std::vector<size_t>(orbGetIr(a), orbGetIr(a) + 5),
              ElementsAre(0, 0, 0, 0, 0));
  EXPECT_THAT(std::vector<size_t>(orbGetJc(a), orbGetJc(a) + 4), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(std::vector<bool>(orbGetLogicals(a), orbGetLogicals(a) + 5),
              ElementsAre(false, false, false, false, false));
}

}  // namespace
}  // namespace orb::test
