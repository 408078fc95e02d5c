// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_ALLOCATIONS_DESCRIBE_H_
#define ORB_TESTS_TORTURE_ALLOCATIONS_DESCRIBE_H_

#include <cstddef>
#include <string>

#include "orb/qxorbclient.h"

namespace orb::torture {

/// All that the reading functions tell of an array, what lies in it included.
std::string describe(orbArray a);

/// The first `count` elements only, whatever the extents say; stored values of a sparse
/// array are all told.
std::string describeElements(orbArray a, std::size_t count);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_ALLOCATIONS_DESCRIBE_H_
