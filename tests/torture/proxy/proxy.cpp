// SPDX-License-Identifier: MIT
// Calls through proxies that delay, trickle, cut, reset and stall them at random bytes.
//
// An item is a session of 25 calls on one context, of which --count gives the calls.
// Whatever happens to a call, its outcome is its own, and the server executed it as often
// as it may have: once when all went well, and twice only when a kept connection ended
// before the reply.
#include <algorithm>
#include <atomic>
#include <csignal>
#include <map>
#include <mutex>
#include <sstream>
#include <thread>

#include "torture/proxy/calls.h"
#include "torture/proxy/fault_proxy.h"
#include "torture/support/last_words.h"
#include "torture/support/random.h"
#include "torture/support/run.h"

namespace orb::torture {
namespace {

constexpr std::uint64_t kCallsPerSession = 25;
constexpr std::size_t kWorkers = 8;
constexpr std::size_t kHeadBytes = 240;  // roughly, of requests and replies

Call randomCall(Random& random, std::uint64_t number) {
  static constexpr Asked kMix[] = {Asked::kEcho,     Asked::kEcho,    Asked::kEcho,
                                   Asked::kEcho,     Asked::kEcho,    Asked::kEcho,
                                   Asked::kChunked,  Asked::kClosing, Asked::kServerError,
                                   Asked::kHttpError};
  const bool isLarge = random.chance(4);
  const std::size_t elements = isLarge ? 30000 + random.below(60000) : random.below(200);
  return {number, kMix[random.below(std::size(kMix))], elements, 1 + random.below(2)};
}

bool isLarge(const Call& call) { return call.elements > 1000; }

Fault randomFault(Random& random, const Call& call) {
  Fault fault;
  const auto kind = static_cast<FaultKind>(random.below(kFaultKinds - 1));
  static_assert(static_cast<std::size_t>(FaultKind::kStalledReply) == kFaultKinds - 1,
                "stalled replies are chosen by the session");
  fault.kind = kind;
  fault.pause = std::chrono::microseconds(random.below(300));
  const bool trickles =
      kind == FaultKind::kTrickledRequest || kind == FaultKind::kTrickledReply;
  if (trickles) fault.pause /= 10;
  if (isHarmful(kind) && !isIdle(kind) && !random.chance(25)) {
    fault.atByte = random.below(kHeadBytes + 8 * call.elements);
    if (random.chance(30)) fault.atByte = random.below(kHeadBytes);
  }
  return fault;
}

/// The faults of one call: none mostly, seldom one for the second attempt as well.
std::vector<Fault> randomFaults(Random& random, const Call& call) {
  std::vector<Fault> faults;
  if (!random.chance(55)) return faults;
  faults.push_back(randomFault(random, call));
  if (!random.chance(10)) return faults;
  const Fault second = randomFault(random, call);
  if (!isIdle(second.kind)) faults.push_back(second);
  return faults;
}

/// The short name of a generic error that a spoiled call may end with; "" of any other.
std::string nameOfFailure(const test::Outcome& outcome, const Call& call) {
  static const std::map<std::string, std::string> names = {
      {"Server returned nothing (no headers, no data)", "no reply"},
      {"Failure when receiving data from the peer", "receive error"},
      {"Failed sending data to the peer", "send error"},
      {"Transferred a partial file", "cut reply"},
      {"Timeout was reached", "time-out"}};
  if (outcome == test::countMismatch(0, call.outputs)) return "cut head";
  const auto name = names.find(outcome.detail);
  const bool isKnown = name != names.end() && outcome == test::genericError(name->first);
  return isKnown ? name->second : "";
}

/// What a call came to, for the check after all of them: late requests count too.
struct Record {
  std::uint64_t seed = 0;  // of its session
  unsigned attempts = 0;
  bool wasSpoiled = false;
  bool mayFail = false;  // it is left to what spoiled it
};

class Check {
 public:
  explicit Check(Run& run)
      : run_(run),
        sessions_((run.count() + kCallsPerSession - 1) / kCallsPerSession),
        records_(sessions_ * kCallsPerSession),
        log_(records_.size()),
        server_([this](const test::HttpCall& call) { return log_.answer(call); }) {}

  int run();

 private:
  void work();
  void runSession(FaultProxy& proxy, std::uint64_t session);
  void judge(const Call& call, const test::Outcome& outcome,
             const std::vector<test::Array>& outputs, const CallHistory& history);
  void judgeExecutions();
  void requireAll();
  std::string reached();

  void count(const std::string& what) {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++counts_[what];
  }
  void finding(const Call& call, const std::string& what) {
    run_.finding(
        "call " + std::to_string(call.number) + ", " + call.target() + ": " + what,
        replayArguments(records_[call.number].seed));
  }
  static std::string replayArguments(std::uint64_t seed) {
    return "--count 1 --seed " + std::to_string(seed);
  }

  Run& run_;
  const std::uint64_t sessions_;
  std::vector<Record> records_;  // by call; each is its session's until the workers end
  ExecutionLog log_;
  test::LoopbackServer server_;
  std::atomic<std::uint64_t> nextSession_{0};
  std::mutex mutex_;
  std::map<std::string, std::uint64_t> counts_;
};

int Check::run() {
  std::thread serving([this] { server_.run(); });
  std::vector<std::thread> workers;
  for (std::size_t i = 0; i < kWorkers; ++i) workers.emplace_back([this] { work(); });
  for (std::thread& worker : workers) worker.join();
  server_.stop();
  serving.join();
  judgeExecutions();
  if (counts_["calls"] >= 10000) requireAll();
  return run_.finish(reached());
}

void Check::work() {
  FaultProxy proxy(server_.port());
  for (;;) {
    const std::uint64_t session = nextSession_++;
    if (session >= sessions_ || !run_.wants(session * kCallsPerSession)) return;
    runSession(proxy, session);
  }
}

void Check::runSession(FaultProxy& proxy, std::uint64_t session) {
  const std::uint64_t seed = run_.seed() + session;
  setLastWords(replayArguments(seed));
  Random random(seed);
  // A stalled reply costs its context the whole time-out, which is to be no shorter than
  // a busy machine needs for the other calls.
  const bool hasStall = random.chance(3);
  const std::uint64_t stalledCall = random.below(kCallsPerSession);
  test::Settings settings;
  settings.timeoutSec = hasStall ? 3 : 60;
  test::Caller caller(settings);
  const std::string base = "http://127.0.0.1:" + std::to_string(proxy.port());
  // The end of a kept connection may arrive while the next call is sent.
  bool isConnectionEnding = false;
  for (std::uint64_t i = 0; i < kCallsPerSession; ++i) {
    const Call call = randomCall(random, session * kCallsPerSession + i);
    std::vector<Fault> faults = randomFaults(random, call);
    if (hasStall && i == stalledCall) faults = {Fault{FaultKind::kStalledReply, 0, {}}};
    const std::chrono::microseconds head(random.below(200));

    const std::vector<test::Array> inputs = call.inputs();
    std::vector<test::Array> outputs(call.outputs);
    const bool isIdleFirst = !faults.empty() && isIdle(faults.front().kind);
    proxy.beginCall(std::move(faults));
    // The end of an idle connection is to be noticed before the call, and amid its start.
    if (isIdleFirst) std::this_thread::sleep_for(head);
    const test::Outcome outcome =
        caller.call(base + call.target(), outputs, {inputs[0], inputs[1]});
    const bool failedInTransport =
        outcome.status != ORB_OK && outcome.type == ORB_GENERIC_ERROR;
    const CallHistory history = proxy.endCall(!failedInTransport);
    const bool isHarmed = std::any_of(history.hit.begin(), history.hit.end(), isHarmful);
    // When a kept connection ends, libcurl sends the request again, except when it notices
    // amid sending: a small request is sent at once.
    const bool isLeftOnEnding =
        isLarge(call) && (isHarmed || isConnectionEnding) &&
        (history.attempts == 0 || (history.attempts == 1 && history.beganOnKept)) &&
        nameOfFailure(outcome, call) == "send error";
    records_[call.number] = {seed, history.attempts, isHarmed || isConnectionEnding,
                             history.isLastSpoiled || isLeftOnEnding};
    judge(call, outcome, outputs, history);
    isConnectionEnding = isHarmed || call.asked == Asked::kClosing;
  }
  proxy.beginCall({});
  proxy.endCall(false);
}

void Check::judge(const Call& call, const test::Outcome& outcome,
                  const std::vector<test::Array>& outputs, const CallHistory& history) {
  count("calls");
  for (const FaultKind kind : history.hit) {
    count("fault " + std::string(nameOf(kind)));
    if (history.beganOnKept) count("on kept " + std::string(nameOf(kind)));
  }
  if (history.attempts > 1) count(isLarge(call) ? "sent twice, large" : "sent twice");
  if (history.attempts > 2 || (history.attempts == 2 && !history.beganOnKept)) {
    finding(call, std::to_string(history.attempts) + " attempts, the first on a " +
                      (history.beganOnKept ? "kept" : "new") + " connection");
  }

  if (outcome == call.wanted()) {
    count(outcome.status == ORB_OK         ? "succeeded"
          : outcome.type == ORB_HTTP_ERROR ? "HTTP errors"
                                           : "server errors");
    if (history.attempts > 1 && isLarge(call)) count("sent twice, large, answered");
    if (log_.executionsOf(call.number) == 0) finding(call, "answered, never executed");
    if (outcome.status == ORB_OK && !call.areItsOutputs(outputs)) {
      finding(call, "the outputs are another call's or damaged");
    }
    return;
  }
  std::ostringstream text;
  text << outcome;
  const std::string name = nameOfFailure(outcome, call);
  if (!records_[call.number].mayFail) {
    finding(call, "nothing spoiled its last attempt, number " +
                      std::to_string(history.attempts) + ", and it ended with " +
                      text.str());
  } else if (name.empty()) {
    finding(call, "ended with " + text.str());
  } else {
    count("failed: " + name);
  }
  for (const test::Array& output : outputs) {
    if (output.get() != nullptr) finding(call, "failed, and gave an output");
  }
}

void Check::judgeExecutions() {
  for (std::uint64_t number = 0; number < records_.size(); ++number) {
    const Record& record = records_[number];
    if (record.seed == 0) continue;  // --seconds ended the run before it
    const unsigned executions = log_.executionsOf(number);
    if (executions == 2) ++counts_["executed twice"];
    if (executions == 0) ++counts_["never executed"];
    const unsigned least = record.mayFail ? 0 : 1;
    if (executions < least || executions > record.attempts ||
        (!record.wasSpoiled && record.attempts != 1)) {
      run_.finding("call " + std::to_string(number) + " was executed " +
                       std::to_string(executions) + " times in " +
                       std::to_string(record.attempts) + " attempts",
                   replayArguments(record.seed));
    }
  }
  if (log_.damagedRequests() != 0) {
    run_.finding(std::to_string(log_.damagedRequests()) + " damaged requests arrived",
                 "--count " + std::to_string(run_.count()) + " --seed " +
                     std::to_string(run_.seed()));
  }
}

/// A run that met less than all of this has tried less than it seems.
void Check::requireAll() {
  std::vector<std::string> wanted = {"succeeded",         "server errors",
                                     "HTTP errors",       "executed twice",
                                     "never executed",    "sent twice",
                                     "sent twice, large", "sent twice, large, answered",
                                     "failed: no reply",  "failed: receive error",
                                     "failed: cut reply", "failed: cut head",
                                     "failed: time-out"};
  for (std::size_t i = 0; i < kFaultKinds; ++i) {
    wanted.push_back("fault " + std::string(nameOf(static_cast<FaultKind>(i))));
  }
  for (const std::string& what : wanted) {
    if (counts_[what] == 0) {
      run_.finding("never met: " + what, "--count " + std::to_string(run_.count()) +
                                             " --seed " + std::to_string(run_.seed()));
    }
  }
}

std::string Check::reached() {
  std::string text = grouped(counts_["calls"]) + " calls";
  for (const auto& [what, number] : counts_) {
    if (what != "calls") text += ", " + what + " " + grouped(number);
  }
  return text;
}

}  // namespace
}  // namespace orb::torture

int main(int argc, char** argv) {
  // As the library asks of a program with threads.
  std::signal(SIGPIPE, SIG_IGN);
  orb::torture::installLastWords();
  orb::torture::Run run(argc, argv, 10000);
  orb::test::runtime();
  return orb::torture::Check(run).run();
}
