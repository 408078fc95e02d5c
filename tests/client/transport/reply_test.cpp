// SPDX-License-Identifier: MIT
// Bodies of replies: outputs, errors, and bytes that are neither.
#include <gmock/gmock.h>

#include "client/transport/matrix.h"
#include "client/transport/samples.h"
#include "client/transport/sweep.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

std::string value(double number) { return wire::doubleRow({number}); }

std::string ofType(int type) { return wire::type(type) + wire::dimensions({1, 1}); }

Script replyOf(const std::string& body) { return {send(wire::reply(body))}; }

/// A row whose call wants other than one output.
Row wanting(std::size_t outputs, Row row) {
  row.outputs = outputs;
  return row;
}

std::vector<Row> bodies() {
  const Outcome refusedType = genericError("dispatch_on_QXType");
  std::vector<Row> rows = {
      {"Empty", replyOf(""), countMismatch(0, 1)},
      wanting(0, {"EmptyForNoOutputs", replyOf(""), success()}),
      wanting(0, {"OneForNone", replyOf(wire::result({value(1)})), countMismatch(1, 0)}),
      wanting(2, {"OneForTwo", replyOf(wire::result({value(1)})), countMismatch(1, 2)}),
      {"TwoForOne", replyOf(wire::result({value(1), value(2)})), countMismatch(2, 1)},
      wanting(10, {"TwelveForTen",
                   replyOf(wire::result(std::vector<std::string>(12, value(1)))),
                   countMismatch(12, 10)}),
      {"Html", replyOf("<html>busy</html>"), countMismatch(0, 1)},
      {"Zeros", replyOf(std::string(100, '\0')), countMismatch(0, 1)},
      {"Ones", replyOf(std::string(100, '\xFF')), countMismatch(0, 1)},
      {"OutputThenGarbage", replyOf(wire::result({value(1)}) + "\xFF"), success()},
      {"OutputsNumberInsteadOfMessage", replyOf(wire::number(1, 7)), countMismatch(0, 1)},
      {"LengthBeyondTheEnd", replyOf("\x0A\x7F"), success()},
      {"LengthBeyond31Bits", replyOf("\x0A\xFF\xFF\xFF\xFF\x0F"), success()},
      {"UnknownFields",
       replyOf(wire::number(3, 7) + wire::result({value(1)}) + wire::bytes(1000, "?") +
               wire::fixed32(5, 1) + wire::fixed64(6, 1)),
       success()},
      {"Error", replyOf(wire::error("no", "a:b")), kaldexError("no", "a:b")},
      {"EmptyError", replyOf(wire::bytes(2, "")), kaldexError("", "")},
      {"ErrorAndOutputs", replyOf(wire::result({value(1)}) + wire::error("no", "a:b")),
       kaldexError("no", "a:b")},
      {"ErrorBeforeOutputs", replyOf(wire::error("no", "a:b") + wire::result({value(1)})),
       kaldexError("no", "a:b")},
      wanting(0, {"ErrorForNoOutputs", replyOf(wire::error("no", "a:b")),
                  kaldexError("no", "a:b")}),
      {"ErrorInTwoParts",
       replyOf(wire::error("no", "a:b") + wire::bytes(2, wire::bytes(1, "yes"))),
       kaldexError("yes", "a:b")},
      {"ErrorCutOff", replyOf(wire::error("no", "a:b").substr(0, 7)),
       kaldexError("no", "")},
      {"ErrorWithoutMessage", replyOf(wire::bytes(2, wire::bytes(2, "a:b"))),
       kaldexError("", "a:b")},
      {"ErrorWithNul", replyOf(wire::error(std::string("n\0o", 3), "a:b")),
       kaldexError("n", "a:b")},
      // Text that is not UTF-8 ends the parse.
      {"ErrorInLatin1", replyOf(wire::error("\xE9", "a:b")), kaldexError("\xE9", "")},
      {"ErrorInUtf8", replyOf(wire::error("\xC3\xA9", "a:b")),
       kaldexError("\xC3\xA9", "a:b")},
      {"GzipLabelOnError",
       {send("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: " +
             std::to_string(wire::error("no", "a:b").size()) + "\r\n\r\n" +
             wire::error("no", "a:b"))},
       kaldexError("no", "a:b")},
      {"TypeMinusOne", replyOf(wire::result({wire::number(1, UINT64_MAX)})), refusedType},
  };
  for (const int type : {15, 16, 17, 18, 19, 20, 1000}) {
    rows.push_back({"Type" + std::to_string(type), replyOf(wire::result({ofType(type)})),
                    refusedType});
  }
  return rows;
}

INSTANTIATE_TEST_SUITE_P(Bodies, TransportRow,
                         ::testing::Combine(::testing::ValuesIn(bodies()), onEveryRoad()),
                         rowName);

TEST(FevalOutputs, LieInTheirSlotsInOrder) {
  ScriptedServer server(replyOf(wire::result({value(1), value(2), value(3)})));
  Caller caller;
  std::vector<Array> outputs(3);
  ASSERT_EQ(caller.call(server.url(), outputs), success());
  EXPECT_EQ(orbGetScalar(outputs[0]), 1);
  EXPECT_EQ(orbGetScalar(outputs[1]), 2);
  EXPECT_EQ(orbGetScalar(outputs[2]), 3);
}

TEST(FevalOutputs, MayHaveNoSlotsWhenNoneAreWanted) {
  ScriptedServer server(replyOf(""));
  Caller caller;
  EXPECT_EQ(
      runtime().feval(caller.context(), server.url().c_str(), 0, nullptr, 0, nullptr),
      ORB_OK);
}

// Outputs are stored from the last to the first, up to the one that cannot be.
TEST(FevalOutputs, BehindARefusedTypeAreTheCallers) {
  for (std::size_t refused = 0; refused < 3; ++refused) {
    SCOPED_TRACE(refused);
    std::vector<std::string> messages = {value(1), value(2), value(3)};
    messages[refused] = ofType(wire::kString);
    ScriptedServer server(replyOf(wire::result(messages)));
    Caller caller;
    std::vector<Array> outputs(3);
    EXPECT_EQ(caller.call(server.url(), outputs), genericError("dispatch_on_QXType"));
    for (std::size_t i = 0; i < 3; ++i) {
      if (i <= refused) {
        EXPECT_EQ(outputs[i].get(), nullptr) << i;
      } else {
        EXPECT_EQ(orbGetScalar(outputs[i]), static_cast<double>(i + 1));
      }
    }
  }
}

/// Names a form in which a server may send an array, and how it travels on afterwards.
struct Form {
  std::string name;
  std::string received;
  std::string sentOn;
};

std::vector<Form> formsOf(const Sample& sample) {
  const std::string type = wire::type(sample.type);
  const std::string dimensions = wire::dimensions(sample.extents);
  const int field = wire::payloadField(sample.type);
  const std::string payload = wire::bytes(field, sample.payload);
  std::string unpackedDimensions;
  for (const std::uint64_t extent : sample.extents) {
    unpackedDimensions += wire::number(2, extent);
  }
  const std::string unknown = wire::bytes(200, "kept");
  // Every singular field that a client does not look at.
  const std::string ignored =
      wire::number(3, 7) + wire::number(4, 8) + wire::number(6, 1) + wire::number(7, 1);
  const std::string whole = sample.message();
  return {
      {"as written", whole, whole},
      {"out of order", payload + dimensions + type, whole},
      {"unpacked", type + unpackedDimensions + wire::bytes(field, sample.unpackedPayload),
       whole},
      {"with unknown fields", unknown + whole, whole + unknown},
      {"with ignored fields", ignored + whole, type + dimensions + ignored + payload},
      {"type given twice", wire::type(wire::kUint8) + whole, whole},
      {"dimensions in two parts",
       type + wire::number(2, sample.extents[0]) + wire::number(2, sample.extents[1]) +
           payload,
       whole},
      {"payload in two parts", whole + wire::bytes(field, ""), whole},
  };
}

TEST(FevalOutputs, OfEveryClassArriveInEveryFormOfTheWire) {
  Exchange exchange;
  for (const Sample& sample : samples()) {
    const Array made = sample.make();
    for (const Form& form : formsOf(sample)) {
      SCOPED_TRACE(sample.name + " " + form.name);
      const Array received = exchange.receive(form.received);
      EXPECT_STREQ(orbGetClassName(received), sample.className.c_str());
      EXPECT_EQ(dimensionsOf(received), dimensionsOf(made));
      EXPECT_EQ(orbIsComplex(received), orbIsComplex(made));
      const double first = orbGetScalar(made);
      EXPECT_EQ(orbGetScalar(received), first);
      callEveryFunction(received);
      EXPECT_EQ(exchange.bodyWith({received}), wire::params(0, {form.sentOn}));
    }
  }
}

// What was read before the end is used: a cut inside the first output leaves an output.
TEST(FevalOutputs, OfATruncatedReplyHoldWhatWasRead) {
  Exchange exchange;
  for (const Sample& sample : samples()) {
    const std::string message = sample.message();
    const std::string body = wire::result({message});
    const std::size_t typeEnd = body.size() - message.size() + wire::type(0).size();
    for (std::size_t size = 0; size < body.size(); ++size) {
      SCOPED_TRACE(sample.name + " up to byte " + std::to_string(size));
      exchange.server().onRequest(replyOf(body.substr(0, size)));
      std::vector<Array> outputs(1);
      const Outcome outcome = exchange.caller().call(exchange.server().url(), outputs);
      ASSERT_EQ(outcome, size == 0 ? countMismatch(0, 1) : success());
      if (size == 0) continue;
      if (size < typeEnd) {
        EXPECT_STREQ(orbGetClassName(outputs[0]), "uint8");
      } else if (sample.type != wire::kSparse) {
        EXPECT_STREQ(orbGetClassName(outputs[0]), sample.className.c_str());
      }
      callEveryFunction(outputs[0]);
      exchange.bodyWith({outputs[0]});
    }
  }
}

/// `depth` cells, each in the next, around a number.
std::string nested(int depth) {
  std::string message = value(7);
  for (int i = 0; i < depth; ++i) message = wire::cellRow({message});
  return message;
}

TEST(FevalOutputs, MayNest49Deep) {
  Exchange exchange;
  Array array = exchange.receive(nested(49));
  for (int i = 0; i < 49; ++i) {
    SCOPED_TRACE(i);
    ASSERT_TRUE(orbIsCell(array));
    array = Array(orbGetCell(array, 0));
    ASSERT_NE(array.get(), nullptr);
  }
  EXPECT_TRUE(orbIsDouble(array));
  EXPECT_EQ(orbGetScalar(array), 7);
}

// The parse stops where the 50th cell holds something; what lies above it was read.
TEST(FevalOutputs, LoseWhatIsNestedDeeper) {
  Exchange exchange;
  Array array = exchange.receive(nested(50));
  for (int i = 0; i < 50; ++i) {
    SCOPED_TRACE(i);
    ASSERT_TRUE(orbIsCell(array));
    array = Array(orbGetCell(array, 0));
    ASSERT_NE(array.get(), nullptr);
  }
  EXPECT_EQ(orbGetClassID(array), orbUINT8_CLASS);
  EXPECT_EQ(orbGetNumberOfDimensions(array), 0U);
}

class ResponseSizeLimit : public ::testing::Test {
 protected:
  /// One call for `outputs` under `limitBytes`, and its outcome.
  Outcome callWith(std::uint32_t limitBytes, const std::string& reply,
                   std::vector<Array>& outputs) {
    ScriptedServer server({send(reply)});
    Settings settings;
    settings.limitBytes = limitBytes;
    Caller caller(settings);
    const Outcome outcome = caller.call(server.url(), outputs);
    // The next call on the context goes on as the first did.
    std::vector<Array> again(outputs.size());
    EXPECT_EQ(caller.call(server.url(), again), outcome);
    return outcome;
  }

  const std::string body_ = wire::result({value(1), value(2)});
  const std::uint32_t size_ = static_cast<std::uint32_t>(body_.size());
};

TEST_F(ResponseSizeLimit, OfTheBodyReadsItWhole) {
  std::vector<Array> outputs(2);
  EXPECT_EQ(callWith(size_, wire::reply(body_), outputs), success());
  EXPECT_EQ(orbGetScalar(outputs[0]), 1);
  EXPECT_EQ(orbGetScalar(outputs[1]), 2);
}

TEST_F(ResponseSizeLimit, OneByteShortRefusesAnAnnouncedBody) {
  std::vector<Array> outputs(2);
  EXPECT_EQ(callWith(size_ - 1, wire::reply(body_), outputs), refusal());
}

TEST_F(ResponseSizeLimit, OneByteShortCutsABodyThatWasNotAnnounced) {
  std::vector<Array> outputs(2);
  EXPECT_EQ(callWith(size_ - 1, wire::chunkedReply(body_), outputs), success());
  EXPECT_EQ(orbGetScalar(outputs[0]), 1);
  // Its one number lacks the last byte, its type and dimensions are there.
  EXPECT_TRUE(orbIsDouble(outputs[1]));
  EXPECT_THAT(dimensionsOf(outputs[1]), ElementsAre(1, 1));
}

TEST_F(ResponseSizeLimit, BeforeTheSecondOutputLosesIt) {
  std::vector<Array> outputs(2);
  EXPECT_EQ(callWith(size_ / 2, wire::chunkedReply(body_), outputs), countMismatch(1, 2));
}

TEST_F(ResponseSizeLimit, OfZeroRefusesEveryAnnouncedBody) {
  std::vector<Array> outputs(2);
  EXPECT_EQ(callWith(0, wire::reply(body_), outputs), refusal());
}

TEST_F(ResponseSizeLimit, OfZeroReadsNothing) {
  std::vector<Array> outputs(2);
  EXPECT_EQ(callWith(0, wire::chunkedReply(body_), outputs), countMismatch(0, 2));
  std::vector<Array> none;
  EXPECT_EQ(callWith(0, wire::reply(""), none), success());
}

// The parser takes the limit as a signed number.
TEST_F(ResponseSizeLimit, OfTwoToThe31stAndMoreReadsNothing) {
  for (const std::uint32_t limitBytes : {0x80000000u, 0x80000001u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(limitBytes);
    std::vector<Array> outputs(2);
    EXPECT_EQ(callWith(limitBytes, wire::reply(body_), outputs), countMismatch(0, 2));
    std::vector<Array> none;
    EXPECT_EQ(callWith(limitBytes, wire::reply(body_), none), success());
  }
}

TEST_F(ResponseSizeLimit, ThatCutsAnErrorOffLosesIt) {
  const std::string error = wire::error("lost", "a:b", {});
  for (const std::uint32_t limitBytes : {0U, 0x80000000U}) {
    SCOPED_TRACE(limitBytes);
    std::vector<Array> none;
    EXPECT_EQ(callWith(limitBytes, wire::chunkedReply(error), none), success());
    std::vector<Array> one(1);
    EXPECT_EQ(callWith(limitBytes, wire::chunkedReply(error), one), countMismatch(0, 1));
  }
}

TEST_F(ResponseSizeLimit, BelowTwoToThe31stReadsAll) {
  std::vector<Array> outputs(2);
  EXPECT_EQ(callWith(0x7FFFFFFF, wire::reply(body_), outputs), success());
}

}  // namespace
}  // namespace orb::test
