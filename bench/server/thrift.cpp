// SPDX-License-Identifier: MIT
// The server of the Thrift contender.
#include <thrift/TConfiguration.h>
#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/server/TThreadedServer.h>
#include <thrift/transport/TBufferTransports.h>
#include <thrift/transport/TServerSocket.h>

#include <chrono>
#include <limits>
#include <memory>
#include <thread>

#include "Echo.h"
#include "server/main_loop.h"

namespace {

using apache::thrift::TConfiguration;
using apache::thrift::protocol::TBinaryProtocolFactory;
using apache::thrift::server::TThreadedServer;
using apache::thrift::transport::TBufferedTransportFactory;
using apache::thrift::transport::TServerSocket;
using orb::bench::peer::Value;

class Echo : public orb::bench::peer::EchoIf {
 public:
  void all(Value& output, const Value& input) override { output = input; }

  void first(Value& output, const Value& input) override {
    output.dimensions = {1, 1};
    output.__set_real({input.real.front()});
  }
};

}  // namespace

int main() {
  auto socket = std::make_shared<TServerSocket>("127.0.0.1", 0);
  TThreadedServer server(
      std::make_shared<orb::bench::peer::EchoProcessor>(std::make_shared<Echo>()), socket,
      std::make_shared<TBufferedTransportFactory>(),
      std::make_shared<TBinaryProtocolFactory>());
  std::thread([&server] { server.serve(); }).detach();
  while (socket->getPort() == 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  orb::bench::serveUntilInputEnds({static_cast<uint16_t>(socket->getPort())});
}
