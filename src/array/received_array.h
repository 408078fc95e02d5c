// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_RECEIVED_ARRAY_H_
#define ORB_ARRAY_RECEIVED_ARRAY_H_

#include "array/handle.h"
#include "array/wire_format.h"

namespace orb {

/// Makes an array straight from its wire form, one of the elements of a reply: 16-bit
/// elements without a 32-bit list in between, elements of cells and structs without a
/// message each. Null for bytes out of the ordinary, among them all that the message
/// library refuses: those are left to it. Throws std::bad_alloc.
UniqueHandle handleFromWire(wire::Slice bytes);

}  // namespace orb

#endif  // ORB_ARRAY_RECEIVED_ARRAY_H_
