// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_KALDEX_16BIT_INTEGER_ARRAY_PROXY_H_
#define ORB_ARRAY_KALDEX_16BIT_INTEGER_ARRAY_PROXY_H_

#include <boost/make_shared.hpp>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "array/kaldex_array_proxy.h"
#include "array/native_buffer.h"

namespace orb {

/// A 16-bit integer array. Its elements travel in 32 bits each and are kept in 16 here.
template <class Native, QXType T>
class KALDEX16BitIntegerArrayProxy : public KALDEXArrayProxy {
 public:
  explicit KALDEX16BitIntegerArrayProxy(SharedMessage message,
                                        MessageUse use = MessageUse::kShare)
      : KALDEXArrayProxy(std::move(message), use),
        realData_(narrowed<Native>(Payload<T>::of(this->message()).elements())),
        imagData_(narrowed<Native>(Payload<T>::of(this->message()).imag_elements())) {}

  void resize(int32_t count) override {
    KALDEXArrayProxy::resize(count);
    realData_.resize(static_cast<size_t>(count));
    if (isComplex()) imagData_.resize(static_cast<size_t>(count));
  }

  size_t getElementSize() const override { return sizeof(Native); }
  void* getData() override { return startOf(realData_); }
  void* getImagData() override { return startOf(imagData_); }
  double getScalar() override { return realData_.empty() ? 0.0 : realData_.front(); }

  void flushToMessage() override {
    auto& payload = Payload<T>::in(message());
    widen(realData_, *payload.mutable_elements());
    widen(imagData_, *payload.mutable_imag_elements());
  }

  std::unique_ptr<KALDEXArrayProxy> duplicate() override {
    flushToMessage();
    return std::make_unique<KALDEX16BitIntegerArrayProxy>(
        boost::make_shared<KALDEX_Array>(message()));
  }

 private:
  static void* startOf(std::vector<Native>& buffer) {
    return buffer.empty() ? nullptr : buffer.data();
  }

  std::vector<Native> realData_;
  std::vector<Native> imagData_;
};

using KALDEXUint16ArrayProxy =
    KALDEX16BitIntegerArrayProxy<uint16_t, KALDEX_Array::UINT16>;
using KALDEXInt16ArrayProxy = KALDEX16BitIntegerArrayProxy<int16_t, KALDEX_Array::INT16>;

}  // namespace orb

#endif  // ORB_ARRAY_KALDEX_16BIT_INTEGER_ARRAY_PROXY_H_
