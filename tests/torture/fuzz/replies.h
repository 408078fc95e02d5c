// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_FUZZ_REPLIES_H_
#define ORB_TESTS_TORTURE_FUZZ_REPLIES_H_

#include <string>

namespace orb::torture {

/// Receives a body as the reply to a call, for as many outputs as the message library
/// finds in it, compares all that the call gives with that, and sends the outputs on.
/// Ends the program at a difference.
void tryReply(const std::string& body);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_FUZZ_REPLIES_H_
