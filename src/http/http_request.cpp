// SPDX-License-Identifier: MIT
#include "http/http_request.h"

#include <boost/numeric/conversion/cast.hpp>
#include <exception>
#include <new>
#include <utility>

#include "http/http_response.h"

namespace orb {
namespace {

/// A response under way. libcurl's callbacks are C frames that no exception may cross:
/// one is kept here, the transfer is stopped by a short count, and the exception thrown
/// on afterwards.
struct Transfer {
  HttpResponse& response;
  std::exception_ptr failure;
};

/// Runs the body of a callback; gives the count that libcurl expects, or 0 to stop it.
template <class Body>
size_t guardedCallback(Transfer& transfer, size_t count, Body&& body) {
  try {
    return body(transfer.response) ? count : 0;
  } catch (...) {
    transfer.failure = std::current_exception();
    return 0;
  }
}

size_t onHeader(char* line, size_t size, size_t count, void* transfer) {
  const size_t length = size * count;
  return guardedCallback(*static_cast<Transfer*>(transfer), length,
                         [&](HttpResponse& response) {
                           response.addHeader(std::string(line, length));
                           return true;
                         });
}

size_t onBody(char* bytes, size_t size, size_t count, void* transfer) {
  const size_t length = size * count;
  return guardedCallback(
      *static_cast<Transfer*>(transfer), length,
      [&](HttpResponse& response) { return response.appendBody(bytes, length); });
}

size_t onRead(char* target, size_t size, size_t count, void* body) {
  return static_cast<BodySource*>(body)->read(reinterpret_cast<uint8_t*>(target),
                                              size * count);
}

// libcurl only ever goes back to the start of a body.
int onSeek(void* body, curl_off_t offset, int origin) {
  if (offset != 0 || origin != SEEK_SET) return CURL_SEEKFUNC_FAIL;
  static_cast<BodySource*>(body)->rewind();
  return CURL_SEEKFUNC_OK;
}

struct FreeList {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using HeaderList = std::unique_ptr<curl_slist, FreeList>;

constexpr const char* kHeaderLines[] = {
    "Content-Type: application/x-google-protobuf",
    "User-Agent: Corvane C client",
    // Empty: libcurl then sends no Expect of its own and never waits for a 100.
    "Expect: ",
};

HeaderList headerList() {
  HeaderList list;
  for (const char* line : kHeaderLines) {
    curl_slist* longer = curl_slist_append(list.get(), line);
    if (longer == nullptr) throw std::bad_alloc();
    static_cast<void>(list.release());
    list.reset(longer);
  }
  return list;
}

std::string failureText(CURLcode code) {
  std::string text = curl_easy_strerror(code);
  if (code == CURLE_WRITE_ERROR) {
    text +=
        "\nThis might happen if response content size is larger than the response size "
        "limit."
        "\nYou can increase response size limit using setResponseSizeLimit method.";
  }
  return text;
}

}  // namespace

HttpRequest::HttpRequest(CurlHandle handle, const std::string& url,
                         uint32_t responseSizeLimit,
                         boost::shared_ptr<KeptBlock> bodyBlock)
    : handle_(std::move(handle)),
      url_(url),
      responseSizeLimit_(responseSizeLimit),
      bodyBlock_(std::move(bodyBlock)) {}

void HttpRequest::setBody(const void* data, uint64_t length) {
  setOption(handle_, CURLOPT_POSTFIELDS, data);
  setOption(handle_, CURLOPT_POSTFIELDSIZE, boost::numeric_cast<long>(length));
}

void HttpRequest::setBody(BodySource& body) {
  setBody(nullptr, body.size());
  setOption(handle_, CURLOPT_READFUNCTION, &onRead);
  setOption(handle_, CURLOPT_READDATA, static_cast<void*>(&body));
  setOption(handle_, CURLOPT_SEEKFUNCTION, &onSeek);
  setOption(handle_, CURLOPT_SEEKDATA, static_cast<void*>(&body));
}

std::unique_ptr<Response> HttpRequest::perform() {
  setOption(handle_, CURLOPT_URL, url_.c_str());
  // The handle keeps pointing at the list after this call; the next one sets its own.
  const HeaderList list = headerList();
  setOption(handle_, CURLOPT_HTTPHEADER, list.get());

  auto response = std::make_unique<HttpResponse>(responseSizeLimit_, bodyBlock_->take());
  Transfer transfer{*response, nullptr};
  setOption(handle_, CURLOPT_HEADERFUNCTION, &onHeader);
  setOption(handle_, CURLOPT_HEADERDATA, static_cast<void*>(&transfer));
  setOption(handle_, CURLOPT_WRITEFUNCTION, &onBody);
  setOption(handle_, CURLOPT_WRITEDATA, static_cast<void*>(&transfer));

  const CURLcode code = curl_easy_perform(handle_.get());
  if (transfer.failure) std::rethrow_exception(transfer.failure);
  if (code != CURLE_OK) throw std::runtime_error(failureText(code));

  long status = 0;
  checkCurl(curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status));
  response->setStatusCode(boost::numeric_cast<uint32_t>(status));
  return response;
}

}  // namespace orb
