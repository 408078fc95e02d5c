// SPDX-License-Identifier: MIT
// The predicates.
#include <algorithm>
#include <cstring>

#include "client/model/rules.h"

namespace orb::model {

bool orbIsDouble(const Array* a) { return orbGetClassID(a) == orbDOUBLE_CLASS; }

bool orbIsSingle(const Array* a) { return orbGetClassID(a) == orbSINGLE_CLASS; }

bool orbIsInt8(const Array* a) { return orbGetClassID(a) == orbINT8_CLASS; }

bool orbIsUint8(const Array* a) { return orbGetClassID(a) == orbUINT8_CLASS; }

bool orbIsInt16(const Array* a) { return orbGetClassID(a) == orbINT16_CLASS; }

bool orbIsUint16(const Array* a) { return orbGetClassID(a) == orbUINT16_CLASS; }

bool orbIsInt32(const Array* a) { return orbGetClassID(a) == orbINT32_CLASS; }

bool orbIsUint32(const Array* a) { return orbGetClassID(a) == orbUINT32_CLASS; }

bool orbIsInt64(const Array* a) { return orbGetClassID(a) == orbINT64_CLASS; }

bool orbIsUint64(const Array* a) { return orbGetClassID(a) == orbUINT64_CLASS; }

bool orbIsNumeric(const Array* a) { return isNumeric(orbGetClassID(a)); }

bool orbIsLogical(const Array* a) { return orbGetClassID(a) == orbLOGICAL_CLASS; }

bool orbIsChar(const Array* a) { return orbGetClassID(a) == orbCHAR_CLASS; }

bool orbIsStruct(const Array* a) { return orbGetClassID(a) == orbSTRUCT_CLASS; }

bool orbIsCell(const Array* a) { return orbGetClassID(a) == orbCELL_CLASS; }

bool orbIsSparse(const Array* a) { return a->message->sparse; }

bool orbIsLogicalScalar(const Array* a) {
  return orbIsLogical(a) && a->message->dimensions == std::vector<size_t>{1, 1};
}

bool orbIsLogicalScalarTrue(Array* a) {
  return orbIsLogicalScalar(a) && orbGetScalar(a) != 0.0;
}

bool orbIsEmpty(const Array* a) {
  const std::vector<size_t>& dimensions = a->message->dimensions;
  return dimensions.empty() ||
         std::count(dimensions.begin(), dimensions.end(), size_t{0}) != 0;
}

bool orbIsClass(const Array* a, const char* name) {
  return std::strcmp(orbGetClassName(a), name) == 0;
}

}  // namespace orb::model
