// SPDX-License-Identifier: MIT
// Many threads that call at the same time, go on with each other's arrays and contexts, and
// destroy handles whose storage other threads' handles share.
//
// An item is one call of every thread.
#include <algorithm>
#include <array>
#include <csignal>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "client/transport/caller.h"
#include "support/call_parts.h"
#include "support/loopback_server.h"
#include "support/scripted_server.h"
#include "support/wire.h"
#include "torture/support/last_words.h"
#include "torture/support/random_array.h"
#include "torture/support/run.h"
#include "torture/threads/exchange.h"

// A data race ends the program, so that what the thread was at is known.
extern "C" const char* __tsan_default_options() { return "halt_on_error=1"; }

namespace orb::torture {
namespace {

using test::Array;
using test::Caller;

constexpr std::size_t kThreads = 64;

constexpr const char* kAllThatHappens[] = {"echoes",
                                           "server errors",
                                           "HTTP errors",
                                           "refused connections",
                                           "arrays of other threads sent",
                                           "handles destroyed elsewhere",
                                           "contexts handed over",
                                           "contexts made"};

test::HttpAnswer answer(const test::HttpCall& call) {
  const std::string target(call.target);
  if (target.rfind("/error/", 0) == 0) {
    return {test::wire::reply(test::wire::error(target, "orb:torture", {{"f", "g", 3}}))};
  }
  if (target.rfind("/status/", 0) == 0) {
    return {"HTTP/1.1 404 " + target + "\r\nContent-Length: 0\r\n\r\n"};
  }
  const std::optional<test::CallParts> parts = test::partsOf(call.body);
  if (!parts) return {"HTTP/1.1 400 damaged\r\nContent-Length: 0\r\n\r\n"};
  return {test::wire::reply(test::resultOf(parts->inputs))};
}

/// What all threads use.
struct Common {
  explicit Common(Run& itsRun) : run(itsRun) {}

  Run& run;
  test::LoopbackServer server{answer};
  test::DeadPort refusing{test::DeadPort::Answer::kRefusal};
  std::array<Mailbox, kThreads> mailboxes;
  ContextPool contexts;
};

class Worker {
 public:
  Worker(Common& common, std::size_t number) : common_(common), number_(number) {}

  void run() {
    for (std::uint64_t i = 0; common_.run.wants(i); ++i) callOnce(common_.run.seed() + i);
  }

  const std::map<std::string, std::uint64_t>& counts() const { return counts_; }

 private:
  void callOnce(std::uint64_t seed);
  void takeMail();
  void echo(Random& random);
  void fail(const std::string& url, const test::Outcome& wanted, const char* name);
  void giveAway(Random& random, std::vector<Array> arrays);

  Mailbox& other(Random& random) { return common_.mailboxes[random.below(kThreads)]; }
  std::string own(const char* path) const { return path + std::to_string(number_); }
  void judge(bool isRight, const char* what) {
    ++counts_[what];
    if (!isRight) {
      common_.run.finding(std::string("a wrong outcome: ") + what, replayArguments_);
    }
  }

  Common& common_;
  const std::size_t number_;
  std::unique_ptr<Caller> caller_ = std::make_unique<Caller>();
  std::vector<Array> gifts_;  // made by other threads
  std::string replayArguments_;
  std::map<std::string, std::uint64_t> counts_;
};

void Worker::takeMail() {
  Mail mail = common_.mailboxes[number_].takeAll();
  counts_["handles destroyed elsewhere"] += mail.shared.size();
  for (Array& gift : mail.own) gifts_.push_back(std::move(gift));
}

/// Inputs, outputs and copies end on other threads, and their elements on further ones.
void Worker::giveAway(Random& random, std::vector<Array> arrays) {
  for (Array& array : arrays) {
    if (orbIsCell(array) || orbIsStruct(array)) {
      const std::size_t count = orbGetNumberOfElements(array);
      for (std::size_t i = 0; i < std::min<std::size_t>(count, 4); ++i) {
        Array element(orbIsCell(array) ? orbGetCell(array, i)
                                       : orbGetFieldByNumber(array, i, 0));
        other(random).putShared(std::move(element));
      }
    }
    if (random.chance(30)) {
      other(random).putOwn(Array(orbDuplicateArray(array)));
    }
  }
  for (Array& array : arrays) {
    if (random.chance(50)) other(random).putShared(std::move(array));
  }
}

void Worker::echo(Random& random) {
  std::vector<Array> inputs;
  inputs.push_back(random.chance(1) ? randomLargeArray(random) : randomArray(random));
  // Two that share storage with a third.
  Array inside = randomArray(random);
  for (int i = 0; i < 2; ++i) {
    Array& cell = inputs.emplace_back(orbCreateCellMatrix(1, 2));
    orbSetCell(cell, 0, inside);
  }
  if (!gifts_.empty()) {
    inputs.push_back(std::move(gifts_.back()));
    gifts_.pop_back();
    ++counts_["arrays of other threads sent"];
  }
  const std::vector<orbArray> handles(inputs.begin(), inputs.end());
  std::vector<Array> outputs(inputs.size());
  const bool succeeded =
      caller_->call(common_.server.url("/echo"), outputs, handles) == test::success();
  judge(succeeded && std::equal(inputs.begin(), inputs.end(), outputs.begin(), areSame),
        "echoes");
  inputs.push_back(std::move(inside));
  giveAway(random, std::move(inputs));
  if (succeeded) giveAway(random, std::move(outputs));
}

void Worker::fail(const std::string& url, const test::Outcome& wanted, const char* name) {
  std::vector<Array> outputs(1);
  judge(caller_->call(url, outputs, {}) == wanted, name);
}

void Worker::callOnce(std::uint64_t seed) {
  replayArguments_ = "--count 1 --seed " + std::to_string(seed);
  setLastWords(replayArguments_);
  Random random(seed * kThreads + number_);
  takeMail();
  if (random.chance(5)) {
    caller_ = common_.contexts.swap(std::move(caller_));
    ++counts_["contexts handed over"];
  }
  if (random.chance(3)) {
    caller_ = std::make_unique<Caller>();
    ++counts_["contexts made"];
  }
  const std::uint64_t kind = random.below(100);
  if (kind < 75) {
    echo(random);
  } else if (kind < 85) {
    const std::string target = own("/error/");
    fail(common_.server.url(target), test::kaldexError(target, "orb:torture"),
         "server errors");
  } else if (kind < 95) {
    const std::string target = own("/status/");
    fail(common_.server.url(target), test::httpError(404, target + "\r\n"),
         "HTTP errors");
  } else {
    fail(common_.refusing.url(), test::genericError("Couldn't connect to server"),
         "refused connections");
  }
}

int runAll(Run& run) {
  Common common(run);
  std::thread serving([&common] { common.server.run(); });
  std::vector<std::unique_ptr<Worker>> workers;
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    workers.push_back(std::make_unique<Worker>(common, i));
    threads.emplace_back([&worker = *workers.back()] { worker.run(); });
  }
  for (std::thread& thread : threads) thread.join();
  common.server.stop();
  serving.join();

  std::map<std::string, std::uint64_t> counts;
  for (const auto& worker : workers) {
    for (const auto& [what, count] : worker->counts()) counts[what] += count;
  }
  std::uint64_t calls = 0;
  for (const char* what :
       {"echoes", "server errors", "HTTP errors", "refused connections"}) {
    calls += counts[what];
  }
  if (calls >= 10000) {
    for (const char* what : kAllThatHappens) {
      if (counts[what] == 0)
        run.finding(std::string("never met: ") + what, "--count 200");
    }
  }
  std::string text =
      grouped(calls) + " calls on " + std::to_string(kThreads) + " threads";
  for (const auto& [what, count] : counts) {
    text += ", " + what + " " + grouped(count);
  }
  return run.finish(text);
}

}  // namespace
}  // namespace orb::torture

int main(int argc, char** argv) {
  // As the library asks of a program with threads.
  std::signal(SIGPIPE, SIG_IGN);
  orb::torture::installLastWords();
  orb::torture::Run run(argc, argv, 200);
  orb::test::runtime();
  return orb::torture::runAll(run);
}
