// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_ORB_ARRAY_FROM_KALDEX_ARRAY_FACTORY_H_
#define ORB_ARRAY_ORB_ARRAY_FROM_KALDEX_ARRAY_FACTORY_H_

#include <memory>
#include <utility>

#include "array/handle.h"
#include "array/proxy_classes.h"
#include "orb/dispatch_on_QXType"

namespace orb {

/// Puts a proxy over an existing message behind a handle; what was there before is
/// released afterwards, or kept when the proxy cannot be made.
class OrbArrayFromKALDEX_ArrayFactory {
 public:
  OrbArrayFromKALDEX_ArrayFactory(orbArrayHandle& handle, SharedMessage message,
                                  MessageUse use)
      : handle_(handle), message_(std::move(message)), use_(use) {}

  template <QXType T>
  void visit() {
    if constexpr (kIsContainer<T>) {
      handle_.proxy = std::make_unique<ProxyOf<T>>(message_, use_);
    } else {
      handle_.proxy = std::make_unique<ProxyOf<T>>(message_);
    }
  }

 private:
  orbArrayHandle& handle_;
  SharedMessage message_;
  MessageUse use_;
};

/// A new handle over a message. Throws std::invalid_argument, "dispatch_on_QXType", for a
/// type that a client cannot hold.
inline UniqueHandle handleOver(SharedMessage message, MessageUse use) {
  UniqueHandle handle = std::make_unique<orbArrayHandle>();
  const QXType type = message->type();
  OrbArrayFromKALDEX_ArrayFactory factory(*handle, std::move(message), use);
  dispatch_on_QXType(type, factory);
  return handle;
}

}  // namespace orb

#endif  // ORB_ARRAY_ORB_ARRAY_FROM_KALDEX_ARRAY_FACTORY_H_
