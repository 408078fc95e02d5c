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

WireSizes measureLargeMessage(const KALDEX_Array& message, size_t size);
void writeLargeMessage(const KALDEX_Array& message, wire::MessagePieces& pieces);

// Inline, because cells have many small elements.
inline WireSizes measureMessage(const KALDEX_Array& message) {
  const size_t size = message.ByteSizeLong();
  if (wire::isLarge(size)) return measureLargeMessage(message, size);
  WireSizes sizes;
  sizes.total = size;
  return sizes;
}

/// Writes a message that was measured and has not changed since.
inline void writeMessage(const KALDEX_Array& message, wire::MessagePieces& pieces) {
  const auto size = static_cast<size_t>(message.GetCachedSize());
  if (wire::isLarge(size)) return writeLargeMessage(message, pieces);
  pieces.setEnd(message.SerializeWithCachedSizesToArray(pieces.end()));
}

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
