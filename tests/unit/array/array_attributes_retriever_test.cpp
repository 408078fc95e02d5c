// SPDX-License-Identifier: MIT
#include "array/array_attributes_retriever.h"

#include <gtest/gtest.h>

#include "orb/dispatch_on_QXType"
#include "unit/array/message.h"

namespace orb::test {
namespace {

struct Expected {
  const char* className;
  QXType effectiveType;
  size_t elementSize;
  bool isComplex;
  bool isNumeric;
};

void expectAttributes(const std::string& text, const Expected& expected) {
  SCOPED_TRACE(text);
  const KALDEX_Array message = parsed(text);
  OrbArrayAttributesRetriever attributes(message);
  dispatch_on_QXType(message.type(), attributes);
  EXPECT_STREQ(attributes.className, expected.className);
  EXPECT_EQ(attributes.effectiveType, expected.effectiveType);
  EXPECT_EQ(attributes.elementSize, expected.elementSize);
  EXPECT_EQ(attributes.isComplex, expected.isComplex);
  EXPECT_EQ(attributes.isNumeric, expected.isNumeric);
}

TEST(AttributesRetriever, StartsEmpty) {
  const KALDEX_Array message;
  const OrbArrayAttributesRetriever attributes(message);
  EXPECT_STREQ(attributes.className, "");
  EXPECT_EQ(attributes.elementSize, 0u);
  EXPECT_FALSE(attributes.isComplex);
  EXPECT_FALSE(attributes.isNumeric);
}

TEST(AttributesRetriever, DescribesNumericTypes) {
  const struct {
    QXType type;
    const char* className;
    size_t elementSize;
  } rows[] = {
      {KALDEX_Array::UINT8, "uint8", 1},   {KALDEX_Array::INT8, "int8", 1},
      {KALDEX_Array::UINT16, "uint16", 4}, {KALDEX_Array::INT16, "int16", 4},
      {KALDEX_Array::UINT32, "uint32", 4}, {KALDEX_Array::INT32, "int32", 4},
      {KALDEX_Array::UINT64, "uint64", 8}, {KALDEX_Array::INT64, "int64", 8},
      {KALDEX_Array::SINGLE, "single", 4}, {KALDEX_Array::DOUBLE, "double", 8},
  };
  for (const auto& [type, className, elementSize] : rows) {
    const Expected real = {className, type, elementSize, false, true};
    const Expected complex = {className, type, elementSize, true, true};
    const std::string one = elements(type, {1});
    expectAttributes(ofType(type, one), real);
    expectAttributes(ofType(type, one + imagElements(type, {})), real);
    expectAttributes(ofType(type, one + imagElements(type, {0})), complex);
    expectAttributes(ofType(type, imagElements(type, {0})), complex);
    expectAttributes("type: " + KALDEX_Array::QXType_Name(type), real);
  }
}

TEST(AttributesRetriever, DescribesTypesThatAreNeverComplex) {
  const struct {
    const char* text;
    Expected expected;
  } rows[] = {
      {"type: LOGICAL logical { elements: true }",
       {"logical", KALDEX_Array::LOGICAL, 1, false, false}},
      {"type: LOGICAL", {"logical", KALDEX_Array::LOGICAL, 1, false, false}},
      {"type: CHAR qxchar { elements: 65 }",
       {"char", KALDEX_Array::CHAR, 4, false, false}},
      {"type: CHAR", {"char", KALDEX_Array::CHAR, 4, false, false}},
      {"type: STRUCT struct_ { field_names: 'a' elements { } }",
       {"struct", KALDEX_Array::STRUCT, 8, false, false}},
      {"type: STRUCT", {"struct", KALDEX_Array::STRUCT, 8, false, false}},
      {"type: CELL cell { elements { } }", {"cell", KALDEX_Array::CELL, 8, false, false}},
      {"type: CELL", {"cell", KALDEX_Array::CELL, 8, false, false}},
  };
  for (const auto& [text, expected] : rows) expectAttributes(text, expected);
}

TEST(AttributesRetriever, DescribesSparseArraysByTheirValues) {
  const Expected real = {"double", KALDEX_Array::DOUBLE, 8, false, true};
  const Expected complex = {"double", KALDEX_Array::DOUBLE, 8, true, true};
  const Expected logical = {"logical", KALDEX_Array::LOGICAL, 1, false, false};
  const struct {
    const char* text;
    Expected expected;
  } rows[] = {
      {"type: SPARSE", real},
      {"type: SPARSE sparse { }", real},
      {"type: SPARSE sparse { type: DOUBLE qxsparsedouble { elements: 1 } }", real},
      {"type: SPARSE sparse { qxsparsedouble { elements: 1 imag_elements: 0 } }",
       complex},
      {"type: SPARSE sparse { type: LOGICAL logical { elements: true } }", logical},
      {"type: SPARSE sparse { type: LOGICAL qxsparsedouble { imag_elements: 1 } }",
       logical},
      {"type: SPARSE sparse { type: 7 }", logical},
      {"type: SPARSE sparse { type: -1 }", logical},
  };
  for (const auto& [text, expected] : rows) expectAttributes(text, expected);
}

TEST(AttributesRetriever, DoesNotAskTheComplexityFieldOfTheMessage) {
  expectAttributes("type: DOUBLE isComplex: true qxdouble { elements: 1 }",
                   {"double", KALDEX_Array::DOUBLE, 8, false, true});
  expectAttributes("type: DOUBLE isComplex: false qxdouble { imag_elements: 1 }",
                   {"double", KALDEX_Array::DOUBLE, 8, true, true});
}

TEST(AttributesRetriever, ReadsThePayloadOfTheTypeOnly) {
  expectAttributes("type: SINGLE qxdouble { elements: 1 imag_elements: 1 }",
                   {"single", KALDEX_Array::SINGLE, 4, false, true});
}

TEST(AttributesRetriever, RefusesOtherTypes) {
  KALDEX_Array message;
  OrbArrayAttributesRetriever attributes(message);
  for (const QXType type : kRefusedTypes) {
    EXPECT_THROW(dispatch_on_QXType(type, attributes), std::invalid_argument);
  }
}

}  // namespace
}  // namespace orb::test
