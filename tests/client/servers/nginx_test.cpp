// SPDX-License-Identifier: MIT
// Calls through nginx to two compute servers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "client/servers/calls.h"
#include "client/servers/front_end.h"
#include "client/transport/caller.h"

namespace orb::test {
namespace {

struct LogLine {
  std::string connection;
  int request = 0;
  int status = 0;
  std::string backend;
  std::string coding;
};

std::vector<LogLine> logOf(Nginx& nginx) {
  std::vector<LogLine> lines;
  for (const std::string& text : nginx.stopAndReadLog()) {
    LogLine line;
    std::istringstream(text) >> line.connection >> line.request >> line.status >>
        line.backend >> line.coding;
    lines.push_back(line);
  }
  return lines;
}

class BehindNginx : public ::testing::Test {
 protected:
  std::string group() const { return nginxGroup({one_.address(), two_.address()}); }
  static std::string url(const Nginx& nginx, const std::string& path) {
    return "http://" + nginx.address() + path;
  }

  Backend one_;
  Backend two_;
};

TEST_F(BehindNginx, BothBackendsAnswerOverOneConnection) {
  Nginx nginx(nginxPass("/"), group());
  Caller caller;
  constexpr int kCalls = 3000;
  for (int i = 0; i < kCalls; ++i) {
    ASSERT_EQ(doubleOnServer(caller, url(nginx, "/mtimes"), i), success()) << i;
  }
  const std::vector<LogLine> log = logOf(nginx);
  ASSERT_EQ(log.size(), static_cast<std::size_t>(kCalls));
  std::set<std::string> connections;
  std::set<std::string> backends;
  for (const LogLine& line : log) {
    connections.insert(line.connection);
    backends.insert(line.backend);
    EXPECT_EQ(line.status, 200);
  }
  EXPECT_EQ(connections.size(), 1U);
  EXPECT_EQ(log.back().request, kCalls);
  EXPECT_THAT(backends, ::testing::UnorderedElementsAre(one_.address(), two_.address()));
}

TEST_F(BehindNginx, AServerSideErrorArrivesWhole) {
  Nginx nginx(nginxPass("/"), group());
  Caller caller;
  std::vector<Array> none;
  const Array text = charRow(u"no way");
  const Outcome outcome = caller.call(url(nginx, "/fail"), none, {text});
  EXPECT_EQ(outcome, kaldexError("no way", "orbserve:fail:requested"));
  EXPECT_EQ(doubleOnServer(caller, url(nginx, "/mtimes"), 4), success());
}

TEST_F(BehindNginx, TheClientGoesOnWhenABackendIsKilled) {
  Nginx nginx(nginxPass("/"), group());
  Caller caller;
  for (int i = 0; i < 10; ++i) {
    ASSERT_EQ(doubleOnServer(caller, url(nginx, "/mtimes"), i), success());
  }
  one_.kill();
  for (int i = 0; i < 10; ++i) {
    ASSERT_EQ(doubleOnServer(caller, url(nginx, "/mtimes"), i), success());
  }
  std::set<std::string> connections;
  for (const LogLine& line : logOf(nginx)) connections.insert(line.connection);
  EXPECT_EQ(connections.size(), 1U);
}

TEST_F(BehindNginx, AChunkedReplyIsRead) {
  // nginx cannot tell the length of a text that it may change, and sends chunks.
  Nginx nginx(nginxPass("/", "sub_filter_types *;\nsub_filter 'not in any reply' '';"),
              group());
  Caller caller;
  EXPECT_EQ(doubleOnServer(caller, url(nginx, "/mtimes"), 21), success());
  EXPECT_TRUE(echoes(caller, url(nginx, "/echo"), 300000));
  const std::vector<LogLine> log = logOf(nginx);
  ASSERT_EQ(log.size(), 2U);
  EXPECT_EQ(log[0].coding, "chunked");
  EXPECT_EQ(log[1].coding, "chunked");
  EXPECT_EQ(log[1].connection, log[0].connection);
}

TEST_F(BehindNginx, ALongerReplyThanTheLimitIsRefused) {
  Nginx nginx(nginxPass("/"), group());
  Settings settings;
  settings.limitBytes = 100000;
  Caller caller(settings);
  const Array input = doubleRow(std::vector<double>(20000, 1.5));
  std::vector<Array> outputs(1);
  EXPECT_EQ(caller.call(url(nginx, "/echo"), outputs, {input}), refusal());
  EXPECT_EQ(doubleOnServer(caller, url(nginx, "/mtimes"), 5), success());
}

struct StatusRow {
  std::string path;
  Outcome expected;
};

TEST_F(BehindNginx, StatusAndReasonPhraseAreTold) {
  const DeadPort closed(DeadPort::Answer::kRefusal);
  Nginx nginx(nginxPass("/") + nginxPass("/small/", "client_max_body_size 1000;") +
                  nginxPass("/slow/", "proxy_read_timeout 200ms;") +
                  "location /dead/ { proxy_pass http://" + closed.address() +
                  "/; }\nlocation /503/ { return 503; }\n"
                  "location /429/ { return 429; }\nlocation /301/ { return 301 /; }\n"
                  "location /204/ { return 204; }\n",
              group());
  const StatusRow rows[] = {
      {"/dead/mtimes", httpError(502, "Bad Gateway\r\n")},
      {"/slow/sleep", httpError(504, "Gateway Time-out\r\n")},
      {"/small/echo", httpError(413, "Request Entity Too Large\r\n")},
      {"/503/", httpError(503, "Service Temporarily Unavailable\r\n")},
      {"/429/", httpError(429, "Too Many Requests\r\n")},
      {"/301/", httpError(301, "Moved Permanently\r\n")},
      {"/204/", httpError(204, "No Content\r\n")},
      {"/no-such-function", httpError(404, "Not Found\r\n")},
  };
  Caller caller;
  const Array seconds(orbCreateDoubleScalar(1));
  const Array large = doubleRow(std::vector<double>(500000, 1.5));
  for (const StatusRow& row : rows) {
    SCOPED_TRACE(row.path);
    std::vector<Array> outputs(1);
    const bool sleeps = row.path == "/slow/sleep";
    EXPECT_EQ(caller.call(url(nginx, row.path), outputs, {sleeps ? seconds : large}),
              row.expected);
    EXPECT_EQ(outputs[0].get(), nullptr);
    EXPECT_EQ(doubleOnServer(caller, url(nginx, "/mtimes"), 3), success());
  }
}

TEST_F(BehindNginx, AServerThatIsGoneFailsToConnect) {
  Nginx nginx(nginxPass("/"), group());
  Caller caller;
  EXPECT_EQ(doubleOnServer(caller, url(nginx, "/mtimes"), 3), success());
  nginx.stopAndReadLog();
  EXPECT_EQ(doubleOnServer(caller, url(nginx, "/mtimes"), 3),
            genericError("Couldn't connect to server"));
}

}  // namespace
}  // namespace orb::test
