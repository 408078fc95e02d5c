// SPDX-License-Identifier: MIT
// The length that a reply announces, and the response size limit.
#include "client/transport/matrix.h"

namespace orb::test {
namespace {

constexpr const char* kNoNumber =
    "bad lexical cast: source type value could not be interpreted as target";
// libcurl's own answer to a length that does not start with a number.
constexpr const char* kWeird = "Weird server reply";

/// A body of one output with exactly this many bytes, of 20 to 127 or at least 200.
std::string bodyOf(std::size_t size) {
  const std::string array = wire::array(wire::kUint8, {1, 1}, wire::elements("x"));
  // An unknown field fills up what is missing.
  std::string body;
  for (std::size_t padding = size; body.size() != size; --padding) {
    body = wire::result({array + wire::bytes(100, std::string(padding, ' '))});
  }
  return body;
}

/// A reply with these header lines and a body that ends with the connection, as far as
/// they do not say otherwise.
Script replyWith(const std::string& lines, std::size_t size = 42) {
  return {send("HTTP/1.1 200 OK\r\n" + lines + "\r\n" + bodyOf(size)), close()};
}

Settings limitedTo(std::uint32_t bytes) {
  Settings settings;
  settings.limitBytes = bytes;
  return settings;
}

std::vector<Row> lengths() {
  return {
      {"Plain", replyWith("Content-Length: 42\r\n"), success()},
      {"SignAndBlanks", replyWith("Content-Length:  +42 \r\n"), success()},
      {"Tabs", replyWith("Content-Length:\t42\t\r\n"), success()},
      {"NoBlank", replyWith("Content-Length:42\r\n"), success()},
      {"LeadingZeros", replyWith("Content-Length: 00000000000000000000042\r\n"),
       success()},
      {"LowerCase", replyWith("content-length: 42\r\n"), success()},
      {"None", replyWith(""), success()},
      {"Twice", replyWith("Content-Length: 42\r\nContent-Length: 42\r\n"), success()},
      {"NoNumber", replyWith("Content-Length: abc\r\n"), genericError(kWeird)},
      {"Empty", replyWith("Content-Length:\r\n"), genericError(kWeird)},
      {"NumberAndMore", replyWith("Content-Length: 42 bytes\r\n"),
       genericError(kNoNumber)},
      {"Fraction", replyWith("Content-Length: 42.0\r\n"), genericError(kNoNumber)},
      {"Hexadecimal", replyWith("Content-Length: 0x2A\r\n"), genericError(kNoNumber)},
      {"List", replyWith("Content-Length: 42, 42\r\n"), genericError(kNoNumber)},
      {"Of21Digits", replyWith("Content-Length: 100000000000000000000\r\n"),
       genericError(kNoNumber)},
      {"TwoToThe64th", replyWith("Content-Length: 18446744073709551616\r\n"),
       genericError(kNoNumber)},
      {"BelowTwoToThe64th", replyWith("Content-Length: 18446744073709551615\r\n"),
       refusal()},
      {"TwoToThe63rd", replyWith("Content-Length: 9223372036854775808\r\n"), refusal()},
      {"Negative", replyWith("Content-Length: -42\r\n"), genericError(kWeird)},
      {"AnothersNoNumber", replyWith("X-Content-Length: abc\r\n"),
       genericError(kNoNumber)},
      {"AnothersNegativeNumber", replyWith("X-Content-Length: -42\r\n"), refusal()},
      {"AnothersEmptyNumber", replyWith("X-Content-Length:\r\n"),
       genericError(kNoNumber)},
      {"AnothersSign", replyWith("X-Content-Length: +\r\n"), genericError(kNoNumber)},
      {"AnothersNumber", replyWith("X-Content-Length: 42\r\n"), success()},
      {"AnothersNumberAboveTheLimit", replyWith("X-Content-Length: 67108865\r\n"),
       refusal()},
      {"HintWithoutTheColonForm", replyWith("X-Content-Length-Hint: 5\r\n"), success()},
      {"HintSetsZero",
       replyWith("X-Content-Length: 67108865\r\nX-Content-Length-Hint: 5\r\n"),
       success()},
      {"LaterLineWins", replyWith("X-Content-Length: 67108865\r\nContent-Length: 42\r\n"),
       success()},
      {"InsideAValue", replyWith("A: see Content-Length: 7\r\n"), success()},
      {"InAStatusLine",
       {send("HTTP/1.1 200 Content-Length: x\r\nContent-Length: 42\r\n\r\n" +
             bodyOf(42))},
       genericError(kNoNumber)},
      {"InATrailer",
       {send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2a\r\n" + bodyOf(42) +
             "\r\n0\r\nContent-Length: abc\r\n\r\n")},
       genericError(kNoNumber)},
  };
}

INSTANTIATE_TEST_SUITE_P(Lengths, TransportRow,
                         ::testing::Combine(::testing::ValuesIn(lengths()),
                                            onEveryRoad()),
                         rowName);

std::vector<Row> limits() {
  const auto announced = [](int length, std::size_t size) {
    return replyWith("Content-Length: " + std::to_string(length) + "\r\n", size);
  };
  const auto notFound = [](int length) {
    return Script{
        send("HTTP/1.1 404 Not Found\r\nContent-Length: " + std::to_string(length) +
             "\r\n\r\n" + std::string(static_cast<std::size_t>(length), ' '))};
  };
  return {
      {"Length99Of100", announced(99, 99), success(), limitedTo(100)},
      {"Length100Of100", announced(100, 100), success(), limitedTo(100)},
      {"Length101Of100", announced(101, 101), refusal(), limitedTo(100)},
      {"Length100Of99", announced(100, 100), refusal(), limitedTo(99)},
      {"LongerThanAnnounced", announced(99, 101), success(), limitedTo(100)},
      {"LowerCaseIsNotJudged", replyWith("content-length: 101\r\n", 101), success(),
       limitedTo(100)},
      {"NotFoundWithinTheLimit", notFound(100), httpError(404, "Not Found\r\n"),
       limitedTo(100)},
      {"NotFoundAboveTheLimit", notFound(101), refusal(), limitedTo(100)},
      {"ChunkedAboveTheLimit",
       {send(wire::chunkedReply(bodyOf(200)))},
       success(),
       limitedTo(100)},
      {"UntilTheEndAboveTheLimit", replyWith("", 200), success(), limitedTo(100)},
      {"NotFoundUntilTheEndAboveTheLimit",
       {send("HTTP/1.1 404 Not Found\r\n\r\n" + std::string(200, ' ')), close()},
       httpError(404, "Not Found\r\n"),
       limitedTo(100)},
      {"AnnouncedAboveTheLimitWithoutBody",
       {send("HTTP/1.1 304 Not Modified\r\nContent-Length: 101\r\n\r\n")},
       httpError(304, "Not Modified\r\n"),
       limitedTo(100)},
      {"SuccessAnnouncedAboveTheLimitWithoutBody",
       {send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\nX-Content-Length: 101\r\n\r\n")},
       success(),
       limitedTo(100),
       0},
      {"AnnouncedAboveTheLimitInChunks",
       {send("HTTP/1.1 200 OK\r\nContent-Length: 101\r\nTransfer-Encoding: chunked\r\n"
             "\r\n2a\r\n" +
             bodyOf(42) + "\r\n0\r\n\r\n")},
       refusal(),
       limitedTo(100)},
  };
}

INSTANTIATE_TEST_SUITE_P(Limits, TransportRow,
                         ::testing::Combine(::testing::ValuesIn(limits()), onEveryRoad()),
                         rowName);

}  // namespace
}  // namespace orb::test
