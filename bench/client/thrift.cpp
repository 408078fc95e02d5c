// SPDX-License-Identifier: MIT
// Thrift with typed lists in a struct that is ready before a call: binary protocol over a
// buffered socket.
#include <thrift/TConfiguration.h>
#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/transport/TBufferTransports.h>
#include <thrift/transport/TSocket.h>

#include <limits>
#include <memory>

#include "Echo.h"
#include "client/contender.h"
#include "value/checksum.h"

namespace orb::bench {
namespace {

using apache::thrift::protocol::TBinaryProtocol;
using apache::thrift::transport::TBufferedTransport;
using apache::thrift::transport::TSocket;

peer::Value messageOf(const Value& value) {
  peer::Value message;
  message.dimensions.assign(value.dimensions.begin(), value.dimensions.end());
  switch (value.kind) {
    case Value::Kind::kDouble:
      message.__set_real(value.real);
      if (!value.imaginary.empty()) message.__set_imaginary(value.imaginary);
      break;
    case Value::Kind::kUint16:
      message.__set_shorts({value.shorts.begin(), value.shorts.end()});
      break;
    case Value::Kind::kChar:
      message.__set_text(value.text);
      break;
    case Value::Kind::kStruct:
      message.__set_fieldNames(value.fieldNames);
      [[fallthrough]];
    case Value::Kind::kCell:
      message.__isset.elements = true;
      message.elements.reserve(value.elements.size());
      for (const Value& element : value.elements) {
        message.elements.push_back(messageOf(element));
      }
      break;
    case Value::Kind::kSparse:
      message.__set_rows({value.rows.begin(), value.rows.end()});
      message.__set_columnStarts({value.columnStarts.begin(), value.columnStarts.end()});
      message.__set_real(value.real);
      break;
  }
  return message;
}

void add(Checksum& checksum, const peer::Value& message) {
  checksum.addAll(message.dimensions);
  checksum.addAll(message.real);
  checksum.addAll(message.imaginary);
  for (const int16_t element : message.shorts) {
    checksum.add(static_cast<uint16_t>(element));
  }
  checksum.addAll(message.text);
  for (const peer::Value& element : message.elements) add(checksum, element);
  checksum.addAll(message.rows);
  checksum.addAll(message.columnStarts);
}

std::shared_ptr<TBinaryProtocol> connect(uint16_t port) {
  auto configuration =
      std::make_shared<apache::thrift::TConfiguration>(std::numeric_limits<int>::max());
  auto socket = std::make_shared<TSocket>("127.0.0.1", port, configuration);
  auto transport = std::make_shared<TBufferedTransport>(socket, configuration);
  transport->open();
  return std::make_shared<TBinaryProtocol>(transport);
}

class Thrift : public Contender {
 public:
  explicit Thrift(uint16_t port) : client_(connect(port)) {}

  void prepare(const Workload& workload) override {
    input_ = messageOf(workload.input);
    isEcho_ = workload.function == Function::kEcho;
  }

  void call() override {
    output_ = std::make_unique<peer::Value>();
    if (isEcho_) {
      client_.all(*output_, input_);
    } else {
      client_.first(*output_, input_);
    }
  }

  uint64_t read() override {
    Checksum checksum;
    add(checksum, *output_);
    return checksum.sum();
  }

  void release() override { output_.reset(); }

 private:
  peer::EchoClient client_;
  peer::Value input_;
  std::unique_ptr<peer::Value> output_;
  bool isEcho_ = true;
};

}  // namespace

std::unique_ptr<Contender> makeContender(const Endpoint& endpoint) {
  return std::make_unique<Thrift>(endpoint.port);
}

}  // namespace orb::bench
