// SPDX-License-Identifier: MIT
// Replies cut at every byte, sent byte by byte and with every bit flipped: a call gives
// what the whole reply would give, an error that is documented, or, where only the values
// were damaged, other arrays that can be used; and the context goes on working.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <iostream>
#include <thread>

#include "torture/replies/trial.h"
#include "torture/support/last_words.h"
#include "torture/support/run.h"

namespace orb::torture {
namespace {

constexpr std::size_t kThreads = 2;
// The fixed answers but for flips in most heads, and a few random ones.
constexpr std::uint64_t kCommitReplies = 34000;
// So many items bring every kind of outcome about.
constexpr std::uint64_t kEnoughForAll = 20000;

std::ptrdiff_t openDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return std::distance(begin(all), end(all));
}

void work(Run& run, std::atomic<std::uint64_t>& next, Tally& tally) {
  Lane first(run, Road::kFirst);
  Lane reused(run, Road::kReused);
  for (std::uint64_t i = next++; run.wants(i); i = next++) {
    const std::uint64_t seed = run.seed() + i;
    setLastWords("--seed " + std::to_string(seed) + " --count 1");
    const Item item = itemOf(seed);
    (item.road == Road::kFirst ? first : reused).run(seed, item);
    ++tally.items;
  }
  tally += first.tally();
  tally += reused.tally();
}

void findWhatIsMissing(Run& run, const Tally& tally) {
  if (tally.items < kEnoughForAll) return;
  for (const std::uint64_t count :
       {tally.whole, tally.other, tally.httpErrors, tally.serverErrors,
        tally.genericErrors, tally.examined}) {
    if (count == 0) run.finding("something never happened: " + tally.describe(), "");
  }
}

int tryAll(Run& run) {
  const std::ptrdiff_t descriptors = openDescriptors();
  std::atomic<std::uint64_t> next{0};
  Tally tallies[kThreads];
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] { work(run, next, tallies[i]); });
  }
  Tally all;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads[i].join();
    all += tallies[i];
  }
  findWhatIsMissing(run, all);
  if (openDescriptors() != descriptors) {
    run.finding("descriptors left open: " + all.describe(), "");
  }
  return run.finish(all.describe() + "; a round of the fixed answers takes " +
                    grouped(fixedItems()));
}

}  // namespace
}  // namespace orb::torture

int main(int argc, char** argv) {
  orb::torture::Run run(argc, argv, orb::torture::kCommitReplies);
  // The functions that are shared with the tests tell by an exception what is wrong.
  GTEST_FLAG_SET(throw_on_failure, true);
  ::testing::InitGoogleTest();
  orb::torture::installLastWords();
  return orb::torture::tryAll(run);
}
