// SPDX-License-Identifier: MIT
#include "client/transport/caller.h"

#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <tuple>

namespace orb::test {
namespace {

/// Keeps the library initialised.
class Initialization {
 public:
  Initialization() : table_(orbInitializeEx(ORB_CLIENT_1_1)) {
    if (table_ == nullptr) throw std::runtime_error(orbGetInitializationErrorMessage());
  }
  ~Initialization() { orbTerminate(); }
  Initialization(const Initialization&) = delete;
  Initialization& operator=(const Initialization&) = delete;

  const orbClientRuntime& table() const { return *table_; }

 private:
  const orbClientRuntime* table_;
};

auto asTuple(const Outcome& outcome) {
  return std::tie(outcome.status, outcome.type, outcome.summary, outcome.detail,
                  outcome.responseCode, outcome.identifier);
}

}  // namespace

const orbClientRuntime& runtime() {
  static const Initialization initialization;
  return initialization.table();
}

bool operator==(const Outcome& left, const Outcome& right) {
  return asTuple(left) == asTuple(right);
}

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  if (outcome.status == ORB_OK) return out << "success";
  return out << "failure of type " << outcome.type << ", summary "
             << ::testing::PrintToString(outcome.summary) << ", detail "
             << ::testing::PrintToString(outcome.detail) << ", response code "
             << outcome.responseCode << ", identifier "
             << ::testing::PrintToString(outcome.identifier);
}

Outcome success() { return {}; }

Outcome httpError(std::uint32_t code, const std::string& phrase) {
  return {ORB_FAILURE, ORB_HTTP_ERROR, "A non-200 HTTP response was received",
          phrase,      code,           ""};
}

Outcome kaldexError(const std::string& message, const std::string& identifier) {
  return {ORB_FAILURE,
          ORB_KALDEX_ERROR,
          "Error was thrown while executing KALDEX code",
          message,
          0,
          identifier};
}

Outcome genericError(const std::string& message) {
  return {ORB_FAILURE, ORB_GENERIC_ERROR, "A generic error was thrown", message, 0, ""};
}

Outcome countMismatch(std::size_t received, std::size_t wanted) {
  return genericError("Number of outputs received from KALDEX, " +
                      std::to_string(received) +
                      ", do not match the number of left hand side parameters, " +
                      std::to_string(wanted) + ", provided.");
}

Outcome refusal() {
  return genericError(
      "Failed writing received data to disk/application\n"
      "This might happen if response content size is larger than the response size "
      "limit.\n"
      "You can increase response size limit using setResponseSizeLimit method.");
}

Caller::Caller(const Settings& settings) {
  const orbClientRuntime& table = runtime();
  orbClientConfig* config = nullptr;
  if (table.createConfig(&config) != ORB_OK) throw std::runtime_error("createConfig");
  table.setTimeoutSec(config, settings.timeoutSec);
  table.setResponseSizeLimit(config, settings.limitBytes);
  table.setVerifyHost(config, settings.verifyHost);
  table.setVerifyPeer(config, settings.verifyPeer);
  table.setServerCertFile(config, settings.serverCertFile.c_str());
  table.setClientCertFile(config, settings.clientCertFile.c_str());
  table.setClientPrivateKeyFile(config, settings.clientPrivateKeyFile.c_str());
  table.setClientPrivateKeyPassword(config, settings.clientPrivateKeyPassword.c_str());
  table.setCRLFile(config, settings.crlFile.c_str());
  const orbStatus status = table.createContext(&context_, config);
  table.destroyConfig(config);
  if (status != ORB_OK) throw std::runtime_error("createContext");
}

Caller::~Caller() { runtime().destroyContext(context_); }

Outcome Caller::call(const char* url, std::vector<Array>& outputs,
                     const std::vector<orbArray>& inputs) {
  std::vector<orbArray> slots;
  for (const Array& output : outputs) slots.push_back(output);
  const orbStatus status = runtime().feval(
      context_, url, static_cast<std::uint32_t>(slots.size()), slots.data(),
      static_cast<std::uint32_t>(inputs.size()), inputs.data());
  for (std::size_t i = 0; i < slots.size(); ++i) {
    if (slots[i] != outputs[i].get()) outputs[i] = Array(slots[i]);
  }
  return status == ORB_OK ? success() : lastError();
}

Outcome Caller::call(const std::string& url, std::vector<Array>& outputs,
                     const std::vector<orbArray>& inputs) {
  return call(url.c_str(), outputs, inputs);
}

Outcome Caller::lastError() const {
  orbErrorInfo info;
  runtime().getLastErrorInfo(context_, &info);
  Outcome outcome{ORB_FAILURE, info.type, info.message, "", 0, ""};
  switch (info.type) {
    case ORB_HTTP_ERROR:
      outcome.responseCode = info.details.http.responseCode;
      outcome.detail = info.details.http.responseMessage;
      break;
    case ORB_KALDEX_ERROR:
      outcome.detail = info.details.kaldex.message;
      outcome.identifier = info.details.kaldex.identifier;
      break;
    case ORB_GENERIC_ERROR:
      outcome.detail = info.details.generic.message;
      break;
  }
  runtime().destroyLastErrorInfo(&info);
  return outcome;
}

Script usualReply() {
  return {send(wire::reply(wire::result({wire::doubleRow({kUsualValue})})))};
}

Exchange::Exchange() : server_({send(wire::reply(""))}) {}

Array Exchange::receive(const std::string& message) {
  server_.onRequest({send(wire::reply(wire::result({message})))});
  std::vector<Array> outputs(1);
  EXPECT_EQ(caller_.call(server_.url(), outputs), success());
  return std::move(outputs[0]);
}

std::string Exchange::bodyWith(const std::vector<orbArray>& inputs) {
  std::vector<Array> none;
  EXPECT_EQ(caller_.call(server_.url(), none, inputs), success());
  return server_.requests().back().body;
}

void expectUsualCall(Caller& caller, const std::string& url) {
  std::vector<Array> outputs(1);
  ASSERT_EQ(caller.call(url, outputs), success());
  EXPECT_TRUE(orbIsDouble(outputs[0]));
  EXPECT_EQ(orbGetScalar(outputs[0]), kUsualValue);
}

}  // namespace orb::test
