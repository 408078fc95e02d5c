// SPDX-License-Identifier: MIT
// F0: the floor of any protocol. Ready bytes over a bare TCP connection, one copy out of
// the program's memory and one copy into it.
#include <memory>
#include <string>

#include "client/contender.h"
#include "client/ready_request.h"
#include "net/raw_frame.h"
#include "net/socket.h"
#include "value/checksum.h"

namespace orb::bench {
namespace {

class F0 : public Contender {
 public:
  explicit F0(uint16_t rawPort) : socket_(Socket::connectTo(rawPort)) {}

  void prepare(const Workload& workload) override {
    request_ = readyRequest(socket_, workload.name);
  }

  void call() override {
    const RawFrame frame{RawFrame::kCall, request_.size()};
    socket_.send({reinterpret_cast<const char*>(&frame), sizeof frame}, request_);
    uint64_t size = 0;
    socket_.receiveAll(&size, sizeof size);
    if (size > capacity_) {
      reply_.reset(new char[size]);
      capacity_ = size;
    }
    size_ = size;
    socket_.receiveAll(reply_.get(), size_);
  }

  uint64_t read() override { return checksumOfBytes({reply_.get(), size_}); }

  // The next call receives into the same memory.
  void release() override {}

 private:
  Socket socket_;
  std::string request_;
  std::unique_ptr<char[]> reply_;
  size_t capacity_ = 0;
  size_t size_ = 0;
};

}  // namespace

std::unique_ptr<Contender> makeContender(const Endpoint& endpoint) {
  return std::make_unique<F0>(endpoint.rawPort);
}

}  // namespace orb::bench
