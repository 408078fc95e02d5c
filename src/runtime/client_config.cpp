// SPDX-License-Identifier: MIT
#include "runtime/client_config.h"

#include "http/qx_http_client_config.h"

namespace orb {

orbStatus createConfig(orbClientConfig** out) {
  try {
    // Handed out before it is filled: whatever happens next, the caller destroys it.
    *out = new orbClientConfig;
    (*out)->object = std::make_unique<QXHttpClientConfig>();
    return ORB_OK;
  } catch (const std::exception&) {
    return ORB_FAILURE;
  }
}

void destroyConfig(orbClientConfig* config) { delete config; }

}  // namespace orb
