// SPDX-License-Identifier: MIT
#include "torture/allocations/receiver.h"

#include <memory>
#include <stdexcept>

#include "support/scripted_server.h"
#include "support/wire.h"
#include "torture/allocations/failing_malloc.h"

namespace orb::torture {
namespace {

// A server keeps all its requests until it ends.
constexpr int kCallsOfServer = 1000;

class Receiver {
 public:
  Receiver() : server_({test::close()}) {
    orbClientConfig* config = nullptr;
    table().createConfig(&config);
    table().createContext(&context_, config);
    table().destroyConfig(config);
  }
  ~Receiver() { table().destroyContext(context_); }
  Receiver(const Receiver&) = delete;
  Receiver& operator=(const Receiver&) = delete;

  test::Array receive(const std::string& message) {
    ++calls_;
    server_.onRequest({test::send(test::wire::reply(test::wire::result({message})))});
    orbArray array = nullptr;
    const std::string url = server_.url();
    if (table().feval(context_, url.c_str(), 1, &array, 0, nullptr) != ORB_OK) {
      throw std::runtime_error("an array does not arrive");
    }
    return test::Array(array);
  }
  bool isWornOut() const { return calls_ == kCallsOfServer; }

 private:
  test::ScriptedServer server_;
  orbClientContext* context_ = nullptr;
  int calls_ = 0;
};

std::unique_ptr<Receiver> receiver;

}  // namespace

const orbClientRuntime& table() {
  const orbClientRuntime* made = orbInitializeEx(ORB_CLIENT_1_1);
  if (made == nullptr) throw std::runtime_error(orbGetInitializationErrorMessage());
  return *made;
}

test::Array receive(const std::string& message) {
  const WatchPause pause;  // the server's threads free what is queued for them
  if (receiver && receiver->isWornOut()) receiver.reset();
  if (!receiver) receiver = std::make_unique<Receiver>();
  return receiver->receive(message);
}

void stopReceiving() { receiver.reset(); }

}  // namespace orb::torture
