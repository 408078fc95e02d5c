// SPDX-License-Identifier: MIT
#include "runtime/client_config.h"

#include <gtest/gtest.h>

#include "support/failing_new.h"
#include "unit/http/fake_curl.h"

namespace orb::test {
namespace {

TEST(CreateConfig, MakesADefaultConfiguration) {
  orbClientConfig* config = nullptr;
  ASSERT_EQ(createConfig(&config), ORB_OK);
  EXPECT_EQ(config->object->getTimeoutSec(), 120u);
  EXPECT_EQ(config->object->getResponseSizeLimit(), 67108864u);
  destroyConfig(config);
}

TEST(DestroyConfig, IgnoresNull) { destroyConfig(nullptr); }

TEST(CreateConfig, HandsTheHandleOutFirstWhenMemoryEnds) {
  orbClientConfig untouched;
  bool failed = true;
  for (size_t nth = 1; failed; ++nth) {
    SCOPED_TRACE(nth);
    orbClientConfig* config = &untouched;
    FailingNew failing = FailingNew::at(nth);
    const orbStatus status = createConfig(&config);
    failed = failing.stop();
    EXPECT_EQ(status, failed ? ORB_FAILURE : ORB_OK);
    if (nth == 1) {
      EXPECT_EQ(config, &untouched);
      continue;
    }
    ASSERT_NE(config, &untouched);
    EXPECT_EQ(config->object == nullptr, failed);
    destroyConfig(config);
  }
}

/// A configuration as a client reaches it, through the table.
class ConfigForwarderTest : public WithFakeCurl {
 protected:
  ConfigForwarderTest() : runtime_(*orbInitializeEx(ORB_CLIENT_1_1)) {
    runtime_.createConfig(&config_);
  }
  ~ConfigForwarderTest() override {
    runtime_.destroyConfig(config_);
    orbTerminate();
  }

  struct Text {
    const char* name;
    void (*set)(orbClientConfig*, const char*);
    const char* (*get)(orbClientConfig*);
    const char* (QXClientConfig::*operation)() const;
  };

  std::vector<Text> texts() const {
    return {{"ClientCertFile", runtime_.setClientCertFile, runtime_.getClientCertFile,
             &QXClientConfig::getClientCertFile},
            {"ClientPrivateKeyFile", runtime_.setClientPrivateKeyFile,
             runtime_.getClientPrivateKeyFile, &QXClientConfig::getClientPrivateKeyFile},
            {"ClientPrivateKeyPassword", runtime_.setClientPrivateKeyPassword,
             runtime_.getClientPrivateKeyPassword,
             &QXClientConfig::getClientPrivateKeyPassword},
            {"ServerCertFile", runtime_.setServerCertFile, runtime_.getServerCertFile,
             &QXClientConfig::getServerCertFile},
            {"CRLFile", runtime_.setCRLFile, runtime_.getCRLFile,
             &QXClientConfig::getCRLFile}};
  }

  orbClientRuntime& runtime_;
  orbClientConfig* config_ = nullptr;
};

TEST_F(ConfigForwarderTest, ReachesEachNumberAndSwitch) {
  runtime_.setTimeoutSec(config_, 18446744073709551615u);
  runtime_.setResponseSizeLimit(config_, 4294967295);
  EXPECT_EQ(config_->object->getTimeoutSec(), 18446744073709551615u);
  EXPECT_EQ(runtime_.getTimeoutSec(config_), 18446744073709551615u);
  EXPECT_EQ(config_->object->getResponseSizeLimit(), 4294967295u);
  EXPECT_EQ(runtime_.getResponseSizeLimit(config_), 4294967295u);

  runtime_.setVerifyHost(config_, false);
  EXPECT_FALSE(runtime_.getVerifyHost(config_));
  EXPECT_FALSE(config_->object->getVerifyHost());
  EXPECT_TRUE(runtime_.getVerifyPeer(config_));
  runtime_.setVerifyHost(config_, true);
  runtime_.setVerifyPeer(config_, false);
  EXPECT_TRUE(runtime_.getVerifyHost(config_));
  EXPECT_FALSE(runtime_.getVerifyPeer(config_));
  EXPECT_FALSE(config_->object->getVerifyPeer());
}

TEST_F(ConfigForwarderTest, ReachesEachText) {
  for (const Text& text : texts()) text.set(config_, text.name);
  for (const Text& text : texts()) {
    SCOPED_TRACE(text.name);
    EXPECT_STREQ(text.get(config_), text.name);
    EXPECT_EQ(text.get(config_), (*config_->object.*text.operation)());
  }
}

TEST_F(ConfigForwarderTest, KeepsTheOldTextWhenMemoryEnds) {
  for (const Text& text : texts()) {
    SCOPED_TRACE(text.name);
    text.set(config_, "old");
    FailingNew failing = FailingNew::always();
    text.set(config_, "a new text too long to be held in place");
    EXPECT_TRUE(failing.stop());
    EXPECT_STREQ(text.get(config_), "old");
  }
}

}  // namespace
}  // namespace orb::test
