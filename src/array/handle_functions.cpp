// SPDX-License-Identifier: MIT
// Exported: destroying, duplicating and freeing; the class of an array.
#include "array/handle.h"

#include <cstdlib>

#include "array/payload.h"

using orb::KALDEX_Array;
using orb::messageOf;
using orb::proxyOf;

namespace {

// Only LOGICAL makes a sparse array logical here, while storage treats every type but
// DOUBLE so: a type that a server invents reads as double without double values.
orb::QXType classTypeOf(const orbArray a) {
  const KALDEX_Array& message = messageOf(a);
  if (message.type() != KALDEX_Array::SPARSE) return message.type();
  return message.sparse().type() == KALDEX_Array::Sparse::LOGICAL ? KALDEX_Array::LOGICAL
                                                                  : KALDEX_Array::DOUBLE;
}

}  // namespace

void orbDestroyArray(orbArray a) { delete a; }

orbArray orbDuplicateArray(const orbArray a) {
  orb::UniqueHandle copy = std::make_unique<orbArrayHandle>();
  copy->proxy = proxyOf(a).duplicate();
  return copy.release();
}

void orbFree(void* p) { std::free(p); }

// The classes are numbered as the types are.
orbClassID orbGetClassID(const orbArray a) {
  return static_cast<orbClassID>(classTypeOf(a));
}

const char* orbGetClassName(const orbArray a) { return orb::className(classTypeOf(a)); }

bool orbIsComplex(const orbArray a) { return proxyOf(a).isComplex(); }

size_t orbGetElementSize(const orbArray a) { return proxyOf(a).getElementSize(); }
