// SPDX-License-Identifier: MIT
// Which proxy class views which array type.
#ifndef ORB_ARRAY_PROXY_CLASSES_H_
#define ORB_ARRAY_PROXY_CLASSES_H_

#include "array/kaldex_16bit_integer_array_proxy.h"
#include "array/kaldex_array_proxy.h"
#include "array/kaldex_char_array_proxy.h"
#include "array/kaldex_struct_cell_array_proxy.h"

namespace orb {

template <QXType T>
struct ProxyClass {
  using Type = KALDEXArrayProxy;
};
template <>
struct ProxyClass<KALDEX_Array::UINT16> {
  using Type = KALDEXUint16ArrayProxy;
};
template <>
struct ProxyClass<KALDEX_Array::INT16> {
  using Type = KALDEXInt16ArrayProxy;
};
template <>
struct ProxyClass<KALDEX_Array::CHAR> {
  using Type = KALDEXCharArrayProxy;
};
template <>
struct ProxyClass<KALDEX_Array::STRUCT> {
  using Type = KALDEXStructArrayProxy;
};
template <>
struct ProxyClass<KALDEX_Array::CELL> {
  using Type = KALDEXCellArrayProxy;
};

template <QXType T>
using ProxyOf = typename ProxyClass<T>::Type;

}  // namespace orb

#endif  // ORB_ARRAY_PROXY_CLASSES_H_
