// SPDX-License-Identifier: MIT
// The command line of orbserve.
#ifndef ORB_TOOLS_ORBSERVE_OPTIONS_H_
#define ORB_TOOLS_ORBSERVE_OPTIONS_H_

#include <cstddef>
#include <string>

namespace orb::serve {

struct Options {
  std::string host = "127.0.0.1";
  int port = 0;  // 0: the system chooses
  size_t threads = 64;
  size_t maxBodyBytes = size_t{64} << 20;
  bool help = false;
};

/// Throws std::invalid_argument, with a text for the user, on what it does not
/// understand.
Options parseOptions(int argc, char** argv);

std::string usage();

}  // namespace orb::serve

#endif  // ORB_TOOLS_ORBSERVE_OPTIONS_H_
