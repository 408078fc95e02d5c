// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_KALDEX_CHAR_ARRAY_PROXY_H_
#define ORB_ARRAY_KALDEX_CHAR_ARRAY_PROXY_H_

#include "array/native_array_proxy.h"
#include "array/utf16_to_utf8.h"

namespace orb {

/// A char array of UTF-16 code units.
class KALDEXCharArrayProxy : public NativeArrayProxy<KALDEX_Array::CHAR> {
 public:
  using NativeArrayProxy::NativeArrayProxy;

  const std::vector<char16_t>& chars() const { return real(); }

  /// The text as UTF-8, see orb::utf16ToUtf8().
  char* utf16ToUtf8() const { return orb::utf16ToUtf8(chars().data(), chars().size()); }
};

}  // namespace orb

#endif  // ORB_ARRAY_KALDEX_CHAR_ARRAY_PROXY_H_
