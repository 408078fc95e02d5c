// SPDX-License-Identifier: MIT
#include "array/proto_extension_resizer.h"

#include <gtest/gtest.h>

#include <utility>

#include "orb/dispatch_on_QXType"
#include "unit/array/message.h"

namespace orb::test {
namespace {

using Values = std::vector<int>;

void resize(KALDEX_Array& message, int32_t count) {
  ProtoExtensionResizer resizer(message, count);
  dispatch_on_QXType(message.type(), resizer);
}

std::string resized(const std::string& text, int32_t count) {
  KALDEX_Array message = parsed(text);
  resize(message, count);
  return message.SerializeAsString();
}

std::string bytesOf(const std::string& text) { return parsed(text).SerializeAsString(); }

/// 1, 2, 3 brought to another length.
const struct {
  int32_t count;
  Values values;
} kRows[] = {{0, {}}, {1, {1}}, {2, {1, 2}}, {3, {1, 2, 3}}, {5, {1, 2, 3, 0, 0}}};

TEST(Resizer, KeepsARealArrayReal) {
  for (const QXType type : kNumericTypes) {
    for (const auto& [count, values] : kRows) {
      SCOPED_TRACE(::testing::Message() << type << " to " << count);
      EXPECT_EQ(resized(ofType(type, elements(type, {1, 2, 3})), count),
                bytesOf(ofType(type, elements(type, values))));
    }
  }
}

TEST(Resizer, KeepsAComplexArrayComplex) {
  for (const QXType type : kNumericTypes) {
    for (const auto& [count, values] : kRows) {
      SCOPED_TRACE(::testing::Message() << type << " to " << count);
      const std::string before =
          elements(type, {1, 2, 3}) + imagElements(type, {1, 2, 3});
      const std::string after = elements(type, values) + imagElements(type, values);
      EXPECT_EQ(resized(ofType(type, before), count), bytesOf(ofType(type, after)));
    }
  }
}

TEST(Resizer, DoesNotReviveAnEmptyImaginaryPart) {
  for (const QXType type : kNumericTypes) {
    SCOPED_TRACE(type);
    const std::string none = imagElements(type, {});
    EXPECT_EQ(resized(ofType(type, elements(type, {1}) + none), 2),
              bytesOf(ofType(type, elements(type, {1, 0}) + none)));
  }
}

TEST(Resizer, BringsPartsOfDifferentLengthsToOne) {
  for (const QXType type : kNumericTypes) {
    SCOPED_TRACE(type);
    const std::string before = elements(type, {}) + imagElements(type, {1, 2, 3});
    const std::string after = elements(type, {0, 0}) + imagElements(type, {1, 2});
    EXPECT_EQ(resized(ofType(type, before), 2), bytesOf(ofType(type, after)));
  }
}

TEST(Resizer, ResizesLogicalsAndChars) {
  for (const QXType type : {KALDEX_Array::LOGICAL, KALDEX_Array::CHAR}) {
    const struct {
      int32_t count;
      Values values;
    } rows[] = {{0, {}}, {1, {1}}, {2, {1, 1}}, {4, {1, 1, 0, 0}}};
    for (const auto& [count, values] : rows) {
      SCOPED_TRACE(::testing::Message() << type << " to " << count);
      EXPECT_EQ(resized(ofType(type, elements(type, {1, 1})), count),
                bytesOf(ofType(type, elements(type, values))));
    }
  }
}

TEST(Resizer, MakesAnAbsentPayloadPresent) {
  const struct {
    const char* before;
    const char* after;
  } rows[] = {
      {"type: UINT8", "type: UINT8 uint8 { elements: '' }"},
      {"type: INT8", "type: INT8 int8 { elements: '' }"},
      {"type: UINT16", "type: UINT16 uint16 { }"},
      {"type: INT16", "type: INT16 int16 { }"},
      {"type: UINT32", "type: UINT32 uint32 { }"},
      {"type: INT32", "type: INT32 int32 { }"},
      {"type: UINT64", "type: UINT64 uint64 { }"},
      {"type: INT64", "type: INT64 int64 { }"},
      {"type: SINGLE", "type: SINGLE single { }"},
      {"type: DOUBLE", "type: DOUBLE qxdouble { }"},
      {"type: LOGICAL", "type: LOGICAL logical { }"},
      {"type: CHAR", "type: CHAR qxchar { }"},
      {"type: STRUCT", "type: STRUCT struct_ { }"},
      {"type: CELL", "type: CELL cell { }"},
      {"type: SPARSE", "type: SPARSE sparse { jc: 0 }"},
  };
  for (const auto& [before, after] : rows) {
    SCOPED_TRACE(before);
    EXPECT_EQ(resized(before, 0), bytesOf(after));
  }
}

TEST(Resizer, GrowsAListOfMessagesByEmptySlots) {
  const std::string child = "elements { type: CHAR } ";
  const std::string slot = std::string("elements { ") + kEmptySlot + " } ";
  EXPECT_EQ(resized("type: CELL cell { " + child + "}", 3),
            bytesOf("type: CELL cell { " + child + slot + slot + "}"));
  EXPECT_EQ(resized("type: STRUCT struct_ { field_names: 'a' " + child + "}", 2),
            bytesOf("type: STRUCT struct_ { field_names: 'a' " + child + slot + "}"));
}

TEST(Resizer, CutsAListOfMessagesAtItsEnd) {
  const std::string a = "elements { type: CHAR } ";
  const std::string b = "elements { type: CELL } ";
  for (const auto& [prefix, type] : {std::pair("type: CELL cell { ", "CELL"),
                                     std::pair("type: STRUCT struct_ { ", "STRUCT")}) {
    SCOPED_TRACE(type);
    EXPECT_EQ(resized(prefix + a + b + a + "}", 2), bytesOf(prefix + a + b + "}"));
    EXPECT_EQ(resized(prefix + a + b + "}", 2), bytesOf(prefix + a + b + "}"));
    EXPECT_EQ(resized(prefix + a + b + "}", 0), bytesOf(prefix + std::string("}")));
  }
}

TEST(Resizer, GivesAListThatGrowsAgainNoneOfItsOldMessages) {
  KALDEX_Array message = parsed(
      "type: CELL cell { elements { type: CHAR qxchar { elements: 65 } } "
      "elements { type: UINT8 dimension: [7, 7, 7] uint8 { elements: 'x' } } }");
  resize(message, 0);
  resize(message, 2);
  EXPECT_THAT(message, IsMessage(std::string("type: CELL cell { elements { ") +
                                 kEmptySlot + " } elements { " + kEmptySlot + " } }"));
}

TEST(Resizer, GivesASparseArrayOneColumnStartMoreThanColumns) {
  const struct {
    const char* dimension;
    const char* starts;
  } rows[] = {
      {"[9, 3]", "[0, 1, 2, 0]"}, {"[9, 1]", "[0, 1]"}, {"[9, 0]", "[0]"},
      {"[9, 2, 8]", "[0, 1, 2]"}, {"[9]", "[0]"},       {"[]", "[0]"},
  };
  for (const auto& [dimension, starts] : rows) {
    SCOPED_TRACE(dimension);
    const auto sparse = [text = std::string(dimension)](const std::string& jc) {
      return "type: SPARSE dimension: " + text + " sparse { ir: [4, 5] jc: " + jc +
             " qxsparsedouble { elements: [1, 2] imag_elements: [3, 4] } }";
    };
    EXPECT_EQ(resized(sparse("[0, 1, 2]"), 99), bytesOf(sparse(starts)));
  }
}

TEST(Resizer, RefusesColumnsOfASparseArrayAbove32Bits) {
  for (const char* columns :
       {"2147483647", "2147483648", "4294967296", "18446744073709551615"}) {
    SCOPED_TRACE(columns);
    const std::string text =
        std::string("type: SPARSE dimension: [1, ") + columns + "] sparse { jc: [0, 1] }";
    KALDEX_Array message = parsed(text);
    EXPECT_THROW(resize(message, 1), boost::numeric::positive_overflow);
    EXPECT_THAT(message, IsMessage(text));
  }
}

TEST(Resizer, RefusesOtherTypes) {
  for (const QXType type : kRefusedTypes) {
    KALDEX_Array message;
    message.set_type(type);
    EXPECT_THROW(resize(message, 1), std::invalid_argument);
  }
}

}  // namespace
}  // namespace orb::test
