// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_CEILINGS_IN_CHILD_H_
#define ORB_TESTS_TORTURE_CEILINGS_IN_CHILD_H_

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <optional>
#include <type_traits>

namespace orb::torture {

/// What `body` gives in a process of its own; nothing when that process ends otherwise.
template <class Body>
auto inChild(const Body& body) -> std::optional<decltype(body())> {
  using Result = decltype(body());
  static_assert(std::is_trivially_copyable_v<Result>);
  int ends[2];
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child < 0) std::abort();
  if (child == 0) {
    const Result result = body();
    _exit(write(ends[1], &result, sizeof result) == sizeof result ? 0 : 1);
  }
  close(ends[1]);
  Result result;
  const bool isComplete = read(ends[0], &result, sizeof result) == sizeof result;
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!isComplete || status != 0) return std::nullopt;
  return result;
}

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_CEILINGS_IN_CHILD_H_
