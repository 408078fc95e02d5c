// SPDX-License-Identifier: MIT
// Many threads that call at the same time and release each other's arrays.
#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "client/servers/front_end.h"
#include "client/transport/caller.h"

namespace orb::test {
namespace {

constexpr int kThreads = 64;
constexpr int kCallsPerThread = 25;

/// Arrays on their way to the thread that releases them.
class Mailbox {
 public:
  void put(Array array) {
    const std::lock_guard lock(mutex_);
    arrays_.push_back(std::move(array));
  }
  std::vector<Array> takeAll() {
    const std::lock_guard lock(mutex_);
    return std::move(arrays_);
  }

 private:
  std::mutex mutex_;
  std::vector<Array> arrays_;
};

/// Sends a cell and takes it back. An element of each, which shares storage with its
/// cell, goes to the other thread; the cells end here.
bool callOnce(Caller& caller, const std::string& url, double value, Mailbox& other) {
  const std::vector<double> values(300, value);
  Array sent = doubleRow(values);
  Array cell(orbCreateCellMatrix(1, 1));
  orbSetCell(cell, 0, sent);
  std::vector<Array> outputs(1);
  if (!(caller.call(url, outputs, {cell}) == success())) return false;
  Array received(orbGetCell(outputs[0], 0));
  const bool right = elementsOf<double>(received) == values;
  other.put(std::move(sent));
  other.put(std::move(received));
  return right;
}

TEST(Threads, CallAndReleaseWithoutRegardToEachOther) {
  const Backend one;
  const Backend two;
  const Nginx nginx(nginxPass("/"), nginxGroup({one.address(), two.address()}));
  const std::string url = "http://" + nginx.address() + "/echo";
  runtime();  // initialised before any thread starts
  std::vector<Mailbox> mailboxes(kThreads);
  std::vector<int> rightCalls(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      Caller caller;
      for (int call = 0; call < kCallsPerThread; ++call) {
        const double value = static_cast<double>(i) * 1000 + call;
        rightCalls[i] += callOnce(caller, url, value, mailboxes[(i + 1) % kThreads]);
        mailboxes[i].takeAll();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(rightCalls, std::vector<int>(kThreads, kCallsPerThread));
}

}  // namespace
}  // namespace orb::test
