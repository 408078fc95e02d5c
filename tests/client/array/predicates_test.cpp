// SPDX-License-Identifier: MIT
// Predicates: which of them hold for which type and shape.
#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "client/array/types.h"

namespace orb::test {
namespace {

struct Predicate {
  const char* name;
  bool (*holds)(const orbArray);
};

const Predicate kClassPredicates[] = {
    {"Double", orbIsDouble}, {"Single", orbIsSingle},   {"Int8", orbIsInt8},
    {"Uint8", orbIsUint8},   {"Int16", orbIsInt16},     {"Uint16", orbIsUint16},
    {"Int32", orbIsInt32},   {"Uint32", orbIsUint32},   {"Int64", orbIsInt64},
    {"Uint64", orbIsUint64}, {"Numeric", orbIsNumeric}, {"Logical", orbIsLogical},
    {"Char", orbIsChar},     {"Struct", orbIsStruct},   {"Cell", orbIsCell},
    {"Sparse", orbIsSparse}};

std::vector<std::string> predicatesThatHold(orbArray a) {
  std::vector<std::string> names;
  for (const Predicate& predicate : kClassPredicates) {
    if (predicate.holds(a)) names.emplace_back(predicate.name);
  }
  return names;
}

struct Row {
  const char* type;
  std::vector<std::string> predicates;
};

const Row kRows[] = {{"uint8", {"Uint8", "Numeric"}},
                     {"int8", {"Int8", "Numeric"}},
                     {"uint16", {"Uint16", "Numeric"}},
                     {"int16", {"Int16", "Numeric"}},
                     {"uint32", {"Uint32", "Numeric"}},
                     {"int32", {"Int32", "Numeric"}},
                     {"uint64", {"Uint64", "Numeric"}},
                     {"int64", {"Int64", "Numeric"}},
                     {"single", {"Single", "Numeric"}},
                     {"double", {"Double", "Numeric"}},
                     {"logical", {"Logical"}},
                     {"char", {"Char"}},
                     {"struct", {"Struct"}},
                     {"cell", {"Cell"}},
                     {"sparseDouble", {"Double", "Numeric", "Sparse"}},
                     {"sparseLogical", {"Logical", "Sparse"}}};

TEST(ClassPredicates, HoldExactlyForTheirTypesInEveryShapeAndComplexity) {
  ASSERT_EQ(types().size(), std::size(kRows));
  for (size_t i = 0; i < std::size(kRows); ++i) {
    const Type& type = types()[i];
    ASSERT_STREQ(type.name, kRows[i].type);
    for (const Shape& shape : shapesOf(type)) {
      for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
        SCOPED_TRACE(type.name + (" " + describe(shape, flag)));
        EXPECT_EQ(predicatesThatHold(create(type, shape, flag)), kRows[i].predicates);
      }
    }
  }
}

TEST(IsLogicalScalar, IsTrueForLogical1By1Only) {
  for (const Type& type : types()) {
    for (const Shape& shape : shapesOf(type)) {
      SCOPED_TRACE(type.name + (" " + describe(shape, orbREAL)));
      const Array a = create(type, shape);
      EXPECT_EQ(orbIsLogicalScalar(a),
                type.id == orbLOGICAL_CLASS && shape == Shape({1, 1}));
      EXPECT_FALSE(orbIsLogicalScalarTrue(a));
    }
  }
}

TEST(IsLogicalScalar, IsFalseAfterSetDimensionsTo1By1By1) {
  const Array a(orbCreateLogicalScalar(true));
  EXPECT_TRUE(orbIsLogicalScalar(a));
  EXPECT_TRUE(orbIsLogicalScalarTrue(a));
  const size_t dims[] = {1, 1, 1};
  ASSERT_EQ(orbSetDimensions(a, dims, 3), 0);
  EXPECT_FALSE(orbIsLogicalScalar(a));
  EXPECT_FALSE(orbIsLogicalScalarTrue(a));
}

TEST(IsLogicalScalarTrue, IsTheValueOfAScalar) {
  EXPECT_TRUE(orbIsLogicalScalarTrue(Array(orbCreateLogicalScalar(true))));
  EXPECT_FALSE(orbIsLogicalScalarTrue(Array(orbCreateLogicalScalar(false))));
}

TEST(IsLogicalScalarTrue, IsFalseForATrueRowAndATrueDouble) {
  const Array row(orbCreateLogicalMatrix(1, 2));
  orbGetLogicals(row)[0] = true;
  EXPECT_FALSE(orbIsLogicalScalarTrue(row));
  EXPECT_FALSE(orbIsLogicalScalarTrue(doubleRow({1})));
}

TEST(IsLogicalScalarTrue, OfASparseScalarIsItsFirstStoredValueAndFalseWithoutOne) {
  const Array stored(orbCreateSparseLogicalMatrix(1, 1, 1));
  EXPECT_TRUE(orbIsLogicalScalar(stored));
  EXPECT_FALSE(orbIsLogicalScalarTrue(stored));
  orbGetLogicals(stored)[0] = true;
  EXPECT_TRUE(orbIsLogicalScalarTrue(stored));
  const Array none(orbCreateSparseLogicalMatrix(1, 1, 0));
  EXPECT_TRUE(orbIsLogicalScalar(none));
  EXPECT_FALSE(orbIsLogicalScalarTrue(none));
}

TEST(IsEmpty, IsTrueWhenAnyExtentIsZero) {
  for (const Type& type : types()) {
    for (const Shape& shape : shapesOf(type)) {
      SCOPED_TRACE(type.name + (" " + describe(shape, orbREAL)));
      EXPECT_EQ(orbIsEmpty(create(type, shape)), countOf(shape) == 0);
    }
  }
}

TEST(IsEmpty, LooksAtExtentsNotAtTheirProductModulo2ToThe64th) {
  const size_t dims[] = {size_t{1} << 32, size_t{1} << 32};
  EXPECT_FALSE(orbIsEmpty(Array(orbCreateCharArray(2, dims))));
}

TEST(IsClass, IsTrueForTheClassNameOnly) {
  for (const Type& type : types()) {
    const Array a = create(type, {1, 1});
    for (const Type& other : types()) {
      SCOPED_TRACE(type.name + std::string(" is ") + other.className);
      EXPECT_EQ(orbIsClass(a, other.className), type.id == other.id);
    }
    for (const char* name : {"", "numeric", "float", "sparse", "integer", "any"}) {
      SCOPED_TRACE(type.name + std::string(" is ") + name);
      EXPECT_FALSE(orbIsClass(a, name));
    }
  }
}

TEST(IsClass, ComparesEveryByte) {
  const Array a = doubleRow({1});
  EXPECT_TRUE(orbIsClass(a, "double"));
  EXPECT_FALSE(orbIsClass(a, "Double"));
  EXPECT_FALSE(orbIsClass(a, "doubl"));
  EXPECT_FALSE(orbIsClass(a, "doubles"));
  EXPECT_FALSE(orbIsClass(a, "double "));
}

TEST(IsClass, OfASparseDoubleArrayIsDoubleAndNotSparse) {
  const Array a(orbCreateSparse(2, 2, 1, orbREAL));
  EXPECT_TRUE(orbIsClass(a, "double"));
  EXPECT_FALSE(orbIsClass(a, "sparse"));
}

}  // namespace
}  // namespace orb::test
