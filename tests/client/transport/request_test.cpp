// SPDX-License-Identifier: MIT
// What a call sends, to the byte.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "client/transport/caller.h"
#include "client/transport/decoder.h"
#include "client/transport/samples.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

std::string headOf(const ScriptedServer& server, std::size_t bodySize) {
  return "POST /f HTTP/1.1\r\n"
         "Host: 127.0.0.1:" +
         std::to_string(server.port()) +
         "\r\n"
         "Accept: */*\r\n"
         "Content-Type: application/x-google-protobuf\r\n"
         "User-Agent: Corvane C client\r\n"
         "Content-Length: " +
         std::to_string(bodySize) + "\r\n\r\n";
}

TEST(RequestHead, HasTheHeaderLinesInOrderAndNothingElseOfOurs) {
  ScriptedServer server(usualReply());
  Caller caller;
  expectUsualCall(caller, server.url());
  EXPECT_EQ(server.requests().at(0).head, headOf(server, 2));
}

// Above 1 MiB libcurl would ask for a 100 reply first, and wait.
TEST(RequestHead, OfALargeBodyExpectsNoContinue) {
  Exchange exchange;
  const Array large(orbCreateDoubleMatrix(1000, 3000, orbREAL));
  const std::string body = exchange.bodyWith({large});
  EXPECT_GT(body.size(), 24000000U);
  EXPECT_EQ(exchange.server().requests().at(0).head,
            headOf(exchange.server(), body.size()));
}

TEST(RequestHead, IsTheSameInEveryCallOnOneConnection) {
  ScriptedServer server(usualReply());
  server.onRequest(
      {send("HTTP/1.1 404 Not Found\r\nSet-Cookie: a=b\r\n"
            "Content-Length: 0\r\n\r\n")});
  Caller caller;
  std::vector<Array> outputs(1);
  EXPECT_EQ(caller.call(server.url(), outputs), httpError(404, "Not Found\r\n"));
  for (int i = 0; i < 100; ++i) expectUsualCall(caller, server.url());
  EXPECT_EQ(server.connections(), 1U);
  for (const Request& request : server.requests()) {
    EXPECT_EQ(request.head, headOf(server, 2));
  }
}

TEST(RequestHead, OfEachContextComesOnItsOwnConnection) {
  ScriptedServer server(usualReply());
  Caller first;
  Caller second;
  expectUsualCall(first, server.url());
  expectUsualCall(second, server.url());
  expectUsualCall(first, server.url());
  ASSERT_EQ(server.requests().size(), 3U);
  EXPECT_EQ(server.requests()[1].connection, 1U);
  EXPECT_EQ(server.requests()[2].connection, 0U);
}

TEST(RequestHead, GoesToEachOfSeveralServersOnOneConnection) {
  ScriptedServer one(usualReply());
  ScriptedServer other(usualReply());
  Caller caller;
  for (int i = 0; i < 10; ++i) {
    expectUsualCall(caller, one.url());
    expectUsualCall(caller, other.url());
  }
  EXPECT_EQ(one.connections(), 1U);
  EXPECT_EQ(other.connections(), 1U);
}

TEST(RequestHead, AfterConnectionCloseComesOnANewConnection) {
  ScriptedServer server(usualReply());
  const std::string body = wire::result({wire::doubleRow({kUsualValue})});
  server.onRequest({send("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
                         std::to_string(body.size()) + "\r\n\r\n" + body)});
  Caller caller;
  expectUsualCall(caller, server.url());
  expectUsualCall(caller, server.url());
  EXPECT_EQ(server.connections(), 2U);
}

TEST(RequestBody, OfNoInputsAndNoOutputsIsTwoBytes) {
  Exchange exchange;
  EXPECT_EQ(exchange.bodyWith({}), std::string("\x08\x00", 2));
}

TEST(RequestBody, StartsWithTheNumberOfOutputs) {
  struct CountRow {
    std::uint32_t outputs;
    std::string body;
  };
  const CountRow rows[] = {
      {1, "\x08\x01"},
      {127, "\x08\x7F"},
      {128, "\x08\x80\x01"},
      {0x7FFFFFFF, "\x08\xFF\xFF\xFF\xFF\x07"},
      // From 2^31 up as the negative number with these bits.
      {0x80000000, "\x08\x80\x80\x80\x80\xF8\xFF\xFF\xFF\xFF\x01"},
      {0xFFFFFFFF, "\x08\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x01"},
  };
  Exchange exchange;
  for (const CountRow& row : rows) {
    SCOPED_TRACE(row.outputs);
    Caller& caller = exchange.caller();
    EXPECT_EQ(runtime().feval(caller.context(), exchange.server().url().c_str(),
                              row.outputs, nullptr, 0, nullptr),
              ORB_FAILURE);
    EXPECT_EQ(caller.lastError(), countMismatch(0, row.outputs));
    EXPECT_EQ(exchange.server().requests().back().body, row.body);
  }
}

TEST(RequestBody, HasNoInputsForANullListOrANegativeNumber) {
  Exchange exchange;
  const Array scalar(orbCreateDoubleScalar(1));
  const orbArray inputs[] = {scalar};
  const auto bodyWith = [&exchange](std::uint32_t count, const orbArray* list) {
    EXPECT_EQ(runtime().feval(exchange.caller().context(),
                              exchange.server().url().c_str(), 0, nullptr, count, list),
              ORB_OK);
    return exchange.server().requests().back().body;
  };
  EXPECT_EQ(bodyWith(3, nullptr), wire::params(0, {}));
  EXPECT_EQ(bodyWith(0, inputs), wire::params(0, {}));
  EXPECT_EQ(bodyWith(0x80000000, inputs), wire::params(0, {}));
  EXPECT_EQ(bodyWith(0xFFFFFFFF, inputs), wire::params(0, {}));
  EXPECT_EQ(bodyWith(1, inputs), wire::params(0, {wire::doubleRow({1})}));
}

TEST(RequestBody, OfEveryClassIsExact) {
  Exchange exchange;
  for (const Sample& sample : samples()) {
    SCOPED_TRACE(sample.name);
    EXPECT_EQ(exchange.bodyWith({sample.make()}), wire::params(0, {sample.message()}));
  }
}

TEST(RequestBody, OfAllClassesTogetherIsExact) {
  Exchange exchange;
  std::vector<Array> arrays;
  std::vector<orbArray> inputs;
  std::vector<std::string> messages;
  for (const Sample& sample : samples()) {
    arrays.push_back(sample.make());
    inputs.push_back(arrays.back());
    messages.push_back(sample.message());
  }
  EXPECT_EQ(exchange.bodyWith(inputs), wire::params(0, messages));
}

TEST(RequestBody, OfEveryClassIsReadByAnotherImplementation) {
  const std::string expected[] = {
      R"(type: UINT8 dimension: 1 dimension: 3 uint8 { elements: "\000\001\377" })",
      R"(type: UINT8 dimension: 1 dimension: 3 uint8 { elements: "\000\001\377" )"
      R"(imag_elements: "\002\003\200" })",
      R"(type: INT8 dimension: 1 dimension: 3 int8 { elements: "\000\377\200" })",
      R"(type: INT8 dimension: 1 dimension: 3 int8 { elements: "\000\377\200" )"
      R"(imag_elements: "\177\001\002" })",
      "type: UINT16 dimension: 1 dimension: 3 uint16 { elements: 0 elements: 1 "
      "elements: 65535 }",
      "type: UINT16 dimension: 1 dimension: 3 uint16 { elements: 0 elements: 1 "
      "elements: 65535 imag_elements: 2 imag_elements: 300 imag_elements: 32768 }",
      "type: INT16 dimension: 1 dimension: 3 int16 { elements: 0 elements: -1 "
      "elements: -32768 }",
      "type: INT16 dimension: 1 dimension: 3 int16 { elements: 0 elements: -1 "
      "elements: -32768 imag_elements: 2 imag_elements: 300 imag_elements: 32767 }",
      "type: UINT32 dimension: 1 dimension: 3 uint32 { elements: 0 elements: 1 "
      "elements: 4294967295 }",
      "type: UINT32 dimension: 1 dimension: 3 uint32 { elements: 0 elements: 1 "
      "elements: 4294967295 imag_elements: 2 imag_elements: 3 "
      "imag_elements: 2147483648 }",
      "type: INT32 dimension: 1 dimension: 3 int32 { elements: 0 elements: -1 "
      "elements: -2147483648 }",
      "type: INT32 dimension: 1 dimension: 3 int32 { elements: 0 elements: -1 "
      "elements: -2147483648 imag_elements: 2 imag_elements: 3 "
      "imag_elements: 2147483647 }",
      "type: UINT64 dimension: 1 dimension: 3 uint64 { elements: 0 elements: 1 "
      "elements: 18446744073709551615 }",
      "type: UINT64 dimension: 1 dimension: 3 uint64 { elements: 0 elements: 1 "
      "elements: 18446744073709551615 imag_elements: 2 imag_elements: 300 "
      "imag_elements: 2147483648 }",
      "type: INT64 dimension: 1 dimension: 3 int64 { elements: 0 elements: -1 "
      "elements: -9223372036854775808 }",
      "type: INT64 dimension: 1 dimension: 3 int64 { elements: 0 elements: -1 "
      "elements: -9223372036854775808 imag_elements: 2 imag_elements: 300 "
      "imag_elements: 9223372036854775807 }",
      "type: SINGLE dimension: 1 dimension: 3 single { elements: 1.5 elements: -inf "
      "elements: nan }",
      "type: SINGLE dimension: 1 dimension: 3 single { elements: 1.5 elements: -inf "
      "elements: nan imag_elements: -0.0 imag_elements: 1.4013e-45 imag_elements: 0.0 }",
      "type: DOUBLE dimension: 1 dimension: 3 qxdouble { elements: 1.5 elements: -inf "
      "elements: nan }",
      "type: DOUBLE dimension: 1 dimension: 3 qxdouble { elements: 1.5 elements: -inf "
      "elements: nan imag_elements: -0.0 imag_elements: 5e-324 imag_elements: 0.0 }",
      "type: LOGICAL dimension: 1 dimension: 3 logical { elements: false elements: true "
      "elements: true }",
      "type: CHAR dimension: 1 dimension: 3 qxchar { elements: 65 elements: 0 "
      "elements: 55357 }",
      R"(type: STRUCT dimension: 1 dimension: 2 struct_ { field_names: "x" )"
      R"(field_names: "y" )"
      "elements { type: DOUBLE dimension: 1 dimension: 1 qxdouble { elements: 2.0 } } "
      "elements { type: CHAR dimension: 1 dimension: 2 qxchar { elements: 97 "
      "elements: 98 } } "
      "elements { type: DOUBLE dimension: 0 dimension: 0 } "
      "elements { type: DOUBLE dimension: 0 dimension: 0 } }",
      "type: CELL dimension: 1 dimension: 3 cell { "
      "elements { type: DOUBLE dimension: 1 dimension: 1 qxdouble { elements: 2.0 } } "
      "elements { type: CELL dimension: 1 dimension: 1 cell { elements { type: CHAR "
      "dimension: 1 dimension: 2 qxchar { elements: 97 elements: 98 } } } } "
      "elements { type: DOUBLE dimension: 0 dimension: 0 } }",
      "type: SPARSE dimension: 3 dimension: 2 sparse { type: DOUBLE ir: 1 ir: 2 jc: 0 "
      "jc: 1 jc: 2 qxsparsedouble { elements: 1.5 elements: -2.0 } }",
      "type: SPARSE dimension: 3 dimension: 2 sparse { type: DOUBLE ir: 1 ir: 2 jc: 0 "
      "jc: 1 jc: 2 qxsparsedouble { elements: 1.5 elements: -2.0 imag_elements: 3.0 "
      "imag_elements: 4.0 } }",
      "type: SPARSE dimension: 3 dimension: 2 sparse { type: LOGICAL ir: 1 ir: 2 jc: 0 "
      "jc: 1 jc: 2 logical { elements: true elements: false } }",
  };
  Exchange exchange;
  std::vector<std::string> bodies;
  for (const Sample& sample : samples())
    bodies.push_back(exchange.bodyWith({sample.make()}));
  ASSERT_EQ(bodies.size(), std::size(expected));
  const std::vector<std::string> texts = decode(bodies);
  for (std::size_t i = 0; i < bodies.size(); ++i) {
    EXPECT_EQ(texts[i], "nargout: 0 rhs { " + std::string(expected[i]) + " }");
  }
}

TEST(RequestBody, OfSeveralInputsIsReadByAnotherImplementation) {
  ScriptedServer server(usualReply());
  Caller caller;
  std::vector<Array> outputs(1);
  const Array text(orbCreateString("a"));
  const Array truth(orbCreateLogicalScalar(true));
  EXPECT_EQ(caller.call(server.url(), outputs, {text, truth}), success());
  EXPECT_THAT(decode({server.requests().at(0).body}),
              ElementsAre("nargout: 1 "
                          "rhs { type: CHAR dimension: 1 dimension: 1 qxchar { "
                          "elements: 97 } } "
                          "rhs { type: LOGICAL dimension: 1 dimension: 1 logical { "
                          "elements: true } }"));
}

struct EmptyRow {
  std::string name;
  Array array;
  std::string message;
};

/// An array without elements of every class. The write-back of char, 16-bit, struct and
/// cell arrays makes their payload present; the others have none.
std::vector<EmptyRow> emptyArrays() {
  std::vector<EmptyRow> rows;
  for (int type = wire::kUint8; type <= wire::kDouble; ++type) {
    const bool is16Bit = type == wire::kUint16 || type == wire::kInt16;
    const std::string shape = wire::type(type) + wire::dimensions({0, 3});
    rows.push_back(
        {std::to_string(type),
         Array(orbCreateNumericMatrix(0, 3, static_cast<orbClassID>(type), orbCOMPLEX)),
         is16Bit ? shape + wire::bytes(wire::payloadField(type), "") : shape});
  }
  const char* names[] = {"a"};
  rows.push_back({"logical", Array(orbCreateLogicalMatrix(0, 0)),
                  wire::type(wire::kLogical) + wire::dimensions({0, 0})});
  rows.push_back(
      {"char", Array(orbCreateString("")), wire::array(wire::kChar, {0, 0}, "")});
  rows.push_back({"struct without fields", Array(orbCreateStructMatrix(0, 0, 0, nullptr)),
                  wire::array(wire::kStruct, {0, 0}, "")});
  rows.push_back({"struct", Array(orbCreateStructMatrix(0, 2, 1, names)),
                  wire::array(wire::kStruct, {0, 2}, wire::bytes(1, "a"))});
  rows.push_back({"struct of elements without fields",
                  Array(orbCreateStructMatrix(1, 2, 0, nullptr)),
                  wire::array(wire::kStruct, {1, 2}, "")});
  rows.push_back(
      {"cell", Array(orbCreateCellMatrix(0, 0)), wire::array(wire::kCell, {0, 0}, "")});
  // Sparse arrays have column starts at any size, and the type of their values.
  rows.push_back({"sparse", Array(orbCreateSparse(0, 0, 0, orbREAL)),
                  wire::array(wire::kSparse, {0, 0},
                              wire::number(1, 0) + wire::bytes(3, wire::varints({0})) +
                                  wire::bytes(16, ""))});
  rows.push_back({"sparse logical", Array(orbCreateSparseLogicalMatrix(0, 0, 0)),
                  wire::array(wire::kSparse, {0, 0},
                              wire::number(1, 1) + wire::bytes(3, wire::varints({0})) +
                                  wire::bytes(17, ""))});
  return rows;
}

TEST(RequestBody, OfArraysWithoutElementsIsExact) {
  Exchange exchange;
  for (const EmptyRow& row : emptyArrays()) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(exchange.bodyWith({row.array}), wire::params(0, {row.message}));
  }
}

TEST(RequestBody, KeepsEveryDimension) {
  Exchange exchange;
  const size_t extents[] = {1, 2, 1, 1};
  const Array array(orbCreateNumericArray(4, extents, orbUINT8_CLASS, orbREAL));
  EXPECT_EQ(exchange.bodyWith({array}),
            wire::params(0, {wire::array(wire::kUint8, {1, 2, 1, 1},
                                         wire::elements(std::string(2, '\0')))}));
}

TEST(RequestBody, OfAnAddedFieldCarriesAnEmptyPayloadOfUint8) {
  Exchange exchange;
  const char* names[] = {"a"};
  const Array array(orbCreateStructMatrix(1, 2, 1, names));
  ASSERT_EQ(orbAddField(array, "b"), 1);
  const std::string created = wire::emptySlot();
  const std::string added = wire::emptySlot() + wire::bytes(16, wire::bytes(1, ""));
  EXPECT_EQ(exchange.bodyWith({array}),
            wire::params(
                0, {wire::structRow(2, {"a", "b"}, {created, added, created, added})}));
}

TEST(RequestBody, OfANestedArrayHoldsItWhole) {
  Exchange exchange;
  Array nested(orbCreateString("ab"));
  std::string message = wire::charRow(u"ab");
  for (int i = 0; i < 200; ++i) {
    nested = cellRow(std::move(nested));
    message = wire::cellRow({message});
  }
  EXPECT_EQ(exchange.bodyWith({nested}), wire::params(0, {message}));
}

TEST(RequestBody, HoldsTheSameArrayTwice) {
  Exchange exchange;
  for (const Sample& sample : samples()) {
    SCOPED_TRACE(sample.name);
    const Array array = sample.make();
    EXPECT_EQ(exchange.bodyWith({array, array}),
              wire::params(0, {sample.message(), sample.message()}));
  }
}

// Each input is written back just before it is encoded: a parent sent before the handle
// of its child carries the child as it was.
TEST(RequestBody, OfParentAndChildDependsOnTheirOrder) {
  Exchange exchange;
  const std::string oldParent = wire::cellRow({wire::charRow(u"old")});
  const std::string newParent = wire::cellRow({wire::charRow(u"new")});
  const std::string newChild = wire::charRow(u"new");
  for (const bool parentFirst : {true, false}) {
    SCOPED_TRACE(parentFirst);
    const Array parent = cellRow(charRow(u"old"));
    const Array child(orbGetCell(parent, 0));
    std::u16string(u"new").copy(orbGetChars(child), 3);
    if (parentFirst) {
      EXPECT_EQ(exchange.bodyWith({parent, child}),
                wire::params(0, {oldParent, newChild}));
    } else {
      EXPECT_EQ(exchange.bodyWith({child, parent}),
                wire::params(0, {newChild, newParent}));
    }
    EXPECT_EQ(exchange.bodyWith({parent}), wire::params(0, {newParent}));
  }
}

TEST(RequestBody, HoldsNoBufferThatWasNotWrittenBack) {
  Exchange exchange;
  const Array parent = structOf({"x"});
  const Array value = charRow(u"old");
  orbSetField(parent, 0, "x", value);
  std::u16string(u"new").copy(orbGetChars(value), 3);
  EXPECT_EQ(exchange.bodyWith({parent}),
            wire::params(0, {wire::structRow(1, {"x"}, {wire::charRow(u"old")})}));
  orbSetField(parent, 0, "x", value);
  EXPECT_EQ(exchange.bodyWith({parent}),
            wire::params(0, {wire::structRow(1, {"x"}, {wire::charRow(u"new")})}));
}

TEST(RequestBody, HoldsAtOnceWhatLiesInTheMessageOfAChild) {
  Exchange exchange;
  const Array parent = cellRow(doubleRow({1}));
  orbGetPr(Array(orbGetCell(parent, 0)))[0] = 2;
  EXPECT_EQ(exchange.bodyWith({parent}),
            wire::params(0, {wire::cellRow({wire::doubleRow({2})})}));
}

TEST(FevalInputs, AreUnchangedByEveryOutcome) {
  ScriptedServer server(usualReply());
  Caller caller;
  const Script answers[] = {
      usualReply(),
      {send(wire::reply(wire::error("no", "a:b")))},
      {send(wire::reply(""))},
      {send("HTTP/1.1 500 Oh\r\nContent-Length: 0\r\n\r\n")},
      {send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n"), close()},
  };
  for (const Sample& sample : samples()) {
    SCOPED_TRACE(sample.name);
    const Array array = sample.make();
    for (const Script& answer : answers) {
      server.onRequest(answer);
      std::vector<Array> outputs(1);
      caller.call(server.url(), outputs, {array});
      EXPECT_EQ(server.requests().back().body, wire::params(1, {sample.message()}));
    }
    EXPECT_EQ(orbGetScalar(array), orbGetScalar(sample.make()));
    EXPECT_EQ(dimensionsOf(array), dimensionsOf(sample.make()));
    EXPECT_EQ(orbIsComplex(array), orbIsComplex(sample.make()));
  }
}

TEST(FevalInputs, StayReadableAtTheSamePlace) {
  Exchange exchange;
  const Array numbers = doubleRow({1, 2});
  const Array text = charRow(u"ab");
  const double* first = orbGetPr(numbers);
  const char16_t* unit = orbGetChars(text);
  exchange.bodyWith({numbers, text});
  EXPECT_EQ(orbGetPr(numbers), first);
  EXPECT_EQ(orbGetChars(text), unit);
  EXPECT_THAT(elementsOf<double>(numbers), ElementsAre(1, 2));
  EXPECT_EQ(unitsOf(text), u"ab");
}

TEST(FevalInputs, MayBeOutputsOfTheLastCall) {
  Exchange exchange;
  for (const Sample& sample : samples()) {
    SCOPED_TRACE(sample.name);
    const Array array = exchange.receive(sample.message());
    EXPECT_EQ(exchange.bodyWith({array}), wire::params(0, {sample.message()}));
  }
}

TEST(FevalInputs, MayLieInTheSlotsOfTheOutputs) {
  Exchange exchange;
  exchange.server().onRequest({send(wire::reply(wire::result({wire::doubleRow({2})})))});
  orbArray slot = orbCreateDoubleScalar(1);
  const Array input(slot);
  EXPECT_EQ(runtime().feval(exchange.caller().context(), exchange.server().url().c_str(),
                            1, &slot, 1, &slot),
            ORB_OK);
  const Array output(slot);
  EXPECT_EQ(orbGetScalar(input), 1);
  EXPECT_EQ(orbGetScalar(output), 2);
}

}  // namespace
}  // namespace orb::test
