// SPDX-License-Identifier: MIT
// The functions for arrays of any shape and for text.
#include <gmock/gmock.h>
#include <google/protobuf/util/message_differencer.h>

#include <limits>

#include "orbserve/service.h"

namespace orb::test {
namespace {

using google::protobuf::util::MessageDifferencer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<Array> arraysOfEveryClass() {
  std::vector<Array> arrays = onesAndTwos();
  Array logical = bare(Array::LOGICAL, {1, 2});
  logical.mutable_logical()->add_elements(true);
  logical.mutable_logical()->add_elements(false);
  Array bytes = bare(Array::INT8, {1, 2});
  bytes.mutable_int8()->set_elements("\x80\x7f");
  bytes.mutable_int8()->set_imag_elements("\x01\xff");
  Array record = bare(Array::STRUCT, {2, 1});
  record.mutable_struct_()->add_field_names("a");
  record.mutable_struct_()->add_field_names("b");
  for (const double value : {1, 2, 3, 4}) {
    *record.mutable_struct_()->add_elements() = scalar(value);
  }
  Array cell = bare(Array::CELL, {1, 2});
  *cell.mutable_cell()->add_elements() = chars(u"text");
  *cell.mutable_cell()->add_elements() = record;
  Array sparseLogical = bare(Array::SPARSE, {2, 2});
  sparseLogical.mutable_sparse()->set_type(Array::Sparse::LOGICAL);
  sparseLogical.mutable_sparse()->add_ir(1);
  for (const uint64_t start : {0, 0, 1}) sparseLogical.mutable_sparse()->add_jc(start);
  sparseLogical.mutable_sparse()->mutable_logical()->add_elements(true);

  arrays.insert(arrays.end(),
                {logical, bytes, record, cell, sparseLogical, chars(u"\0\xd800z"),
                 doubles({0, 3}, {}), bare(Array::CELL, {0, 0}),
                 doubles({1, 2, 2}, {1, 2, 3, 4}, {5, 6, 7, 8}),
                 sparse({3, 2}, {0, 2}, {0, 1, 2}, {1.5, -2})});
  return arrays;
}

TEST(Echo, ReturnsArraysOfEveryClass) {
  const std::vector<Array> inputs = arraysOfEveryClass();
  const Result result = call("echo", static_cast<int>(inputs.size()), inputs);
  ASSERT_EQ(result.lhs_size(), static_cast<int>(inputs.size())) << result.DebugString();
  for (int i = 0; i < result.lhs_size(); ++i) {
    EXPECT_TRUE(MessageDifferencer::Equals(result.lhs(i), inputs[static_cast<size_t>(i)]))
        << result.lhs(i).DebugString();
  }
}

TEST(Echo, ReturnsTheFirstInputs) {
  const Result result = call("echo", 2, {scalar(1), scalar(2), scalar(3)});
  ASSERT_EQ(result.lhs_size(), 2);
  EXPECT_THAT(elementsOf(result.lhs(0)), ElementsAre(1));
  EXPECT_THAT(elementsOf(result.lhs(1)), ElementsAre(2));
}

TEST(Echo, AnswersACallWithoutArguments) {
  const Result result = call("echo", 0, {});
  EXPECT_EQ(result.lhs_size(), 0);
  EXPECT_FALSE(result.has_error());
}

TEST(Echo, RefusesMoreOutputsThanInputs) {
  EXPECT_EQ(failureOf(call("echo", 2, {scalar(1)})),
            (Failure{"orbserve:echo:outputs",
                     "echo: expected nargout of at most the number of inputs, 1, got 2",
                     "arrays.cpp", "echo"}));
}

TEST(Sum, AddsEveryNumericClass) {
  for (const Array& array : onesAndTwos()) {
    EXPECT_THAT(elementsOf(callForOne("sum", {array})), ElementsAre(3))
        << array.DebugString();
  }
}

TEST(Sum, CountsTrueAndReadsSignedBytes) {
  Array logical = bare(Array::LOGICAL, {1, 3});
  for (const bool value : {true, false, true}) {
    logical.mutable_logical()->add_elements(value);
  }
  EXPECT_THAT(elementsOf(callForOne("sum", {logical})), ElementsAre(2));

  Array bytes = bare(Array::INT8, {1, 2});
  bytes.mutable_int8()->set_elements("\x80\x01");
  EXPECT_THAT(elementsOf(callForOne("sum", {bytes})), ElementsAre(-127));
  Array unsignedBytes = bare(Array::UINT8, {1, 2});
  unsignedBytes.mutable_uint8()->set_elements("\x80\x01");
  EXPECT_THAT(elementsOf(callForOne("sum", {unsignedBytes})), ElementsAre(129));
}

struct SumRow {
  Shape shape;
  Numbers elements;
  Shape sumShape;
  Numbers sums;
};

class SumOverShapes : public ::testing::TestWithParam<SumRow> {};

TEST_P(SumOverShapes, TakesTheFirstDimensionThatIsNotOne) {
  const Array sums = callForOne("sum", {doubles(GetParam().shape, GetParam().elements)});
  EXPECT_EQ(shapeOf(sums), GetParam().sumShape);
  EXPECT_EQ(elementsOf(sums), GetParam().sums);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, SumOverShapes,
    ::testing::Values(SumRow{{1, 1}, {7}, {1, 1}, {7}},
                      SumRow{{2, 3}, {1, 2, 3, 4, 5, 6}, {1, 3}, {3, 7, 11}},
                      SumRow{{1, 3}, {1, 2, 3}, {1, 1}, {6}},
                      SumRow{{1, 2, 2}, {1, 2, 3, 4}, {1, 1, 2}, {3, 7}},
                      SumRow{{2, 1, 2}, {1, 2, 3, 4}, {1, 1, 2}, {3, 7}},
                      SumRow{{0, 0}, {}, {1, 1}, {0}},
                      SumRow{{0, 3}, {}, {1, 3}, {0, 0, 0}},
                      SumRow{{3, 0}, {}, {1, 0}, {}}));

TEST(Sum, AddsComplexNumbers) {
  const Array total = callForOne("sum", {doubles({2, 1}, {1, 2}, {3, -5})});
  EXPECT_THAT(elementsOf(total), ElementsAre(3));
  EXPECT_THAT(imaginaryOf(total), ElementsAre(-2));
}

struct Description {
  std::u16string className;
  Numbers size;
  Numbers minimum;
  Numbers maximum;
  Numbers mean;
};

Description describe(const Array& array) {
  const Array record = callForOne("describe", {array});
  EXPECT_EQ(record.type(), Array::STRUCT);
  EXPECT_EQ(shapeOf(record), (Shape{1, 1}));
  EXPECT_THAT(record.struct_().field_names(),
              ElementsAre("class", "size", "minimum", "maximum", "mean"));
  const auto& fields = record.struct_().elements();
  return {textOf(fields[0]), elementsOf(fields[1]), elementsOf(fields[2]),
          elementsOf(fields[3]), elementsOf(fields[4])};
}

TEST(Describe, GivesTheRangeOfNumbers) {
  const Description found = describe(doubles({2, 2}, {4, -1, 2, 7}));
  EXPECT_EQ(found.className, u"double");
  EXPECT_THAT(found.size, ElementsAre(2, 2));
  EXPECT_THAT(found.minimum, ElementsAre(-1));
  EXPECT_THAT(found.maximum, ElementsAre(7));
  EXPECT_THAT(found.mean, ElementsAre(3));
}

TEST(Describe, PassesOverNanInTheRange) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Description found = describe(doubles({1, 3}, {nan, 2, 1}));
  EXPECT_THAT(found.minimum, ElementsAre(1));
  EXPECT_THAT(found.maximum, ElementsAre(2));
  EXPECT_THAT(found.mean, ElementsAre(::testing::IsNan()));
}

TEST(Describe, CountsTheZerosOfASparseArray) {
  const Description found = describe(sparse({2, 2}, {0, 1}, {0, 1, 2}, {3, 5}));
  EXPECT_EQ(found.className, u"double");
  EXPECT_THAT(found.minimum, ElementsAre(0));
  EXPECT_THAT(found.maximum, ElementsAre(5));
  EXPECT_THAT(found.mean, ElementsAre(2));
}

TEST(Describe, NamesEveryClass) {
  std::vector<std::u16string> names;
  for (const Array& array : onesAndTwos()) names.push_back(describe(array).className);
  EXPECT_THAT(names, ElementsAre(u"uint8", u"int8", u"uint16", u"int16", u"uint32",
                                 u"int32", u"uint64", u"int64", u"single", u"double"));
  EXPECT_EQ(describe(bare(Array::LOGICAL, {0, 0})).className, u"logical");
}

class DescribeWithoutRange : public ::testing::TestWithParam<Array> {};

TEST_P(DescribeWithoutRange, LeavesTheRangeEmpty) {
  const Description found = describe(GetParam());
  EXPECT_THAT(found.minimum, IsEmpty());
  EXPECT_THAT(found.maximum, IsEmpty());
  EXPECT_THAT(found.mean, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Arrays, DescribeWithoutRange,
                         ::testing::Values(chars(u"a"), doubles({1, 1}, {1}, {2}),
                                           doubles({0, 2}, {}), bare(Array::CELL, {0, 0}),
                                           bare(Array::STRUCT, {1, 1})));

struct UpperRow {
  std::u16string text;
  std::u16string capitals;
};

class Upper : public ::testing::TestWithParam<UpperRow> {};

TEST_P(Upper, CapitalisesLettersOfOneUnit) {
  const Array capitals = callForOne("upper", {chars(GetParam().text)});
  EXPECT_EQ(capitals.type(), Array::CHAR);
  EXPECT_EQ(textOf(capitals), GetParam().capitals);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Upper,
    ::testing::Values(UpperRow{u"aZ1 ", u"AZ1 "},
                      UpperRow{u"\u00e9\u00df\u00ff\u0436", u"\u00c9\u00df\u0178\u0416"},
                      UpperRow{u"\xd83d\xde00\xdc00", u"\xd83d\xde00\xdc00"},
                      UpperRow{u"", u""}));

TEST(Upper, KeepsTheShape) {
  Array text = bare(Array::CHAR, {2, 2});
  for (const char letter : {'a', 'b', 'c', 'd'}) {
    text.mutable_qxchar()->add_elements(static_cast<uint32_t>(letter));
  }
  const Array capitals = callForOne("upper", {text});
  EXPECT_EQ(shapeOf(capitals), (Shape{2, 2}));
  EXPECT_EQ(textOf(capitals), u"ABCD");
}

TEST(Upper, RefusesNumbers) {
  EXPECT_EQ(
      failureOf(call("upper", 1, {scalar(1)})),
      (Failure{"orbserve:upper:class", "upper: expected a char array, got 1x1 double",
               "text.cpp", "upper"}));
}

}  // namespace
}  // namespace orb::test
