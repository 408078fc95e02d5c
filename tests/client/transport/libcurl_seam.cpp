// SPDX-License-Identifier: MIT
#include "client/transport/libcurl_seam.h"

#include <dlfcn.h>

#include <cstdarg>

namespace orb::test {
namespace {

/// The function of libcurl itself.
template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

enum class Kind { kNumber, kText, kPointer };

struct KnownOption {
  CURLoption option;
  const char* name;
  Kind kind;
};

const KnownOption kOptions[] = {
    {CURLOPT_HTTP_VERSION, "HTTP_VERSION", Kind::kNumber},
    {CURLOPT_TIMEOUT, "TIMEOUT", Kind::kNumber},
    {CURLOPT_BUFFERSIZE, "BUFFERSIZE", Kind::kNumber},
    {CURLOPT_UPLOAD_BUFFERSIZE, "UPLOAD_BUFFERSIZE", Kind::kNumber},
    {CURLOPT_SSLCERT, "SSLCERT", Kind::kText},
    {CURLOPT_SSLKEY, "SSLKEY", Kind::kText},
    {CURLOPT_KEYPASSWD, "KEYPASSWD", Kind::kText},
    {CURLOPT_CAINFO, "CAINFO", Kind::kText},
    {CURLOPT_CRLFILE, "CRLFILE", Kind::kText},
    {CURLOPT_SSL_VERIFYHOST, "SSL_VERIFYHOST", Kind::kNumber},
    {CURLOPT_SSL_VERIFYPEER, "SSL_VERIFYPEER", Kind::kNumber},
    {CURLOPT_SSL_SESSIONID_CACHE, "SSL_SESSIONID_CACHE", Kind::kNumber},
    {CURLOPT_URL, "URL", Kind::kText},
    {CURLOPT_HTTPHEADER, "HTTPHEADER", Kind::kPointer},
    {CURLOPT_POSTFIELDS, "POSTFIELDS", Kind::kPointer},
    {CURLOPT_POSTFIELDSIZE, "POSTFIELDSIZE", Kind::kNumber},
    {CURLOPT_HEADERFUNCTION, "HEADERFUNCTION", Kind::kPointer},
    {CURLOPT_HEADERDATA, "HEADERDATA", Kind::kPointer},
    {CURLOPT_WRITEFUNCTION, "WRITEFUNCTION", Kind::kPointer},
    {CURLOPT_WRITEDATA, "WRITEDATA", Kind::kPointer},
};

const KnownOption* find(CURLoption option) {
  for (const KnownOption& known : kOptions) {
    if (known.option == option) return &known;
  }
  return nullptr;
}

std::string describe(const KnownOption& known, const void* value) {
  switch (known.kind) {
    case Kind::kNumber:
      return known.name + (" " + std::to_string(reinterpret_cast<long>(value)));
    case Kind::kText:
      return known.name + (" " + std::string(static_cast<const char*>(value)));
    case Kind::kPointer:
      return known.name;
  }
  return "";
}

}  // namespace

LibcurlSeam& libcurlSeam() {
  static LibcurlSeam seam;
  return seam;
}

}  // namespace orb::test

using orb::test::libcurlSeam;

extern "C" {

CURLcode curl_global_init(long flags) {
  libcurlSeam().globalCalls.push_back("init " + std::to_string(flags));
  if (libcurlSeam().globalInitResult != CURLE_OK) return libcurlSeam().globalInitResult;
  return orb::test::real<CURLcode(long)>("curl_global_init")(flags);
}

void curl_global_cleanup(void) {
  libcurlSeam().globalCalls.push_back("cleanup");
  orb::test::real<void()>("curl_global_cleanup")();
}

CURL* curl_easy_init(void) {
  if (libcurlSeam().refusesHandles) return nullptr;
  return orb::test::real<CURL*()>("curl_easy_init")();
}

// Every option is passed in one register: a pointer carries the numbers as well.
CURLcode curl_easy_setopt(CURL* handle, CURLoption option, ...) {
  va_list arguments;
  va_start(arguments, option);
  void* const value = va_arg(arguments, void*);
  va_end(arguments);
  const orb::test::KnownOption* known = orb::test::find(option);
  libcurlSeam().options.push_back(known == nullptr ? "unknown " + std::to_string(option)
                                                   : orb::test::describe(*known, value));
  if (libcurlSeam().refusedOption == option) return CURLE_UNKNOWN_OPTION;
  return orb::test::real<CURLcode(CURL*, CURLoption, ...)>("curl_easy_setopt")(
      handle, option, value);
}

curl_slist* curl_slist_append(curl_slist* list, const char* line) {
  if (libcurlSeam().appendsBeforeFailure == 0) return nullptr;
  --libcurlSeam().appendsBeforeFailure;
  libcurlSeam().listLines.emplace_back(line);
  return orb::test::real<curl_slist*(curl_slist*, const char*)>("curl_slist_append")(
      list, line);
}

CURLcode curl_easy_perform(CURL* handle) {
  if (libcurlSeam().performResult) return *libcurlSeam().performResult;
  return orb::test::real<CURLcode(CURL*)>("curl_easy_perform")(handle);
}

CURLcode curl_easy_getinfo(CURL* handle, CURLINFO info, ...) {
  va_list arguments;
  va_start(arguments, info);
  void* const result = va_arg(arguments, void*);
  va_end(arguments);
  if (libcurlSeam().getinfoResult != CURLE_OK) return libcurlSeam().getinfoResult;
  if (info == CURLINFO_RESPONSE_CODE && libcurlSeam().responseCode) {
    *static_cast<long*>(result) = *libcurlSeam().responseCode;
    return CURLE_OK;
  }
  return orb::test::real<CURLcode(CURL*, CURLINFO, ...)>("curl_easy_getinfo")(
      handle, info, result);
}

}  // extern "C"
