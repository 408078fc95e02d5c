// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

#include "array/handle.h"
#include "support/array.h"
#include "support/wire.h"
#include "unit/runtime/last_error.h"
#include "unit/runtime/with_fake_client.h"

namespace orb::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Feval : public WithFakeClient {};

std::string countError(const std::string& received, const std::string& wanted) {
  return genericError("Number of outputs received from KALDEX, " + received +
                      ", do not match the number of left hand side parameters, " +
                      wanted + ", provided.");
}

/// An output of a type that no client can hold.
std::string unknownOutput(int type) { return wire::type(type); }

TEST_F(Feval, SendsTheCountOfOutputsAndTheInputsToTheUrl) {
  const Array units = charRow(u"ab");
  const Array numbers = doubleRow({1, 2});
  const orbArray inputs[] = {units, numbers, units};
  server_.reply = wire::result({wire::doubleRow({3}), wire::charRow(u"cd")});
  orbArray outputs[2] = {};
  ASSERT_EQ(feval(&context_, "scheme://a url, used as it is\n", 2, outputs, 3, inputs),
            ORB_OK);
  EXPECT_THAT(server_.urls, ElementsAre("scheme://a url, used as it is\n"));
  EXPECT_THAT(server_.bodies,
              ElementsAre(wire::params(2, {wire::charRow(u"ab"), wire::doubleRow({1, 2}),
                                           wire::charRow(u"ab")})));
  EXPECT_THAT(elementsOf<double>(Array(outputs[0])), ElementsAre(3));
  EXPECT_EQ(unitsOf(Array(outputs[1])), u"cd");
}

TEST_F(Feval, SendsNoInputsWithoutAnyOrAboveTheHighestCount) {
  const Array input = doubleRow({1});
  const orbArray inputs[] = {input};
  EXPECT_EQ(feval(&context_, "", 0, nullptr, 0, nullptr), ORB_OK);
  EXPECT_EQ(feval(&context_, "", 0, nullptr, 0, inputs), ORB_OK);
  EXPECT_EQ(feval(&context_, "", 0, nullptr, 3, nullptr), ORB_OK);
  EXPECT_EQ(feval(&context_, "", 0, nullptr, 2147483648, inputs), ORB_OK);
  EXPECT_EQ(feval(&context_, "", 0, nullptr, 4294967295, inputs), ORB_OK);
  EXPECT_EQ(server_.bodies.size(), 5u);
  EXPECT_THAT(server_.bodies, Each(std::string("\x08\0", 2)));
  EXPECT_THAT(server_.urls, Each(""));
}

TEST_F(Feval, FailsWithoutAUrl) {
  orbArray output = before_;
  EXPECT_EQ(feval(&context_, nullptr, 1, &output, 0, nullptr), ORB_FAILURE);
  EXPECT_EQ(lastErrorOf(context_), genericError("The URL is null."));
  EXPECT_EQ(output, before_.get());
  EXPECT_THAT(server_.urls, IsEmpty());
}

TEST_F(Feval, RecordsEveryStatusBut200WithoutReadingTheBody) {
  server_.statusMessage = "A phrase too long to be held in place\r\n";
  server_.reply = wire::result({wire::doubleRow({3})});
  for (const uint32_t status : {0u, 100u, 199u, 201u, 204u, 302u, 404u, 4294967295u}) {
    SCOPED_TRACE(status);
    server_.status = status;
    std::vector<orbArray> outputs = slots(1);
    EXPECT_EQ(call(outputs), ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context_), "0|A non-200 HTTP response was received|" +
                                         std::to_string(status) +
                                         "|A phrase too long to be held in place\r\n");
    EXPECT_THAT(outputs, ElementsAre(before_.get()));
  }
  EXPECT_FALSE(server_.bodyWasRead);
}

TEST_F(Feval, RecordsAServerErrorAndDiscardsTheOutputs) {
  server_.reply =
      wire::result({wire::doubleRow({3})}) +
      wire::error("message", "identifier", {{"file", "name", -7}, {"", "", 0}});
  std::vector<orbArray> outputs = slots(1);
  EXPECT_EQ(call(outputs), ORB_FAILURE);
  EXPECT_EQ(lastErrorOf(context_),
            "1|Error was thrown while executing KALDEX code|message|identifier|"
            "file:name:-7|::0");
  EXPECT_THAT(outputs, ElementsAre(before_.get()));
}

TEST_F(Feval, TakesAnEmptyErrorForAnError) {
  server_.reply = wire::bytes(2, "");
  std::vector<orbArray> outputs;
  EXPECT_EQ(call(outputs), ORB_FAILURE);
  EXPECT_EQ(lastErrorOf(context_), "1|Error was thrown while executing KALDEX code||");
}

TEST_F(Feval, FailsWhenTheCountOfOutputsDiffers) {
  struct Row {
    size_t received;
    uint32_t wanted;
  };
  for (const Row& row :
       {Row{2, 1}, Row{1, 0}, Row{0, 1}, Row{1, 2}, Row{1, 4294967295}}) {
    SCOPED_TRACE(row.wanted);
    server_.reply =
        wire::result(std::vector<std::string>(row.received, wire::doubleRow({3})));
    std::vector<orbArray> outputs = slots(2);
    EXPECT_EQ(feval(&context_, "", row.wanted, outputs.data(), 0, nullptr), ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context_),
              countError(std::to_string(row.received), std::to_string(row.wanted)));
    EXPECT_THAT(outputs, Each(before_.get()));
  }
}

TEST_F(Feval, StoresOutputsFromTheLastToTheFirst) {
  for (size_t bad = 0; bad < 3; ++bad) {
    SCOPED_TRACE(bad);
    std::vector<std::string> replied{wire::doubleRow({0}), wire::doubleRow({1}),
                                     wire::doubleRow({2})};
    replied[bad] = unknownOutput(wire::kObject);
    server_.reply = wire::result(replied);
    std::vector<orbArray> outputs = slots(3);
    EXPECT_EQ(call(outputs), ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context_), genericError("dispatch_on_QXType"));
    for (size_t i = 0; i < 3; ++i) {
      SCOPED_TRACE(i);
      if (i <= bad) {
        EXPECT_EQ(outputs[i], before_.get());
      } else {
        EXPECT_THAT(elementsOf<double>(Array(outputs[i])), ElementsAre(i));
      }
    }
  }
}

TEST_F(Feval, RefusesOutputsThatNoClientCanHold) {
  for (const int type :
       std::initializer_list<int>{wire::kObject, wire::kHandleObjectRef, wire::kArrayRef,
                                  wire::kEnumeration, wire::kString, 99}) {
    SCOPED_TRACE(type);
    server_.reply = wire::result({unknownOutput(type)});
    std::vector<orbArray> outputs = slots(1);
    EXPECT_EQ(call(outputs), ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context_), genericError("dispatch_on_QXType"));
    EXPECT_THAT(outputs, ElementsAre(before_.get()));
  }
}

TEST_F(Feval, UsesWhatWasReadOfABrokenReply) {
  server_.reply = wire::result({wire::doubleRow({3})}) + "\xff";
  std::vector<orbArray> outputs = slots(1);
  ASSERT_EQ(call(outputs), ORB_OK);
  EXPECT_THAT(elementsOf<double>(Array(outputs[0])), ElementsAre(3));

  server_.reply = "not a message";
  EXPECT_EQ(call(outputs), ORB_FAILURE);
  EXPECT_EQ(lastErrorOf(context_), countError("0", "1"));
}

TEST_F(Feval, ReadsUpToTheResponseSizeLimit) {
  const std::string first = wire::result({wire::doubleRow({1})});
  server_.reply = first + wire::result({wire::doubleRow({2})});
  struct Row {
    size_t limitBytes;
    const char* received;
  };
  // The parser takes the limit for a signed number.
  for (const Row& row : {Row{0, "0"}, Row{first.size(), "1"}, Row{2147483647, "2"},
                         Row{2147483648, "0"}, Row{4294967295, "0"}}) {
    SCOPED_TRACE(row.limitBytes);
    limitResponse(row.limitBytes);
    std::vector<orbArray> outputs = slots(3);
    EXPECT_EQ(call(outputs), ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context_), countError(row.received, "3"));
  }
  limitResponse(server_.reply.size());
  std::vector<orbArray> outputs = slots(2);
  ASSERT_EQ(call(outputs), ORB_OK);
  EXPECT_THAT(elementsOf<double>(Array(outputs[0])), ElementsAre(1));
  EXPECT_THAT(elementsOf<double>(Array(outputs[1])), ElementsAre(2));
}

TEST_F(Feval, RefusesBodiesAbove31Bits) {
  for (const uint64_t size :
       std::initializer_list<uint64_t>{2147483648u, 4294967296u, 18446744073709551615u}) {
    SCOPED_TRACE(size);
    server_.claimedSize = size;
    std::vector<orbArray> outputs;
    EXPECT_EQ(call(outputs), ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context_),
              genericError("bad numeric conversion: positive overflow"));
  }
  // The limit keeps the parser from what is not there.
  server_.reply = wire::result({wire::doubleRow({3})});
  limitResponse(server_.reply.size());
  server_.claimedSize = 2147483647;
  std::vector<orbArray> outputs = slots(1);
  ASSERT_EQ(call(outputs), ORB_OK);
  EXPECT_THAT(elementsOf<double>(Array(outputs[0])), ElementsAre(3));
}

/// One step of a call that the fake client lets fail.
using Step = std::function<void()> FakeServer::*;
constexpr Step kSteps[] = {&FakeServer::onCreateRequest, &FakeServer::onSetBody,
                           &FakeServer::onPerform};

TEST_F(Feval, RecordsWhatAStepThrewAndGivesTheInputsBack) {
  const Array input = charRow(u"ab");
  for (const Step step : kSteps) {
    server_.*step = [] { throw std::runtime_error("a step failed"); };
    std::vector<orbArray> outputs = slots(1);
    EXPECT_EQ(call(outputs, {input}), ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context_), genericError("a step failed"));
    EXPECT_THAT(outputs, ElementsAre(before_.get()));
    EXPECT_EQ(proxyOf(input).sharedMessage().use_count(), 1);
    EXPECT_EQ(unitsOf(input), u"ab");
    server_.*step = [] {};
  }
  std::vector<orbArray> outputs;
  EXPECT_EQ(call(outputs, {input}), ORB_OK);
  EXPECT_THAT(server_.bodies, ElementsAre(wire::params(0, {wire::charRow(u"ab")})));
}

TEST_F(Feval, LetsOtherExceptionsOut) {
  const Array input = charRow(u"ab");
  server_.onPerform = [] { throw 42; };
  std::vector<orbArray> outputs;
  EXPECT_THROW(call(outputs, {input}), int);
  EXPECT_EQ(lastErrorOf(context_), "0||0|");
  EXPECT_EQ(unitsOf(input), u"ab");
}

TEST_F(Feval, GivesTheInputsBackBeforeTheRequestIsSent) {
  const Array input = charRow(u"ab");
  server_.onPerform = [&] { EXPECT_EQ(proxyOf(input).sharedMessage().use_count(), 1); };
  std::vector<orbArray> outputs;
  EXPECT_EQ(call(outputs, {input}), ORB_OK);
}

TEST_F(Feval, KeepsTheLastErrorThroughASuccess) {
  server_.status = 404;
  server_.statusMessage = "Not Found\r\n";
  std::vector<orbArray> outputs;
  EXPECT_EQ(call(outputs), ORB_FAILURE);
  server_.status = 200;
  EXPECT_EQ(call(outputs), ORB_OK);
  EXPECT_EQ(lastErrorOf(context_),
            "0|A non-200 HTTP response was received|404|Not Found\r\n");
}

}  // namespace
}  // namespace orb::test
