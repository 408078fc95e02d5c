// SPDX-License-Identifier: MIT
#include "torture/replies/answer.h"

#include <algorithm>
#include <sstream>

#include "client/transport/samples.h"
#include "support/wire.h"

namespace orb::torture {
namespace {

namespace wire = test::wire;

Answer success(const std::string& name, const std::vector<std::string>& outputs) {
  return {name,    "200 OK",      wire::result(outputs), test::success(),
          outputs, outputs.size()};
}

Answer serverError(const std::string& name, const std::string& message,
                   const std::string& identifier, const std::vector<wire::Frame>& stack) {
  return {name,
          "200 OK",
          wire::error(message, identifier, stack),
          test::kaldexError(message, identifier),
          {},
          1};
}

Answer httpError(std::uint32_t code, const std::string& phrase) {
  const std::string status = std::to_string(code) + " " + phrase;
  return {status, status, "<p>" + phrase, test::httpError(code, phrase + "\r\n"), {}, 1};
}

std::vector<Answer> makeFixedAnswers() {
  std::vector<Answer> result;
  std::vector<std::string> all;
  for (const test::Sample& sample : test::samples()) {
    all.push_back(sample.message());
    result.push_back(success(sample.name, {sample.message()}));
  }
  const std::string deep =
      wire::structRow(1, {"a", "b"},
                      {wire::cellRow({wire::structRow(2, {"c"}, {all[0], all[3]})}),
                       wire::cellRow({wire::cellRow({wire::charRow(u"\u20AC")})})});
  result.push_back(success("nested", {deep}));
  result.push_back(success("three outputs", {all[19], wire::charRow(u"ab"), deep}));
  result.push_back(success("no output", {}));
  result.push_back(
      serverError("error", "no such thing", "a:b", {{"f.k", "f", 3}, {"g.k", "g", 40}}));
  result.push_back(serverError("error without stack", "no", "", {}));
  result.push_back(httpError(404, "Not Found"));
  result.push_back(httpError(500, "Internal Server Error"));
  return result;
}

std::string chunk(const std::string& bytes) {
  std::ostringstream text;
  text << std::hex << bytes.size() << "\r\n" << bytes << "\r\n";
  return text.str();
}

/// Chunks of 1, 2, 4, ... bytes.
std::string chunked(const std::string& body) {
  std::string result;
  for (std::size_t from = 0, size = 1; from < body.size(); from += size / 2) {
    result += chunk(body.substr(from, size));
    size *= 2;
  }
  return result + chunk("");
}

}  // namespace

const std::vector<Answer>& fixedAnswers() {
  static const std::vector<Answer> answers = makeFixedAnswers();
  return answers;
}

Answer randomAnswer(Random& random) {
  switch (below(random, 12)) {
    case 0:
      return httpError(static_cast<std::uint32_t>(400 + below(random, 200)),
                       randomText(random, 1 + below(random, 30)));
    case 1: {
      std::vector<wire::Frame> stack;
      for (std::uint64_t n = below(random, 6); n > 0; --n) {
        stack.push_back({randomText(random, n), randomText(random, 2 * n),
                         static_cast<std::int32_t>(below(random, 5000))});
      }
      return serverError("error", randomText(random, below(random, 200)),
                         randomText(random, below(random, 20)), stack);
    }
    default: {
      std::vector<std::string> outputs(1 + below(random, 3));
      for (std::string& output : outputs) output = randomMessage(random);
      return success("outputs", outputs);
    }
  }
}

Reply framed(const Answer& answer, Framing framing) {
  Reply reply;
  reply.bytes = "HTTP/1.1 " + answer.status + "\r\n";
  reply.statusLine = reply.bytes.size();
  std::string body = answer.body;
  switch (framing) {
    case Framing::kLength:
      reply.bytes += "Content-Length: " + std::to_string(body.size()) + "\r\n";
      break;
    case Framing::kChunked:
      reply.bytes += "Transfer-Encoding: chunked\r\n";
      body = chunked(body);
      break;
    case Framing::kUntilTheEnd:
      reply.bytes += "A: b\r\n";
      break;
  }
  reply.bytes += "\r\n";
  reply.head = reply.bytes.size();
  reply.bytes += body;
  return reply;
}

}  // namespace orb::torture
