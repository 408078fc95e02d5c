// SPDX-License-Identifier: MIT
#include "torture/allocations/suite.h"

#include <iostream>

#include "torture/allocations/receiver.h"
#include "torture/allocations/trial.h"
#include "torture/support/last_words.h"
#include "torture/support/run.h"

namespace orb::torture {

int tryScenarios(int argc, char** argv, const Scenarios& all,
                 const std::set<std::string>& needed) {
  Run run(argc, argv, all.size());
  installLastWords();
  Tally tally;
  Leaks leaks;
  std::uint64_t done = 0;
  for (; run.wants(done); ++done) {
    const std::uint64_t seed = run.seed() + done;
    const Scenario& scenario = all[(seed - 1) % all.size()];
    const std::string name = scenario.name();
    const std::string replay = "--seed " + std::to_string(seed) + " --count 1";
    setLastWords(replay);
    const auto report = [&](const std::string& what) {
      run.finding(name + ", " + what, replay);
    };
    tryScenario(scenario, tally, leaks, report);
    for (const std::string& leak : leaks.takeOurs()) report(leak);
  }
  stopReceiving();
  if (done >= all.size()) {
    if (tally.trials == 0) run.finding("no allocation failed", "");
    for (const std::string& function : needed) {
      if (tally.functions.count(function) == 0) run.finding(function + " not tried", "");
    }
  }
  for (const auto& [text, times] : tally.texts) {
    std::cout << "reported: " << grouped(times) << " times " << text << '\n';
  }
  std::cout << leaks.describe();
  return run.finish(grouped(done) + " scenarios, " + tally.describe());
}

}  // namespace orb::torture
