// SPDX-License-Identifier: MIT
#include "unit/http/fake_curl.h"

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace orb::test {

FakeCurl& fakeCurl() {
  static FakeCurl curl;
  return curl;
}

namespace {

using Callback = size_t (*)(char*, size_t, size_t, void*);

constexpr CURLoption kTexts[] = {CURLOPT_SSLCERT, CURLOPT_SSLKEY,  CURLOPT_KEYPASSWD,
                                 CURLOPT_CAINFO,  CURLOPT_CRLFILE, CURLOPT_URL};

std::string valueOf(CURLoption option, va_list arguments) {
  if (option < CURLOPTTYPE_OBJECTPOINT) return std::to_string(va_arg(arguments, long));
  if (std::find(std::begin(kTexts), std::end(kTexts), option) != std::end(kTexts)) {
    return va_arg(arguments, const char*);
  }
  fakeCurl().pointers[option] = va_arg(arguments, const void*);
  return "";
}

void* pointerOf(CURLoption option) {
  return const_cast<void*>(fakeCurl().pointers[option]);
}

/// Whether the callback took all pieces. Libcurl's own frames let no exception through.
bool deliver(std::vector<std::string>& pieces, CURLoption function,
             CURLoption data) noexcept {
  const auto callback = reinterpret_cast<Callback>(pointerOf(function));
  const size_t unit = fakeCurl().unitSize;
  return std::all_of(pieces.begin(), pieces.end(), [&](std::string& piece) {
    return callback(piece.data(), unit, piece.size() / unit, pointerOf(data)) ==
           piece.size();
  });
}

}  // namespace

extern "C" {

CURLcode curl_global_init(long flags) {
  fakeCurl().globalInitFlags.push_back(flags);
  return fakeCurl().globalResult;
}

void curl_global_cleanup(void) { ++fakeCurl().globalCleanups; }

CURL* curl_easy_init(void) {
  if (!fakeCurl().hasHandle) return nullptr;
  ++fakeCurl().handles;
  return &fakeCurl();
}

void curl_easy_cleanup(CURL*) { --fakeCurl().handles; }

void curl_easy_reset(CURL*) { ++fakeCurl().resets; }

CURLcode curl_easy_setopt(CURL*, CURLoption option, ...) {
  FakeCurl& curl = fakeCurl();
  va_list arguments;
  va_start(arguments, option);
  curl.settings.emplace_back(option, valueOf(option, arguments));
  va_end(arguments);
  return curl.settings.size() == curl.refusedSetting ? curl.refusal : CURLE_OK;
}

CURLcode curl_easy_perform(CURL*) {
  FakeCurl& curl = fakeCurl();
  std::vector<std::string>& sent = curl.sentHeaders.emplace_back();
  for (auto* line = static_cast<curl_slist*>(pointerOf(CURLOPT_HTTPHEADER));
       line != nullptr; line = line->next) {
    sent.push_back(line->data);
  }
  if (!deliver(curl.headers, CURLOPT_HEADERFUNCTION, CURLOPT_HEADERDATA) ||
      !deliver(curl.chunks, CURLOPT_WRITEFUNCTION, CURLOPT_WRITEDATA)) {
    return CURLE_WRITE_ERROR;
  }
  return curl.result;
}

CURLcode curl_easy_getinfo(CURL*, CURLINFO info, ...) {
  va_list arguments;
  va_start(arguments, info);
  if (info == CURLINFO_RESPONSE_CODE) *va_arg(arguments, long*) = fakeCurl().status;
  if (info == CURLINFO_NUM_CONNECTS) *va_arg(arguments, long*) = fakeCurl().connections;
  va_end(arguments);
  return fakeCurl().infoResult;
}

curl_slist* curl_slist_append(curl_slist* list, const char* text) {
  if (fakeCurl().failingAppend > 0 && --fakeCurl().failingAppend == 0) return nullptr;
  auto* added = static_cast<curl_slist*>(std::malloc(sizeof(curl_slist)));
  *added = {strdup(text), nullptr};
  if (list == nullptr) {
    ++fakeCurl().lists;
    return added;
  }
  curl_slist* last = list;
  while (last->next != nullptr) last = last->next;
  last->next = added;
  return list;
}

void curl_slist_free_all(curl_slist* list) {
  if (list == nullptr) return;
  --fakeCurl().lists;
  while (list != nullptr) {
    curl_slist* next = list->next;
    std::free(list->data);
    std::free(list);
    list = next;
  }
}

}  // extern "C"

}  // namespace orb::test
