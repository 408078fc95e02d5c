// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_SUPPORT_SERVER_CHILD_H_
#define ORB_TESTS_SUPPORT_SERVER_CHILD_H_

#include <sys/types.h>

#include <string>

#include "support/loopback_server.h"

namespace orb::test {

/// A loopback server in a process of its own, which ends with this one. To be made before
/// any thread, and before the library is initialised.
class ServerChild {
 public:
  explicit ServerChild(LoopbackServer::Handler handler);
  ~ServerChild();
  ServerChild(const ServerChild&) = delete;
  ServerChild& operator=(const ServerChild&) = delete;

  std::string url(const std::string& target) const { return server_.url(target); }

 private:
  LoopbackServer server_;
  pid_t pid_;
};

}  // namespace orb::test

#endif  // ORB_TESTS_SUPPORT_SERVER_CHILD_H_
