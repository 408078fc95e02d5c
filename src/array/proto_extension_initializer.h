// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_PROTO_EXTENSION_INITIALIZER_H_
#define ORB_ARRAY_PROTO_EXTENSION_INITIALIZER_H_

#include <google/protobuf/repeated_field.h>

#include <cstddef>

#include "array/checked_cast.h"
#include "array/payload.h"

namespace orb {

/// Fills the payload of a fresh message with `count` zeros. Struct, cell and sparse
/// payloads are their creators' work.
class ProtoExtensionInitializer {
 public:
  ProtoExtensionInitializer(KALDEX_Array& array, size_t count, bool isComplex)
      : array_(array), count_(count), isComplex_(isComplex) {}

  template <QXType T>
  void visit() {
    if constexpr (kIsBytes<T>) {
      auto& payload = Payload<T>::in(array_);
      payload.mutable_elements()->resize(count_);
      if (isComplex_) payload.mutable_imag_elements()->resize(count_);
    } else if constexpr (T <= KALDEX_Array::CHAR) {
      auto& payload = Payload<T>::in(array_);
      appendZeros(*payload.mutable_elements());
      if constexpr (kIsNumeric<T>) {
        if (isComplex_) appendZeros(*payload.mutable_imag_elements());
      }
    }
  }

 private:
  template <class Element>
  void appendZeros(google::protobuf::RepeatedField<Element>& list) {
    list.Resize(checkedInt32(int64_t{checkedInt32(count_)} + list.size()), Element{});
  }

  KALDEX_Array& array_;
  size_t count_;
  bool isComplex_;
};

}  // namespace orb

#endif  // ORB_ARRAY_PROTO_EXTENSION_INITIALIZER_H_
