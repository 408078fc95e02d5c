// SPDX-License-Identifier: MIT
// The texts of a char array, against a plain conversion of its code units.
#ifndef ORB_TESTS_TORTURE_FUZZ_TEXTS_H_
#define ORB_TESTS_TORTURE_FUZZ_TEXTS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "orb/qxorbclient.h"

namespace orb::torture {

/// The UTF-8 text of the units; none when the last one is a surrogate on its own.
std::optional<std::string> utf8Of(const std::vector<char16_t>& units);

/// Compares both texts of a char array that holds these units and whose extents promise
/// `count` of them. Ends the program at a difference.
void expectTexts(orbArray a, const std::vector<char16_t>& units, uint64_t count);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_FUZZ_TEXTS_H_
