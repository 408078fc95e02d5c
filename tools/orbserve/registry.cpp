// SPDX-License-Identifier: MIT
#include "registry.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <string>

#include "errors.h"
#include "functions.h"
#include "messages.h"

namespace orb::serve {
namespace {

#define ORBSERVE_ROW(name, ...) {#name, name, __VA_ARGS__},
constexpr Function kFunctions[] = {ORBSERVE_FUNCTIONS(ORBSERVE_ROW)};
#undef ORBSERVE_ROW

std::string inputCounts(const Function& function) {
  const int most = function.mostInputs;
  if (function.fewestInputs == most) {
    return std::to_string(most) + (most == 1 ? " input" : " inputs");
  }
  return std::to_string(function.fewestInputs) + " to " + std::to_string(most) +
         " inputs";
}

void checkCounts(const Function& function, const Call& call) {
  const int count = call.inputs.size();
  if (count < function.fewestInputs || count > function.mostInputs) {
    throw CallError(
        "inputs", "expected " + inputCounts(function) + ", got " + std::to_string(count));
  }
  if (call.nargout < 0 || call.nargout > function.mostOutputs) {
    throw CallError("outputs", "expected nargout from 0 to " +
                                   std::to_string(function.mostOutputs) + ", got " +
                                   std::to_string(call.nargout));
  }
}

}  // namespace

const Function* findFunction(std::string_view name) {
  const auto* found =
      std::find_if(std::begin(kFunctions), std::end(kFunctions),
                   [name](const Function& function) { return function.name == name; });
  return found == std::end(kFunctions) ? nullptr : found;
}

client::KALDEX_Result evaluate(const Function& function, client::KALDEX_Params& params,
                               const StopSignal& stopping) {
  client::KALDEX_Result result;
  try {
    Call call{params.nargout(), *params.mutable_rhs(), *result.mutable_lhs(), stopping};
    checkCounts(function, call);
    for (int i = 0; i < call.inputs.size(); ++i) {
      checkArray(call.input(i), "input " + std::to_string(i + 1));
    }
    function.run(call);
    return result;
  } catch (const CallError& failure) {
    *result.mutable_error() =
        errorMessage(function.name, failure.kind(), failure.what(), failure.at());
  } catch (const RaisedError& failure) {
    *result.mutable_error() = failure.error();
  } catch (const std::exception& failure) {
    *result.mutable_error() =
        errorMessage(function.name, "exception", failure.what(), SourceLine::here());
  }
  result.clear_lhs();
  return result;
}

}  // namespace orb::serve
