// SPDX-License-Identifier: MIT
#include "client/transport/matrix.h"

#include <memory>
#include <ostream>
#include <vector>

#include "client/transport/certificates.h"

namespace orb::test {
namespace {

bool isReused(Road road) { return road == Road::kReused || road == Road::kReusedOverTls; }

bool isOverTls(Road road) {
  return road == Road::kFirstOverTls || road == Road::kReusedOverTls;
}

const char* nameOf(Road road) {
  switch (road) {
    case Road::kFirst:
      return "First";
    case Road::kReused:
      return "Reused";
    case Road::kFirstOverTls:
      return "FirstOverTls";
    case Road::kReusedOverTls:
      return "ReusedOverTls";
  }
  return "";
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }

std::string rowName(const ::testing::TestParamInfo<TransportRow::ParamType>& info) {
  const auto& [row, road] = info.param;
  return row.name + nameOf(road);
}

TEST_P(TransportRow, ComesToTheOutcomeAndLeavesTheContextUsable) {
  const auto& [row, road] = GetParam();
  const auto server = isOverTls(road) ? std::make_unique<ScriptedServer>(
                                            usualReply(), Certificates::get().server())
                                      : std::make_unique<ScriptedServer>(usualReply());
  Settings settings = row.settings;
  settings.serverCertFile = Certificates::get().authority();
  Caller caller(settings);
  if (isReused(road)) {
    ASSERT_NO_FATAL_FAILURE(expectUsualCall(caller, server->url()));
  }
  ASSERT_EQ(server->connections(), isReused(road) ? 1U : 0U);

  server->onRequest(row.script);
  std::vector<Array> outputs;
  std::vector<orbArray> before;
  for (std::size_t i = 0; i < row.outputs; ++i) {
    outputs.emplace_back(orbCreateLogicalScalar(false));
    before.push_back(outputs.back());
  }
  const Outcome outcome = caller.call(server->url(), outputs);

  EXPECT_EQ(outcome, isReused(road) && row.reused ? *row.reused : row.expected);
  for (std::size_t i = 0; i < row.outputs; ++i) {
    EXPECT_EQ(outputs[i].get() == before[i], outcome.status != ORB_OK) << "slot " << i;
  }
  ASSERT_GE(server->requests().size(), isReused(road) ? 2U : 1U);
  EXPECT_EQ(server->requests()[isReused(road) ? 1 : 0].connection, 0U);
  expectUsualCall(caller, server->url());
  for (const Request& request : server->requests()) {
    EXPECT_EQ(request.head.substr(0, 18), "POST /f HTTP/1.1\r\n");
  }
}

}  // namespace orb::test
