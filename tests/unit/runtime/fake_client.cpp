// SPDX-License-Identifier: MIT
#include "unit/runtime/fake_client.h"

namespace orb::test {
namespace {

class FakeResponse : public Response {
 public:
  explicit FakeResponse(FakeServer& server) : server_(server) { ++server.responses; }
  ~FakeResponse() override { --server_.responses; }

  const uint8_t* getBody() const override {
    server_.bodyWasRead = true;
    return reinterpret_cast<const uint8_t*>(server_.reply.data());
  }
  uint64_t getBodySize() const override {
    server_.bodyWasRead = true;
    return server_.claimedSize.value_or(server_.reply.size());
  }
  uint32_t getStatusCode() const override { return server_.status; }
  std::string getStatusMessage() const override { return server_.statusMessage; }

 private:
  FakeServer& server_;
};

class FakeRequest : public Request {
 public:
  explicit FakeRequest(FakeServer& server) : server_(server) { ++server.requests; }
  ~FakeRequest() override { --server_.requests; }

  void setBody(const void* data, uint64_t length) override {
    server_.onSetBody();
    data_ = static_cast<const char*>(data);
    length_ = length;
  }

  void setBody(BodySource& source) override {
    server_.onSetBody();
    source_ = &source;
  }

  std::unique_ptr<Response> perform() override {
    server_.onPerform();
    server_.bodies.push_back(source_ == nullptr ? std::string(data_, length_)
                                                : readAll(*source_));
    return std::make_unique<FakeResponse>(server_);
  }

 private:
  static std::string readAll(BodySource& source) {
    std::string body(source.size() + 1, '\0');
    body.resize(source.read(reinterpret_cast<uint8_t*>(body.data()), body.size()));
    return body;
  }

  FakeServer& server_;
  const char* data_ = nullptr;
  size_t length_ = 0;
  BodySource* source_ = nullptr;
};

}  // namespace

std::unique_ptr<Request> FakeClient::createRequest(const std::string& url) {
  server_.onCreateRequest();
  server_.urls.push_back(url);
  return std::make_unique<FakeRequest>(server_);
}

}  // namespace orb::test
