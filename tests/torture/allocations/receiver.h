// SPDX-License-Identifier: MIT
// Arrays as they come from a server.
#ifndef ORB_TESTS_TORTURE_ALLOCATIONS_RECEIVER_H_
#define ORB_TESTS_TORTURE_ALLOCATIONS_RECEIVER_H_

#include <string>

#include "support/array.h"

namespace orb::torture {

/// The table, version 1.1, of a library that this initialises where it is not.
const orbClientRuntime& table();

/// Receives one array, given as its message, over a connection that is kept.
test::Array receive(const std::string& message);

/// Ends that connection: orbTerminate() may follow.
void stopReceiving();

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_ALLOCATIONS_RECEIVER_H_
