// SPDX-License-Identifier: MIT
// Random initialisations, table operations and calls.
#include <algorithm>

#include "client/model/call.h"

namespace orb::model {
namespace {

constexpr size_t kMostInputs = 3;
constexpr size_t kMostOutputs = 4;

using F = Function;

template <class Item, size_t n>
Item oneOf(Chooser& choose, const Item (&items)[n]) {
  return items[choose.random().below(n)];
}

/// An operation that `call` makes where `applies` holds.
template <class Applies, class Call>
Operation runtimeCall(Function function, const std::string& arguments, Applies applies,
                      Call call) {
  Operation operation;
  operation.text = std::string(nameOf(function)) + "(" + arguments + ")";
  operation.run = [=](const Worlds& worlds) -> Difference {
    if (!applies(worlds.model.runtime())) return std::nullopt;
    return sameOutcome(worlds, function, Verdict::kEffective,
                       [&](auto& world) { return call(world.runtime()); });
  };
  return operation;
}

std::string writtenConfig(size_t slot) { return "config" + std::to_string(slot); }
std::string writtenContext(size_t slot) { return "context" + std::to_string(slot); }

// With few of each, most operations meet one that is there.
size_t slot(Chooser& choose) { return choose.random().chance(25) ? 1 : 0; }

template <class Call>
Operation configCall(Chooser& choose, Function function, const std::string& value,
                     Call call) {
  const size_t config = slot(choose);
  const std::string list = writtenConfig(config) + (value.empty() ? "" : ", " + value);
  return runtimeCall(
      function, list,
      [config](const ModelRuntime& model) { return model.hasConfig(config); },
      [=](auto& runtime) { return call(runtime, config); });
}

template <class Call>
Operation contextCall(Chooser& choose, Function function, Call call) {
  const size_t context = slot(choose);
  return runtimeCall(
      function, writtenContext(context),
      [context](const ModelRuntime& model) { return model.hasContext(context); },
      [=](auto& runtime) { return call(runtime, context); });
}

bool always(const ModelRuntime&) { return true; }

Operation initializeEx(Chooser& choose) {
  const uint32_t versions[] = {ORB_CLIENT_1_1, ORB_CLIENT_1_1, ORB_CLIENT_1_1,
                               ORB_CLIENT_1_1, ORB_CLIENT_1_0, 0,
                               0x10002,        0x20001};
  const uint32_t version = oneOf(choose, versions);
  return runtimeCall(F::orbInitializeEx, written(version), always,
                     [=](auto& runtime) { return runtime.orbInitializeEx(version); });
}

Operation initialize(Chooser&) {
  return runtimeCall(F::orbInitialize, "", always,
                     [](auto& runtime) { return runtime.orbInitialize(); });
}

Operation initializationMessage(Chooser&) {
  return runtimeCall(F::orbGetInitializationErrorMessage, "", always, [](auto& runtime) {
    return runtime.orbGetInitializationErrorMessage();
  });
}

Operation terminate(Chooser&) {
  return runtimeCall(F::orbTerminate, "", always,
                     [](auto& runtime) { return runtime.orbTerminate(); });
}

Operation createConfig(Chooser& choose) {
  const size_t config = slot(choose);
  return runtimeCall(
      F::createConfig, writtenConfig(config),
      [](const ModelRuntime& model) { return model.isInitialized(); },
      [=](auto& runtime) { return runtime.createConfig(config); });
}

Operation destroyConfig(Chooser& choose) {
  return configCall(choose, F::destroyConfig, "", [](auto& runtime, size_t config) {
    return runtime.destroyConfig(config);
  });
}

Operation setTimeout(Chooser& choose) {
  // None so short that a busy machine meets it.
  const uint64_t values[] = {0,         60, 3600, 2147483, 2147484, uint64_t{1} << 40,
                             UINT64_MAX};
  const uint64_t value = oneOf(choose, values);
  return configCall(
      choose, F::setTimeoutSec, written(value),
      [=](auto& runtime, size_t config) { return runtime.setTimeoutSec(config, value); });
}

Operation getTimeout(Chooser& choose) {
  return configCall(choose, F::getTimeoutSec, "", [](auto& runtime, size_t config) {
    return runtime.getTimeoutSec(config);
  });
}

Operation setLimit(Chooser& choose) {
  // Either more than all replies have, or nothing is read.
  const uint32_t values[] = {67108864,   67108864,   67108864, 2147483647,
                             2147483648, UINT32_MAX, 0};
  const uint32_t value = oneOf(choose, values);
  return configCall(choose, F::setResponseSizeLimit, written(value),
                    [=](auto& runtime, size_t config) {
                      return runtime.setResponseSizeLimit(config, value);
                    });
}

Operation getLimit(Chooser& choose) {
  return configCall(
      choose, F::getResponseSizeLimit, "",
      [](auto& runtime, size_t config) { return runtime.getResponseSizeLimit(config); });
}

constexpr Function kTextSetters[kTexts] = {
    F::setClientCertFile, F::setClientPrivateKeyFile, F::setClientPrivateKeyPassword,
    F::setServerCertFile, F::setCRLFile};
constexpr Function kTextGetters[kTexts] = {
    F::getClientCertFile, F::getClientPrivateKeyFile, F::getClientPrivateKeyPassword,
    F::getServerCertFile, F::getCRLFile};

Operation setText(Chooser& choose) {
  const size_t which = choose.random().below(kTexts);
  Text text = choose.text();
  if (choose.random().chance(10)) text.reset();
  return configCall(
      choose, kTextSetters[which], written(text),
      [=](auto& runtime, size_t config) { return runtime.setText(config, which, text); });
}

Operation getText(Chooser& choose) {
  const size_t which = choose.random().below(kTexts);
  return configCall(choose, kTextGetters[which], "", [=](auto& runtime, size_t config) {
    return runtime.getText(config, which);
  });
}

Operation setVerifyHost(Chooser& choose) {
  const bool verify = choose.random().chance(50);
  return configCall(choose, F::setVerifyHost, written(verify),
                    [=](auto& runtime, size_t config) {
                      return runtime.setVerifyHost(config, verify);
                    });
}

Operation getVerifyHost(Chooser& choose) {
  return configCall(choose, F::getVerifyHost, "", [](auto& runtime, size_t config) {
    return runtime.getVerifyHost(config);
  });
}

Operation setVerifyPeer(Chooser& choose) {
  const bool verify = choose.random().chance(50);
  return configCall(choose, F::setVerifyPeer, written(verify),
                    [=](auto& runtime, size_t config) {
                      return runtime.setVerifyPeer(config, verify);
                    });
}

Operation getVerifyPeer(Chooser& choose) {
  return configCall(choose, F::getVerifyPeer, "", [](auto& runtime, size_t config) {
    return runtime.getVerifyPeer(config);
  });
}

Operation createContext(Chooser& choose) {
  const size_t context = slot(choose);
  return configCall(choose, F::createContext, writtenContext(context),
                    [=](auto& runtime, size_t config) {
                      return runtime.createContext(context, config);
                    });
}

Operation destroyContext(Chooser& choose) {
  return contextCall(choose, F::destroyContext, [](auto& runtime, size_t context) {
    return runtime.destroyContext(context);
  });
}

Operation lastError(Chooser& choose) {
  return contextCall(choose, F::getLastErrorInfo, [](auto& runtime, size_t context) {
    return runtime.getLastErrorInfo(context);
  });
}

Operation destroyLastError(Chooser& choose) {
  return contextCall(choose, F::destroyLastErrorInfo, [](auto& runtime, size_t context) {
    return runtime.destroyLastErrorInfo(context);
  });
}

Reply randomReply(Chooser& choose) {
  const Reply others[] = {Reply::kOtherForm, Reply::kOtherForm, Reply::kUnannounced,
                          Reply::kOddOutput, Reply::kOddOutput, Reply::kServerError,
                          Reply::kHttpError, Reply::kNullUrl,   Reply::kNoServer};
  return choose.random().chance(50) ? Reply::kInputs : oneOf(choose, others);
}

RemoteCall randomCall(Chooser& choose, size_t inputs) {
  const size_t statuses[] = {201, 404, 500, 999};
  RemoteCall call;
  call.context = slot(choose);
  call.reply = randomReply(choose);
  const size_t outputs = inputs == 0 ? 0 : choose.random().below(kMostOutputs + 1);
  for (size_t i = 0; i < outputs; ++i) {
    call.picks.push_back(choose.random().below(inputs));
  }
  call.wanted = choose.random().chance(8) ? choose.random().below(3) : outputs;
  call.number = choose.random().below(4);
  if (call.reply == Reply::kHttpError) call.number = oneOf(choose, statuses);
  return call;
}

/// Whether all that goes out and comes back is small.
bool isSmall(const ModelWorld& model, const std::vector<Variable>& inputs,
             const RemoteCall& call) {
  size_t total = 0;
  for (const Variable input : inputs) total += weight(*model.at(input));
  for (const size_t pick : call.picks) total += weight(*model.at(inputs[pick]));
  return total <= kMaxWeight;
}

template <class Handle>
std::string runCall(World<Handle>& world, const RemoteCall& call,
                    const std::vector<Variable>& inputs,
                    const std::vector<Variable>& results) {
  std::vector<Handle> arguments;
  for (const Variable input : inputs) arguments.push_back(world.at(input));
  std::vector<Handle> outputs(call.wanted);
  const std::string outcome = world.runtime().feval(call, arguments, outputs);
  std::string made;
  for (size_t i = 0; i < outputs.size(); ++i) {
    if (outputs[i] == nullptr) continue;
    world.assign(results[i], outputs[i]);
    made += " " + std::to_string(i);
  }
  return outcome + (made.empty() ? "" : ", outputs" + made);
}

std::string writtenCall(const RemoteCall& call, const std::vector<Variable>& inputs,
                        const std::vector<Variable>& results) {
  std::string text = "feval(" + writtenContext(call.context) + ", \"" + call.target() +
                     "\", " + std::to_string(call.wanted) + ", {";
  for (size_t i = 0; i < call.wanted; ++i) text += " " + written(results[i]);
  text += " }, {";
  for (const Variable input : inputs) text += " " + written(input);
  return text + " })";
}

Operation remoteCall(Chooser& choose) {
  std::vector<Variable> inputs(choose.random().below(kMostInputs + 1));
  for (Variable& input : inputs) {
    input = choose.array([](const Array*) { return true; });
  }
  const RemoteCall call = randomCall(choose, inputs.size());
  // Different ones, for each is to keep its output.
  std::vector<Variable> results;
  const size_t first = choose.result().number;
  for (size_t i = 0; i < kMostOutputs; ++i) {
    results.push_back({(first + i) % kVariables});
  }
  Operation operation;
  operation.text = writtenCall(call, inputs, results);
  operation.run = [=](const Worlds& worlds) -> Difference {
    const ModelWorld& model = worlds.model;
    const bool isComplete =
        std::all_of(inputs.begin(), inputs.end(),
                    [&](Variable input) { return model.at(input) != nullptr; });
    if (!isComplete || !model.runtime().hasContext(call.context) ||
        !isSmall(model, inputs, call)) {
      return std::nullopt;
    }
    return sameOutcome(worlds, F::feval, Verdict::kEffective, [&](auto& world) {
      return runCall(world, call, inputs, results);
    });
  };
  return operation;
}

/// What a call needs and is not there yet.
Operation nextPreparation(Chooser& choose) {
  const ModelRuntime& runtime = choose.runtime();
  if (!runtime.isInitialized()) return initializeEx(choose);
  return runtime.hasConfig(0) ? createContext(choose) : createConfig(choose);
}

}  // namespace

const std::vector<Kind>& runtimeKinds() {
  static const std::vector<Kind> kinds = {
      {2, initializeEx},  {2, initialize},       {3, initializationMessage},
      {1, terminate},     {3, createConfig},     {2, destroyConfig},
      {3, setTimeout},    {3, getTimeout},       {5, setLimit},
      {3, getLimit},      {12, setText},         {12, getText},
      {2, setVerifyHost}, {3, getVerifyHost},    {2, setVerifyPeer},
      {3, getVerifyPeer}, {4, createContext},    {2, destroyContext},
      {3, lastError},     {3, destroyLastError}, {120, remoteCall}};
  return kinds;
}

Operation randomRuntimeOperation(Chooser& choose) {
  const bool isReady = choose.runtime().hasContext(0);
  if (!isReady && choose.random().chance(80)) return nextPreparation(choose);
  return oneOf(runtimeKinds(), choose);
}

}  // namespace orb::model
