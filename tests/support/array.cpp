// SPDX-License-Identifier: MIT
#include "support/array.h"

#include <algorithm>

namespace orb::test {

Array doubleRow(const std::vector<double>& values) {
  Array row(orbCreateDoubleMatrix(1, values.size(), orbREAL));
  std::copy(values.begin(), values.end(), orbGetPr(row));
  return row;
}

Array charRow(const std::u16string& units) {
  const size_t dims[] = {units.empty() ? 0u : 1u, units.size()};
  Array row(orbCreateCharArray(2, dims));
  std::copy(units.begin(), units.end(), orbGetChars(row));
  return row;
}

Array structOf(const std::vector<const char*>& names) {
  std::vector<const char*> copy = names;
  return Array(orbCreateStructMatrix(1, 1, static_cast<int>(copy.size()), copy.data()));
}

std::vector<size_t> dimensionsOf(orbArray a) {
  const size_t* first = orbGetDimensions(a);
  return std::vector<size_t>(first, first + orbGetNumberOfDimensions(a));
}

std::u16string unitsOf(orbArray a) {
  const std::vector<char16_t> units = elementsOf<char16_t>(a);
  return std::u16string(units.begin(), units.end());
}

}  // namespace orb::test
