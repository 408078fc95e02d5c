// SPDX-License-Identifier: MIT
// The rules of initialisation, of the table's operations and of calls.
#include <climits>

#include "client/model/rules.h"
#include "client/model/runtime.h"

namespace orb::model {
namespace {

constexpr const char* kAbsent = "no such member";

Error httpError(uint32_t code) {
  Error error;
  error.type = ORB_HTTP_ERROR;
  error.summary = "A non-200 HTTP response was received";
  error.detail = "Status " + std::to_string(code) + "\r\n";
  error.responseCode = code;
  return error;
}

Error genericError(const std::string& message) {
  Error error;
  error.type = ORB_GENERIC_ERROR;
  error.summary = "A generic error was thrown";
  error.detail = message;
  return error;
}

Error refusal() {
  return genericError(
      "Failed writing received data to disk/application\nThis might happen if response "
      "content size is larger than the response size limit.\nYou can increase response "
      "size limit using setResponseSizeLimit method.");
}

Error countMismatch(size_t received, size_t wanted) {
  return genericError("Number of outputs received from KALDEX, " +
                      std::to_string(received) +
                      ", do not match the number of left hand side parameters, " +
                      std::to_string(wanted) + ", provided.");
}

/// What the reply comes to; outputs are stored from the last to the first.
std::optional<Error> receive(const RemoteCall& call, uint32_t limitBytes,
                             const std::vector<Array*>& inputs,
                             std::vector<Array*>& outputs) {
  if (call.reply == Reply::kNullUrl) return genericError("The URL is null.");
  if (call.reply == Reply::kNoServer) return genericError("Couldn't connect to server");
  if (call.reply == Reply::kHttpError) {
    return httpError(static_cast<uint32_t>(call.number));
  }
  const bool isAnnounced = call.reply != Reply::kUnannounced;
  const bool isEmpty = call.picks.empty() &&
                       (call.reply == Reply::kInputs || call.reply == Reply::kOddOutput);
  if (isAnnounced && !isEmpty && limitBytes == 0) return refusal();
  const bool isRead = limitBytes != 0 && limitBytes <= INT_MAX;
  if (isRead && call.reply == Reply::kServerError) return serverError(call.number);
  const size_t received = isRead ? call.picks.size() : 0;
  if (received != call.wanted) return countMismatch(received, call.wanted);
  for (size_t i = received; i-- > 0;) {
    if (call.reply == Reply::kOddOutput && i == call.number) {
      return genericError("dispatch_on_QXType");
    }
    const Message& sent = *inputs[call.picks[i]]->message;
    outputs[i] = new Array(std::make_shared<Message>(sent));
  }
  return std::nullopt;
}

}  // namespace

Error serverError(size_t number) {
  Error error;
  error.type = ORB_KALDEX_ERROR;
  error.summary = "Error was thrown while executing KALDEX code";
  if (number == 0) return error;  // one that says nothing
  error.detail = "message " + std::to_string(number);
  error.identifier = "identifier:" + std::to_string(number);
  for (size_t i = 1; i < number; ++i) {
    const std::string place = std::to_string(i);
    error.stack.push_back({"file" + place, "name" + place, static_cast<int32_t>(i)});
  }
  return error;
}

std::string ModelRuntime::orbInitializeEx(uint32_t version) {
  if (isInitialized()) return "a table";
  if (version != ORB_CLIENT_1_0 && version != ORB_CLIENT_1_1) {
    message_ = "Invalid version number.";
    return "null";
  }
  version_ = version;
  return "a table";
}

std::string ModelRuntime::orbInitialize() { return orbInitializeEx(ORB_CLIENT_1_0); }

std::string ModelRuntime::orbGetInitializationErrorMessage() const { return message_; }

std::string ModelRuntime::orbTerminate() {
  if (isInitialized()) *this = ModelRuntime();
  return "done";
}

std::string ModelRuntime::createConfig(size_t slot) {
  configs_[slot] = Config();
  return "ORB_OK";
}

std::string ModelRuntime::destroyConfig(size_t slot) {
  configs_[slot].reset();
  return "done";
}

std::string ModelRuntime::setTimeoutSec(size_t slot, uint64_t timeoutSec) {
  configs_[slot]->timeoutSec = timeoutSec;
  return "done";
}

std::string ModelRuntime::getTimeoutSec(size_t slot) const {
  return std::to_string(configs_[slot]->timeoutSec);
}

std::string ModelRuntime::setResponseSizeLimit(size_t slot, uint32_t limitBytes) {
  configs_[slot]->limitBytes = limitBytes;
  return "done";
}

std::string ModelRuntime::getResponseSizeLimit(size_t slot) const {
  return std::to_string(configs_[slot]->limitBytes);
}

std::string ModelRuntime::setText(size_t slot, size_t which, const Text& text) {
  if (!hasTls()) return kAbsent;
  configs_[slot]->texts[which] = text.value_or("");
  return "done";
}

std::string ModelRuntime::getText(size_t slot, size_t which) const {
  return hasTls() ? configs_[slot]->texts[which] : kAbsent;
}

std::string ModelRuntime::setVerifyHost(size_t slot, bool verify) {
  if (!hasTls()) return kAbsent;
  configs_[slot]->verifyHost = verify;
  return "done";
}

std::string ModelRuntime::getVerifyHost(size_t slot) const {
  return hasTls() ? std::to_string(configs_[slot]->verifyHost) : kAbsent;
}

std::string ModelRuntime::setVerifyPeer(size_t slot, bool verify) {
  if (!hasTls()) return kAbsent;
  configs_[slot]->verifyPeer = verify;
  return "done";
}

std::string ModelRuntime::getVerifyPeer(size_t slot) const {
  return hasTls() ? std::to_string(configs_[slot]->verifyPeer) : kAbsent;
}

std::string ModelRuntime::createContext(size_t slot, size_t config) {
  contexts_[slot] = Context{*configs_[config], Error()};
  return "ORB_OK";
}

std::string ModelRuntime::destroyContext(size_t slot) {
  contexts_[slot].reset();
  return "done";
}

std::string ModelRuntime::getLastErrorInfo(size_t context) const {
  return contexts_[context]->lastError.text();
}

std::string ModelRuntime::destroyLastErrorInfo(size_t context) const {
  return "stackDepth " + std::to_string(contexts_[context]->lastError.stack.size());
}

std::string ModelRuntime::feval(const RemoteCall& call, const std::vector<Array*>& inputs,
                                std::vector<Array*>& outputs) {
  // All are written back before the first is sent: of two handles of one array, the later
  // one decides what goes out for both.
  for (Array* input : inputs) flush(*input);
  Context& context = *contexts_[call.context];
  const std::optional<Error> error =
      receive(call, context.config.limitBytes, inputs, outputs);
  if (!error) return "ORB_OK";
  context.lastError = *error;
  return "ORB_FAILURE, " + error->text();
}

}  // namespace orb::model
