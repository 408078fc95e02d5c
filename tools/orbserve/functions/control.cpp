// SPDX-License-Identifier: MIT
// Functions that try out the other side of a call: fail, sleep.
#include <algorithm>
#include <chrono>

#include "errors.h"
#include "functions.h"
#include "values.h"

namespace orb::serve {
namespace {

constexpr double kMaxSleepSec = 60;

}  // namespace

// Raises an error with a stack of three frames. A char input becomes its message.
void fail(Call& call) {
  client::KALDEX_Error error;
  error.set_message(call.inputs.empty() ? "This function always fails."
                                        : textOf(call.input(0)));
  error.set_identifier("orbserve:fail:requested");
  addFrame(error, "checks.src", "checkPositive", 7);
  addFrame(error, "model.src", "fitModel", 42);
  addFrame(error, "fail.src", "fail", 3);
  addReport(error);
  throw RaisedError(error);
}

// Answers after the given seconds, at most 60, with the seconds that it waited.
void sleep(Call& call) {
  const double seconds = scalarOf(call.input(0));
  if (!(seconds >= 0)) {
    throw CallError("value", "expected seconds from 0, got " + std::to_string(seconds));
  }
  const std::chrono::duration<double> time(std::min(seconds, kMaxSleepSec));
  if (call.stopping.waitFor(std::chrono::duration_cast<std::chrono::nanoseconds>(time))) {
    throw CallError("stopped", "the server ended before the time was over");
  }
  call.put(toArray(time.count()));
}

}  // namespace orb::serve
