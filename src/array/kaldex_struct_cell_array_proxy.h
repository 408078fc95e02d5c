// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_KALDEX_STRUCT_CELL_ARRAY_PROXY_H_
#define ORB_ARRAY_KALDEX_STRUCT_CELL_ARRAY_PROXY_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "array/kaldex_array_proxy.h"
#include "array/pending_elements.h"

namespace orb {

/// The elements of a cell array in their linear order, or the field values of a struct
/// array, all of element 0 first. A null entry was never set and reads as an empty slot.
using Elements = std::vector<SharedMessage>;

/// A struct or cell array. Its elements are messages of their own, shared with the
/// handles of those elements; the copies inside this array's message are made by
/// flushToMessage(). Received elements stay bytes until somebody asks for them: their
/// entries are null so long.
template <QXType T>
class KALDEXStructCellArrayProxy : public KALDEXArrayProxy {
 public:
  /// The elements are copied out of the message, or moved out of one of our own.
  explicit KALDEXStructCellArrayProxy(SharedMessage message,
                                      MessageUse use = MessageUse::kShare);
  /// Over a message that nobody else saw, without a list; these are its elements. A null
  /// entry is what is pending in its place.
  KALDEXStructCellArrayProxy(SharedMessage message, Elements elements,
                             PendingElements pending);

  /// `count` is the number of array elements; of a struct, each has a value per field.
  void resize(int32_t count) override;
  size_t getElementSize() const override { return sizeof(void*); }
  void* getData() override { return elements_.empty() ? nullptr : elements_.data(); }
  double getScalar() override { return 0.0; }
  void flushToMessage() override;
  std::unique_ptr<KALDEXArrayProxy> duplicate() override;
  Sending sending() override;
  WireSizes measureWire() const override;
  void writeWire(const WireSizes& sizes, wire::MessagePieces& pieces) const override;

  size_t size() const { return elements_.size(); }
  /// The message of the entry at i, never null.
  const SharedMessage& element(size_t i);
  void setElement(size_t i, SharedMessage message) { elements_[i].swap(message); }
  /// All entries, for changing their number and order.
  Elements& elements();

 private:
  /// Whether nobody else sees the message; its own list, a remainder of times when others
  /// did, is then dropped.
  bool ownsMessageAlone();
  /// The wire form of an entry that is null.
  wire::PackedList bytesWithoutMessage(size_t i) const;

  Elements elements_;
  PendingElements pending_;  // as many as there are entries, or none
};

extern template class KALDEXStructCellArrayProxy<KALDEX_Array::STRUCT>;
extern template class KALDEXStructCellArrayProxy<KALDEX_Array::CELL>;

using KALDEXStructArrayProxy = KALDEXStructCellArrayProxy<KALDEX_Array::STRUCT>;
using KALDEXCellArrayProxy = KALDEXStructCellArrayProxy<KALDEX_Array::CELL>;

}  // namespace orb

#endif  // ORB_ARRAY_KALDEX_STRUCT_CELL_ARRAY_PROXY_H_
