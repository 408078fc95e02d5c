// SPDX-License-Identifier: MIT
#include "client/array/types.h"

#include <cstring>

namespace orb::test {

bool isNumeric(const Type& type) { return type.id <= orbDOUBLE_CLASS; }

void PrintTo(const Type& type, std::ostream* out) { *out << type.name; }

const std::vector<Type>& types() {
  static const std::vector<Type> kTypes = {
      {"uint8", orbUINT8_CLASS, "uint8", 1, false},
      {"int8", orbINT8_CLASS, "int8", 1, false},
      {"uint16", orbUINT16_CLASS, "uint16", 2, false},
      {"int16", orbINT16_CLASS, "int16", 2, false},
      {"uint32", orbUINT32_CLASS, "uint32", 4, false},
      {"int32", orbINT32_CLASS, "int32", 4, false},
      {"uint64", orbUINT64_CLASS, "uint64", 8, false},
      {"int64", orbINT64_CLASS, "int64", 8, false},
      {"single", orbSINGLE_CLASS, "single", 4, false},
      {"double", orbDOUBLE_CLASS, "double", 8, false},
      {"logical", orbLOGICAL_CLASS, "logical", 1, false},
      {"char", orbCHAR_CLASS, "char", 2, false},
      {"struct", orbSTRUCT_CLASS, "struct", 8, false},
      {"cell", orbCELL_CLASS, "cell", 8, false},
      {"sparseDouble", orbDOUBLE_CLASS, "double", 8, true},
      {"sparseLogical", orbLOGICAL_CLASS, "logical", 1, true},
  };
  return kTypes;
}

const std::vector<Shape>& shapes() {
  static const std::vector<Shape> kShapes = {{0, 0},    {0, 3},    {1, 1},      {1, 4},
                                             {4, 1},    {2, 3},    {2, 3, 1},   {1, 1, 1},
                                             {2, 3, 4}, {2, 0, 4}, {2, 1, 3, 1}};
  return kShapes;
}

const std::vector<Shape>& matrixShapes() {
  static const std::vector<Shape> kShapes = {{0, 0}, {0, 3}, {1, 1},
                                             {1, 4}, {4, 1}, {2, 3}};
  return kShapes;
}

const std::vector<Shape>& shapesOf(const Type& type) {
  return type.isSparse ? matrixShapes() : shapes();
}

size_t countOf(const Shape& shape) {
  size_t count = 1;
  for (const size_t extent : shape) count *= extent;
  return count;
}

std::string describe(const Shape& shape, orbComplexity flag) {
  std::string text = flag == orbCOMPLEX ? "complex" : "real";
  for (const size_t extent : shape) text += " " + std::to_string(extent);
  return text;
}

Array create(const Type& type, const Shape& shape, orbComplexity flag) {
  const size_t ndim = shape.size();
  const size_t* dims = shape.data();
  if (type.isSparse) {
    const size_t nzmax = countOf(shape);
    return Array(isNumeric(type) ? orbCreateSparse(dims[0], dims[1], nzmax, flag)
                                 : orbCreateSparseLogicalMatrix(dims[0], dims[1], nzmax));
  }
  if (isNumeric(type)) return Array(orbCreateNumericArray(ndim, dims, type.id, flag));
  if (type.id == orbLOGICAL_CLASS) return Array(orbCreateLogicalArray(ndim, dims));
  if (type.id == orbCHAR_CLASS) return Array(orbCreateCharArray(ndim, dims));
  if (type.id == orbCELL_CLASS) return Array(orbCreateCellArray(ndim, dims));
  const char* fields[] = {"a", "b"};
  return Array(orbCreateStructArray(ndim, dims, 2, fields));
}

void* realData(const Type& type, orbArray a) {
  if (type.id == orbLOGICAL_CLASS) return orbGetLogicals(a);
  if (type.id == orbCHAR_CLASS) return orbGetChars(a);
  return orbGetData(a);
}

void fill(const Type& type, void* data, size_t count, unsigned char first) {
  auto* bytes = static_cast<unsigned char*>(data);
  for (size_t i = 0; i < count; ++i, bytes += type.elementSize) {
    std::memset(bytes, 0, type.elementSize);
    *bytes = type.id == orbLOGICAL_CLASS ? 1 : static_cast<unsigned char>(first + i);
  }
}

Bytes bytesOf(const Type& type, const void* data, size_t count) {
  if (data == nullptr) return {};
  const auto* bytes = static_cast<const unsigned char*>(data);
  return Bytes(bytes, bytes + count * type.elementSize);
}

}  // namespace orb::test
