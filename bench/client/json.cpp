// SPDX-License-Identifier: MIT
// JSON over HTTP: text written from the program's own data at every call, a document
// parsed from the answer.
#include <memory>
#include <string>
#include <string_view>

#include "client/contender.h"
#include "client/curl_post.h"
#include "peers/json_value.h"
#include "value/checksum.h"

namespace orb::bench {
namespace {

void add(Checksum& checksum, const rapidjson::Value& object);

void addList(Checksum& checksum, const rapidjson::Value& list) {
  for (const rapidjson::Value& element : list.GetArray()) {
    if (element.IsUint64()) {
      checksum.add(element.GetUint64());
    } else if (element.IsDouble()) {
      checksum.add(element.GetDouble());
    } else if (element.IsObject()) {
      add(checksum, element);
    }
  }
}

void add(Checksum& checksum, const rapidjson::Value& object) {
  for (const auto& member : object.GetObject()) {
    if (member.value.IsArray()) {
      addList(checksum, member.value);
    } else {
      checksum.addAll(
          std::string_view(member.value.GetString(), member.value.GetStringLength()));
    }
  }
}

class Json : public Contender {
 public:
  explicit Json(uint16_t port) : post_(port, "application/json") {}

  void prepare(const Workload& workload) override {
    input_ = workload.input;
    post_.setPath(workload.function == Function::kEcho ? "/all" : "/first");
  }

  void call() override {
    rapidjson::StringBuffer request;
    writeJson(request, input_);
    reply_.clear();
    post_.perform({request.GetString(), request.GetSize()}, reply_);
    output_ = std::make_unique<rapidjson::Document>();
    parseJson(*output_, reply_.data(), reply_.size());
  }

  uint64_t read() override {
    Checksum checksum;
    add(checksum, *output_);
    return checksum.sum();
  }

  void release() override { output_.reset(); }

 private:
  CurlPost post_;
  Value input_;
  std::string reply_;  // keeps its memory between calls
  std::unique_ptr<rapidjson::Document> output_;
};

}  // namespace

std::unique_ptr<Contender> makeContender(const Endpoint& endpoint) {
  return std::make_unique<Json>(endpoint.port);
}

}  // namespace orb::bench
