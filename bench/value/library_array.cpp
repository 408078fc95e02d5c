// SPDX-License-Identifier: MIT
#include "value/library_array.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace orb::bench {
namespace {

orbArray doubles(const Value& value) {
  const bool isComplex = !value.imaginary.empty();
  const orbArray array =
      orbCreateNumericArray(value.dimensions.size(), value.dimensions.data(),
                            orbDOUBLE_CLASS, isComplex ? orbCOMPLEX : orbREAL);
  std::copy(value.real.begin(), value.real.end(), orbGetPr(array));
  if (isComplex) {
    std::copy(value.imaginary.begin(), value.imaginary.end(), orbGetPi(array));
  }
  return array;
}

orbArray uint16s(const Value& value) {
  const orbArray array = orbCreateNumericArray(
      value.dimensions.size(), value.dimensions.data(), orbUINT16_CLASS, orbREAL);
  std::copy(value.shorts.begin(), value.shorts.end(),
            static_cast<uint16_t*>(orbGetData(array)));
  return array;
}

orbArray chars(const Value& value) {
  const orbArray array =
      orbCreateCharArray(value.dimensions.size(), value.dimensions.data());
  std::copy(value.text.begin(), value.text.end(), orbGetChars(array));
  return array;
}

orbArray cells(const Value& value) {
  const orbArray array =
      orbCreateCellArray(value.dimensions.size(), value.dimensions.data());
  for (size_t i = 0; i < value.elements.size(); ++i) {
    orbSetCell(array, i, libraryArray(value.elements[i]).get());
  }
  return array;
}

orbArray structs(const Value& value) {
  std::vector<const char*> names;
  for (const std::string& name : value.fieldNames) names.push_back(name.c_str());
  const int fields = static_cast<int>(names.size());
  const orbArray array = orbCreateStructArray(
      value.dimensions.size(), value.dimensions.data(), fields, names.data());
  for (size_t i = 0; i < value.elements.size(); ++i) {
    const size_t element = i / names.size();
    const int field = static_cast<int>(i % names.size());
    orbSetFieldByNumber(array, element, field, libraryArray(value.elements[i]).get());
  }
  return array;
}

orbArray sparse(const Value& value) {
  const orbArray array = orbCreateSparse(value.dimensions[0], value.dimensions[1],
                                         value.real.size(), orbREAL);
  std::copy(value.rows.begin(), value.rows.end(), orbGetIr(array));
  std::copy(value.columnStarts.begin(), value.columnStarts.end(), orbGetJc(array));
  std::copy(value.real.begin(), value.real.end(), orbGetPr(array));
  return array;
}

void addCells(Checksum& checksum, orbArray array) {
  const size_t count = orbGetNumberOfElements(array);
  for (size_t i = 0; i < count; ++i) {
    addArray(checksum, LibraryArray(orbGetCell(array, i)).get());
  }
}

void addFields(Checksum& checksum, orbArray array) {
  const size_t count = orbGetNumberOfElements(array);
  const int fields = orbGetNumberOfFields(array);
  for (size_t i = 0; i < count; ++i) {
    for (int f = 0; f < fields; ++f) {
      addArray(checksum, LibraryArray(orbGetFieldByNumber(array, i, f)).get());
    }
  }
}

void addSparse(Checksum& checksum, orbArray array) {
  const size_t stored = orbGetNzmax(array);
  checksum.addAll(orbGetIr(array), stored);
  checksum.addAll(orbGetJc(array), orbGetN(array) + 1);
  checksum.addAll(orbGetPr(array), stored);
}

void addDoubles(Checksum& checksum, orbArray array) {
  const size_t count = orbGetNumberOfElements(array);
  checksum.addAll(orbGetPr(array), count);
  if (orbIsComplex(array)) checksum.addAll(orbGetPi(array), count);
}

}  // namespace

LibraryArray libraryArray(const Value& value) {
  switch (value.kind) {
    case Value::Kind::kDouble:
      return LibraryArray(doubles(value));
    case Value::Kind::kUint16:
      return LibraryArray(uint16s(value));
    case Value::Kind::kChar:
      return LibraryArray(chars(value));
    case Value::Kind::kCell:
      return LibraryArray(cells(value));
    case Value::Kind::kStruct:
      return LibraryArray(structs(value));
    case Value::Kind::kSparse:
      return LibraryArray(sparse(value));
  }
  throw std::invalid_argument("There is no such kind of value.");
}

void addArray(Checksum& checksum, orbArray array) {
  checksum.addAll(orbGetDimensions(array), orbGetNumberOfDimensions(array));
  if (orbIsSparse(array)) {
    addSparse(checksum, array);
  } else if (orbIsDouble(array)) {
    addDoubles(checksum, array);
  } else if (orbIsUint16(array)) {
    checksum.addAll(static_cast<const uint16_t*>(orbGetData(array)),
                    orbGetNumberOfElements(array));
  } else if (orbIsChar(array)) {
    checksum.addAll(orbGetChars(array), orbGetNumberOfElements(array));
  } else if (orbIsCell(array)) {
    addCells(checksum, array);
  } else {
    addFields(checksum, array);
  }
}

}  // namespace orb::bench
