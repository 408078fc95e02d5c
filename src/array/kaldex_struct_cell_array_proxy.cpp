// SPDX-License-Identifier: MIT
#include "array/kaldex_struct_cell_array_proxy.h"

#include <google/protobuf/repeated_field.h>

#include <algorithm>
#include <boost/make_shared.hpp>
#include <utility>

#include "array/array_head.h"
#include "array/checked_cast.h"

namespace orb {
namespace {

using MessageList = google::protobuf::RepeatedPtrField<KALDEX_Array>;

// An empty slot as it is sent: type DOUBLE, dimensions 0 and 0.
constexpr uint8_t kEmptySlot[] = {0x08, KALDEX_Array::DOUBLE, 0x12, 2, 0, 0};

template <QXType T>
constexpr int kElementsField = T == KALDEX_Array::STRUCT ? 2 : 1;

Elements copied(const MessageList& list) {
  Elements elements(static_cast<size_t>(list.size()));
  std::transform(list.begin(), list.end(), elements.begin(), &copyOf);
  return elements;
}

Elements takenOver(MessageList& list) {
  Elements elements(static_cast<size_t>(list.size()));
  for (auto entry = elements.rbegin(); entry != elements.rend(); ++entry) {
    entry->reset(list.ReleaseLast());
  }
  return elements;
}

size_t namesSize(const KALDEX_Array::Struct& payload) {
  size_t size = 0;
  for (const std::string& name : payload.field_names()) {
    size += wire::fieldSize(KALDEX_Array::Struct::kFieldNamesFieldNumber, name.size());
  }
  return size;
}

size_t namesSize(const KALDEX_Array::Cell&) { return 0; }

template <QXType T>
Elements elementsOf(KALDEX_Array& message, MessageUse use) {
  const MessageList& list = Payload<T>::of(message).elements();
  if (use == MessageUse::kShare || list.empty()) return copied(list);
  return takenOver(*Payload<T>::in(message).mutable_elements());
}

}  // namespace

template <QXType T>
KALDEXStructCellArrayProxy<T>::KALDEXStructCellArrayProxy(SharedMessage message,
                                                          MessageUse use)
    : KALDEXArrayProxy(std::move(message)),
      elements_(elementsOf<T>(this->message(), use)) {}

template <QXType T>
KALDEXStructCellArrayProxy<T>::KALDEXStructCellArrayProxy(SharedMessage message,
                                                          Elements elements,
                                                          PendingElements pending)
    : KALDEXArrayProxy(std::move(message)),
      elements_(std::move(elements)),
      pending_(std::move(pending)) {}

template <QXType T>
bool KALDEXStructCellArrayProxy<T>::ownsMessageAlone() {
  if (sharedMessage().use_count() > 1) return false;
  if (!Payload<T>::of(message()).elements().empty()) {
    MessageList().Swap(Payload<T>::in(message()).mutable_elements());
  }
  return true;
}

template <QXType T>
const SharedMessage& KALDEXStructCellArrayProxy<T>::element(size_t i) {
  if (!elements_[i]) {
    SharedMessage built = boost::make_shared<KALDEX_Array>();
    if (pending_.empty()) {
      makeEmptySlot(*built);
    } else {
      pending_.parse(i, *built);
    }
    elements_[i].swap(built);
  }
  return elements_[i];
}

template <QXType T>
Elements& KALDEXStructCellArrayProxy<T>::elements() {
  if (!pending_.empty()) {
    for (size_t i = 0; i < elements_.size(); ++i) element(i);
    pending_.clear();
  }
  return elements_;
}

template <QXType T>
void KALDEXStructCellArrayProxy<T>::resize(int32_t count) {
  int64_t entries = count;
  if (type() == KALDEX_Array::STRUCT) entries *= message().struct_().field_names_size();
  const size_t size = static_cast<size_t>(checkedInt32(entries));
  const size_t oldSize = static_cast<size_t>(checkedInt32(elements_.size()));
  elements().resize(size);
  for (size_t i = oldSize; i < size; ++i) element(i);
}

template <QXType T>
void KALDEXStructCellArrayProxy<T>::flushToMessage() {
  MessageList& list = *Payload<T>::in(message()).mutable_elements();
  const int32_t size = checkedInt32(elements_.size());
  if (size < list.size()) list.DeleteSubrange(size, list.size() - size);
  list.Reserve(size);
  for (int32_t i = 0; i < size; ++i) {
    const KALDEX_Array& source = *element(static_cast<size_t>(i));
    KALDEX_Array copy;
    copy.CopyFrom(source);
    KALDEX_Array& place = i < list.size() ? *list.Mutable(i) : *list.Add();
    place.Swap(&copy);
  }
}

template <QXType T>
std::unique_ptr<KALDEXArrayProxy> KALDEXStructCellArrayProxy<T>::duplicate() {
  checkedInt32(elements_.size());
  const bool isAlone = ownsMessageAlone();
  if (!isAlone) flushToMessage();
  auto copy = copyOf(message());
  if (!isAlone) {
    return std::make_unique<KALDEXStructCellArrayProxy>(std::move(copy),
                                                        MessageUse::kOwn);
  }
  Elements elements(elements_.size());
  for (size_t i = 0; i < elements_.size(); ++i) {
    if (elements_[i]) elements[i] = copyOf(*elements_[i]);
  }
  return std::make_unique<KALDEXStructCellArrayProxy>(std::move(copy),
                                                      std::move(elements), pending_);
}

template <QXType T>
Sending KALDEXStructCellArrayProxy<T>::sending() {
  checkedInt32(elements_.size());
  if (!ownsMessageAlone()) return Sending::kWrittenBack;
  const bool hasPayload = Payload<T>::isIn(message());
  // Whether there are unknown fields is told by the size: asking the message library for
  // them would make it build its descriptors, which ends badly where memory ends.
  const auto& payload = Payload<T>::of(message());
  const size_t size = payload.ByteSizeLong();
  const bool isDirect = size == namesSize(payload) &&
                        holdsOnlyHeadAnd(message(), hasPayload, kPayloadField<T>, size);
  return isDirect ? Sending::kDirectIfAlone : Sending::kWrittenBack;
}

template <QXType T>
WireSizes KALDEXStructCellArrayProxy<T>::measureWire() const {
  WireSizes sizes;
  sizes.payload = Payload<T>::of(message()).ByteSizeLong();
  for (size_t i = 0; i < elements_.size(); ++i) {
    WireSizes element;
    if (elements_[i]) {
      element = measureMessage(*elements_[i]);
    } else {
      const wire::PackedList bytes = bytesWithoutMessage(i);
      element.total = bytes.wireSize;
      element.lent = bytes.lentSize();
    }
    sizes.payload += wire::fieldSize(kElementsField<T>, element.total);
    sizes.lent += element.lent;
  }
  sizes.total = headSize(message()) + wire::fieldSize(kPayloadField<T>, sizes.payload);
  return sizes;
}

template <QXType T>
void KALDEXStructCellArrayProxy<T>::writeWire(const WireSizes& sizes,
                                              wire::MessagePieces& pieces) const {
  const auto startElement = [&pieces](size_t size) {
    pieces.setEnd(wire::writeFieldHead(kElementsField<T>, size, pieces.end()));
  };
  pieces.setEnd(writeHead(message(), pieces.end()));
  pieces.setEnd(wire::writeFieldHead(kPayloadField<T>, sizes.payload, pieces.end()));
  pieces.setEnd(Payload<T>::of(message()).SerializeWithCachedSizesToArray(pieces.end()));
  for (size_t i = 0; i < elements_.size(); ++i) {
    if (elements_[i]) {
      startElement(static_cast<size_t>(elements_[i]->GetCachedSize()));
      writeMessage(*elements_[i], pieces);
    } else {
      const wire::PackedList bytes = bytesWithoutMessage(i);
      startElement(bytes.wireSize);
      pieces.append(bytes);
    }
  }
}

template <QXType T>
wire::PackedList KALDEXStructCellArrayProxy<T>::bytesWithoutMessage(size_t i) const {
  if (pending_.empty()) return wire::asStored(kEmptySlot, sizeof kEmptySlot);
  const wire::Slice bytes = pending_.bytes(i);
  return wire::asStored(bytes.data, bytes.size);
}

template class KALDEXStructCellArrayProxy<KALDEX_Array::STRUCT>;
template class KALDEXStructCellArrayProxy<KALDEX_Array::CELL>;

}  // namespace orb
