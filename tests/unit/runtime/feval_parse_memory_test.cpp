// SPDX-License-Identifier: MIT
// Calls that run out of memory while a reply is read. The message library then loses the
// element that it was adding to a list, so this program runs without leak detection.
#include <gmock/gmock.h>

#include <string>

#include "support/array.h"
#include "support/failing_new.h"
#include "support/wire.h"
#include "unit/runtime/last_error.h"
#include "unit/runtime/with_fake_client.h"

extern "C" int __lsan_is_turned_off() { return 1; }

namespace orb::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

class FevalParseMemory : public WithFakeClient {};

TEST_F(FevalParseMemory, FailsAtEveryAllocationAndRecovers) {
  server_.reply = wire::result({wire::doubleRow({0}), wire::charRow(u"ab"),
                                wire::cellRow({wire::doubleRow({2})})});
  bool failed = true;
  for (size_t nth = 1; failed; ++nth) {
    SCOPED_TRACE(nth);
    std::vector<orbArray> outputs(3);
    FailingNew failing = FailingNew::at(nth);
    const orbStatus status = call(outputs);
    failed = failing.stop();
    EXPECT_EQ(status, failed ? ORB_FAILURE : ORB_OK);
    if (failed) {
      EXPECT_EQ(lastErrorOf(context_), genericError("std::bad_alloc"));
    }
    const Array first(outputs[0]);
    const Array second(outputs[1]);
    const Array third(outputs[2]);
    EXPECT_EQ(first.get() == nullptr, failed);
    EXPECT_TRUE(second.get() == nullptr || third.get() != nullptr);
    if (failed) continue;
    EXPECT_THAT(elementsOf<double>(first), ElementsAre(0));
    EXPECT_EQ(unitsOf(second), u"ab");
    EXPECT_THAT(elementsOf<double>(Array(orbGetCell(third, 0))), ElementsAre(2));
  }
}

TEST_F(FevalParseMemory, RecordsTheServerErrorOrTheEndOfMemory) {
  server_.reply = wire::error("message", "identifier", {{"file", "name", 7}});
  bool failed = true;
  for (size_t nth = 1; failed; ++nth) {
    SCOPED_TRACE(nth);
    std::vector<orbArray> outputs = slots(1);
    FailingNew failing = FailingNew::at(nth);
    const orbStatus status = call(outputs);
    failed = failing.stop();
    EXPECT_EQ(status, ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context_),
              failed ? genericError("std::bad_alloc")
                     : "1|Error was thrown while executing KALDEX code|message|"
                       "identifier|file:name:7");
    EXPECT_THAT(outputs, Each(before_.get()));
  }
}

}  // namespace
}  // namespace orb::test
