// SPDX-License-Identifier: MIT
#include "client/curl_post.h"

#include <stdexcept>

namespace orb::bench {
namespace {

constexpr long kOk = 200;

void check(CURLcode code) {
  if (code != CURLE_OK) throw std::runtime_error(curl_easy_strerror(code));
}

}  // namespace

CurlPost::CurlPost(uint16_t port, const std::string& contentType)
    : base_("http://127.0.0.1:" + std::to_string(port)) {
  static const CURLcode initialized = curl_global_init(CURL_GLOBAL_ALL);
  check(initialized);
  handle_.reset(curl_easy_init());
  for (const std::string& line :
       {"Content-Type: " + contentType, std::string("User-Agent: Corvane C client"),
        std::string("Expect: ")}) {
    curl_slist* const longer = curl_slist_append(headers_.get(), line.c_str());
    static_cast<void>(headers_.release());
    headers_.reset(longer);
  }
  check(curl_easy_setopt(handle_.get(), CURLOPT_HTTPHEADER, headers_.get()));
}

void CurlPost::setPath(const std::string& path) {
  check(curl_easy_setopt(handle_.get(), CURLOPT_URL, (base_ + path).c_str()));
}

void CurlPost::perform(std::string_view body, curl_write_callback append, void* answer) {
  check(curl_easy_setopt(handle_.get(), CURLOPT_POSTFIELDS, body.data()));
  check(curl_easy_setopt(handle_.get(), CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(body.size())));
  check(curl_easy_setopt(handle_.get(), CURLOPT_WRITEFUNCTION, append));
  check(curl_easy_setopt(handle_.get(), CURLOPT_WRITEDATA, answer));
  check(curl_easy_perform(handle_.get()));
  long status = 0;
  check(curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status));
  if (status != kOk) throw std::runtime_error("HTTP status " + std::to_string(status));
}

}  // namespace orb::bench
