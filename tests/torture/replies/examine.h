// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_REPLIES_EXAMINE_H_
#define ORB_TESTS_TORTURE_REPLIES_EXAMINE_H_

#include "orb/qxorbclient.h"

namespace orb::torture {

/// Calls every function on an array of which nothing is known, and on what lies in it; a
/// sanitizer watches. Throws when two functions contradict each other.
void examine(orbArray a, int depth = 0);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_REPLIES_EXAMINE_H_
