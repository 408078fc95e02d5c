// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_KALDEX_CHAR_ARRAY_PROXY_H_
#define ORB_ARRAY_KALDEX_CHAR_ARRAY_PROXY_H_

#include <memory>
#include <vector>

#include "array/kaldex_array_proxy.h"

namespace orb {

/// A char array. Its code units travel in 32 bits each and are kept in 16 here.
class KALDEXCharArrayProxy : public KALDEXArrayProxy {
 public:
  explicit KALDEXCharArrayProxy(SharedMessage message,
                                MessageUse use = MessageUse::kShare);

  void resize(int32_t count) override;
  size_t getElementSize() const override { return sizeof(char16_t); }
  void* getData() override { return chars_.empty() ? nullptr : chars_.data(); }
  void* getImagData() override { return nullptr; }
  double getScalar() override { return chars_.empty() ? 0.0 : chars_.front(); }
  void flushToMessage() override;
  std::unique_ptr<KALDEXArrayProxy> duplicate() override;

  const std::vector<char16_t>& chars() const { return chars_; }

  /// The text as NUL-terminated UTF-8 in memory from malloc(), null for an array without
  /// elements. Throws std::runtime_error when the last unit is a surrogate, and when
  /// memory ends.
  char* utf16ToUtf8() const;

 private:
  std::vector<char16_t> chars_;
};

}  // namespace orb

#endif  // ORB_ARRAY_KALDEX_CHAR_ARRAY_PROXY_H_
