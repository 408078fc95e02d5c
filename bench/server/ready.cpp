// SPDX-License-Identifier: MIT
// The server of F0, F1 and the library: it answers with bytes that are ready beforehand,
// so that what a call costs is the client's doing.
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "net/http_server.h"
#include "net/raw_frame.h"
#include "net/socket.h"
#include "server/main_loop.h"
#include "value/kaldex.h"

namespace {

using orb::bench::HttpExchange;
using orb::bench::RawFrame;
using orb::bench::Socket;

struct Bytes {
  std::string request;
  std::string reply;
};

/// Makes the bytes of a workload when they are first asked for.
class Shelf {
 public:
  const Bytes& of(const std::string& workloadName) {
    const std::lock_guard lock(mutex_);
    std::unique_ptr<Bytes>& bytes = bytes_[workloadName];
    if (!bytes) {
      const orb::bench::Workload workload = orb::bench::workloadNamed(workloadName);
      bytes = std::make_unique<Bytes>(
          Bytes{orb::bench::requestOf(workload), orb::bench::replyTo(workload)});
    }
    return *bytes;
  }

 private:
  std::mutex mutex_;
  std::map<std::string, std::unique_ptr<Bytes>> bytes_;
};

Shelf shelf;

void serveHttpConnection(Socket& socket) {
  orb::bench::serveHttp(socket, [](HttpExchange& exchange) {
    exchange.skipBody();
    exchange.answer(shelf.of(exchange.path().substr(1)).reply);
  });
}

void sendFrame(Socket& socket, const std::string& bytes) {
  const uint64_t size = bytes.size();
  socket.send({reinterpret_cast<const char*>(&size), sizeof size}, bytes);
}

void serveRawConnection(Socket& socket) {
  const Bytes* selected = nullptr;
  RawFrame frame;
  while (socket.receiveAll(&frame, sizeof frame)) {
    switch (frame.purpose) {
      case RawFrame::kSelect: {
        std::string name(frame.size, '\0');
        socket.receiveAll(name.data(), name.size());
        selected = &shelf.of(name);
        sendFrame(socket, selected->request);
        break;
      }
      case RawFrame::kCall:
        socket.discard(frame.size);
        sendFrame(socket, selected->reply);
        break;
    }
  }
}

}  // namespace

int main() {
  const orb::bench::Listener http(serveHttpConnection);
  const orb::bench::Listener raw(serveRawConnection);
  orb::bench::serveUntilInputEnds({http.port(), raw.port()});
}
