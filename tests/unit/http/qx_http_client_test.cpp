// SPDX-License-Identifier: MIT
#include "http/qx_http_client.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <type_traits>

#include "support/failing_new.h"
#include "unit/http/fake_curl.h"

namespace orb::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ThrowsMessage;

class QXHttpClientTest : public WithFakeCurl {};

QXHttpClientConfig configWithTexts() {
  QXHttpClientConfig config;
  config.setClientCertFile("certificate");
  config.setClientPrivateKeyFile("key");
  config.setClientPrivateKeyPassword("password");
  config.setServerCertFile("authorities");
  config.setCRLFile("revoked");
  return config;
}

static_assert(!std::is_copy_constructible_v<QXHttpClient> &&
              !std::is_copy_assignable_v<QXHttpClient>);

TEST_F(QXHttpClientTest, SetsTheDefaultsAndNoEmptyText) {
  const QXHttpClient client;
  EXPECT_EQ(fakeCurl().handles, 1);
  EXPECT_THAT(
      fakeCurl().settings,
      ElementsAre(Setting(CURLOPT_HTTP_VERSION, "2"), Setting(CURLOPT_TIMEOUT, "120"),
                  Setting(CURLOPT_SSL_VERIFYHOST, "2"),
                  Setting(CURLOPT_SSL_VERIFYPEER, "1"),
                  Setting(CURLOPT_SSL_SESSIONID_CACHE, "0")));
}

TEST_F(QXHttpClientTest, SetsEveryOptionInOrder) {
  QXHttpClientConfig config = configWithTexts();
  config.setTimeoutSec(7);
  config.setVerifyHost(false);
  config.setVerifyPeer(false);
  const QXHttpClient client(config);
  EXPECT_THAT(
      fakeCurl().settings,
      ElementsAre(
          Setting(CURLOPT_HTTP_VERSION, "2"), Setting(CURLOPT_TIMEOUT, "7"),
          Setting(CURLOPT_SSLCERT, "certificate"), Setting(CURLOPT_SSLKEY, "key"),
          Setting(CURLOPT_KEYPASSWD, "password"), Setting(CURLOPT_CAINFO, "authorities"),
          Setting(CURLOPT_CRLFILE, "revoked"), Setting(CURLOPT_SSL_VERIFYHOST, "0"),
          Setting(CURLOPT_SSL_VERIFYPEER, "0"),
          Setting(CURLOPT_SSL_SESSIONID_CACHE, "0")));
}

TEST_F(QXHttpClientTest, SetsEachTextWithoutTheOthers) {
  struct Row {
    void (QXClientConfig::*set)(const char*);
    CURLoption option;
  };
  for (const Row& row :
       {Row{&QXClientConfig::setClientCertFile, CURLOPT_SSLCERT},
        Row{&QXClientConfig::setClientPrivateKeyFile, CURLOPT_SSLKEY},
        Row{&QXClientConfig::setClientPrivateKeyPassword, CURLOPT_KEYPASSWD},
        Row{&QXClientConfig::setServerCertFile, CURLOPT_CAINFO},
        Row{&QXClientConfig::setCRLFile, CURLOPT_CRLFILE}}) {
    SCOPED_TRACE(row.option);
    fakeCurl().settings.clear();
    QXHttpClientConfig config;
    (config.*row.set)("text");
    const QXHttpClient client(config);
    EXPECT_EQ(fakeCurl().settings.size(), 6u);
    EXPECT_THAT(fakeCurl().settings, Contains(Setting(row.option, "text")));
  }
}

TEST_F(QXHttpClientTest, SetsEachVerificationByItself) {
  QXHttpClientConfig config;
  config.setVerifyHost(false);
  const QXHttpClient client(config);
  EXPECT_THAT(fakeCurl().settings, Contains(Setting(CURLOPT_SSL_VERIFYHOST, "0")));
  EXPECT_THAT(fakeCurl().settings, Contains(Setting(CURLOPT_SSL_VERIFYPEER, "1")));
}

TEST_F(QXHttpClientTest, CutsTimeoutsThatLibcurlCannotCount) {
  struct Row {
    uint64_t timeoutSec;
    const char* set;
  };
  for (const Row& row :
       {Row{0, "0"}, Row{1, "1"}, Row{2147483, "2147483"}, Row{2147484, "2147483"},
        Row{4294967296, "2147483"}, Row{18446744073709551615u, "2147483"}}) {
    SCOPED_TRACE(row.timeoutSec);
    fakeCurl().settings.clear();
    QXHttpClientConfig config;
    config.setTimeoutSec(row.timeoutSec);
    QXHttpClient client(config);
    EXPECT_THAT(fakeCurl().settings, Contains(Setting(CURLOPT_TIMEOUT, row.set)));
    EXPECT_EQ(client.getConfig().getTimeoutSec(), row.timeoutSec);
  }
}

TEST_F(QXHttpClientTest, KeepsACopyOfTheConfiguration) {
  QXHttpClientConfig config;
  config.setResponseSizeLimit(7);
  QXHttpClient client(config);
  config.setResponseSizeLimit(8);
  EXPECT_EQ(client.getConfig().getResponseSizeLimit(), 7u);
  EXPECT_EQ(QXHttpClient().getConfig().getResponseSizeLimit(), 67108864u);
}

TEST_F(QXHttpClientTest, ThrowsWithoutAHandle) {
  fakeCurl().hasHandle = false;
  EXPECT_THAT([] { QXHttpClient(); },
              ThrowsMessage<std::runtime_error>("Failed initialization"));
}

TEST_F(QXHttpClientTest, CleansTheHandleUpWhenAnOptionIsRefused) {
  const QXHttpClientConfig config = configWithTexts();
  fakeCurl().refusal = CURLE_OUT_OF_MEMORY;
  for (size_t nth = 1; nth <= 9; ++nth) {
    SCOPED_TRACE(nth);
    fakeCurl().settings.clear();
    fakeCurl().refusedSetting = nth;
    EXPECT_THAT([&] { QXHttpClient client(config); },
                ThrowsMessage<std::runtime_error>("Out of memory"));
    EXPECT_EQ(fakeCurl().settings.size(), nth);
    EXPECT_EQ(fakeCurl().handles, 0);
  }
}

TEST_F(QXHttpClientTest, LeavesNothingBehindWhenMemoryEnds) {
  QXHttpClientConfig config;
  config.setCRLFile("a text too long to be held in place");
  bool failed = true;
  for (size_t nth = 1; failed; ++nth) {
    SCOPED_TRACE(nth);
    FailingNew failing = FailingNew::at(nth);
    try {
      const QXHttpClient client(config);
      failed = failing.stop();
      EXPECT_FALSE(failed);
    } catch (const std::bad_alloc&) {
      failing.stop();
    }
    EXPECT_EQ(fakeCurl().handles, 0);
  }
}

TEST_F(QXHttpClientTest, SharesItsHandleWithItsRequests) {
  auto client = std::make_unique<QXHttpClient>();
  std::unique_ptr<Request> first = client->createRequest("http://host/f");
  const std::unique_ptr<Request> second = client->createRequest("http://host/g");
  EXPECT_EQ(fakeCurl().handles, 1);
  client.reset();
  EXPECT_EQ(fakeCurl().handles, 1);
  second->perform();
  first.reset();
  EXPECT_EQ(fakeCurl().handles, 1);
}

std::vector<Setting> afterReset(std::vector<Setting> settings) {
  settings.insert(settings.begin(),
                  {{CURLOPT_BUFFERSIZE, "16384"}, {CURLOPT_UPLOAD_BUFFERSIZE, "65536"}});
  return settings;
}

TEST_F(QXHttpClientTest, ResetsTheHandleAfterATransferThatConnected) {
  QXHttpClient client;
  const std::vector<Setting> all = afterReset(fakeCurl().settings);
  fakeCurl().settings.clear();
  client.createRequest("http://host/f");
  EXPECT_EQ(fakeCurl().resets, 0);
  EXPECT_THAT(fakeCurl().settings, ElementsAre());
  fakeCurl().connections = 1;
  client.createRequest("http://host/f");
  EXPECT_EQ(fakeCurl().resets, 1);
  EXPECT_EQ(fakeCurl().settings, all);
}

TEST_F(QXHttpClientTest, ResetsTheHandleUntilItHasAllSettings) {
  QXHttpClient client;
  const std::vector<Setting> all = afterReset(fakeCurl().settings);
  fakeCurl().settings.clear();
  fakeCurl().connections = 1;
  fakeCurl().refusal = CURLE_OUT_OF_MEMORY;
  fakeCurl().refusedSetting = 2;
  EXPECT_THROW(client.createRequest("http://host/f"), std::runtime_error);
  fakeCurl().connections = 0;
  fakeCurl().refusal = CURLE_OK;
  fakeCurl().settings.clear();
  client.createRequest("http://host/f");
  EXPECT_EQ(fakeCurl().settings, all);
  fakeCurl().settings.clear();
  client.createRequest("http://host/f");
  EXPECT_THAT(fakeCurl().settings, ElementsAre());
  EXPECT_EQ(fakeCurl().resets, 2);
}

TEST_F(QXHttpClientTest, InitializesLibcurlWhole) {
  QXHttpClient::initializeGlobally();
  EXPECT_THAT(fakeCurl().globalInitFlags, ElementsAre(3));
  EXPECT_EQ(fakeCurl().globalCleanups, 0);
  QXHttpClient::cleanUpGlobally();
  EXPECT_EQ(fakeCurl().globalCleanups, 1);
}

TEST_F(QXHttpClientTest, ThrowsWhenLibcurlCannotBeInitialized) {
  fakeCurl().globalResult = CURLE_FAILED_INIT;
  EXPECT_THAT(
      QXHttpClient::initializeGlobally,
      ThrowsMessage<std::runtime_error>("Global initialization of QXHttpClient failed"));
}

}  // namespace
}  // namespace orb::test
