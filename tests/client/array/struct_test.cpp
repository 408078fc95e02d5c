// SPDX-License-Identifier: MIT
// Structs: field names, field values, adding and removing fields.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "client/array/types.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

/// A 1-by-n struct array.
Array structRow(size_t n, std::vector<const char*> names) {
  return Array(orbCreateStructMatrix(1, n, static_cast<int>(names.size()), names.data()));
}

/// The scalars of a field in all elements; -1 for an empty value.
std::vector<double> columnOf(orbArray s, const char* name) {
  std::vector<double> column;
  for (size_t i = 0; i < orbGetNumberOfElements(s); ++i) {
    const Array value(orbGetField(s, i, name));
    column.push_back(orbIsEmpty(value) ? -1 : orbGetScalar(value));
  }
  return column;
}

std::vector<std::string> namesOf(orbArray s) {
  std::vector<std::string> names;
  for (int n = 0; n < orbGetNumberOfFields(s); ++n) {
    names.emplace_back(orbGetFieldNameByNumber(s, n));
  }
  return names;
}

/// 1-by-2 with the fields a and b: a0 = 1, b0 = 2, a1 = 3, b1 = 4.
Array twoByTwo() {
  Array s = structRow(2, {"a", "b"});
  orbSetField(s, 0, "a", doubleRow({1}));
  orbSetField(s, 0, "b", doubleRow({2}));
  orbSetField(s, 1, "a", doubleRow({3}));
  orbSetField(s, 1, "b", doubleRow({4}));
  return s;
}

/// Every type but struct.
class OfOtherType : public ::testing::TestWithParam<Type> {
 protected:
  Array other_ = create(GetParam(), {1, 2});
};

TEST_P(OfOtherType, FieldRequestsAreSilentlyRefused) {
  EXPECT_EQ(orbGetNumberOfFields(other_), 0);
  EXPECT_EQ(orbGetFieldNameByNumber(other_, 0), nullptr);
  EXPECT_EQ(orbGetFieldNumber(other_, "a"), -1);
  EXPECT_EQ(orbGetField(other_, 0, "a"), nullptr);
  EXPECT_EQ(orbGetFieldByNumber(other_, 0, 0), nullptr);
  EXPECT_EQ(orbAddField(other_, "a"), -1);
  orbSetField(other_, 0, "a", doubleRow({1}));
  orbSetFieldByNumber(other_, 0, 0, doubleRow({1}));
  orbRemoveField(other_, 0);

  EXPECT_EQ(orbGetClassID(other_), GetParam().id);
  EXPECT_EQ(orbGetNumberOfFields(other_), 0);
  EXPECT_THAT(dimensionsOf(other_), ElementsAre(1, 2));
  EXPECT_EQ(orbGetScalar(other_), 0.0);
}

std::vector<Type> otherTypes() {
  std::vector<Type> others;
  for (const Type& type : types()) {
    if (type.id != orbSTRUCT_CLASS) others.push_back(type);
  }
  return others;
}

INSTANTIATE_TEST_SUITE_P(Types, OfOtherType, ::testing::ValuesIn(otherTypes()),
                         TypeName());

TEST(GetFieldNameByNumber, GivesNullOutsideTheFields) {
  const Array s = twoByTwo();
  EXPECT_STREQ(orbGetFieldNameByNumber(s, 1), "b");
  EXPECT_EQ(orbGetFieldNameByNumber(s, 2), nullptr);
  EXPECT_EQ(orbGetFieldNameByNumber(s, -1), nullptr);
  EXPECT_EQ(orbGetFieldNameByNumber(s, INT32_MIN), nullptr);
  EXPECT_EQ(orbGetFieldNameByNumber(s, INT32_MAX), nullptr);
}

TEST(GetFieldNumber, IsThePositionOfTheName) {
  const Array s = twoByTwo();
  EXPECT_EQ(orbGetFieldNumber(s, "a"), 0);
  EXPECT_EQ(orbGetFieldNumber(s, "b"), 1);
}

TEST(GetFieldNumber, IsCaseSensitiveAFieldXIsNotFoundByCapitalX) {
  const Array s = structOf({"x"});
  EXPECT_EQ(orbGetFieldNumber(s, "x"), 0);
  EXPECT_EQ(orbGetFieldNumber(s, "X"), -1);
}

TEST(GetFieldNumber, ComparesWholeNames) {
  const Array s = structOf({"name"});
  EXPECT_EQ(orbGetFieldNumber(s, "nam"), -1);
  EXPECT_EQ(orbGetFieldNumber(s, "name2"), -1);
  EXPECT_EQ(orbGetFieldNumber(s, ""), -1);
}

TEST(GetFieldNumber, OfNullIsMinusOne) {
  EXPECT_EQ(orbGetFieldNumber(structOf({"a"}), nullptr), -1);
}

TEST(GetFieldNumber, IsTheFirstOfTwoFieldsWithOneName) {
  EXPECT_EQ(orbGetFieldNumber(structOf({"x", "a", "a"}), "a"), 1);
}

TEST(GetField, OfElement1AndFieldBReachesTheLastOfFourValues) {
  const Array s = twoByTwo();
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 1, "b"))), 4);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 1, "a"))), 3);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 0, "b"))), 2);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 0, "a"))), 1);
}

TEST(GetField, GivesNullForWhatIsNotThere) {
  const Array s = twoByTwo();
  EXPECT_EQ(orbGetField(s, 2, "a"), nullptr);
  EXPECT_EQ(orbGetField(s, SIZE_MAX, "a"), nullptr);
  EXPECT_EQ(orbGetField(s, SIZE_MAX / 2 + 1, "a"), nullptr);
  EXPECT_EQ(orbGetField(s, 0, "c"), nullptr);
  EXPECT_EQ(orbGetField(s, 0, nullptr), nullptr);
}

TEST(GetField, OfAValueNeverSetIsAnEmptyDoubleThatTheStructNowHolds) {
  const Array s = structOf({"a"});
  const Array value(orbGetField(s, 0, "a"));
  EXPECT_EQ(orbGetClassID(value), orbDOUBLE_CLASS);
  EXPECT_THAT(dimensionsOf(value), ElementsAre(0, 0));
  const size_t dims[] = {1, 1};
  ASSERT_EQ(orbSetDimensions(value, dims, 2), 0);
  orbGetPr(value)[0] = 5;
  EXPECT_THAT(columnOf(s, "a"), ElementsAre(5));
}

TEST(GetField, GivesANewHandleEachTime) {
  const Array s = twoByTwo();
  const Array first(orbGetField(s, 0, "a"));
  const Array second(orbGetField(s, 0, "a"));
  EXPECT_NE(first.get(), second.get());
}

TEST(GetFieldByNumber, ReachesTheFieldOfThatNumber) {
  const Array s = twoByTwo();
  EXPECT_EQ(orbGetScalar(Array(orbGetFieldByNumber(s, 0, 1))), 2);
  EXPECT_EQ(orbGetScalar(Array(orbGetFieldByNumber(s, 1, 0))), 3);
}

TEST(GetFieldByNumber, GivesNullForWhatIsNotThere) {
  const Array s = twoByTwo();
  EXPECT_EQ(orbGetFieldByNumber(s, 0, -1), nullptr);
  EXPECT_EQ(orbGetFieldByNumber(s, 0, 2), nullptr);
  EXPECT_EQ(orbGetFieldByNumber(s, 2, 0), nullptr);
}

TEST(GetFieldByNumber, OfTheSecondOfTwoFieldsWithOneNameReachesTheFirst) {
  const Array s = structOf({"a", "a"});
  orbSetField(s, 0, "a", doubleRow({1}));
  EXPECT_EQ(orbGetScalar(Array(orbGetFieldByNumber(s, 0, 1))), 1);
  orbSetFieldByNumber(s, 0, 1, doubleRow({2}));
  EXPECT_EQ(orbGetScalar(Array(orbGetFieldByNumber(s, 0, 0))), 2);
  orbRemoveField(s, 0);
  EXPECT_TRUE(orbIsEmpty(Array(orbGetFieldByNumber(s, 0, 0))));
}

TEST(SetField, ReplacesTheValueOfOneFieldInOneElement) {
  const Array s = twoByTwo();
  orbSetField(s, 1, "a", charRow(u"new"));
  EXPECT_EQ(unitsOf(Array(orbGetField(s, 1, "a"))), u"new");
  EXPECT_THAT(columnOf(s, "b"), ElementsAre(2, 4));
  EXPECT_EQ(orbGetScalar(Array(orbGetField(s, 0, "a"))), 1);
}

TEST(SetField, LeavesTheStructUnchangedForWhatIsNotThere) {
  const Array s = twoByTwo();
  const Array value = doubleRow({9});
  orbSetField(s, 2, "a", value);
  orbSetField(s, SIZE_MAX, "a", value);
  orbSetField(s, 0, "c", value);
  orbSetField(s, 0, nullptr, value);
  orbSetFieldByNumber(s, 0, 2, value);
  orbSetFieldByNumber(s, 0, -1, value);
  orbSetFieldByNumber(s, 2, 0, value);
  EXPECT_THAT(namesOf(s), ElementsAre("a", "b"));
  EXPECT_THAT(columnOf(s, "a"), ElementsAre(1, 3));
  EXPECT_THAT(columnOf(s, "b"), ElementsAre(2, 4));
}

TEST(SetField, LeavesAHandleToTheReplacedValueUsable) {
  const Array s = twoByTwo();
  const Array old(orbGetField(s, 0, "a"));
  orbSetField(s, 0, "a", doubleRow({9}));
  EXPECT_EQ(orbGetScalar(old), 1);
  EXPECT_THAT(columnOf(s, "a"), ElementsAre(9, 3));
}

TEST(SetFieldByNumber, SetsTheFieldOfThatNumber) {
  const Array s = twoByTwo();
  orbSetFieldByNumber(s, 1, 1, doubleRow({9}));
  EXPECT_THAT(columnOf(s, "b"), ElementsAre(2, 9));
  EXPECT_THAT(columnOf(s, "a"), ElementsAre(1, 3));
}

TEST(AddField, OfAnExistingNameReturnsItsNumberAndAddsNothing) {
  const Array s = twoByTwo();
  EXPECT_EQ(orbAddField(s, "b"), 1);
  EXPECT_EQ(orbGetNumberOfFields(s), 2);
  EXPECT_THAT(columnOf(s, "b"), ElementsAre(2, 4));
}

TEST(AddField, OnA1By3StructGivesEveryElementASecondFieldHoldingA0By0Double) {
  const Array s = structRow(3, {"a"});
  EXPECT_EQ(orbAddField(s, "b"), 1);
  EXPECT_THAT(namesOf(s), ElementsAre("a", "b"));
  for (size_t i = 0; i < 3; ++i) {
    const Array value(orbGetField(s, i, "b"));
    EXPECT_EQ(orbGetClassID(value), orbDOUBLE_CLASS);
    EXPECT_THAT(dimensionsOf(value), ElementsAre(0, 0));
    EXPECT_FALSE(orbIsComplex(value));
    EXPECT_EQ(orbGetPr(value), nullptr);
  }
}

TEST(AddField, ToA1By2StructWithAAndBPutsCBehindThemInEveryElement) {
  const Array s = twoByTwo();
  EXPECT_EQ(orbAddField(s, "c"), 2);
  EXPECT_THAT(columnOf(s, "a"), ElementsAre(1, 3));
  EXPECT_THAT(columnOf(s, "b"), ElementsAre(2, 4));
  EXPECT_THAT(columnOf(s, "c"), ElementsAre(-1, -1));
  orbSetField(s, 0, "c", doubleRow({5}));
  EXPECT_THAT(columnOf(Array(orbDuplicateArray(s)), "c"), ElementsAre(5, -1));
}

TEST(AddField, ToA0By0StructOnlyAddsTheName) {
  const Array s(orbCreateStructMatrix(0, 0, 0, nullptr));
  EXPECT_EQ(orbAddField(s, "a"), 0);
  EXPECT_THAT(namesOf(s), ElementsAre("a"));
  EXPECT_EQ(orbGetField(s, 0, "a"), nullptr);
}

TEST(AddField, OfNullIsMinusOne) {
  const Array s = twoByTwo();
  EXPECT_EQ(orbAddField(s, nullptr), -1);
  EXPECT_EQ(orbGetNumberOfFields(s), 2);
}

TEST(AddField, GivesValuesThatCanBeFilled) {
  const Array s = structRow(1, {"a"});
  orbAddField(s, "b");
  const Array value(orbGetField(s, 0, "b"));
  const size_t dims[] = {1, 2};
  ASSERT_EQ(orbSetDimensions(value, dims, 2), 0);
  orbGetPr(value)[1] = 8;
  EXPECT_THAT(elementsOf<double>(Array(orbGetField(s, 0, "b"))), ElementsAre(0, 8));
}

TEST(RemoveField, RemovesItsValueFromEveryElement) {
  const Array s = twoByTwo();
  orbAddField(s, "c");
  orbSetField(s, 1, "c", doubleRow({6}));
  orbRemoveField(s, 1);
  EXPECT_THAT(namesOf(s), ElementsAre("a", "c"));
  EXPECT_THAT(columnOf(s, "a"), ElementsAre(1, 3));
  EXPECT_THAT(columnOf(s, "c"), ElementsAre(-1, 6));
  EXPECT_EQ(orbGetField(s, 0, "b"), nullptr);
}

TEST(RemoveField, OfTheLastFieldLeavesAStructWithoutFields) {
  const Array s = structRow(2, {"a"});
  orbRemoveField(s, 0);
  EXPECT_EQ(orbGetNumberOfFields(s), 0);
  EXPECT_THAT(dimensionsOf(s), ElementsAre(1, 2));
  EXPECT_EQ(orbAddField(s, "b"), 0);
  EXPECT_THAT(columnOf(s, "b"), ElementsAre(-1, -1));
}

TEST(RemoveField, OfAFieldThatIsNotThereChangesNothing) {
  const Array s = twoByTwo();
  for (const int n : {-1, 2, INT32_MIN, INT32_MAX}) orbRemoveField(s, n);
  EXPECT_THAT(namesOf(s), ElementsAre("a", "b"));
  EXPECT_THAT(columnOf(s, "a"), ElementsAre(1, 3));
}

TEST(RemoveField, OfAStructWithoutElementsRemovesTheName) {
  const Array s = structRow(0, {"a", "b"});
  orbRemoveField(s, 0);
  EXPECT_THAT(namesOf(s), ElementsAre("b"));
}

TEST(RemoveField, ReachesTheSecondOfTwoFieldsWithOneName) {
  const Array s = structOf({"a", "a", "b"});
  orbSetField(s, 0, "a", doubleRow({1}));
  orbSetField(s, 0, "b", doubleRow({2}));
  orbRemoveField(s, 1);
  EXPECT_THAT(namesOf(s), ElementsAre("a", "b"));
  EXPECT_THAT(columnOf(s, "a"), ElementsAre(1));
  EXPECT_THAT(columnOf(s, "b"), ElementsAre(2));
}

TEST(RemoveField, LeavesAHandleToARemovedValueUsable) {
  const Array s = twoByTwo();
  const Array value(orbGetField(s, 0, "a"));
  orbRemoveField(s, 0);
  EXPECT_EQ(orbGetScalar(value), 1);
}

}  // namespace
}  // namespace orb::test
