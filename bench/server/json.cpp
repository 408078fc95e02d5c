// SPDX-License-Identifier: MIT
// The server of the JSON contender.
#include <rapidjson/writer.h>

#include <string>

#include "net/http_server.h"
#include "net/socket.h"
#include "peers/json_value.h"
#include "server/main_loop.h"

namespace {

using orb::bench::HttpExchange;
using orb::bench::Socket;

void answer(HttpExchange& exchange) {
  std::string request;
  exchange.takeBody(request);
  rapidjson::Document input;
  orb::bench::parseJson(input, request.data(), request.size());

  rapidjson::StringBuffer text;
  if (exchange.path() == "/all") {
    rapidjson::Writer<rapidjson::StringBuffer> writer(text);
    input.Accept(writer);
  } else {
    orb::bench::writeJson(text, orb::bench::doubleScalar(input["real"][0].GetDouble()));
  }
  exchange.answer({text.GetString(), text.GetSize()});
}

}  // namespace

int main() {
  const orb::bench::Listener http(
      [](Socket& socket) { orb::bench::serveHttp(socket, answer); });
  orb::bench::serveUntilInputEnds({http.port()});
}
