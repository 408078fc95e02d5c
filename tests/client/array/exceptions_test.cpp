// SPDX-License-Identifier: MIT
// Exceptions that leave the shared library: their types and texts, and what they leave.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/numeric/conversion/cast.hpp>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <typeinfo>

#include "client/array/types.h"

namespace orb::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::StrEq;
using ::testing::Throws;
using ::testing::ThrowsMessage;

constexpr size_t kAboveInt32 = 2147483648;

auto throwsPositiveOverflow() {
  return ThrowsMessage<boost::numeric::positive_overflow>(
      StrEq("bad numeric conversion: positive overflow"));
}

struct Call {
  const char* name;
  std::function<void()> run;
};

std::string callName(const ::testing::TestParamInfo<Call>& info) {
  return info.param.name;
}

void PrintTo(const Call& call, std::ostream* out) { *out << call.name; }

class PositiveOverflow : public ::testing::TestWithParam<Call> {};

TEST_P(PositiveOverflow, LeavesTheCreator) {
  EXPECT_THAT(GetParam().run, throwsPositiveOverflow());
}

// Without elements, so that nothing but the extent can be refused.
INSTANTIATE_TEST_SUITE_P(
    ExtentsOfAMatrix, PositiveOverflow,
    ::testing::Values(
        Call{"NumericMatrixM",
             [] { orbCreateNumericMatrix(kAboveInt32, 0, orbUINT8_CLASS, orbREAL); }},
        Call{"NumericMatrixN",
             [] { orbCreateNumericMatrix(0, kAboveInt32, orbINT16_CLASS, orbREAL); }},
        Call{"DoubleMatrixM", [] { orbCreateDoubleMatrix(kAboveInt32, 0, orbCOMPLEX); }},
        Call{"DoubleMatrixN", [] { orbCreateDoubleMatrix(0, kAboveInt32, orbREAL); }},
        Call{"DoubleMatrixMOfAllOnes",
             [] { orbCreateDoubleMatrix(SIZE_MAX, 0, orbREAL); }},
        Call{"LogicalMatrixM", [] { orbCreateLogicalMatrix(kAboveInt32, 0); }},
        Call{"LogicalMatrixN", [] { orbCreateLogicalMatrix(0, kAboveInt32); }},
        Call{"CellMatrixM", [] { orbCreateCellMatrix(kAboveInt32, 0); }},
        Call{"CellMatrixN", [] { orbCreateCellMatrix(0, kAboveInt32); }},
        Call{"StructMatrixM", [] { orbCreateStructMatrix(kAboveInt32, 0, 0, nullptr); }},
        Call{"StructMatrixN", [] { orbCreateStructMatrix(0, kAboveInt32, 0, nullptr); }},
        Call{"SparseM", [] { orbCreateSparse(kAboveInt32, 0, 0, orbREAL); }},
        Call{"SparseN", [] { orbCreateSparse(0, kAboveInt32, 0, orbREAL); }},
        Call{"SparseNOfAllOnes", [] { orbCreateSparse(0, SIZE_MAX, 0, orbREAL); }},
        Call{"SparseColumnStarts", [] { orbCreateSparse(0, 2147483647, 0, orbREAL); }},
        Call{"SparseNzmax", [] { orbCreateSparse(1, 1, kAboveInt32, orbREAL); }},
        Call{"SparseLogicalM", [] { orbCreateSparseLogicalMatrix(kAboveInt32, 0, 0); }},
        Call{"SparseLogicalN", [] { orbCreateSparseLogicalMatrix(0, kAboveInt32, 0); }},
        Call{"SparseLogicalColumnStarts",
             [] { orbCreateSparseLogicalMatrix(0, 2147483647, 0); }},
        Call{"SparseLogicalNzmax",
             [] { orbCreateSparseLogicalMatrix(1, 1, kAboveInt32); }}),
    callName);

TEST(PositiveOverflow, LeavesACreatorOfMoreElementsThanAListHolds) {
  const Shape vast[] = {{kAboveInt32}, {65536, 32768}, {65536, 1, 32768}};
  for (const Type& type : types()) {
    // Bytes are not a list, and containers and sparse arrays store no elements here.
    if (type.isSparse || type.elementSize == 1 || type.id > orbCHAR_CLASS) continue;
    for (const Shape& shape : vast) {
      for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
        SCOPED_TRACE(type.name + (" " + describe(shape, flag)));
        EXPECT_THAT([&] { create(type, shape, flag); }, throwsPositiveOverflow());
      }
    }
  }
  EXPECT_THAT([] { orbCreateLogicalMatrix(65536, 32768); }, throwsPositiveOverflow());
  EXPECT_THAT([] { orbCreateDoubleMatrix(65536, 32768, orbREAL); },
              throwsPositiveOverflow());
}

TEST(PositiveOverflow, IsABadCastForThoseWhoDoNotKnowBoost) {
  EXPECT_THAT(
      [] { orbCreateNumericMatrix(kAboveInt32, 1, orbDOUBLE_CLASS, orbREAL); },
      ThrowsMessage<std::bad_cast>(StrEq("bad numeric conversion: positive overflow")));
}

TEST(PositiveOverflow, DoesNotMeetTheLargestMatrixExtent) {
  EXPECT_THAT(dimensionsOf(Array(orbCreateDoubleMatrix(2147483647, 0, orbREAL))),
              ElementsAre(2147483647, 0));
  EXPECT_THAT(dimensionsOf(Array(orbCreateDoubleMatrix(0, 2147483647, orbREAL))),
              ElementsAre(0, 2147483647));
}

// The list is not read: nothing could hold it.
TEST(PositiveOverflow, LeavesACreatorOfMoreExtentsThanAMessageHolds) {
  const size_t dims[] = {1, 1};
  EXPECT_THAT([&] { orbCreateNumericArray(kAboveInt32, dims, orbUINT8_CLASS, orbREAL); },
              throwsPositiveOverflow());
  EXPECT_THAT([&] { orbCreateLogicalArray(SIZE_MAX, dims); }, throwsPositiveOverflow());
  EXPECT_THAT([&] { orbCreateCharArray(kAboveInt32, dims); }, throwsPositiveOverflow());
  EXPECT_THAT([&] { orbCreateCellArray(kAboveInt32, dims); }, throwsPositiveOverflow());
  EXPECT_THAT([&] { orbCreateStructArray(kAboveInt32, dims, 0, nullptr); },
              throwsPositiveOverflow());
}

TEST(LengthError, LeavesACreatorOfASizeThatNoMemoryCouldHold) {
  const size_t dims[] = {SIZE_MAX};
  const char* fields[] = {"f"};
  const auto throwsLengthError = Throws<std::length_error>();
  EXPECT_THAT([&] { orbCreateNumericArray(1, dims, orbUINT8_CLASS, orbREAL); },
              throwsLengthError);
  EXPECT_THAT([&] { orbCreateNumericArray(1, dims, orbINT8_CLASS, orbCOMPLEX); },
              throwsLengthError);
  EXPECT_THAT([&] { orbCreateCellArray(1, dims); }, throwsLengthError);
  EXPECT_THAT([&] { orbCreateStructArray(1, dims, 1, fields); }, throwsLengthError);
}

class SetExtent : public ::testing::TestWithParam<Type> {};

TEST_P(SetExtent, AboveTheElementLimitThrowsWithTheExtentChangedAndElementsKept) {
  const Type& type = GetParam();
  const Array a = create(type, {1, 2}, orbCOMPLEX);
  if (realData(type, a) != nullptr) fill(type, realData(type, a), 2, 1);
  const Bytes bytes = bytesOf(type, realData(type, a), 2);

  EXPECT_THAT([&] { orbSetM(a, 1073741824); }, throwsPositiveOverflow());
  EXPECT_THAT(dimensionsOf(a), ElementsAre(1073741824, 2));
  EXPECT_EQ(bytesOf(type, realData(type, a), 2), bytes);

  orbSetM(a, 1);
  EXPECT_THAT([&] { orbSetN(a, kAboveInt32); }, throwsPositiveOverflow());
  EXPECT_THAT(dimensionsOf(a), ElementsAre(1, kAboveInt32));
  EXPECT_EQ(bytesOf(type, realData(type, a), 2), bytes);
}

INSTANTIATE_TEST_SUITE_P(Types, SetExtent, ::testing::ValuesIn(types()), TypeName());

TEST(SetM, CountsTheFieldsOfAStructToItsElements) {
  const Array s = structOf({"a", "b"});
  EXPECT_THAT([&] { orbSetM(s, 1073741824); }, throwsPositiveOverflow());
  EXPECT_THAT(dimensionsOf(s), ElementsAre(1073741824, 1));
  EXPECT_NE(Array(orbGetField(s, 0, "b")).get(), nullptr);
  EXPECT_EQ(orbGetField(s, 1, "a"), nullptr);
}

TEST(SetN, OfASparseArrayCountsItsColumnStarts) {
  const Array a(orbCreateSparse(0, 3, 0, orbREAL));
  EXPECT_THAT([&] { orbSetN(a, 2147483647); }, throwsPositiveOverflow());
  EXPECT_THAT(dimensionsOf(a), ElementsAre(0, 2147483647));
  EXPECT_THAT(std::vector<size_t>(orbGetJc(a), orbGetJc(a) + 4), Each(0));
}

TEST(SetDimensions, OfASparseArrayAnswersColumnsAboveTheLimitWithOne) {
  const Array a(orbCreateSparse(0, 3, 0, orbREAL));
  const size_t dims[] = {0, 2147483647};
  EXPECT_EQ(orbSetDimensions(a, dims, 2), 1);
}

TEST(SetNzmax, Above2147483647ThrowsAndLeavesTheArrayUnchanged) {
  const Array a(orbCreateSparse(2147483647, 2, 1, orbREAL));
  orbGetPr(a)[0] = 5;
  EXPECT_THAT([&] { orbSetNzmax(a, kAboveInt32); }, throwsPositiveOverflow());
  EXPECT_EQ(orbGetNzmax(a), 1u);
  EXPECT_EQ(orbGetPr(a)[0], 5);
}

}  // namespace
}  // namespace orb::test
