// SPDX-License-Identifier: MIT
#include "http/http_response.h"

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <boost/lexical_cast.hpp>
#include <cstring>
#include <new>
#include <utility>

namespace orb {
namespace {

const char kContentLength[] = "Content-Length";

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

}  // namespace

HttpResponse::HttpResponse(uint32_t sizeLimitBytes, boost::shared_ptr<ByteBlock> block)
    : block_(std::move(block)), sizeLimitBytes_(sizeLimitBytes) {
  block_->reserve(1, 0);  // so that an empty body has an address
}

bool HttpResponse::appendBody(const void* bytes, size_t length) {
  if (announcedLength_ > sizeLimitBytes_) return false;
  if (length == 0) return true;
  reserve(bodySize_ + length);
  std::memcpy(block_->data() + bodySize_, bytes, length);
  bodySize_ += length;
  return true;
}

void HttpResponse::addHeader(const std::string& line) {
  if (!std::exchange(hasStatusLine_, true)) reasonPhrase_ = reasonPhraseOf(line);
  if (line.find(kContentLength) != std::string::npos) {
    announcedLength_ = announcedLengthIn(line);
  }
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
