// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_CEILINGS_PAINTED_STACK_H_
#define ORB_TESTS_TORTURE_CEILINGS_PAINTED_STACK_H_

#include <cstddef>
#include <functional>

namespace orb::torture {

/// Runs the body on a thread with a stack of this size, and gives how many bytes of it
/// were used, the thread's own data at its top included. A page in front of the stack
/// cannot be touched: the process dies of a stack that does not suffice.
std::size_t usedStackOf(const std::function<void()>& body, std::size_t stackBytes);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_CEILINGS_PAINTED_STACK_H_
