// SPDX-License-Identifier: MIT
// One array of every class, as a client makes it and as it travels.
#ifndef ORB_TESTS_CLIENT_TRANSPORT_SAMPLES_H_
#define ORB_TESTS_CLIENT_TRANSPORT_SAMPLES_H_

#include <functional>
#include <string>
#include <vector>

#include "support/array.h"

namespace orb::test {

struct Sample {
  std::string name;
  std::string className;
  int type;
  std::string payload;          // as the library writes it
  std::string unpackedPayload;  // each element of a list a field of its own
  std::vector<std::uint64_t> extents;
  std::function<Array()> make;

  std::string message() const;
};

/// Every class, real and complex; struct, cell and sparse with something in them.
const std::vector<Sample>& samples();

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_TRANSPORT_SAMPLES_H_
