// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_ARRAY_ATTRIBUTES_RETRIEVER_H_
#define ORB_ARRAY_ARRAY_ATTRIBUTES_RETRIEVER_H_

#include <cstddef>

#include "array/payload.h"

namespace orb {

/// Reads what the type and payload of a message say about the array.
class OrbArrayAttributesRetriever {
 public:
  explicit OrbArrayAttributesRetriever(const KALDEX_Array& array) : array_(array) {}

  template <QXType T>
  void visit() {
    if constexpr (T == KALDEX_Array::SPARSE) {
      const KALDEX_Array::Sparse& sparse = array_.sparse();
      if (storesLogicals(sparse)) {
        set(KALDEX_Array::LOGICAL, sizeof(bool), false);
      } else {
        set(KALDEX_Array::DOUBLE, sizeof(double),
            !sparse.qxsparsedouble().imag_elements().empty());
      }
    } else if constexpr (T == KALDEX_Array::STRUCT || T == KALDEX_Array::CELL) {
      set(T, sizeof(void*), false);
    } else if constexpr (T == KALDEX_Array::CHAR) {
      set(T, kWireUnitSize, false);
    } else if constexpr (T == KALDEX_Array::LOGICAL) {
      set(T, sizeof(bool), false);
    } else {
      constexpr bool kIs16Bit = sizeof(NativeElement<T>) == 2;
      set(T, kIs16Bit ? kWireUnitSize : sizeof(NativeElement<T>),
          !Payload<T>::of(array_).imag_elements().empty());
    }
  }

  const char* className = "";
  QXType effectiveType = KALDEX_Array::UINT8;  // for SPARSE, the type of its values
  size_t elementSize = 0;  // as stored: 16-bit types travel in 32 bits
  bool isComplex = false;
  bool isNumeric = false;

 private:
  static constexpr size_t kWireUnitSize = 4;

  void set(QXType type, size_t size, bool complex) {
    effectiveType = type;
    className = orb::className(type);
    elementSize = size;
    isComplex = complex;
    isNumeric = type <= KALDEX_Array::DOUBLE;
  }

  const KALDEX_Array& array_;
};

}  // namespace orb

#endif  // ORB_ARRAY_ARRAY_ATTRIBUTES_RETRIEVER_H_
