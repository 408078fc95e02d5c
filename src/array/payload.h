// SPDX-License-Identifier: MIT
// What each array type is: its payload message, its element type, its class name.
#ifndef ORB_ARRAY_PAYLOAD_H_
#define ORB_ARRAY_PAYLOAD_H_

#include <boost/make_shared.hpp>
#include <cstdint>

#include "orb.client.KALDEXArray.pb.h"

namespace orb {

using client::KALDEX_Array;
using QXType = KALDEX_Array::QXType;

/// A message that is to become part of another one. The message library's own functions
/// mark a part present before they make it, and memory may end in between.
template <class Part>
Part* newPart() {
  Part* const part = new Part;
  return part;
}

/// The payload of type T: `of` reads it, the empty default one when absent; `in` makes it
/// present. `Native` is the element as callers see it.
template <QXType T>
struct Payload;

#define ORB_PAYLOAD(TYPE, Message, field, Element)                                      \
  template <>                                                                           \
  struct Payload<KALDEX_Array::TYPE> {                                                  \
    using Native = Element;                                                             \
    static bool isIn(const KALDEX_Array& a) { return a.has_##field(); }                 \
    static const KALDEX_Array::Message& of(const KALDEX_Array& a) { return a.field(); } \
    static KALDEX_Array::Message& in(KALDEX_Array& a) {                                 \
      if (!a.has_##field()) a.set_allocated_##field(newPart<KALDEX_Array::Message>());  \
      return *a.mutable_##field();                                                      \
    }                                                                                   \
  }

ORB_PAYLOAD(UINT8, Uint8, uint8, uint8_t);
ORB_PAYLOAD(INT8, Int8, int8, int8_t);
ORB_PAYLOAD(UINT16, Uint16, uint16, uint16_t);
ORB_PAYLOAD(INT16, Int16, int16, int16_t);
ORB_PAYLOAD(UINT32, Uint32, uint32, uint32_t);
ORB_PAYLOAD(INT32, Int32, int32, int32_t);
ORB_PAYLOAD(UINT64, Uint64, uint64, uint64_t);
ORB_PAYLOAD(INT64, Int64, int64, int64_t);
ORB_PAYLOAD(SINGLE, Single, single, float);
ORB_PAYLOAD(DOUBLE, Double, qxdouble, double);
ORB_PAYLOAD(LOGICAL, Logical, logical, bool);
ORB_PAYLOAD(CHAR, Char, qxchar, char16_t);
ORB_PAYLOAD(STRUCT, Struct, struct_, void);
ORB_PAYLOAD(CELL, Cell, cell, void);

#undef ORB_PAYLOAD

template <QXType T>
using NativeElement = typename Payload<T>::Native;

/// The payload's field number in the array.
template <QXType T>
inline constexpr int kPayloadField =
    T == KALDEX_Array::STRUCT ? int{KALDEX_Array::kStructFieldNumber}
    : T == KALDEX_Array::CELL ? int{KALDEX_Array::kCellFieldNumber}
                              : KALDEX_Array::kUint8FieldNumber + T;
static_assert(kPayloadField<KALDEX_Array::INT16> == KALDEX_Array::kInt16FieldNumber);
static_assert(kPayloadField<KALDEX_Array::CHAR> == KALDEX_Array::kQxcharFieldNumber);

template <QXType T>
inline constexpr bool kIsNumeric = T <= KALDEX_Array::DOUBLE;

/// Types whose payload is a byte string; the other dense types have a list of elements.
template <QXType T>
inline constexpr bool kIsBytes = T == KALDEX_Array::UINT8 || T == KALDEX_Array::INT8;

/// Types whose elements take four or eight bytes each on the wire, as in memory.
template <QXType T>
inline constexpr bool kIsFixedWidth =
    T == KALDEX_Array::UINT32 || T == KALDEX_Array::INT32 || T == KALDEX_Array::SINGLE ||
    T == KALDEX_Array::DOUBLE;

/// Types whose elements are sent as they are in memory. Logical ones are not received so:
/// a server may send other bytes than 0 and 1.
template <QXType T>
inline constexpr bool kIsStoredAsSent =
    kIsBytes<T> || kIsFixedWidth<T> || T == KALDEX_Array::LOGICAL;

/// Types whose proxy keeps 16-bit elements of its own.
template <QXType T>
inline constexpr bool kIsNative16 =
    T == KALDEX_Array::UINT16 || T == KALDEX_Array::INT16 || T == KALDEX_Array::CHAR;

template <QXType T>
inline constexpr bool kIsContainer = T == KALDEX_Array::STRUCT || T == KALDEX_Array::CELL;

/// The class name of a type up to CELL.
constexpr const char* className(QXType type) {
  constexpr const char* kNames[] = {"uint8",   "int8",   "uint16", "int16",  "uint32",
                                    "int32",   "uint64", "int64",  "single", "double",
                                    "logical", "char",   "struct", "cell"};
  return kNames[type];
}

/// The parts of a sparse array, made present.
inline KALDEX_Array::Sparse& sparseIn(KALDEX_Array& a) {
  if (!a.has_sparse()) a.set_allocated_sparse(newPart<KALDEX_Array::Sparse>());
  return *a.mutable_sparse();
}
inline KALDEX_Array::Logical& logicalsIn(KALDEX_Array::Sparse& sparse) {
  if (!sparse.has_logical())
    sparse.set_allocated_logical(newPart<KALDEX_Array::Logical>());
  return *sparse.mutable_logical();
}
inline KALDEX_Array::Double& doublesIn(KALDEX_Array::Sparse& sparse) {
  if (!sparse.has_qxsparsedouble()) {
    sparse.set_allocated_qxsparsedouble(newPart<KALDEX_Array::Double>());
  }
  return *sparse.mutable_qxsparsedouble();
}

/// A copy of a message. The copy constructor of the message library leaves behind what it
/// made when memory ends half-way; a destructor runs for this one.
inline boost::shared_ptr<KALDEX_Array> copyOf(const KALDEX_Array& source) {
  auto copy = boost::make_shared<KALDEX_Array>();
  copy->CopyFrom(source);
  return copy;
}

/// Whether a sparse array stores logical values. Every type a server may send that is not
/// DOUBLE stores them as logicals.
inline bool storesLogicals(const KALDEX_Array::Sparse& sparse) {
  return sparse.type() != KALDEX_Array::Sparse::DOUBLE;
}

/// Makes a fresh message the value that a never-set cell or field reads as: a 0-by-0
/// double.
inline void makeEmptySlot(KALDEX_Array& message) {
  message.set_type(KALDEX_Array::DOUBLE);
  message.add_dimension(0);
  message.add_dimension(0);
}

}  // namespace orb

#endif  // ORB_ARRAY_PAYLOAD_H_
