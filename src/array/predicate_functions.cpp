// SPDX-License-Identifier: MIT
// Exported: questions about class and shape.
#include <algorithm>
#include <cstring>

#include "array/handle.h"
#include "array/payload.h"

using orb::KALDEX_Array;
using orb::messageOf;

namespace {

constexpr orb::QXType numericClassSet[] = {
    KALDEX_Array::INT8,   KALDEX_Array::UINT8,  KALDEX_Array::INT16, KALDEX_Array::UINT16,
    KALDEX_Array::INT32,  KALDEX_Array::UINT32, KALDEX_Array::INT64, KALDEX_Array::UINT64,
    KALDEX_Array::SINGLE, KALDEX_Array::DOUBLE};

bool isOfType(const orbArray a, orb::QXType type) { return messageOf(a).type() == type; }

bool isSparseOf(const orbArray a, KALDEX_Array::Sparse::SparseType type) {
  return messageOf(a).sparse().type() == type;
}

}  // namespace

bool orbIsDouble(const orbArray a) {
  if (orbIsSparse(a)) return isSparseOf(a, KALDEX_Array::Sparse::DOUBLE);
  return isOfType(a, KALDEX_Array::DOUBLE);
}

bool orbIsSingle(const orbArray a) { return isOfType(a, KALDEX_Array::SINGLE); }

bool orbIsInt8(const orbArray a) { return isOfType(a, KALDEX_Array::INT8); }

bool orbIsUint8(const orbArray a) { return isOfType(a, KALDEX_Array::UINT8); }

bool orbIsInt16(const orbArray a) { return isOfType(a, KALDEX_Array::INT16); }

bool orbIsUint16(const orbArray a) { return isOfType(a, KALDEX_Array::UINT16); }

bool orbIsInt32(const orbArray a) { return isOfType(a, KALDEX_Array::INT32); }

bool orbIsUint32(const orbArray a) { return isOfType(a, KALDEX_Array::UINT32); }

bool orbIsInt64(const orbArray a) { return isOfType(a, KALDEX_Array::INT64); }

bool orbIsUint64(const orbArray a) { return isOfType(a, KALDEX_Array::UINT64); }

bool orbIsNumeric(const orbArray a) {
  if (orbIsSparse(a)) return isSparseOf(a, KALDEX_Array::Sparse::DOUBLE);
  return std::find(std::begin(numericClassSet), std::end(numericClassSet),
                   messageOf(a).type()) != std::end(numericClassSet);
}

bool orbIsLogical(const orbArray a) {
  if (orbIsSparse(a)) return isSparseOf(a, KALDEX_Array::Sparse::LOGICAL);
  return isOfType(a, KALDEX_Array::LOGICAL);
}

bool orbIsChar(const orbArray a) { return isOfType(a, KALDEX_Array::CHAR); }

bool orbIsStruct(const orbArray a) { return isOfType(a, KALDEX_Array::STRUCT); }

bool orbIsCell(const orbArray a) { return isOfType(a, KALDEX_Array::CELL); }

bool orbIsSparse(const orbArray a) { return isOfType(a, KALDEX_Array::SPARSE); }

bool orbIsLogicalScalar(const orbArray a) {
  const KALDEX_Array& message = messageOf(a);
  return orbIsLogical(a) && message.dimension_size() == 2 && message.dimension(0) == 1 &&
         message.dimension(1) == 1;
}

bool orbIsLogicalScalarTrue(const orbArray a) {
  if (!orbIsLogicalScalar(a)) return false;
  const KALDEX_Array& message = messageOf(a);
  const KALDEX_Array::Logical& values =
      orbIsSparse(a) ? message.sparse().logical() : message.logical();
  return !values.elements().empty() && values.elements(0);
}

bool orbIsEmpty(const orbArray a) {
  const auto& extents = messageOf(a).dimension();
  return extents.empty() || std::find(extents.begin(), extents.end(), 0) != extents.end();
}

bool orbIsClass(const orbArray a, const char* name) {
  // A sparse array whose type a server invented stores neither doubles nor logicals.
  if (orbIsSparse(a) && !orbIsDouble(a) && !orbIsLogical(a)) return false;
  return std::strcmp(orbGetClassName(a), name) == 0;
}
