// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_NATIVE_ARRAY_PROXY_H_
#define ORB_ARRAY_NATIVE_ARRAY_PROXY_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "array/kaldex_array_proxy.h"

namespace orb {

/// An array of 16-bit elements, which travel in 32 bits each and are kept natively here.
///
/// As long as nobody else has seen the message its own 32-bit lists are left empty, and
/// stand for the first `realOnWire_` and `imagOnWire_` native elements. The first
/// write-back fills them; from then on they have lengths of their own, which other
/// handles may change.
template <QXType T>
class NativeArrayProxy : public KALDEXArrayProxy {
 public:
  using Native = NativeElement<T>;

  explicit NativeArrayProxy(SharedMessage message);
  /// Over a message that nobody else saw, without lists; these are its elements.
  NativeArrayProxy(SharedMessage message, std::vector<Native> real,
                   std::vector<Native> imag);

  void resize(int32_t count) override;
  size_t getElementSize() const override { return sizeof(Native); }
  void* getData() override { return startOf(real_); }
  void* getImagData() override { return startOf(imag_); }
  double getScalar() override { return real_.empty() ? 0.0 : real_.front(); }
  void flushToMessage() override;
  std::unique_ptr<KALDEXArrayProxy> duplicate() override;
  Sending sending() override;
  WireSizes measureWire() const override;
  void writeWire(const WireSizes& sizes, wire::MessagePieces& pieces) const override;

  const std::vector<Native>& real() const { return real_; }

 private:
  DenseForm form(size_t realSize, size_t imagSize) const;
  static void* startOf(std::vector<Native>& elements) {
    return elements.empty() ? nullptr : elements.data();
  }

  std::vector<Native> real_;
  std::vector<Native> imag_;
  bool listsDeferred_;
  // While the lists are deferred; at most the number of native elements.
  size_t realOnWire_ = 0;
  size_t imagOnWire_ = 0;
};

extern template class NativeArrayProxy<KALDEX_Array::UINT16>;
extern template class NativeArrayProxy<KALDEX_Array::INT16>;
extern template class NativeArrayProxy<KALDEX_Array::CHAR>;

}  // namespace orb

#endif  // ORB_ARRAY_NATIVE_ARRAY_PROXY_H_
