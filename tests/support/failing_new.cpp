// SPDX-License-Identifier: MIT
#include "support/failing_new.h"

#include <cstdlib>
#include <new>

namespace orb::test {
namespace {

struct Plan {
  bool active;
  size_t nth;
  bool andLater;
  size_t leastBytes;
  size_t calls;
  bool hasFailed;
  size_t releases;
};

thread_local Plan plan{};

bool mustFail(size_t size) {
  if (!plan.active || size < plan.leastBytes) return false;
  ++plan.calls;
  if (plan.calls != plan.nth && !(plan.andLater && plan.calls > plan.nth)) return false;
  plan.hasFailed = true;
  return true;
}

void* allocate(size_t size) noexcept {
  if (mustFail(size)) return nullptr;
  return std::malloc(size == 0 ? 1 : size);
}

void* allocateOrThrow(size_t size) {
  void* memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void release(void* memory) noexcept {
  if (memory != nullptr) ++plan.releases;
  std::free(memory);
}

}  // namespace

FailingNew::FailingNew(size_t nth, bool andLater, size_t leastBytes) {
  plan = {true, nth, andLater, leastBytes, 0, false, 0};
}

size_t FailingNew::calls() const { return plan.calls; }

size_t FailingNew::releases() const { return plan.releases; }

bool FailingNew::stop() {
  plan.active = false;
  return plan.hasFailed;
}

}  // namespace orb::test

using orb::test::allocate;
using orb::test::allocateOrThrow;
using orb::test::release;

void* operator new(size_t size) { return allocateOrThrow(size); }
void* operator new[](size_t size) { return allocateOrThrow(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, size_t) noexcept { release(memory); }
void operator delete[](void* memory, size_t) noexcept { release(memory); }
