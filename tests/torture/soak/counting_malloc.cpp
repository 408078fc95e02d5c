// SPDX-License-Identifier: MIT
#include "torture/soak/counting_malloc.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

// The allocator of the C library under its second names.
extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);
void* __libc_memalign(std::size_t alignment, std::size_t bytes);
void __libc_free(void* block);
}

namespace orb::torture {
namespace {

std::atomic<std::int64_t> live{0};

void* counted(void* block) {
  if (block != nullptr) live.fetch_add(1, std::memory_order_relaxed);
  return block;
}

}  // namespace

std::int64_t liveBlocks() { return live; }

}  // namespace orb::torture

extern "C" {

void* malloc(std::size_t bytes) { return orb::torture::counted(__libc_malloc(bytes)); }

void* calloc(std::size_t count, std::size_t bytes) {
  return orb::torture::counted(__libc_calloc(count, bytes));
}

void* realloc(void* block, std::size_t bytes) {
  if (block == nullptr) return malloc(bytes);
  void* moved = __libc_realloc(block, bytes);
  if (moved == nullptr && bytes == 0) orb::torture::live.fetch_sub(1);
  return moved;
}

void* memalign(std::size_t alignment, std::size_t bytes) {
  return orb::torture::counted(__libc_memalign(alignment, bytes));
}

void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
  return memalign(alignment, bytes);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t bytes) {
  void* made = memalign(alignment, bytes);
  if (made == nullptr) return ENOMEM;
  *block = made;
  return 0;
}

void free(void* block) {
  if (block == nullptr) return;
  orb::torture::live.fetch_sub(1, std::memory_order_relaxed);
  __libc_free(block);
}

}  // extern "C"
