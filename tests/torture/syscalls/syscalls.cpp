// SPDX-License-Identifier: MIT
// Every system call of a call fails, with eight errors, or moves one byte: the call gives
// the right result or a reason, loses no descriptor, and the next one succeeds.
//
// An item is one way of calling with one fault.
#include <unistd.h>

#include <csignal>

#include "torture/support/last_words.h"
#include "torture/support/run.h"
#include "torture/syscalls/trial.h"

namespace orb::torture {
namespace {

// A scenario takes two seconds; one that takes so long hangs.
constexpr unsigned kPatienceSec = 60;

std::string listOf(const std::map<std::string, std::uint64_t>& counts) {
  std::string result;
  for (const auto& [name, times] : counts) {
    result += (result.empty() ? "" : ", ") + name + " " + grouped(times);
  }
  return result;
}

void findWhatIsMissing(Run& run, const Tally& tally) {
  for (const char* name : {"socket", "connect", "send", "recv", "poll", "getsockopt",
                           "setsockopt", "fcntl", "close"}) {
    if (tally.functions.count(name) == 0) {
      run.finding(std::string(name) + " never failed", "");
    }
  }
  if (tally.successes == 0 || tally.texts.empty()) {
    run.finding("all calls came to the same", "");
  }
}

int tryAll(Run& run) {
  Tally tally;
  std::uint64_t done = 0;
  for (; run.wants(done); ++done) {
    const std::uint64_t seed = run.seed() + done;
    const Scenario scenario = scenarioOf((seed - 1) % kScenarios);
    const std::string name = scenario.describe();
    const std::string replay = "--seed " + std::to_string(seed) + " --count 1";
    setLastWords(replay);
    ::alarm(kPatienceSec);
    tryScenario(scenario, tally, [&](const std::string& objection) {
      run.finding(name + ", " + objection, replay);
    });
  }
  if (done >= kWays) findWhatIsMissing(run, tally);
  return run.finish(grouped(done) + " scenarios, " + grouped(tally.calls) +
                    " system calls that failed or moved one byte (" +
                    listOf(tally.functions) + "): " + grouped(tally.successes) +
                    " calls succeeded, others failed (" + listOf(tally.texts) + ")");
}

}  // namespace
}  // namespace orb::torture

int main(int argc, char** argv) {
  orb::torture::Run run(argc, argv, orb::torture::kScenarios);
  orb::torture::installLastWords();
  return orb::torture::tryAll(run);
}
