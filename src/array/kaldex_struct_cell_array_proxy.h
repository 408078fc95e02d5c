// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_KALDEX_STRUCT_CELL_ARRAY_PROXY_H_
#define ORB_ARRAY_KALDEX_STRUCT_CELL_ARRAY_PROXY_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "array/kaldex_array_proxy.h"

namespace orb {

/// The elements of a cell array in their linear order, or the field values of a struct
/// array, all of element 0 first. A null entry was never set and reads as an empty slot.
using Elements = std::vector<SharedMessage>;

/// A struct or cell array. Its elements are messages of their own, shared with the
/// handles of those elements; the copies inside this array's message are made by
/// flushToMessage().
template <QXType T>
class KALDEXStructCellArrayProxy : public KALDEXArrayProxy {
 public:
  /// The elements are copied out of the message, or moved out of one of our own.
  explicit KALDEXStructCellArrayProxy(SharedMessage message,
                                      MessageUse use = MessageUse::kShare);

  /// `count` is the number of array elements; of a struct, each has a value per field.
  void resize(int32_t count) override;
  size_t getElementSize() const override { return sizeof(void*); }
  void* getData() override { return elements_.empty() ? nullptr : elements_.data(); }
  double getScalar() override { return 0.0; }
  void flushToMessage() override;
  std::unique_ptr<KALDEXArrayProxy> duplicate() override;

  Elements& elements() { return elements_; }

 private:
  Elements elements_;
};

extern template class KALDEXStructCellArrayProxy<KALDEX_Array::STRUCT>;
extern template class KALDEXStructCellArrayProxy<KALDEX_Array::CELL>;

using KALDEXStructArrayProxy = KALDEXStructCellArrayProxy<KALDEX_Array::STRUCT>;
using KALDEXCellArrayProxy = KALDEXStructCellArrayProxy<KALDEX_Array::CELL>;

/// The message behind an entry; a null entry is given an empty slot first.
const SharedMessage& materialised(SharedMessage& entry);

}  // namespace orb

#endif  // ORB_ARRAY_KALDEX_STRUCT_CELL_ARRAY_PROXY_H_
