// SPDX-License-Identifier: MIT
#include "runtime/error_state.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "runtime/client_context.h"
#include "support/failing_new.h"
#include "unit/runtime/last_error.h"

namespace orb::test {
namespace {

const char kLongPhrase[] = "A reason phrase too long to be held in place\r\n";

client::KALDEX_Error errorWithFrames(int count) {
  client::KALDEX_Error error;
  error.set_message("message");
  error.set_identifier("identifier");
  error.set_report("report");
  for (int i = 1; i <= count; ++i) {
    client::KALDEX_Error::Stack_Frame& frame = *error.add_stack();
    frame.set_file("file" + std::to_string(i));
    frame.set_name("name" + std::to_string(i));
    frame.set_line(-10 * i);
  }
  return error;
}

template <class Exception>
void recordGeneric(ErrorState& state, const Exception& exception) {
  try {
    throw exception;
  } catch (const std::exception& failure) {
    state.recordGenericError(failure);
  }
}

orbErrorInfo describe(const ErrorState& state) {
  orbErrorInfo info;
  state.describe(info);
  return info;
}

TEST(ErrorState, StartsAsAnEmptyHttpError) {
  orbClientContext context;
  EXPECT_EQ(lastErrorOf(context), "0||0|");
}

TEST(ErrorState, KeepsAnHttpError) {
  orbClientContext context;
  context.lastError.recordHttpError(4294967295, "Not Found\r\n");
  EXPECT_EQ(lastErrorOf(context),
            "0|A non-200 HTTP response was received|4294967295|Not Found\r\n");
  context.lastError.recordHttpError(500, "");
  EXPECT_EQ(lastErrorOf(context), "0|A non-200 HTTP response was received|500|");
}

TEST(ErrorState, KeepsAServerErrorWithItsFramesInOrder) {
  orbClientContext context;
  client::KALDEX_Error error = errorWithFrames(3);
  context.lastError.recordServerError(error);
  EXPECT_EQ(lastErrorOf(context),
            "1|Error was thrown while executing KALDEX code|message|identifier|"
            "file1:name1:-10|file2:name2:-20|file3:name3:-30");
}

TEST(ErrorState, ReadsFieldsThatAServerLeftOutAsEmpty) {
  orbClientContext context;
  client::KALDEX_Error error;
  error.add_stack();
  context.lastError.recordServerError(error);
  EXPECT_EQ(lastErrorOf(context), "1|Error was thrown while executing KALDEX code|||::0");
}

TEST(ErrorState, KeepsNothingOfTheServerErrorBefore) {
  orbClientContext context;
  client::KALDEX_Error first = errorWithFrames(2);
  client::KALDEX_Error second;
  second.set_message("second");
  context.lastError.recordServerError(first);
  context.lastError.recordServerError(second);
  EXPECT_EQ(lastErrorOf(context),
            "1|Error was thrown while executing KALDEX code|second|");
}

TEST(ErrorState, KeepsTheTextOfAGenericErrorBeyondItsException) {
  orbClientContext context;
  recordGeneric(context.lastError, std::runtime_error("a text that lives on the heap"));
  EXPECT_EQ(lastErrorOf(context), genericError("a text that lives on the heap"));
  recordGeneric(context.lastError, std::logic_error(""));
  EXPECT_EQ(lastErrorOf(context), genericError(""));
}

TEST(ErrorState, ReleasesAServerErrorWhenAnotherKindFollows) {
  using Record = void (*)(ErrorState&);
  const Record others[] = {
      [](ErrorState& state) { state.recordHttpError(404, "Not Found\r\n"); },
      [](ErrorState& state) { recordGeneric(state, std::runtime_error("generic")); }};
  for (const Record recordOther : others) {
    ErrorState state;
    client::KALDEX_Error error = errorWithFrames(100);
    state.recordServerError(error);
    const FailingNew watched = FailingNew::never();
    recordOther(state);
    EXPECT_GE(watched.releases(), 100u);
  }
}

// The record points into the fields of its own kind.
TEST(ErrorState, LeavesTheSmallFieldsOfTheOtherKinds) {
  ErrorState state;
  state.recordHttpError(404, kLongPhrase);
  const char* phrase = describe(state).details.http.responseMessage;
  client::KALDEX_Error error = errorWithFrames(0);
  state.recordServerError(error);
  recordGeneric(state, std::runtime_error("generic"));
  const char* generic = describe(state).details.generic.message;
  EXPECT_STREQ(phrase, kLongPhrase);

  state.recordHttpError(500, "Internal Server Error\r\n");
  EXPECT_STREQ(generic, "generic");
}

TEST(ErrorState, RecordsWithoutAllocating) {
  ErrorState state;
  std::string phrase = kLongPhrase;
  client::KALDEX_Error error = errorWithFrames(3);
  FailingNew failing = FailingNew::always();
  recordGeneric(state, std::bad_alloc());
  const orbErrorInfo generic = describe(state);
  state.recordHttpError(404, std::move(phrase));
  const orbErrorInfo http = describe(state);
  state.recordServerError(error);
  EXPECT_FALSE(failing.stop());
  EXPECT_STREQ(generic.details.generic.message, "std::bad_alloc");
  EXPECT_STREQ(http.details.http.responseMessage, kLongPhrase);
}

TEST(GetLastErrorInfo, KeepsTheDepthOfAStackThatFindsNoMemory) {
  orbClientContext context;
  client::KALDEX_Error error = errorWithFrames(3);
  context.lastError.recordServerError(error);
  orbErrorInfo info;
  FailingNew failing = FailingNew::always();
  getLastErrorInfo(&context, &info);
  EXPECT_TRUE(failing.stop());
  EXPECT_EQ(info.type, ORB_KALDEX_ERROR);
  EXPECT_STREQ(info.details.kaldex.message, "message");
  EXPECT_STREQ(info.details.kaldex.identifier, "identifier");
  EXPECT_EQ(info.details.kaldex.stack, nullptr);
  EXPECT_EQ(info.details.kaldex.stackDepth, 3u);
  destroyLastErrorInfo(&info);
  EXPECT_EQ(info.details.kaldex.stack, nullptr);
  EXPECT_EQ(info.details.kaldex.stackDepth, 3u);
}

TEST(GetLastErrorInfo, GivesEveryRecordAStackOfItsOwn) {
  orbClientContext context;
  client::KALDEX_Error error = errorWithFrames(2);
  context.lastError.recordServerError(error);
  orbErrorInfo first;
  orbErrorInfo second;
  getLastErrorInfo(&context, &first);
  getLastErrorInfo(&context, &second);
  EXPECT_NE(first.details.kaldex.stack, second.details.kaldex.stack);
  destroyLastErrorInfo(&first);
  EXPECT_EQ(second.details.kaldex.stackDepth, 2u);
  EXPECT_STREQ(second.details.kaldex.stack[1].file, "file2");
  EXPECT_STREQ(second.details.kaldex.stack[1].name, "name2");
  EXPECT_EQ(second.details.kaldex.stack[1].line, -20);
  destroyLastErrorInfo(&second);
}

TEST(GetLastErrorInfo, GivesNoStackWithoutFrames) {
  orbClientContext context;
  client::KALDEX_Error error = errorWithFrames(0);
  context.lastError.recordServerError(error);
  orbErrorInfo info;
  FailingNew failing = FailingNew::always();
  getLastErrorInfo(&context, &info);
  EXPECT_FALSE(failing.stop());
  EXPECT_EQ(info.details.kaldex.stack, nullptr);
  EXPECT_EQ(info.details.kaldex.stackDepth, 0u);
}

TEST(DestroyLastErrorInfo, FreesTheStackAndKeepsTheDepth) {
  orbClientContext context;
  client::KALDEX_Error error = errorWithFrames(3);
  context.lastError.recordServerError(error);
  orbErrorInfo info;
  getLastErrorInfo(&context, &info);
  destroyLastErrorInfo(&info);
  EXPECT_EQ(info.details.kaldex.stack, nullptr);
  EXPECT_EQ(info.details.kaldex.stackDepth, 3u);
  EXPECT_STREQ(info.details.kaldex.message, "message");
}

TEST(DestroyLastErrorInfo, LeavesARecordWithoutFrames) {
  orbStackFrame frame{"", "", 0};
  orbErrorInfo info;
  info.type = ORB_KALDEX_ERROR;
  info.details.kaldex.stack = &frame;
  info.details.kaldex.stackDepth = 0;
  destroyLastErrorInfo(&info);
  EXPECT_EQ(info.details.kaldex.stack, &frame);
}

TEST(DestroyLastErrorInfo, LeavesRecordsOfOtherKinds) {
  for (const orbErrorType type : {ORB_HTTP_ERROR, ORB_GENERIC_ERROR}) {
    SCOPED_TRACE(type);
    orbStackFrame frame{"", "", 0};
    orbErrorInfo info;
    info.type = type;
    info.details.kaldex.stack = &frame;
    info.details.kaldex.stackDepth = 1;
    destroyLastErrorInfo(&info);
    EXPECT_EQ(info.details.kaldex.stack, &frame);
  }
}

}  // namespace
}  // namespace orb::test
