// SPDX-License-Identifier: MIT
// This library, through its public functions.
#include <memory>
#include <stdexcept>
#include <string>

#include "client/contender.h"
#include "value/checksum.h"
#include "value/library_array.h"

namespace orb::bench {
namespace {

orbClientRuntime& runtime() {
  static orbClientRuntime* const table = orbInitializeEx(ORB_CLIENT_1_1);
  if (table == nullptr) throw std::runtime_error(orbGetInitializationErrorMessage());
  return *table;
}

class Library : public Contender {
 public:
  explicit Library(uint16_t port)
      : base_("http://127.0.0.1:" + std::to_string(port) + "/") {
    orbClientConfig* config = nullptr;
    if (runtime().createConfig(&config) != ORB_OK ||
        runtime().createContext(&context_, config) != ORB_OK) {
      throw std::runtime_error("createContext");
    }
    runtime().destroyConfig(config);
  }

  ~Library() override { runtime().destroyContext(context_); }

  void prepare(const Workload& workload) override {
    url_ = base_ + workload.name;
    input_ = libraryArray(workload.input);
  }

  void call() override {
    orbArray output = nullptr;
    const orbArray input = input_.get();
    if (runtime().feval(context_, url_.c_str(), 1, &output, 1, &input) != ORB_OK) {
      orbErrorInfo info;
      runtime().getLastErrorInfo(context_, &info);
      const std::string reason = info.message;
      runtime().destroyLastErrorInfo(&info);
      throw std::runtime_error(reason);
    }
    output_.reset(output);
  }

  uint64_t read() override {
    Checksum checksum;
    addArray(checksum, output_.get());
    return checksum.sum();
  }

  void release() override { output_.reset(); }

 private:
  std::string base_;
  std::string url_;
  orbClientContext* context_ = nullptr;
  LibraryArray input_;
  LibraryArray output_;
};

}  // namespace

std::unique_ptr<Contender> makeContender(const Endpoint& endpoint) {
  return std::make_unique<Library>(endpoint.port);
}

}  // namespace orb::bench
