// SPDX-License-Identifier: MIT
// What an orbClientContext points to, and the operations on it.
#ifndef ORB_RUNTIME_CLIENT_CONTEXT_H_
#define ORB_RUNTIME_CLIENT_CONTEXT_H_

#include <exception>
#include <memory>

#include "http/byte_block.h"
#include "http/qx_client.h"
#include "orb/qxorbclient.h"
#include "runtime/error_state.h"

/// One connection to servers and its last failure.
struct orbClientContext {
  std::unique_ptr<orb::QXClient> client;  // null when it could not be made
  orb::ErrorState lastError;
  orb::ByteBlock requestBlock;  // kept between calls
};

namespace orb {

/// Runs the body of an operation that must let no standard exception out; a failure is
/// recorded in the context.
template <class Body>
orbStatus guarded(orbClientContext& context, Body&& body) {
  try {
    return body();
  } catch (const std::exception& failure) {
    context.lastError.recordGenericError(failure);
    return ORB_FAILURE;
  }
}

orbStatus createContext(orbClientContext** out, const orbClientConfig* config);
void destroyContext(orbClientContext* context);
void getLastErrorInfo(orbClientContext* context, orbErrorInfo* info);
void destroyLastErrorInfo(orbErrorInfo* info);
orbStatus feval(orbClientContext* context, const char* url, uint32_t nlhs, orbArray* lhs,
                uint32_t nrhs, const orbArray* rhs);

}  // namespace orb

#endif  // ORB_RUNTIME_CLIENT_CONTEXT_H_
