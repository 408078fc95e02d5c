// SPDX-License-Identifier: MIT
// Servers that are slow or silent, against a time-out of one second. All of them at once,
// each with a context and a thread of its own.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

#include "client/transport/caller.h"
#include "client/transport/certificates.h"

namespace orb::test {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct SlowRow {
  std::string name;
  Script answer;
  Outcome expected;
};

std::vector<SlowRow> slowRows() {
  const std::string body = wire::result({wire::doubleRow({1})});
  const std::string status = "HTTP/1.1 200 OK\r\n";
  const std::string head =
      status + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
  const std::string half = body.substr(0, body.size() / 2);
  const Outcome late = genericError("Timeout was reached");
  return {
      {"before headers", {stall()}, late},
      {"inside the status line", {send("HTTP/1."), stall()}, late},
      {"inside headers", {send(status + "Content-"), stall()}, late},
      {"after a 100", {send("HTTP/1.1 100 Continue\r\n\r\n"), stall()}, late},
      {"after headers", {send(head), stall()}, late},
      {"inside the body", {send(head + half), stall()}, late},
      {"inside a chunk",
       {send(status + "Transfer-Encoding: chunked\r\n\r\n99\r\n" + half), stall()},
       late},
      {"before the last chunk",
       {send(status + "Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n"), stall()},
       late},
      {"body without length and end", {send(status + "\r\n" + body), stall()}, late},
      {"error without end", {send("HTTP/1.1 500 Oh\r\n\r\n" + body), stall()}, late},
      {"a drip too slow", {drip(head + body, milliseconds(100))}, late},
      {"a drip", {drip(head + body, milliseconds(2))}, success()},
      {"a pause",
       {send(head + half), pause(milliseconds(300)), send(body.substr(half.size()))},
       success()},
  };
}

/// What one call came to, and how long it took.
struct Timed {
  Outcome outcome;
  Clock::duration time{};
};

Timed timedCall(Caller& caller, const std::string& url) {
  std::vector<Array> outputs(1);
  const Clock::time_point start = Clock::now();
  Outcome outcome = caller.call(url, outputs);
  return {std::move(outcome), Clock::now() - start};
}

/// One row on one road: its own server, context and thread.
class SlowCall {
 public:
  SlowCall(SlowRow row, bool reused, bool tls)
      : row_(std::move(row)),
        name_(row_.name + (reused ? ", reused" : ", first") + (tls ? ", TLS" : "")),
        server_(tls ? std::make_unique<ScriptedServer>(usualReply(),
                                                       Certificates::get().server())
                    : std::make_unique<ScriptedServer>(usualReply())),
        caller_(settings()) {
    if (reused) expectUsualCall(caller_, server_->url());
    server_->onRequest(row_.answer);
  }

  void start() {
    thread_ = std::thread([this] { timed_ = timedCall(caller_, server_->url()); });
  }

  void finish() {
    thread_.join();
    SCOPED_TRACE(name_);
    EXPECT_EQ(timed_.outcome, row_.expected);
    if (row_.expected.status == ORB_FAILURE) {
      EXPECT_GE(timed_.time, milliseconds(900));
    }
    EXPECT_LT(timed_.time, std::chrono::seconds(10));
    expectUsualCall(caller_, server_->url());
  }

 private:
  static Settings settings() {
    Settings settings;
    settings.timeoutSec = 1;
    settings.serverCertFile = Certificates::get().authority();
    return settings;
  }

  const SlowRow row_;
  const std::string name_;
  const std::unique_ptr<ScriptedServer> server_;
  Caller caller_;
  std::thread thread_;
  Timed timed_;
};

TEST(Timeout, EndsSilentAndSlowRepliesAndLeavesTheContextUsable) {
  std::vector<std::unique_ptr<SlowCall>> calls;
  for (const SlowRow& row : slowRows()) {
    for (const bool reused : {false, true}) {
      for (const bool tls : {false, true}) {
        calls.push_back(std::make_unique<SlowCall>(row, reused, tls));
      }
    }
  }
  for (const auto& call : calls) call->start();
  for (const auto& call : calls) call->finish();
}

TEST(Timeout, IncludesTheTlsHandshake) {
  ScriptedServer server(usualReply(), Certificates::get().server());
  server.onConnection({stall()});
  Settings settings;
  settings.timeoutSec = 1;
  settings.serverCertFile = Certificates::get().authority();
  Caller caller(settings);
  EXPECT_EQ(timedCall(caller, server.url()).outcome, genericError("Timeout was reached"));
  expectUsualCall(caller, server.url());
}

TEST(Timeout, IncludesConnecting) {
  const DeadPort port(DeadPort::Answer::kSilence);
  Settings settings;
  settings.timeoutSec = 1;
  Caller caller(settings);
  const Timed timed = timedCall(caller, port.url());
  EXPECT_EQ(timed.outcome, genericError("Timeout was reached"));
  EXPECT_GE(timed.time, milliseconds(900));
}

TEST(Timeout, OfZeroIsNoLimit) {
  ScriptedServer server(usualReply());
  Settings settings;
  settings.timeoutSec = 0;
  Caller caller(settings);
  server.onRequest({pause(milliseconds(1500)),
                    send(wire::reply(wire::result({wire::doubleRow({1})})))});
  EXPECT_EQ(timedCall(caller, server.url()).outcome, success());
}

// More seconds than the transport counts act as the most that it counts.
TEST(Timeout, KeepsAndAcceptsEverySetting) {
  ScriptedServer server(usualReply());
  for (const std::uint64_t timeoutSec :
       {std::uint64_t{2147483}, std::uint64_t{2147484}, std::uint64_t{2147483647},
        std::uint64_t{4294967296}, std::uint64_t{9223372036854775807},
        std::uint64_t{9223372036854775808u}, std::uint64_t{18446744073709551615u}}) {
    SCOPED_TRACE(timeoutSec);
    Settings settings;
    settings.timeoutSec = timeoutSec;
    Caller caller(settings);
    expectUsualCall(caller, server.url());
  }
}

}  // namespace
}  // namespace orb::test
