// SPDX-License-Identifier: MIT
// Exported: initialisation and the function table.
#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>

#include "http/qx_http_client.h"
#include "orb/qxorbclient.h"
#include "runtime/client_config.h"
#include "runtime/client_context.h"

namespace {

// Clients compiled against any version find each operation at its place.
static_assert(offsetof(orbClientRuntime, createConfig) == 0);
static_assert(offsetof(orbClientRuntime, feval) == 10 * sizeof(void*),
              "last of version 1.0");
static_assert(offsetof(orbClientRuntime, setClientCertFile) == 11 * sizeof(void*));
static_assert(offsetof(orbClientRuntime, getVerifyPeer) == 24 * sizeof(void*),
              "last of version 1.1");
static_assert(sizeof(orbClientRuntime) == 25 * sizeof(void*));
static_assert(offsetof(orbErrorInfo, message) == 8 &&
              offsetof(orbErrorInfo, details) == 16);
static_assert(offsetof(orbErrorInfo, details.http.responseMessage) == 24);
static_assert(offsetof(orbErrorInfo, details.kaldex.stackDepth) == 40);
static_assert(sizeof(orbStackFrame) == 24);

// Without destructors: exit handlers, and threads that run on while a program exits, use
// them still.
orbClientRuntime* table = nullptr;
char initializationMessage[128] = "";

template <auto operation>
constexpr auto forwarderTo = &orb::ConfigForwarder<operation>::call;

void fillVersion10(orbClientRuntime& runtime) {
  using orb::QXClientConfig;
  runtime.createConfig = orb::createConfig;
  runtime.destroyConfig = orb::destroyConfig;
  runtime.setTimeoutSec = forwarderTo<&QXClientConfig::setTimeoutSec>;
  runtime.getTimeoutSec = forwarderTo<&QXClientConfig::getTimeoutSec>;
  runtime.setResponseSizeLimit = forwarderTo<&QXClientConfig::setResponseSizeLimit>;
  runtime.getResponseSizeLimit = forwarderTo<&QXClientConfig::getResponseSizeLimit>;
  runtime.createContext = orb::createContext;
  runtime.destroyContext = orb::destroyContext;
  runtime.getLastErrorInfo = orb::getLastErrorInfo;
  runtime.destroyLastErrorInfo = orb::destroyLastErrorInfo;
  runtime.feval = orb::feval;
}

void fillVersion11(orbClientRuntime& runtime) {
  using orb::QXClientConfig;
  runtime.setClientCertFile = forwarderTo<&QXClientConfig::setClientCertFile>;
  runtime.getClientCertFile = forwarderTo<&QXClientConfig::getClientCertFile>;
  runtime.setClientPrivateKeyFile = forwarderTo<&QXClientConfig::setClientPrivateKeyFile>;
  runtime.getClientPrivateKeyFile = forwarderTo<&QXClientConfig::getClientPrivateKeyFile>;
  runtime.setClientPrivateKeyPassword =
      forwarderTo<&QXClientConfig::setClientPrivateKeyPassword>;
  runtime.getClientPrivateKeyPassword =
      forwarderTo<&QXClientConfig::getClientPrivateKeyPassword>;
  runtime.setServerCertFile = forwarderTo<&QXClientConfig::setServerCertFile>;
  runtime.getServerCertFile = forwarderTo<&QXClientConfig::getServerCertFile>;
  runtime.setCRLFile = forwarderTo<&QXClientConfig::setCRLFile>;
  runtime.getCRLFile = forwarderTo<&QXClientConfig::getCRLFile>;
  runtime.setVerifyHost = forwarderTo<&QXClientConfig::setVerifyHost>;
  runtime.getVerifyHost = forwarderTo<&QXClientConfig::getVerifyHost>;
  runtime.setVerifyPeer = forwarderTo<&QXClientConfig::setVerifyPeer>;
  runtime.getVerifyPeer = forwarderTo<&QXClientConfig::getVerifyPeer>;
}

std::unique_ptr<orbClientRuntime> makeTable(uint32_t version) {
  if (version != ORB_CLIENT_1_0 && version != ORB_CLIENT_1_1) {
    throw std::runtime_error("Invalid version number.");
  }
  orb::QXHttpClient::initializeGlobally();
  auto runtime = std::make_unique<orbClientRuntime>();
  fillVersion10(*runtime);
  if (version == ORB_CLIENT_1_1) fillVersion11(*runtime);
  return runtime;
}

}  // namespace

orbClientRuntime* orbInitializeEx(uint32_t version) {
  if (table == nullptr) {
    try {
      table = makeTable(version).release();
    } catch (const std::exception& failure) {
      std::snprintf(initializationMessage, sizeof initializationMessage, "%s",
                    failure.what());
    }
  }
  return table;
}

orbClientRuntime* orbInitialize(void) { return orbInitializeEx(ORB_CLIENT_1_0); }

const char* orbGetInitializationErrorMessage(void) { return initializationMessage; }

void orbTerminate(void) {
  if (table == nullptr) return;
  delete std::exchange(table, nullptr);
  orb::QXHttpClient::cleanUpGlobally();
  initializationMessage[0] = '\0';
}
