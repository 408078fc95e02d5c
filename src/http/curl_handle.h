// SPDX-License-Identifier: MIT
// Owners of what libcurl hands out, and the one place where its results are looked at.
#ifndef ORB_HTTP_CURL_HANDLE_H_
#define ORB_HTTP_CURL_HANDLE_H_

#include <curl/curl.h>

#include <boost/shared_ptr.hpp>
#include <stdexcept>

namespace orb {

struct CURLDeleter {
  void operator()(void* handle) const { curl_easy_cleanup(handle); }
};

/// An easy handle, shared by a client and its requests.
using CurlHandle = boost::shared_ptr<void>;

/// Throws std::runtime_error with libcurl's text for a result that is not CURLE_OK.
inline void checkCurl(CURLcode code) {
  if (code != CURLE_OK) throw std::runtime_error(curl_easy_strerror(code));
}

/// Options that libcurl declares as long need a long.
template <class Value>
void setOption(const CurlHandle& handle, CURLoption option, Value value) {
  checkCurl(curl_easy_setopt(handle.get(), option, value));
}

}  // namespace orb

#endif  // ORB_HTTP_CURL_HANDLE_H_
