// SPDX-License-Identifier: MIT
#include "client/servers/calls.h"

#include <gtest/gtest.h>

#include <numeric>

namespace orb::test {

Outcome doubleOnServer(Caller& caller, const std::string& url, double value) {
  const Array left(orbCreateDoubleScalar(value));
  const Array right(orbCreateDoubleScalar(2));
  std::vector<Array> outputs(1);
  const Outcome outcome = caller.call(url, outputs, {left, right});
  if (outcome == success()) {
    EXPECT_EQ(elementsOf<double>(outputs[0]), std::vector<double>{2 * value});
  }
  return outcome;
}

bool echoes(Caller& caller, const std::string& url, std::size_t count) {
  std::vector<double> values(count);
  std::iota(values.begin(), values.end(), 0.5);
  const Array row = doubleRow(values);
  std::vector<Array> outputs(1);
  return caller.call(url, outputs, {row}) == success() &&
         elementsOf<double>(outputs[0]) == values;
}

}  // namespace orb::test
