// SPDX-License-Identifier: MIT
#include "torture/ceilings/client.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace orb::torture {
namespace {

using test::Array;

/// Looks at every byte, which no compiler drops.
void look(const void* first, std::size_t bytes) {
  const auto* byte = static_cast<const volatile unsigned char*>(first);
  for (std::size_t i = 0; first != nullptr && i < bytes; ++i) static_cast<void>(byte[i]);
}

/// The shapes hold what their extents say.
void lookAtData(orbArray a) {
  const std::size_t count = orbIsSparse(a) ? orbGetNzmax(a) : orbGetNumberOfElements(a);
  const std::size_t bytes = orbGetElementSize(a) * count;
  look(orbGetDimensions(a), orbGetNumberOfDimensions(a) * sizeof(std::size_t));
  look(orbGetData(a), bytes);
  look(orbGetImagData(a), bytes);
  look(orbGetLogicals(a), bytes);
  look(orbGetChars(a), bytes);
  look(orbGetIr(a), orbIsSparse(a) ? count * sizeof(std::size_t) : 0);
  orbFree(orbArrayToString(a));
}

int depthOf(orbArray a);

int depthOfElement(const Array& element, int deepest) {
  const int depth = element == nullptr ? -1 : depthOf(element);
  return std::max(deepest, depth < 0 ? -1 : depth + 1);
}

int depthOf(orbArray a) {
  const std::size_t count = orbGetNumberOfElements(a);
  int deepest = -1;
  if (orbIsCell(a)) {
    for (std::size_t i = 0; i < count; ++i) {
      deepest = depthOfElement(Array(orbGetCell(a, i)), deepest);
    }
  } else if (orbIsStruct(a)) {
    // A name is looked for from the front, which takes long among very many.
    const int fields = std::min(orbGetNumberOfFields(a), 1000);
    for (std::size_t i = 0; i < count; ++i) {
      for (int field = 0; field < fields; ++field) {
        deepest = depthOfElement(Array(orbGetFieldByNumber(a, i, field)), deepest);
      }
    }
  } else {
    lookAtData(a);
    deepest = orbIsEmpty(a) ? -1 : 0;
  }
  return deepest;
}

}  // namespace

Client::Client(const std::string& authority) : runtime_(orbInitializeEx(ORB_CLIENT_1_1)) {
  orbClientConfig* config = nullptr;
  if (runtime_ == nullptr || runtime_->createConfig(&config) != ORB_OK) std::abort();
  runtime_->setServerCertFile(config, authority.c_str());
  if (runtime_->createContext(&context_, config) != ORB_OK) std::abort();
  runtime_->destroyConfig(config);
}

Client::~Client() {
  dropOutputs();
  runtime_->destroyContext(context_);
}

orbStatus Client::call(const std::string& url, std::uint32_t outputs) {
  outputs_.assign(outputs, nullptr);
  return runtime_->feval(context_, url.c_str(), outputs, outputs_.data(), 0, nullptr);
}

int Client::readEverything() {
  orbErrorInfo error;
  runtime_->getLastErrorInfo(context_, &error);
  runtime_->destroyLastErrorInfo(&error);
  int depth = -1;
  for (const orbArray output : outputs_) {
    if (output != nullptr) depth = std::max(depth, depthOf(output));
  }
  return depth;
}

void Client::dropOutputs() {
  std::for_each(outputs_.begin(), outputs_.end(), orbDestroyArray);
  outputs_ = {};
}

}  // namespace orb::torture
