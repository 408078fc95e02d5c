// SPDX-License-Identifier: MIT
// How a reply's body is cut out of the connection, and connections that break.
#include <boost/crc.hpp>

#include "client/transport/matrix.h"

namespace orb::test {
namespace {

using std::chrono::milliseconds;

constexpr const char* kNothing = "Server returned nothing (no headers, no data)";
constexpr const char* kReceiving = "Failure when receiving data from the peer";
constexpr const char* kPartial = "Transferred a partial file";
constexpr const char* kEncoding = "Unrecognized or bad HTTP Content or Transfer-Encoding";

/// A row that succeeds on a reused connection: libcurl sends a request again when a
/// connection that it had used before ends without a whole status line, and the server then
/// gives the usual reply.
Row sentAgainWhenReused(Row row) {
  row.reused = success();
  return row;
}

std::string oneOutput() { return wire::result({wire::doubleRow({1})}); }

Script replyWith(const std::string& headersAndBody) {
  return {send("HTTP/1.1 200 OK\r\n" + headersAndBody)};
}

/// A chunked reply with these chunks as sent.
Script chunked(const std::string& chunks) {
  return replyWith("Transfer-Encoding: chunked\r\n\r\n" + chunks);
}

std::string chunk(const std::string& bytes) {
  std::string size;
  for (std::size_t rest = bytes.size(); rest != 0; rest /= 16) {
    size.insert(size.begin(), "0123456789abcdef"[rest % 16]);
  }
  return size + "\r\n" + bytes + "\r\n";
}

std::string littleEndian(std::uint32_t value, int bytes) {
  std::string text;
  for (; bytes != 0; --bytes, value >>= 8) text += static_cast<char>(value & 0xFF);
  return text;
}

/// At most 65535 bytes as gzip has them, not made smaller.
std::string gzipped(const std::string& bytes) {
  boost::crc_32_type sum;
  sum.process_bytes(bytes.data(), bytes.size());
  const auto size = static_cast<std::uint32_t>(bytes.size());
  return std::string("\x1F\x8B\x08\0\0\0\0\0\0\x03\x01", 11) + littleEndian(size, 2) +
         littleEndian(~size, 2) + bytes + littleEndian(sum.checksum(), 4) +
         littleEndian(size, 4);
}

Script then(Script script, Step last) {
  script.push_back(std::move(last));
  return script;
}

std::vector<Row> framings() {
  const std::string body = oneOutput();
  const std::string length = std::to_string(body.size());
  std::string bytewise;
  for (const char byte : body) bytewise += chunk(std::string(1, byte));
  return {
      {"Chunk", chunked(chunk(body) + "0\r\n\r\n"), success()},
      {"ChunkOfEachByte", chunked(bytewise + "0\r\n\r\n"), success()},
      {"ChunkWithExtension",
       chunked("1;a=b\r\n\x0a\r\n" + chunk(body.substr(1)) + "0;c=d\r\n\r\n"), success()},
      {"ChunkWithTrailer", chunked(chunk(body) + "0\r\nA: b\r\n\r\n"), success()},
      {"ChunkSizeNoNumber", chunked("zz\r\n"), genericError(kReceiving)},
      {"ChunkSizeEmpty", chunked("\r\n"), genericError(kReceiving)},
      {"ChunkSizeOf17Digits", chunked("10000000000000000\r\n"), genericError(kReceiving)},
      {"ChunkLongerThanItsSize", chunked("1\r\n" + body + "\r\n0\r\n\r\n"),
       genericError(kReceiving)},
      {"ChunkedWithLength",
       replyWith("Content-Length: " + length + "\r\nTransfer-Encoding: chunked\r\n\r\n" +
                 chunk(body) + "0\r\n\r\n"),
       success()},
      {"ChunkedInVersion10",
       {send("HTTP/1.0 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + chunk(body) +
             "0\r\n\r\n"),
        close()},
       success()},
      {"UntilTheEnd", then(replyWith("\r\n" + body), close()), success()},
      {"UntilTheEndInVersion10",
       {send("HTTP/1.0 200 OK\r\n\r\n" + body), close()},
       success()},
      {"UntilTheEndOfWriting", then(replyWith("\r\n" + body), shutDownWriting()),
       success()},
      {"IdentityTransferEncoding",
       then(replyWith("Transfer-Encoding: identity\r\n\r\n" + body), close()), success()},
      {"UnknownTransferEncoding",
       then(replyWith("Transfer-Encoding: other\r\n\r\n" + body), close()),
       genericError(kEncoding)},
      // What was not asked for, and would grow without end.
      {"GzipTransferEncoding",
       then(replyWith("Transfer-Encoding: gzip\r\n\r\n" + gzipped(body)), close()),
       genericError(kEncoding)},
      {"GzipTransferEncodingTwiceInChunks",
       replyWith("Transfer-Encoding: gzip, gzip, chunked\r\n\r\n" +
                 chunk(gzipped(gzipped(body))) + "0\r\n\r\n"),
       genericError(kEncoding)},
      {"GzipLabelOnPlainBytes",
       replyWith("Content-Encoding: gzip\r\nContent-Length: " + length + "\r\n\r\n" +
                 body),
       success()},
      {"LengthTooSmall",
       replyWith("Content-Length: " + std::to_string(body.size() - 1) + "\r\n\r\n" +
                 body),
       success()},
      {"LengthsOfTwoSizesLastRight",
       replyWith("Content-Length: 9\r\nContent-Length: " + length + "\r\n\r\n" + body),
       success()},
      {"LengthsOfTwoSizesLastTooLarge",
       then(replyWith("Content-Length: " + length + "\r\nContent-Length: 99\r\n\r\n" +
                      body),
            close()),
       genericError(kPartial)},
      {"TwoRepliesAtOnce", {send(wire::reply(body) + wire::reply(body))}, success()},
      {"ReplyAndGarbage", {send(wire::reply(body) + "garbage")}, success()},
  };
}

INSTANTIATE_TEST_SUITE_P(Framings, TransportRow,
                         ::testing::Combine(::testing::ValuesIn(framings()),
                                            onEveryRoad()),
                         rowName);

std::vector<Row> closes() {
  const std::string body = oneOutput();
  const std::string head = "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
  const std::string half = body.substr(0, body.size() / 2);
  return {
      sentAgainWhenReused({"BeforeAnyByte", {close()}, genericError(kNothing)}),
      sentAgainWhenReused(
          {"InTheStatusLine", {send("HTTP/1.1 20"), close()}, genericError(kNothing)}),
      // To libcurl the end of the connection then ends an empty reply.
      {"InsideTheHeaders", then(replyWith("Content-Le"), close()), countMismatch(0, 1)},
      {"AfterAHeaderLine", then(replyWith("A: b\r\n"), close()), countMismatch(0, 1)},
      {"InsideTheHeadersOfAnError",
       {send("HTTP/1.1 404 Not Found\r\nContent-Le"), close()},
       httpError(404, "Not Found\r\n")},
      {"BeforeTheBody", then(replyWith(head), close()), genericError(kPartial)},
      {"InsideTheBody", then(replyWith(head + half), close()), genericError(kPartial)},
      {"InsideAChunkSize", then(chunked("1"), close()), genericError(kPartial)},
      {"InsideAChunk", then(chunked("99\r\n" + half), close()), genericError(kPartial)},
      {"BeforeTheLastChunk", then(chunked(chunk(body)), close()), genericError(kPartial)},
      {"InsideATrailer", then(chunked(chunk(body) + "0\r\nA: b\r\n"), close()),
       genericError(kPartial)},
      {"AfterContinue",
       {send("HTTP/1.1 100 Continue\r\n\r\n"), close()},
       genericError(kNothing)},
      sentAgainWhenReused(
          {"OfWritingBeforeAnyByte", {shutDownWriting()}, genericError(kNothing)}),
      {"AfterTheReply", {send(wire::reply(body)), close()}, success()},
      {"SomeTimeAfterTheReply",
       {send(wire::reply(body)), pause(milliseconds(20)), close()},
       success()},
      {"UntilTheEndWithoutAlert", then(replyWith("\r\n" + body), cut()), success()},
      {"AfterTheReplyWithoutAlert", {send(wire::reply(body)), cut()}, success()},
  };
}

INSTANTIATE_TEST_SUITE_P(Closes, TransportRow,
                         ::testing::Combine(::testing::ValuesIn(closes()), onEveryRoad()),
                         rowName);

std::vector<Row> resets() {
  const std::string body = oneOutput();
  const std::string head = "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
  const std::string half = body.substr(0, body.size() / 2);
  // A reset discards what the client has not read yet: give it time to.
  const Step settle = pause(milliseconds(20));
  return {
      sentAgainWhenReused({"BeforeAnyByte", {settle, reset()}, genericError(kReceiving)}),
      sentAgainWhenReused({"InTheStatusLine",
                           {send("HTTP/1.1 20"), settle, reset()},
                           genericError(kReceiving)}),
      {"InsideTheHeaders", then(then(replyWith("Content-Le"), settle), reset()),
       genericError(kReceiving)},
      {"BeforeTheBody", then(then(replyWith(head), settle), reset()),
       genericError(kReceiving)},
      {"InsideTheBody", then(then(replyWith(head + half), settle), reset()),
       genericError(kReceiving)},
      {"InsideAChunk", then(then(chunked("99\r\n" + half), settle), reset()),
       genericError(kReceiving)},
      {"UntilTheEnd", then(then(replyWith("\r\n" + body), settle), reset()),
       genericError(kReceiving)},
      {"AfterTheReply", {send(wire::reply(body)), settle, reset()}, success()},
  };
}

INSTANTIATE_TEST_SUITE_P(Resets, TransportRow,
                         ::testing::Combine(::testing::ValuesIn(resets()), onEveryRoad()),
                         rowName);

}  // namespace
}  // namespace orb::test
