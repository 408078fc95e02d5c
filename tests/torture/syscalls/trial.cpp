// SPDX-License-Identifier: MIT
#include "torture/syscalls/trial.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <sstream>
#include <vector>

#include "client/transport/caller.h"
#include "client/transport/certificates.h"
#include "support/scripted_server.h"
#include "support/wire.h"
#include "torture/syscalls/failing_calls.h"

namespace orb::torture {
namespace {

using test::Array;
using test::Outcome;
namespace wire = test::wire;

constexpr int kFaults[] = {
    ECONNRESET, FailingCalls::kOneByte, EINTR, EAGAIN, EPIPE, ETIMEDOUT, ENOMEM, EMFILE,
    EIO};
constexpr std::size_t kLargeBytes = 300000;
// A server keeps all its requests and connections until it ends.
constexpr int kCallsOfServer = 20;
constexpr std::size_t kMissed = 5;

/// What libcurl says of a transfer of which a system call failed.
constexpr const char* kTexts[] = {
    "Couldn't connect to server",
    "Failed sending data to the peer",
    "Failure when receiving data from the peer",
    "Server returned nothing (no headers, no data)",
    "Transferred a partial file",
    "SSL connect error",
    "Out of memory",
    "Unrecoverable error in select/poll",
    "Couldn't resolve host name",
    "A libcurl function was given a bad argument",  // where poll() fails
    "Timeout was reached",                          // where connect() says so
};

std::string elementsOf(const Scenario& scenario) {
  std::string elements(scenario.isLarge ? kLargeBytes : 3, '\0');
  for (std::size_t i = 0; i < elements.size(); ++i) {
    elements[i] = static_cast<char>(i * 7 + i / 251);
  }
  return elements;
}

Array makeInput(const std::string& elements) {
  Array input(orbCreateNumericMatrix(elements.size(), 1, orbUINT8_CLASS, orbREAL));
  std::memcpy(orbGetData(input), elements.data(), elements.size());
  return input;
}

std::string messageOf(const std::string& elements) {
  return wire::array(wire::kUint8, {elements.size(), 1}, wire::elements(elements));
}

/// One scenario: a server, and calls to it that each have a context of their own.
class Trial {
 public:
  explicit Trial(const Scenario& scenario)
      : scenario_(scenario),
        elements_(elementsOf(scenario)),
        input_(makeInput(elements_)) {
    startServer();
  }

  /// False when the call made fewer than n system calls. The result is the input again.
  bool run(std::size_t n, Tally& tally,
           const std::function<void(const std::string&)>& report) {
    if (++calls_ == kCallsOfServer) startServer();
    const int descriptorsBefore = openDescriptors();
    bool isReached = false;
    {
      test::Caller caller(settings());
      if (scenario_.isReused) checkGoodCall(caller, "the first call", report);
      isReached = runFailing(caller, n, tally, report);
      checkGoodCall(caller, "the call afterwards", report);
    }
    if (openDescriptors() != descriptorsBefore) report("leaves a descriptor open");
    return isReached;
  }

 private:
  void startServer() {
    calls_ = 0;
    const std::string body = wire::result({messageOf(elements_)});
    // The end of a connection is to be part of a call as well.
    const test::Script script{
        test::send(std::string("HTTP/1.1 200 OK\r\n") +
                   (scenario_.isReused ? "" : "Connection: close\r\n") +
                   "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body)};
    server_ = scenario_.isTls ? std::make_unique<test::ScriptedServer>(
                                    script, test::Certificates::get().server())
                              : std::make_unique<test::ScriptedServer>(script);
  }

  test::Settings settings() const {
    test::Settings settings;
    settings.timeoutSec = 5;
    if (scenario_.isTls) settings.serverCertFile = test::Certificates::get().authority();
    return settings;
  }

  bool runFailing(test::Caller& caller, std::size_t n, Tally& tally,
                  const std::function<void(const std::string&)>& report) {
    const std::string url = server_->url();
    orbArray output = nullptr;
    const orbArray input = input_;
    orbStatus status = ORB_OK;
    const char* failed = nullptr;
    std::size_t made = 0;
    {
      const FailingCalls failing(n, scenario_.fault, scenario_.isTls);
      status =
          test::runtime().feval(caller.context(), url.c_str(), 1, &output, 1, &input);
      failed = failing.failed();
      made = failing.calls();
    }
    const Array owner(output);
    if (failed != nullptr) {
      ++tally.calls;
      ++tally.functions[failed];
    }
    const std::string where = "call " + std::to_string(n) + ", " +
                              (failed == nullptr ? "no fault" : failed) + ": ";
    if (status == ORB_OK) {
      if (failed != nullptr) ++tally.successes;
      if (!isRight(output)) report(where + "another result");
      if (server_->requests().back().body != wire::params(1, {messageOf(elements_)})) {
        report(where + "another request");
      }
    } else {
      checkFailure(caller.lastError(), where, tally, report);
      if (failed == nullptr) report(where + "fails");
      if (output != nullptr) report(where + "fails with an output");
    }
    if (!isRight(input_)) report(where + "another input");
    return n <= made;
  }

  /// Whether the array has the input's values.
  bool isRight(orbArray a) const {
    return orbIsUint8(a) && orbGetM(a) == elements_.size() && orbGetN(a) == 1 &&
           std::memcmp(orbGetData(a), elements_.data(), elements_.size()) == 0;
  }

  void checkFailure(const Outcome& outcome, const std::string& where, Tally& tally,
                    const std::function<void(const std::string&)>& report) {
    ++tally.texts[outcome.detail];
    const bool isKnown = std::find(std::begin(kTexts), std::end(kTexts),
                                   outcome.detail) != std::end(kTexts);
    if (isKnown && outcome == test::genericError(outcome.detail)) return;
    std::ostringstream text;
    text << where << outcome;
    report(text.str());
  }

  void checkGoodCall(test::Caller& caller, const std::string& which,
                     const std::function<void(const std::string&)>& report) {
    std::vector<Array> outputs(1);
    const Outcome outcome = caller.call(server_->url(), outputs, {input_});
    if (outcome == test::success() && isRight(outputs[0])) return;
    std::ostringstream text;
    text << which << ": " << outcome;
    report(text.str());
  }

  const Scenario scenario_;
  const std::string elements_;
  const Array input_;
  int calls_ = 0;
  std::unique_ptr<test::ScriptedServer> server_;
};

}  // namespace

std::string Scenario::describe() const {
  return std::string(isLarge ? "large" : "small") + (isTls ? " over TLS" : "") +
         (isReused ? " on a reused connection, " : " on a first connection, ") +
         (fault == FailingCalls::kOneByte ? "one byte" : std::strerror(fault));
}

Scenario scenarioOf(std::size_t number) {
  static_assert(kScenarios == kWays * std::size(kFaults));
  const std::size_t way = number % kWays;
  return {(way & 1) != 0, (way & 2) != 0, (way & 4) != 0, kFaults[number / kWays]};
}

void tryScenario(const Scenario& scenario, Tally& tally,
                 const std::function<void(const std::string&)>& report) {
  Trial trial(scenario);
  // A call takes more or fewer, as bytes arrive.
  std::size_t missed = 0;
  for (std::size_t n = 1; missed < kMissed; ++n) {
    missed = trial.run(n, tally, report) ? 0 : missed + 1;
  }
}

}  // namespace orb::torture
