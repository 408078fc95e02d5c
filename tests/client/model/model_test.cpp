// SPDX-License-Identifier: MIT
// Random sequences of calls, made on the library and on the model of its rules.
//
// ORB_MODEL_SEQUENCES sets how many, ORB_MODEL_SEED the seed of the first; the others
// follow it by one each.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "client/model/child.h"
#include "client/model/compare.h"
#include "client/model/operation.h"
#include "client/model/server.h"
#include "client/model/shrink.h"
#include "support/scripted_server.h"
#include "support/server_child.h"

namespace orb::model {
namespace {

// With fewer sequences, chance alone may leave a function out.
constexpr uint64_t kSequencesForCoverage = 5000;

uint64_t setting(const char* name, uint64_t fallback) {
  const char* text = std::getenv(name);
  return text == nullptr ? fallback : std::strtoull(text, nullptr, 10);
}

/// The calls of one seed.
std::vector<Operation> sequenceOf(uint64_t seed) {
  Random random(seed);
  ModelWorld model;
  Tally tally;
  std::vector<Operation> operations;
  const size_t length = 15 + random.below(46);
  // Reading elements fills empty ones in: some sequences do so seldom.
  const size_t elementsPercent = random.below(3) * 20;
  // Calls take longer than all else: most sequences make none.
  const size_t runtimePercent = random.chance(20) ? 35 : 0;
  for (size_t i = 0; i < length; ++i) {
    Operation operation = randomOperation(random, model, runtimePercent);
    operation.depth =
        random.chance(elementsPercent) ? Depth::kElements : Depth::kOwnState;
    operation.run({model, nullptr, tally});
    operations.push_back(operation);
  }
  return operations;
}

Difference firstDifference(const Worlds& worlds, Depth depth) {
  for (size_t i = 0; i < kVariables; ++i) {
    const Variable variable{i};
    if (worlds.model.at(variable) == nullptr) continue;
    const Difference found = difference(worlds.library->at(variable),
                                        worlds.model.at(variable), depth, worlds.tally);
    if (found) return "h" + std::to_string(i) + ": " + *found;
  }
  return std::nullopt;
}

Difference replay(const std::vector<Operation>& operations, Tally& tally) {
  ModelWorld model;
  LibraryWorld library;
  const Worlds worlds{model, &library, tally};
  for (const Operation& operation : operations) {
    Difference found = operation.run(worlds);
    if (!found) found = firstDifference(worlds, operation.depth);
    if (found) return found;
  }
  return firstDifference(worlds, Depth::kElements);
}

bool agree(const std::vector<Operation>& operations, Tally& tally) {
  const Difference found = replay(operations, tally);
  if (found) std::cerr << *found << std::endl;
  return !found;
}

/// Whether library and model agree in all sequences of these seeds, in a child process.
bool allAgree(uint64_t firstSeed, uint64_t count, Tally& tally) {
  return holdsInChild(Output::kHidden, [&] {
    for (uint64_t seed = firstSeed; seed < firstSeed + count; ++seed) {
      if (!agree(sequenceOf(seed), tally)) return false;
      tally.addSequence();
    }
    return true;
  });
}

/// One seed that fails, of many of which at least one does.
uint64_t failingSeed(uint64_t firstSeed, uint64_t count) {
  Tally tally;
  while (count > 1) {
    const uint64_t half = count / 2;
    if (allAgree(firstSeed, half, tally)) {
      firstSeed += half;
      count -= half;
    } else {
      count = half;
    }
  }
  return firstSeed;
}

/// Tells what a failing sequence needs to fail, after it has failed once more.
std::string report(uint64_t seed) {
  Tally tally;
  const std::vector<Operation> all = sequenceOf(seed);
  const std::vector<Operation> needed =
      shortest(all, [&](const std::vector<Operation>& some) {
        return !holdsInChild(Output::kHidden, [&] { return agree(some, tally); });
      });
  holdsInChild(Output::kShown, [&] { return agree(needed, tally); });
  std::string text = "ORB_MODEL_SEED=" + std::to_string(seed) + " fails, " +
                     std::to_string(all.size()) + " calls cut to " +
                     std::to_string(needed.size()) + ":\n";
  for (const Operation& operation : needed) text += "  " + operation.text + ";\n";
  return text;
}

/// A tally to which a child process can add.
class SharedTally {
 public:
  SharedTally()
      : memory_(mmap(nullptr, sizeof(Tally), PROT_READ | PROT_WRITE,
                     MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::bad_alloc();
    tally_ = new (memory_) Tally;
  }
  ~SharedTally() { munmap(memory_, sizeof(Tally)); }
  SharedTally(const SharedTally&) = delete;
  SharedTally& operator=(const SharedTally&) = delete;

  Tally& get() { return *tally_; }

 private:
  void* memory_;
  Tally* tally_;
};

TEST(ArrayFunctions, DoWhatTheModelDoes) {
  const uint64_t sequences = setting("ORB_MODEL_SEQUENCES", 20000);
  const uint64_t seed = setting("ORB_MODEL_SEED", 1);
  SharedTally tally;
  const test::ServerChild server(answer);
  const test::DeadPort refusing(test::DeadPort::Answer::kRefusal);
  setServer(server.url(""), refusing.url());
  if (!allAgree(seed, sequences, tally.get())) {
    FAIL() << report(failingSeed(seed, sequences));
  }
  std::cout << "sequences: " << tally.get().sequences() << std::endl;
  if (sequences < kSequencesForCoverage) return;
  for (size_t i = 0; i < kFunctionNames.size(); ++i) {
    EXPECT_GT(tally.get().of(static_cast<Function>(i)), 0U) << kFunctionNames[i];
  }
}

TEST(Shortest, KeepsOnlyWhatTheFailureNeeds) {
  const std::vector<int> items = {9, 1, 8, 2, 7, 3, 6, 4, 5};
  const auto holdsOneThenFour = [](const std::vector<int>& some) {
    const auto one = std::find(some.begin(), some.end(), 1);
    return std::find(one, some.end(), 4) != some.end();
  };
  EXPECT_EQ(shortest(items, holdsOneThenFour), (std::vector<int>{1, 4}));
}

TEST(HoldsInChild, TellsHowTheBodyEnded) {
  EXPECT_TRUE(holdsInChild(Output::kHidden, [] { return true; }));
  EXPECT_FALSE(holdsInChild(Output::kHidden, [] { return false; }));
  EXPECT_FALSE(holdsInChild(Output::kHidden, [] { return std::raise(SIGKILL) == 0; }));
}

}  // namespace
}  // namespace orb::model
