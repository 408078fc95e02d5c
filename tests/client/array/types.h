// SPDX-License-Identifier: MIT
// The types of arrays and the shapes that table-driven tests run over.
#ifndef ORB_TESTS_CLIENT_ARRAY_TYPES_H_
#define ORB_TESTS_CLIENT_ARRAY_TYPES_H_

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "support/array.h"

namespace orb::test {

using Shape = std::vector<size_t>;
using Bytes = std::vector<unsigned char>;

/// One of the fourteen dense classes, sparse double or sparse logical.
struct Type {
  const char* name;
  orbClassID id;
  const char* className;
  size_t elementSize;
  bool isSparse;
};

bool isNumeric(const Type& type);

void PrintTo(const Type& type, std::ostream* out);

/// The names of the tests of a suite over types.
struct TypeName {
  std::string operator()(const ::testing::TestParamInfo<Type>& info) const {
    return info.param.name;
  }
};

const std::vector<Type>& types();

/// Two to four dimensions, trailing ones and empty ones among them.
const std::vector<Shape>& shapes();
/// The two-dimensional ones of shapes().
const std::vector<Shape>& matrixShapes();
/// What a type can have: sparse arrays are made two-dimensional only.
const std::vector<Shape>& shapesOf(const Type& type);

size_t countOf(const Shape& shape);
std::string describe(const Shape& shape, orbComplexity flag);

/// Structs get the fields "a" and "b", sparse arrays a capacity of all their elements.
/// A type that cannot be complex ignores the flag.
Array create(const Type& type, const Shape& shape, orbComplexity flag = orbREAL);

/// The elements through the accessor of the class; null for structs and cells.
void* realData(const Type& type, orbArray a);

/// Gives each of `count` elements a value of its own, true for logicals; `first` tells
/// one filling from another.
void fill(const Type& type, void* data, size_t count, unsigned char first);
/// The bytes of `count` elements; none when `data` is null.
Bytes bytesOf(const Type& type, const void* data, size_t count);

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_ARRAY_TYPES_H_
