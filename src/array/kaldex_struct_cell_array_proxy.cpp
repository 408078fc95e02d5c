// SPDX-License-Identifier: MIT
#include "array/kaldex_struct_cell_array_proxy.h"

#include <google/protobuf/repeated_field.h>

#include <boost/make_shared.hpp>
#include <utility>

#include "array/checked_cast.h"

namespace orb {
namespace {

using MessageList = google::protobuf::RepeatedPtrField<KALDEX_Array>;

template <QXType T>
const MessageList& listOf(const KALDEX_Array& message) {
  if constexpr (T == KALDEX_Array::STRUCT) {
    return message.struct_().elements();
  } else {
    return message.cell().elements();
  }
}

template <QXType T>
MessageList& mutableListOf(KALDEX_Array& message) {
  if constexpr (T == KALDEX_Array::STRUCT) {
    return *message.mutable_struct_()->mutable_elements();
  } else {
    return *message.mutable_cell()->mutable_elements();
  }
}

Elements copied(const MessageList& list) {
  Elements elements;
  elements.reserve(static_cast<size_t>(list.size()));
  for (const KALDEX_Array& element : list) {
    elements.push_back(boost::make_shared<KALDEX_Array>(element));
  }
  return elements;
}

Elements takenOver(MessageList& list) {
  Elements elements(static_cast<size_t>(list.size()));
  for (auto entry = elements.rbegin(); entry != elements.rend(); ++entry) {
    entry->reset(list.ReleaseLast());
  }
  return elements;
}

}  // namespace

const SharedMessage& materialised(SharedMessage& entry) {
  if (!entry) {
    SharedMessage slot = boost::make_shared<KALDEX_Array>();
    makeEmptySlot(*slot);
    entry.swap(slot);
  }
  return entry;
}

template <QXType T>
KALDEXStructCellArrayProxy<T>::KALDEXStructCellArrayProxy(SharedMessage message,
                                                          MessageUse use)
    : KALDEXArrayProxy(std::move(message), use),
      elements_(use == MessageUse::kOwn && !listOf<T>(this->message()).empty()
                    ? takenOver(mutableListOf<T>(this->message()))
                    : copied(listOf<T>(this->message()))) {}

template <QXType T>
void KALDEXStructCellArrayProxy<T>::resize(int32_t count) {
  int64_t entries = count;
  if (type() == KALDEX_Array::STRUCT) entries *= message().struct_().field_names_size();
  const size_t size = static_cast<size_t>(checkedInt32(entries));
  const size_t oldSize = static_cast<size_t>(checkedInt32(elements_.size()));
  elements_.resize(size);
  for (size_t i = oldSize; i < size; ++i) materialised(elements_[i]);
}

template <QXType T>
void KALDEXStructCellArrayProxy<T>::flushToMessage() {
  MessageList& list = mutableListOf<T>(message());
  const int32_t size = checkedInt32(elements_.size());
  if (size < list.size()) list.DeleteSubrange(size, list.size() - size);
  list.Reserve(size);
  for (int32_t i = 0; i < size; ++i) {
    const KALDEX_Array& element = *materialised(elements_[static_cast<size_t>(i)]);
    KALDEX_Array& place = i < list.size() ? *list.Mutable(i) : *list.Add();
    place.CopyFrom(element);
  }
}

template <QXType T>
std::unique_ptr<KALDEXArrayProxy> KALDEXStructCellArrayProxy<T>::duplicate() {
  flushToMessage();
  return std::make_unique<KALDEXStructCellArrayProxy>(
      boost::make_shared<KALDEX_Array>(message()), MessageUse::kOwn);
}

template class KALDEXStructCellArrayProxy<KALDEX_Array::STRUCT>;
template class KALDEXStructCellArrayProxy<KALDEX_Array::CELL>;

}  // namespace orb
