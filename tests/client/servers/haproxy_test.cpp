// SPDX-License-Identifier: MIT
// Calls through HAProxy, which writes HTTP in a hand of its own: header names in lower
// case, and bodies framed anew.
#include <gtest/gtest.h>

#include "client/servers/calls.h"
#include "client/servers/front_end.h"
#include "client/transport/caller.h"
#include "support/wire.h"

namespace orb::test {
namespace {

std::string group(const std::string& name, const std::string& address,
                  const std::string& lines = "") {
  return "backend " + name + "\n" + lines + "  server one " + address + "\n";
}

std::string url(const Haproxy& haproxy, const std::string& path) {
  return "http://" + haproxy.address() + path;
}

TEST(BehindHaproxy, OneConnectionCarriesAllCallsOfAContext) {
  const Backend backend;
  // The second connection of an address is turned away.
  const Haproxy haproxy(
      "  stick-table type ip size 10 store conn_cnt\n"
      "  tcp-request connection track-sc0 src\n"
      "  http-request deny deny_status 429 if { sc0_conn_cnt gt 1 }\n"
      "  default_backend compute",
      group("compute", backend.address()));
  Caller caller;
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(doubleOnServer(caller, url(haproxy, "/demo/mtimes"), i), success()) << i;
  }
  Caller second;
  EXPECT_EQ(doubleOnServer(second, url(haproxy, "/demo/mtimes"), 1),
            httpError(429, "Too Many Requests\r\n"));
}

TEST(BehindHaproxy, ALargeArrayGoesBothWays) {
  const Backend backend;
  const Haproxy haproxy("  default_backend compute", group("compute", backend.address()));
  Caller caller;
  EXPECT_TRUE(echoes(caller, url(haproxy, "/demo/echo"), 200000));
}

TEST(BehindHaproxy, AChunkedReplyIsRead) {
  const std::string outputs = wire::result({wire::doubleRow({kUsualValue})});
  const ScriptedServer server({send(wire::chunkedReply(outputs))});
  const Haproxy haproxy("  default_backend scripted",
                        group("scripted", "127.0.0.1:" + std::to_string(server.port())));
  Caller caller;
  for (int i = 0; i < 3; ++i) expectUsualCall(caller, url(haproxy, "/f"));
}

TEST(BehindHaproxy, AReasonPhrasePassesThrough) {
  ScriptedServer server(usualReply());
  server.onRequest({send("HTTP/1.1 500 Out of  paper\r\nContent-Length: 0\r\n\r\n")});
  server.onRequest({send("HTTP/1.1 500 \r\nContent-Length: 0\r\n\r\n")});
  const Haproxy haproxy("  default_backend scripted",
                        group("scripted", "127.0.0.1:" + std::to_string(server.port())));
  Caller caller;
  std::vector<Array> outputs(1);
  EXPECT_EQ(caller.call(url(haproxy, "/f"), outputs),
            httpError(500, "Out of  paper\r\n"));
  EXPECT_EQ(caller.call(url(haproxy, "/f"), outputs), httpError(500, "\r\n"));
  expectUsualCall(caller, url(haproxy, "/f"));
}

struct StatusRow {
  std::string path;
  Outcome expected;
};

TEST(BehindHaproxy, StatusAndReasonPhraseAreTold) {
  const Backend backend;
  ScriptedServer garbage({send("no HTTP at all\r\n\r\n"), close()});
  const DeadPort closed(DeadPort::Answer::kRefusal);
  const Haproxy haproxy(
      "  http-request deny deny_status 413 if { path_beg /small/ } { req.body_size gt 9 "
      "}\n"
      "  use_backend none if { path_beg /none/ }\n"
      "  use_backend dead if { path_beg /dead/ }\n"
      "  use_backend garbage if { path_beg /garbage/ }\n"
      "  use_backend slow if { path /demo/sleep }\n"
      "  default_backend compute",
      group("compute", backend.address()) +
          group("slow", backend.address(), "  timeout server 200ms\n") +
          group("dead", closed.address(), "  retries 0\n") +
          group("garbage", "127.0.0.1:" + std::to_string(garbage.port())) +
          "backend none\n");
  const StatusRow rows[] = {
      {"/none/f", httpError(503, "Service Unavailable\r\n")},
      {"/dead/f", httpError(503, "Service Unavailable\r\n")},
      {"/garbage/f", httpError(502, "Bad Gateway\r\n")},
      {"/demo/sleep", httpError(504, "Gateway Time-out\r\n")},
      {"/small/f", httpError(413, "Payload Too Large\r\n")},
      {"/demo/no-such-function", httpError(404, "Not Found\r\n")},
  };
  Caller caller;
  const Array second(orbCreateDoubleScalar(1));
  for (const StatusRow& row : rows) {
    SCOPED_TRACE(row.path);
    std::vector<Array> outputs(1);
    EXPECT_EQ(caller.call(url(haproxy, row.path), outputs, {second}), row.expected);
    EXPECT_EQ(outputs[0].get(), nullptr);
    EXPECT_EQ(doubleOnServer(caller, url(haproxy, "/demo/mtimes"), 3), success());
  }
}

// The announced length goes unseen in lower case: nothing is refused, and the reading
// ends inside the array. What was read of it is an output like any other.
TEST(BehindHaproxy, ALongerReplyThanTheLimitIsReadUpToIt) {
  const Backend backend;
  const Haproxy haproxy("  default_backend compute", group("compute", backend.address()));
  Settings settings;
  settings.limitBytes = 1000;
  Caller caller(settings);
  const Array input = doubleRow(std::vector<double>(200, 1.5));
  std::vector<Array> outputs(1);
  ASSERT_EQ(caller.call(url(haproxy, "/demo/echo"), outputs, {input}), success());
  EXPECT_EQ(dimensionsOf(outputs[0]), (std::vector<size_t>{1, 200}));
  // The server counts what is stored when the array comes back.
  std::vector<Array> none(1);
  EXPECT_EQ(
      caller.call(url(haproxy, "/demo/echo"), none, {outputs[0]}),
      kaldexError("echo: expected an element count of 200 in input 1 (1x200 double), "
                  "got 124",
                  "orbserve:echo:payload"));
}

}  // namespace
}  // namespace orb::test
