// SPDX-License-Identifier: MIT
// The function table and configurations.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "client/transport/caller.h"

namespace orb::test {
namespace {

using ::testing::Each;
using ::testing::IsNull;
using ::testing::NotNull;

/// Starts and ends without a table.
class Runtime : public ::testing::Test {
 protected:
  void TearDown() override {
    orbTerminate();
    EXPECT_STREQ(orbGetInitializationErrorMessage(), "");
  }

  /// The table as the list of slots that it is.
  static std::vector<void*> slotsOf(const orbClientRuntime* table) {
    std::array<void*, 25> slots;
    static_assert(sizeof slots == sizeof *table);
    std::memcpy(slots.data(), table, sizeof slots);
    return std::vector<void*>(slots.begin(), slots.end());
  }

  static void expectVersion10(const orbClientRuntime* table) {
    ASSERT_NE(table, nullptr);
    const std::vector<void*> slots = slotsOf(table);
    EXPECT_THAT(std::vector<void*>(slots.begin(), slots.begin() + 11), Each(NotNull()));
    EXPECT_THAT(std::vector<void*>(slots.begin() + 11, slots.end()), Each(IsNull()));
  }

  static void expectVersion11(const orbClientRuntime* table) {
    ASSERT_NE(table, nullptr);
    EXPECT_THAT(slotsOf(table), Each(NotNull()));
  }
};

TEST_F(Runtime, OfVersion10HasTheFirst11Slots) {
  expectVersion10(orbInitializeEx(0x10000));
}

TEST_F(Runtime, OfVersion11HasAll25Slots) { expectVersion11(orbInitializeEx(0x10001)); }

TEST_F(Runtime, OfInitializeIsVersion10) { expectVersion10(orbInitialize()); }

TEST_F(Runtime, HasNamedVersions) {
  EXPECT_EQ(ORB_CLIENT_1_0, 65536U);
  EXPECT_EQ(ORB_CLIENT_1_1, 65537U);
}

TEST_F(Runtime, OfAnyOtherVersionIsNull) {
  for (const std::uint32_t version :
       {0U, 1U, 0xFFFFU, 0x10002U, 0x20000U, 0x7FFFFFFFU, 0x80010000U, 0xFFFFFFFFU}) {
    SCOPED_TRACE(version);
    EXPECT_EQ(orbInitializeEx(version), nullptr);
    EXPECT_STREQ(orbGetInitializationErrorMessage(), "Invalid version number.");
  }
  orbInitialize();  // only with a table does orbTerminate() clear the message
}

TEST_F(Runtime, KeepsTheVersionOfItsFirstCaller) {
  const orbClientRuntime* table = orbInitializeEx(ORB_CLIENT_1_0);
  EXPECT_EQ(orbInitializeEx(ORB_CLIENT_1_1), table);
  EXPECT_EQ(orbInitializeEx(ORB_CLIENT_1_0), table);
  EXPECT_EQ(orbInitialize(), table);
  expectVersion10(table);
  orbTerminate();
  table = orbInitializeEx(ORB_CLIENT_1_1);
  EXPECT_EQ(orbInitializeEx(ORB_CLIENT_1_0), table);
  EXPECT_EQ(orbInitialize(), table);
  expectVersion11(table);
}

TEST_F(Runtime, IsGivenForAnyVersionWhileThereIsOne) {
  const orbClientRuntime* table = orbInitialize();
  EXPECT_EQ(orbInitializeEx(0), table);
  EXPECT_EQ(orbInitializeEx(0x10002), table);
  EXPECT_STREQ(orbGetInitializationErrorMessage(), "");
}

TEST_F(Runtime, KeepsTheMessageOfAFailureThroughASuccess) {
  EXPECT_EQ(orbInitializeEx(0), nullptr);
  EXPECT_NE(orbInitialize(), nullptr);
  EXPECT_STREQ(orbGetInitializationErrorMessage(), "Invalid version number.");
  orbTerminate();
  EXPECT_STREQ(orbGetInitializationErrorMessage(), "");
}

TEST_F(Runtime, IsNotNeededToTerminate) {
  orbTerminate();
  orbTerminate();
  EXPECT_STREQ(orbGetInitializationErrorMessage(), "");
  EXPECT_EQ(orbInitializeEx(0), nullptr);
  orbTerminate();
  EXPECT_STREQ(orbGetInitializationErrorMessage(), "Invalid version number.");
  orbInitialize();
  orbTerminate();
  orbTerminate();
  EXPECT_STREQ(orbGetInitializationErrorMessage(), "");
}

TEST_F(Runtime, CanBeMadeAgain) {
  ScriptedServer server(usualReply());
  for (int i = 0; i < 3; ++i) {
    const orbClientRuntime* table = orbInitialize();
    ASSERT_NE(table, nullptr);
    orbClientConfig* config = nullptr;
    orbClientContext* context = nullptr;
    ASSERT_EQ(table->createConfig(&config), ORB_OK);
    ASSERT_EQ(table->createContext(&context, config), ORB_OK);
    orbArray output = nullptr;
    EXPECT_EQ(table->feval(context, server.url().c_str(), 1, &output, 0, nullptr),
              ORB_OK);
    table->destroyContext(context);
    table->destroyConfig(config);
    orbTerminate();
    const Array survivor(output);
    EXPECT_EQ(orbGetScalar(survivor), kUsualValue);
  }
}

/// A configuration of a library that is initialised for one test.
class Config : public ::testing::Test {
 protected:
  Config() : table_(*orbInitializeEx(ORB_CLIENT_1_1)) {
    EXPECT_EQ(table_.createConfig(&config_), ORB_OK);
  }
  ~Config() override {
    table_.destroyConfig(config_);
    orbTerminate();
  }

  const orbClientRuntime& table_;
  orbClientConfig* config_ = nullptr;
};

struct TextSetting {
  const char* name;
  void (*orbClientRuntime::*set)(orbClientConfig*, const char*);
  const char* (*orbClientRuntime::*get)(orbClientConfig*);
};

const TextSetting kTextSettings[] = {
    {"client certificate", &orbClientRuntime::setClientCertFile,
     &orbClientRuntime::getClientCertFile},
    {"client private key", &orbClientRuntime::setClientPrivateKeyFile,
     &orbClientRuntime::getClientPrivateKeyFile},
    {"password", &orbClientRuntime::setClientPrivateKeyPassword,
     &orbClientRuntime::getClientPrivateKeyPassword},
    {"server certificate", &orbClientRuntime::setServerCertFile,
     &orbClientRuntime::getServerCertFile},
    {"revocation list", &orbClientRuntime::setCRLFile, &orbClientRuntime::getCRLFile},
};

TEST_F(Config, StartsWithTheDefaults) {
  EXPECT_EQ(table_.getTimeoutSec(config_), 120U);
  EXPECT_EQ(table_.getResponseSizeLimit(config_), 67108864U);
  for (const TextSetting& setting : kTextSettings) {
    SCOPED_TRACE(setting.name);
    EXPECT_STREQ((table_.*setting.get)(config_), "");
  }
  EXPECT_TRUE(table_.getVerifyHost(config_));
  EXPECT_TRUE(table_.getVerifyPeer(config_));
}

TEST_F(Config, KeepsEveryNumber) {
  for (const std::uint64_t timeoutSec :
       {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX}) {
    table_.setTimeoutSec(config_, timeoutSec);
    EXPECT_EQ(table_.getTimeoutSec(config_), timeoutSec);
  }
  for (const std::uint32_t limitBytes : {0U, 1U, 0x80000000U, UINT32_MAX}) {
    table_.setResponseSizeLimit(config_, limitBytes);
    EXPECT_EQ(table_.getResponseSizeLimit(config_), limitBytes);
  }
}

TEST_F(Config, KeepsEachCheckByItself) {
  table_.setVerifyHost(config_, false);
  EXPECT_FALSE(table_.getVerifyHost(config_));
  EXPECT_TRUE(table_.getVerifyPeer(config_));
  table_.setVerifyPeer(config_, false);
  table_.setVerifyHost(config_, true);
  EXPECT_TRUE(table_.getVerifyHost(config_));
  EXPECT_FALSE(table_.getVerifyPeer(config_));
}

TEST_F(Config, CopiesEachTextByItself) {
  for (const TextSetting& setting : kTextSettings) {
    SCOPED_TRACE(setting.name);
    char text[] = "a file\0behind";
    (table_.*setting.set)(config_, text);
    text[0] = 'b';
    EXPECT_STREQ((table_.*setting.get)(config_), "a file");
    EXPECT_NE((table_.*setting.get)(config_), text);
    for (const TextSetting& other : kTextSettings) {
      EXPECT_STREQ((table_.*other.get)(config_), &other == &setting ? "a file" : "");
    }
    const std::string longText(100000, 'x');
    (table_.*setting.set)(config_, longText.c_str());
    EXPECT_EQ((table_.*setting.get)(config_), longText);
    (table_.*setting.set)(config_, (table_.*setting.get)(config_));
    EXPECT_EQ((table_.*setting.get)(config_), longText);
    (table_.*setting.set)(config_, "");
    EXPECT_STREQ((table_.*setting.get)(config_), "");
  }
}

TEST_F(Config, IsCopiedIntoAContext) {
  ScriptedServer server(usualReply());
  const auto callWith = [&](orbClientContext* context) {
    orbArray output = nullptr;
    const orbStatus status =
        table_.feval(context, server.url().c_str(), 1, &output, 0, nullptr);
    orbDestroyArray(output);
    return status;
  };
  orbClientContext* before = nullptr;
  ASSERT_EQ(table_.createContext(&before, config_), ORB_OK);
  table_.setResponseSizeLimit(config_, 1);
  orbClientContext* after = nullptr;
  ASSERT_EQ(table_.createContext(&after, config_), ORB_OK);
  EXPECT_EQ(callWith(before), ORB_OK);
  EXPECT_EQ(callWith(after), ORB_FAILURE);
  table_.destroyConfig(config_);
  EXPECT_EQ(callWith(before), ORB_OK);
  EXPECT_EQ(callWith(after), ORB_FAILURE);
  table_.destroyContext(before);
  table_.destroyContext(after);
  ASSERT_EQ(table_.createConfig(&config_), ORB_OK);
}

}  // namespace
}  // namespace orb::test
