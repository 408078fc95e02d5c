// SPDX-License-Identifier: MIT
#include "array/array_head.h"

namespace orb {
namespace {

constexpr uint32_t kTypeTag = wire::tagOf(KALDEX_Array::kTypeFieldNumber, wire::kVarint);

size_t dimensionsSize(const KALDEX_Array& array) {
  size_t size = 0;
  for (const uint64_t extent : array.dimension()) size += wire::varintSize(extent);
  return size;
}

}  // namespace

size_t headSize(const KALDEX_Array& array) {
  const size_t typeSize =
      wire::varintSize(kTypeTag) + wire::varintSize(static_cast<uint64_t>(array.type()));
  if (array.dimension().empty()) return typeSize;
  return typeSize +
         wire::fieldSize(KALDEX_Array::kDimensionFieldNumber, dimensionsSize(array));
}

uint8_t* writeHead(const KALDEX_Array& array, uint8_t* target) {
  target = wire::writeVarint(kTypeTag, target);
  target = wire::writeVarint(static_cast<uint64_t>(array.type()), target);
  if (array.dimension().empty()) return target;
  target = wire::writeFieldHead(KALDEX_Array::kDimensionFieldNumber,
                                dimensionsSize(array), target);
  for (const uint64_t extent : array.dimension())
    target = wire::writeVarint(extent, target);
  return target;
}

bool holdsOnlyHeadAnd(const KALDEX_Array& array, bool hasPayload, int payloadField,
                      size_t payloadSize) {
  const size_t payload = hasPayload ? wire::fieldSize(payloadField, payloadSize) : 0;
  return array.has_type() && array.ByteSizeLong() == headSize(array) + payload;
}

}  // namespace orb
