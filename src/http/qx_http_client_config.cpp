// SPDX-License-Identifier: MIT
#include "http/qx_http_client_config.h"

namespace orb {

QXHttpClientConfig::QXHttpClientConfig(const QXClientConfig& other)
    : timeoutSec_(other.getTimeoutSec()),
      responseSizeLimit_(other.getResponseSizeLimit()),
      clientCertFile_(other.getClientCertFile()),
      clientPrivateKeyFile_(other.getClientPrivateKeyFile()),
      clientPrivateKeyPassword_(other.getClientPrivateKeyPassword()),
      serverCertFile_(other.getServerCertFile()),
      crlFile_(other.getCRLFile()),
      verifyHost_(other.getVerifyHost()),
      verifyPeer_(other.getVerifyPeer()) {}

}  // namespace orb
