// SPDX-License-Identifier: MIT
#include "torture/proxy/calls.h"

#include <charconv>
#include <optional>
#include <string_view>

#include "support/call_parts.h"
#include "support/wire.h"

namespace orb::torture {
namespace {

constexpr std::string_view kTargets[kAskedKinds] = {"/echo/", "/chunked/", "/closing/",
                                                    "/error/", "/status/"};

std::string phraseOf(std::uint64_t number) { return "call " + std::to_string(number); }

std::vector<double> payloadOf(const Call& call) {
  std::vector<double> values(call.elements);
  double next = static_cast<double>(call.number) * 1000.0;
  for (double& value : values) value = next += 0.5;
  return values;
}

bool take(std::string_view& text, std::string_view start) {
  if (text.substr(0, start.size()) != start) return false;
  text.remove_prefix(start.size());
  return true;
}

struct Target {
  Asked asked;
  std::uint64_t number;
};

std::optional<Target> parsed(std::string_view text) {
  for (std::size_t i = 0; i < kAskedKinds; ++i) {
    if (!take(text, kTargets[i])) continue;
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end) return std::nullopt;
    return Target{static_cast<Asked>(i), number};
  }
  return std::nullopt;
}

test::HttpAnswer answerFor(const Target& target, const test::CallParts& parts) {
  const std::string phrase = phraseOf(target.number);
  const std::string result =
      test::resultOf({parts.inputs.begin(),
                      parts.inputs.begin() + static_cast<std::ptrdiff_t>(parts.outputs)});
  switch (target.asked) {
    case Asked::kEcho:
      return {test::wire::reply(result)};
    case Asked::kChunked:
      return {test::wire::chunkedReply(result)};
    case Asked::kClosing:
      return {test::wire::reply(result), true};
    case Asked::kServerError:
      return {test::wire::reply(test::wire::error(phrase, "orb:torture"))};
    case Asked::kHttpError:
      return {"HTTP/1.1 503 " + phrase + "\r\nContent-Length: 0\r\n\r\n"};
  }
  return {};
}

}  // namespace

std::string Call::target() const {
  return std::string(kTargets[static_cast<std::size_t>(asked)]) + std::to_string(number);
}

std::vector<test::Array> Call::inputs() const {
  std::vector<test::Array> arrays;
  arrays.push_back(test::doubleRow({static_cast<double>(number)}));
  arrays.push_back(test::doubleRow(payloadOf(*this)));
  return arrays;
}

test::Outcome Call::wanted() const {
  if (asked == Asked::kServerError) {
    return test::kaldexError(phraseOf(number), "orb:torture");
  }
  if (asked == Asked::kHttpError) {
    return test::httpError(503, phraseOf(number) + "\r\n");
  }
  return test::success();
}

bool Call::areItsOutputs(const std::vector<test::Array>& received) const {
  if (received.size() != outputs) return false;
  if (test::elementsOf<double>(received[0]) !=
      std::vector<double>{static_cast<double>(number)}) {
    return false;
  }
  return outputs == 1 || test::elementsOf<double>(received[1]) == payloadOf(*this);
}

test::HttpAnswer ExecutionLog::answer(const test::HttpCall& call) {
  const std::optional<Target> target = parsed(call.target);
  const std::optional<test::CallParts> parts = test::partsOf(call.body);
  if (!target || target->number >= counts_.size() || !parts ||
      parts->inputs.size() != 2 || parts->outputs > 2) {
    ++damaged_;
    return {"HTTP/1.1 400 damaged\r\nContent-Length: 0\r\n\r\n"};
  }
  ++counts_[target->number];
  return answerFor(*target, *parts);
}

}  // namespace orb::torture
