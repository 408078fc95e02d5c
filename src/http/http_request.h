// SPDX-License-Identifier: MIT
#ifndef ORB_HTTP_HTTP_REQUEST_H_
#define ORB_HTTP_HTTP_REQUEST_H_

#include <string>

#include "http/byte_block.h"
#include "http/curl_handle.h"
#include "http/qx_client.h"

namespace orb {

/// One POST over the client's libcurl handle. Options set on the handle stay on it, so
/// every request sets all that are its own.
class HttpRequest : public Request {
 public:
  /// Responses collect their bodies in the kept block.
  HttpRequest(CurlHandle handle, const std::string& url, uint32_t responseSizeLimit,
              boost::shared_ptr<KeptBlock> bodyBlock);

  void setBody(const void* data, uint64_t length) override;
  void setBody(BodySource& body) override;
  std::unique_ptr<Response> perform() override;

 private:
  CurlHandle handle_;
  std::string url_;
  uint32_t responseSizeLimit_;  // bytes
  boost::shared_ptr<KeptBlock> bodyBlock_;
};

}  // namespace orb

#endif  // ORB_HTTP_HTTP_REQUEST_H_
