// SPDX-License-Identifier: MIT
// orbserve: a compute server for trying the client library on one's own machine.
#include <google/protobuf/stubs/logging.h>
#include <pthread.h>
#include <signal.h>

#include <exception>
#include <iostream>
#include <stdexcept>

#include "options.h"
#include "server.h"

namespace {

constexpr int kCannotServe = 1;
constexpr int kWrongUsage = 2;

/// SIGINT and SIGTERM, held back from every thread made after it: they wait for wait().
class EndSignals {
 public:
  EndSignals() {
    sigemptyset(&signals_);
    sigaddset(&signals_, SIGINT);
    sigaddset(&signals_, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  }

  void wait() const {
    int signal = 0;
    sigwait(&signals_, &signal);
  }

 private:
  sigset_t signals_;
};

}  // namespace

int main(int argc, char** argv) {
  try {
    const orb::serve::Options options = orb::serve::parseOptions(argc, argv);
    if (options.help) {
      std::cout << orb::serve::usage();
      return 0;
    }
    // What does not parse is told to the client, not to the terminal.
    google::protobuf::SetLogHandler(nullptr);
    const EndSignals endSignals;
    const orb::serve::Server server(options);
    std::cout << server.url() << std::endl;
    endSignals.wait();
    return 0;
  } catch (const std::invalid_argument& failure) {
    std::cerr << "orbserve: " << failure.what() << '\n' << orb::serve::usage();
    return kWrongUsage;
  } catch (const std::exception& failure) {
    std::cerr << "orbserve: " << failure.what() << '\n';
    return kCannotServe;
  }
}
