// SPDX-License-Identifier: MIT
#include "options.h"

#include <getopt.h>

#include <charconv>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace orb::serve {
namespace {

// protobuf counts the bytes of a message in an int.
constexpr size_t kLargestMessageBytes = 0x7fffffff;

size_t numberBetween(std::string_view name, const char* text, size_t least, size_t most) {
  size_t number = 0;
  const char* end = text + std::strlen(text);
  const auto [rest, error] = std::from_chars(text, end, number);
  if (error != std::errc() || rest != end || number < least || number > most) {
    throw std::invalid_argument("--" + std::string(name) + " takes a number from " +
                                std::to_string(least) + " to " + std::to_string(most) +
                                ", not \"" + text + "\"");
  }
  return number;
}

}  // namespace

Options parseOptions(int argc, char** argv) {
  static constexpr option kOptions[] = {{"host", required_argument, nullptr, 'a'},
                                        {"port", required_argument, nullptr, 'p'},
                                        {"threads", required_argument, nullptr, 't'},
                                        {"max-body", required_argument, nullptr, 'b'},
                                        {"help", no_argument, nullptr, 'h'},
                                        {nullptr, 0, nullptr, 0}};
  Options options;
  opterr = 0;  // the exceptions below carry the messages
  for (int found; (found = getopt_long(argc, argv, "", kOptions, nullptr)) != -1;) {
    switch (found) {
      case 'a':
        options.host = optarg;
        break;
      case 'p':
        options.port = static_cast<int>(numberBetween("port", optarg, 0, 65535));
        break;
      case 't':
        options.threads = numberBetween("threads", optarg, 1, 1024);
        break;
      case 'b':
        options.maxBodyBytes = numberBetween("max-body", optarg, 1, kLargestMessageBytes);
        break;
      case 'h':
        options.help = true;
        break;
      default:
        throw std::invalid_argument("unknown option or missing value: " +
                                    std::string(argv[optind - 1]));
    }
  }
  if (optind < argc) {
    throw std::invalid_argument("unexpected argument: " + std::string(argv[optind]));
  }
  return options;
}

std::string usage() {
  return R"(usage: orbserve [options]

Hosts demonstration functions as POST <base>/demo/<name>. The first line of
output is the base URL. SIGINT and SIGTERM end the server.

  --host ADDRESS    where to listen (127.0.0.1)
  --port NUMBER     TCP port; 0 lets the system choose (0)
  --threads NUMBER  connections served at a time; more wait for one to end (64)
  --max-body BYTES  longest request body (67108864)
  --help            print this text
)";
}

}  // namespace orb::serve
