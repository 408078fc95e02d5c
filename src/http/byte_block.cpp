// SPDX-License-Identifier: MIT
#include "http/byte_block.h"

#include <new>

namespace orb {
namespace {

// Blocks up to this size are kept whatever is used of them.
constexpr size_t kSmallBytes = size_t{1} << 20;
constexpr size_t kFarLarger = 16;

}  // namespace

void ByteBlock::reserve(size_t capacity, size_t used) {
  if (capacity <= capacity_) return;
  if (used == 0) *this = ByteBlock();  // realloc() would copy what nobody needs
  void* grown = std::realloc(bytes_.get(), capacity);
  if (grown == nullptr) throw std::bad_alloc();
  static_cast<void>(bytes_.release());
  bytes_.reset(static_cast<uint8_t*>(grown));
  capacity_ = capacity;
}

void ByteBlock::trim(size_t used) {
  const bool isFarLarger = capacity_ > kSmallBytes && capacity_ / kFarLarger > used;
  if (capacity_ > kKeptBytes || isFarLarger) *this = ByteBlock();
}

}  // namespace orb
