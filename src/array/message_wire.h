// SPDX-License-Identifier: MIT
// The wire form of a message as it is, its large lists lent.
#ifndef ORB_ARRAY_MESSAGE_WIRE_H_
#define ORB_ARRAY_MESSAGE_WIRE_H_

#include "array/message_pieces.h"
#include "array/payload.h"

namespace orb {

/// The sizes in bytes of a wire form and of parts of it.
struct WireSizes {
  size_t total = 0;
  size_t lent = 0;  // of lists that stay where they are
  size_t payload = 0;
  size_t real = 0;
  size_t imag = 0;
};

WireSizes measureMessage(const KALDEX_Array& message);
/// Writes a message that was measured and has not changed since.
void writeMessage(const KALDEX_Array& message, wire::MessagePieces& pieces);

/// An array of dense elements: type, dimensions, and a payload of one or two lists.
struct DenseForm {
  const KALDEX_Array& message;
  int payloadField;
  wire::PackedList real;
  wire::PackedList imag;

  size_t payloadSize() const;
  WireSizes measure() const;
  void write(wire::MessagePieces& pieces) const;
};

}  // namespace orb

#endif  // ORB_ARRAY_MESSAGE_WIRE_H_
