// SPDX-License-Identifier: MIT
// The fields that every array starts with on the wire: type and dimensions.
#ifndef ORB_ARRAY_ARRAY_HEAD_H_
#define ORB_ARRAY_ARRAY_HEAD_H_

#include "array/payload.h"
#include "array/wire_format.h"

namespace orb {

size_t headSize(const KALDEX_Array& array);
uint8_t* writeHead(const KALDEX_Array& array, uint8_t* target);

/// Whether the message holds type, dimensions and `payloadSize` bytes of payload in the
/// field, and nothing else that would have to be sent.
bool holdsOnlyHeadAnd(const KALDEX_Array& array, bool hasPayload, int payloadField,
                      size_t payloadSize);

}  // namespace orb

#endif  // ORB_ARRAY_ARRAY_HEAD_H_
