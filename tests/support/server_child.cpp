// SPDX-License-Identifier: MIT
#include "support/server_child.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace orb::test {

ServerChild::ServerChild(LoopbackServer::Handler handler) : server_(std::move(handler)) {
  const pid_t parent = ::getpid();
  pid_ = ::fork();
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid_ != 0) return;
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  // The signal does not come for a parent that ended before.
  if (::getppid() == parent) server_.run();
  ::_exit(EXIT_FAILURE);
}

ServerChild::~ServerChild() {
  ::kill(pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
}

}  // namespace orb::test
