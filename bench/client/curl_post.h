// SPDX-License-Identifier: MIT
#ifndef ORB_BENCH_CLIENT_CURL_POST_H_
#define ORB_BENCH_CLIENT_CURL_POST_H_

#include <curl/curl.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace orb::bench {

/// POSTs as a plain user of libcurl writes them, one handle for all calls.
class CurlPost {
 public:
  /// `contentType` is the value of the header line.
  CurlPost(uint16_t port, const std::string& contentType);

  void setPath(const std::string& path);

  /// Appends the body of the answer to `answer`, piece by piece as it arrives, by
  /// `answer.append(bytes, count)`. Throws std::runtime_error for any failure and any
  /// status but 200.
  template <class Answer>
  void perform(std::string_view body, Answer& answer) {
    perform(body, &appendTo<Answer>, &answer);
  }

 private:
  struct Free {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  template <class Answer>
  static size_t appendTo(char* bytes, size_t size, size_t count, void* answer) {
    static_cast<Answer*>(answer)->append(bytes, size * count);
    return size * count;
  }

  void perform(std::string_view body, curl_write_callback append, void* answer);

  std::string base_;
  std::unique_ptr<CURL, Free> handle_;
  std::unique_ptr<curl_slist, Free> headers_;
};

}  // namespace orb::bench

#endif  // ORB_BENCH_CLIENT_CURL_POST_H_
