// SPDX-License-Identifier: MIT
// A client program: it prepares one workload for one contender, and measures when it is
// told to on standard input. Every answer is one line of JSON.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "client/crew.h"
#include "client/usage.h"

namespace {

using orb::bench::Crew;
using orb::bench::Usage;

int64_t median(std::vector<int64_t> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void answer(const std::string& line) {
  std::cout << line << std::endl;  // flushed: somebody waits for it
}

/// "memory <calls>": must come first, as later calls find the memory of earlier ones.
void measureMemory(Crew& crew, size_t calls) {
  const orb::bench::MemoryPeak peak;
  crew.run(calls, false);
  answer("{\"peak_added_bytes\": " + std::to_string(peak.addedBytes()) + "}");
}

/// "call <calls>" and "read <calls>", the calls of every member of the crew.
void measureRound(Crew& crew, size_t calls, bool read) {
  const Usage before = orb::bench::currentUsage();
  const auto start = std::chrono::steady_clock::now();
  const Crew::Round round = crew.run(calls, read);
  const std::chrono::nanoseconds time = std::chrono::steady_clock::now() - start;
  const Usage after = orb::bench::currentUsage();

  const auto all = static_cast<double>(round.callNs.size());
  std::ostringstream line;
  line.precision(12);
  line << "{\"time_ns\": " << median(round.callNs)
       << ", \"cpu_ns\": " << static_cast<double>(after.cpuNs - before.cpuNs) / all
       << ", \"page_faults\": "
       << static_cast<double>(after.pageFaults - before.pageFaults) / all
       << ", \"calls_per_second\": " << all / std::chrono::duration<double>(time).count()
       << ", \"checksum\": \"" << round.checksum << "\"}";
  answer(line.str());
}

void serveCommands(Crew& crew) {
  std::string command;
  size_t calls = 0;
  while (std::cin >> command >> calls) {
    if (command == "memory") {
      measureMemory(crew, calls);
    } else {
      measureRound(crew, calls, command == "read");
    }
  }
}

uint16_t portFrom(const char* text) { return static_cast<uint16_t>(std::stoul(text)); }

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: %s <workload> <threads> <port> [<raw port>]\n", argv[0]);
    return EXIT_FAILURE;
  }
  try {
    const orb::bench::Endpoint endpoint{portFrom(argv[3]),
                                        argc > 4 ? portFrom(argv[4]) : uint16_t{0}};
    Crew crew(endpoint, argv[1], std::stoul(argv[2]));
    answer("{\"payload_bytes\": " +
           std::to_string(
               orb::bench::payloadBytes(orb::bench::workloadNamed(argv[1]).input)) +
           "}");
    serveCommands(crew);
    return EXIT_SUCCESS;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s: %s\n", argv[0], failure.what());
    return EXIT_FAILURE;
  }
}
