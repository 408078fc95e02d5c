// SPDX-License-Identifier: MIT
// F1: what HTTP costs. A POST of ready bytes, the body of the answer collected as
// libcurl's own examples do it, nothing made of it. All ratios are to this.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include "client/ready_post.h"

namespace orb::bench {
namespace {

/// A block that every piece enlarges by its own size.
class GrowingBlock {
 public:
  ~GrowingBlock() { std::free(bytes_); }

  void append(const char* bytes, size_t count) {
    void* const larger = std::realloc(bytes_, size_ + count);
    if (larger == nullptr) throw std::bad_alloc();
    bytes_ = static_cast<char*>(larger);
    std::memcpy(bytes_ + size_, bytes, count);
    size_ += count;
  }

  std::string_view view() const { return {bytes_, size_}; }

  void release() {
    std::free(bytes_);
    bytes_ = nullptr;
    size_ = 0;
  }

 private:
  char* bytes_ = nullptr;
  size_t size_ = 0;
};

}  // namespace

std::unique_ptr<Contender> makeContender(const Endpoint& endpoint) {
  return std::make_unique<ReadyPost<GrowingBlock>>(endpoint);
}

}  // namespace orb::bench
