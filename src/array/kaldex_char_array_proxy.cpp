// SPDX-License-Identifier: MIT
#include "array/kaldex_char_array_proxy.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <utility>

#include "array/native_buffer.h"
#include "array/utf16_to_utf8.h"

namespace orb {

KALDEXCharArrayProxy::KALDEXCharArrayProxy(SharedMessage message, MessageUse use)
    : KALDEXArrayProxy(std::move(message), use),
      chars_(narrowed<char16_t>(this->message().qxchar().elements())) {}

void KALDEXCharArrayProxy::resize(int32_t count) {
  KALDEXArrayProxy::resize(count);
  chars_.resize(static_cast<size_t>(count));
}

void KALDEXCharArrayProxy::flushToMessage() {
  widen(chars_, *message().mutable_qxchar()->mutable_elements());
}

std::unique_ptr<KALDEXArrayProxy> KALDEXCharArrayProxy::duplicate() {
  flushToMessage();
  return std::make_unique<KALDEXCharArrayProxy>(
      boost::make_shared<KALDEX_Array>(message()));
}

char* KALDEXCharArrayProxy::utf16ToUtf8() const {
  return orb::utf16ToUtf8(chars_.data(), chars_.size());
}

}  // namespace orb
