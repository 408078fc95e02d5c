// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_UNIT_RUNTIME_WITH_FAKE_CLIENT_H_
#define ORB_TESTS_UNIT_RUNTIME_WITH_FAKE_CLIENT_H_

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "runtime/client_context.h"
#include "support/array.h"
#include "unit/runtime/fake_client.h"

namespace orb::test {

/// Calls over a fake client; every request and response is gone at the end.
class WithFakeClient : public ::testing::Test {
 protected:
  WithFakeClient() { context_.client = std::make_unique<FakeClient>(server_); }
  ~WithFakeClient() override {
    EXPECT_EQ(server_.requests, 0);
    EXPECT_EQ(server_.responses, 0);
  }

  orbStatus call(std::vector<orbArray>& outputs,
                 const std::vector<orbArray>& inputs = {}) {
    return feval(&context_, "http://host/function", static_cast<uint32_t>(outputs.size()),
                 outputs.data(), static_cast<uint32_t>(inputs.size()), inputs.data());
  }

  void limitResponse(size_t limitBytes) {
    context_.client->getConfig().setResponseSizeLimit(static_cast<uint32_t>(limitBytes));
  }

  /// Slots for outputs, all holding what no call made.
  std::vector<orbArray> slots(size_t count) const {
    return std::vector<orbArray>(count, before_);
  }

  const Array before_ = doubleRow({-1});
  FakeServer server_;
  orbClientContext context_;
};

}  // namespace orb::test

#endif  // ORB_TESTS_UNIT_RUNTIME_WITH_FAKE_CLIENT_H_
