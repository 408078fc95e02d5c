// SPDX-License-Identifier: MIT
#include "array/canonical_form.h"

#include <gtest/gtest.h>

#include "torture/fuzz/mutate_message.h"
#include "unit/wire/random_array.h"

namespace orb::test {
namespace {

bool isCanonical(const std::string& bytes) {
  return wire::isCanonicalArray(sliceOf(bytes));
}

/// What canonical bytes promise.
void expectPromise(const std::string& bytes) {
  if (!isCanonical(bytes)) return;
  KALDEX_Array message;
  ASSERT_TRUE(message.ParseFromString(bytes));
  ASSERT_EQ(message.SerializeAsString(), bytes);
}

TEST(IsCanonicalArray, AcceptsWhatTheMessageLibraryWrites) {
  RandomArrays random(1);
  int accepted = 0;
  for (int i = 0; i < 3000; ++i) {
    KALDEX_Array message = random.array(false);
    const std::string bytes = message.SerializeAsString();
    expectPromise(bytes);
    accepted += isCanonical(bytes);
    if (message.type() < KALDEX_Array::STRUCT) {
      EXPECT_TRUE(isCanonical(bytes)) << i;
    }
  }
  EXPECT_GT(accepted, 1000);
}

TEST(IsCanonicalArray, KeepsItsPromiseForOddArrays) {
  RandomArrays random(2);
  for (int i = 0; i < 5000; ++i) expectPromise(random.array(true).SerializeAsString());
}

TEST(IsCanonicalArray, KeepsItsPromiseForDamagedBytes) {
  RandomArrays random(3);
  for (int i = 0; i < 2000; ++i) {
    const std::string bytes = random.array(random.oneIn(3)).SerializeAsString();
    for (int j = 0; j < 20; ++j) expectPromise(random.damaged(bytes));
  }
}

// A single change of the bytes leaves the lengths around it wrong.
TEST(IsCanonicalArray, KeepsItsPromiseForBytesDamagedInside) {
  RandomArrays random(4);
  torture::MessageMutator mutator(4);
  for (int i = 0; i < 20000; ++i) {
    KALDEX_Array message = random.array(false);
    mutator.damage(message);
    expectPromise(message.SerializeAsString());
  }
}

struct Row {
  const char* what;
  std::string bytes;
  bool canonical;
};

class IsCanonicalArrayOf : public ::testing::TestWithParam<Row> {};

TEST_P(IsCanonicalArrayOf, SaysSo) {
  EXPECT_EQ(isCanonical(GetParam().bytes), GetParam().canonical) << GetParam().what;
  expectPromise(GetParam().bytes);
}

std::string nestedCells(int depth) {
  KALDEX_Array message;
  message.set_type(KALDEX_Array::DOUBLE);
  for (int i = 0; i < depth; ++i) {
    KALDEX_Array cell;
    cell.set_type(KALDEX_Array::CELL);
    *cell.mutable_cell()->add_elements() = message;
    message = cell;
  }
  return message.SerializeAsString();
}

using namespace std::string_literals;

INSTANTIATE_TEST_SUITE_P(
    Bytes, IsCanonicalArrayOf,
    ::testing::Values(
        Row{"nothing", "", true}, Row{"a type", "\x08\x09", true},
        Row{"a type that no client holds", "\x08\x0F", false},
        Row{"a type in a long varint", "\x08\x89\x00"s, false},
        Row{"a type twice", "\x08\x09\x08\x09", false},
        Row{"dimensions before the type", "\x12\x02\x01\x01\x08\x09", false},
        Row{"an empty packed list", "\x08\x09\x12\x00"s, false},
        Row{"an unpacked dimension", "\x08\x09\x10\x01", false},
        Row{"a list past the end", "\x08\x09\x12\x03\x01\x01", false},
        Row{"a list that ends inside a varint", "\x08\x09\x12\x02\x01\x81", false},
        Row{"a bool of 2", "\x08\x0A\xD2\x01\x03\x0A\x01\x02", false},
        Row{"half a double", "\x08\x09\xCA\x01\x06\x0A\x04\x01\x01\x01\x01", false},
        Row{"a field number beyond 29 bits", "\x82\x81\x80\x80\x80\x01\x00"s, false},
        Row{"a varint of eleven bytes",
            "\x08\x80\x80\x80\x80\x80\x80\x80\x80\x80\x80\x01", false},
        Row{"the greatest number in 32 bits",
            "\x08\x02\x92\x01\x07\x0A\x05\xFF\xFF\xFF\xFF\x0F", true},
        Row{"a list without a length", "\x08\x09\x12", false},
        Row{"a memory layout without a value", "\x08\x09\x30", false},
        Row{"the last memory layout", "\x08\x09\x30\x02", true},
        Row{"a memory layout beyond it", "\x08\x09\x30\x03", false},
        Row{"complex", "\x08\x09\x38\x01", true},
        Row{"complex with a 2", "\x08\x09\x38\x02", false},
        Row{"an imaginary part of logicals", "\x08\x0A\xD2\x01\x03\x12\x01\x01", false},
        Row{"an imaginary part of chars", "\x08\x0B\xDA\x01\x03\x12\x01\x01", false},
        Row{"cells that end inside a tag", "\x08\x0D\xE2\x01\x01\x80", false},
        Row{"a field 0 in cells", "\x08\x0D\xE2\x01\x03\x00\x01\x41"s, false},
        Row{"a field name behind an element", "\x08\x0C\xEA\x01\x05\x12\x00\x0A\x01\x41"s,
            false},
        Row{"a field name in front of one", "\x08\x0C\xEA\x01\x05\x0A\x01\x41\x12\x00"s,
            true},
        Row{"a field 0 in a struct", "\x08\x0C\xEA\x01\x03\x00\x01\x41"s, false},
        Row{"the greatest tag there is",
            "\x08\x09\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x01", false},
        Row{"cells 40 deep", nestedCells(40), true},
        Row{"cells 41 deep", nestedCells(41), false}));

TEST(ReadCanonicalFieldsBelow, RefusesAFieldTwice) {
  const std::string bytes = "\x08\x09\x08\x09";
  wire::Reader reader(sliceOf(bytes));
  EXPECT_FALSE(wire::readCanonicalFieldsBelow(KALDEX_Array::kStructFieldNumber, reader));
}

TEST(ReadCanonicalFieldsBelow, GoesAsDeep) {
  for (const int depth : {40, 41}) {
    const std::string bytes = nestedCells(depth);
    wire::Reader reader(sliceOf(bytes));
    EXPECT_EQ(wire::readCanonicalFieldsBelow(KALDEX_Array::kStructFieldNumber, reader),
              depth == 40);
  }
}

}  // namespace
}  // namespace orb::test
