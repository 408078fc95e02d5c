// SPDX-License-Identifier: MIT
#include "runtime/client_context.h"

#include <gmock/gmock.h>

#include <boost/numeric/conversion/cast.hpp>
#include <functional>
#include <new>
#include <stdexcept>

#include "http/qx_http_client.h"
#include "http/qx_http_client_config.h"
#include "runtime/client_config.h"
#include "support/failing_new.h"
#include "unit/http/fake_curl.h"
#include "unit/runtime/last_error.h"

namespace orb::test {
namespace {

using ::testing::Contains;

TEST(Guarded, GivesTheStatusOfTheBodyAndRecordsNothing) {
  orbClientContext context;
  EXPECT_EQ(guarded(context, [] { return ORB_OK; }), ORB_OK);
  EXPECT_EQ(guarded(context, [] { return ORB_FAILURE; }), ORB_FAILURE);
  EXPECT_EQ(lastErrorOf(context), "0||0|");
}

TEST(Guarded, RecordsStandardExceptions) {
  struct Row {
    std::function<orbStatus()> body;
    const char* text;
  };
  const Row rows[] = {
      {[]() -> orbStatus { throw std::runtime_error("a text"); }, "a text"},
      {[]() -> orbStatus { throw std::invalid_argument(""); }, ""},
      {[]() -> orbStatus { throw std::bad_alloc(); }, "std::bad_alloc"},
      {[]() -> orbStatus { throw std::exception(); }, "std::exception"},
      {[]() -> orbStatus { throw boost::numeric::positive_overflow(); },
       "bad numeric conversion: positive overflow"}};
  orbClientContext context;
  for (const Row& row : rows) {
    EXPECT_EQ(guarded(context, row.body), ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context), genericError(row.text));
  }
}

TEST(Guarded, LeavesTheFieldsOfAnOlderHttpError) {
  orbClientContext context;
  context.lastError.recordHttpError(404, "Not Found\r\n");
  orbErrorInfo info;
  getLastErrorInfo(&context, &info);
  guarded(context, []() -> orbStatus { throw std::runtime_error("a text"); });
  EXPECT_STREQ(info.details.http.responseMessage, "Not Found\r\n");
}

TEST(Guarded, LetsOtherExceptionsOut) {
  orbClientContext context;
  EXPECT_THROW(guarded(context, []() -> orbStatus { throw 42; }), int);
  EXPECT_EQ(lastErrorOf(context), "0||0|");
}

TEST(Guarded, RecordsWhenMemoryHasEnded) {
  orbClientContext context;
  FailingNew failing = FailingNew::always();
  const orbStatus status =
      guarded(context, []() -> orbStatus { throw std::bad_alloc(); });
  EXPECT_FALSE(failing.stop());
  EXPECT_EQ(status, ORB_FAILURE);
  EXPECT_EQ(lastErrorOf(context), genericError("std::bad_alloc"));
}

class CreateContext : public WithFakeCurl {
 protected:
  CreateContext() {
    config_.object = std::make_unique<QXHttpClientConfig>();
    config_.object->setTimeoutSec(7);
    config_.object->setCRLFile("a file name too long to be held in place");
  }

  orbClientConfig config_;
};

TEST_F(CreateContext, BuildsAClientFromACopyOfTheConfiguration) {
  orbClientContext* context = nullptr;
  ASSERT_EQ(createContext(&context, &config_), ORB_OK);
  EXPECT_THAT(fakeCurl().settings, Contains(Setting(CURLOPT_TIMEOUT, "7")));
  config_.object.reset();
  EXPECT_EQ(context->client->getConfig().getTimeoutSec(), 7u);
  EXPECT_STREQ(context->client->getConfig().getCRLFile(),
               "a file name too long to be held in place");
  EXPECT_EQ(lastErrorOf(*context), "0||0|");
  destroyContext(context);
}

TEST(DestroyContext, IgnoresNull) { destroyContext(nullptr); }

TEST_F(CreateContext, HandsOutAContextThatHasNoClient) {
  struct Row {
    std::function<void()> arrange;
    const char* text;
  };
  const Row rows[] = {
      {[] { fakeCurl().hasHandle = false; }, "Failed initialization"},
      {[] {
         fakeCurl().refusedSetting = 4;
         fakeCurl().refusal = CURLE_OUT_OF_MEMORY;
       },
       "Out of memory"},
      {[this] { config_.object.reset(); }, "The client configuration is empty."}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    fakeCurl() = FakeCurl();
    row.arrange();
    orbClientContext* context = nullptr;
    EXPECT_EQ(createContext(&context, &config_), ORB_FAILURE);
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(context->client, nullptr);
    EXPECT_EQ(fakeCurl().handles, 0);
    EXPECT_EQ(lastErrorOf(*context), genericError(row.text));
    orbArray output = nullptr;
    EXPECT_EQ(feval(context, "http://host/f", 1, &output, 0, nullptr), ORB_FAILURE);
    EXPECT_EQ(output, nullptr);
    EXPECT_EQ(lastErrorOf(*context), genericError("The client context has no client."));
    destroyContext(context);
  }
}

TEST_F(CreateContext, HandsTheContextOutFirstWhenMemoryEnds) {
  orbClientContext untouched;
  bool failed = true;
  for (size_t nth = 1; failed; ++nth) {
    SCOPED_TRACE(nth);
    fakeCurl().settings.clear();
    orbClientContext* context = &untouched;
    FailingNew failing = FailingNew::at(nth);
    const orbStatus status = createContext(&context, &config_);
    failed = failing.stop();
    EXPECT_EQ(status, failed ? ORB_FAILURE : ORB_OK);
    if (nth == 1) {
      EXPECT_EQ(context, &untouched);
      continue;
    }
    ASSERT_NE(context, &untouched);
    if (failed) {
      EXPECT_EQ(context->client, nullptr);
      EXPECT_EQ(fakeCurl().handles, 0);
      EXPECT_EQ(lastErrorOf(*context), genericError("std::bad_alloc"));
    }
    destroyContext(context);
  }
}

TEST_F(CreateContext, ReportsWithoutAnyMemory) {
  orbClientContext untouched;
  orbClientContext* context = &untouched;
  FailingNew failing = FailingNew::always();
  const orbStatus status = createContext(&context, &config_);
  failing.stop();
  EXPECT_EQ(status, ORB_FAILURE);
  EXPECT_EQ(context, &untouched);
}

}  // namespace
}  // namespace orb::test
