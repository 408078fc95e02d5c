// SPDX-License-Identifier: MIT
#include "array/proto_extension_initializer.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "orb/dispatch_on_QXType"
#include "unit/array/message.h"

namespace orb::test {
namespace {

constexpr bool kReal = false;
constexpr bool kComplex = true;

void initialise(KALDEX_Array& message, size_t count, bool isComplex) {
  ProtoExtensionInitializer initializer(message, count, isComplex);
  dispatch_on_QXType(message.type(), initializer);
}

KALDEX_Array fresh(QXType type) {
  KALDEX_Array message;
  message.set_type(type);
  return message;
}

/// The dense types with a list of elements.
std::vector<QXType> listTypes() {
  std::vector<QXType> types(std::begin(kNumericTypes) + 2, std::end(kNumericTypes));
  types.push_back(KALDEX_Array::LOGICAL);
  types.push_back(KALDEX_Array::CHAR);
  return types;
}

TEST(Initializer, GivesARealArrayZeros) {
  for (const QXType type : kNumericTypes) {
    KALDEX_Array message = fresh(type);
    initialise(message, 3, kReal);
    EXPECT_THAT(message, IsMessage(ofType(type, elements(type, {0, 0, 0}))));
  }
}

TEST(Initializer, GivesAComplexArrayZerosInBothParts) {
  for (const QXType type : kNumericTypes) {
    KALDEX_Array message = fresh(type);
    initialise(message, 2, kComplex);
    EXPECT_THAT(message, IsMessage(ofType(
                             type, elements(type, {0, 0}) + imagElements(type, {0, 0}))));
  }
}

TEST(Initializer, GivesLogicalsAndCharsOnePartWhateverTheFlag) {
  for (const QXType type : {KALDEX_Array::LOGICAL, KALDEX_Array::CHAR}) {
    for (const bool isComplex : {kReal, kComplex}) {
      KALDEX_Array message = fresh(type);
      initialise(message, 2, isComplex);
      EXPECT_THAT(message, IsMessage(ofType(type, elements(type, {0, 0}))));
    }
  }
}

TEST(Initializer, LeavesStructCellAndSparseAlone) {
  for (const QXType type :
       {KALDEX_Array::STRUCT, KALDEX_Array::CELL, KALDEX_Array::SPARSE}) {
    KALDEX_Array message = fresh(type);
    initialise(message, 3, kComplex);
    EXPECT_THAT(message, IsMessage("type: " + KALDEX_Array::QXType_Name(type)));
  }
}

TEST(Initializer, AppendsToAListAndResizesBytes) {
  for (const QXType type : kNumericTypes) {
    KALDEX_Array message =
        parsed(ofType(type, elements(type, {1}) + imagElements(type, {2, 3})));
    initialise(message, 2, kComplex);
    const bool isBytes = type <= KALDEX_Array::INT8;
    const auto real = isBytes ? std::vector<int>{1, 0} : std::vector<int>{1, 0, 0};
    const auto imag = isBytes ? std::vector<int>{2, 3} : std::vector<int>{2, 3, 0, 0};
    EXPECT_THAT(message,
                IsMessage(ofType(type, elements(type, real) + imagElements(type, imag))));
  }
  for (const QXType type : {KALDEX_Array::LOGICAL, KALDEX_Array::CHAR}) {
    KALDEX_Array message = parsed(ofType(type, elements(type, {1})));
    initialise(message, 2, kReal);
    EXPECT_THAT(message, IsMessage(ofType(type, elements(type, {1, 0, 0}))));
  }
}

TEST(Initializer, RefusesCountsAbove32BitsBeforeAnythingIsAppended) {
  for (const QXType type : listTypes()) {
    for (const size_t count : {size_t{2147483648}, (size_t{1} << 32) + 1, ~size_t{0}}) {
      SCOPED_TRACE(::testing::Message() << type << " with " << count);
      const std::string text = ofType(type, elements(type, {1}));
      KALDEX_Array message = parsed(text);
      EXPECT_THROW(initialise(message, count, kComplex),
                   boost::numeric::positive_overflow);
      EXPECT_THAT(message, IsMessage(text));
    }
  }
}

TEST(Initializer, HasNo32BitLimitForBytes) {
  for (const QXType type : {KALDEX_Array::UINT8, KALDEX_Array::INT8}) {
    KALDEX_Array message = fresh(type);
    EXPECT_THROW(initialise(message, ~size_t{0}, kReal), std::length_error);
  }
}

TEST(Initializer, RefusesOtherTypes) {
  for (const QXType type : kRefusedTypes) {
    KALDEX_Array message = fresh(type);
    EXPECT_THROW(initialise(message, 1, kReal), std::invalid_argument);
  }
}

}  // namespace
}  // namespace orb::test
