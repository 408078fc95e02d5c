// SPDX-License-Identifier: MIT
#include "array/native_array_proxy.h"

#include <google/protobuf/repeated_field.h>

#include <algorithm>
#include <boost/make_shared.hpp>
#include <utility>

#include "array/array_head.h"
#include "array/checked_cast.h"
#include "array/proxy_classes.h"

namespace orb {
namespace {

/// The low 16 bits of each element.
template <class Native, class Wire>
std::vector<Native> narrowed(const google::protobuf::RepeatedField<Wire>& list) {
  std::vector<Native> elements(static_cast<size_t>(list.size()));
  std::transform(list.begin(), list.end(), elements.begin(),
                 [](Wire unit) { return static_cast<Native>(unit); });
  return elements;
}

template <QXType T>
std::vector<NativeElement<T>> realOf(const KALDEX_Array& message) {
  return narrowed<NativeElement<T>>(Payload<T>::of(message).elements());
}

template <QXType T>
std::vector<NativeElement<T>> imagOf(const KALDEX_Array& message) {
  if constexpr (kIsNumeric<T>) {
    return narrowed<NativeElement<T>>(Payload<T>::of(message).imag_elements());
  } else {
    return {};
  }
}

/// Overwrites the list in place. Its length is its own: another handle of the array may
/// have resized it since the elements were read, so what either has more than the other
/// stays.
template <class Native, class Wire>
void widen(const std::vector<Native>& elements,
           google::protobuf::RepeatedField<Wire>& list) {
  const size_t common = std::min(elements.size(), static_cast<size_t>(list.size()));
  std::copy_n(elements.begin(), common, list.begin());
}

}  // namespace

template <QXType T>
NativeArrayProxy<T>::NativeArrayProxy(SharedMessage message)
    : KALDEXArrayProxy(std::move(message)),
      real_(realOf<T>(this->message())),
      imag_(imagOf<T>(this->message())),
      listsDeferred_(false) {}

template <QXType T>
NativeArrayProxy<T>::NativeArrayProxy(SharedMessage message, std::vector<Native> real,
                                      std::vector<Native> imag)
    : KALDEXArrayProxy(std::move(message)),
      real_(std::move(real)),
      imag_(std::move(imag)),
      listsDeferred_(true),
      realOnWire_(real_.size()),
      imagOnWire_(imag_.size()) {
  setComplex(!imag_.empty());
}

template <QXType T>
void NativeArrayProxy<T>::resize(int32_t count) {
  const size_t size = static_cast<size_t>(count);
  if (!listsDeferred_) KALDEXArrayProxy::resize(count);
  real_.resize(size);
  if (isComplex()) imag_.resize(size);
  // As in the message: an imaginary list that was emptied does not come back.
  realOnWire_ = size;
  if (imagOnWire_ != 0) imagOnWire_ = size;
}

template <QXType T>
void NativeArrayProxy<T>::flushToMessage() {
  auto& payload = Payload<T>::in(message());
  if (listsDeferred_) payload.mutable_elements()->Resize(checkedInt32(realOnWire_), 0);
  if constexpr (kIsNumeric<T>) {
    if (listsDeferred_)
      payload.mutable_imag_elements()->Resize(checkedInt32(imagOnWire_), 0);
    widen(imag_, *payload.mutable_imag_elements());
  }
  listsDeferred_ = false;
  widen(real_, *payload.mutable_elements());
}

template <QXType T>
std::unique_ptr<KALDEXArrayProxy> NativeArrayProxy<T>::duplicate() {
  if (!listsDeferred_) flushToMessage();
  auto copy = copyOf(message());
  if (!listsDeferred_) return std::make_unique<ProxyOf<T>>(std::move(copy));
  const auto onWire = [](const std::vector<Native>& elements, size_t count) {
    return std::vector<Native>(elements.data(), elements.data() + count);
  };
  return std::make_unique<ProxyOf<T>>(std::move(copy), onWire(real_, realOnWire_),
                                      onWire(imag_, imagOnWire_));
}

template <QXType T>
Sending NativeArrayProxy<T>::sending() {
  const bool isDirect =
      listsDeferred_ &&
      holdsOnlyHeadAnd(message(), Payload<T>::isIn(message()), kPayloadField<T>, 0);
  return isDirect ? Sending::kDirect : Sending::kWrittenBack;
}

template <QXType T>
DenseForm NativeArrayProxy<T>::form(size_t realSize, size_t imagSize) const {
  return {message(), kPayloadField<T>, wire::asVarints(real_, realOnWire_, realSize),
          wire::asVarints(imag_, imagOnWire_, imagSize)};
}

template <QXType T>
WireSizes NativeArrayProxy<T>::measureWire() const {
  return form(wire::packedSize(real_.data(), realOnWire_),
              wire::packedSize(imag_.data(), imagOnWire_))
      .measure();
}

template <QXType T>
void NativeArrayProxy<T>::writeWire(const WireSizes& sizes,
                                    wire::MessagePieces& pieces) const {
  form(sizes.real, sizes.imag).write(pieces);
}

template class NativeArrayProxy<KALDEX_Array::UINT16>;
template class NativeArrayProxy<KALDEX_Array::INT16>;
template class NativeArrayProxy<KALDEX_Array::CHAR>;

}  // namespace orb
