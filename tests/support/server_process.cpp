// SPDX-License-Identifier: MIT
#include "support/server_process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace orb::test {
namespace {

constexpr int kCannotExecute = 127;

/// Starts the program with its standard output in the given descriptor.
pid_t start(std::vector<std::string>& argv, int output) {
  std::vector<char*> arguments;
  for (std::string& argument : argv) arguments.push_back(argument.data());
  arguments.push_back(nullptr);

  const pid_t parent = getpid();
  const pid_t pid = fork();
  if (pid != 0) return pid;
  // A test that crashes must not leave its server behind.
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() == parent && dup2(output, STDOUT_FILENO) >= 0) {
    execv(arguments[0], arguments.data());
  }
  _exit(kCannotExecute);
}

/// Reads up to the end of the line; false when the input ends before.
bool readLine(int input, std::string& line) {
  for (char letter;;) {
    const ssize_t count = read(input, &letter, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    if (letter == '\n') return true;
    line += letter;
  }
}

}  // namespace

ServerProcess::ServerProcess(std::vector<std::string> argv) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe for " + argv[0]);
  output_ = ends[0];
  pid_ = start(argv, ends[1]);
  close(ends[1]);
  if (!readLine(output_, url_)) {
    const int status = pid_ > 0 ? stop() : kCannotExecute;
    close(output_);
    throw std::runtime_error(argv[0] + " ended with status " + std::to_string(status) +
                             " before it printed a URL");
  }
}

ServerProcess::~ServerProcess() {
  stop();
  close(output_);
}

int ServerProcess::stop(int signal) {
  if (status_ >= 0) return status_;
  kill(pid_, signal);
  int state = 0;
  while (waitpid(pid_, &state, 0) < 0 && errno == EINTR) {
  }
  status_ = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
  return status_;
}

}  // namespace orb::test
