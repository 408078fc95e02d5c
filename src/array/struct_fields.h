// SPDX-License-Identifier: MIT
// Names, numbers and slots of the fields of a struct array.
#ifndef ORB_ARRAY_STRUCT_FIELDS_H_
#define ORB_ARRAY_STRUCT_FIELDS_H_

#include "array/kaldex_struct_cell_array_proxy.h"

namespace orb {

/// The number of the first field with this name, -1 when there is none.
int fieldNumber(const KALDEX_Array::Struct& payload, const char* name);

/// Appends a field to every element and gives its number. Throws std::length_error, with
/// nothing changed, for a received struct whose values are not one per field and element.
int addField(KALDEXStructArrayProxy& array, const char* name);

/// Drops the existing field n from every element.
void removeField(KALDEXStructArrayProxy& array, int n);

}  // namespace orb

#endif  // ORB_ARRAY_STRUCT_FIELDS_H_
