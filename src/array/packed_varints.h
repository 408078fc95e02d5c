// SPDX-License-Identifier: MIT
// 16-bit elements and their packed wire form, a varint each, without a 32-bit list in
// between.
#ifndef ORB_ARRAY_PACKED_VARINTS_H_
#define ORB_ARRAY_PACKED_VARINTS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "array/wire_format.h"

namespace orb::wire {

/// The number of bytes that writePacked() needs for the elements.
template <class Native>
size_t packedSize(const Native* elements, size_t count);

/// Writes each element as a varint and gives the end: unsigned ones zero-extended, signed
/// ones sign-extended to ten bytes where negative.
template <class Native>
uint8_t* writePacked(const Native* elements, size_t count, uint8_t* target);

/// Reads varints, of each the low 16 bits. False, with `elements` in any state, for bytes
/// that the message library would refuse.
template <class Native>
bool readPacked(Slice bytes, std::vector<Native>& elements);

}  // namespace orb::wire

#endif  // ORB_ARRAY_PACKED_VARINTS_H_
