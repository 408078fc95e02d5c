// SPDX-License-Identifier: MIT
#include <sstream>
#include <utility>

#include "support/scripted_server.h"
#include "support/wire.h"
#include "torture/allocations/failing_malloc.h"
#include "torture/allocations/receiver.h"
#include "torture/allocations/scenario.h"

namespace orb::torture {
namespace {

namespace wire = test::wire;

constexpr const char* kBefore = "a setting too long to be held in place";
constexpr const char* kAfter = "another setting that is too long to be held in place";

/// Starting the library and ending it.
class Start : public Situation {
 public:
  using Act = const void* (*)();
  explicit Start(Act call) : call_(call) {
    const WatchPause pause;
    stopReceiving();
    orbTerminate();
  }
  ~Start() override { orbTerminate(); }

  void act() override {
    orbTerminate();
    gave_ = call_();
  }
  std::string outcome() override {
    return gave_ == nullptr ? "null, " + std::string(orbGetInitializationErrorMessage())
                            : "something";
  }
  std::string kept() override { return ""; }

 private:
  const Act call_;
  const void* gave_ = nullptr;
};

/// A member of the table, with a configuration, a context and an error to use it on.
class Member : public Situation {
 public:
  using Act = void (*)(Member&);
  explicit Member(Act call) : call_(call) {
    table().createConfig(&config);
    const orbClientRuntime& t = table();
    for (const auto set :
         {t.setClientCertFile, t.setClientPrivateKeyFile, t.setClientPrivateKeyPassword,
          t.setServerCertFile, t.setCRLFile}) {
      set(config, kBefore);
    }
  }
  ~Member() override {
    table().destroyLastErrorInfo(&info);
    table().destroyContext(failedContext);
    table().destroyContext(madeContext);
    table().destroyConfig(madeConfig);
    table().destroyConfig(config);
  }

  void act() override { call_(*this); }
  std::string outcome() override {
    if (madeContext != nullptr && status != ORB_OK) {
      orbErrorInfo reason;
      table().getLastErrorInfo(madeContext, &reason);
      return "reported: " + std::string(reason.details.generic.message);
    }
    if (status != ORB_OK && madeConfig == nullptr) return "reported: nothing made";
    std::ostringstream out;
    out << status << ' ' << number << ' ' << (text == nullptr ? "" : text);
    if (info.message != nullptr) {
      out << ' ' << info.message << ' ' << info.details.kaldex.message << ' '
          << info.details.kaldex.stackDepth;
      out << (info.details.kaldex.stack == nullptr ? " null" : " frames");
    }
    return out.str();
  }
  std::string kept() override { return ""; }

  /// Makes failedContext, of a call to which a server answered with an error.
  void failACall() {
    const WatchPause pause;
    test::ScriptedServer server(
        {test::send(wire::reply(wire::error("no", "a:b", {{"f.k", "f", 1}})))});
    orbClientConfig* defaults = nullptr;
    table().createConfig(&defaults);
    table().createContext(&failedContext, defaults);
    table().destroyConfig(defaults);
    table().feval(failedContext, server.url().c_str(), 0, nullptr, 0, nullptr);
  }

  orbClientConfig* config = nullptr;
  orbClientConfig* madeConfig = nullptr;
  orbClientContext* madeContext = nullptr;
  orbClientContext* failedContext = nullptr;
  orbErrorInfo info{};
  orbStatus status = ORB_OK;
  std::uint64_t number = 0;
  const char* text = nullptr;

 private:
  const Act call_;
};

using Failures = std::vector<std::string>;

void add(Scenarios& all, const char* name, Promise promise, const Failures& failures,
         Member::Act act, bool afterError = false) {
  all.push_back({name, "of the table", promise, failures, [act, afterError] {
                   auto member = std::make_unique<Member>(act);
                   if (afterError) member->failACall();
                   return member;
                 }});
}

#define ORB_NUMBER_SETTING(what, value)                           \
  add(all, "set" #what, Promise::kNeverFails, {}, [](Member& m) { \
    table().set##what(m.config, value);                           \
    m.number = table().get##what(m.config);                       \
  });                                                             \
  add(all, "get" #what, Promise::kNeverFails, {},                 \
      [](Member& m) { m.number = table().get##what(m.config); })

#define ORB_TEXT_SETTING(what)                                              \
  add(all, "set" #what, Promise::kReturns, {std::string("0 0 ") + kBefore}, \
      [](Member& m) {                                                       \
        table().set##what(m.config, kAfter);                                \
        m.text = table().get##what(m.config);                               \
      });                                                                   \
  add(all, "get" #what, Promise::kNeverFails, {},                           \
      [](Member& m) { m.text = table().get##what(m.config); })

void addSettings(Scenarios& all) {
  ORB_NUMBER_SETTING(TimeoutSec, 7);
  ORB_NUMBER_SETTING(ResponseSizeLimit, 7);
  ORB_NUMBER_SETTING(VerifyHost, false);
  ORB_NUMBER_SETTING(VerifyPeer, false);
  ORB_TEXT_SETTING(ClientCertFile);
  ORB_TEXT_SETTING(ClientPrivateKeyFile);
  ORB_TEXT_SETTING(ClientPrivateKeyPassword);
  ORB_TEXT_SETTING(ServerCertFile);
  ORB_TEXT_SETTING(CRLFile);
}

#undef ORB_NUMBER_SETTING
#undef ORB_TEXT_SETTING

void addStarts(Scenarios& all) {
  const Failures failures{"null, Global initialization of QXHttpClient failed",
                          "null, std::bad_alloc"};
  const auto addStart = [&](const char* name, Promise promise, Start::Act act) {
    all.push_back(
        {name, "", promise, failures, [act] { return std::make_unique<Start>(act); }});
  };
  addStart("orbInitialize", Promise::kReturns,
           []() -> const void* { return orbInitialize(); });
  addStart("orbInitializeEx", Promise::kReturns,
           []() -> const void* { return orbInitializeEx(ORB_CLIENT_1_1); });
  addStart("orbGetInitializationErrorMessage", Promise::kNeverFails,
           []() -> const void* { return orbGetInitializationErrorMessage(); });
  addStart("orbTerminate", Promise::kNeverFails, []() -> const void* {
    orbTerminate();
    return orbGetInitializationErrorMessage();
  });
}

}  // namespace

void addRuntimeScenarios(Scenarios& all) {
  addStarts(all);
  addSettings(all);
  add(all, "createConfig", Promise::kReturns, {"1 0 ", "reported: nothing made"},
      [](Member& m) {
        table().destroyConfig(std::exchange(m.madeConfig, nullptr));
        m.status = table().createConfig(&m.madeConfig);
      });
  add(all, "destroyConfig", Promise::kNeverFails, {},
      [](Member& m) { table().destroyConfig(std::exchange(m.config, nullptr)); });
  add(all, "createContext", Promise::kReports, {}, [](Member& m) {
    table().destroyContext(std::exchange(m.madeContext, nullptr));
    m.status = table().createContext(&m.madeContext, m.config);
  });
  add(
      all, "destroyContext", Promise::kNeverFails, {},
      [](Member& m) { table().destroyContext(std::exchange(m.failedContext, nullptr)); },
      true);
  const auto getInfo = [](Member& m) {
    table().destroyLastErrorInfo(&m.info);
    table().getLastErrorInfo(m.failedContext, &m.info);
  };
  add(all, "getLastErrorInfo", Promise::kReturns,
      {"0 0  Error was thrown while executing KALDEX code no 1 null"}, getInfo, true);
  add(
      all, "destroyLastErrorInfo", Promise::kNeverFails, {},
      [](Member& m) { table().destroyLastErrorInfo(&m.info); }, true);
}

}  // namespace orb::torture
