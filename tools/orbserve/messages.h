// SPDX-License-Identifier: MIT
// Array messages as such: their names and shapes, and whether they hold what they
// declare.
#ifndef ORB_TOOLS_ORBSERVE_MESSAGES_H_
#define ORB_TOOLS_ORBSERVE_MESSAGES_H_

#include <cstdint>
#include <stdexcept>
#include <string>

#include "call.h"
#include "errors.h"

namespace orb::serve {

/// "uint8", "double", "struct", ... A sparse array has the class of its values.
std::string className(const Array& array);

/// "3x2 double", "1x1 complex single", "4x4 sparse logical", ...
std::string summary(const Array& array);

bool isComplex(const Array& array);

/// The product of the dimensions of an array that checkArray() accepts.
uint64_t elementCount(const Array& array);

/// Throws a CallError unless the array, and every array inside it, is of a known type and
/// holds as many elements as its dimensions say. `what` names the array in the text. The
/// index lists of a sparse array are looked at where they are used.
void checkArray(const Array& array, const std::string& what,
                SourceLine at = SourceLine::here());

/// Calls `use` with the payload message of a numeric array (types 0 to 9). Every such
/// message has `elements` and `imag_elements`.
template <class Use>
auto withNumericPayload(const Array& array, Use use) {
  switch (static_cast<int>(array.type())) {
    case Array::UINT8:
      return use(array.uint8());
    case Array::INT8:
      return use(array.int8());
    case Array::UINT16:
      return use(array.uint16());
    case Array::INT16:
      return use(array.int16());
    case Array::UINT32:
      return use(array.uint32());
    case Array::INT32:
      return use(array.int32());
    case Array::UINT64:
      return use(array.uint64());
    case Array::INT64:
      return use(array.int64());
    case Array::SINGLE:
      return use(array.single());
    case Array::DOUBLE:
      return use(array.qxdouble());
  }
  throw std::logic_error("withNumericPayload: not a numeric array");
}

inline bool isNumeric(const Array& array) {
  return array.type() >= Array::UINT8 && array.type() <= Array::DOUBLE;
}

}  // namespace orb::serve

#endif  // ORB_TOOLS_ORBSERVE_MESSAGES_H_
