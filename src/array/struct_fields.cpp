// SPDX-License-Identifier: MIT
#include "array/struct_fields.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "array/checked_cast.h"
#include "array/dimensions.h"
#include "array/proto_extension_resizer.h"
#include "orb/dispatch_on_QXType"

namespace orb {
namespace {

// The fresh message still reads as UINT8 when it is resized: the values of an added field
// carry an empty payload of that type on the wire.
SharedMessage addedFieldValue() {
  SharedMessage value = boost::make_shared<KALDEX_Array>();
  ProtoExtensionResizer resizer(*value, 0);
  dispatch_on_QXType(value->type(), resizer);
  makeEmptySlot(*value);
  return value;
}

Elements withValueBehindEach(const Elements& elements, size_t fields, size_t count) {
  Elements widened;
  widened.reserve(elements.size() + count);
  auto group = elements.begin();
  for (size_t i = 0; i < count; ++i) {
    const auto groupEnd = group + static_cast<Elements::difference_type>(fields);
    widened.insert(widened.end(), group, groupEnd);
    widened.push_back(addedFieldValue());
    group = groupEnd;
  }
  return widened;
}

// Written without the product, which a server can make wrap.
bool hasValuePerFieldAndElement(const Elements& elements, size_t fields, uint64_t count) {
  if (fields == 0) return elements.empty();
  return elements.size() % fields == 0 && elements.size() / fields == count;
}

/// Adds the name, or nothing when memory ends.
void addName(google::protobuf::RepeatedPtrField<std::string>& names, const char* name) {
  std::string copy = name;
  names.Reserve(names.size() + 1);
  names.Add()->swap(copy);
}

}  // namespace

int fieldNumber(const KALDEX_Array::Struct& payload, const char* name) {
  const auto& names = payload.field_names();
  const auto found = std::find(names.begin(), names.end(), std::string_view(name));
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

int addField(KALDEXStructArrayProxy& array, const char* name) {
  KALDEX_Array::Struct& payload = Payload<KALDEX_Array::STRUCT>::in(array.message());
  const int number = payload.field_names_size();
  const size_t fields = static_cast<size_t>(number);
  const uint64_t count = numberOfElements(array.message());
  if (count == 0) {
    addName(*payload.mutable_field_names(), name);
    return number;
  }
  if (!hasValuePerFieldAndElement(array.elements(), fields, count)) {
    throw std::length_error("struct values do not match its fields");
  }
  checkedInt32(array.elements().size() + count);
  Elements widened = withValueBehindEach(array.elements(), fields, count);
  addName(*payload.mutable_field_names(), name);
  array.elements().swap(widened);
  return number;
}

void removeField(KALDEXStructArrayProxy& array, int n) {
  KALDEX_Array::Struct& payload = Payload<KALDEX_Array::STRUCT>::in(array.message());
  const size_t fields = static_cast<size_t>(payload.field_names_size());
  const uint64_t count = numberOfElements(array.message());
  Elements& elements = array.elements();
  size_t kept = 0;
  for (size_t i = 0; i < elements.size(); ++i) {
    // A received struct may hold values behind its last element: they stay.
    const bool removed = i / fields < count && i % fields == static_cast<size_t>(n);
    if (!removed) elements[kept++].swap(elements[i]);
  }
  elements.resize(kept);
  payload.mutable_field_names()->DeleteSubrange(n, 1);
}

}  // namespace orb
