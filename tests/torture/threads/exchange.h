// SPDX-License-Identifier: MIT
// Where threads leave what other threads go on with.
#ifndef ORB_TESTS_TORTURE_THREADS_EXCHANGE_H_
#define ORB_TESTS_TORTURE_THREADS_EXCHANGE_H_

#include <memory>
#include <mutex>
#include <vector>

#include "client/transport/caller.h"
#include "support/array.h"

namespace orb::torture {

/// What one thread finds. Of handles whose storage others share it may only be the one
/// that destroys them.
struct Mail {
  std::vector<test::Array> shared;
  std::vector<test::Array> own;
};

class Mailbox {
 public:
  void putShared(test::Array array);
  void putOwn(test::Array array);
  Mail takeAll();

 private:
  std::mutex mutex_;
  Mail mail_;
};

/// Contexts that nobody uses at the moment.
class ContextPool {
 public:
  /// Gives another one for it, as soon as one is there.
  std::unique_ptr<test::Caller> swap(std::unique_ptr<test::Caller> context);

 private:
  std::mutex mutex_;
  std::unique_ptr<test::Caller> waiting_;
};

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_THREADS_EXCHANGE_H_
