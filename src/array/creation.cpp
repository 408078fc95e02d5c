// SPDX-License-Identifier: MIT
// Exported: creating arrays.
#include <algorithm>
#include <boost/make_shared.hpp>
#include <cstring>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

#include "array/checked_cast.h"
#include "array/handle.h"
#include "array/proto_extension_initializer.h"
#include "array/proxy_classes.h"
#include "orb/dispatch_on_QXType"

using orb::KALDEX_Array;
using orb::QXType;
using orb::UniqueHandle;

namespace {

using Extents = std::vector<uint64_t>;

Extents normalised(size_t ndim, const size_t* dims) {
  if (ndim == 0) return {0, 0};
  if (ndim == 1) return {dims[0], 1};
  return Extents(dims, dims + orb::checkedInt32(ndim));
}

uint64_t product(const Extents& extents) {
  return std::accumulate(extents.begin(), extents.end(), uint64_t{1},
                         std::multiplies<uint64_t>());
}

/// Makes the proxy of a new array: type, extents and `count` elements. For a struct,
/// `count` is the number of field values.
class OrbArrayInitializer {
 public:
  OrbArrayInitializer(Extents extents, uint64_t count, bool isComplex)
      : extents_(std::move(extents)),
        count_(count),
        isComplex_(isComplex && count != 0) {}

  template <QXType T>
  void visit() {
    orb::SharedMessage message = boost::make_shared<KALDEX_Array>();
    message->set_type(T);
    message->mutable_dimension()->Add(extents_.begin(), extents_.end());
    handle_ = std::make_unique<orbArrayHandle>();
    handle_->proxy = newProxy<T>(std::move(message));
    handle_->proxy->setComplex(isComplex_);
  }

  UniqueHandle takeHandle() { return std::move(handle_); }

 private:
  template <QXType T>
  std::unique_ptr<orb::ProxyOf<T>> newProxy(orb::SharedMessage message) const {
    if constexpr (orb::kIsNative16<T>) {
      orb::checkedInt32(count_);
      using Elements = std::vector<orb::NativeElement<T>>;
      return std::make_unique<orb::ProxyOf<T>>(std::move(message), Elements(count_),
                                               Elements(isComplex_ ? count_ : 0));
    } else {
      orb::ProtoExtensionInitializer initializer(*message, count_, isComplex_);
      if (count_ != 0) orb::dispatch_on_QXType(T, initializer);
      auto proxy = std::make_unique<orb::ProxyOf<T>>(std::move(message));
      if constexpr (orb::kIsContainer<T>) proxy->elements().resize(count_);
      return proxy;
    }
  }

  Extents extents_;
  uint64_t count_;
  bool isComplex_;
  UniqueHandle handle_;
};

/// The same for a matrix, whose two extents must each fit 32 bits; those of an
/// N-dimensional array need not.
class OrbMatrixInitializer : public OrbArrayInitializer {
 public:
  OrbMatrixInitializer(size_t m, size_t n, uint64_t count, bool isComplex)
      : OrbArrayInitializer({checkedExtent(m), checkedExtent(n)}, count, isComplex) {}

 private:
  static uint64_t checkedExtent(size_t extent) {
    orb::checkedInt32(extent);
    return extent;
  }
};

template <class Initializer>
UniqueHandle make(QXType type, Initializer initializer) {
  orb::dispatch_on_QXType(type, initializer);
  return initializer.takeHandle();
}

UniqueHandle makeArray(QXType type, size_t ndim, const size_t* dims, bool isComplex) {
  Extents extents = normalised(ndim, dims);
  const uint64_t count = product(extents);
  return make(type, OrbArrayInitializer(std::move(extents), count, isComplex));
}

UniqueHandle makeMatrix(QXType type, size_t m, size_t n, bool isComplex) {
  return make(type, OrbMatrixInitializer(m, n, m * n, isComplex));
}

bool isNumericClass(orbClassID classid) {
  return classid >= orbUINT8_CLASS && classid <= orbDOUBLE_CLASS;
}

// The classes are numbered as the types are.
QXType typeOf(orbClassID classid) { return static_cast<QXType>(classid); }

bool isComplex(orbComplexity flag) { return flag == orbCOMPLEX; }

char16_t* charsOf(const UniqueHandle& handle) {
  return static_cast<char16_t*>(handle->proxy->getData());
}

// Sign extension: bytes from 0x80 become 0xFF80 and up. No UTF-8 is decoded on the way
// in; orbGetString() gives the same bytes back.
char16_t codeUnit(char byte) {
  return static_cast<char16_t>(static_cast<signed char>(byte));
}

size_t fieldCount(int nfields) { return static_cast<size_t>(std::max(nfields, 0)); }

orbArray withFieldNames(UniqueHandle handle, int nfields, const char** names) {
  KALDEX_Array::Struct& payload = *handle->proxy->message().mutable_struct_();
  payload.mutable_field_names()->Reserve(nfields);
  for (int i = 0; i < nfields; ++i) payload.add_field_names(names[i]);
  return handle.release();
}

/// A sparse array without its values.
UniqueHandle makeSparse(size_t m, size_t n, size_t nzmax,
                        KALDEX_Array::Sparse::SparseType type, bool isComplex) {
  UniqueHandle handle = makeMatrix(KALDEX_Array::SPARSE, m, n, isComplex);
  const int32_t capacity = orb::checkedInt32(nzmax);
  const int32_t starts = orb::checkedInt32(n + 1);
  KALDEX_Array::Sparse& sparse = *handle->proxy->message().mutable_sparse();
  sparse.set_type(type);
  sparse.mutable_ir()->Resize(capacity, 0);
  sparse.mutable_jc()->Resize(starts, 0);
  return handle;
}

}  // namespace

orbArray orbCreateNumericArray(size_t ndim, const size_t* dims, orbClassID classid,
                               orbComplexity flag) {
  if (!isNumericClass(classid)) return nullptr;
  return makeArray(typeOf(classid), ndim, dims, isComplex(flag)).release();
}

orbArray orbCreateNumericMatrix(size_t m, size_t n, orbClassID classid,
                                orbComplexity flag) {
  if (!isNumericClass(classid)) return nullptr;
  return makeMatrix(typeOf(classid), m, n, isComplex(flag)).release();
}

orbArray orbCreateDoubleMatrix(size_t m, size_t n, orbComplexity flag) {
  return makeMatrix(KALDEX_Array::DOUBLE, m, n, isComplex(flag)).release();
}

orbArray orbCreateDoubleScalar(double value) {
  UniqueHandle handle = makeMatrix(KALDEX_Array::DOUBLE, 1, 1, false);
  *static_cast<double*>(handle->proxy->getData()) = value;
  return handle.release();
}

orbArray orbCreateLogicalArray(size_t ndim, const size_t* dims) {
  return makeArray(KALDEX_Array::LOGICAL, ndim, dims, false).release();
}

orbArray orbCreateLogicalMatrix(size_t m, size_t n) {
  return makeMatrix(KALDEX_Array::LOGICAL, m, n, false).release();
}

orbArray orbCreateLogicalScalar(bool value) {
  UniqueHandle handle = makeMatrix(KALDEX_Array::LOGICAL, 1, 1, false);
  handle->proxy->message().mutable_logical()->set_elements(0, value);
  return handle.release();
}

orbArray orbCreateCharArray(size_t ndim, const size_t* dims) {
  return makeArray(KALDEX_Array::CHAR, ndim, dims, false).release();
}

orbArray orbCreateString(const char* str) {
  const size_t length = std::strlen(str);
  UniqueHandle handle =
      makeMatrix(KALDEX_Array::CHAR, length == 0 ? 0 : 1, length, false);
  std::transform(str, str + length, charsOf(handle), codeUnit);
  return handle.release();
}

orbArray orbCreateCharMatrixFromStrings(size_t m, const char** str) {
  size_t width = 0;
  for (size_t i = 0; i < m; ++i) width = std::max(width, std::strlen(str[i]));
  UniqueHandle handle = makeMatrix(KALDEX_Array::CHAR, m, width, false);
  char16_t* chars = charsOf(handle);
  for (size_t i = 0; i < m; ++i) {
    for (size_t j = 0; str[i][j] != '\0'; ++j) chars[i + j * m] = codeUnit(str[i][j]);
  }
  return handle.release();
}

orbArray orbCreateCellArray(size_t ndim, const size_t* dims) {
  return makeArray(KALDEX_Array::CELL, ndim, dims, false).release();
}

orbArray orbCreateCellMatrix(size_t m, size_t n) {
  return makeMatrix(KALDEX_Array::CELL, m, n, false).release();
}

orbArray orbCreateStructArray(size_t ndim, const size_t* dims, int nfields,
                              const char** fieldnames) {
  Extents extents = normalised(ndim, dims);
  const uint64_t values = product(extents) * fieldCount(nfields);
  return withFieldNames(
      make(KALDEX_Array::STRUCT, OrbArrayInitializer(std::move(extents), values, false)),
      nfields, fieldnames);
}

orbArray orbCreateStructMatrix(size_t m, size_t n, int nfields, const char** fieldnames) {
  const uint64_t values = m * n * fieldCount(nfields);
  return withFieldNames(
      make(KALDEX_Array::STRUCT, OrbMatrixInitializer(m, n, values, false)), nfields,
      fieldnames);
}

orbArray orbCreateSparse(size_t m, size_t n, size_t nzmax, orbComplexity flag) {
  UniqueHandle handle =
      makeSparse(m, n, nzmax, KALDEX_Array::Sparse::DOUBLE, isComplex(flag));
  const int32_t capacity = orb::checkedInt32(nzmax);
  KALDEX_Array::Double& values =
      *handle->proxy->message().mutable_sparse()->mutable_qxsparsedouble();
  values.mutable_elements()->Resize(capacity, 0.0);
  if (isComplex(flag)) values.mutable_imag_elements()->Resize(capacity, 0.0);
  return handle.release();
}

orbArray orbCreateSparseLogicalMatrix(size_t m, size_t n, size_t nzmax) {
  UniqueHandle handle = makeSparse(m, n, nzmax, KALDEX_Array::Sparse::LOGICAL, false);
  handle->proxy->message()
      .mutable_sparse()
      ->mutable_logical()
      ->mutable_elements()
      ->Resize(orb::checkedInt32(nzmax), false);
  return handle.release();
}
