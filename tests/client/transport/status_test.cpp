// SPDX-License-Identifier: MIT
// Status lines, interim replies, redirects and header lines.
#include "client/transport/matrix.h"

namespace orb::test {
namespace {

std::string oneOutput() { return wire::result({wire::doubleRow({1})}); }

/// A reply with this status line, one output as its body and the body's length.
Script replyWithLine(const std::string& statusLine) {
  return {send(statusLine + "\r\nContent-Length: " + std::to_string(oneOutput().size()) +
               "\r\n\r\n" + oneOutput())};
}

/// A reply with more header lines.
Script replyWithHeaders(const std::string& lines) {
  return replyWithLine("HTTP/1.1 200 OK\r\n" + lines);
}

std::vector<Row> statusLines() {
  return {
      {"Ok", replyWithLine("HTTP/1.1 200 OK"), success()},
      {"OkWithoutPhrase", replyWithLine("HTTP/1.1 200"), success()},
      {"OkInVersion10", replyWithLine("HTTP/1.0 200 OK"), success()},
      {"NotFound", replyWithLine("HTTP/1.1 404 Not Found"),
       httpError(404, "Not Found\r\n")},
      {"Created", replyWithLine("HTTP/1.1 201 Created"), httpError(201, "Created\r\n")},
      {"PartialContent", replyWithLine("HTTP/1.1 206 Partial Content"),
       httpError(206, "Partial Content\r\n")},
      {"BadRequest", replyWithLine("HTTP/1.1 400 Bad Request"),
       httpError(400, "Bad Request\r\n")},
      {"ServerError", replyWithLine("HTTP/1.1 500 Internal Server Error"),
       httpError(500, "Internal Server Error\r\n")},
      {"Unavailable", replyWithLine("HTTP/1.1 503 Service Unavailable"),
       httpError(503, "Service Unavailable\r\n")},
      {"ErrorWithoutPhrase", replyWithLine("HTTP/1.1 503"), httpError(503, "")},
      {"ErrorWithBlankPhrase", replyWithLine("HTTP/1.1 503 "), httpError(503, "\r\n")},
      {"PhraseThatStartsWithABlank", replyWithLine("HTTP/1.1 503  Full"),
       httpError(503, " Full\r\n")},
      {"PhraseInUtf8", replyWithLine("HTTP/1.1 503 Zu t\xC3\xBCn"),
       httpError(503, "Zu t\xC3\xBCn\r\n")},
      {"PhraseOf10000Bytes", replyWithLine("HTTP/1.1 503 " + std::string(10000, 'x')),
       httpError(503, std::string(10000, 'x') + "\r\n")},
      {"PhraseWithALineFeedAlone",
       {send("HTTP/1.1 404 Not Found\nContent-Length: 0\n\n")},
       httpError(404, "Not Found\n")},
      {"PhraseThatSaysContentLength", replyWithLine("HTTP/1.1 503 Content-Length: 7"),
       httpError(503, "Content-Length: 7\r\n")},
      {"ErrorInVersion10", replyWithLine("HTTP/1.0 404 Not Found"),
       httpError(404, "Not Found\r\n")},
      {"Status999", replyWithLine("HTTP/1.1 999 Odd"), httpError(999, "Odd\r\n")},
      {"Status600", replyWithLine("HTTP/1.1 600 Odd"), httpError(600, "Odd\r\n")},
      {"StatusOfTwoDigits", replyWithLine("HTTP/1.1 99 Odd"),
       genericError("Unsupported protocol")},
      {"StatusOfFourDigits", replyWithLine("HTTP/1.1 2000 Odd"),
       genericError("Unsupported protocol")},
      {"StatusOfZeros", replyWithLine("HTTP/1.1 000 Odd"),
       genericError("Unsupported protocol")},
      {"Version2", replyWithLine("HTTP/2 200 OK"), success()},
      {"Version3", replyWithLine("HTTP/3 200 OK"), genericError("Unsupported protocol")},
      {"Version12", replyWithLine("HTTP/1.2 200 OK"),
       genericError("Unsupported protocol")},
      {"Version9", replyWithLine("HTTP/9.9 200 OK"),
       genericError("Unsupported protocol")},
      {"NoStatusLine",
       {send(oneOutput()), close()},
       genericError("Unsupported protocol")},
      {"TextInsteadOfAStatusLine",
       {send("<html>busy</html>\r\n\r\n"), close()},
       genericError("Unsupported protocol")},
  };
}

INSTANTIATE_TEST_SUITE_P(StatusLines, TransportRow,
                         ::testing::Combine(::testing::ValuesIn(statusLines()),
                                            onEveryRoad()),
                         rowName);

std::vector<Row> interimReplies() {
  const std::string ok = wire::reply(oneOutput());
  const std::string notFound = "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n";
  return {
      {"ContinueThenOk", {send("HTTP/1.1 100 Continue\r\n\r\n" + ok)}, success()},
      {"ContinueThenOkLater",
       {send("HTTP/1.1 100 Continue\r\n\r\n"), pause(std::chrono::milliseconds(20)),
        send(ok)},
       success()},
      {"ProcessingThenOk", {send("HTTP/1.1 102 Processing\r\n\r\n" + ok)}, success()},
      {"EarlyHintsThenOk",
       {send("HTTP/1.1 103 Early Hints\r\nLink: </style.css>\r\n\r\n" + ok)},
       success()},
      // The reason phrase is that of the first status line of all that were sent.
      {"ContinueThenNotFound",
       {send("HTTP/1.1 100 Continue\r\n\r\n" + notFound)},
       httpError(404, "Continue\r\n")},
      // libcurl did not ask for another protocol and waits for the reply proper.
      {"SwitchingProtocols",
       {send("HTTP/1.1 101 Switching Protocols\r\nUpgrade: other\r\n\r\n"), close()},
       genericError("Server returned nothing (no headers, no data)")},
  };
}

INSTANTIATE_TEST_SUITE_P(InterimReplies, TransportRow,
                         ::testing::Combine(::testing::ValuesIn(interimReplies()),
                                            onEveryRoad()),
                         rowName);

std::vector<Row> repliesWithoutBody() {
  return {
      {"NoContent",
       {send("HTTP/1.1 204 No Content\r\n\r\n")},
       httpError(204, "No Content\r\n")},
      {"ResetContent",
       {send("HTTP/1.1 205 Reset Content\r\nContent-Length: 0\r\n\r\n")},
       httpError(205, "Reset Content\r\n")},
      {"NotModified",
       {send("HTTP/1.1 304 Not Modified\r\n\r\n")},
       httpError(304, "Not Modified\r\n")},
      {"MovedPermanently",
       {send("HTTP/1.1 301 Moved Permanently\r\nLocation: /elsewhere\r\n"
             "Content-Length: 0\r\n\r\n")},
       httpError(301, "Moved Permanently\r\n")},
      {"Found",
       {send("HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\nContent-Length: 0\r\n\r\n")},
       httpError(302, "Found\r\n")},
      {"TemporaryRedirect",
       {send("HTTP/1.1 307 Temporary Redirect\r\nLocation: /elsewhere\r\n"
             "Content-Length: 0\r\n\r\n")},
       httpError(307, "Temporary Redirect\r\n")},
      {"Unauthorized",
       {send("HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"f\"\r\n"
             "Content-Length: 0\r\n\r\n")},
       httpError(401, "Unauthorized\r\n")},
  };
}

INSTANTIATE_TEST_SUITE_P(RepliesWithoutBody, TransportRow,
                         ::testing::Combine(::testing::ValuesIn(repliesWithoutBody()),
                                            onEveryRoad()),
                         rowName);

std::vector<Row> headerLines() {
  std::string many;
  for (int i = 0; i < 50000; ++i) many += "A: b\r\n";
  return {
      {"LinesOf90000Bytes", replyWithHeaders("A: " + std::string(90000, 'x')), success()},
      {"LineOf120000Bytes", replyWithHeaders("A: " + std::string(120000, 'x')),
       genericError("Out of memory")},
      {"StatusLineOf120000Bytes",
       replyWithLine("HTTP/1.1 503 " + std::string(120000, 'x')),
       genericError("Out of memory")},
      {"Lines50000", replyWithHeaders(many + "A: b"), success()},
      {"NulInALine", replyWithHeaders(std::string("A: b\0c", 6)),
       genericError("Weird server reply")},
      {"LineWithoutColon", replyWithHeaders("nothing"),
       genericError("Weird server reply")},
      {"FoldedLine", replyWithHeaders("A: b\r\n c"), success()},
      {"BytesAbove127", replyWithHeaders("A: \x80\xFF"), success()},
      {"ConnectionClose", replyWithHeaders("Connection: close"), success()},
      {"Cookie", replyWithHeaders("Set-Cookie: a=b"), success()},
  };
}

INSTANTIATE_TEST_SUITE_P(HeaderLines, TransportRow,
                         ::testing::Combine(::testing::ValuesIn(headerLines()),
                                            onEveryRoad()),
                         rowName);

}  // namespace
}  // namespace orb::test
