// SPDX-License-Identifier: MIT
// The functions on handles, shapes, values and classes.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "client/model/rules.h"

namespace orb::model {
namespace {

void followDimensions(Array& a) {
  const size_t count = product(a.message->dimensions);
  requireAtMostMax(count);
  resize(a, count);
}

void setExtent(Array& a, size_t which, size_t extent) {
  if (a.message->dimensions.size() <= which) return;
  a.message->dimensions[which] = extent;
  followDimensions(a);
}

template <class Element>
double firstOf(const Bytes& bytes) {
  if (bytes.empty()) return 0.0;
  Element first;
  std::memcpy(&first, bytes.data(), sizeof first);
  return static_cast<double>(first);
}

}  // namespace

void orbDestroyArray(Array* a) { delete a; }

Array* orbDuplicateArray(Array* a) {
  flush(*a);
  return new Array(std::make_shared<Message>(*a->message));
}

void orbFree(void* p) { std::free(p); }

orbClassID orbGetClassID(const Array* a) { return a->message->classid; }

const char* orbGetClassName(const Array* a) { return factsOf(orbGetClassID(a)).name; }

bool orbIsComplex(const Array* a) { return a->complex; }

size_t orbGetElementSize(const Array* a) { return factsOf(orbGetClassID(a)).elementSize; }

size_t orbGetNumberOfDimensions(const Array* a) { return a->message->dimensions.size(); }

const size_t* orbGetDimensions(const Array* a) { return a->message->dimensions.data(); }

size_t orbGetNumberOfElements(const Array* a) { return product(a->message->dimensions); }

size_t orbCalcSingleSubscript(const Array* a, size_t nsubs, const size_t* subs) {
  const std::vector<size_t>& dimensions = a->message->dimensions;
  size_t index = 0;
  size_t stride = 1;
  for (size_t i = 0; i < std::min(nsubs, dimensions.size()); ++i) {
    index += subs[i] * stride;
    stride *= dimensions[i];
  }
  return index;
}

size_t orbGetM(const Array* a) { return a->message->dimensions.at(0); }

size_t orbGetN(const Array* a) { return a->message->dimensions.at(1); }

void orbSetM(Array* a, size_t m) { setExtent(*a, 0, m); }

void orbSetN(Array* a, size_t n) { setExtent(*a, 1, n); }

int orbSetDimensions(Array* a, const size_t* dims, size_t ndim) {
  if (ndim == 0) return 1;
  a->message->dimensions = normalised({dims, dims + ndim});
  try {
    followDimensions(*a);
  } catch (const PositiveOverflow&) {
    return 1;
  }
  return 0;
}

double orbGetScalar(Array* a) {
  const Bytes& values = realPart(*a);
  switch (orbGetClassID(a)) {
    case orbUINT8_CLASS:
    case orbLOGICAL_CLASS:
      return firstOf<uint8_t>(values);
    case orbINT8_CLASS:
      return firstOf<int8_t>(values);
    case orbUINT16_CLASS:
    case orbCHAR_CLASS:
      return firstOf<uint16_t>(values);
    case orbINT16_CLASS:
      return firstOf<int16_t>(values);
    case orbUINT32_CLASS:
      return firstOf<uint32_t>(values);
    case orbINT32_CLASS:
      return firstOf<int32_t>(values);
    case orbUINT64_CLASS:
      return firstOf<uint64_t>(values);
    case orbINT64_CLASS:
      return firstOf<int64_t>(values);
    case orbSINGLE_CLASS:
      return firstOf<float>(values);
    case orbDOUBLE_CLASS:
      return firstOf<double>(values);
    case orbSTRUCT_CLASS:
    case orbCELL_CLASS:
    case orbUNKNOWN_CLASS:
      return 0.0;
  }
  return 0.0;
}

double* orbGetPr(Array* a) {
  return orbIsDouble(a) ? pointerTo<double>(realPart(*a)) : nullptr;
}

double* orbGetPi(Array* a) {
  return orbIsDouble(a) ? static_cast<double*>(orbGetImagData(a)) : nullptr;
}

void* orbGetData(Array* a) {
  return orbIsNumeric(a) ? pointerTo<void>(realPart(*a)) : nullptr;
}

void* orbGetImagData(Array* a) {
  // A sparse array may have stored imaginary values without being complex: one created
  // without elements has.
  if (!orbIsNumeric(a) || !(a->complex || orbIsSparse(a))) return nullptr;
  return pointerTo<void>(imagPart(*a));
}

char16_t* orbGetChars(Array* a) {
  return orbIsChar(a) ? pointerTo<char16_t>(realPart(*a)) : nullptr;
}

bool* orbGetLogicals(Array* a) {
  return orbIsLogical(a) ? pointerTo<bool>(realPart(*a)) : nullptr;
}

int orbGetString(Array* a, char* buf, size_t buflen) {
  if (!orbIsChar(a)) return 1;
  if (buflen == 0) return 0;
  // A handle may see fewer units than another one has made room for: those read as NUL.
  const size_t count = orbGetNumberOfElements(a);
  const size_t copied = std::min(count, buflen - 1);
  for (size_t i = 0; i < copied; ++i) {
    buf[i] = i < unitsOf(*a) ? static_cast<char>(unitAt(*a, i) & 0xFF) : '\0';
  }
  buf[copied] = '\0';
  return copied < count ? 1 : 0;
}

char* orbArrayToString(Array* a) {
  const std::optional<std::string> text = utf8Of(*a);
  if (!text) return nullptr;
  auto* copy = static_cast<char*>(std::malloc(text->size() + 1));
  std::memcpy(copy, text->c_str(), text->size() + 1);
  return copy;
}

}  // namespace orb::model
