// SPDX-License-Identifier: MIT
// Receives, reads and destroys replies of every shape and of any depth on a thread with a
// small stack, and measures how much of it is used.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/transport/certificates.h"
#include "support/scripted_server.h"
#include "support/wire.h"
#include "torture/ceilings/client.h"
#include "torture/ceilings/in_child.h"
#include "torture/ceilings/painted_stack.h"
#include "torture/ceilings/shapes.h"
#include "torture/support/run.h"

namespace orb::torture {
namespace {

namespace wire = test::wire;

constexpr std::size_t kStackBytes = 128u << 10;
// The rest is for what a program has on its stack when it calls.
constexpr std::size_t kUsedCeiling = 40u << 10;
constexpr std::size_t kBodyBytes = 64u << 10;

struct Case {
  std::string name;
  std::string reply;
  std::uint32_t outputs;
  bool isTaken;              // whether the call succeeds
  std::optional<int> depth;  // of the deepest number, -1 for none
};

struct Use {
  std::size_t stackBytes;
  orbStatus status;
  int depth;
};

std::vector<Case> usualCases() {
  std::vector<Case> cases;
  for (const Shape& shape : shapes()) {
    const Body body = shape.make(kBodyBytes);
    const bool isTaken = body.outputs != 0;
    cases.push_back(
        {shape.name, replyOf(shape.framing, body.bytes), body.outputs, isTaken, {}});
  }
  return cases;
}

// Of what is too deep the call gives what was read before; a number that lies behind is
// not in it.
std::vector<Case> deepCases() {
  std::vector<Case> cases;
  const auto add = [&](const std::string& what, int depth, const Body& body,
                       int numberAt) {
    cases.push_back({what + " " + std::to_string(depth) + " deep",
                     wire::reply(body.bytes), body.outputs, true, numberAt});
  };
  for (const int depth : {40, 41, 49, 50, 51, 1000, 10000}) {
    const int numberAt = depth < 50 ? depth : -1;
    add("cells", depth, nested(Nesting::kCells, depth), numberAt);
    add("cells and structs", depth, nested(Nesting::kCellsAndStructs, depth), numberAt);
  }
  for (const int depth : {32, 33, 34, 48, 49, 50, 98, 99, 100, 1000, 10000}) {
    add("groups", depth, nestedGroups(depth), 0);
    add("objects", depth, nestedObjects(depth), 0);
    add("shared data", depth, nestedSharedData(depth), 0);
  }
  return cases;
}

std::vector<Case> failures() {
  const std::string status =
      "HTTP/1.1 500 Internal Server Error\r\nContent-Length: 0\r\n";
  std::string lines;
  for (int i = 0; i < 1000; ++i) lines += "X-Line: " + std::string(60, 'x') + "\r\n";
  const std::string noNumber = "HTTP/1.1 200 OK\r\nContent-Length: x\r\n\r\n";
  const std::string refused = wire::result({wire::type(wire::kString)});
  return {{"status 500", status + "\r\n", 1, false, -1},
          {"status 500, 1000 lines", status + lines + "\r\n", 1, false, -1},
          {"length without a number", noNumber, 1, false, -1},
          {"refused type", wire::reply(refused), 1, false, -1},
          {"too few outputs", wire::reply(""), 1, false, -1}};
}

std::vector<Case> allCases() {
  std::vector<Case> all = usualCases();
  for (const auto& more : {deepCases(), failures()}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

/// One call in a process of its own. The first call of a thread is the one measured: it
/// connects.
std::optional<Use> use(const std::string& url, const std::string& authority,
                       std::uint32_t outputs) {
  return inChild([&] {
    Client client(authority);
    Use use{};
    use.stackBytes = usedStackOf(
        [&] {
          use.status = client.call(url, outputs);
          use.depth = client.readEverything();
          client.dropOutputs();
        },
        kStackBytes);
    return use;
  });
}

std::optional<std::string> objection(const Case& tried, const std::optional<Use>& use) {
  if (!use) return "the client ended: the stack did not suffice";
  if ((use->status == ORB_OK) != tried.isTaken) return "another status";
  if (tried.depth && use->depth != *tried.depth) {
    return "the number lies " + std::to_string(use->depth) + " deep";
  }
  if (use->stackBytes > kUsedCeiling) return "more stack used than the ceiling";
  return std::nullopt;
}

int run(int argc, char** argv) {
  const std::vector<Case> all = allCases();
  Run run(argc, argv, 2 * all.size());  // without and with TLS
  std::printf("%-33s %8s of %zu\n", "reply of", "used", kStackBytes);
  const test::Certificates& certificates = test::Certificates::get();
  std::uint64_t done = 0;
  std::size_t most[2] = {};
  for (; run.wants(done); ++done) {
    const std::uint64_t item = (run.seed() - 1 + done) % (2 * all.size());
    const Case& tried = all[item / 2];
    const bool isEncrypted = item % 2 == 1;
    const test::Script script{test::send(tried.reply)};
    const auto server = isEncrypted ? std::make_unique<test::ScriptedServer>(
                                          script, certificates.server())
                                    : std::make_unique<test::ScriptedServer>(script);
    const std::optional<Use> used =
        use(server->url(), isEncrypted ? certificates.authority() : "", tried.outputs);
    const std::size_t bytes = used ? used->stackBytes : 0;
    std::printf("%-28s %-4s %8zu\n", tried.name.c_str(), isEncrypted ? "TLS" : "", bytes);
    std::fflush(stdout);
    most[item % 2] = std::max(most[item % 2], bytes);
    if (const auto wrong = objection(tried, used)) {
      run.finding(tried.name + ": " + *wrong,
                  "--seed " + std::to_string(run.seed() + done) + " --count 1");
    }
  }
  return run.finish(grouped(done) + " calls on a stack of " + grouped(kStackBytes) +
                    " bytes, of which at most " + grouped(most[0]) + " used, " +
                    grouped(most[1]) + " with TLS");
}

}  // namespace
}  // namespace orb::torture

int main(int argc, char** argv) { return orb::torture::run(argc, argv); }
