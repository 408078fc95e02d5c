// SPDX-License-Identifier: MIT
#include <utility>

#include "client/model/runtime.h"

namespace orb::model {
namespace {

std::string server;
std::string refusing;

struct TextMember {
  void (*orbClientRuntime::*set)(orbClientConfig*, const char*);
  const char* (*orbClientRuntime::*get)(orbClientConfig*);
};

constexpr TextMember kTextMembers[kTexts] = {
    {&orbClientRuntime::setClientCertFile, &orbClientRuntime::getClientCertFile},
    {&orbClientRuntime::setClientPrivateKeyFile,
     &orbClientRuntime::getClientPrivateKeyFile},
    {&orbClientRuntime::setClientPrivateKeyPassword,
     &orbClientRuntime::getClientPrivateKeyPassword},
    {&orbClientRuntime::setServerCertFile, &orbClientRuntime::getServerCertFile},
    {&orbClientRuntime::setCRLFile, &orbClientRuntime::getCRLFile},
};

std::string nameOf(orbStatus status) {
  return status == ORB_OK ? "ORB_OK" : "ORB_FAILURE";
}

std::string nameOf(const orbClientRuntime* table) {
  return table == nullptr ? "null" : "a table";
}

/// Calls a member that only some versions of the table have.
template <class Member, class... Arguments>
auto callIfThere(Member member, Arguments... arguments) {
  using Result = decltype(member(arguments...));
  if constexpr (std::is_void_v<Result>) {
    if (member == nullptr) return std::string("no such member");
    member(arguments...);
    return std::string("done");
  } else if constexpr (std::is_same_v<Result, bool>) {
    return member == nullptr ? "no such member" : std::to_string(member(arguments...));
  } else {
    return std::string(member == nullptr ? "no such member" : member(arguments...));
  }
}

Error read(const orbErrorInfo& info) {
  Error error;
  error.type = info.type;
  error.summary = info.message;
  switch (info.type) {
    case ORB_HTTP_ERROR:
      error.detail = info.details.http.responseMessage;
      error.responseCode = info.details.http.responseCode;
      break;
    case ORB_KALDEX_ERROR:
      error.detail = info.details.kaldex.message;
      error.identifier = info.details.kaldex.identifier;
      for (uint64_t i = 0; i < info.details.kaldex.stackDepth; ++i) {
        const orbStackFrame& frame = info.details.kaldex.stack[i];
        error.stack.push_back({frame.file, frame.name, frame.line});
      }
      break;
    case ORB_GENERIC_ERROR:
      error.detail = info.details.generic.message;
      break;
  }
  return error;
}

}  // namespace

void setServer(const std::string& baseUrl, const std::string& refusingUrl) {
  server = baseUrl;
  refusing = refusingUrl;
}

std::string RemoteCall::target() const {
  static constexpr const char* kKinds[] = {
      "inputs", "other", "unannounced", "odd", "error", "status", "", ""};
  std::string text = std::string("/") + kKinds[static_cast<size_t>(reply)] + "/" +
                     std::to_string(number);
  for (const size_t pick : picks) text += "/" + std::to_string(pick);
  return text;
}

std::string Error::text() const {
  std::string all = "type " + std::to_string(type) + ", " + summary + ", " + detail +
                    ", " + identifier + ", " + std::to_string(responseCode);
  for (const Frame& frame : stack) {
    all += ", " + frame.file + ":" + std::to_string(frame.line) + " in " + frame.name;
  }
  return all;
}

LibraryRuntime::~LibraryRuntime() {
  if (!isTouched_) return;
  // Without a table, terminating would leave the message of a failed initialisation.
  orbInitialize();
  orbTerminate();
}

std::string LibraryRuntime::orbInitializeEx(uint32_t version) {
  isTouched_ = true;
  table_ = ::orbInitializeEx(version);
  return nameOf(table_);
}

std::string LibraryRuntime::orbInitialize() {
  isTouched_ = true;
  table_ = ::orbInitialize();
  return nameOf(table_);
}

std::string LibraryRuntime::orbGetInitializationErrorMessage() const {
  return ::orbGetInitializationErrorMessage();
}

std::string LibraryRuntime::orbTerminate() {
  for (size_t slot = 0; table_ != nullptr && slot < kSlots; ++slot) {
    destroyContext(slot);
    destroyConfig(slot);
  }
  table_ = nullptr;
  ::orbTerminate();
  return "done";
}

std::string LibraryRuntime::createConfig(size_t slot) {
  destroyConfig(slot);
  return nameOf(table_->createConfig(&configs_[slot]));
}

std::string LibraryRuntime::destroyConfig(size_t slot) {
  table_->destroyConfig(std::exchange(configs_[slot], nullptr));
  return "done";
}

std::string LibraryRuntime::setTimeoutSec(size_t slot, uint64_t timeoutSec) {
  table_->setTimeoutSec(configs_[slot], timeoutSec);
  return "done";
}

std::string LibraryRuntime::getTimeoutSec(size_t slot) const {
  return std::to_string(table_->getTimeoutSec(configs_[slot]));
}

std::string LibraryRuntime::setResponseSizeLimit(size_t slot, uint32_t limitBytes) {
  table_->setResponseSizeLimit(configs_[slot], limitBytes);
  return "done";
}

std::string LibraryRuntime::getResponseSizeLimit(size_t slot) const {
  return std::to_string(table_->getResponseSizeLimit(configs_[slot]));
}

std::string LibraryRuntime::setText(size_t slot, size_t which, const Text& text) {
  return callIfThere(table_->*kTextMembers[which].set, configs_[slot],
                     text ? text->c_str() : nullptr);
}

std::string LibraryRuntime::getText(size_t slot, size_t which) const {
  return callIfThere(table_->*kTextMembers[which].get, configs_[slot]);
}

std::string LibraryRuntime::setVerifyHost(size_t slot, bool verify) {
  return callIfThere(table_->setVerifyHost, configs_[slot], verify);
}

std::string LibraryRuntime::getVerifyHost(size_t slot) const {
  return callIfThere(table_->getVerifyHost, configs_[slot]);
}

std::string LibraryRuntime::setVerifyPeer(size_t slot, bool verify) {
  return callIfThere(table_->setVerifyPeer, configs_[slot], verify);
}

std::string LibraryRuntime::getVerifyPeer(size_t slot) const {
  return callIfThere(table_->getVerifyPeer, configs_[slot]);
}

std::string LibraryRuntime::createContext(size_t slot, size_t config) {
  destroyContext(slot);
  return nameOf(table_->createContext(&contexts_[slot], configs_[config]));
}

std::string LibraryRuntime::destroyContext(size_t slot) {
  table_->destroyContext(std::exchange(contexts_[slot], nullptr));
  return "done";
}

std::string LibraryRuntime::getLastErrorInfo(size_t context) const {
  orbErrorInfo info;
  table_->getLastErrorInfo(contexts_[context], &info);
  const std::string text = read(info).text();
  table_->destroyLastErrorInfo(&info);
  return text;
}

std::string LibraryRuntime::destroyLastErrorInfo(size_t context) const {
  orbErrorInfo info;
  table_->getLastErrorInfo(contexts_[context], &info);
  table_->destroyLastErrorInfo(&info);
  if (info.type != ORB_KALDEX_ERROR) return "stackDepth 0";
  if (info.details.kaldex.stack != nullptr) return "a stack";
  return "stackDepth " + std::to_string(info.details.kaldex.stackDepth);
}

std::string LibraryRuntime::feval(const RemoteCall& call,
                                  const std::vector<orbArray>& inputs,
                                  std::vector<orbArray>& outputs) {
  const std::string url =
      call.reply == Reply::kNoServer ? refusing : server + call.target();
  const orbStatus status = table_->feval(
      contexts_[call.context], call.reply == Reply::kNullUrl ? nullptr : url.c_str(),
      static_cast<uint32_t>(outputs.size()), outputs.data(),
      static_cast<uint32_t>(inputs.size()), inputs.data());
  if (status == ORB_OK) return nameOf(status);
  return nameOf(status) + ", " + getLastErrorInfo(call.context);
}

}  // namespace orb::model
