// SPDX-License-Identifier: MIT
// Takes bytes as the header lines and the body of a response that arrives in pieces.
//
// The first byte chooses the response size limit, the second one how the body is cut.
// Then come the lines, up to an empty one, and the body.
#include <algorithm>
#include <boost/make_shared.hpp>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "http/http_response.h"
#include "torture/fuzz/expect.h"
#include "torture/fuzz/tally.h"

namespace {

using orb::HttpResponse;
using orb::torture::expect;
using orb::torture::expectText;
using orb::torture::Tally;

constexpr const char* kNoNumberText =
    "bad lexical cast: source type value could not be interpreted as target";
constexpr const char* kEncodedText =
    "Unrecognized or bad HTTP Content or Transfer-Encoding";
constexpr uint32_t kLimits[] = {0, 1, 9, 10, 255, 4096, 1u << 20, 64u << 20};

enum Kind { kKept, kRefused, kNoNumber, kAnnounced, kEncoded };

Tally& tally() {
  static Tally tally("responses", {"with a body kept", "with a body refused",
                                   "whose length is no number", "that announce one",
                                   "in another transfer encoding"});
  return tally;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\n\v\f\r";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The number that the text is, of 64 bits and with a sign or none; a minus negates it.
std::optional<uint64_t> numberIn(std::string_view text) {
  const bool isNegative = !text.empty() && text.front() == '-';
  if (isNegative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  if (text.empty()) return std::nullopt;
  uint64_t value = 0;
  for (const char letter : text) {
    if (letter < '0' || letter > '9') return std::nullopt;
    const auto digit = static_cast<uint64_t>(letter - '0');
    if (value > (UINT64_MAX - digit) / 10) return std::nullopt;
    value = value * 10 + digit;
  }
  return isNegative ? 0 - value : value;
}

std::string lowered(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

/// What a response has to make of the lines.
struct Expected {
  std::string reason;
  uint64_t announced = 0;
  size_t lines = 0;

  /// The text of what is wrong with the line, "" for nothing. What was announced before a
  /// length that is no number stays.
  const char* take(std::string_view line) {
    if (++lines == 1) reason = reasonIn(line);
    if (line.find("Content-Length") != std::string_view::npos) {
      const std::optional<uint64_t> number = lengthIn(line);
      if (!number) return kNoNumberText;
      announced = *number;
    }
    return isEncoded(lowered(line)) ? kEncodedText : "";
  }

 private:
  static std::optional<uint64_t> lengthIn(std::string_view line) {
    const size_t colon = line.find("Content-Length:");
    if (colon == std::string_view::npos) return 0;
    const std::string_view behind = line.substr(colon + 15);
    return numberIn(trimmed(behind.substr(0, behind.find("\r\n"))));
  }

  static bool isEncoded(std::string_view line) {
    if (line.substr(0, 18) != "transfer-encoding:") return false;
    for (line.remove_prefix(18);;) {
      const size_t comma = line.find(',');
      const std::string_view coding = trimmed(line.substr(0, comma));
      if (!coding.empty() && coding != "chunked" && coding != "identity") return true;
      if (comma == std::string_view::npos) return false;
      line.remove_prefix(comma + 1);
    }
  }

  static std::string reasonIn(std::string_view line) {
    for (int spaces = 0; spaces < 2; ++spaces) {
      const size_t space = line.find(' ');
      if (space == std::string_view::npos) return "";
      line.remove_prefix(space + 1);
    }
    return std::string(line);
  }
};

/// Takes the next bytes off the front.
std::string_view next(std::string_view& bytes, size_t count) {
  const std::string_view taken = bytes.substr(0, count);
  bytes.remove_prefix(taken.size());
  return taken;
}

void addLines(std::string_view& bytes, HttpResponse& response, Expected& expected) {
  while (!bytes.empty()) {
    const std::string_view line = next(bytes, std::max(bytes.find('\n'), size_t{0}) + 1);
    const std::string failure = expected.take(line);
    try {
      response.addHeader(std::string(line));
      expect(failure.empty(), "a line was taken");
    } catch (const std::exception& refused) {
      tally().add(failure == kEncodedText ? kEncoded : kNoNumber);
      expectText(refused.what(), failure, "a refused line");
    }
    if (trimmed(line).empty()) return;
  }
}

void addBody(std::string_view bytes, size_t pieceSize, HttpResponse& response,
             uint32_t limitBytes, bool isRefused) {
  std::string sent;
  do {
    const std::string_view piece = next(bytes, pieceSize);
    expect(response.appendBody(piece.data(), piece.size()) != isRefused,
           "whether a body is refused");
    if (!isRefused) sent += piece;
    expect(response.getBodySize() == sent.size(), "the size of the body so far");
    const size_t kept = std::min(sent.size(), size_t{limitBytes});
    const std::string_view body(reinterpret_cast<const char*>(response.getBody()), kept);
    expect(body == std::string_view(sent).substr(0, kept), "the body so far");
  } while (!bytes.empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const uint32_t limitBytes = kLimits[data[0] % std::size(kLimits)];
  const size_t pieceSize = size_t{data[1]} + 1;
  std::string_view bytes(reinterpret_cast<const char*>(data) + 2, size - 2);
  tally().addInput();

  const auto block = boost::make_shared<orb::ByteBlock>();
  for (int use = 0; use < 2; ++use) {  // the block serves one call after the other
    HttpResponse response(limitBytes, block);
    Expected expected;
    std::string_view rest = bytes;
    addLines(rest, response, expected);
    const bool isRefused = expected.announced > limitBytes;
    tally().add(isRefused ? kRefused : kKept);
    if (expected.announced != 0) tally().add(kAnnounced);
    addBody(rest, pieceSize, response, limitBytes, isRefused);
    expect(response.getStatusMessage() == expected.reason, "the reason phrase");
    response.setStatusCode(limitBytes);
    expect(response.getStatusCode() == limitBytes, "the status");
    expect(block->capacity() <= orb::ByteBlock::kKeptBytes + 1 + size, "memory taken");
  }
  return 0;
}
