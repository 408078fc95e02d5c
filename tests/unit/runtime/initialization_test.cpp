// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "orb/qxorbclient.h"
#include "support/failing_new.h"
#include "unit/http/fake_curl.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Leaves no table and no message to the next test.
class OrbInitializeEx : public WithFakeCurl {
 protected:
  ~OrbInitializeEx() override {
    fakeCurl().globalResult = CURLE_OK;
    orbInitialize();
    orbTerminate();
  }
};

using OrbTerminate = OrbInitializeEx;

/// How many members of a table lead somewhere, from the first on and in all.
std::pair<size_t, size_t> filledSlotsOf(const orbClientRuntime& runtime) {
  const void* slots[sizeof runtime / sizeof(void*)];
  std::memcpy(slots, &runtime, sizeof runtime);
  const auto* firstNull = std::find(std::begin(slots), std::end(slots), nullptr);
  const auto nulls = std::count(std::begin(slots), std::end(slots), nullptr);
  return {firstNull - slots, std::size(slots) - static_cast<size_t>(nulls)};
}

TEST_F(OrbInitializeEx, FillsTheMembersOfTheFirstVersionAskedFor) {
  const orbClientRuntime* runtime = orbInitialize();
  EXPECT_EQ(filledSlotsOf(*runtime), std::make_pair(size_t{11}, size_t{11}));
  EXPECT_EQ(orbInitializeEx(ORB_CLIENT_1_1), runtime);
  EXPECT_EQ(filledSlotsOf(*runtime), std::make_pair(size_t{11}, size_t{11}));
  orbTerminate();
  runtime = orbInitializeEx(ORB_CLIENT_1_1);
  EXPECT_EQ(filledSlotsOf(*runtime), std::make_pair(size_t{25}, size_t{25}));
}

TEST_F(OrbInitializeEx, InitializesLibcurlOnceForAllTables) {
  orbClientRuntime* runtime = orbInitializeEx(ORB_CLIENT_1_1);
  ASSERT_NE(runtime, nullptr);
  EXPECT_EQ(orbInitializeEx(ORB_CLIENT_1_1), runtime);
  EXPECT_EQ(orbInitialize(), runtime);
  EXPECT_EQ(orbInitializeEx(0), runtime);
  EXPECT_STREQ(orbGetInitializationErrorMessage(), "");
  EXPECT_THAT(fakeCurl().globalInitFlags, ElementsAre(3));
}

TEST_F(OrbInitializeEx, RefusesOtherVersionsBeforeLibcurlIsInitialized) {
  for (const uint32_t version : {0u, 1u, 0xFFFFu, 0x10002u, 0x20000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(version);
    EXPECT_EQ(orbInitializeEx(version), nullptr);
    EXPECT_STREQ(orbGetInitializationErrorMessage(), "Invalid version number.");
  }
  EXPECT_THAT(fakeCurl().globalInitFlags, IsEmpty());
}

TEST_F(OrbInitializeEx, FailsWhenLibcurlDoes) {
  fakeCurl().globalResult = CURLE_FAILED_INIT;
  EXPECT_EQ(orbInitializeEx(ORB_CLIENT_1_1), nullptr);
  EXPECT_STREQ(orbGetInitializationErrorMessage(),
               "Global initialization of QXHttpClient failed");
  orbTerminate();
  EXPECT_EQ(fakeCurl().globalCleanups, 0);
  EXPECT_STREQ(orbGetInitializationErrorMessage(),
               "Global initialization of QXHttpClient failed");
}

TEST_F(OrbInitializeEx, LeavesLibcurlInitializedWithoutMemoryForATable) {
  FailingNew failing = FailingNew::forAtLeast(sizeof(orbClientRuntime));
  const orbClientRuntime* runtime = orbInitializeEx(ORB_CLIENT_1_0);
  EXPECT_TRUE(failing.stop());
  EXPECT_EQ(runtime, nullptr);
  EXPECT_STREQ(orbGetInitializationErrorMessage(), "std::bad_alloc");
  EXPECT_THAT(fakeCurl().globalInitFlags, ElementsAre(3));
  EXPECT_EQ(fakeCurl().globalCleanups, 0);
}

TEST_F(OrbInitializeEx, KeepsAnOldFailureUntilTermination) {
  orbInitializeEx(0);
  const char* message = orbGetInitializationErrorMessage();
  ASSERT_NE(orbInitialize(), nullptr);
  EXPECT_EQ(orbGetInitializationErrorMessage(), message);
  EXPECT_STREQ(message, "Invalid version number.");
  orbTerminate();
  EXPECT_STREQ(orbGetInitializationErrorMessage(), "");
}

TEST_F(OrbInitializeEx, ShowsTheLatestFailure) {
  orbInitializeEx(0);
  fakeCurl().globalResult = CURLE_OUT_OF_MEMORY;
  orbInitialize();
  EXPECT_STREQ(orbGetInitializationErrorMessage(),
               "Global initialization of QXHttpClient failed");
}

TEST_F(OrbTerminate, CleansLibcurlUpOncePerTable) {
  orbTerminate();
  EXPECT_EQ(fakeCurl().globalCleanups, 0);
  orbInitialize();
  orbTerminate();
  orbTerminate();
  EXPECT_EQ(fakeCurl().globalCleanups, 1);
  ASSERT_NE(orbInitializeEx(ORB_CLIENT_1_1), nullptr);
  EXPECT_THAT(fakeCurl().globalInitFlags, ElementsAre(3, 3));
}

}  // namespace
}  // namespace orb::test
