// SPDX-License-Identifier: MIT
// Dimensions, text, classes and predicates of arrays as only a server makes them: without
// dimensions, with fewer elements than those say, sparse of an unknown type.
#include <gmock/gmock.h>

#include <cstring>

#include "support/array.h"
#include "unit/array/message.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

Array arrayOf(const std::string& text) { return Array(handleOf(text).release()); }

TEST(ArrayWithoutDimensions, IsEmpty) {
  const Array a = arrayOf("type: DOUBLE qxdouble { elements: 1 }");
  const size_t sub = 5;
  EXPECT_EQ(orbGetNumberOfDimensions(a), 0u);
  EXPECT_EQ(orbGetDimensions(a), nullptr);
  EXPECT_EQ(orbGetNumberOfElements(a), 0u);
  EXPECT_EQ(orbGetM(a), 0u);
  EXPECT_EQ(orbGetN(a), 0u);
  EXPECT_EQ(orbCalcSingleSubscript(a, 1, &sub), 0u);
  EXPECT_TRUE(orbIsEmpty(a));
}

TEST(ArrayWithoutDimensions, HasNoExtentToSet) {
  const char* text = "type: DOUBLE qxdouble { elements: 1 }";
  const Array a = arrayOf(text);
  orbSetM(a, 3);
  orbSetN(a, 3);
  EXPECT_THAT(messageOf(a), IsMessage(text));
}

TEST(ArrayOfOneDimension, HasAFirstExtentOnly) {
  const Array a = arrayOf("type: DOUBLE dimension: 1 qxdouble { elements: 1 }");
  EXPECT_EQ(orbGetM(a), 1u);
  EXPECT_EQ(orbGetN(a), 0u);
  orbSetN(a, 3);
  EXPECT_THAT(dimensionsOf(a), ElementsAre(1));
  orbSetM(a, 2);
  EXPECT_THAT(messageOf(a),
              IsMessage("type: DOUBLE dimension: 2 qxdouble { elements: [1, 0] }"));
}

TEST(ArrayOfOneDimension, IsNoLogicalScalar) {
  EXPECT_FALSE(orbIsLogicalScalar(arrayOf("type: LOGICAL dimension: 1")));
}

TEST(ShortArray, HandsOutNoPointerWithoutElements) {
  EXPECT_EQ(orbGetPr(arrayOf("type: DOUBLE dimension: [1, 1]")), nullptr);
  EXPECT_EQ(orbGetData(arrayOf("type: UINT16 dimension: [1, 1]")), nullptr);
  EXPECT_EQ(orbGetChars(arrayOf("type: CHAR dimension: [1, 1]")), nullptr);
  EXPECT_EQ(orbGetLogicals(arrayOf("type: LOGICAL dimension: [1, 1]")), nullptr);
  EXPECT_EQ(orbGetScalar(arrayOf("type: INT8 dimension: [1, 1]")), 0.0);
}

TEST(ShortArray, GivesNulForTextThatIsMissing) {
  const Array a = arrayOf("type: CHAR dimension: [1, 4] qxchar { elements: [97, 98] }");
  const struct {
    size_t size;
    int status;
    const char* bytes;
  } rows[] = {{5, 0, "ab\0\0\0#"}, {4, 1, "ab\0\0##"}, {2, 1, "a\0####"}};
  for (const auto& [size, status, bytes] : rows) {
    SCOPED_TRACE(size);
    char buffer[] = "######";
    EXPECT_EQ(orbGetString(a, buffer, size), status);
    EXPECT_EQ(std::memcmp(buffer, bytes, 6), 0);
  }
}

TEST(ShortArray, IsNoTrueLogicalScalar) {
  EXPECT_FALSE(orbIsLogicalScalarTrue(arrayOf("type: LOGICAL dimension: [1, 1]")));
  EXPECT_FALSE(orbIsLogicalScalarTrue(
      arrayOf("type: SPARSE dimension: [1, 1] sparse { type: LOGICAL } "
              "logical { elements: true }")));
  EXPECT_TRUE(orbIsLogicalScalarTrue(
      arrayOf("type: SPARSE dimension: [1, 1] sparse { type: LOGICAL "
              "logical { elements: true } }")));
}

TEST(SparseArrayWithoutPayload, IsDouble) {
  const Array a = arrayOf("type: SPARSE dimension: [1, 1]");
  EXPECT_EQ(orbGetClassID(a), orbDOUBLE_CLASS);
  EXPECT_STREQ(orbGetClassName(a), "double");
  EXPECT_TRUE(orbIsDouble(a));
  EXPECT_TRUE(orbIsNumeric(a));
  EXPECT_TRUE(orbIsClass(a, "double"));
  EXPECT_FALSE(orbIsLogical(a));
}

TEST(SparseArrayOfAnUnknownType, HasTheDoubleClassWithoutDoubles) {
  const Array a = arrayOf(
      "type: SPARSE dimension: [1, 1] sparse { type: 7 ir: 0 jc: [0, 1] "
      "logical { elements: true } qxsparsedouble { elements: 1 } }");
  EXPECT_EQ(orbGetClassID(a), orbDOUBLE_CLASS);
  EXPECT_STREQ(orbGetClassName(a), "double");
  EXPECT_TRUE(orbIsSparse(a));
  EXPECT_FALSE(orbIsDouble(a));
  EXPECT_FALSE(orbIsLogical(a));
  EXPECT_FALSE(orbIsNumeric(a));
  EXPECT_FALSE(orbIsLogicalScalar(a));
  EXPECT_FALSE(orbIsClass(a, "double"));
  EXPECT_FALSE(orbIsClass(a, "logical"));
  EXPECT_EQ(orbGetPr(a), nullptr);
  EXPECT_EQ(orbGetData(a), nullptr);
  EXPECT_EQ(orbGetLogicals(a), nullptr);
  EXPECT_EQ(orbGetElementSize(a), 1u);
}

TEST(ReceivedArray, IsComplexByItsValuesOnly) {
  EXPECT_FALSE(orbIsComplex(arrayOf("type: DOUBLE isComplex: true")));
  EXPECT_TRUE(orbIsComplex(arrayOf("type: INT8 int8 { imag_elements: 'a' }")));
  EXPECT_FALSE(
      orbIsComplex(arrayOf("type: UINT8 uint8 { elements: 'a' imag_elements: '' }")));
}

TEST(ArrayToString, IsNullWhereTheProxyIsNotThatOfChars) {
  UniqueHandle handle = std::make_unique<orbArrayHandle>();
  handle->proxy =
      std::make_unique<KALDEXArrayProxy>(shared("type: CHAR qxchar { elements: 97 }"));
  EXPECT_EQ(orbArrayToString(Array(handle.release())), nullptr);
}

}  // namespace
}  // namespace orb::test
