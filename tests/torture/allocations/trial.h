// SPDX-License-Identifier: MIT
// A scenario, once for each of its allocations and way of failing.
#ifndef ORB_TESTS_TORTURE_ALLOCATIONS_TRIAL_H_
#define ORB_TESTS_TORTURE_ALLOCATIONS_TRIAL_H_

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "torture/allocations/leaks.h"
#include "torture/allocations/scenario.h"

namespace orb::torture {

/// What has come about in all trials.
struct Tally {
  std::uint64_t trials = 0;       // runs in which an allocation failed
  std::uint64_t allocations = 0;  // of the calls, nothing failing
  std::uint64_t threw = 0;
  std::uint64_t returned = 0;                  // the failure that the scenario names
  std::uint64_t reported = 0;                  // ORB_FAILURE
  std::uint64_t coped = 0;                     // the result in spite of the failure
  std::map<std::string, std::uint64_t> texts;  // of the last errors
  std::set<std::string> functions;

  std::string describe() const;
};

/// Runs the scenario with each allocation failing alone, and with it all that follow, until
/// there are no more; calls `report` for what is not as promised.
void tryScenario(const Scenario& scenario, Tally& tally, Leaks& leaks,
                 const std::function<void(const std::string&)>& report);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_ALLOCATIONS_TRIAL_H_
