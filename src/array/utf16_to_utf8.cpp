// SPDX-License-Identifier: MIT
#include "array/utf16_to_utf8.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace orb {
namespace {

/// A text under construction; grows by doubling.
class Utf8Text {
 public:
  explicit Utf8Text(size_t capacity) : capacity_(capacity) { reallocate(capacity); }

  void append(uint32_t codePoint) {
    if (codePoint <= 0x7F) {
      makeRoom(1);
      push(codePoint);
    } else if (codePoint <= 0x7FF) {
      makeRoom(2);
      push(0xC0 | (codePoint >> 6));
      pushTail(codePoint);
    } else if (codePoint <= 0xFFFF) {
      makeRoom(3);
      push(0xE0 | (codePoint >> 12));
      pushTail(codePoint >> 6);
      pushTail(codePoint);
    } else {
      makeRoom(4);
      push(0xF0 | (codePoint >> 18));
      pushTail(codePoint >> 12);
      pushTail(codePoint >> 6);
      pushTail(codePoint);
    }
  }

  /// The finished text, null when it cannot be shrunk.
  char* release() {
    if (used_ + 1 != capacity_) {
      char* shrunk = static_cast<char*>(std::realloc(bytes_.get(), used_ + 1));
      if (shrunk == nullptr) return nullptr;
      static_cast<void>(bytes_.release());
      bytes_.reset(shrunk);
    }
    push(0);
    return bytes_.release();
  }

 private:
  struct Free {
    void operator()(char* p) const { std::free(p); }
  };

  // Always leaves a byte for the NUL.
  void makeRoom(size_t length) {
    if (capacity_ > used_ + length) return;
    reallocate(2 * capacity_);
    capacity_ *= 2;
  }

  void reallocate(size_t capacity) {
    char* grown = static_cast<char*>(std::realloc(bytes_.get(), capacity));
    if (grown == nullptr) throw std::runtime_error("Trouble resizing UTF-8 data.");
    static_cast<void>(bytes_.release());
    bytes_.reset(grown);
  }

  void push(uint32_t byte) { bytes_.get()[used_++] = static_cast<char>(byte); }
  void pushTail(uint32_t bits) { push(0x80 | (bits & 0x3F)); }

  std::unique_ptr<char, Free> bytes_;
  size_t capacity_;
  size_t used_ = 0;
};

bool isSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xE000; }

// Wraps like any 32-bit arithmetic where the units are no proper pair.
uint32_t combine(uint32_t first, uint32_t second) {
  return (((first - 0xD800) << 10) | (second - 0xDC00)) + 0x10000;
}

}  // namespace

char* utf16ToUtf8(const char16_t* units, size_t count) {
  if (count == 0) return nullptr;
  Utf8Text text(count + 1);
  for (size_t i = 0; i < count; ++i) {
    if (!isSurrogate(units[i])) {
      text.append(units[i]);
    } else if (i + 1 == count) {
      throw std::runtime_error("Invalid UTF-16 data");
    } else {
      text.append(combine(units[i], units[i + 1]));
      ++i;
    }
  }
  return text.release();
}

}  // namespace orb
