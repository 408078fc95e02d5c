// SPDX-License-Identifier: MIT
// Calls of every kind for a long time: what the process holds stays as it is.
//
// An item is a cycle of 500 calls, of which --count gives the calls. Behind each cycle
// stand the same calls, so that contexts are left alike, and then the process holds as
// many blocks of memory and descriptors, and as much memory, as after the warm-up. The
// server is a process of its own.
#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "client/transport/caller.h"
#include "support/call_parts.h"
#include "support/scripted_server.h"
#include "support/server_child.h"
#include "support/wire.h"
#include "torture/soak/counting_malloc.h"
#include "torture/support/last_words.h"
#include "torture/support/random_array.h"
#include "torture/support/run.h"

namespace orb::torture {
namespace {

using test::Array;
using test::Caller;
using test::Outcome;

constexpr std::uint64_t kCallsPerCycle = 500;
constexpr std::uint64_t kWarmUpCycles = 20;
constexpr std::uint32_t kSmallLimitBytes = 4000;
constexpr std::uint64_t kMostGrowthBytes = 1 << 20;
const std::string kLongMessage(300, 'm');

test::HttpAnswer answer(const test::HttpCall& call) {
  if (call.target == "/error") {
    return {test::wire::reply(test::wire::error(kLongMessage, "orb:torture",
                                                {{"file", "function", 7}, {"", "", 0}}))};
  }
  if (call.target == "/status") {
    return {"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"};
  }
  if (call.target == "/large") {
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 4001\r\n\r\n";
    return {head + std::string(kSmallLimitBytes + 1, ' ')};
  }
  if (call.target == "/cut") {
    return {"HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n123", true};
  }
  const std::optional<test::CallParts> parts = test::partsOf(call.body);
  if (!parts) return {"HTTP/1.1 400 damaged\r\nContent-Length: 0\r\n\r\n"};
  const std::string result = test::resultOf(parts->inputs);
  return {call.target == "/chunked" ? test::wire::chunkedReply(result)
                                    : test::wire::reply(result)};
}

std::size_t openDescriptors() {
  DIR* folder = ::opendir("/proc/self/fd");
  if (folder == nullptr) throw std::runtime_error("/proc/self/fd");
  std::size_t count = 0;
  while (::readdir(folder) != nullptr) ++count;
  ::closedir(folder);
  return count;
}

std::uint64_t residentBytes() {
  std::uint64_t ignored = 0;
  std::uint64_t pages = 0;
  std::ifstream("/proc/self/statm") >> ignored >> pages;
  return pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

struct Holdings {
  std::int64_t blocks = 0;
  std::size_t descriptors = 0;
  std::uint64_t bytes = 0;

  static Holdings now() {
    // Free memory that the allocator keeps differs with the sizes of the last calls.
    ::malloc_trim(0);
    return {liveBlocks(), openDescriptors(), residentBytes()};
  }
};

class Soak {
 public:
  explicit Soak(Run& run) : run_(run) {}

  int run();

 private:
  void cycle(std::uint64_t seed);
  void call(Random& random);
  void leaveContextsAlike();
  void echo(Random& random, Caller& caller, const std::string& target, bool isLarge);
  void fail(Caller& caller, const std::string& url, const Outcome& wanted,
            const char* name);
  void refuse(Caller& caller);
  void cut(Caller& caller);
  void checkHoldings(std::uint64_t cycle);

  void judge(bool isRight, const std::string& what) {
    ++counts_[what];
    if (!isRight) run_.finding("a wrong outcome: " + what, replayArguments_);
  }

  Run& run_;
  test::ServerChild server_{answer};
  test::DeadPort refusing_{test::DeadPort::Answer::kRefusal};
  Caller usual_;
  Caller limited_{[] {
    test::Settings settings;
    settings.limitBytes = kSmallLimitBytes;
    return settings;
  }()};
  std::string replayArguments_;
  std::map<std::string, std::uint64_t> counts_;
  std::uint64_t calls_ = 0;
  Holdings start_;
  std::uint64_t mostBytes_ = 0;
};

void Soak::echo(Random& random, Caller& caller, const std::string& target, bool isLarge) {
  std::vector<Array> inputs;
  inputs.push_back(isLarge ? randomLargeArray(random) : randomArray(random));
  if (random.chance(40)) inputs.push_back(randomArray(random));
  std::vector<orbArray> handles(inputs.begin(), inputs.end());
  std::vector<Array> outputs(inputs.size());
  const bool isRight =
      caller.call(server_.url(target), outputs, handles) == test::success() &&
      std::equal(inputs.begin(), inputs.end(), outputs.begin(), areSame);
  judge(isRight, isLarge ? "large" : "small");
  if (!random.chance(10)) return;
  // What shares storage may outlive what it came with.
  const Array copy(orbDuplicateArray(outputs[0]));
  outputs.clear();
  judge(areSame(copy, inputs[0]), "duplicated");
}

void Soak::fail(Caller& caller, const std::string& url, const Outcome& wanted,
                const char* name) {
  const Array input(orbCreateString("any"));
  std::vector<Array> outputs(2);
  judge(caller.call(url, outputs, {input}) == wanted, name);
}

void Soak::refuse(Caller& caller) {
  fail(caller, refusing_.url(), test::genericError("Couldn't connect to server"),
       "refused connection");
}

void Soak::cut(Caller& caller) {
  fail(caller, server_.url("/cut"), test::genericError("Transferred a partial file"),
       "cut reply");
}

void Soak::call(Random& random) {
  const std::uint64_t kind = random.below(100);
  if (kind < 58) return echo(random, usual_, "/echo", false);
  if (kind < 60) return echo(random, usual_, "/echo", true);
  if (kind < 64) return echo(random, usual_, "/chunked", false);
  if (kind < 72) {
    return fail(usual_, server_.url("/error"),
                test::kaldexError(kLongMessage, "orb:torture"), "server error");
  }
  if (kind < 79) {
    return fail(usual_, server_.url("/status"), test::httpError(404, "Not Found\r\n"),
                "HTTP error");
  }
  if (kind < 83) {
    return fail(usual_, server_.url("/echo"), test::countMismatch(1, 2),
                "wrong number of outputs");
  }
  if (kind < 87) return refuse(usual_);
  if (kind < 92) {
    return fail(limited_, server_.url("/large"), test::refusal(), "limited reply");
  }
  if (kind < 95) return cut(usual_);
  Caller fresh;
  ++counts_["new context"];
  echo(random, fresh, "/echo", random.chance(5));
}

/// With the addresses of both ports known, a new connection, an error and an output.
void Soak::leaveContextsAlike() {
  for (Caller* caller : {&usual_, &limited_}) {
    refuse(*caller);
    cut(*caller);
    fail(*caller, server_.url("/error"), test::kaldexError(kLongMessage, "orb:torture"),
         "server error");
    Random same(0);
    echo(same, *caller, "/echo", false);
  }
}

void Soak::cycle(std::uint64_t seed) {
  replayArguments_ = "--count 1 --seed " + std::to_string(seed);
  setLastWords(replayArguments_);
  Random random(seed);
  for (std::uint64_t i = 0; i < kCallsPerCycle; ++i) call(random);
  leaveContextsAlike();
}

void Soak::checkHoldings(std::uint64_t cycle) {
  // libcurl forgets an address after a minute, which may be over during the last calls.
  if (liveBlocks() != start_.blocks) leaveContextsAlike();
  const Holdings now = Holdings::now();
  const std::string after = " after cycle " + std::to_string(cycle);
  if (now.blocks != start_.blocks) {
    run_.finding(std::to_string(now.blocks - start_.blocks) + " more blocks" + after,
                 replayArguments_);
  }
  if (now.descriptors != start_.descriptors) {
    run_.finding(std::to_string(now.descriptors) + " descriptors" + after + ", " +
                     std::to_string(start_.descriptors) + " before",
                 replayArguments_);
  }
  if (now.bytes > start_.bytes + kMostGrowthBytes) {
    run_.finding(std::to_string(now.bytes) + " resident bytes" + after + ", " +
                     std::to_string(start_.bytes) + " before",
                 replayArguments_);
  }
  start_.blocks = now.blocks;  // each cycle answers for its own
  mostBytes_ = std::max(mostBytes_, now.bytes);
}

int Soak::run() {
  for (std::uint64_t i = 0; i < kWarmUpCycles; ++i) cycle(i);
  // The entries stay: the first cycle is to allocate nothing that remains.
  for (auto& [what, count] : counts_) count = 0;
  start_ = Holdings::now();
  const Holdings warm = start_;
  std::uint64_t done = 0;
  for (; run_.wants(done * kCallsPerCycle); ++done) {
    cycle(run_.seed() + done);
    checkHoldings(done);
  }
  std::ostringstream text;
  text << grouped(done * kCallsPerCycle) << " calls";
  for (const auto& [what, count] : counts_) text << ", " << what << ' ' << grouped(count);
  text << "; " << grouped(static_cast<std::uint64_t>(start_.blocks)) << " live blocks, "
       << warm.descriptors << " descriptors, " << warm.bytes / 1024
       << " KiB resident before and at most " << mostBytes_ / 1024 << " KiB later";
  return run_.finish(text.str());
}

}  // namespace
}  // namespace orb::torture

int main(int argc, char** argv) {
  // A finding's text would take a block, and the next cycle have one more.
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  orb::torture::installLastWords();
  orb::torture::Run run(argc, argv, 100000);
  return orb::torture::Soak(run).run();
}
