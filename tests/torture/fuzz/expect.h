// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_FUZZ_EXPECT_H_
#define ORB_TESTS_TORTURE_FUZZ_EXPECT_H_

#include <cstdio>
#include <cstdlib>
#include <string>

namespace orb::torture {

/// Ends the program where something does not hold: the fuzzer then keeps the input.
inline void expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "finding: %s\n", what);
  std::abort();
}

inline void expectText(const char* found, const std::string& expected, const char* what) {
  if (found != nullptr && found == expected) return;
  std::fprintf(stderr, "finding: %s: \"%s\" instead of \"%s\"\n", what,
               found == nullptr ? "(null)" : found, expected.c_str());
  std::abort();
}

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_FUZZ_EXPECT_H_
