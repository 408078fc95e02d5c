// SPDX-License-Identifier: MIT
// The transport as its users see it: a client makes requests, a request gives a response.
#ifndef ORB_HTTP_QX_CLIENT_H_
#define ORB_HTTP_QX_CLIENT_H_

#include <boost/noncopyable.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "http/qx_client_config.h"

namespace orb {

/// The server's answer to one request.
class Response : boost::noncopyable {
 public:
  /// The bytes of the body, of the getBodySize() that came those up to the response size
  /// limit; the response owns them.
  virtual const uint8_t* getBody() const = 0;
  virtual uint64_t getBodySize() const = 0;
  virtual uint32_t getStatusCode() const = 0;
  /// The reason phrase as sent, line ending included; "" when there was none.
  virtual std::string getStatusMessage() const = 0;
  virtual ~Response() = default;
};

/// A body that is read while it is sent.
class BodySource : boost::noncopyable {
 public:
  virtual uint64_t size() const = 0;
  /// Copies the next bytes, `capacity` of them unless the body ends.
  virtual size_t read(uint8_t* target, size_t capacity) noexcept = 0;
  /// Goes back to the first byte: a request on a kept connection that the server has
  /// closed meanwhile is sent again.
  virtual void rewind() noexcept = 0;

 protected:
  ~BodySource() = default;
};

/// One POST.
class Request : boost::noncopyable {
 public:
  /// Sets the body. The bytes are not copied: they must live until perform() returns.
  virtual void setBody(const void* data, uint64_t length) = 0;
  /// The same for a body in pieces.
  virtual void setBody(BodySource& body) = 0;
  /// Sends the request and waits for the response, whatever its status. Throws a standard
  /// exception when there is none.
  virtual std::unique_ptr<Response> perform() = 0;
  virtual ~Request() = default;
};

/// Keeps the connection and the settings; used by one thread at a time.
class QXClient : boost::noncopyable {
 public:
  virtual std::unique_ptr<Request> createRequest(const std::string& url) = 0;
  virtual QXClientConfig& getConfig() = 0;
  virtual ~QXClient() = default;
};

}  // namespace orb

#endif  // ORB_HTTP_QX_CLIENT_H_
