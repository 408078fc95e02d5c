// SPDX-License-Identifier: MIT
// Calls of the compute server's functions with results that tell one call from another.
#ifndef ORB_TESTS_CLIENT_SERVERS_CALLS_H_
#define ORB_TESTS_CLIENT_SERVERS_CALLS_H_

#include <cstddef>
#include <string>

#include "client/transport/caller.h"

namespace orb::test {

/// Has `mtimes` at `url` multiply value by 2. A wrong product is a failure of the test.
Outcome doubleOnServer(Caller& caller, const std::string& url, double value);

/// Whether `echo` at `url` gives a row of `count` different numbers back.
bool echoes(Caller& caller, const std::string& url, std::size_t count);

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_SERVERS_CALLS_H_
