// SPDX-License-Identifier: MIT
#include "http/http_response.h"

#include <boost/algorithm/string/trim.hpp>
#include <boost/lexical_cast.hpp>
#include <cstring>
#include <new>

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

HttpResponse::HttpResponse(uint32_t sizeLimitBytes) : sizeLimitBytes_(sizeLimitBytes) {
  grow(1);
}

bool HttpResponse::appendBody(const void* bytes, size_t length) {
  if (announcedLength_ > sizeLimitBytes_) return false;
  if (length == 0) return true;
  grow(bodySize_ + length);
  std::memcpy(body_.get() + bodySize_, bytes, length);
  bodySize_ += length;
  return true;
}

void HttpResponse::addHeader(const std::string& line) {
  headers_.push_back(line);
  if (headers_.size() == 1) reasonPhrase_ = reasonPhraseOf(line);
  if (line.find(kContentLength) != std::string::npos) {
    announcedLength_ = announcedLengthIn(line);
  }
}

void HttpResponse::grow(size_t size) {
  void* grown = std::realloc(body_.get(), size);
  if (grown == nullptr) throw std::bad_alloc();
  static_cast<void>(body_.release());
  body_.reset(static_cast<uint8_t*>(grown));
}

}  // namespace orb
