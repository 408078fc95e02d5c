// SPDX-License-Identifier: MIT
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "array/checked_cast.h"
#include "array/orb_array_from_kaldex_array_factory.h"
#include "runtime/call_body.h"
#include "runtime/client_context.h"
#include "runtime/result_decoder.h"

namespace orb {
namespace {

std::unique_ptr<Response> post(QXClient& client, const char* url, CallBody& body) {
  if (url == nullptr) throw std::logic_error("The URL is null.");
  std::unique_ptr<Request> request = client.createRequest(url);
  if (body.data() != nullptr) {
    request->setBody(body.data(), body.size());
  } else {
    request->setBody(body);
  }
  return request->perform();
}

void checkOutputCount(int received, uint32_t wanted) {
  if (static_cast<uint32_t>(received) == wanted) return;
  throw std::runtime_error("Number of outputs received from KALDEX, " +
                           std::to_string(received) +
                           ", do not match the number of left hand side parameters, " +
                           std::to_string(wanted) + ", provided.");
}

// From the last to the first, so that each message is taken over where the list ends.
void storeOutputs(client::KALDEX_Result& result, orbArray* lhs) {
  for (int i = result.lhs_size() - 1; i >= 0; --i) {
    SharedMessage message(result.mutable_lhs()->ReleaseLast());
    lhs[i] = handleOver(std::move(message), MessageUse::kOwn).release();
  }
}

/// Outputs under way. Those that are made are the caller's in the end, also when memory
/// ends before all are.
struct Outputs {
  ~Outputs() {
    for (size_t i = 0; i < handles.size(); ++i) {
      if (handles[i]) lhs[i] = handles[i].release();
    }
  }

  orbArray* lhs;
  std::vector<UniqueHandle> handles;
};

/// Tries the short way from the body to the outputs.
bool receiveDirectly(wire::Slice body, uint32_t limitBytes, uint32_t nlhs,
                     orbArray* lhs) {
  Outputs outputs{lhs, {}};
  if (readOutputs(body, limitBytes, nlhs, outputs.handles)) return true;
  outputs.handles.clear();
  return false;
}

orbStatus receive(orbClientContext& context, const Response& response, uint32_t nlhs,
                  orbArray* lhs) {
  const wire::Slice body{response.getBody(), response.getBodySize()};
  const uint32_t limitBytes = context.client->getConfig().getResponseSizeLimit();
  if (receiveDirectly(body, limitBytes, nlhs, lhs)) return ORB_OK;
  client::KALDEX_Result result;
  parseResult(body, limitBytes, result);
  if (result.has_error()) {
    context.lastError.recordServerError(*result.mutable_error());
    return ORB_FAILURE;
  }
  checkOutputCount(result.lhs_size(), nlhs);
  storeOutputs(result, lhs);
  return ORB_OK;
}

}  // namespace

orbStatus feval(orbClientContext* context, const char* url, uint32_t nlhs, orbArray* lhs,
                uint32_t nrhs, const orbArray* rhs) {
  return guarded(*context, [&] {
    if (!context->client) throw std::logic_error("The client context has no client.");
    const int32_t inputs = rhs == nullptr ? 0 : static_cast<int32_t>(nrhs);
    CallBody body(context->requestBlock, nlhs, rhs, std::max(inputs, 0));
    const std::unique_ptr<Response> response = post(*context->client, url, body);
    if (response->getStatusCode() != 200) {
      context->lastError.recordHttpError(response->getStatusCode(),
                                         response->getStatusMessage());
      return ORB_FAILURE;
    }
    return receive(*context, *response, nlhs, lhs);
  });
}

}  // namespace orb
