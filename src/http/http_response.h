// SPDX-License-Identifier: MIT
#ifndef ORB_HTTP_HTTP_RESPONSE_H_
#define ORB_HTTP_HTTP_RESPONSE_H_

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "http/qx_client.h"

namespace orb {

/// Collects status, headers and body as they arrive. The body is refused when its
/// announced length exceeds the limit; what arrives unannounced is kept whole.
class HttpResponse : public Response {
 public:
  /// Throws std::bad_alloc.
  explicit HttpResponse(uint32_t sizeLimitBytes);

  const uint8_t* getBody() const override { return body_.get(); }
  uint64_t getBodySize() const override { return bodySize_; }
  uint32_t getStatusCode() const override { return statusCode_; }
  std::string getStatusMessage() const override { return reasonPhrase_; }

  void setStatusCode(uint32_t statusCode) { statusCode_ = statusCode; }
  /// False when the body is refused. Throws std::bad_alloc.
  bool appendBody(const void* bytes, size_t length);
  /// Takes one header line with its line ending; the first one is the status line. Throws
  /// boost::bad_lexical_cast for a length that is no number.
  void addHeader(const std::string& line);

 private:
  struct Free {
    void operator()(uint8_t* p) const { std::free(p); }
  };

  void grow(size_t size);

  uint32_t statusCode_ = 0;
  std::string reasonPhrase_;
  std::unique_ptr<uint8_t, Free> body_;
  uint64_t bodySize_ = 0;
  std::vector<std::string> headers_;
  uint64_t announcedLength_ = 0;  // 0 until a server announces one: never refused
  uint32_t sizeLimitBytes_;
};

}  // namespace orb

#endif  // ORB_HTTP_HTTP_RESPONSE_H_
