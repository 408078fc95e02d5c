// SPDX-License-Identifier: MIT
// Arrays of every class to call with, and whether what came back is the same.
#ifndef ORB_TESTS_TORTURE_SUPPORT_RANDOM_ARRAY_H_
#define ORB_TESTS_TORTURE_SUPPORT_RANDOM_ARRAY_H_

#include "support/array.h"
#include "torture/support/random.h"

namespace orb::torture {

/// A few elements of any values; structs and cells hold such arrays, two levels deep.
test::Array randomArray(Random& random);

/// 20,000 to 120,000 numbers or code units.
test::Array randomLargeArray(Random& random);

/// Whether class, shape and all values are alike.
bool areSame(orbArray left, orbArray right);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_SUPPORT_RANDOM_ARRAY_H_
