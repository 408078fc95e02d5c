// SPDX-License-Identifier: MIT
// Rows that say what a server does and what the call comes to, each run on a first and on
// a reused connection, with and without TLS, and followed by a call that must succeed.
#ifndef ORB_TESTS_CLIENT_TRANSPORT_MATRIX_H_
#define ORB_TESTS_CLIENT_TRANSPORT_MATRIX_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <tuple>

#include "client/transport/caller.h"
#include "support/scripted_server.h"

namespace orb::test {

struct Row {
  std::string name;  // letters and digits
  Script script;     // the answer to the request
  Outcome expected;
  Settings settings{};
  std::size_t outputs = 1;
  std::optional<Outcome> reused{};  // where a reused connection makes a difference
};

std::ostream& operator<<(std::ostream& out, const Row& row);

enum class Road { kFirst, kReused, kFirstOverTls, kReusedOverTls };

class TransportRow : public ::testing::TestWithParam<std::tuple<Row, Road>> {};

std::string rowName(const ::testing::TestParamInfo<TransportRow::ParamType>& info);

inline auto onEveryRoad() {
  return ::testing::Values(Road::kFirst, Road::kReused, Road::kFirstOverTls,
                           Road::kReusedOverTls);
}

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_TRANSPORT_MATRIX_H_
