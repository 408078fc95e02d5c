// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_KALDEX_16BIT_INTEGER_ARRAY_PROXY_H_
#define ORB_ARRAY_KALDEX_16BIT_INTEGER_ARRAY_PROXY_H_

#include <type_traits>

#include "array/native_array_proxy.h"

namespace orb {

/// A 16-bit integer array.
template <class Native, QXType T>
class KALDEX16BitIntegerArrayProxy : public NativeArrayProxy<T> {
  static_assert(std::is_same_v<Native, NativeElement<T>>);

 public:
  using NativeArrayProxy<T>::NativeArrayProxy;
};

using KALDEXUint16ArrayProxy =
    KALDEX16BitIntegerArrayProxy<uint16_t, KALDEX_Array::UINT16>;
using KALDEXInt16ArrayProxy = KALDEX16BitIntegerArrayProxy<int16_t, KALDEX_Array::INT16>;

}  // namespace orb

#endif  // ORB_ARRAY_KALDEX_16BIT_INTEGER_ARRAY_PROXY_H_
