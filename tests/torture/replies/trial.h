// SPDX-License-Identifier: MIT
// Items tried: a server that answers so, a call, what the call may come to, and a call
// after it.
#ifndef ORB_TESTS_TORTURE_REPLIES_TRIAL_H_
#define ORB_TESTS_TORTURE_REPLIES_TRIAL_H_

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "client/transport/caller.h"
#include "support/scripted_server.h"
#include "torture/replies/item.h"
#include "torture/support/run.h"

namespace orb::torture {

/// How many calls came to what.
struct Tally {
  std::uint64_t items = 0;
  std::uint64_t whole = 0;  // what an undamaged reply gives
  std::uint64_t other = 0;  // success with other arrays
  std::uint64_t httpErrors = 0;
  std::uint64_t serverErrors = 0;
  std::uint64_t genericErrors = 0;
  std::uint64_t examined = 0;  // arrays that every function was called on

  Tally& operator+=(const Tally& more);
  std::string describe() const;
};

/// What a server answers to requests that no damaged reply was queued for. Any thread may
/// use it.
class UsualReply {
 public:
  void set(std::string bytes, bool endsConnection);
  /// A script that gives what is set when the request comes.
  test::Script script();

 private:
  std::mutex mutex_;
  std::string bytes_;
  bool endsConnection_ = false;
};

/// A context and a server to call over one road.
class Lane {
 public:
  Lane(Run& run, Road road);
  ~Lane();
  Lane(const Lane&) = delete;
  Lane& operator=(const Lane&) = delete;

  void run(std::uint64_t seed, const Item& item);
  const Tally& tally() const { return tally_; }

 private:
  void startServer();
  /// Compares what the good calls since startServer() sent with what was received whole.
  void checkSentOn();
  /// Counts the outcome; "" or why it may not be.
  std::string judge(const Item& item, const Reply& reply, const test::Outcome& outcome);
  void makeGoodCall(std::uint64_t seed, const std::vector<test::Array>& inputs);
  void examineAll(std::uint64_t seed, const std::vector<test::Array>& arrays);
  void report(std::uint64_t seed, const std::string& what);

  Run& run_;
  const Road road_;
  test::Caller caller_;
  UsualReply usualReply_;
  std::unique_ptr<test::ScriptedServer> server_;
  std::map<std::uint64_t, std::string> expectedBodies_;  // of good calls, by seed
  std::map<std::uint64_t, std::string> descriptions_;
  std::uint64_t itemsOfServer_ = 0;
  Tally tally_;
};

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_REPLIES_TRIAL_H_
