// SPDX-License-Identifier: MIT
// Runs code in a process of its own, so that what it breaks can be reported.
#ifndef ORB_CLIENT_MODEL_CHILD_H_
#define ORB_CLIENT_MODEL_CHILD_H_

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace orb::model {

enum class Output { kShown, kHidden };

/// Whether `body` returned true and the process ended without a fault: a crash counts as
/// false, and so do errors and leaks that a sanitizer finds.
template <class Body>
bool holdsInChild(Output output, const Body& body) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) return false;
  if (child == 0) {
    if (output == Output::kHidden && std::freopen("/dev/null", "w", stderr) == nullptr) {
      std::exit(EXIT_FAILURE);
    }
    std::exit(body() ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_CHILD_H_
