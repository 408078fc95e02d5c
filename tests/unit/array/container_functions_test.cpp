// SPDX-License-Identifier: MIT
// What only received or damaged arrays show of the functions on structs, cells and sparse
// arrays.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <typeinfo>

#include "support/array.h"
#include "support/failing_new.h"
#include "unit/array/message.h"

namespace orb::test {
namespace {

Array arrayOf(const std::string& text) { return Array(handleOf(text).release()); }

/// An array whose proxy keeps no elements, though its type says it does.
Array withBaseProxy(const std::string& text) {
  UniqueHandle handle = std::make_unique<orbArrayHandle>();
  handle->proxy = std::make_unique<KALDEXArrayProxy>(shared(text));
  return Array(handle.release());
}

TEST(CellFunctions, ThrowBadCastWhereTheProxyIsNotThatOfACell) {
  const Array cell =
      withBaseProxy("type: CELL dimension: [1, 1] cell { elements { type: DOUBLE } }");
  const Array value = doubleRow({1});
  EXPECT_THROW(orbGetCell(cell, 0), std::bad_cast);
  EXPECT_THROW(orbSetCell(cell, 0, value), std::bad_cast);
}

TEST(StructFunctions, ThrowBadCastWhereTheProxyIsNotThatOfAStruct) {
  const Array record = withBaseProxy(
      "type: STRUCT dimension: [1, 1] struct_ { field_names: 'a' elements { } }");
  const Array value = doubleRow({1});
  EXPECT_THROW(orbGetField(record, 0, "a"), std::bad_cast);
  EXPECT_THROW(orbGetFieldByNumber(record, 0, 0), std::bad_cast);
  EXPECT_THROW(orbSetField(record, 0, "a", value), std::bad_cast);
  EXPECT_THROW(orbSetFieldByNumber(record, 0, 0, value), std::bad_cast);
  EXPECT_THROW(orbRemoveField(record, 0), std::bad_cast);
  EXPECT_EQ(orbAddField(record, "b"), -1);
}

TEST(GetCell, OfTheSameCellTwiceGivesTheSameMessage) {
  const Array cell = arrayOf(
      "type: CELL dimension: [1, 1] cell { elements { type: DOUBLE dimension: [1, 1] "
      "qxdouble { elements: 1 } } }");
  const Array first(orbGetCell(cell, 0));
  const Array second(orbGetCell(cell, 0));
  ASSERT_TRUE(first != nullptr && second != nullptr);
  EXPECT_NE(first.get(), second.get());
  EXPECT_EQ(&messageOf(first), &messageOf(second));
}

TEST(GetCell, GivesANullEntryAnEmptySlotThatStays) {
  const Array cell(orbCreateCellMatrix(1, 1));
  const Array first(orbGetCell(cell, 0));
  EXPECT_THAT(messageOf(first), IsMessage(kEmptySlot));
  EXPECT_EQ(&messageOf(Array(orbGetCell(cell, 0))), &messageOf(first));
}

TEST(GetCell, RefusesAnElementThatNoArrayCanHoldAndKeepsIt) {
  const Array cell = arrayOf(
      "type: CELL dimension: [1, 2] cell { elements { type: STRING } elements { } }");
  EXPECT_THROW(orbGetCell(cell, 0), std::invalid_argument);
  EXPECT_NE(Array(orbGetCell(cell, 1)), nullptr);
  proxyOf(cell).flushToMessage();
  EXPECT_THAT(messageOf(cell), IsMessage("type: CELL dimension: [1, 2] cell { "
                                         "elements { type: STRING } elements { } }"));
}

TEST(CellFunctions, StayInsideAListShorterThanTheDimensions) {
  const char* text = "type: CELL dimension: [1, 3] cell { elements { type: DOUBLE } }";
  const Array cell = arrayOf(text);
  EXPECT_NE(Array(orbGetCell(cell, 0)), nullptr);
  EXPECT_EQ(Array(orbGetCell(cell, 1)), nullptr);
  EXPECT_EQ(Array(orbGetCell(cell, 2)), nullptr);
  orbSetCell(cell, 1, doubleRow({1}));
  proxyOf(cell).flushToMessage();
  EXPECT_THAT(messageOf(cell), IsMessage(text));
}

TEST(CellFunctions, StayInsideDimensionsSmallerThanTheList) {
  const Array cell = arrayOf(
      "type: CELL dimension: [1, 1] cell { elements { type: DOUBLE } elements { } }");
  EXPECT_EQ(Array(orbGetCell(cell, 1)), nullptr);
}

TEST(GetField, StaysInsideAListShorterThanTheDimensions) {
  const Array record = arrayOf(
      "type: STRUCT dimension: [1, 3] struct_ { field_names: ['a', 'b'] "
      "elements { arrayID: 1 } elements { arrayID: 2 } elements { arrayID: 3 } }");
  const struct {
    size_t index;
    const char* name;
    uint64_t arrayId;
  } rows[] = {{0, "a", 1}, {0, "b", 2}, {1, "a", 3}};
  for (const auto& [index, name, arrayId] : rows) {
    const Array value(orbGetField(record, index, name));
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(messageOf(value).arrayid(), arrayId);
  }
  EXPECT_EQ(Array(orbGetField(record, 1, "b")), nullptr);
  EXPECT_EQ(Array(orbGetField(record, 2, "a")), nullptr);
}

TEST(GetField, DoesNotWrapTheSlotOfAHugeIndex) {
  const Array record = arrayOf(
      "type: STRUCT dimension: [18446744073709551615, 1] struct_ { "
      "field_names: ['a', 'b'] elements { } elements { } }");
  EXPECT_EQ(Array(orbGetField(record, size_t{1} << 63, "a")), nullptr);
  EXPECT_EQ(Array(orbGetField(record, size_t{1} << 63, "b")), nullptr);
}

TEST(GetField, IsNullWhereEvenTheFirstElementLacksTheField) {
  const Array record = arrayOf(
      "type: STRUCT dimension: [1, 1] struct_ { field_names: ['a', 'b', 'c'] "
      "elements { } }");
  EXPECT_EQ(Array(orbGetField(record, 0, "b")), nullptr);
  EXPECT_EQ(Array(orbGetField(record, 0, "c")), nullptr);
  const Array empty =
      arrayOf("type: STRUCT dimension: [1, 1] struct_ { field_names: 'a' }");
  EXPECT_EQ(Array(orbGetField(empty, 0, "a")), nullptr);
}

TEST(SparseFunctions, MakeAnAbsentPayloadPresent) {
  const Array sparse = arrayOf("type: SPARSE dimension: [2, 2]");
  EXPECT_EQ(orbGetNzmax(sparse), 0u);
  EXPECT_THAT(messageOf(sparse), IsMessage("type: SPARSE dimension: [2, 2]"));
  EXPECT_EQ(orbGetIr(sparse), nullptr);
  EXPECT_EQ(orbGetJc(sparse), nullptr);
  EXPECT_THAT(messageOf(sparse), IsMessage("type: SPARSE dimension: [2, 2] sparse { }"));
}

TEST(SparseFunctions, LeaveAnAbsentPayloadAbsentWhenMemoryEnds) {
  const Array sparse = arrayOf("type: SPARSE dimension: [2, 2]");
  FailingNew failing = FailingNew::at(1);
  EXPECT_THROW(orbGetIr(sparse), std::bad_alloc);
  failing.stop();
  EXPECT_FALSE(messageOf(sparse).has_sparse());
}

TEST(SetNzmax, ResizesTheListsOfTheStoredType) {
  const struct {
    const char* before;
    const char* after;
  } rows[] = {
      {"type: DOUBLE ir: [1, 2, 3] qxsparsedouble { elements: [4, 5, 6] }",
       "type: DOUBLE ir: [1, 2] qxsparsedouble { elements: [4, 5] }"},
      {"ir: 1 jc: [0, 1] qxsparsedouble { elements: 4 imag_elements: 5 }",
       "ir: [1, 0] jc: [0, 1] qxsparsedouble { elements: [4, 0] imag_elements: [5, 0] }"},
      {"type: LOGICAL ir: 1 logical { elements: true }",
       "type: LOGICAL ir: [1, 0] logical { elements: [true, false] }"},
      {"type: 7 ir: 1", "type: 7 ir: [1, 0] logical { elements: [false, false] }"},
      {"", "ir: [0, 0] qxsparsedouble { elements: [0, 0] }"},
  };
  for (const auto& [before, after] : rows) {
    SCOPED_TRACE(before);
    const std::string prefix = "type: SPARSE dimension: [2, 2] sparse { ";
    const Array sparse = arrayOf(prefix + before + " }");
    orbSetNzmax(sparse, 2);
    EXPECT_THAT(messageOf(sparse), IsMessage(prefix + after + " }"));
  }
}

TEST(SetNzmax, ThatRunsOutOfMemoryChangesNothing) {
  const std::string text =
      "type: SPARSE dimension: [4, 4] sparse { ir: 1 jc: [0, 1] "
      "qxsparsedouble { elements: 4 imag_elements: 5 } }";
  for (size_t n = 1;; ++n) {
    SCOPED_TRACE(n);
    const Array sparse = arrayOf(text);
    FailingNew failing = FailingNew::at(n);
    try {
      orbSetNzmax(sparse, 9);
    } catch (const std::bad_alloc&) {
    }
    const bool hasFailed = failing.stop();
    EXPECT_EQ(orbGetNzmax(sparse), hasFailed ? 1u : 9u);
    if (!hasFailed) break;
    EXPECT_THAT(messageOf(sparse), IsMessage(text));
  }
}

}  // namespace
}  // namespace orb::test
