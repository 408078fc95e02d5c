// SPDX-License-Identifier: MIT
// HTTP on one side, hosted functions on the other.
#ifndef ORB_TOOLS_ORBSERVE_SERVER_H_
#define ORB_TOOLS_ORBSERVE_SERVER_H_

#include <httplib.h>

#include <future>
#include <mutex>
#include <set>
#include <string>

#include "call.h"
#include "options.h"

namespace orb::serve {

/// The connections that are owed an answer, by the port of the client.
class BusyClients {
 public:
  void add(int port);
  void remove(int port);  // does nothing for a port that was not added
  bool contains(int port) const;

 private:
  mutable std::mutex mutex_;
  std::multiset<int> ports_;  // clients of several addresses may have the same port
};

/// Accepts calls on threads of its own, from construction to destruction. Destruction
/// lets calls under way finish and hangs up on idle connections.
class Server {
 public:
  /// Throws std::runtime_error when it cannot listen.
  explicit Server(const Options& options);
  ~Server();

  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// "http://127.0.0.1:40123", the port being the one in use.
  std::string url() const;

 private:
  void route();
  void answerPost(const httplib::Request& request, httplib::Response& reply,
                  const httplib::ContentReader& read);
  void hangUpOnIdleClients() const;

  const Options options_;
  StopSignal stopping_;
  BusyClients busy_;
  httplib::Server http_;
  int port_ = -1;
  std::future<void> accepting_;
};

}  // namespace orb::serve

#endif  // ORB_TOOLS_ORBSERVE_SERVER_H_
