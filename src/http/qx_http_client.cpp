// SPDX-License-Identifier: MIT
#include "http/qx_http_client.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <stdexcept>

#include "http/curl_handle.h"
#include "http/http_request.h"

namespace orb {
namespace {

// libcurl counts milliseconds in 31 bits and refuses what does not fit. A caller who asks
// for longer means a time-out that is never in the way, and gets the longest there is.
constexpr uint64_t kLongestTimeoutSec = 2147483;

// libcurl's own default.
constexpr long kUploadBufferBytes = 64 << 10;

CurlHandle newHandle() {
  void* handle = curl_easy_init();
  if (handle == nullptr) throw std::runtime_error(curl_easy_strerror(CURLE_FAILED_INIT));
  return CurlHandle(handle, CURLDeleter());
}

/// "" leaves libcurl's own default in force.
void setText(const CurlHandle& handle, CURLoption option, const char* text) {
  if (*text != '\0') setOption(handle, option, text);
}

}  // namespace

QXHttpClient::QXHttpClient(const QXClientConfig& config)
    : config_(config), handle_(newHandle()), bodyBlock_(boost::make_shared<KeptBlock>()) {
  applyConfig();
}

void QXHttpClient::applyConfig() {
  setOption(handle_, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  setOption(handle_, CURLOPT_TIMEOUT,
            static_cast<long>(std::min(config_.getTimeoutSec(), kLongestTimeoutSec)));
  setText(handle_, CURLOPT_SSLCERT, config_.getClientCertFile());
  setText(handle_, CURLOPT_SSLKEY, config_.getClientPrivateKeyFile());
  setText(handle_, CURLOPT_KEYPASSWD, config_.getClientPrivateKeyPassword());
  setText(handle_, CURLOPT_CAINFO, config_.getServerCertFile());
  setText(handle_, CURLOPT_CRLFILE, config_.getCRLFile());
  // 2 checks the name; 1 is an old debugging value that libcurl treats as an error or
  // as 2.
  setOption(handle_, CURLOPT_SSL_VERIFYHOST, config_.getVerifyHost() ? 2L : 0L);
  setOption(handle_, CURLOPT_SSL_VERIFYPEER, config_.getVerifyPeer() ? 1L : 0L);
  // Where memory ends while libcurl 7.88 notes a TLS session, it frees a block twice, or
  // fails all that connects later.
  setOption(handle_, CURLOPT_SSL_SESSIONID_CACHE, 0L);
}

// Over the life of a handle libcurl counts the requests that it sent again because a kept
// connection was dead, and fails every sixth. Such a transfer makes a new connection; a
// reset after it starts the count anew, and keeps what connections there are.
void QXHttpClient::forgetResentRequests() {
  long connections = 0;
  checkCurl(curl_easy_getinfo(handle_.get(), CURLINFO_NUM_CONNECTS, &connections));
  if (connections == 0 && isConfigured_) return;
  isConfigured_ = false;  // stays so when a setting fails
  curl_easy_reset(handle_.get());
  // libcurl does not tell when memory ended during the reset: what would be left then are
  // buffers of no size, and connections that are used once.
  setOption(handle_, CURLOPT_BUFFERSIZE, long{CURL_MAX_WRITE_SIZE});
  setOption(handle_, CURLOPT_UPLOAD_BUFFERSIZE, kUploadBufferBytes);
  applyConfig();
  isConfigured_ = true;
}

std::unique_ptr<Request> QXHttpClient::createRequest(const std::string& url) {
  forgetResentRequests();
  return std::make_unique<HttpRequest>(handle_, url, config_.getResponseSizeLimit(),
                                       bodyBlock_);
}

void QXHttpClient::initializeGlobally() {
  if (curl_global_init(CURL_GLOBAL_ALL) != CURLE_OK) {
    throw std::runtime_error("Global initialization of QXHttpClient failed");
  }
}

void QXHttpClient::cleanUpGlobally() { curl_global_cleanup(); }

}  // namespace orb
