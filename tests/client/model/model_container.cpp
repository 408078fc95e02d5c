// SPDX-License-Identifier: MIT
// The functions on structs, cells and sparse arrays.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "client/model/rules.h"

namespace orb::model {
namespace {

/// The slot that holds a value, or null when there is none to be reached.
std::shared_ptr<Message>* slotOf(Array* a, size_t index, size_t field, size_t fields) {
  if (index >= orbGetNumberOfElements(a)) return nullptr;
  const size_t slot = field + index * fields;
  return slot < a->elements.size() ? &a->elements[slot] : nullptr;
}

std::shared_ptr<Message>* cellOf(Array* a, size_t index) {
  return orbIsCell(a) ? slotOf(a, index, 0, 1) : nullptr;
}

std::shared_ptr<Message>* fieldOf(Array* a, size_t index, const char* name) {
  const int field = orbGetFieldNumber(a, name);
  if (field < 0) return nullptr;
  return slotOf(a, index, static_cast<size_t>(field), a->message->fieldNames.size());
}

Array* handleOf(const std::shared_ptr<Message>* slot) {
  return slot != nullptr ? new Array(*slot) : nullptr;
}

void store(Array* parent, std::shared_ptr<Message>* slot, Array* value) {
  if (slot == nullptr) return;
  flush(*value);
  const bool intoItself = parent->message == value->message;
  *slot = intoItself ? std::make_shared<Message>(*value->message) : value->message;
}

}  // namespace

int orbGetNumberOfFields(const Array* a) {
  return orbIsStruct(a) ? static_cast<int>(a->message->fieldNames.size()) : 0;
}

const char* orbGetFieldNameByNumber(const Array* a, int n) {
  if (n < 0 || n >= orbGetNumberOfFields(a)) return nullptr;
  return a->message->fieldNames[static_cast<size_t>(n)].c_str();
}

int orbGetFieldNumber(const Array* a, const char* name) {
  if (name == nullptr) return -1;
  for (int n = 0; n < orbGetNumberOfFields(a); ++n) {
    if (std::strcmp(orbGetFieldNameByNumber(a, n), name) == 0) return n;
  }
  return -1;
}

Array* orbGetField(Array* a, size_t index, const char* name) {
  return handleOf(fieldOf(a, index, name));
}

Array* orbGetFieldByNumber(Array* a, size_t index, int n) {
  return orbGetField(a, index, orbGetFieldNameByNumber(a, n));
}

void orbSetField(Array* a, size_t index, const char* name, Array* value) {
  store(a, fieldOf(a, index, name), value);
}

void orbSetFieldByNumber(Array* a, size_t index, int n, Array* value) {
  orbSetField(a, index, orbGetFieldNameByNumber(a, n), value);
}

int orbAddField(Array* a, const char* name) {
  if (name == nullptr || !orbIsStruct(a)) return -1;
  const int existing = orbGetFieldNumber(a, name);
  if (existing >= 0) return existing;

  const size_t count = orbGetNumberOfElements(a);
  const size_t fields = a->message->fieldNames.size();
  if (count != 0) {
    if (a->elements.size() != fields * count) return -1;
    for (size_t e = 0; e < count; ++e) {
      const size_t last = e * (fields + 1) + fields;
      a->elements.insert(a->elements.begin() + static_cast<std::ptrdiff_t>(last),
                         emptyDouble());
    }
  }
  a->message->fieldNames.emplace_back(name);
  return static_cast<int>(fields);
}

void orbRemoveField(Array* a, int n) {
  if (orbGetFieldNameByNumber(a, n) == nullptr) return;
  const auto field = static_cast<size_t>(n);
  const size_t fields = a->message->fieldNames.size();
  std::vector<std::shared_ptr<Message>> kept;
  for (size_t slot = 0; slot < a->elements.size(); ++slot) {
    const bool removed =
        slot % fields == field && slot / fields < orbGetNumberOfElements(a);
    if (!removed) kept.push_back(a->elements[slot]);
  }
  a->elements = kept;
  a->message->fieldNames.erase(a->message->fieldNames.begin() + n);
}

Array* orbGetCell(Array* a, size_t index) { return handleOf(cellOf(a, index)); }

void orbSetCell(Array* a, size_t index, Array* value) {
  store(a, cellOf(a, index), value);
}

size_t* orbGetIr(Array* a) {
  return a->message->ir.empty() ? nullptr : a->message->ir.data();
}

size_t* orbGetJc(Array* a) {
  return a->message->jc.empty() ? nullptr : a->message->jc.data();
}

size_t orbGetNzmax(const Array* a) {
  return orbIsSparse(a) ? a->message->ir.size() : SIZE_MAX;
}

void orbSetNzmax(Array* a, size_t nzmax) {
  if (!orbIsSparse(a) || nzmax > orbGetNumberOfElements(a)) return;
  const size_t capacity = std::max<size_t>(nzmax, 1);
  requireAtMostMax(capacity);
  Message& message = *a->message;
  const size_t size = capacity * factsOf(message.classid).elementSize;
  message.ir.resize(capacity);
  message.real.resize(size);
  if (!message.imag.empty()) message.imag.resize(size);
}

}  // namespace orb::model
