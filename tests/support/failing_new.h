// SPDX-License-Identifier: MIT
// An operator new that fails when a test says so. Linking failing_new.cpp replaces the
// program's operator new and delete, those that shared libraries call included.
#ifndef ORB_TESTS_SUPPORT_FAILING_NEW_H_
#define ORB_TESTS_SUPPORT_FAILING_NEW_H_

#include <cstddef>

namespace orb::test {

/// While one lives, chosen calls of operator new on the thread that made it fail; other
/// threads see nothing of it. At most one lives on a thread at a time.
class FailingNew {
 public:
  /// Only the nth call from now on fails, counted from 1.
  static FailingNew at(size_t nth) { return {nth, false, 0}; }
  /// None fails; for counting.
  static FailingNew never() { return {0, false, 0}; }
  /// Every call fails.
  static FailingNew always() { return {1, true, 0}; }
  /// Every call for so many bytes or more fails.
  static FailingNew forAtLeast(size_t bytes) { return {1, true, bytes}; }

  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
  ~FailingNew() { stop(); }

  /// The calls on this thread so far, those that it lets succeed included.
  size_t calls() const;
  /// The blocks that this thread has released since.
  size_t releases() const;
  /// Lets all calls succeed again, and tells whether any has failed.
  bool stop();

 private:
  FailingNew(size_t nth, bool andLater, size_t leastBytes);
};

}  // namespace orb::test

#endif  // ORB_TESTS_SUPPORT_FAILING_NEW_H_
