// SPDX-License-Identifier: MIT
// The hosted functions: a function is its definition in functions/ and its line here.
#ifndef ORB_TOOLS_ORBSERVE_FUNCTIONS_H_
#define ORB_TOOLS_ORBSERVE_FUNCTIONS_H_

#include <limits>

#include "call.h"

// Name, fewest inputs, most inputs, most outputs.
#define ORBSERVE_FUNCTIONS(FUNCTION)        \
  FUNCTION(describe, 1, 1, 1)               \
  FUNCTION(echo, 0, kAnyNumber, kAnyNumber) \
  FUNCTION(eig, 1, 1, 2)                    \
  FUNCTION(fail, 0, 1, kAnyNumber)          \
  FUNCTION(mtimes, 2, 2, 1)                 \
  FUNCTION(pca, 1, 1, 3)                    \
  FUNCTION(regress, 2, 2, 3)                \
  FUNCTION(sleep, 1, 1, 1)                  \
  FUNCTION(solve, 2, 2, 1)                  \
  FUNCTION(sparse_mtimes, 2, 2, 1)          \
  FUNCTION(sum, 1, 1, 1)                    \
  FUNCTION(svd, 1, 1, 3)                    \
  FUNCTION(upper, 1, 1, 1)

namespace orb::serve {

inline constexpr int kAnyNumber = std::numeric_limits<int>::max();

#define ORBSERVE_DECLARE(name, ...) void name(Call& call);
ORBSERVE_FUNCTIONS(ORBSERVE_DECLARE)
#undef ORBSERVE_DECLARE

}  // namespace orb::serve

#endif  // ORB_TOOLS_ORBSERVE_FUNCTIONS_H_
