// SPDX-License-Identifier: MIT
#include "torture/allocations/trial.h"

#include <algorithm>
#include <exception>

#include "torture/allocations/failing_malloc.h"
#include "torture/support/run.h"

namespace orb::torture {
namespace {

constexpr const char* kReported = "reported: ";

struct Failing {
  std::size_t nth;  // 0 for none
  bool andLater;

  std::string describe() const {
    return "allocation " + std::to_string(nth) + (andLater ? " and later" : "");
  }
};

/// What one run showed.
struct Observation {
  std::size_t calls = 0;
  std::size_t failures = 0;
  std::string outcome;
  std::string kept;
  std::string state;
  std::string outcomeAgain;  // of a second call, with all memory
  std::string stateAgain;
};

/// A call whose exception is its outcome; "" for none.
std::string actFailing(Situation& situation, Failing failing, Observation& seen) {
  FailingMalloc plan(failing.nth, failing.andLater);
  std::exception_ptr thrown;
  try {
    situation.act();
  } catch (...) {
    thrown = std::current_exception();
  }
  plan.stop();
  seen.calls = plan.calls();
  seen.failures = plan.failures();
  const WatchPause pause;
  try {
    if (thrown) std::rethrow_exception(thrown);
  } catch (const std::exception& failure) {
    return "throws " + std::string(failure.what());
  }
  return "";
}

void observe(const Scenario& scenario, Failing failing, Observation& seen) {
  const std::unique_ptr<Situation> situation = scenario.make();
  {
    const std::string thrown = actFailing(*situation, failing, seen);
    const WatchPause pause;
    seen.outcome = thrown.empty() ? situation->outcome() : thrown;
    seen.kept = situation->kept();
    seen.state = situation->state();
  }
  Observation ignored;
  const std::string thrown = actFailing(*situation, {0, false}, ignored);
  const WatchPause pause;
  seen.outcomeAgain = thrown.empty() ? situation->outcome() : thrown;
  seen.stateAgain = situation->state();
}

/// One run and what it left behind, with stacks where it is like something in `traced`.
Observation run(const Scenario& scenario, Failing failing,
                const std::vector<Block>& traced, std::vector<Block>& left) {
  Observation seen;
  WatchedBlocks watched(traced);
  observe(scenario, failing, seen);
  left = watched.stop();
  return seen;
}

/// Runs again for the stacks of blocks that have none. One that is not left again, because
/// it is made once in a process, keeps the frame that it has.
void trace(const Scenario& scenario, Failing failing, std::vector<Block>& left) {
  const auto isTraced = [](const Block& block) { return block.isTraced; };
  if (std::all_of(left.begin(), left.end(), isTraced)) return;
  std::vector<Block> again;
  run(scenario, failing, left, again);
  for (Block& block : left) {
    const auto same = std::find_if(again.begin(), again.end(), [&](const Block& other) {
      return other.isTraced && other.size == block.size;
    });
    if (block.isTraced || same == again.end()) continue;
    block = *same;
    again.erase(same);
  }
}

bool isReported(const std::string& outcome) {
  return outcome.compare(0, std::string(kReported).size(), kReported) == 0;
}

/// Whether the failure is one that the header names.
bool isPromised(const Scenario& scenario, const std::string& outcome) {
  switch (scenario.promise) {
    case Promise::kNeverFails:
      return false;
    case Promise::kThrows:
      return outcome == "throws std::bad_alloc";
    case Promise::kReturns:
      for (const std::string& failure : scenario.failures) {
        if (outcome == failure) return true;
      }
      return false;
    case Promise::kReports:
      return isReported(outcome);
  }
  return false;
}

void count(const Scenario& scenario, const std::string& outcome, Tally& tally) {
  switch (scenario.promise) {
    case Promise::kNeverFails:
      break;
    case Promise::kThrows:
      ++tally.threw;
      break;
    case Promise::kReturns:
      ++tally.returned;
      break;
    case Promise::kReports:
      ++tally.reported;
      ++tally.texts[outcome.substr(std::string(kReported).size())];
      break;
  }
}

/// What is wrong with a run; "" for nothing.
std::string judge(const Scenario& scenario, const std::string& keptBefore,
                  const Observation& whole, const Observation& seen, Tally& tally) {
  const bool hasCoped = seen.outcome == whole.outcome;
  if (hasCoped) {
    ++tally.coped;
    if (seen.state != whole.state) return "leaves " + seen.state;
  } else {
    if (!isPromised(scenario, seen.outcome)) return "gives " + seen.outcome;
    count(scenario, seen.outcome, tally);
    if (seen.kept != keptBefore) return "changes " + keptBefore + " to " + seen.kept;
  }
  // A call that has failed is made anew, and one that has succeeded a second time.
  const std::string& outcome = hasCoped ? whole.outcomeAgain : whole.outcome;
  const std::string& state = hasCoped ? whole.stateAgain : whole.state;
  if (seen.outcomeAgain != outcome) return "then gives " + seen.outcomeAgain;
  if (seen.stateAgain != state) return "then leaves " + seen.stateAgain;
  return "";
}

}  // namespace

std::string Tally::describe() const {
  return grouped(trials) + " failing allocations of " + grouped(functions.size()) +
         " functions: " + grouped(threw) + " thrown, " + grouped(returned) +
         " returned, " + grouped(reported) + " reported, " + grouped(coped) +
         " coped with";
}

void tryScenario(const Scenario& scenario, Tally& tally, Leaks& leaks,
                 const std::function<void(const std::string&)>& report) {
  const std::string keptBefore = scenario.make()->kept();
  std::vector<Block> left;
  run(scenario, {0, false}, {}, left);  // what is made once in a process is made now
  const Observation whole = run(scenario, {0, false}, {}, left);
  // An array of another class is refused in any case.
  if (scenario.promise != Promise::kReturns && isPromised(scenario, whole.outcome)) {
    report("nothing failing: gives " + whole.outcome);
  }
  if (!left.empty()) {
    trace(scenario, {0, false}, left);
    leaks.add(left, scenario.name() + ", nothing failing");
  }
  tally.functions.insert(scenario.function);
  tally.allocations += whole.calls;
  for (const bool andLater : {false, true}) {
    for (std::size_t nth = scenario.first;; nth += scenario.step) {
      const Failing failing{nth, andLater};
      const Observation seen = run(scenario, failing, {}, left);
      if (seen.failures == 0) break;
      ++tally.trials;
      const std::string objection = judge(scenario, keptBefore, whole, seen, tally);
      if (!objection.empty()) report(failing.describe() + ": " + objection);
      if (left.empty()) continue;
      trace(scenario, failing, left);
      leaks.add(left, scenario.name() + ", " + failing.describe());
    }
  }
}

}  // namespace orb::torture
