// SPDX-License-Identifier: MIT
#include "http/http_response.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <boost/lexical_cast.hpp>
#include <new>
#include <stdexcept>
#include <type_traits>

#include "unit/http/failing_realloc.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ThrowsMessage;

constexpr uint32_t kHighestLimit = 4294967295;

std::string bodyOf(const HttpResponse& response) {
  return std::string(reinterpret_cast<const char*>(response.getBody()),
                     response.getBodySize());
}

/// The bytes of a body that came under a limit.
std::string keptOf(const HttpResponse& response, size_t limit) {
  return std::string(reinterpret_cast<const char*>(response.getBody()),
                     std::min(response.getBodySize(), uint64_t{limit}));
}

std::string reasonPhraseAfter(const std::string& statusLine) {
  HttpResponse response(kHighestLimit);
  response.addHeader(statusLine);
  return response.getStatusMessage();
}

/// Whether a body is accepted under a limit, after a status line and header lines.
bool accepts(uint32_t limitBytes, const std::vector<std::string>& lines) {
  HttpResponse response(limitBytes);
  response.addHeader("HTTP/1.1 200 OK\r\n");
  for (const std::string& line : lines) response.addHeader(line);
  return response.appendBody("x", 1);
}

static_assert(!std::is_copy_constructible_v<HttpResponse> &&
              !std::is_copy_assignable_v<HttpResponse>);

TEST(HttpResponse, StartsEmpty) {
  const HttpResponse response(0);
  EXPECT_EQ(response.getStatusCode(), 0u);
  EXPECT_EQ(response.getStatusMessage(), "");
  EXPECT_NE(response.getBody(), nullptr);
  EXPECT_EQ(response.getBodySize(), 0u);
}

TEST(HttpResponse, KeepsTheStatusCode) {
  HttpResponse response(0);
  response.setStatusCode(4294967295);
  EXPECT_EQ(response.getStatusCode(), 4294967295u);
}

TEST(HttpResponse, ThrowsBadAllocWithoutMemoryForABody) {
  WatchedRealloc watched;
  watched.failingSize = 1;
  EXPECT_THROW(HttpResponse(0), std::bad_alloc);
}

struct StatusLine {
  std::string line;
  std::string reasonPhrase;
};

class AddStatusLine : public ::testing::TestWithParam<StatusLine> {};

TEST_P(AddStatusLine, SetsTheReasonPhrase) {
  EXPECT_EQ(reasonPhraseAfter(GetParam().line), GetParam().reasonPhrase);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, AddStatusLine,
    ::testing::Values(
        StatusLine{"HTTP/1.1 404 Not Found\r\n", "Not Found\r\n"},
        StatusLine{"HTTP/1.1 500 Internal Server Error\r\n", "Internal Server Error\r\n"},
        StatusLine{"HTTP/1.1 200 OK", "OK"}, StatusLine{"HTTP/1.1 200 OK\n", "OK\n"},
        StatusLine{"HTTP/1.1 200 \r\n", "\r\n"}, StatusLine{"HTTP/1.1 200 ", ""},
        StatusLine{"HTTP/1.1 200\r\n", ""}, StatusLine{"HTTP/1.1 200", ""},
        StatusLine{"HTTP/1.1\r\n", ""}, StatusLine{"", ""}, StatusLine{" ", ""},
        StatusLine{"  rest", "rest"},
        StatusLine{"HTTP/1.1  404 Not Found\r\n", "404 Not Found\r\n"},
        StatusLine{"HTTP/1.1 200  two  spaces \r\n", " two  spaces \r\n"},
        StatusLine{"HTTP/1.1\t200 OK\r\n", ""},
        StatusLine{std::string("HTTP/1.1 200 a\0b\r\n", 18),
                   std::string("a\0b\r\n", 5)}));

TEST(AddHeader, TakesTheReasonPhraseFromTheFirstLineOnly) {
  HttpResponse response(0);
  response.addHeader("HTTP/1.1 100 Continue\r\n");
  response.addHeader("HTTP/1.1 200 OK\r\n");
  EXPECT_EQ(response.getStatusMessage(), "Continue\r\n");
}

TEST(AddHeader, ReadsALengthInTheStatusLineToo) {
  HttpResponse response(6);
  response.addHeader("HTTP/1.1 200 Content-Length: 7\r\n");
  EXPECT_EQ(response.getStatusMessage(), "Content-Length: 7\r\n");
  EXPECT_FALSE(response.appendBody("x", 1));
}

struct LengthLine {
  std::string line;
  uint32_t length;
};

class AddLengthLine : public ::testing::TestWithParam<LengthLine> {};

TEST_P(AddLengthLine, SetsTheAnnouncedLength) {
  const auto& [line, length] = GetParam();
  EXPECT_TRUE(accepts(length, {line}));
  if (length > 0) {
    EXPECT_FALSE(accepts(length - 1, {line}));
  }
  // The last line counts.
  EXPECT_FALSE(accepts(length, {line, "Content-Length: 4294967296\r\n"}));
  EXPECT_TRUE(accepts(length, {"Content-Length: 4294967296\r\n", line}));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, AddLengthLine,
    ::testing::Values(
        LengthLine{"Content-Length: 100\r\n", 100},
        LengthLine{"Content-Length:100\r\n", 100}, LengthLine{"Content-Length: 100", 100},
        LengthLine{"Content-Length:100\n", 100}, LengthLine{"Content-Length:  +42 ", 42},
        LengthLine{"Content-Length: \t\v\f 42 \t\v\f\r\n", 42},
        LengthLine{"Content-Length: 0\r\n", 0}, LengthLine{"Content-Length: -0\r\n", 0},
        LengthLine{"Content-Length: 00000000000000000000042\r\n", 42},
        LengthLine{"Content-Length: 4294967295\r\n", kHighestLimit},
        LengthLine{"Content-Length: -18446744073709551615\r\n", 1},
        LengthLine{"Content-Length: 7\r\nabc", 7},
        LengthLine{"X-Content-Length: 7\r\n", 7},
        // Mentioned, but not with a colon right behind.
        LengthLine{"X-Content-Length-Hint: 5\r\n", 0},
        LengthLine{"Content-Length : 5\r\n", 0}, LengthLine{"Content-Length\r\n", 0}));

class AddOtherLine : public ::testing::TestWithParam<std::string> {};

TEST_P(AddOtherLine, LeavesTheAnnouncedLength) {
  EXPECT_TRUE(accepts(0, {GetParam()}));
  EXPECT_TRUE(accepts(100, {"Content-Length: 100\r\n", GetParam()}));
  EXPECT_FALSE(accepts(99, {"Content-Length: 100\r\n", GetParam()}));
}

INSTANTIATE_TEST_SUITE_P(Lines, AddOtherLine,
                         ::testing::Values("content-length: 5\r\n",
                                           "CONTENT-LENGTH: 5\r\n",
                                           "Content-length: abc\r\n",
                                           "Content Length: 5\r\n",
                                           "Transfer-Encoding: chunked\r\n", "\r\n", ""));

TEST(AddHeader, KeepsAllBitsOfTheAnnouncedLength) {
  EXPECT_FALSE(accepts(kHighestLimit, {"Content-Length: 4294967296\r\n"}));
  EXPECT_FALSE(accepts(kHighestLimit, {"Content-Length: 18446744073709551615\r\n"}));
  EXPECT_FALSE(accepts(kHighestLimit, {"Content-Length: -1\r\n"}));
}

class AddUnreadableLength : public ::testing::TestWithParam<std::string> {};

TEST_P(AddUnreadableLength, ThrowsBadLexicalCast) {
  HttpResponse response(kHighestLimit);
  EXPECT_THAT([&] { response.addHeader(GetParam()); },
              ThrowsMessage<boost::bad_lexical_cast>(
                  "bad lexical cast: source type value could not be interpreted as "
                  "target"));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, AddUnreadableLength,
    ::testing::Values("Content-Length: abc\r\n", "Content-Length: \r\n",
                      "Content-Length:\r\n", "Content-Length:", "Content-Length: \t ",
                      "Content-Length: +\r\n", "Content-Length: -\r\n",
                      "Content-Length: +-1\r\n", "Content-Length: 4 2\r\n",
                      "Content-Length: 0x10\r\n", "Content-Length: 1.0\r\n",
                      "Content-Length: 1e3\r\n", "Content-Length: 42, 42\r\n",
                      "Content-Length: 42\rx", "Content-Length: 18446744073709551616\r\n",
                      "Content-Length: 100000000000000000000\r\n",
                      "Content-Length: 1 Content-Length: 2\r\n",
                      "X-Content-Length: abc\r\n"));

class AddPlainTransferEncoding : public ::testing::TestWithParam<std::string> {};

TEST_P(AddPlainTransferEncoding, IsTaken) {
  HttpResponse response(100);
  response.addHeader(GetParam());
  EXPECT_TRUE(response.appendBody("x", 1));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, AddPlainTransferEncoding,
    ::testing::Values("Transfer-Encoding: chunked\r\n", "transfer-encoding:CHUNKED\r\n",
                      "TRANSFER-ENCODING: Identity\r\n", "Transfer-Encoding:",
                      "Transfer-Encoding: \t\r\n", "Transfer-Encoding: ,, chunked ,\r\n",
                      "Transfer-Encoding: identity\t,chunked\n",
                      // Lines that mean something else, or nothing, to libcurl.
                      "X-Transfer-Encoding: gzip\r\n", "Transfer-Encoding : gzip\r\n",
                      " Transfer-Encoding: gzip\r\n", "Content-Encoding: gzip\r\n",
                      "TE: gzip\r\n", "Transfer-Encoding\r\n"));

class AddOtherTransferEncoding : public ::testing::TestWithParam<std::string> {};

TEST_P(AddOtherTransferEncoding, Throws) {
  HttpResponse response(100);
  EXPECT_THAT([&] { response.addHeader(GetParam()); },
              ThrowsMessage<std::runtime_error>(
                  "Unrecognized or bad HTTP Content or Transfer-Encoding"));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, AddOtherTransferEncoding,
    ::testing::Values(
        "Transfer-Encoding: gzip\r\n", "transfer-encoding:GZIP",
        "TRANSFER-ENCODING:x-gzip\r\n", "Transfer-Encoding: deflate\n",
        "Transfer-Encoding: br\r\n", "Transfer-Encoding: zstd\r\n",
        "Transfer-Encoding: gzip, chunked\r\n", "Transfer-Encoding: chunked, gzip\r\n",
        "Transfer-Encoding: chunked,,\tgzip,chunked\r\n",
        "Transfer-Encoding: gzip gzip\r\n", "Transfer-Encoding: chunked gzip\r\n",
        "Transfer-Encoding: chunked;a=b\r\n", "Transfer-Encoding: other\r\n",
        std::string("Transfer-Encoding: gzip\0a\r\n", 27)));

struct Announced {
  std::string length;
  bool accepted;
};

class AppendBody : public ::testing::TestWithParam<Announced> {};

// The announced length alone decides, not the bytes that come. Those behind the limit are
// counted only.
TEST_P(AppendBody, JudgesTheAnnouncedLengthAgainstTheLimit) {
  HttpResponse response(100);
  response.addHeader("HTTP/1.1 200 OK\r\n");
  response.addHeader("Content-Length: " + GetParam().length + "\r\n");
  const std::string body(150, 'x');
  EXPECT_EQ(response.appendBody("", 0), GetParam().accepted);
  EXPECT_EQ(response.appendBody(body.data(), body.size()), GetParam().accepted);
  EXPECT_EQ(response.getBodySize(), GetParam().accepted ? 150u : 0u);
  EXPECT_EQ(keptOf(response, 100), GetParam().accepted ? body.substr(50) : "");
}

INSTANTIATE_TEST_SUITE_P(Lengths, AppendBody,
                         ::testing::Values(Announced{"0", true}, Announced{"99", true},
                                           Announced{"100", true},
                                           Announced{"101", false}));

TEST(AppendBody, NeverRefusesAnUnannouncedBodyAndKeepsItUpToTheLimit) {
  for (uint32_t limit = 0; limit < 8; ++limit) {
    HttpResponse response(limit);
    WatchedRealloc watched;
    EXPECT_TRUE(response.appendBody("abc", 3));
    EXPECT_TRUE(response.appendBody("", 0));
    EXPECT_TRUE(response.appendBody("def", 3));
    EXPECT_EQ(response.getBodySize(), 6u);
    EXPECT_EQ(keptOf(response, limit), std::string("abcdef").substr(0, limit));
    for (const size_t size : watched.sizes) EXPECT_LE(size, limit);
  }
}

TEST(AppendBody, ReadsNoBytesOfLengthZero) {
  HttpResponse response(0);
  EXPECT_TRUE(response.appendBody(nullptr, 0));
  EXPECT_EQ(response.getBodySize(), 0u);
}

TEST(AppendBody, JoinsChunksByteForByte) {
  HttpResponse response(kHighestLimit);
  std::string body;
  for (char c = 0; c < 100; ++c) {
    const std::string chunk(static_cast<size_t>(c), c);
    ASSERT_TRUE(response.appendBody(chunk.data(), chunk.size()));
    body += chunk;
  }
  EXPECT_EQ(bodyOf(response), body);
}

TEST(AppendBody, TakesTheAnnouncedLengthAtOnce) {
  HttpResponse response(kHighestLimit);
  response.addHeader("HTTP/1.1 200 OK\r\n");
  response.addHeader("Content-Length: 100\r\n");
  WatchedRealloc watched;
  for (int i = 0; i < 100; ++i) response.appendBody("x", 1);
  EXPECT_THAT(watched.sizes, ElementsAre(100));
  response.appendBody("y", 1);  // more than was announced
  EXPECT_THAT(watched.sizes, ElementsAre(100, 150));
}

TEST(AppendBody, GrowsAnUnannouncedBodyByHalf) {
  HttpResponse response(kHighestLimit);
  const std::string chunk(16384, 'x');
  WatchedRealloc watched;
  for (int i = 0; i < 1000; ++i) response.appendBody(chunk.data(), chunk.size());
  EXPECT_EQ(response.getBodySize(), 16384000u);
  EXPECT_LT(watched.sizes.size(), 25u);
}

TEST(AppendBody, GrowsTheBlockAtMostOnceAChunk) {
  HttpResponse response(kHighestLimit);
  WatchedRealloc watched;
  response.appendBody("abc", 3);
  response.appendBody("", 0);
  response.appendBody("d", 1);
  response.appendBody("efghi", 5);
  EXPECT_THAT(watched.sizes, ElementsAre(3, 4, 9));
}

TEST(AppendBody, TakesWhatHasComeWhereTheAnnouncedLengthDoesNotFit) {
  HttpResponse response(100);
  response.addHeader("HTTP/1.1 200 OK\r\n");
  response.addHeader("Content-Length: 100\r\n");
  WatchedRealloc watched;
  watched.failingSize = 100;
  EXPECT_TRUE(response.appendBody("abc", 3));
  EXPECT_TRUE(response.appendBody("de", 2));
  EXPECT_EQ(bodyOf(response), "abcde");
  EXPECT_THAT(watched.sizes, ElementsAre(3, 5));
}

TEST(AppendBody, KeepsWhatItHasWhenTheBlockCannotGrow) {
  HttpResponse response(kHighestLimit);
  response.appendBody("abc", 3);
  {
    WatchedRealloc watched;
    watched.failingSize = 6;
    EXPECT_THROW(response.appendBody("def", 3), std::bad_alloc);
  }
  EXPECT_EQ(bodyOf(response), "abc");
  EXPECT_TRUE(response.appendBody("ghi", 3));
  EXPECT_EQ(bodyOf(response), "abcghi");
}

}  // namespace
}  // namespace orb::test
