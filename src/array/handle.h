// SPDX-License-Identifier: MIT
// What an orbArray points to.
#ifndef ORB_ARRAY_HANDLE_H_
#define ORB_ARRAY_HANDLE_H_

#include <memory>

#include "array/kaldex_array_proxy.h"
#include "orb/qxorbclient.h"

/// The handle cell; a caller owns it and it owns the proxy.
struct orbArrayHandle {
  std::unique_ptr<orb::KALDEXArrayProxy> proxy;
};

namespace orb {

/// A handle until it is handed out.
using UniqueHandle = std::unique_ptr<orbArrayHandle>;

inline KALDEXArrayProxy& proxyOf(const orbArray a) { return *a->proxy; }
inline KALDEX_Array& messageOf(const orbArray a) { return a->proxy->message(); }

}  // namespace orb

#endif  // ORB_ARRAY_HANDLE_H_
