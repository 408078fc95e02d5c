// SPDX-License-Identifier: MIT
// Runs one fixed scenario twice; callgrind counts the instructions of the second time,
// when symbols are bound and pools are filled. Nothing here depends on time or on
// addresses.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "micro/canned_context.h"
#include "value/kaldex.h"
#include "value/library_array.h"
#include "value/workload.h"

namespace {

using orb::bench::CannedContext;
using orb::bench::Checksum;
using orb::bench::LibraryArray;
using orb::bench::Workload;

using Action = std::function<void()>;

/// Sends a ready array and receives it back.
Action call(const char* workloadName) {
  const Workload workload = orb::bench::workloadNamed(workloadName);
  const auto context = std::make_shared<CannedContext>(orb::bench::replyTo(workload));
  const std::shared_ptr input = orb::bench::libraryArray(workload.input);
  return [context, input] { context->call(input.get()); };
}

/// Builds an array by the public functions and destroys it.
Action create(const char* workloadName) {
  const auto workload =
      std::make_shared<Workload>(orb::bench::workloadNamed(workloadName));
  return [workload] { orb::bench::libraryArray(workload->input); };
}

/// Receives an array and reads all its elements through handles of their own: what either
/// step leaves to the other is counted once.
Action receiveAndRead(const char* workloadName) {
  const Workload workload = orb::bench::workloadNamed(workloadName);
  const auto context = std::make_shared<CannedContext>(orb::bench::replyTo(workload));
  return [context] {
    const LibraryArray array = context->receive();
    Checksum checksum;
    orb::bench::addArray(checksum, array.get());
    if (checksum.sum() == 0) throw std::runtime_error("Nothing was read.");
  };
}

Action toUtf8(const char* workloadName) {
  const Workload workload = orb::bench::workloadNamed(workloadName);
  const std::shared_ptr array = orb::bench::libraryArray(workload.input);
  return [array] { orbFree(orbArrayToString(array.get())); };
}

struct Scenario {
  const char* name;
  Action (*prepare)(const char* workloadName);
  const char* workloadName;
};

constexpr Scenario kScenarios[] = {{"call-scalar", call, "double-1x1"},
                                   {"call-double", call, "double-100x100"},
                                   {"call-uint16", call, "uint16-100x100"},
                                   {"call-char", call, "char-1x10000"},
                                   {"call-cell", call, "cell-1000x1"},
                                   {"call-struct", call, "struct-100x10"},
                                   {"call-sparse", call, "sparse-200x200"},
                                   {"create-struct", create, "struct-100x10"},
                                   {"read-cell", receiveAndRead, "cell-1000x1"},
                                   {"utf8-char", toUtf8, "char-1x10000"}};

void run(const Scenario& scenario) {
  const Action action = scenario.prepare(scenario.workloadName);
  action();
  CALLGRIND_START_INSTRUMENTATION;
  action();
  CALLGRIND_STOP_INSTRUMENTATION;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    for (const Scenario& scenario : kScenarios) std::puts(scenario.name);
    return EXIT_SUCCESS;
  }
  try {
    for (const Scenario& scenario : kScenarios) {
      if (std::string_view(argv[1]) == scenario.name) {
        run(scenario);
        return EXIT_SUCCESS;
      }
    }
    std::fprintf(stderr, "There is no scenario \"%s\".\n", argv[1]);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
  }
  return EXIT_FAILURE;
}
