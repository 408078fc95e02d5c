// SPDX-License-Identifier: MIT
#include "micro/canned_context.h"

#include <array>
#include <memory>
#include <stdexcept>
#include <utility>

#include "http/qx_http_client_config.h"

namespace orb::bench {
namespace {

constexpr uint32_t kOk = 200;

class CannedResponse : public Response {
 public:
  explicit CannedResponse(const std::string& body) : body_(body) {}

  const uint8_t* getBody() const override {
    return reinterpret_cast<const uint8_t*>(body_.data());
  }
  uint64_t getBodySize() const override { return body_.size(); }
  uint32_t getStatusCode() const override { return kOk; }
  std::string getStatusMessage() const override { return "OK\r\n"; }

 private:
  const std::string& body_;
};

class CannedRequest : public Request {
 public:
  explicit CannedRequest(const std::string& reply) : reply_(reply) {}

  void setBody(const void*, uint64_t) override {}
  // Read as libcurl reads it.
  void setBody(BodySource& body) override {
    static std::array<uint8_t, size_t{64} << 10> buffer;
    while (body.read(buffer.data(), buffer.size()) != 0) {
    }
  }
  std::unique_ptr<Response> perform() override {
    return std::make_unique<CannedResponse>(reply_);
  }

 private:
  const std::string& reply_;
};

class CannedClient : public QXClient {
 public:
  explicit CannedClient(std::string reply) : reply_(std::move(reply)) {}

  std::unique_ptr<Request> createRequest(const std::string&) override {
    return std::make_unique<CannedRequest>(reply_);
  }
  QXClientConfig& getConfig() override { return config_; }

 private:
  std::string reply_;
  QXHttpClientConfig config_;
};

}  // namespace

CannedContext::CannedContext(std::string reply) {
  context_.client = std::make_unique<CannedClient>(std::move(reply));
}

LibraryArray CannedContext::feval(uint32_t outputs, orbArray input) {
  orbArray output = nullptr;
  const uint32_t inputs = input == nullptr ? 0 : 1;
  const orbStatus status =
      orb::feval(&context_, "http://127.0.0.1/f", outputs, &output, inputs, &input);
  if (status != ORB_OK) throw std::runtime_error("feval");
  return LibraryArray(output);
}

}  // namespace orb::bench
