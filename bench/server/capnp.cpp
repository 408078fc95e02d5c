// SPDX-License-Identifier: MIT
// The server of the Cap'n Proto contender.
#include <capnp/ez-rpc.h>

#include <cstdint>
#include <thread>

#include "peer.capnp.h"
#include "server/main_loop.h"

namespace {

using orb::bench::peer::Value;

class Echo final : public orb::bench::peer::Echo::Server {
 public:
  kj::Promise<void> all(AllContext context) override {
    context.getResults().setOutput(context.getParams().getInput());
    return kj::READY_NOW;
  }

  kj::Promise<void> first(FirstContext context) override {
    const Value::Reader input = context.getParams().getInput();
    Value::Builder output = context.getResults().initOutput();
    output.setDimensions({1, 1});
    output.initMatrix().setReal({input.getMatrix().getReal()[0]});
    return kj::READY_NOW;
  }
};

}  // namespace

int main() {
  capnp::ReaderOptions options;
  options.traversalLimitInWords = UINT64_MAX;
  capnp::EzRpcServer server(kj::heap<Echo>(), "127.0.0.1", 0, options);
  kj::WaitScope& scope = server.getWaitScope();
  const auto port = static_cast<uint16_t>(server.getPort().wait(scope));
  // The event loop belongs to this thread.
  std::thread([port] { orb::bench::serveUntilInputEnds({port}); }).detach();
  kj::NEVER_DONE.wait(scope);
}
