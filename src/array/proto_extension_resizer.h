// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_PROTO_EXTENSION_RESIZER_H_
#define ORB_ARRAY_PROTO_EXTENSION_RESIZER_H_

#include <google/protobuf/repeated_field.h>

#include <cstdint>

#include "array/checked_cast.h"
#include "array/payload.h"

namespace orb {

/// Changes the number of elements in a message's payload; new ones are zero. An imaginary
/// part follows only where it has elements: a real array stays real.
class ProtoExtensionResizer {
 public:
  ProtoExtensionResizer(KALDEX_Array& array, int32_t count)
      : array_(array), count_(count) {}

  template <QXType T>
  void visit() {
    if constexpr (T == KALDEX_Array::SPARSE) {
      resizeColumnStarts();
    } else if constexpr (T == KALDEX_Array::STRUCT) {
      resizeMessages(*Payload<KALDEX_Array::STRUCT>::in(array_).mutable_elements());
    } else if constexpr (T == KALDEX_Array::CELL) {
      resizeMessages(*Payload<KALDEX_Array::CELL>::in(array_).mutable_elements());
    } else {
      auto& payload = Payload<T>::in(array_);
      resize(*payload.mutable_elements());
      if constexpr (kIsNumeric<T>) {
        if (!payload.imag_elements().empty()) resize(*payload.mutable_imag_elements());
      }
    }
  }

 private:
  void resize(std::string& bytes) { bytes.resize(static_cast<size_t>(count_)); }

  template <class Element>
  void resize(google::protobuf::RepeatedField<Element>& list) {
    list.Resize(count_, Element{});
  }

  void resizeMessages(google::protobuf::RepeatedPtrField<KALDEX_Array>& list) {
    if (count_ < list.size()) list.DeleteSubrange(count_, list.size() - count_);
    list.Reserve(count_);
    while (list.size() < count_) makeEmptySlot(*list.Add());
  }

  // The stored values of a sparse array do not depend on its shape, only its columns do.
  void resizeColumnStarts() {
    const uint64_t columns = array_.dimension_size() > 1 ? array_.dimension(1) : 0;
    const int32_t starts = checkedInt32(int64_t{checkedInt32(columns)} + 1);
    sparseIn(array_).mutable_jc()->Resize(starts, 0);
  }

  KALDEX_Array& array_;
  int32_t count_;
};

}  // namespace orb

#endif  // ORB_ARRAY_PROTO_EXTENSION_RESIZER_H_
