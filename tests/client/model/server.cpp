// SPDX-License-Identifier: MIT
#include "client/model/server.h"

#include <sstream>
#include <string>
#include <vector>

#include "client/model/runtime.h"
#include "support/call_parts.h"
#include "support/wire.h"

namespace orb::model {
namespace {

namespace wire = test::wire;

constexpr int kUnknownTypes = 5;
constexpr int kUnknownField = 99;

std::string arrayOfNoClass(size_t number) {
  return wire::type(wire::kObject + static_cast<int>(number % kUnknownTypes)) +
         wire::dimensions({1, 1});
}

std::string errorResult(size_t number) {
  if (number == 0) return wire::bytes(2, "");
  const Error error = serverError(number);
  std::vector<wire::Frame> stack;
  for (const Error::Frame& frame : error.stack) {
    stack.push_back({frame.file, frame.name, frame.line});
  }
  return wire::error(error.detail, error.identifier, stack);
}

std::string statusReply(size_t number) {
  const std::string code = std::to_string(number);
  return "HTTP/1.1 " + code + " Status " + code + "\r\nContent-Length: 0\r\n\r\n";
}

}  // namespace

test::HttpAnswer answer(const test::HttpCall& call) {
  std::istringstream target{std::string(call.target)};
  std::string kind;
  target.ignore();
  std::getline(target, kind, '/');
  size_t number = 0;
  target >> number;
  if (kind == "status") return {statusReply(number)};
  if (kind == "error") return {wire::reply(errorResult(number))};

  const auto parts = test::partsOf(call.body);
  if (!parts) return {statusReply(400)};
  const std::string odd = arrayOfNoClass(number);
  std::vector<std::string_view> outputs;
  for (size_t pick = 0; target.ignore() && target >> pick;) {
    const bool isOdd = kind == "odd" && outputs.size() == number;
    outputs.push_back(isOdd ? odd : parts->inputs.at(pick));
  }
  std::string result = test::resultOf(outputs);
  if (kind == "unannounced") return {wire::chunkedReply(result)};
  if (kind == "other") result += wire::number(kUnknownField, 1);
  return {wire::reply(result)};
}

}  // namespace orb::model
