// SPDX-License-Identifier: MIT
// Counts the memory that a program holds. Linking counted_malloc.cpp puts it before the C
// library's functions, for the shared libraries too.
#ifndef ORB_TESTS_TORTURE_CEILINGS_COUNTED_MALLOC_H_
#define ORB_TESTS_TORTURE_CEILINGS_COUNTED_MALLOC_H_

#include <cstddef>

namespace orb::torture {

/// Bytes held now, with what malloc() itself needs for each block.
std::size_t heldBytes();
/// The most held at once since restartPeak(). A block that moves when it grows is counted
/// twice at that moment, also where the kernel moves its pages.
std::size_t peakBytes();
void restartPeak();

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_CEILINGS_COUNTED_MALLOC_H_
