// SPDX-License-Identifier: MIT
// What a call shares with the process around it: signals, forks and the environment.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "client/servers/calls.h"
#include "client/servers/front_end.h"
#include "client/transport/caller.h"
#include "client/transport/certificates.h"

namespace orb::test {
namespace {

void onBrokenPipe(int) {}

/// Sets what SIGPIPE does, until its end.
class BrokenPipeAction {
 public:
  explicit BrokenPipeAction(void (*action)(int))
      : before_(std::signal(SIGPIPE, action)) {}
  ~BrokenPipeAction() { std::signal(SIGPIPE, before_); }
  BrokenPipeAction(const BrokenPipeAction&) = delete;
  BrokenPipeAction& operator=(const BrokenPipeAction&) = delete;

  static auto current() {
    struct sigaction action;
    ::sigaction(SIGPIPE, nullptr, &action);
    return action.sa_handler;
  }

 private:
  void (*before_)(int);
};

/// nginx with TLS that refuses long bodies unread, and ends the connection at once.
class HastyServer {
 public:
  HastyServer()
      : nginx_(nginxPass("/", "client_max_body_size 1000;") +
                   "lingering_close off;\nssl_certificate " +
                   Certificates::get().server().certificate + ";\nssl_certificate_key " +
                   Certificates::get().server().key + ";\n",
               nginxGroup({backend_.address()}), "ssl") {}

  std::string url() const { return "https://" + nginx_.address() + "/mtimes"; }

 private:
  Backend backend_;
  Nginx nginx_;
};

Settings trustingSettings() {
  Settings settings;
  settings.serverCertFile = Certificates::get().authority();
  return settings;
}

TEST(BrokenPipeSignal, DoesTheSameAfterACallAsBefore) {
  const HastyServer server;
  Caller caller(trustingSettings());
  for (void (*action)(int) : {SIG_DFL, SIG_IGN, &onBrokenPipe}) {
    const BrokenPipeAction set(action);
    EXPECT_EQ(doubleOnServer(caller, server.url(), 1), success());
    EXPECT_EQ(BrokenPipeAction::current(), action);
  }
}

TEST(BrokenPipeSignal, DoesNotEndAProcessWhoseServerStopsReading) {
  const HastyServer server;
  Caller caller(trustingSettings());
  const BrokenPipeAction set(SIG_DFL);
  const Array large = doubleRow(std::vector<double>(1000000, 1.5));
  for (int i = 0; i < 10; ++i) {
    std::vector<Array> outputs(1);
    // The answer is lost when the end of the connection overtakes it.
    EXPECT_THAT(
        caller.call(server.url(), outputs, {large}),
        ::testing::AnyOf(httpError(413, "Request Entity Too Large\r\n"),
                         genericError("Failed sending data to the peer"),
                         genericError("Failure when receiving data from the peer")));
    EXPECT_EQ(doubleOnServer(caller, server.url(), i), success());
  }
}

TEST(Fork, LetsTheChildCallWithAContextOfItsOwn) {
  const Backend one;
  const Backend two;
  const Nginx nginx(nginxPass("/"), nginxGroup({one.address(), two.address()}));
  const std::string url = "http://" + nginx.address() + "/mtimes";
  Caller caller;
  EXPECT_EQ(doubleOnServer(caller, url, 0), success());
  const pid_t child = ::fork();
  const auto callsRight = [&](Caller& with) {
    bool right = true;
    for (int i = 0; i < 100; ++i)
      right = right && doubleOnServer(with, url, i) == success();
    return right && !::testing::Test::HasFailure();
  };
  if (child == 0) {
    // The servers are the parent's to end: no destructor runs here.
    auto* own = new Caller;
    ::_exit(callsRight(*own) ? 0 : 1);
  }
  EXPECT_TRUE(callsRight(caller));
  int state = 0;
  ASSERT_EQ(::waitpid(child, &state, 0), child);
  EXPECT_TRUE(WIFEXITED(state) && WEXITSTATUS(state) == 0) << state;
}

/// Sets an environment variable, until its end.
class Variable {
 public:
  Variable(const char* name, const std::string& value) : name_(name) {
    ::setenv(name, value.c_str(), 1);
  }
  ~Variable() { ::unsetenv(name_); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const char* name_;
};

TEST(ProxyOfTheEnvironment, TakesTheCallsThatNoProxyDoesNotExcept) {
  const Backend backend;
  Nginx proxy("location / { proxy_pass http://backends; }",
              nginxGroup({backend.address()}));
  const Variable set("http_proxy", "http://" + proxy.address());
  Caller caller;
  EXPECT_EQ(doubleOnServer(caller, "http://compute.invalid/demo/mtimes", 1), success());
  EXPECT_EQ(doubleOnServer(caller, backend.url("mtimes"), 2), success());
  {
    const Variable except("no_proxy", "elsewhere.invalid,127.0.0.1");
    EXPECT_EQ(doubleOnServer(caller, backend.url("mtimes"), 3), success());
  }
  EXPECT_EQ(proxy.stopAndReadLog().size(), 2U);
  EXPECT_EQ(doubleOnServer(caller, backend.url("mtimes"), 4),
            genericError("Couldn't connect to server"));
}

TEST(ProxyOfTheEnvironment, IsNotAskedInCapitalLetters) {
  const Backend backend;
  Nginx proxy("location / { proxy_pass http://backends; }",
              nginxGroup({backend.address()}));
  const Variable set("HTTP_PROXY", "http://" + proxy.address());
  Caller caller;
  EXPECT_EQ(doubleOnServer(caller, backend.url("mtimes"), 2), success());
  EXPECT_EQ(proxy.stopAndReadLog().size(), 0U);
}

TEST(KeptConnection, ThatEndsUnansweredHasTheCallSentAgain) {
  ScriptedServer server(usualReply());
  Caller caller;
  expectUsualCall(caller, server.url());
  server.onRequest({close()});
  expectUsualCall(caller, server.url());
  EXPECT_EQ(server.requests().size(), 3U);  // the second call came twice
  EXPECT_EQ(server.connections(), 2U);
}

TEST(NewConnection, ThatEndsUnansweredFailsTheCall) {
  ScriptedServer server(usualReply());
  Caller caller;
  server.onRequest({close()});
  std::vector<Array> outputs(1);
  EXPECT_EQ(caller.call(server.url(), outputs),
            genericError("Server returned nothing (no headers, no data)"));
  EXPECT_EQ(server.requests().size(), 1U);
}

}  // namespace
}  // namespace orb::test
