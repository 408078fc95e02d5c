// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_CANONICAL_FORM_H_
#define ORB_ARRAY_CANONICAL_FORM_H_

#include "array/wire_format.h"

namespace orb::wire {

/// Whether the bytes are an array exactly as the message library writes one: fields in
/// order, each at most once, varints in shortest form, dense payloads, cells and structs
/// of such arrays not too deep. Such bytes parse without error, and the message parsed
/// from them serialises to the same bytes. A false says nothing: the array may still be
/// valid.
bool isCanonicalArray(Slice bytes);

/// Reads the fields of an array whose numbers are below `payloadField`, and stops in
/// front of the others. False for what is not canonical.
bool readCanonicalFieldsBelow(int payloadField, Reader& reader);

}  // namespace orb::wire

#endif  // ORB_ARRAY_CANONICAL_FORM_H_
