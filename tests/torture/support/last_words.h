// SPDX-License-Identifier: MIT
// Lets a check that crashes say how to make that happen again.
#ifndef ORB_TESTS_TORTURE_SUPPORT_LAST_WORDS_H_
#define ORB_TESTS_TORTURE_SUPPORT_LAST_WORDS_H_

#include <string>

namespace orb::torture {

/// From now on a process that dies of a signal or at a sanitizer's finding prints a
/// finding first, with the replay arguments of the thread in which it dies.
void installLastWords();

/// The replay arguments of what this thread does next.
void setLastWords(const std::string& replayArguments);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_SUPPORT_LAST_WORDS_H_
