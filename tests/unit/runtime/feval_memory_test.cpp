// SPDX-License-Identifier: MIT
// Calls that run out of memory, and requests that grow too large.
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

#include "array/handle.h"
#include "runtime/call_body.h"
#include "support/array.h"
#include "support/failing_new.h"
#include "support/wire.h"
#include "unit/runtime/last_error.h"
#include "unit/runtime/with_fake_client.h"

namespace orb::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FevalMemory : public WithFakeClient {};

TEST_F(FevalMemory, FailsAtEveryAllocationUpToTheResponse) {
  const Array units = charRow(u"ab");
  const Array cells = cellRow(charRow(u"cd"), doubleRow({1}));
  server_.status = 404;
  server_.statusMessage = "A phrase too long to be held in place\r\n";
  bool failed = true;
  for (size_t nth = 1; failed; ++nth) {
    SCOPED_TRACE(nth);
    std::vector<orbArray> outputs = slots(1);
    const std::vector<orbArray> inputs{units, cells, units};
    FailingNew failing = FailingNew::at(nth);
    const orbStatus status = call(outputs, inputs);
    failed = failing.stop();
    EXPECT_EQ(status, ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context_), failed
                                         ? genericError("std::bad_alloc")
                                         : "0|A non-200 HTTP response was received|404|" +
                                               server_.statusMessage);
    EXPECT_THAT(outputs, Each(before_.get()));
    EXPECT_EQ(proxyOf(units).sharedMessage().use_count(), 1);
    EXPECT_EQ(proxyOf(cells).sharedMessage().use_count(), 1);
    EXPECT_EQ(unitsOf(units), u"ab");
    EXPECT_EQ(unitsOf(Array(orbGetCell(cells, 0))), u"cd");
  }
  EXPECT_EQ(server_.bodies.back(),
            wire::params(1, {wire::charRow(u"ab"),
                             wire::cellRow({wire::charRow(u"cd"), wire::doubleRow({1})}),
                             wire::charRow(u"ab")}));
}

// Backwards from the last allocation of a call, as long as the last output is stored:
// what fails then is the making of the others.
TEST_F(FevalMemory, KeepsTheOutputsThatWereStored) {
  server_.reply = wire::result({wire::doubleRow({0}), wire::charRow(u"ab"),
                                wire::cellRow({wire::doubleRow({2})})});
  const auto destroy = [&](const std::vector<orbArray>& outputs) {
    for (const orbArray output : outputs) {
      if (output != before_) orbDestroyArray(output);
    }
  };
  std::vector<orbArray> outputs = slots(3);
  FailingNew counting = FailingNew::never();
  const orbStatus wholeCall = call(outputs);
  size_t nth = counting.calls();
  counting.stop();
  ASSERT_EQ(wholeCall, ORB_OK);
  while (outputs[2] != before_) {
    destroy(outputs);
    outputs = slots(3);
    SCOPED_TRACE(nth);
    FailingNew failing = FailingNew::at(nth--);
    const orbStatus status = call(outputs);
    EXPECT_TRUE(failing.stop());
    EXPECT_EQ(status, ORB_FAILURE);
    EXPECT_EQ(lastErrorOf(context_), genericError("std::bad_alloc"));
    EXPECT_EQ(outputs[0], before_);
    EXPECT_TRUE(outputs[1] == before_ || outputs[2] != before_);
  }
}

TEST_F(FevalMemory, RecordsWhenNothingIsLeft) {
  std::vector<orbArray> outputs(1);
  FailingNew failing = FailingNew::always();
  const orbStatus status = call(outputs);
  EXPECT_TRUE(failing.stop());
  EXPECT_EQ(status, ORB_FAILURE);
  EXPECT_EQ(lastErrorOf(context_), genericError("std::bad_alloc"));
}

/// A column of bytes.
Array byteColumn(size_t size) {
  return Array(orbCreateNumericMatrix(size, 1, orbUINT8_CLASS, orbREAL));
}

/// What an input adds to a request.
size_t requestBytesOf(orbArray input) {
  ByteBlock block;
  return CallBody(block, 0, &input, 1).size() - CallBody(block, 0, nullptr, 0).size();
}

// The same handle many times: a request of 2 GiB from arrays of 16 MiB.
TEST_F(FevalMemory, RefusesRequestsAbove31Bits) {
  constexpr size_t kHighest = 2147483647;
  constexpr size_t kBlock = size_t{1} << 24;
  ByteBlock bytes;
  const size_t empty = CallBody(bytes, 0, nullptr, 0).size();
  const Array block = byteColumn(kBlock);
  const size_t rest = kHighest - empty - 127 * requestBytesOf(block);
  const size_t overhead = requestBytesOf(byteColumn(rest - 64)) - (rest - 64);
  const Array last = byteColumn(rest - overhead);
  const Array oneMore = byteColumn(rest - overhead + 1);
  std::vector<orbArray> inputs(128, block);
  std::vector<orbArray> outputs;

  inputs.back() = oneMore;
  EXPECT_EQ(call(outputs, inputs), ORB_FAILURE);
  EXPECT_EQ(lastErrorOf(context_),
            genericError("bad numeric conversion: positive overflow"));

  EXPECT_THAT(server_.urls, IsEmpty());

  // The highest size passes; the test need not have the memory to receive it.
  inputs.back() = last;
  server_.onPerform = [] { throw std::runtime_error("sent"); };
  EXPECT_EQ(call(outputs, inputs), ORB_FAILURE);
  EXPECT_EQ(lastErrorOf(context_), genericError("sent"));
  EXPECT_EQ(orbGetNumberOfElements(block), kBlock);
  EXPECT_EQ(proxyOf(block).sharedMessage().use_count(), 1);
}

}  // namespace
}  // namespace orb::test
