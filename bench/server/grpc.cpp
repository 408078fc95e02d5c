// SPDX-License-Identifier: MIT
// The server of the gRPC contender.
#include <grpcpp/grpcpp.h>

#include <memory>

#include "peer.grpc.pb.h"
#include "server/main_loop.h"

namespace {

using orb::bench::peer::Value;

class Echo : public orb::bench::peer::Echo::Service {
 public:
  grpc::Status All(grpc::ServerContext*, const Value* input, Value* output) override {
    *output = *input;
    return grpc::Status::OK;
  }

  grpc::Status First(grpc::ServerContext*, const Value* input, Value* output) override {
    output->add_dimensions(1);
    output->add_dimensions(1);
    output->mutable_matrix()->add_real(input->matrix().real(0));
    return grpc::Status::OK;
  }
};

}  // namespace

int main() {
  Echo echo;
  int port = 0;
  grpc::ServerBuilder builder;
  builder.AddListeningPort("127.0.0.1:0", grpc::InsecureServerCredentials(), &port);
  builder.SetMaxReceiveMessageSize(-1);
  builder.RegisterService(&echo);
  const std::unique_ptr<grpc::Server> server = builder.BuildAndStart();
  orb::bench::serveUntilInputEnds({static_cast<uint16_t>(port)});
}
