// SPDX-License-Identifier: MIT
// Measures the memory that a client needs to receive and to read replies, per byte of
// their bodies, and compares it with ceilings.
//
// What malloc() hands out is counted, because it is the same on every run: the resident
// set also depends on the pages that the heap kept from before, and on the kernel.
#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

#include "support/scripted_server.h"
#include "torture/ceilings/client.h"
#include "torture/ceilings/counted_malloc.h"
#include "torture/ceilings/in_child.h"
#include "torture/ceilings/shapes.h"
#include "torture/support/run.h"

namespace orb::torture {
namespace {

constexpr std::size_t kBodyBytes = 4u << 20;
// What libcurl may keep of a connection that was closed.
constexpr std::size_t kMayStayBytes = 64u << 10;

struct Need {
  std::size_t receiving;
  std::size_t reading;
  std::size_t left;  // once all is destroyed
  bool isAnswered;
};

Need measure(const std::string& url, const Body& body) {
  Client().dropOutputs();  // what the library and libcurl set up only once
  const std::size_t before = heldBytes();
  restartPeak();
  Need need{};
  {
    Client client;
    const orbStatus status = client.call(url, body.outputs);
    need.isAnswered = (status == ORB_OK) == (body.outputs != 0);
    need.receiving = peakBytes() - before;
    client.readEverything();
    need.reading = peakBytes() - before;
  }
  const std::size_t after = heldBytes();
  need.left = after > before ? after - before : 0;
  return need;
}

double perByte(std::size_t bytes, const Body& body) {
  return static_cast<double>(bytes) / static_cast<double>(body.bytes.size());
}

/// Says what is wrong with what a shape needs.
std::optional<std::string> objection(const Shape& shape, const Body& body,
                                     const std::optional<Need>& need) {
  if (!need) return "the client ended";
  if (!need->isAnswered) return "the reply was not taken";
  if (perByte(need->receiving, body) > shape.receivingCeiling)
    return "receiving needs more";
  if (perByte(need->reading, body) > shape.readingCeiling) return "reading needs more";
  if (need->left > kMayStayBytes) return "memory stays behind";
  return std::nullopt;
}

int run(int argc, char** argv) {
  Run run(argc, argv, shapes().size());
  std::printf("%-28s %9s %10s %8s %10s %8s\n", "reply of", "bytes", "receiving",
              "ceiling", "+ reading", "ceiling");
  std::uint64_t done = 0;
  double worst = 0;
  for (; run.wants(done); ++done) {
    const Shape& shape = shapes()[(run.seed() - 1 + done) % shapes().size()];
    const Body body = shape.make(kBodyBytes);
    test::ScriptedServer server({test::send(replyOf(shape.framing, body.bytes))});
    const std::string url = server.url();
    const std::optional<Need> need = inChild([&] { return measure(url, body); });
    if (need) {
      const double reading = perByte(need->reading, body);
      std::printf("%-28s %9zu %10.2f %8.2f %10.2f %8.2f\n", shape.name.c_str(),
                  body.bytes.size(), perByte(need->receiving, body),
                  shape.receivingCeiling, reading, shape.readingCeiling);
      std::fflush(stdout);
      worst = std::max(worst, reading);
    }
    if (const auto wrong = objection(shape, body, need)) {
      run.finding(shape.name + ": " + *wrong,
                  "--seed " + std::to_string(run.seed() + done) + " --count 1");
    }
  }
  char text[100];
  std::snprintf(text, sizeof text, "%s shapes of reply; at most %.0f bytes per byte",
                grouped(done).c_str(), worst);
  return run.finish(text);
}

}  // namespace
}  // namespace orb::torture

int main(int argc, char** argv) { return orb::torture::run(argc, argv); }
