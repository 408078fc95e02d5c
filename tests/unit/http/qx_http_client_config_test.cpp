// SPDX-License-Identifier: MIT
#include "http/qx_http_client_config.h"

#include <gtest/gtest.h>

#include <string>

namespace orb::test {
namespace {

/// One text setting.
struct Text {
  const char* name;
  void (QXClientConfig::*set)(const char*);
  const char* (QXClientConfig::*get)() const;
};

constexpr Text kTexts[] = {
    {"ClientCertFile", &QXClientConfig::setClientCertFile,
     &QXClientConfig::getClientCertFile},
    {"ClientPrivateKeyFile", &QXClientConfig::setClientPrivateKeyFile,
     &QXClientConfig::getClientPrivateKeyFile},
    {"ClientPrivateKeyPassword", &QXClientConfig::setClientPrivateKeyPassword,
     &QXClientConfig::getClientPrivateKeyPassword},
    {"ServerCertFile", &QXClientConfig::setServerCertFile,
     &QXClientConfig::getServerCertFile},
    {"CRLFile", &QXClientConfig::setCRLFile, &QXClientConfig::getCRLFile}};

/// Everything that a configuration holds, in one text.
std::string textOf(const QXClientConfig& config) {
  std::string text = std::to_string(config.getTimeoutSec()) + " " +
                     std::to_string(config.getResponseSizeLimit());
  for (const Text& setting : kTexts) text += std::string("|") + (config.*setting.get)();
  return text + (config.getVerifyHost() ? "|host" : "|") +
         (config.getVerifyPeer() ? "|peer" : "|");
}

QXHttpClientConfig changedConfig() {
  QXHttpClientConfig config;
  config.setTimeoutSec(7);
  config.setResponseSizeLimit(8);
  config.setClientCertFile("certificate");
  config.setClientPrivateKeyFile("key");
  config.setClientPrivateKeyPassword("password");
  config.setServerCertFile("authorities");
  config.setCRLFile("revoked");
  config.setVerifyHost(false);
  return config;
}

TEST(QXHttpClientConfig, HasDefaults) {
  EXPECT_EQ(textOf(QXHttpClientConfig()), "120 67108864||||||host|peer");
}

TEST(QXHttpClientConfig, KeepsEachSettingByItself) {
  QXHttpClientConfig config = changedConfig();
  EXPECT_EQ(textOf(config), "7 8|certificate|key|password|authorities|revoked||peer");
  config.setVerifyHost(true);
  config.setVerifyPeer(false);
  EXPECT_EQ(textOf(config), "7 8|certificate|key|password|authorities|revoked|host|");
}

TEST(QXHttpClientConfig, ChecksNoNumber) {
  QXHttpClientConfig config;
  config.setTimeoutSec(0);
  config.setResponseSizeLimit(0);
  EXPECT_EQ(textOf(config), "0 0||||||host|peer");
  config.setTimeoutSec(18446744073709551615u);
  config.setResponseSizeLimit(4294967295);
  EXPECT_EQ(textOf(config), "18446744073709551615 4294967295||||||host|peer");
}

TEST(QXHttpClientConfig, CopiesAnyConfiguration) {
  QXHttpClientConfig original = changedConfig();
  const QXHttpClientConfig copy(static_cast<const QXClientConfig&>(original));
  original.setTimeoutSec(9);
  original.setCRLFile("others");
  EXPECT_EQ(textOf(copy), "7 8|certificate|key|password|authorities|revoked||peer");

  QXHttpClientConfig other;
  other.setVerifyPeer(false);
  EXPECT_EQ(textOf(QXHttpClientConfig(static_cast<const QXClientConfig&>(other))),
            "120 67108864||||||host|");
}

TEST(QXHttpClientConfig, CopiesTextUpToItsNul) {
  for (const Text& setting : kTexts) {
    SCOPED_TRACE(setting.name);
    QXHttpClientConfig config;
    char text[] = "first\0second";
    (config.*setting.set)(text);
    text[0] = 'F';
    EXPECT_STREQ((config.*setting.get)(), "first");
    EXPECT_NE((config.*setting.get)(), text);
    (config.*setting.set)("");
    EXPECT_STREQ((config.*setting.get)(), "");
  }
}

TEST(QXHttpClientConfig, ReadsNullTextAsEmpty) {
  for (const Text& setting : kTexts) {
    SCOPED_TRACE(setting.name);
    QXHttpClientConfig config;
    (config.*setting.set)("text");
    (config.*setting.set)(nullptr);
    EXPECT_STREQ((config.*setting.get)(), "");
  }
}

TEST(QXHttpClientConfig, KeepsATextWhileOthersAreSet) {
  QXHttpClientConfig config;
  config.setCRLFile("a text too long to be held in place");
  const char* text = config.getCRLFile();
  config.setServerCertFile("another text too long to be held in place");
  config.setTimeoutSec(1);
  EXPECT_EQ(config.getCRLFile(), text);
  EXPECT_STREQ(text, "a text too long to be held in place");
}

}  // namespace
}  // namespace orb::test
