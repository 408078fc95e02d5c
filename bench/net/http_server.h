// SPDX-License-Identifier: MIT
#ifndef ORB_BENCH_NET_HTTP_SERVER_H_
#define ORB_BENCH_NET_HTTP_SERVER_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "net/socket.h"

namespace orb::bench {

/// One POST under way on a connection. Either its body is taken or it is skipped; then it
/// is answered.
class HttpExchange {
 public:
  /// `early` is the part of the body that arrived together with the head.
  HttpExchange(Socket& socket, std::string path, size_t bodySize, std::string_view early)
      : socket_(socket), path_(std::move(path)), bodySize_(bodySize), early_(early) {}

  const std::string& path() const { return path_; }
  void skipBody();
  void takeBody(std::string& body);
  void answer(std::string_view body);

 private:
  Socket& socket_;
  std::string path_;
  size_t bodySize_;
  std::string_view early_;
};

using HttpHandler = std::function<void(HttpExchange&)>;

/// Serves the POSTs of one connection until the client closes it. Understands what
/// libcurl sends, one request after the other with a Content-Length, and nothing else.
void serveHttp(Socket& socket, const HttpHandler& handler);

}  // namespace orb::bench

#endif  // ORB_BENCH_NET_HTTP_SERVER_H_
