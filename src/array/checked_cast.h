// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_CHECKED_CAST_H_
#define ORB_ARRAY_CHECKED_CAST_H_

#include <boost/numeric/conversion/cast.hpp>
#include <cstdint>

namespace orb {

/// Narrows a count to what a message's list can hold. Above 2147483647 it throws
/// boost::numeric::positive_overflow.
template <class Count>
int32_t checkedInt32(Count count) {
  return boost::numeric_cast<int32_t>(count);
}

}  // namespace orb

#endif  // ORB_ARRAY_CHECKED_CAST_H_
