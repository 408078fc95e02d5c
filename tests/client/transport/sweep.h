// SPDX-License-Identifier: MIT
// Every exported function that takes an array, called on one whose parts may contradict
// each other.
#ifndef ORB_TESTS_CLIENT_TRANSPORT_SWEEP_H_
#define ORB_TESTS_CLIENT_TRANSPORT_SWEEP_H_

#include <cstddef>

#include "orb/qxorbclient.h"

namespace orb::test {

/// Calls them on `a` and on duplicates of it. What comes back is touched as far as it is
/// stored, which a memory checker watches; `a` keeps its values.
///
/// @param stored      Elements or stored values that data pointers address.
/// @param storedImag  The same of the imaginary part.
void callEveryFunction(orbArray a, std::size_t stored = 0, std::size_t storedImag = 0);

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_TRANSPORT_SWEEP_H_
