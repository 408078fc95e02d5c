// SPDX-License-Identifier: MIT
// Stands in for libcurl: linking fake_curl.cpp defines the functions that the transport
// calls. Only curl_easy_strerror stays libcurl's own.
#ifndef ORB_TESTS_UNIT_HTTP_FAKE_CURL_H_
#define ORB_TESTS_UNIT_HTTP_FAKE_CURL_H_

#include <curl/curl.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace orb::test {

/// An option and the value it was given: a number in decimal, a text that libcurl copies;
/// "" for a pointer.
using Setting = std::pair<CURLoption, std::string>;

/// What libcurl was told, and what it answers.
struct FakeCurl {
  std::vector<Setting> settings;
  std::map<CURLoption, const void*> pointers;         // last set; libcurl keeps them
  std::vector<std::vector<std::string>> sentHeaders;  // of each transfer
  int resets = 0;                                     // of the handle
  int handles = 0;                                    // alive, as are the lists
  int lists = 0;
  std::vector<long> globalInitFlags;  // of each call
  int globalCleanups = 0;

  CURLcode globalResult = CURLE_OK;
  bool hasHandle = true;
  size_t refusedSetting = 0;  // counted from 1, as is the append; 0 is none
  CURLcode refusal = CURLE_OK;
  size_t failingAppend = 0;
  std::vector<std::string> headers;  // of the response
  std::vector<std::string> chunks;   // of its body
  size_t unitSize = 1;               // bytes per unit that the callbacks count
  CURLcode result = CURLE_OK;        // of a transfer that the callbacks let pass
  CURLcode infoResult = CURLE_OK;
  long status = 200;
  long connections = 0;  // made by the last transfer
};

/// The one that the process has.
FakeCurl& fakeCurl();

/// Starts with a fresh stand-in; nothing that it handed out may outlive the test.
class WithFakeCurl : public ::testing::Test {
 protected:
  WithFakeCurl() { fakeCurl() = FakeCurl(); }
  ~WithFakeCurl() override {
    EXPECT_EQ(fakeCurl().handles, 0);
    EXPECT_EQ(fakeCurl().lists, 0);
  }
};

}  // namespace orb::test

#endif  // ORB_TESTS_UNIT_HTTP_FAKE_CURL_H_
