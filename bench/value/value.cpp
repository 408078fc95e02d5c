// SPDX-License-Identifier: MIT
#include "value/value.h"

namespace orb::bench {

Value doubleScalar(double value) {
  Value scalar;
  scalar.dimensions = {1, 1};
  scalar.real = {value};
  return scalar;
}

uint64_t payloadBytes(const Value& value) {
  uint64_t bytes = sizeof(double) * (value.real.size() + value.imaginary.size()) +
                   sizeof(uint16_t) * value.shorts.size() +
                   sizeof(char16_t) * value.text.size() +
                   sizeof(uint64_t) * (value.rows.size() + value.columnStarts.size());
  for (const Value& element : value.elements) bytes += payloadBytes(element);
  return bytes;
}

}  // namespace orb::bench
