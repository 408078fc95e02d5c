// SPDX-License-Identifier: MIT
#include "runtime/borrowed_inputs.h"

#include <gmock/gmock.h>

#include <new>

#include "support/array.h"
#include "support/failing_new.h"
#include "support/wire.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

long referencesTo(orbArray a) { return proxyOf(a).sharedMessage().use_count(); }

TEST(BorrowedInputs, SetsTheNumberOfOutputsAsASignedOne) {
  EXPECT_TRUE(BorrowedInputs(0).params().has_nargout());
  EXPECT_EQ(BorrowedInputs(0).params().nargout(), 0);
  EXPECT_EQ(BorrowedInputs(2147483647).params().nargout(), 2147483647);
  EXPECT_EQ(BorrowedInputs(4294967295).params().nargout(), -1);
}

TEST(BorrowedInputs, PutsTheInputsOwnMessagesInOrder) {
  const Array first = doubleRow({1});
  const Array second = doubleRow({2});
  const orbArray inputs[] = {first, second, second};
  BorrowedInputs call(0);
  call.add(inputs, 3);
  const auto& rhs = call.params().rhs();
  EXPECT_THAT(std::vector<const KALDEX_Array*>(rhs.pointer_begin(), rhs.pointer_end()),
              ElementsAre(&messageOf(first), &messageOf(second), &messageOf(second)));
}

TEST(BorrowedInputs, WritesNativeElementsBack) {
  const Array units = charRow(u"ab");
  const Array cells = cellRow(charRow(u"cd"));
  const orbArray inputs[] = {units, cells};
  BorrowedInputs call(0);
  call.add(inputs, 2);
  EXPECT_EQ(
      call.params().SerializeAsString(),
      wire::params(0, {wire::charRow(u"ab"), wire::cellRow({wire::charRow(u"cd")})}));
}

TEST(BorrowedInputs, HoldsTheMessagesForAsLongAsItLives) {
  const Array kept = doubleRow({1});
  Array destroyed = doubleRow({2});
  {
    const orbArray inputs[] = {kept, destroyed, kept};
    BorrowedInputs call(0);
    call.add(inputs, 3);
    EXPECT_EQ(referencesTo(kept), 3);
    destroyed = Array();
    EXPECT_THAT(call.params().rhs(1).qxdouble().elements(), ElementsAre(2));
  }
  EXPECT_EQ(referencesTo(kept), 1);
  EXPECT_THAT(elementsOf<double>(kept), ElementsAre(1));
}

TEST(BorrowedInputs, GivesEverythingBackWhenMemoryEnds) {
  const Array units = charRow(u"ab");
  const Array cells = cellRow(charRow(u"cd"));
  const orbArray inputs[] = {units, cells, units, cells, units};
  bool failed = true;
  for (size_t nth = 1; failed; ++nth) {
    SCOPED_TRACE(nth);
    FailingNew failing = FailingNew::at(nth);
    try {
      BorrowedInputs call(1);
      call.add(inputs, 5);
      failed = failing.stop();
      EXPECT_FALSE(failed);
    } catch (const std::bad_alloc&) {
      failing.stop();
    }
    EXPECT_EQ(referencesTo(units), 1);
    EXPECT_EQ(referencesTo(cells), 1);
    EXPECT_EQ(unitsOf(units), u"ab");
    EXPECT_EQ(unitsOf(Array(orbGetCell(cells, 0))), u"cd");
  }
}

}  // namespace
}  // namespace orb::test
