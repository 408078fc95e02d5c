// SPDX-License-Identifier: MIT
// Takes the body of a call apart and puts the body of its reply together, without the
// message library: checks compare the library with something else than itself.
#ifndef ORB_TESTS_SUPPORT_CALL_PARTS_H_
#define ORB_TESTS_SUPPORT_CALL_PARTS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orb::test {

struct CallParts {
  std::uint64_t outputs = 0;
  std::vector<std::string_view> inputs;
};

/// Nothing when the body is not, to the byte, a number of outputs and inputs behind it.
/// The inputs are views of the body.
std::optional<CallParts> partsOf(std::string_view body);

/// The body of a reply with these outputs.
std::string resultOf(const std::vector<std::string_view>& outputs);

}  // namespace orb::test

#endif  // ORB_TESTS_SUPPORT_CALL_PARTS_H_
