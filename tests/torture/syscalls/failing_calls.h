// SPDX-License-Identifier: MIT
// System calls that fail when they are told so. Linking failing_calls.cpp replaces, for the
// program and all shared libraries, those that a transfer makes.
#ifndef ORB_TESTS_TORTURE_SYSCALLS_FAILING_CALLS_H_
#define ORB_TESTS_TORTURE_SYSCALLS_FAILING_CALLS_H_

#include <cstddef>

namespace orb::torture {

/// While one lives, system calls of the thread that made it fail; at most one lives.
class FailingCalls {
 public:
  /// What happens in place of the nth call, counted from 1, and only there.
  static constexpr int kOneByte = 0;  // at most one byte is sent or received
  /// @param fault  A value of errno, or kOneByte.
  /// @param sparesFcntl  fcntl() neither counts nor fails: libcurl goes on with a socket that
  ///                     would then block, and over TLS it reads until it does.
  FailingCalls(std::size_t nth, int fault, bool sparesFcntl);
  ~FailingCalls();
  FailingCalls(const FailingCalls&) = delete;
  FailingCalls& operator=(const FailingCalls&) = delete;

  std::size_t calls() const;
  /// The function that failed; null when there were fewer calls, or the nth has no bytes.
  const char* failed() const;
};

/// Descriptors that this thread opened and has not closed.
int openDescriptors();

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_SYSCALLS_FAILING_CALLS_H_
