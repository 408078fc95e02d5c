// SPDX-License-Identifier: MIT
// Exported: dimensions, data pointers and text.
#include <algorithm>
#include <exception>

#include "array/checked_cast.h"
#include "array/dimensions.h"
#include "array/handle.h"
#include "array/kaldex_char_array_proxy.h"

using orb::KALDEX_Array;
using orb::messageOf;
using orb::proxyOf;

namespace {

const orb::KALDEXCharArrayProxy& charProxyOf(const orbArray a) {
  return dynamic_cast<const orb::KALDEXCharArrayProxy&>(proxyOf(a));
}

/// Brings the elements into line with changed dimensions.
void resizeToDimensions(orbArray a) {
  const uint64_t count = orb::numberOfElements(messageOf(a));
  proxyOf(a).resize(orb::checkedInt32(count));
}

void setExtent(orbArray a, int i, size_t value) {
  KALDEX_Array& message = messageOf(a);
  if (i >= message.dimension_size()) return;
  message.set_dimension(i, value);
  resizeToDimensions(a);
}

}  // namespace

size_t orbGetNumberOfDimensions(const orbArray a) {
  return static_cast<size_t>(messageOf(a).dimension_size());
}

const size_t* orbGetDimensions(const orbArray a) {
  const auto& extents = messageOf(a).dimension();
  return extents.empty() ? nullptr : extents.data();
}

size_t orbGetNumberOfElements(const orbArray a) {
  return orb::numberOfElements(messageOf(a));
}

size_t orbCalcSingleSubscript(const orbArray a, size_t nsubs, const size_t* subs) {
  const auto& extents = messageOf(a).dimension();
  const size_t count = std::min(nsubs, static_cast<size_t>(extents.size()));
  size_t index = 0;
  size_t stride = 1;
  for (size_t i = 0; i < count; ++i) {
    index += stride * subs[i];
    stride *= extents[static_cast<int>(i)];
  }
  return index;
}

size_t orbGetM(const orbArray a) { return orb::extent(messageOf(a), 0); }

size_t orbGetN(const orbArray a) { return orb::extent(messageOf(a), 1); }

void orbSetM(orbArray a, size_t m) { setExtent(a, 0, m); }

void orbSetN(orbArray a, size_t n) { setExtent(a, 1, n); }

int orbSetDimensions(orbArray a, const size_t* dims, size_t ndim) {
  try {
    orb::setDimensions(messageOf(a), dims, ndim);
    resizeToDimensions(a);
    return 0;
  } catch (const std::exception&) {
    return 1;
  }
}

double orbGetScalar(const orbArray a) { return proxyOf(a).getScalar(); }

double* orbGetPr(const orbArray a) {
  return orbIsDouble(a) ? static_cast<double*>(proxyOf(a).getData()) : nullptr;
}

double* orbGetPi(const orbArray a) {
  return orbIsDouble(a) ? static_cast<double*>(proxyOf(a).getImagData()) : nullptr;
}

void* orbGetData(const orbArray a) {
  return orbIsNumeric(a) ? proxyOf(a).getData() : nullptr;
}

void* orbGetImagData(const orbArray a) {
  return orbIsNumeric(a) ? proxyOf(a).getImagData() : nullptr;
}

char16_t* orbGetChars(const orbArray a) {
  return orbIsChar(a) ? static_cast<char16_t*>(proxyOf(a).getData()) : nullptr;
}

bool* orbGetLogicals(const orbArray a) {
  return orbIsLogical(a) ? static_cast<bool*>(proxyOf(a).getData()) : nullptr;
}

int orbGetString(const orbArray a, char* buf, size_t buflen) {
  if (!orbIsChar(a)) return 1;
  if (buflen == 0) return 0;
  const auto& chars = charProxyOf(a).chars();
  const size_t count = orbGetNumberOfElements(a);
  const size_t length = std::min(count, buflen - 1);
  // A server may have sent fewer units than the dimensions say; the missing ones read as
  // NUL.
  const size_t stored = std::min(length, chars.size());
  std::transform(chars.begin(), chars.begin() + static_cast<std::ptrdiff_t>(stored), buf,
                 [](char16_t unit) { return static_cast<char>(unit); });
  std::fill(buf + stored, buf + length + 1, '\0');
  return count >= buflen ? 1 : 0;
}

char* orbArrayToString(const orbArray a) {
  if (!orbIsChar(a)) return nullptr;
  try {
    return charProxyOf(a).utf16ToUtf8();
  } catch (const std::exception&) {
    return nullptr;
  }
}
