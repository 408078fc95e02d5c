// SPDX-License-Identifier: MIT
#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "array/checked_cast.h"
#include "array/orb_array_from_kaldex_array_factory.h"
#include "orb.client.KALDEXResult.pb.h"
#include "runtime/borrowed_inputs.h"
#include "runtime/client_context.h"

namespace orb {
namespace {

/// The bytes of a request.
struct Encoded {
  std::unique_ptr<uint8_t[]> bytes;
  size_t size;
};

// Beyond 31 bits the message library cannot count, and would write a broken message.
Encoded encode(const client::KALDEX_Params& params) {
  const size_t size = params.ByteSizeLong();
  checkedInt32(size);
  Encoded encoded{std::unique_ptr<uint8_t[]>(new uint8_t[size]), size};
  params.SerializeWithCachedSizesToArray(encoded.bytes.get());
  return encoded;
}

Encoded encodeCall(uint32_t nlhs, uint32_t nrhs, const orbArray* rhs) {
  BorrowedInputs call(nlhs);
  const int32_t inputs = static_cast<int32_t>(nrhs);
  if (rhs != nullptr && inputs >= 1) call.add(rhs, inputs);
  return encode(call.params());
}

std::unique_ptr<Response> post(QXClient& client, const char* url, const Encoded& body) {
  if (url == nullptr) throw std::logic_error("The URL is null.");
  std::unique_ptr<Request> request = client.createRequest(url);
  request->setBody(body.bytes.get(), body.size);
  return request->perform();
}

// Whether all of it could be parsed is not asked: what was read before a stop is used,
// and the checks on error and outputs decide. The limit is a signed number to the parser:
// from 2^31 up it reads nothing.
void decode(const Response& response, uint32_t limitBytes,
            client::KALDEX_Result& result) {
  const int32_t size = checkedInt32(response.getBodySize());
  google::protobuf::io::ArrayInputStream bytes(response.getBody(), size);
  google::protobuf::io::CodedInputStream input(&bytes);
  input.SetTotalBytesLimit(static_cast<int32_t>(limitBytes));
  static_cast<void>(result.ParseFromCodedStream(&input));
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

}  // namespace

orbStatus feval(orbClientContext* context, const char* url, uint32_t nlhs, orbArray* lhs,
                uint32_t nrhs, const orbArray* rhs) {
  return guarded(*context, [&] {
    if (!context->client) throw std::logic_error("The client context has no client.");
    QXClient& client = *context->client;
    const Encoded body = encodeCall(nlhs, nrhs, rhs);
    const std::unique_ptr<Response> response = post(client, url, body);
    if (response->getStatusCode() != 200) {
      context->lastError.recordHttpError(response->getStatusCode(),
                                         response->getStatusMessage());
      return ORB_FAILURE;
    }
    client::KALDEX_Result result;
    decode(*response, client.getConfig().getResponseSizeLimit(), result);
    if (result.has_error()) {
      context->lastError.recordServerError(*result.mutable_error());
      return ORB_FAILURE;
    }
    checkOutputCount(result.lhs_size(), nlhs);
    storeOutputs(result, lhs);
    return ORB_OK;
  });
}

}  // namespace orb
