// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_ALLOCATIONS_SUITE_H_
#define ORB_TESTS_TORTURE_ALLOCATIONS_SUITE_H_

#include <set>
#include <string>

#include "torture/allocations/scenario.h"

namespace orb::torture {

/// Tries as many scenarios as the command line asks for, all unless it says otherwise.
/// @param needed  What must have been tried when all were.
/// @return The program's exit code.
int tryScenarios(int argc, char** argv, const Scenarios& all,
                 const std::set<std::string>& needed);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_ALLOCATIONS_SUITE_H_
