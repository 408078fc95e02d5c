// SPDX-License-Identifier: MIT
#include "unit/http/failing_realloc.h"

namespace orb::test {
namespace {

WatchedRealloc* watcher = nullptr;

bool mustFail(size_t size) {
  return watcher != nullptr && size > 0 && size == watcher->failingSize;
}

}  // namespace

WatchedRealloc::WatchedRealloc() { watcher = this; }

WatchedRealloc::~WatchedRealloc() { watcher = nullptr; }

// The linker turns calls into those of a __wrap_ function, and offers what was called
// before as the __real_ one.
extern "C" {

void* __real_malloc(size_t size);
void* __wrap_malloc(size_t size);
void* __real_realloc(void* memory, size_t size);
void* __wrap_realloc(void* memory, size_t size);

void* __wrap_malloc(size_t size) {
  return mustFail(size) ? nullptr : __real_malloc(size);
}

void* __wrap_realloc(void* memory, size_t size) {
  if (mustFail(size)) return nullptr;
  if (watcher != nullptr) watcher->sizes.push_back(size);
  return __real_realloc(memory, size);
}

}  // extern "C"

}  // namespace orb::test
