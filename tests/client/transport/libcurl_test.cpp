// SPDX-License-Identifier: MIT
// What the library asks of libcurl, and what it makes of libcurl's answers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "client/transport/caller.h"
#include "client/transport/libcurl_seam.h"

namespace orb::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A library that is initialised for one test, and a server.
class Libcurl : public ::testing::Test {
 protected:
  Libcurl() : table_(*orbInitializeEx(ORB_CLIENT_1_1)) {
    EXPECT_EQ(table_.createConfig(&config_), ORB_OK);
    libcurlSeam() = {};
  }

  ~Libcurl() override {
    table_.destroyContext(context_);
    table_.destroyConfig(config_);
    orbTerminate();
    libcurlSeam() = {};
  }

  orbStatus createContext() { return table_.createContext(&context_, config_); }

  orbStatus call() {
    return table_.feval(context_, server_.url().c_str(), 0, nullptr, 0, nullptr);
  }

  std::string lastMessage() {
    orbErrorInfo info;
    table_.getLastErrorInfo(context_, &info);
    EXPECT_EQ(info.type, ORB_GENERIC_ERROR);
    EXPECT_STREQ(info.message, "A generic error was thrown");
    return info.details.generic.message;
  }

  const orbClientRuntime& table_;
  orbClientConfig* config_ = nullptr;
  orbClientContext* context_ = nullptr;
  ScriptedServer server_{{send(wire::reply(""))}};
};

TEST_F(Libcurl, IsGivenTheSettingsInOrderWhenAContextIsMade) {
  ASSERT_EQ(createContext(), ORB_OK);
  EXPECT_THAT(libcurlSeam().options,
              ElementsAre("HTTP_VERSION 2", "TIMEOUT 120", "SSL_VERIFYHOST 2",
                          "SSL_VERIFYPEER 1", "SSL_SESSIONID_CACHE 0"));
}

TEST_F(Libcurl, IsGivenEveryTextThatIsSet) {
  table_.setTimeoutSec(config_, 0);
  table_.setClientCertFile(config_, "client.pem");
  table_.setClientPrivateKeyFile(config_, "client.key");
  table_.setClientPrivateKeyPassword(config_, "open sesame");
  table_.setServerCertFile(config_, "authority.pem");
  table_.setCRLFile(config_, "revoked.crl");
  table_.setVerifyHost(config_, false);
  table_.setVerifyPeer(config_, false);
  ASSERT_EQ(createContext(), ORB_OK);
  EXPECT_THAT(
      libcurlSeam().options,
      ElementsAre("HTTP_VERSION 2", "TIMEOUT 0", "SSLCERT client.pem",
                  "SSLKEY client.key", "KEYPASSWD open sesame", "CAINFO authority.pem",
                  "CRLFILE revoked.crl", "SSL_VERIFYHOST 0", "SSL_VERIFYPEER 0",
                  "SSL_SESSIONID_CACHE 0"));
}

// libcurl counts milliseconds in 31 bits, and would take more for no limit.
TEST_F(Libcurl, IsGivenTheLongestTimeOutThatItTakes) {
  for (const auto& [seconds, given] : {std::pair{uint64_t{2147483}, "TIMEOUT 2147483"},
                                       std::pair{uint64_t{2147484}, "TIMEOUT 2147483"},
                                       std::pair{UINT64_MAX, "TIMEOUT 2147483"}}) {
    libcurlSeam() = {};
    table_.setTimeoutSec(config_, seconds);
    ASSERT_EQ(createContext(), ORB_OK);
    EXPECT_THAT(libcurlSeam().options, Contains(given));
    table_.destroyContext(context_);
    context_ = nullptr;
  }
}

TEST_F(Libcurl, IsGivenEachTextByItself) {
  table_.setClientPrivateKeyPassword(config_, "open sesame");
  table_.setCRLFile(config_, "revoked.crl");
  table_.setCRLFile(config_, "");
  ASSERT_EQ(createContext(), ORB_OK);
  EXPECT_THAT(
      libcurlSeam().options,
      ElementsAre("HTTP_VERSION 2", "TIMEOUT 120", "KEYPASSWD open sesame",
                  "SSL_VERIFYHOST 2", "SSL_VERIFYPEER 1", "SSL_SESSIONID_CACHE 0"));
}

TEST_F(Libcurl, IsNotGivenATextThatWasSetToNothing) {
  using Setter = void (*)(orbClientConfig*, const char*);
  const Setter setters[] = {table_.setClientCertFile, table_.setClientPrivateKeyFile,
                            table_.setClientPrivateKeyPassword, table_.setServerCertFile,
                            table_.setCRLFile};
  for (const Setter set : setters) set(config_, "x");
  std::vector<std::string> texts{"SSLCERT x", "SSLKEY x", "KEYPASSWD x", "CAINFO x",
                                 "CRLFILE x"};
  for (const Setter set : setters) {
    set(config_, "");
    texts.erase(texts.begin());
    std::vector<std::string> options{"HTTP_VERSION 2", "TIMEOUT 120"};
    options.insert(options.end(), texts.begin(), texts.end());
    options.insert(options.end(),
                   {"SSL_VERIFYHOST 2", "SSL_VERIFYPEER 1", "SSL_SESSIONID_CACHE 0"});
    libcurlSeam() = {};
    ASSERT_EQ(createContext(), ORB_OK);
    EXPECT_EQ(libcurlSeam().options, options);
    table_.destroyContext(context_);
    context_ = nullptr;
  }
}

TEST_F(Libcurl, IsGivenUrlHeadersBodyAndCallbacksInEachCall) {
  ASSERT_EQ(createContext(), ORB_OK);
  std::vector<std::string> options;
  for (int i = 0; i < 3; ++i) {
    // The first call connected, so that the next one starts with a fresh handle.
    if (i == 1)
      options = {"BUFFERSIZE 16384",     "UPLOAD_BUFFERSIZE 65536", "HTTP_VERSION 2",
                 "TIMEOUT 120",          "SSL_VERIFYHOST 2",        "SSL_VERIFYPEER 1",
                 "SSL_SESSIONID_CACHE 0"};
    options.insert(options.end(),
                   {"POSTFIELDS", "POSTFIELDSIZE 2", "URL " + server_.url(), "HTTPHEADER",
                    "HEADERFUNCTION", "HEADERDATA", "WRITEFUNCTION", "WRITEDATA"});
    libcurlSeam() = {};
    ASSERT_EQ(call(), ORB_OK);
    EXPECT_EQ(libcurlSeam().options, options);
    options.clear();
    EXPECT_THAT(libcurlSeam().listLines,
                ElementsAre("Content-Type: application/x-google-protobuf",
                            "User-Agent: Corvane C client", "Expect: "));
  }
}

TEST_F(Libcurl, ThatGivesNoHandleFailsTheContext) {
  libcurlSeam().refusesHandles = true;
  EXPECT_EQ(createContext(), ORB_FAILURE);
  ASSERT_NE(context_, nullptr);
  EXPECT_EQ(lastMessage(), "Failed initialization");
  libcurlSeam().refusesHandles = false;
  EXPECT_EQ(call(), ORB_FAILURE);
  EXPECT_EQ(lastMessage(), "The client context has no client.");
}

TEST_F(Libcurl, ThatRefusesASettingFailsTheContext) {
  table_.setCRLFile(config_, "revoked.crl");
  for (const CURLoption option :
       {CURLOPT_HTTP_VERSION, CURLOPT_TIMEOUT, CURLOPT_CRLFILE, CURLOPT_SSL_VERIFYHOST,
        CURLOPT_SSL_VERIFYPEER, CURLOPT_SSL_SESSIONID_CACHE}) {
    SCOPED_TRACE(option);
    libcurlSeam().refusedOption = option;
    context_ = nullptr;
    EXPECT_EQ(createContext(), ORB_FAILURE);
    ASSERT_NE(context_, nullptr);
    EXPECT_EQ(lastMessage(), "An unknown option was passed in to libcurl");
    EXPECT_EQ(call(), ORB_FAILURE);
    table_.destroyContext(context_);
  }
  context_ = nullptr;
  libcurlSeam().refusedOption.reset();
  ASSERT_EQ(createContext(), ORB_OK);
  EXPECT_EQ(call(), ORB_OK);
}

TEST_F(Libcurl, ThatRefusesAnOptionFailsTheCall) {
  ASSERT_EQ(createContext(), ORB_OK);
  for (const CURLoption option :
       {CURLOPT_POSTFIELDS, CURLOPT_POSTFIELDSIZE, CURLOPT_URL, CURLOPT_HTTPHEADER,
        CURLOPT_HEADERFUNCTION, CURLOPT_HEADERDATA, CURLOPT_WRITEFUNCTION,
        CURLOPT_WRITEDATA}) {
    SCOPED_TRACE(option);
    libcurlSeam().refusedOption = option;
    EXPECT_EQ(call(), ORB_FAILURE);
    EXPECT_EQ(lastMessage(), "An unknown option was passed in to libcurl");
    libcurlSeam().refusedOption.reset();
    EXPECT_EQ(call(), ORB_OK);
  }
}

TEST_F(Libcurl, ThatCannotListTheHeadersFailsTheCall) {
  ASSERT_EQ(createContext(), ORB_OK);
  for (int appended = 0; appended < 3; ++appended) {
    SCOPED_TRACE(appended);
    libcurlSeam().appendsBeforeFailure = appended;
    EXPECT_EQ(call(), ORB_FAILURE);
    EXPECT_EQ(lastMessage(), "std::bad_alloc");
    libcurlSeam().appendsBeforeFailure = -1;
    EXPECT_EQ(call(), ORB_OK);
  }
  EXPECT_EQ(server_.requests().size(), 3U);
}

TEST_F(Libcurl, FailureHasLibcurlsTextAndAfterAWriteErrorTwoSentences) {
  ASSERT_EQ(createContext(), ORB_OK);
  for (int code = 1; code < CURL_LAST; ++code) {
    SCOPED_TRACE(code);
    libcurlSeam().performResult = static_cast<CURLcode>(code);
    std::string expected = curl_easy_strerror(static_cast<CURLcode>(code));
    if (code == 23) {
      expected +=
          "\nThis might happen if response content size is larger than the response "
          "size limit."
          "\nYou can increase response size limit using setResponseSizeLimit method.";
    }
    EXPECT_EQ(call(), ORB_FAILURE);
    EXPECT_EQ(lastMessage(), expected);
  }
  libcurlSeam().performResult.reset();
  EXPECT_EQ(call(), ORB_OK);
}

TEST_F(Libcurl, StatusOutside32BitsFailsTheCall) {
  ASSERT_EQ(createContext(), ORB_OK);
  libcurlSeam().responseCode = -1;
  EXPECT_EQ(call(), ORB_FAILURE);
  EXPECT_EQ(lastMessage(), "bad numeric conversion: negative overflow");
  libcurlSeam().responseCode = 4294967296;
  EXPECT_EQ(call(), ORB_FAILURE);
  EXPECT_EQ(lastMessage(), "bad numeric conversion: positive overflow");
  libcurlSeam().responseCode = 4294967295;
  EXPECT_EQ(call(), ORB_FAILURE);
  orbErrorInfo info;
  table_.getLastErrorInfo(context_, &info);
  EXPECT_EQ(info.type, ORB_HTTP_ERROR);
  EXPECT_EQ(info.details.http.responseCode, 4294967295U);
}

TEST_F(Libcurl, StatusThatCannotBeReadFailsTheCall) {
  ASSERT_EQ(createContext(), ORB_OK);
  libcurlSeam().getinfoResult = CURLE_UNKNOWN_OPTION;
  EXPECT_EQ(call(), ORB_FAILURE);
  EXPECT_EQ(lastMessage(), "An unknown option was passed in to libcurl");
}

/// Initialisation, without a table at the start and the end.
class LibcurlGlobal : public ::testing::Test {
 protected:
  LibcurlGlobal() { libcurlSeam() = {}; }
  ~LibcurlGlobal() override {
    orbTerminate();
    libcurlSeam() = {};
  }
};

TEST_F(LibcurlGlobal, IsInitialisedWithAllAndCleanedUpOnceForATable) {
  orbInitialize();
  orbInitializeEx(ORB_CLIENT_1_1);
  orbInitializeEx(0);
  EXPECT_THAT(libcurlSeam().globalCalls, ElementsAre("init 3"));
  orbTerminate();
  orbTerminate();
  EXPECT_THAT(libcurlSeam().globalCalls, ElementsAre("init 3", "cleanup"));
}

TEST_F(LibcurlGlobal, IsLeftAloneByAnInvalidVersionAndWithoutATable) {
  EXPECT_EQ(orbInitializeEx(0), nullptr);
  orbTerminate();
  EXPECT_THAT(libcurlSeam().globalCalls, IsEmpty());
}

TEST_F(LibcurlGlobal, FailureFailsTheInitialisation) {
  libcurlSeam().globalInitResult = CURLE_FAILED_INIT;
  EXPECT_EQ(orbInitialize(), nullptr);
  EXPECT_STREQ(orbGetInitializationErrorMessage(),
               "Global initialization of QXHttpClient failed");
  orbTerminate();
  EXPECT_THAT(libcurlSeam().globalCalls, ElementsAre("init 3"));
  libcurlSeam().globalInitResult = CURLE_OK;
  EXPECT_NE(orbInitialize(), nullptr);
  EXPECT_STREQ(orbGetInitializationErrorMessage(),
               "Global initialization of QXHttpClient failed");
}

}  // namespace
}  // namespace orb::test
