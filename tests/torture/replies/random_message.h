// SPDX-License-Identifier: MIT
// Random arrays as the library itself would write them.
#ifndef ORB_TESTS_TORTURE_REPLIES_RANDOM_MESSAGE_H_
#define ORB_TESTS_TORTURE_REPLIES_RANDOM_MESSAGE_H_

#include <cstdint>
#include <random>
#include <string>

namespace orb::torture {

using Random = std::mt19937_64;

/// A number below `bound`.
std::uint64_t below(Random& random, std::uint64_t bound);

/// `length` letters.
std::string randomText(Random& random, std::uint64_t length);

/// An array of any class, with at least one element; containers nest up to three deep.
std::string randomMessage(Random& random, int depth = 0);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_REPLIES_RANDOM_MESSAGE_H_
