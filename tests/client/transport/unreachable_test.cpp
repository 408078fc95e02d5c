// SPDX-License-Identifier: MIT
// URLs that lead to no server, and connections that end before a request is answered.
#include <gtest/gtest.h>

#include "client/transport/caller.h"
#include "client/transport/certificates.h"

namespace orb::test {
namespace {

struct UrlRow {
  std::string url;
  std::string expected;
};

/// Calls `url` before and after a call that succeeds.
void expectFailure(const char* url, const std::string& message) {
  ScriptedServer server(usualReply());
  Caller caller;
  std::vector<Array> outputs(1);
  EXPECT_EQ(caller.call(url, outputs), genericError(message));
  expectUsualCall(caller, server.url());
  EXPECT_EQ(caller.call(url, outputs), genericError(message));
  expectUsualCall(caller, server.url());
  EXPECT_EQ(server.connections(), 1U);
  EXPECT_EQ(outputs[0].get(), nullptr);
}

TEST(FevalUrl, IsHandedToTheTransportAsItIs) {
  // A name with a label above 63 bytes is refused without asking any name server.
  const std::string noName = "http://" + std::string(64, 'a') + ".invalid/f";
  const UrlRow rows[] = {
      {noName, "Couldn't resolve host name"},
      {"unknown://127.0.0.1/f", "Unsupported protocol"},
      {"", "URL using bad/illegal format or missing URL"},
      {" ", "URL using bad/illegal format or missing URL"},
      {"http://", "URL using bad/illegal format or missing URL"},
      {"http://127.0.0.1:99999/f", "URL using bad/illegal format or missing URL"},
      {"http://127.0.0.1:port/f", "URL using bad/illegal format or missing URL"},
      {"http://127.0.0.1 /f", "URL using bad/illegal format or missing URL"},
      {"http://[::1/f", "URL using bad/illegal format or missing URL"},
      {"http://127.0.0.1/\nf", "URL using bad/illegal format or missing URL"},
  };
  for (const UrlRow& row : rows) {
    SCOPED_TRACE(row.url);
    expectFailure(row.url.c_str(), row.expected);
  }
}

TEST(FevalUrl, OfNullIsAGenericError) {
  ScriptedServer server(usualReply());
  Caller caller;
  std::vector<Array> outputs(1);
  EXPECT_EQ(caller.call(nullptr, outputs), genericError("The URL is null."));
  expectUsualCall(caller, server.url());
}

TEST(FevalUrl, MayCarryAQueryAndLoseItsFragment) {
  ScriptedServer server(usualReply());
  Caller caller;
  expectUsualCall(caller, server.url() + "/g%20h?a=b&c=d#e");
  EXPECT_EQ(server.requests().at(0).head.substr(0, 34),
            "POST /f/g%20h?a=b&c=d HTTP/1.1\r\nHo");
}

TEST(FevalUrl, OfAnyLengthIsSentWhole) {
  ScriptedServer server(usualReply());
  Caller caller;
  const std::string path = "/" + std::string(100000, 'x');
  expectUsualCall(caller, server.url() + path);
  EXPECT_EQ(server.requests().at(0).head.substr(0, 16 + path.size()),
            "POST /f" + path + " HTTP/1.1");
}

TEST(FevalUrl, OfARefusingPortFails) {
  const DeadPort port(DeadPort::Answer::kRefusal);
  expectFailure(port.url().c_str(), "Couldn't connect to server");
}

TEST(FevalUrl, ThatSpeaksNoTlsFails) {
  ScriptedServer server(usualReply());
  const std::string url = "https" + server.url().substr(4);
  Caller caller;
  std::vector<Array> outputs(1);
  server.onConnection({send("HTTP/1.1 400 Bad Request\r\n\r\n"), close()});
  EXPECT_EQ(caller.call(url, outputs), genericError("SSL connect error"));
  expectUsualCall(caller, server.url());
}

TEST(FevalUrl, ThatSpeaksTlsOnlyFails) {
  ScriptedServer server(usualReply(), Certificates::get().server());
  const std::string url = "http" + server.url().substr(5);
  Settings settings;
  settings.serverCertFile = Certificates::get().authority();
  Caller caller(settings);
  std::vector<Array> outputs(1);
  EXPECT_EQ(caller.call(url, outputs),
            genericError("Server returned nothing (no headers, no data)"));
  expectUsualCall(caller, server.url());
}

TEST(EarlyEnd, ByAResetBeforeTheRequestIsReadFails) {
  ScriptedServer server(usualReply());
  Caller caller;
  std::vector<Array> outputs(1);
  server.onConnection({pause(std::chrono::milliseconds(50)), reset()});
  EXPECT_EQ(caller.call(server.url(), outputs),
            genericError("Failure when receiving data from the peer"));
  expectUsualCall(caller, server.url());
}

TEST(EarlyEnd, InsideALargeRequestFails) {
  ScriptedServer server(usualReply());
  Caller caller;
  std::vector<Array> outputs(1);
  // More than the socket buffers of both sides hold.
  const Array large(orbCreateDoubleMatrix(4000, 1000, orbREAL));
  server.onConnection({pause(std::chrono::milliseconds(50)), reset()});
  EXPECT_EQ(caller.call(server.url(), outputs, {large}),
            genericError("Failure when receiving data from the peer"));
  expectUsualCall(caller, server.url());
}

TEST(EarlyEnd, InsideTheTlsHandshakeFails) {
  ScriptedServer server(usualReply(), Certificates::get().server());
  Settings settings;
  settings.serverCertFile = Certificates::get().authority();
  Caller caller(settings);
  std::vector<Array> outputs(1);
  server.onConnection({pause(std::chrono::milliseconds(20)), close()});
  EXPECT_EQ(caller.call(server.url(), outputs), genericError("SSL connect error"));
  server.onConnection({pause(std::chrono::milliseconds(20)), reset()});
  EXPECT_EQ(caller.call(server.url(), outputs), genericError("SSL connect error"));
  expectUsualCall(caller, server.url());
}

TEST(EarlyEnd, OfAReusedConnectionSendsTheRequestAgain) {
  ScriptedServer server(usualReply());
  Caller caller;
  expectUsualCall(caller, server.url());
  server.onRequest({close()});
  expectUsualCall(caller, server.url());
  const std::vector<Request> requests = server.requests();
  ASSERT_EQ(requests.size(), 3U);
  EXPECT_EQ(requests[1].head, requests[2].head);
  EXPECT_EQ(requests[1].body, requests[2].body);
  EXPECT_EQ(requests[1].connection, 0U);
  EXPECT_EQ(requests[2].connection, 1U);
}

TEST(EarlyEnd, OfAReusedConnectionSendsALargeRequestAgain) {
  ScriptedServer server(usualReply());
  Caller caller;
  const Array large(orbCreateNumericMatrix(300000, 1, orbUINT16_CLASS, orbREAL));
  auto* const elements = static_cast<std::uint16_t*>(orbGetData(large));
  for (std::size_t i = 0; i < 300000; ++i) elements[i] = static_cast<std::uint16_t>(i);
  expectUsualCall(caller, server.url());
  server.onRequest({close()});
  std::vector<Array> outputs(1);
  EXPECT_EQ(caller.call(server.url(), outputs, {large}), success());
  const std::vector<Request> requests = server.requests();
  ASSERT_EQ(requests.size(), 3U);
  EXPECT_GT(requests[1].body.size(), 700000U);
  EXPECT_EQ(requests[1].body, requests[2].body);
}

// libcurl itself gives up at every sixth in the life of a handle.
TEST(EarlyEnd, OfReusedConnectionsMaySendRequestsAgainAnyNumberOfTimes) {
  ScriptedServer server(usualReply());
  Caller caller;
  for (int i = 0; i < 14; ++i) {
    expectUsualCall(caller, server.url());
    server.onRequest({close()});
  }
  EXPECT_EQ(server.requests().size(), 14U + 13U);
}

TEST(EarlyEnd, OfAReusedAndOfTheNextConnectionFails) {
  ScriptedServer server(usualReply());
  Caller caller;
  std::vector<Array> outputs(1);
  expectUsualCall(caller, server.url());
  server.onRequest({close()});
  server.onRequest({close()});
  EXPECT_EQ(caller.call(server.url(), outputs),
            genericError("Server returned nothing (no headers, no data)"));
  EXPECT_EQ(server.requests().size(), 3U);
  expectUsualCall(caller, server.url());
}

}  // namespace
}  // namespace orb::test
