// SPDX-License-Identifier: MIT
// A server that a test starts as a process of its own.
#ifndef ORB_TESTS_SUPPORT_SERVER_PROCESS_H_
#define ORB_TESTS_SUPPORT_SERVER_PROCESS_H_

#include <sys/types.h>

#include <csignal>
#include <string>
#include <vector>

namespace orb::test {

/// A child process that prints its base URL as the first line of its output. It runs
/// until stop() or the destructor.
class ServerProcess {
 public:
  /// Returns when the first line was read. Throws std::runtime_error when the process
  /// does not start, or ends without a first line.
  explicit ServerProcess(std::vector<std::string> argv);
  ~ServerProcess();

  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  const std::string& url() const { return url_; }
  pid_t pid() const { return pid_; }

  /// Sends the signal and waits for the end.
  /// @return The exit status, or 128 + the number of the signal that killed the process.
  ///         A second call returns the same.
  int stop(int signal = SIGTERM);

 private:
  pid_t pid_ = -1;
  int output_ = -1;  // open until the end: the process may go on writing
  int status_ = -1;  // -1 while the process runs
  std::string url_;
};

}  // namespace orb::test

#endif  // ORB_TESTS_SUPPORT_SERVER_PROCESS_H_
