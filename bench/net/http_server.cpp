// SPDX-License-Identifier: MIT
#include "net/http_server.h"

#include <cstdint>
#include <memory>
#include <stdexcept>

namespace orb::bench {
namespace {

constexpr size_t kHeadBytes = 64 * 1024;
constexpr std::string_view kEndOfHead = "\r\n\r\n";
constexpr std::string_view kContentLength = "\r\nContent-Length: ";

std::string pathIn(std::string_view head) {
  const size_t start = head.find(' ') + 1;
  return std::string(head.substr(start, head.find(' ', start) - start));
}

size_t bodySizeIn(std::string_view head) {
  const size_t found = head.find(kContentLength);
  if (found == std::string_view::npos) throw std::runtime_error("POST without a length");
  return std::stoull(std::string(head.substr(found + kContentLength.size(), 20)));
}

}  // namespace

void HttpExchange::skipBody() { socket_.discard(bodySize_ - early_.size()); }

void HttpExchange::takeBody(std::string& body) {
  body.resize(bodySize_);
  early_.copy(body.data(), early_.size());
  const size_t missing = bodySize_ - early_.size();
  if (!socket_.receiveAll(body.data() + early_.size(), missing)) {
    throw std::runtime_error("The client closed the connection inside a body.");
  }
}

void HttpExchange::answer(std::string_view body) {
  socket_.send(
      "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n",
      body);
}

void serveHttp(Socket& socket, const HttpHandler& handler) {
  const auto buffer = std::make_unique<char[]>(kHeadBytes);
  for (;;) {
    std::string_view received;
    size_t endOfHead = std::string_view::npos;
    while (endOfHead == std::string_view::npos) {
      const size_t count = socket.receiveSome(buffer.get() + received.size(),
                                              kHeadBytes - received.size());
      if (count == 0) return;
      received = {buffer.get(), received.size() + count};
      endOfHead = received.find(kEndOfHead);
    }
    const std::string_view head = received.substr(0, endOfHead + kEndOfHead.size());
    HttpExchange exchange(socket, pathIn(head), bodySizeIn(head),
                          received.substr(head.size()));
    handler(exchange);
  }
}

}  // namespace orb::bench
