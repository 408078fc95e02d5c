// SPDX-License-Identifier: MIT
// Stands between the library and libcurl: records what is asked, and answers as a test
// says. A program that links it takes the place of the functions below.
#ifndef ORB_TESTS_CLIENT_TRANSPORT_LIBCURL_SEAM_H_
#define ORB_TESTS_CLIENT_TRANSPORT_LIBCURL_SEAM_H_

#include <curl/curl.h>

#include <optional>
#include <string>
#include <vector>

namespace orb::test {

/// What has been asked since the last reset, and how to answer. libcurl's calls of its
/// own functions pass here as well.
struct LibcurlSeam {
  std::vector<std::string> globalCalls;  // "init 3", "cleanup"
  std::vector<std::string> options;      // "TIMEOUT 120"; pointers without a value
  std::vector<std::string> listLines;    // each line appended to a list

  CURLcode globalInitResult = CURLE_OK;
  bool refusesHandles = false;
  std::optional<CURLoption> refusedOption;  // with CURLE_UNKNOWN_OPTION
  int appendsBeforeFailure = -1;            // -1 for no failure
  std::optional<CURLcode> performResult;    // without a transfer
  std::optional<long> responseCode;
  CURLcode getinfoResult = CURLE_OK;
};

LibcurlSeam& libcurlSeam();

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_TRANSPORT_LIBCURL_SEAM_H_
