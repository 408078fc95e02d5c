// SPDX-License-Identifier: MIT
// Cap'n Proto with typed lists. A request is used up by its call, so a program fills one
// from its own data at every call.
#include <capnp/ez-rpc.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/contender.h"
#include "peer.capnp.h"
#include "value/checksum.h"

namespace orb::bench {
namespace {

using AllOutput = capnp::Response<peer::Echo::AllResults>;
using FirstOutput = capnp::Response<peer::Echo::FirstResults>;

capnp::ReaderOptions withoutLimit() {
  capnp::ReaderOptions options;
  options.traversalLimitInWords = UINT64_MAX;
  return options;
}

unsigned countOf(size_t count) { return static_cast<unsigned>(count); }

template <class List, class Range>
void fillList(List list, const Range& range) {
  unsigned i = 0;
  for (const auto& element : range) list.set(i++, element);
}

void fill(peer::Value::Builder message, const Value& value);

template <class List>
void fillValues(List list, const std::vector<Value>& values) {
  unsigned i = 0;
  for (const Value& value : values) fill(list[i++], value);
}

void fill(peer::Value::Builder message, const Value& value) {
  fillList(message.initDimensions(countOf(value.dimensions.size())), value.dimensions);
  switch (value.kind) {
    case Value::Kind::kDouble: {
      auto matrix = message.initMatrix();
      fillList(matrix.initReal(countOf(value.real.size())), value.real);
      if (!value.imaginary.empty()) {
        fillList(matrix.initImaginary(countOf(value.imaginary.size())), value.imaginary);
      }
      return;
    }
    case Value::Kind::kUint16:
      fillList(message.initShorts(countOf(value.shorts.size())), value.shorts);
      return;
    case Value::Kind::kChar:
      message.setText(value.text);
      return;
    case Value::Kind::kCell:
      fillValues(message.initCells(countOf(value.elements.size())), value.elements);
      return;
    case Value::Kind::kStruct: {
      auto records = message.initRecords();
      auto names = records.initFieldNames(countOf(value.fieldNames.size()));
      unsigned i = 0;
      for (const std::string& name : value.fieldNames) names.set(i++, name);
      fillValues(records.initElements(countOf(value.elements.size())), value.elements);
      return;
    }
    case Value::Kind::kSparse: {
      auto sparse = message.initSparse();
      fillList(sparse.initRows(countOf(value.rows.size())), value.rows);
      fillList(sparse.initColumnStarts(countOf(value.columnStarts.size())),
               value.columnStarts);
      fillList(sparse.initValues(countOf(value.real.size())), value.real);
      return;
    }
  }
}

void add(Checksum& checksum, peer::Value::Reader message) {
  checksum.addAll(message.getDimensions());
  switch (message.which()) {
    case peer::Value::MATRIX:
      checksum.addAll(message.getMatrix().getReal());
      checksum.addAll(message.getMatrix().getImaginary());
      return;
    case peer::Value::SHORTS:
      checksum.addAll(message.getShorts());
      return;
    case peer::Value::TEXT:
      checksum.addAll(message.getText());
      return;
    case peer::Value::CELLS:
      for (const auto& element : message.getCells()) add(checksum, element);
      return;
    case peer::Value::RECORDS:
      for (const auto& element : message.getRecords().getElements()) {
        add(checksum, element);
      }
      return;
    case peer::Value::SPARSE:
      checksum.addAll(message.getSparse().getRows());
      checksum.addAll(message.getSparse().getColumnStarts());
      checksum.addAll(message.getSparse().getValues());
      return;
  }
}

class Capnp : public Contender {
 public:
  explicit Capnp(uint16_t port)
      : client_("127.0.0.1", port, withoutLimit()),
        echo_(client_.getMain<peer::Echo>()) {}
  // The members' destructors may throw; at the end of a measurement that may end all.
  ~Capnp() noexcept override {}

  void prepare(const Workload& workload) override { workload_ = workload; }

  void call() override {
    if (workload_.function == Function::kEcho) {
      auto request = echo_.allRequest();
      fill(request.initInput(), workload_.input);
      all_.emplace(request.send().wait(client_.getWaitScope()));
    } else {
      auto request = echo_.firstRequest();
      fill(request.initInput(), workload_.input);
      first_.emplace(request.send().wait(client_.getWaitScope()));
    }
  }

  uint64_t read() override {
    Checksum checksum;
    add(checksum, all_ ? all_->getOutput() : first_->getOutput());
    return checksum.sum();
  }

  void release() override {
    all_.reset();
    first_.reset();
  }

 private:
  capnp::EzRpcClient client_;
  peer::Echo::Client echo_;
  Workload workload_;
  std::optional<AllOutput> all_;
  std::optional<FirstOutput> first_;
};

}  // namespace

std::unique_ptr<Contender> makeContender(const Endpoint& endpoint) {
  return std::make_unique<Capnp>(endpoint.port);
}

}  // namespace orb::bench
