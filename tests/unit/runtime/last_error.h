// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_UNIT_RUNTIME_LAST_ERROR_H_
#define ORB_TESTS_UNIT_RUNTIME_LAST_ERROR_H_

#include <string>

#include "runtime/client_context.h"

namespace orb::test {

/// What getLastErrorInfo() tells, in one text: type, summary and the fields of the type,
/// each behind a bar; each frame of a stack as file:name:line.
std::string lastErrorOf(orbClientContext& context);

/// The same for the generic error of a text.
std::string genericError(const std::string& message);

}  // namespace orb::test

#endif  // ORB_TESTS_UNIT_RUNTIME_LAST_ERROR_H_
