// SPDX-License-Identifier: MIT
#include "http/http_request.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <boost/numeric/conversion/cast.hpp>
#include <cstring>
#include <new>
#include <stdexcept>

#include "http/qx_http_client.h"
#include "support/failing_new.h"
#include "unit/http/failing_realloc.h"
#include "unit/http/fake_curl.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ThrowsMessage;

const char kUrl[] = "http://host/function";
const std::string kSizeLimitSentences =
    "\nThis might happen if response content size is larger than the response size limit."
    "\nYou can increase response size limit using setResponseSizeLimit method.";

std::string bodyOf(const Response& response) {
  return std::string(reinterpret_cast<const char*>(response.getBody()),
                     response.getBodySize());
}

/// A request of a client whose own settings are out of the way.
class WithRequest : public WithFakeCurl {
 protected:
  WithRequest() {
    client_.getConfig().setResponseSizeLimit(99);
    fakeCurl().settings.clear();
    request_ = client_.createRequest(kUrl);
  }

  QXHttpClient client_;
  std::unique_ptr<Request> request_;
};

class SetBody : public WithRequest {};
class Perform : public WithRequest {};

TEST_F(SetBody, HandsOverThePointerAndTheLength) {
  const char body[] = {'a', '\0', 'b'};
  request_->setBody(body, sizeof body);
  EXPECT_THAT(fakeCurl().settings, ElementsAre(Setting(CURLOPT_POSTFIELDS, ""),
                                               Setting(CURLOPT_POSTFIELDSIZE, "3")));
  EXPECT_EQ(fakeCurl().pointers[CURLOPT_POSTFIELDS], body);
}

TEST_F(SetBody, RefusesLengthsThatLibcurlCannotCount) {
  request_->setBody("", 9223372036854775807);
  EXPECT_EQ(fakeCurl().settings.back(),
            Setting(CURLOPT_POSTFIELDSIZE, "9223372036854775807"));
  EXPECT_THAT([&] { request_->setBody("", 9223372036854775808u); },
              ThrowsMessage<boost::numeric::positive_overflow>(
                  "bad numeric conversion: positive overflow"));
}

/// The body "abcde".
class Letters final : public BodySource {
 public:
  uint64_t size() const override { return 5; }
  size_t read(uint8_t* target, size_t capacity) noexcept override {
    const size_t count = std::min(capacity, size_t{5} - position_);
    std::memcpy(target, &"abcde"[position_], count);
    position_ += count;
    return count;
  }
  void rewind() noexcept override { position_ = 0; }

 private:
  size_t position_ = 0;
};

template <class Function>
Function callback(CURLoption option) {
  return reinterpret_cast<Function>(const_cast<void*>(fakeCurl().pointers[option]));
}

TEST_F(SetBody, HandsOverACallbackForABodyInPieces) {
  Letters letters;
  request_->setBody(letters);
  EXPECT_THAT(
      fakeCurl().settings,
      ElementsAre(Setting(CURLOPT_POSTFIELDS, ""), Setting(CURLOPT_POSTFIELDSIZE, "5"),
                  Setting(CURLOPT_READFUNCTION, ""), Setting(CURLOPT_READDATA, ""),
                  Setting(CURLOPT_SEEKFUNCTION, ""), Setting(CURLOPT_SEEKDATA, "")));
  EXPECT_EQ(fakeCurl().pointers[CURLOPT_POSTFIELDS], nullptr);
  EXPECT_EQ(fakeCurl().pointers[CURLOPT_READDATA], &letters);
  const auto read = callback<curl_read_callback>(CURLOPT_READFUNCTION);
  char bytes[7] = {};
  EXPECT_EQ(read(bytes, 2, 2, &letters), 4u);
  EXPECT_EQ(read(bytes + 4, 1, 2, &letters), 1u);
  EXPECT_EQ(read(bytes, 1, 2, &letters), 0u);
  EXPECT_STREQ(bytes, "abcde");
}

TEST_F(SetBody, LetsLibcurlStartTheBodyAgain) {
  Letters letters;
  request_->setBody(letters);
  EXPECT_EQ(fakeCurl().pointers[CURLOPT_SEEKDATA], &letters);
  const auto read = callback<curl_read_callback>(CURLOPT_READFUNCTION);
  const auto seek = callback<curl_seek_callback>(CURLOPT_SEEKFUNCTION);
  char bytes[3] = {};
  read(bytes, 1, 2, &letters);
  EXPECT_EQ(seek(&letters, 0, SEEK_SET), CURL_SEEKFUNC_OK);
  EXPECT_EQ(read(bytes, 1, 2, &letters), 2u);
  EXPECT_STREQ(bytes, "ab");
  EXPECT_EQ(seek(&letters, 1, SEEK_SET), CURL_SEEKFUNC_FAIL);
  EXPECT_EQ(seek(&letters, 0, SEEK_END), CURL_SEEKFUNC_FAIL);
  EXPECT_EQ(read(bytes, 1, 1, &letters), 1u);
  EXPECT_STREQ(bytes, "cb");
}

TEST_F(SetBody, ThrowsWhenAnOptionIsRefused) {
  fakeCurl().refusal = CURLE_UNKNOWN_OPTION;
  for (fakeCurl().refusedSetting = 1; fakeCurl().refusedSetting <= 2;
       ++fakeCurl().refusedSetting) {
    SCOPED_TRACE(fakeCurl().refusedSetting);
    fakeCurl().settings.clear();
    EXPECT_THAT(
        [&] { request_->setBody("", 0); },
        ThrowsMessage<std::runtime_error>("An unknown option was passed in to libcurl"));
    EXPECT_EQ(fakeCurl().settings.size(), fakeCurl().refusedSetting);
  }
}

TEST_F(Perform, SetsItsOptionsInOrderForEveryTransfer) {
  for (int transfer = 1; transfer <= 2; ++transfer) {
    SCOPED_TRACE(transfer);
    fakeCurl().settings.clear();
    request_->perform();
    std::vector<CURLoption> options;
    for (const Setting& setting : fakeCurl().settings) options.push_back(setting.first);
    EXPECT_THAT(options, ElementsAre(CURLOPT_URL, CURLOPT_HTTPHEADER,
                                     CURLOPT_HEADERFUNCTION, CURLOPT_HEADERDATA,
                                     CURLOPT_WRITEFUNCTION, CURLOPT_WRITEDATA));
    EXPECT_EQ(fakeCurl().settings.front(), Setting(CURLOPT_URL, kUrl));
    EXPECT_EQ(fakeCurl().lists, 0);
  }
}

TEST_F(Perform, SendsThreeHeaderLines) {
  request_->perform();
  request_->perform();
  const std::vector<std::string> lines{"Content-Type: application/x-google-protobuf",
                                       "User-Agent: Corvane C client", "Expect: "};
  EXPECT_THAT(fakeCurl().sentHeaders, ElementsAre(lines, lines));
}

TEST_F(Perform, CollectsStatusReasonPhraseAndBody) {
  fakeCurl().headers = {"HTTP/1.1 404 Not Found\r\n", "Content-Length: 7\r\n", "\r\n"};
  fakeCurl().chunks = {"abc", std::string("\0def", 4)};
  fakeCurl().status = 404;
  const std::unique_ptr<Response> response = request_->perform();
  EXPECT_EQ(response->getStatusCode(), 404u);
  EXPECT_EQ(response->getStatusMessage(), "Not Found\r\n");
  EXPECT_EQ(bodyOf(*response), std::string("abc\0def", 7));
}

TEST_F(Perform, CountsTheBytesOfEveryUnit) {
  fakeCurl().unitSize = 2;
  fakeCurl().headers = {"HTTP/1.1 200 Even\r\n\r\n"};
  fakeCurl().headers[0].resize(20);
  fakeCurl().chunks = {"abcdef"};
  const std::unique_ptr<Response> response = request_->perform();
  EXPECT_EQ(response->getStatusMessage(), "Even\r\n\r");
  EXPECT_EQ(bodyOf(*response), "abcdef");
}

TEST_F(Perform, GivesEveryTransferItsOwnResponse) {
  fakeCurl().headers = {"HTTP/1.1 200 First\r\n"};
  fakeCurl().chunks = {"first"};
  const std::unique_ptr<Response> first = request_->perform();
  fakeCurl().headers = {"HTTP/1.1 200 Second\r\n"};
  fakeCurl().chunks = {"second"};
  const std::unique_ptr<Response> second = request_->perform();
  EXPECT_EQ(first->getStatusMessage() + bodyOf(*first), "First\r\nfirst");
  EXPECT_EQ(second->getStatusMessage() + bodyOf(*second), "Second\r\nsecond");
}

TEST_F(Perform, ConvertsTheStatus) {
  for (const long status : {0L, 200L, 999L, 4294967295L}) {
    fakeCurl().status = status;
    EXPECT_EQ(request_->perform()->getStatusCode(), status);
  }
}

TEST_F(Perform, RefusesStatusesBeyond32Bits) {
  fakeCurl().status = -1;
  EXPECT_THAT([&] { request_->perform(); },
              ThrowsMessage<boost::numeric::negative_overflow>(
                  "bad numeric conversion: negative overflow"));
  fakeCurl().status = 4294967296;
  EXPECT_THAT([&] { request_->perform(); },
              ThrowsMessage<boost::numeric::positive_overflow>(
                  "bad numeric conversion: positive overflow"));
}

TEST_F(Perform, ThrowsWhenTheStatusCannotBeRead) {
  fakeCurl().infoResult = CURLE_UNKNOWN_OPTION;
  EXPECT_THAT(
      [&] { request_->perform(); },
      ThrowsMessage<std::runtime_error>("An unknown option was passed in to libcurl"));
}

TEST_F(Perform, ThrowsTheTextOfEveryFailure) {
  for (int code = 1; code <= 99; ++code) {
    SCOPED_TRACE(code);
    fakeCurl().result = static_cast<CURLcode>(code);
    const std::string text = curl_easy_strerror(fakeCurl().result);
    EXPECT_THAT([&] { request_->perform(); },
                ThrowsMessage<std::runtime_error>(code == 23 ? text + kSizeLimitSentences
                                                             : text));
    EXPECT_EQ(fakeCurl().lists, 0);
  }
}

TEST_F(Perform, RefusesABodyAnnouncedAboveTheLimit) {
  fakeCurl().chunks = {"x"};
  fakeCurl().headers = {"HTTP/1.1 200 OK\r\n", "Content-Length: 99\r\n"};
  EXPECT_EQ(bodyOf(*request_->perform()), "x");
  fakeCurl().headers = {"HTTP/1.1 200 OK\r\n", "Content-Length: 100\r\n"};
  EXPECT_THAT([&] { request_->perform(); },
              ThrowsMessage<std::runtime_error>(curl_easy_strerror(CURLE_WRITE_ERROR) +
                                                kSizeLimitSentences));
}

TEST_F(Perform, TakesTheLimitThatHeldWhenTheRequestWasMade) {
  client_.getConfig().setResponseSizeLimit(100);
  fakeCurl().headers = {"HTTP/1.1 200 OK\r\n", "Content-Length: 100\r\n"};
  fakeCurl().chunks = {"x"};
  EXPECT_THROW(request_->perform(), std::runtime_error);
  EXPECT_EQ(bodyOf(*client_.createRequest(kUrl)->perform()), "x");
}

TEST_F(Perform, ThrowsOnWhatTheHeaderCallbackThrew) {
  fakeCurl().headers = {"HTTP/1.1 200 OK\r\n", "Content-Length: abc\r\n"};
  EXPECT_THAT([&] { request_->perform(); },
              ThrowsMessage<std::bad_cast>(
                  "bad lexical cast: source type value could not be interpreted as "
                  "target"));
  fakeCurl().headers = {"HTTP/1.1 200 OK\r\n"};
  EXPECT_EQ(request_->perform()->getStatusMessage(), "OK\r\n");
}

TEST_F(Perform, ThrowsOnWhatTheBodyCallbackThrew) {
  fakeCurl().chunks = {"abc", "def"};
  {
    WatchedRealloc watched;
    watched.failingSize = 6;
    EXPECT_THROW(request_->perform(), std::bad_alloc);
  }
  EXPECT_EQ(bodyOf(*request_->perform()), "abcdef");
}

TEST_F(Perform, FreesTheListWhenItCannotGrow) {
  for (size_t nth = 1; nth <= 3; ++nth) {
    SCOPED_TRACE(nth);
    fakeCurl().failingAppend = nth;
    EXPECT_THROW(request_->perform(), std::bad_alloc);
    EXPECT_EQ(fakeCurl().lists, 0);
  }
  EXPECT_THAT(fakeCurl().sentHeaders, ElementsAre());
}

TEST_F(Perform, FreesTheListWhenAnOptionIsRefused) {
  fakeCurl().refusal = CURLE_OUT_OF_MEMORY;
  for (size_t nth = 1; nth <= 6; ++nth) {
    SCOPED_TRACE(nth);
    fakeCurl().settings.clear();
    fakeCurl().refusedSetting = nth;
    EXPECT_THAT([&] { request_->perform(); },
                ThrowsMessage<std::runtime_error>("Out of memory"));
    EXPECT_EQ(fakeCurl().settings.size(), nth);
    EXPECT_EQ(fakeCurl().lists, 0);
  }
  EXPECT_THAT(fakeCurl().sentHeaders, ElementsAre());
}

TEST_F(Perform, LeavesNothingBehindWhenMemoryEnds) {
  fakeCurl().headers = {"HTTP/1.1 200 A phrase too long to be held in place\r\n",
                        "Content-Length: 00000000000000000000000000000003\r\n"};
  fakeCurl().chunks = {"abc"};
  bool failed = true;
  for (size_t nth = 1; failed; ++nth) {
    SCOPED_TRACE(nth);
    fakeCurl().settings.clear();
    FailingNew failing = FailingNew::at(nth);
    try {
      const std::unique_ptr<Response> response = request_->perform();
      failed = failing.stop();
      EXPECT_FALSE(failed);
      EXPECT_EQ(bodyOf(*response), "abc");
    } catch (const std::bad_alloc&) {
      failing.stop();
    }
    EXPECT_EQ(fakeCurl().lists, 0);
  }
}

}  // namespace
}  // namespace orb::test
