// SPDX-License-Identifier: MIT
#include "support/call_parts.h"

#include "support/wire.h"

namespace orb::test {
namespace {

constexpr char kOutputCountTag = 1 << 3;
constexpr char kInputTag = 2 << 3 | 2;
constexpr char kOutputTag = 1 << 3 | 2;

bool takeTag(std::string_view& rest, char tag) {
  if (rest.empty() || rest.front() != tag) return false;
  rest.remove_prefix(1);
  return true;
}

bool takeVarint(std::string_view& rest, std::uint64_t& value) {
  value = 0;
  for (unsigned shift = 0; shift < 64 && !rest.empty(); shift += 7) {
    const auto byte = static_cast<unsigned char>(rest.front());
    rest.remove_prefix(1);
    value |= std::uint64_t{byte & 0x7Fu} << shift;
    if (byte < 0x80) return true;
  }
  return false;
}

}  // namespace

std::optional<CallParts> partsOf(std::string_view body) {
  CallParts parts;
  if (!takeTag(body, kOutputCountTag) || !takeVarint(body, parts.outputs)) {
    return std::nullopt;
  }
  while (!body.empty()) {
    std::uint64_t length = 0;
    if (!takeTag(body, kInputTag) || !takeVarint(body, length) || length > body.size()) {
      return std::nullopt;
    }
    parts.inputs.push_back(body.substr(0, length));
    body.remove_prefix(length);
  }
  return parts;
}

std::string resultOf(const std::vector<std::string_view>& outputs) {
  std::string body;
  for (const std::string_view output : outputs) {
    body += kOutputTag;
    body += wire::varint(output.size());
    body += output;
  }
  return body;
}

}  // namespace orb::test
