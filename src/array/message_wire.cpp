// SPDX-License-Identifier: MIT
#include "array/message_wire.h"

#include <google/protobuf/repeated_field.h>

#include <optional>

#include "array/array_head.h"
#include "orb/dispatch_on_QXType"

namespace orb {
namespace {

constexpr wire::PackedList kNone = {};

wire::PackedList listOf(const std::string& bytes) {
  return wire::asStored(bytes.data(), bytes.size());
}

template <class Element>
wire::PackedList listOf(const google::protobuf::RepeatedField<Element>& elements) {
  return wire::asStored(elements.data(),
                        static_cast<size_t>(elements.size()) * sizeof(Element));
}

/// Finds the lists of a type whose elements are on the wire what they are in memory, in a
/// message that holds nothing else.
class DenseFormFinder {
 public:
  explicit DenseFormFinder(const KALDEX_Array& message) : message_(message) {}

  template <QXType T>
  void visit() {
    if constexpr (kIsStoredAsSent<T>) {
      const auto& payload = Payload<T>::of(message_);
      DenseForm found{message_, kPayloadField<T>, listOf(payload.elements()), kNone};
      if constexpr (kIsNumeric<T>) found.imag = listOf(payload.imag_elements());
      const size_t size = found.payloadSize();
      const bool isAll = Payload<T>::isIn(message_) && payload.ByteSizeLong() == size &&
                         holdsOnlyHeadAnd(message_, true, kPayloadField<T>, size);
      if (isAll) form.emplace(found);
    }
  }

  std::optional<DenseForm> form;

 private:
  const KALDEX_Array& message_;
};

size_t listFieldSize(int field, const wire::PackedList& list) {
  return list.wireSize == 0 ? 0 : wire::fieldSize(field, list.wireSize);
}

/// The form of a message that has a list to lend.
std::optional<DenseForm> formToLend(const KALDEX_Array& message) {
  // A server may put any number there, in the elements of a cell.
  const bool isKnown = message.type() >= 0 && message.type() <= KALDEX_Array::SPARSE;
  if (!isKnown) return std::nullopt;
  DenseFormFinder finder(message);
  dispatch_on_QXType(message.type(), finder);
  return finder.form;
}

}  // namespace

WireSizes measureLargeMessage(const KALDEX_Array& message, size_t size) {
  if (const std::optional<DenseForm> form = formToLend(message)) return form->measure();
  WireSizes sizes;
  sizes.total = size;
  return sizes;
}

void writeLargeMessage(const KALDEX_Array& message, wire::MessagePieces& pieces) {
  if (const std::optional<DenseForm> form = formToLend(message)) {
    form->write(pieces);
  } else {
    pieces.setEnd(message.SerializeWithCachedSizesToArray(pieces.end()));
  }
}

size_t DenseForm::payloadSize() const {
  return listFieldSize(1, real) + listFieldSize(2, imag);
}

WireSizes DenseForm::measure() const {
  WireSizes sizes;
  sizes.real = real.wireSize;
  sizes.imag = imag.wireSize;
  sizes.payload = payloadSize();
  sizes.total = headSize(message) + wire::fieldSize(payloadField, sizes.payload);
  sizes.lent = real.lentSize() + imag.lentSize();
  return sizes;
}

void DenseForm::write(wire::MessagePieces& pieces) const {
  uint8_t* const end = writeHead(message, pieces.end());
  pieces.setEnd(wire::writeFieldHead(payloadField, payloadSize(), end));
  pieces.appendField(1, real);
  pieces.appendField(2, imag);
}

}  // namespace orb
