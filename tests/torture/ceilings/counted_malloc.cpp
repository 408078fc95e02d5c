// SPDX-License-Identifier: MIT
#include "torture/ceilings/counted_malloc.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<size_t> held{0};
std::atomic<size_t> peak{0};

size_t sizeOf(void* block) {
  return block == nullptr ? 0 : malloc_usable_size(block) + sizeof(size_t);
}

void* taken(void* block) {
  const size_t now = held += sizeOf(block);
  size_t highest = peak;
  while (now > highest && !peak.compare_exchange_weak(highest, now)) {
  }
  return block;
}

}  // namespace

extern "C" {

void* malloc(size_t size) { return taken(__libc_malloc(size)); }

void* calloc(size_t count, size_t size) { return taken(__libc_calloc(count, size)); }

void* memalign(size_t alignment, size_t size) {
  return taken(__libc_memalign(alignment, size));
}

void* aligned_alloc(size_t alignment, size_t size) { return memalign(alignment, size); }

int posix_memalign(void** block, size_t alignment, size_t size) {
  void* found = memalign(alignment, size);
  if (found == nullptr) return ENOMEM;
  *block = found;
  return 0;
}

void* realloc(void* block, size_t size) {
  const size_t before = sizeOf(block);
  void* grown = __libc_realloc(block, size);
  if (grown == nullptr && size != 0) return nullptr;
  if (grown == block) held -= before;
  taken(grown);
  if (grown != block) held -= before;
  return grown;
}

void free(void* block) {
  held -= sizeOf(block);
  __libc_free(block);
}

}  // extern "C"

namespace orb::torture {

std::size_t heldBytes() { return held; }
std::size_t peakBytes() { return peak; }
void restartPeak() { peak = held.load(); }

}  // namespace orb::torture
