// SPDX-License-Identifier: MIT
#include "http/http_response.h"

#include <curl/curl.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/lexical_cast.hpp>
#include <cstring>
#include <locale>
#include <new>
#include <stdexcept>
#include <utility>

namespace orb {
namespace {

const char kContentLength[] = "Content-Length";
const char kTransferEncoding[] = "Transfer-Encoding:";

/// What follows the second space of a status line, line ending included.
std::string reasonPhraseOf(const std::string& statusLine) {
  const size_t first = statusLine.find(' ');
  if (first == std::string::npos) return "";
  const size_t second = statusLine.find(' ', first + 1);
  if (second == std::string::npos) return "";
  return statusLine.substr(second + 1);
}

/// The length in a line that mentions it; 0 when the line is about something else.
uint64_t announcedLengthIn(const std::string& line) {
  const std::string name = std::string(kContentLength) + ":";
  const size_t found = line.find(name);
  if (found == std::string::npos) return 0;
  const size_t start = found + name.size();
  std::string value = line.substr(start, line.find("\r\n", start) - start);
  boost::algorithm::trim(value);
  return boost::lexical_cast<uint64_t>(value);
}

bool isPlain(std::string coding) {
  const std::locale& c = std::locale::classic();
  boost::algorithm::trim(coding, c);
  return coding.empty() || boost::algorithm::iequals(coding, "chunked", c) ||
         boost::algorithm::iequals(coding, "identity", c);
}

/// Whether the line announces a body in other than the two codings that leave the bytes
/// what they are. libcurl undoes those that compress, unasked and in layers: a few bytes
/// would come to any number of bytes, and keep it busy past the time-out.
bool isEncoding(const std::string& line) {
  if (!boost::algorithm::istarts_with(line, kTransferEncoding, std::locale::classic())) {
    return false;
  }
  for (size_t start = sizeof kTransferEncoding - 1; start != 0;) {
    const size_t comma = line.find(',', start);
    if (!isPlain(line.substr(start, comma - start))) return true;
    start = comma + 1;  // 0 behind the last coding
  }
  return false;
}

}  // namespace

HttpResponse::HttpResponse(uint32_t sizeLimitBytes, boost::shared_ptr<ByteBlock> block)
    : block_(std::move(block)), sizeLimitBytes_(sizeLimitBytes) {
  block_->reserve(1, 0);  // so that an empty body has an address
}

bool HttpResponse::appendBody(const void* bytes, size_t length) {
  if (announcedLength_ > sizeLimitBytes_) return false;
  const size_t kept = keptSize();
  // What lies behind the limit is never read.
  const size_t more = std::min(length, sizeLimitBytes_ - kept);
  if (more != 0) {
    reserve(kept + more);
    std::memcpy(block_->data() + kept, bytes, more);
  }
  bodySize_ += length;
  return true;
}

void HttpResponse::addHeader(const std::string& line) {
  if (!std::exchange(hasStatusLine_, true)) reasonPhrase_ = reasonPhraseOf(line);
  if (line.find(kContentLength) != std::string::npos) {
    announcedLength_ = announcedLengthIn(line);
  }
  if (isEncoding(line)) {
    throw std::runtime_error(curl_easy_strerror(CURLE_BAD_CONTENT_ENCODING));
  }
}

size_t HttpResponse::keptSize() const {
  return std::min(bodySize_, uint64_t{sizeLimitBytes_});
}

// The announced length, at most the limit here, is taken at once, and not trusted
// further: what comes beyond it grows the block by half. Where there is no memory for so
// much, what has come may still fit.
void HttpResponse::reserve(size_t size) {
  const size_t capacity = block_->capacity();
  if (size <= capacity) return;
  try {
    block_->reserve(std::max({size, size_t{announcedLength_}, capacity + capacity / 2}),
                    bodySize_);
  } catch (const std::bad_alloc&) {
    block_->reserve(size, bodySize_);
  }
}

}  // namespace orb
