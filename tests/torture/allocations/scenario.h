// SPDX-License-Identifier: MIT
// A call whose allocations fail, and what the header says comes of that.
#ifndef ORB_TESTS_TORTURE_ALLOCATIONS_SCENARIO_H_
#define ORB_TESTS_TORTURE_ALLOCATIONS_SCENARIO_H_

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orb::torture {

/// All that one call needs, made anew for each allocation that fails. Its end frees
/// everything.
class Situation {
 public:
  virtual ~Situation() = default;
  /// The call. What it gave is kept for outcome(), and nothing else is allocated.
  virtual void act() = 0;
  /// What the last call gave.
  virtual std::string outcome() = 0;
  /// What the call must leave as it was when it fails.
  virtual std::string kept() = 0;
  /// All that can be told of the inputs.
  virtual std::string state() { return kept(); }
};

enum class Promise {
  kNeverFails,
  kThrows,   // std::bad_alloc
  kReturns,  // one of the outcomes that are named
  kReports,  // ORB_FAILURE, and the reason as last error
};

struct Scenario {
  std::string function;  // exported, or a member of the table
  std::string on;        // what it is called on
  Promise promise;
  std::vector<std::string> failures;  // the outcomes of kReturns
  std::function<std::unique_ptr<Situation>()> make;
  // Which of the call's allocations fail, counted from 1: a share, where they are many.
  std::size_t first = 1;
  std::size_t step = 1;

  std::string name() const { return function + " " + on; }
};

using Scenarios = std::vector<Scenario>;

/// The exported functions that take arrays, on arrays of every class, made here, received,
/// and without elements.
void addArrayScenarios(Scenarios& all);
/// Those that create arrays.
void addCreationScenarios(Scenarios& all);
/// Initialisation, and the members of the table except feval.
void addRuntimeScenarios(Scenarios& all);
/// feval with arrays of every class in both directions, and with errors.
void addCallScenarios(Scenarios& all);
/// feval over TLS, with the client's certificate and without.
void addTlsCallScenarios(Scenarios& all);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_ALLOCATIONS_SCENARIO_H_
