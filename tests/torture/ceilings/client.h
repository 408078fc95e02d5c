// SPDX-License-Identifier: MIT
// A client as a program has it: the public functions alone.
#ifndef ORB_TESTS_TORTURE_CEILINGS_CLIENT_H_
#define ORB_TESTS_TORTURE_CEILINGS_CLIENT_H_

#include <cstdint>
#include <string>
#include <vector>

#include "orb/qxorbclient.h"
#include "support/array.h"

namespace orb::torture {

/// One context of a library that stays initialised.
class Client {
 public:
  /// Checks servers against this authority, a PEM file; "" for the system's.
  explicit Client(const std::string& authority = "");
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  /// Calls for so many outputs, which stay here until dropOutputs().
  orbStatus call(const std::string& url, std::uint32_t outputs);
  /// Reads all that the last call gave, the error of one that failed included. Gives how
  /// many cells and structs the deepest array with elements lies in; -1 without one.
  int readEverything();
  void dropOutputs();

 private:
  orbClientRuntime* runtime_;
  orbClientContext* context_ = nullptr;
  std::vector<orbArray> outputs_;
};

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_CEILINGS_CLIENT_H_
