// SPDX-License-Identifier: MIT
// Exported: fields of structs, cells, and the storage of sparse arrays.
#include <boost/make_shared.hpp>
#include <exception>
#include <limits>
#include <optional>

#include "array/checked_cast.h"
#include "array/dimensions.h"
#include "array/handle.h"
#include "array/orb_array_from_kaldex_array_factory.h"
#include "array/struct_fields.h"

using orb::KALDEX_Array;
using orb::messageOf;
using orb::proxyOf;
using orb::SharedMessage;

namespace {

orb::KALDEXStructArrayProxy& structProxyOf(const orbArray a) {
  return dynamic_cast<orb::KALDEXStructArrayProxy&>(proxyOf(a));
}

orb::KALDEXCellArrayProxy& cellProxyOf(const orbArray a) {
  return dynamic_cast<orb::KALDEXCellArrayProxy&>(proxyOf(a));
}

/// The entry of a cell, if there is one. A server may have sent fewer cells than the
/// dimensions say.
std::optional<size_t> cellEntry(const orbArray a, size_t index) {
  if (!orbIsCell(a) || index >= orb::numberOfElements(messageOf(a))) return std::nullopt;
  if (index >= cellProxyOf(a).size()) return std::nullopt;
  return index;
}

/// The same for the value of a field in one element of a struct.
std::optional<size_t> fieldEntry(const orbArray a, size_t index, const char* name) {
  const int number = orbGetFieldNumber(a, name);
  if (number < 0 || index >= orb::numberOfElements(messageOf(a))) return std::nullopt;
  const size_t size = structProxyOf(a).size();
  const auto field = static_cast<size_t>(number);
  const auto fields = static_cast<size_t>(messageOf(a).struct_().field_names_size());
  // Divided, not multiplied: index * fields may wrap.
  if (field >= size || index > (size - 1 - field) / fields) return std::nullopt;
  return field + index * fields;
}

orbArray handleOf(const SharedMessage& element) {
  return orb::handleOver(element, orb::MessageUse::kShare).release();
}

/// What the container `a` refers to for `value`: its message, written back. A message
/// cannot be copied into itself, so an array that holds itself holds a copy.
SharedMessage storable(const orbArray a, const orbArray value) {
  proxyOf(value).flushToMessage();
  const SharedMessage& message = proxyOf(value).sharedMessage();
  const bool isOwn = message == proxyOf(a).sharedMessage();
  return isOwn ? orb::copyOf(*message) : message;
}

/// Null for an empty list.
size_t* startOf(google::protobuf::RepeatedField<uint64_t>& list) {
  return list.empty() ? nullptr : list.mutable_data();
}

KALDEX_Array::Sparse& sparseOf(const orbArray a) { return orb::sparseIn(messageOf(a)); }

}  // namespace

int orbGetNumberOfFields(const orbArray a) {
  return orbIsStruct(a) ? messageOf(a).struct_().field_names_size() : 0;
}

const char* orbGetFieldNameByNumber(const orbArray a, int n) {
  if (n < 0 || n >= orbGetNumberOfFields(a)) return nullptr;
  return messageOf(a).struct_().field_names(n).c_str();
}

int orbGetFieldNumber(const orbArray a, const char* name) {
  if (name == nullptr || !orbIsStruct(a)) return -1;
  return orb::fieldNumber(messageOf(a).struct_(), name);
}

orbArray orbGetField(const orbArray a, size_t index, const char* name) {
  const auto entry = fieldEntry(a, index, name);
  return entry ? handleOf(structProxyOf(a).element(*entry)) : nullptr;
}

orbArray orbGetFieldByNumber(const orbArray a, size_t index, int n) {
  return orbGetField(a, index, orbGetFieldNameByNumber(a, n));
}

void orbSetField(orbArray a, size_t index, const char* name, orbArray value) {
  const auto entry = fieldEntry(a, index, name);
  if (entry) structProxyOf(a).setElement(*entry, storable(a, value));
}

void orbSetFieldByNumber(orbArray a, size_t index, int n, orbArray value) {
  orbSetField(a, index, orbGetFieldNameByNumber(a, n), value);
}

int orbAddField(orbArray a, const char* name) {
  if (name == nullptr || !orbIsStruct(a)) return -1;
  const int existing = orbGetFieldNumber(a, name);
  if (existing >= 0) return existing;
  try {
    return orb::addField(structProxyOf(a), name);
  } catch (const std::exception&) {
    return -1;
  }
}

void orbRemoveField(orbArray a, int n) {
  if (orbGetFieldNameByNumber(a, n) == nullptr) return;
  orb::removeField(structProxyOf(a), n);
}

orbArray orbGetCell(const orbArray a, size_t index) {
  const auto entry = cellEntry(a, index);
  return entry ? handleOf(cellProxyOf(a).element(*entry)) : nullptr;
}

void orbSetCell(orbArray a, size_t index, orbArray value) {
  const auto entry = cellEntry(a, index);
  if (entry) cellProxyOf(a).setElement(*entry, storable(a, value));
}

size_t* orbGetIr(const orbArray a) {
  return orbIsSparse(a) ? startOf(*sparseOf(a).mutable_ir()) : nullptr;
}

size_t* orbGetJc(const orbArray a) {
  return orbIsSparse(a) ? startOf(*sparseOf(a).mutable_jc()) : nullptr;
}

size_t orbGetNzmax(const orbArray a) {
  if (!orbIsSparse(a)) return std::numeric_limits<size_t>::max();
  return static_cast<size_t>(messageOf(a).sparse().ir_size());
}

void orbSetNzmax(orbArray a, size_t nzmax) {
  if (!orbIsSparse(a) || nzmax > orb::numberOfElements(messageOf(a))) return;
  const int capacity = nzmax == 0 ? 1 : orb::checkedInt32(nzmax);
  KALDEX_Array::Sparse& sparse = sparseOf(a);
  // All memory first: a capacity that the values do not have would be read past their
  // end.
  sparse.mutable_ir()->Reserve(capacity);
  if (orb::storesLogicals(sparse)) {
    orb::logicalsIn(sparse).mutable_elements()->Resize(capacity, false);
  } else {
    KALDEX_Array::Double& values = orb::doublesIn(sparse);
    values.mutable_elements()->Reserve(capacity);
    if (!values.imag_elements().empty()) {
      values.mutable_imag_elements()->Resize(capacity, 0.0);
    }
    values.mutable_elements()->Resize(capacity, 0.0);
  }
  sparse.mutable_ir()->Resize(capacity, 0);
}
