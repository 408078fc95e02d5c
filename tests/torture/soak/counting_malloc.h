// SPDX-License-Identifier: MIT
// Counts what is allocated. Linking counting_malloc.cpp replaces the program's allocator
// functions, those that shared libraries call included, by ones that count.
#ifndef ORB_TESTS_TORTURE_SOAK_COUNTING_MALLOC_H_
#define ORB_TESTS_TORTURE_SOAK_COUNTING_MALLOC_H_

#include <cstdint>

namespace orb::torture {

/// The blocks that are allocated and not yet freed.
std::int64_t liveBlocks();

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_SOAK_COUNTING_MALLOC_H_
