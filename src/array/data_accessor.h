// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_DATA_ACCESSOR_H_
#define ORB_ARRAY_DATA_ACCESSOR_H_

#include <google/protobuf/repeated_field.h>

#include <string>

#include "array/payload.h"

namespace orb {

/// Finds where a message keeps its elements, and the first of them. Makes the payload
/// present. Types whose proxy keeps its own elements (CHAR, STRUCT, CELL) are left alone.
class DataAccessor {
 public:
  DataAccessor(KALDEX_Array& array, bool isComplex)
      : array_(array), isComplex_(isComplex) {}

  template <QXType T>
  void visit() {
    if constexpr (T == KALDEX_Array::SPARSE) {
      KALDEX_Array::Sparse& sparse = sparseIn(array_);
      if (storesLogicals(sparse)) {
        readReal(*logicalsIn(sparse).mutable_elements());
      } else {
        KALDEX_Array::Double& values = doublesIn(sparse);
        readReal(*values.mutable_elements());
        // Of a sparse array the list alone decides: the flag of one created without
        // elements is real, whatever its values.
        imagPointer = startOf(*values.mutable_imag_elements());
      }
    } else if constexpr (kIsBytes<T>) {
      auto& payload = Payload<T>::in(array_);
      // Asking for a mutable string would mark an absent one present on the wire.
      if (!payload.elements().empty()) {
        std::string& bytes = *payload.mutable_elements();
        realPointer = bytes.data();
        scalar = static_cast<NativeElement<T>>(bytes.front());
      }
      if (isComplex_ && !payload.imag_elements().empty()) {
        imagPointer = payload.mutable_imag_elements()->data();
      }
    } else if constexpr (kIsNumeric<T>) {
      auto& payload = Payload<T>::in(array_);
      readReal(*payload.mutable_elements());
      if (isComplex_) imagPointer = startOf(*payload.mutable_imag_elements());
    } else if constexpr (T == KALDEX_Array::LOGICAL) {
      readReal(*Payload<T>::in(array_).mutable_elements());
    }
  }

  void* realPointer = nullptr;
  void* imagPointer = nullptr;
  double scalar = 0.0;

 private:
  template <class Element>
  static void* startOf(google::protobuf::RepeatedField<Element>& list) {
    return list.empty() ? nullptr : list.mutable_data();
  }

  template <class Element>
  void readReal(google::protobuf::RepeatedField<Element>& list) {
    realPointer = startOf(list);
    if (!list.empty()) scalar = static_cast<double>(list.Get(0));
  }

  KALDEX_Array& array_;
  bool isComplex_;
};

}  // namespace orb

#endif  // ORB_ARRAY_DATA_ACCESSOR_H_
