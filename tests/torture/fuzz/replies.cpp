// SPDX-License-Identifier: MIT
#include "torture/fuzz/replies.h"

#include <boost/make_shared.hpp>
#include <memory>
#include <vector>

#include "array/orb_array_from_kaldex_array_factory.h"
#include "runtime/client_context.h"
#include "runtime/result_decoder.h"
#include "support/array.h"
#include "torture/fuzz/expect.h"
#include "torture/fuzz/readings.h"
#include "torture/fuzz/tally.h"
#include "unit/runtime/fake_client.h"
#include "unit/runtime/last_error.h"

namespace orb::torture {
namespace {

using client::KALDEX_Result;
using test::Array;

enum Kind { kShortWay, kRead, kServerError, kRefusedType };

Tally& tally() {
  static Tally tally("replies", {"read the short way", "with outputs",
                                 "with a server's error", "with a type refused"});
  return tally;
}

/// A call over a fake client, which answers it with the body.
struct Call {
  Call(const std::string& body, uint32_t limitBytes, uint32_t outputCount,
       const std::vector<orbArray>& inputs = {})
      : slots(outputCount) {
    server.reply = body;
    context.client = std::make_unique<test::FakeClient>(server);
    context.client->getConfig().setResponseSizeLimit(limitBytes);
    status = feval(&context, "http://host/function", outputCount, slots.data(),
                   static_cast<uint32_t>(inputs.size()), inputs.data());
    outputs.reserve(slots.size());
    for (const orbArray slot : slots) outputs.emplace_back(slot);
  }

  test::FakeServer server;
  orbClientContext context;
  orbStatus status;
  std::vector<orbArray> slots;
  std::vector<Array> outputs;  // owns what is in the slots
};

constexpr uint32_t kUsualLimitBytes = 64u << 20;

/// One reply, as the message library reads it, and the calls that receive it.
class Reply {
 public:
  explicit Reply(const std::string& body) : body_(body) {
    // One in eight is cut by the response size limit.
    const auto size = static_cast<uint32_t>(body.size());
    limitBytes_ = size % 8 == 7 ? size / 2 : kUsualLimitBytes;
    parseResult(slice(), limitBytes_, result_);
  }

  void receive() {
    Call call(body_, limitBytes_, count());
    if (result_.has_error()) {
      expectServerError(call);
    } else if (lastRefused() >= 0) {
      expectRefusal(call);
    } else {
      expectOutputs(call);
    }
    if (body_.size() % 16 == 5 && !result_.has_error()) expectMismatch();
  }

 private:
  wire::Slice slice() const {
    return {reinterpret_cast<const uint8_t*>(body_.data()), body_.size()};
  }
  uint32_t count() const { return static_cast<uint32_t>(result_.lhs_size()); }

  /// The last output that nobody can hold; -1 without one.
  int lastRefused() const {
    int i = result_.lhs_size() - 1;
    while (i >= 0 && isHeld(result_.lhs(i).type())) --i;
    return i;
  }

  void expectServerError(Call& call) {
    tally().add(kServerError);
    expect(call.status == ORB_FAILURE, "success in spite of an error");
    for (const orbArray slot : call.slots) expect(slot == nullptr, "an output");
    client::KALDEX_Error error = result_.error();
    orbClientContext expected;
    expected.lastError.recordServerError(error);
    expectText(test::lastErrorOf(call.context).c_str(), test::lastErrorOf(expected),
               "the server's error");
  }

  void expectRefusal(Call& call) {
    tally().add(kRefusedType);
    expectFailure(call, "dispatch_on_QXType");
    for (int i = 0; i < result_.lhs_size(); ++i) {
      const orbArray slot = call.slots[static_cast<size_t>(i)];
      expect((slot == nullptr) == (i <= lastRefused()),
             "the outputs behind a refused one");
      if (slot != nullptr) expectReadings(slot, result_.lhs(i));
    }
  }

  static void expectFailure(Call& call, const std::string& text) {
    expect(call.status == ORB_FAILURE, "success instead of a failure");
    expectText(test::lastErrorOf(call.context).c_str(), test::genericError(text),
               "the error");
  }

  void expectMismatch() {
    Call call(body_, limitBytes_, count() + 1);
    for (const orbArray slot : call.slots) expect(slot == nullptr, "an output too few");
    expectFailure(call, "Number of outputs received from KALDEX, " +
                            std::to_string(count()) +
                            ", do not match the number of left hand side parameters, " +
                            std::to_string(count() + 1) + ", provided.");
  }

  void expectOutputs(Call& call) {
    expect(call.status == ORB_OK, "a call that failed");
    if (count() != 0) tally().add(kRead);
    std::vector<UniqueHandle> direct;
    if (count() != 0 && readOutputs(slice(), limitBytes_, count(), direct)) {
      tally().add(kShortWay);
      for (uint32_t i = 0; i < count(); ++i) expectSameWhenSent(direct[i].get(), i);
    }
    for (uint32_t i = 0; i < count(); ++i) {
      const orbArray output = call.slots[i];
      expectReadings(output, result_.lhs(static_cast<int>(i)));
      const Array copy(orbDuplicateArray(output));
      expectReadings(copy, result_.lhs(static_cast<int>(i)));
    }
  }

  /// The array goes out as one made of the parsed message does.
  void expectSameWhenSent(orbArray a, uint32_t i) {
    const UniqueHandle parsed =
        handleOver(boost::make_shared<KALDEX_Array>(result_.lhs(static_cast<int>(i))),
                   MessageUse::kOwn);
    const Call sent("", kUsualLimitBytes, 0, {a});
    const Call expected("", kUsualLimitBytes, 0, {parsed.get()});
    expect(sent.status == expected.status, "whether an array is sent");
    expect(sent.server.bodies == expected.server.bodies, "an array sent on");
  }

  const std::string& body_;
  uint32_t limitBytes_;
  KALDEX_Result result_;
};

}  // namespace

void tryReply(const std::string& body) {
  tally().addInput();
  Reply(body).receive();
}

}  // namespace orb::torture
