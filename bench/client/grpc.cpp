// SPDX-License-Identifier: MIT
// gRPC with a message of typed lists, which is ready before a call.
#include <grpcpp/grpcpp.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "client/contender.h"
#include "peer.grpc.pb.h"
#include "value/checksum.h"

namespace orb::bench {
namespace {

void fill(peer::Value& message, const Value& value) {
  message.mutable_dimensions()->Assign(value.dimensions.begin(), value.dimensions.end());
  switch (value.kind) {
    case Value::Kind::kDouble: {
      peer::Matrix& matrix = *message.mutable_matrix();
      matrix.mutable_real()->Assign(value.real.begin(), value.real.end());
      matrix.mutable_imaginary()->Assign(value.imaginary.begin(), value.imaginary.end());
      return;
    }
    case Value::Kind::kUint16:
      message.mutable_shorts()->mutable_elements()->Assign(value.shorts.begin(),
                                                           value.shorts.end());
      return;
    case Value::Kind::kChar:
      message.set_text(value.text);
      return;
    case Value::Kind::kCell:
      for (const Value& element : value.elements) {
        fill(*message.mutable_cells()->add_elements(), element);
      }
      return;
    case Value::Kind::kStruct:
      for (const std::string& name : value.fieldNames) {
        message.mutable_records()->add_field_names(name);
      }
      for (const Value& element : value.elements) {
        fill(*message.mutable_records()->add_elements(), element);
      }
      return;
    case Value::Kind::kSparse: {
      peer::Sparse& sparse = *message.mutable_sparse();
      sparse.mutable_rows()->Assign(value.rows.begin(), value.rows.end());
      sparse.mutable_column_starts()->Assign(value.columnStarts.begin(),
                                             value.columnStarts.end());
      sparse.mutable_real()->Assign(value.real.begin(), value.real.end());
      return;
    }
  }
}

void add(Checksum& checksum, const peer::Value& message) {
  checksum.addAll(message.dimensions());
  switch (message.content_case()) {
    case peer::Value::kMatrix:
      checksum.addAll(message.matrix().real());
      checksum.addAll(message.matrix().imaginary());
      return;
    case peer::Value::kShorts:
      checksum.addAll(message.shorts().elements());
      return;
    case peer::Value::kText:
      checksum.addAll(message.text());
      return;
    case peer::Value::kCells:
      for (const peer::Value& element : message.cells().elements()) {
        add(checksum, element);
      }
      return;
    case peer::Value::kRecords:
      for (const peer::Value& element : message.records().elements()) {
        add(checksum, element);
      }
      return;
    case peer::Value::kSparse:
      checksum.addAll(message.sparse().rows());
      checksum.addAll(message.sparse().column_starts());
      checksum.addAll(message.sparse().real());
      return;
    case peer::Value::CONTENT_NOT_SET:
      break;
  }
  throw std::runtime_error("The answer is empty.");
}

std::shared_ptr<grpc::Channel> channelTo(uint16_t port) {
  grpc::ChannelArguments arguments;
  arguments.SetMaxReceiveMessageSize(-1);
  return grpc::CreateCustomChannel("127.0.0.1:" + std::to_string(port),
                                   grpc::InsecureChannelCredentials(), arguments);
}

class Grpc : public Contender {
 public:
  explicit Grpc(uint16_t port) : stub_(channelTo(port)) {}

  void prepare(const Workload& workload) override {
    input_.Clear();
    fill(input_, workload.input);
    isEcho_ = workload.function == Function::kEcho;
  }

  void call() override {
    output_ = std::make_unique<peer::Value>();
    grpc::ClientContext context;
    const grpc::Status status = isEcho_ ? stub_.All(&context, input_, output_.get())
                                        : stub_.First(&context, input_, output_.get());
    if (!status.ok()) throw std::runtime_error(status.error_message());
  }

  uint64_t read() override {
    Checksum checksum;
    add(checksum, *output_);
    return checksum.sum();
  }

  void release() override { output_.reset(); }

 private:
  peer::Echo::Stub stub_;
  peer::Value input_;
  std::unique_ptr<peer::Value> output_;
  bool isEcho_ = true;
};

}  // namespace

std::unique_ptr<Contender> makeContender(const Endpoint& endpoint) {
  return std::make_unique<Grpc>(endpoint.port);
}

}  // namespace orb::bench
