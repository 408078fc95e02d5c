// SPDX-License-Identifier: MIT
// The record of a context's last error.
#include <gtest/gtest.h>

#include <cstring>

#include "client/transport/caller.h"

namespace orb::test {
namespace {

/// A context and a server whose replies make it fail.
class ErrorInfo : public ::testing::Test {
 protected:
  void callFor(const std::string& body) {
    server_.onRequest({send(wire::reply(body))});
    std::vector<Array> outputs(1);
    caller_.call(server_.url(), outputs);
  }

  orbErrorInfo info() {
    orbErrorInfo info;
    std::memset(&info, 0x5A, sizeof info);
    runtime().getLastErrorInfo(caller_.context(), &info);
    return info;
  }

  void destroy(orbErrorInfo& info) { runtime().destroyLastErrorInfo(&info); }

  const std::string threeFrames_ =
      wire::error("no", "a:b", {{"f.k", "f", 12}, {"g.k", "g", -3}, {"", "h", 0}});
  ScriptedServer server_{usualReply()};
  Caller caller_;
};

TEST_F(ErrorInfo, OfAContextThatNeverFailedIsEmpty) {
  expectUsualCall(caller_, server_.url());
  orbErrorInfo record = info();
  EXPECT_EQ(record.type, ORB_HTTP_ERROR);
  EXPECT_STREQ(record.message, "");
  EXPECT_EQ(record.details.http.responseCode, 0U);
  EXPECT_STREQ(record.details.http.responseMessage, "");
  destroy(record);
}

TEST_F(ErrorInfo, OfAServerErrorWithoutFramesHasNoStack) {
  callFor(wire::error("no", "a:b"));
  orbErrorInfo record = info();
  EXPECT_EQ(record.type, ORB_KALDEX_ERROR);
  EXPECT_STREQ(record.message, "Error was thrown while executing KALDEX code");
  EXPECT_STREQ(record.details.kaldex.message, "no");
  EXPECT_STREQ(record.details.kaldex.identifier, "a:b");
  EXPECT_EQ(record.details.kaldex.stack, nullptr);
  EXPECT_EQ(record.details.kaldex.stackDepth, 0U);
  destroy(record);
  EXPECT_EQ(record.details.kaldex.stack, nullptr);
}

TEST_F(ErrorInfo, HasTheFramesInTheOrderReceived) {
  callFor(threeFrames_);
  orbErrorInfo record = info();
  ASSERT_EQ(record.details.kaldex.stackDepth, 3U);
  const orbStackFrame* frames = record.details.kaldex.stack;
  ASSERT_NE(frames, nullptr);
  EXPECT_STREQ(frames[0].file, "f.k");
  EXPECT_STREQ(frames[0].name, "f");
  EXPECT_EQ(frames[0].line, 12);
  EXPECT_STREQ(frames[1].file, "g.k");
  EXPECT_STREQ(frames[1].name, "g");
  EXPECT_EQ(frames[1].line, -3);
  EXPECT_STREQ(frames[2].file, "");
  EXPECT_STREQ(frames[2].name, "h");
  EXPECT_EQ(frames[2].line, 0);
  destroy(record);
}

TEST_F(ErrorInfo, OfFramesWithoutFieldsHasEmptyTexts) {
  callFor(wire::bytes(2, wire::bytes(3, "") + wire::bytes(4, "the report")));
  orbErrorInfo record = info();
  EXPECT_STREQ(record.details.kaldex.message, "");
  EXPECT_STREQ(record.details.kaldex.identifier, "");
  ASSERT_EQ(record.details.kaldex.stackDepth, 1U);
  EXPECT_STREQ(record.details.kaldex.stack[0].file, "");
  EXPECT_STREQ(record.details.kaldex.stack[0].name, "");
  EXPECT_EQ(record.details.kaldex.stack[0].line, 0);
  destroy(record);
}

TEST_F(ErrorInfo, HasAnyNumberOfFrames) {
  callFor(wire::error("no", "a:b", std::vector<wire::Frame>(10000, {"f.k", "f", 1})));
  orbErrorInfo record = info();
  ASSERT_EQ(record.details.kaldex.stackDepth, 10000U);
  EXPECT_STREQ(record.details.kaldex.stack[9999].file, "f.k");
  destroy(record);
}

TEST_F(ErrorInfo, FilledTwiceHasTwoStacks) {
  callFor(threeFrames_);
  orbErrorInfo first = info();
  orbErrorInfo second = info();
  ASSERT_EQ(first.details.kaldex.stackDepth, 3u);
  ASSERT_EQ(second.details.kaldex.stackDepth, 3u);
  ASSERT_NE(first.details.kaldex.stack, second.details.kaldex.stack);
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_STREQ(first.details.kaldex.stack[i].file, second.details.kaldex.stack[i].file);
    EXPECT_STREQ(first.details.kaldex.stack[i].name, second.details.kaldex.stack[i].name);
    EXPECT_EQ(first.details.kaldex.stack[i].line, second.details.kaldex.stack[i].line);
  }
  destroy(first);
  EXPECT_STREQ(second.details.kaldex.stack[1].file, "g.k");
  EXPECT_EQ(second.details.kaldex.stack[1].line, -3);
  destroy(second);
}

TEST_F(ErrorInfo, DestroyedKeepsItsDepthAndLosesItsStack) {
  callFor(threeFrames_);
  orbErrorInfo record = info();
  destroy(record);
  EXPECT_EQ(record.details.kaldex.stack, nullptr);
  EXPECT_EQ(record.details.kaldex.stackDepth, 3U);
  EXPECT_STREQ(record.details.kaldex.message, "no");
  destroy(record);
  EXPECT_EQ(record.details.kaldex.stack, nullptr);
}

// Of other types the record holds nothing of its own: what would be the stack is left
// alone.
TEST_F(ErrorInfo, OfAnotherTypeIsDestroyedWithoutEffect) {
  for (const orbErrorType type : {ORB_HTTP_ERROR, ORB_GENERIC_ERROR}) {
    orbStackFrame frame{};
    orbErrorInfo record;
    record.type = type;
    record.details.kaldex.stack = &frame;
    record.details.kaldex.stackDepth = 1;
    destroy(record);
    EXPECT_EQ(record.details.kaldex.stack, &frame);
  }
}

TEST_F(ErrorInfo, StaysAfterASuccess) {
  callFor(threeFrames_);
  orbErrorInfo before = info();
  expectUsualCall(caller_, server_.url());
  orbErrorInfo after = info();
  EXPECT_EQ(after.type, ORB_KALDEX_ERROR);
  EXPECT_EQ(after.details.kaldex.message, before.details.kaldex.message);
  EXPECT_STREQ(before.details.kaldex.stack[0].file, "f.k");
  EXPECT_STREQ(after.details.kaldex.stack[0].file, "f.k");
  destroy(before);
  destroy(after);
}

TEST_F(ErrorInfo, TellsTheLastFailureOnly) {
  const Outcome notFound = httpError(404, "Not Found\r\n");
  std::vector<Array> outputs(1);
  for (int i = 0; i < 2; ++i) {
    server_.onRequest({send("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n")});
    EXPECT_EQ(caller_.call(server_.url(), outputs), notFound);
    expectUsualCall(caller_, server_.url());
    EXPECT_EQ(caller_.lastError(), notFound);
    callFor("");
    EXPECT_EQ(caller_.lastError(), countMismatch(0, 1));
    callFor(threeFrames_);
    EXPECT_EQ(caller_.lastError(), kaldexError("no", "a:b"));
    callFor(wire::error("another", ""));
    EXPECT_EQ(caller_.lastError(), kaldexError("another", ""));
  }
}

TEST_F(ErrorInfo, BelongsToItsContext) {
  Caller other;
  callFor(threeFrames_);
  EXPECT_EQ(other.lastError().summary, "");
  EXPECT_EQ(caller_.lastError(), kaldexError("no", "a:b"));
}

}  // namespace
}  // namespace orb::test
