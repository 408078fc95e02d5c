// SPDX-License-Identifier: MIT
#include "runtime/client_context.h"

#include <new>
#include <stdexcept>

#include "http/qx_http_client.h"
#include "runtime/client_config.h"

namespace orb {
namespace {

const QXClientConfig& settingsOf(const orbClientConfig& config) {
  if (!config.object) throw std::invalid_argument("The client configuration is empty.");
  return *config.object;
}

}  // namespace

orbStatus createContext(orbClientContext** out, const orbClientConfig* config) {
  try {
    // Handed out before it is complete: whatever happens next, the caller destroys it.
    *out = new orbClientContext;
  } catch (const std::bad_alloc&) {
    return ORB_FAILURE;
  }
  orbClientContext& context = **out;
  return guarded(context, [&] {
    context.client = std::make_unique<QXHttpClient>(settingsOf(*config));
    return ORB_OK;
  });
}

void destroyContext(orbClientContext* context) { delete context; }

void getLastErrorInfo(orbClientContext* context, orbErrorInfo* info) {
  context->lastError.describe(*info);
}

void destroyLastErrorInfo(orbErrorInfo* info) { releaseStack(*info); }

}  // namespace orb
