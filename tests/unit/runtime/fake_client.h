// SPDX-License-Identifier: MIT
// A client that reaches no server: what it is to answer is put in, and what it was sent
// is kept.
#ifndef ORB_TESTS_UNIT_RUNTIME_FAKE_CLIENT_H_
#define ORB_TESTS_UNIT_RUNTIME_FAKE_CLIENT_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "http/qx_client.h"
#include "http/qx_http_client_config.h"

namespace orb::test {

struct FakeServer {
  uint32_t status = 200;
  std::string statusMessage;
  std::string reply;
  std::optional<uint64_t> claimedSize;            // in place of the reply's true one
  std::function<void()> onCreateRequest = [] {};  // these may throw
  std::function<void()> onSetBody = [] {};
  std::function<void()> onPerform = [] {};

  std::vector<std::string> urls;    // of the requests made
  std::vector<std::string> bodies;  // of those performed
  bool bodyWasRead = false;         // of a response
  int requests = 0;                 // alive, as are the responses
  int responses = 0;
};

/// The server outlives the client.
class FakeClient : public QXClient {
 public:
  explicit FakeClient(FakeServer& server) : server_(server) {}

  std::unique_ptr<Request> createRequest(const std::string& url) override;
  QXClientConfig& getConfig() override { return config_; }

 private:
  FakeServer& server_;
  QXHttpClientConfig config_;
};

}  // namespace orb::test

#endif  // ORB_TESTS_UNIT_RUNTIME_FAKE_CLIENT_H_
