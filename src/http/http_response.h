// SPDX-License-Identifier: MIT
#ifndef ORB_HTTP_HTTP_RESPONSE_H_
#define ORB_HTTP_HTTP_RESPONSE_H_

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>

#include "http/byte_block.h"
#include "http/qx_client.h"

namespace orb {

/// Collects status, headers and body as they arrive. The body is refused when its
/// announced length exceeds the limit; of what arrives unannounced, all is counted, and
/// kept up to the limit.
class HttpResponse : public Response {
 public:
  /// Collects the body in the block, which it holds as long as it lives. Throws
  /// std::bad_alloc.
  explicit HttpResponse(uint32_t sizeLimitBytes, boost::shared_ptr<ByteBlock> block =
                                                     boost::make_shared<ByteBlock>());
  ~HttpResponse() override { block_->trim(keptSize()); }

  const uint8_t* getBody() const override { return block_->data(); }
  uint64_t getBodySize() const override { return bodySize_; }
  uint32_t getStatusCode() const override { return statusCode_; }
  std::string getStatusMessage() const override { return reasonPhrase_; }

  void setStatusCode(uint32_t statusCode) { statusCode_ = statusCode; }
  /// False when the body is refused. Throws std::bad_alloc.
  bool appendBody(const void* bytes, size_t length);
  /// Takes one header line with its line ending; the first one is the status line. Throws
  /// boost::bad_lexical_cast for a length that is no number, and std::runtime_error for a
  /// body that libcurl would decompress.
  void addHeader(const std::string& line);

 private:
  size_t keptSize() const;
  void reserve(size_t size);

  uint32_t statusCode_ = 0;
  bool hasStatusLine_ = false;
  std::string reasonPhrase_;
  boost::shared_ptr<ByteBlock> block_;
  uint64_t bodySize_ = 0;
  uint64_t announcedLength_ = 0;  // 0 until a server announces one: never refused
  uint32_t sizeLimitBytes_;
};

}  // namespace orb

#endif  // ORB_HTTP_HTTP_RESPONSE_H_
