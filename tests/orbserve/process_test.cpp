// SPDX-License-Identifier: MIT
// The life of the server process: options, first line, end.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <future>
#include <stdexcept>
#include <thread>

#include "orbserve/service.h"

namespace orb::test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

using Clock = std::chrono::steady_clock;
using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

// Far below the time that the server keeps idle connections, and the sleep below.
constexpr auto kPromptly = 5s;

struct Outcome {
  int status;
  std::string output;
};

/// Runs the server with options that make it end at once.
Outcome run(const std::string& options) {
  FILE* pipe = popen((std::string(ORBSERVE_PATH) + " " + options + " 2>&1").c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("popen");
  std::string output;
  for (int letter; (letter = fgetc(pipe)) != EOF;) output += static_cast<char>(letter);
  return {WEXITSTATUS(pclose(pipe)), output};
}

TEST(FirstLine, IsTheBaseUrl) {
  EXPECT_THAT(sharedServer().url(), MatchesRegex("http://127\\.0\\.0\\.1:[0-9]+"));
}

TEST(Host, IsPartOfTheUrl) {
  EXPECT_THAT(ServerProcess({ORBSERVE_PATH, "--host", "localhost"}).url(),
              StartsWith("http://localhost:"));
}

TEST(Port, IsTheChosenOne) {
  const std::string url = ServerProcess({ORBSERVE_PATH}).url();
  const std::string port = url.substr(url.rfind(':') + 1);
  EXPECT_EQ(ServerProcess({ORBSERVE_PATH, "--port", port}).url(), url);
}

TEST(Port, IsNotSharedWithAnotherServer) {
  const std::string url = sharedServer().url();
  const std::string port = url.substr(url.rfind(':') + 1);
  const Outcome outcome = run("--port " + port);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "orbserve: cannot listen on 127.0.0.1 port " + port + "\n");
}

TEST(Help, ListsTheOptions) {
  const Outcome outcome = run("--help");
  EXPECT_EQ(outcome.status, 0);
  for (const char* option : {"--host", "--port", "--threads", "--max-body", "--help"}) {
    EXPECT_THAT(outcome.output, HasSubstr(option));
  }
}

struct UsageRow {
  std::string options;
  std::string message;
};

class WrongOptions : public ::testing::TestWithParam<UsageRow> {};

TEST_P(WrongOptions, AreExplained) {
  const Outcome outcome = run(GetParam().options);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.output, StartsWith("orbserve: " + GetParam().message +
                                         "\nusage: orbserve [options]\n"));
}

INSTANTIATE_TEST_SUITE_P(
    Options, WrongOptions,
    ::testing::Values(
        UsageRow{"--port 65536", "--port takes a number from 0 to 65535, not \"65536\""},
        UsageRow{"--port 1x", "--port takes a number from 0 to 65535, not \"1x\""},
        UsageRow{"--threads 0", "--threads takes a number from 1 to 1024, not \"0\""},
        UsageRow{"--max-body ''",
                 "--max-body takes a number from 1 to 2147483647, not \"\""},
        UsageRow{"--verbose", "unknown option or missing value: --verbose"},
        UsageRow{"--port", "unknown option or missing value: --port"},
        UsageRow{"file", "unexpected argument: file"}));

class EndSignal : public ::testing::TestWithParam<int> {};

TEST_P(EndSignal, EndsTheServerInGoodOrder) {
  ServerProcess server({ORBSERVE_PATH});
  EXPECT_EQ(server.stop(GetParam()), 0);
}

TEST_P(EndSignal, DoesNotWaitForIdleConnections) {
  ServerProcess server({ORBSERVE_PATH});
  httplib::Client client(server.url());
  client.set_keep_alive(true);
  ASSERT_EQ(client.Post("/demo/echo", body(0, {}), kMessageType)->status, 200);
  const auto start = Clock::now();
  EXPECT_EQ(server.stop(GetParam()), 0);
  EXPECT_LT(Clock::now() - start, kPromptly);
}

INSTANTIATE_TEST_SUITE_P(Signals, EndSignal, ::testing::Values(SIGINT, SIGTERM));

TEST(SleepingCall, IsAnsweredWhenTheServerEnds) {
  ServerProcess server({ORBSERVE_PATH});
  std::future<Result> sleeping = std::async(std::launch::async, [&server] {
    httplib::Client client(server.url());
    client.set_read_timeout(60s);
    Result result;
    result.ParseFromString(
        client.Post("/demo/sleep", body(1, {scalar(30)}), kMessageType)->body);
    return result;
  });
  std::this_thread::sleep_for(300ms);  // the call is on its way or asleep
  const auto start = Clock::now();
  EXPECT_EQ(server.stop(), 0);
  EXPECT_LT(Clock::now() - start, kPromptly);
  EXPECT_EQ(sleeping.get().error().message(),
            "sleep: the server ended before the time was over");
}

TEST(ServerProcess, ReportsAProgramThatEndsAtOnce) {
  EXPECT_THROW(ServerProcess({"/bin/false"}), std::runtime_error);
}

TEST(ServerProcess, ReportsAProgramThatDoesNotExist) {
  EXPECT_THROW(ServerProcess({"/nonexistent"}), std::runtime_error);
}

TEST(ServerProcess, TellsTheSignalThatKilledTheServer) {
  ServerProcess server({ORBSERVE_PATH});
  EXPECT_EQ(server.stop(SIGKILL), 128 + SIGKILL);
  EXPECT_EQ(server.stop(), 128 + SIGKILL);
}

}  // namespace
}  // namespace orb::test
