// SPDX-License-Identifier: MIT
#include "torture/allocations/describe.h"

#include <algorithm>
#include <sstream>

#include "support/array.h"

namespace orb::torture {
namespace {

using test::Array;

void* dataOf(orbArray a) {
  if (orbIsLogical(a)) return orbGetLogicals(a);
  return orbIsChar(a) ? orbGetChars(a) : orbGetData(a);
}

void writeBytes(std::ostream& out, const void* first, std::size_t size) {
  if (first == nullptr) {
    out << " none";
    return;
  }
  out << ' ' << std::hex;
  for (std::size_t i = 0; i < size; ++i) {
    out << static_cast<int>(static_cast<const unsigned char*>(first)[i]) << '.';
  }
  out << std::dec;
}

void writeSparse(std::ostream& out, orbArray a) {
  const std::size_t stored = orbGetNzmax(a);
  writeBytes(out, orbGetIr(a), stored * sizeof(std::size_t));
  writeBytes(out, orbGetJc(a), (orbGetN(a) + 1) * sizeof(std::size_t));
  writeBytes(out, dataOf(a), stored * orbGetElementSize(a));
  writeBytes(out, orbGetImagData(a), stored * orbGetElementSize(a));
}

void writeElement(std::ostream& out, orbArray element) {
  const Array owner(element);
  out << " {" << (element == nullptr ? "null" : describe(element)) << '}';
}

}  // namespace

std::string describe(orbArray a) {
  std::ostringstream out;
  out << orbGetClassName(a) << (orbIsSparse(a) ? " sparse" : "")
      << (orbIsComplex(a) ? " complex" : "");
  for (std::size_t i = 0; i < orbGetNumberOfDimensions(a); ++i) {
    out << (i == 0 ? ' ' : 'x') << orbGetDimensions(a)[i];
  }
  if (orbIsSparse(a)) {
    writeSparse(out, a);
    return out.str();
  }
  return out.str() + describeElements(a, orbGetNumberOfElements(a));
}

std::string describeElements(orbArray a, std::size_t count) {
  std::ostringstream out;
  if (orbIsSparse(a)) {
    const std::size_t stored = orbGetNzmax(a);
    writeBytes(out, orbGetIr(a), stored * sizeof(std::size_t));
    writeBytes(out, dataOf(a), stored * orbGetElementSize(a));
    writeBytes(out, orbGetImagData(a), stored * orbGetElementSize(a));
  } else if (orbIsCell(a)) {
    for (std::size_t i = 0; i < count; ++i) writeElement(out, orbGetCell(a, i));
  } else if (orbIsStruct(a)) {
    for (int field = 0; field < orbGetNumberOfFields(a); ++field) {
      out << ' ' << orbGetFieldNameByNumber(a, field);
      for (std::size_t i = 0; i < count; ++i) {
        writeElement(out, orbGetFieldByNumber(a, i, field));
      }
    }
  } else {
    writeBytes(out, dataOf(a), count * orbGetElementSize(a));
    writeBytes(out, orbGetImagData(a), count * orbGetElementSize(a));
  }
  return out.str();
}

}  // namespace orb::torture
