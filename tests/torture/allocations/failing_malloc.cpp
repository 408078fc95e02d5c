// SPDX-License-Identifier: MIT
#include "torture/allocations/failing_malloc.h"

#include <execinfo.h>
#include <link.h>

#include <algorithm>
#include <bitset>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

// What the C library's own functions of these names call.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace orb::torture {
namespace {

struct Plan {
  bool active;
  bool andLater;
  std::size_t nth;
  std::size_t calls;
  std::size_t failures;
};

thread_local Plan plan{};

bool mustFail() {
  if (!plan.active) return false;
  ++plan.calls;
  if (plan.calls != plan.nth && !(plan.andLater && plan.calls > plan.nth)) return false;
  ++plan.failures;
  errno = ENOMEM;
  return true;
}

constexpr int kFrames = 12;
constexpr std::size_t kEntries = std::size_t{1} << 16;

/// A watched block. Nothing here may allocate: a table of fixed size, open addressing.
struct Entry {
  void* block;  // null: free; kGone: was freed
  std::size_t size;
  int frames;  // 1: not traced
  void* stack[kFrames];
};

void* const kGone = reinterpret_cast<void*>(1);

struct Watch {
  bool active;
  bool watchesNew;
  bool busy;
};

thread_local Watch watch{};
// Sizes of OpenSSL's blocks to trace; the last stands for all above. It allocates most of
// what a call over TLS does: tracing all that would take longer than all the rest.
std::bitset<4096> traced;
Entry entries[kEntries];

/// Where OpenSSL's two libraries lie.
struct Range {
  std::uintptr_t begin;
  std::uintptr_t end;
};
Range openSsl[2];

int noteOpenSsl(dl_phdr_info* info, std::size_t, void*) {
  const bool isCrypto = std::strstr(info->dlpi_name, "/libcrypto.so") != nullptr;
  if (!isCrypto && std::strstr(info->dlpi_name, "/libssl.so") == nullptr) return 0;
  Range range{UINTPTR_MAX, 0};
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& part = info->dlpi_phdr[i];
    if (part.p_type != PT_LOAD) continue;
    const std::uintptr_t begin = info->dlpi_addr + part.p_vaddr;
    range.begin = std::min(range.begin, begin);
    range.end = std::max(range.end, begin + part.p_memsz);
  }
  openSsl[isCrypto ? 0 : 1] = range;
  return 0;
}

bool isOfOpenSsl(const void* caller) {
  const auto address = reinterpret_cast<std::uintptr_t>(caller);
  for (const Range& range : openSsl) {
    if (range.begin <= address && address < range.end) return true;
  }
  return false;
}

std::size_t kindOf(std::size_t size) { return std::min(size, traced.size() - 1); }

std::size_t firstPlaceOf(const void* block) {
  return (reinterpret_cast<std::uintptr_t>(block) >> 4) * 2654435761U % kEntries;
}

void remove(const void* block) {
  if (!watch.active || block == nullptr) return;
  std::size_t place = firstPlaceOf(block);
  while (entries[place].block != nullptr) {
    if (entries[place].block == block) {
      entries[place].block = kGone;
      return;
    }
    place = (place + 1) % kEntries;
  }
}

void add(void* block, std::size_t size, void* caller) {
  if (!watch.active || !watch.watchesNew || watch.busy || block == nullptr) return;
  remove(block);  // another thread may have freed a block that lay here
  std::size_t place = firstPlaceOf(block);
  while (entries[place].block != nullptr && entries[place].block != kGone) {
    place = (place + 1) % kEntries;
  }
  Entry& entry = entries[place];
  entry.block = block;
  entry.size = size;
  entry.frames = 1;
  entry.stack[0] = caller;
  if (isOfOpenSsl(caller) && !traced[kindOf(size)]) return;
  watch.busy = true;
  entry.frames = ::backtrace(entry.stack, kFrames);
  watch.busy = false;
}

}  // namespace

FailingMalloc::FailingMalloc(std::size_t nth, bool andLater) {
  plan = {true, andLater, nth, 0, 0};
}

void FailingMalloc::stop() { plan.active = false; }

std::size_t FailingMalloc::calls() const { return plan.calls; }

std::size_t FailingMalloc::failures() const { return plan.failures; }

WatchedBlocks::WatchedBlocks(const std::vector<Block>& likeThese) {
  ::dl_iterate_phdr(noteOpenSsl, nullptr);
  for (Entry& entry : entries) entry.block = nullptr;
  traced.reset();
  for (const Block& block : likeThese) traced.set(kindOf(block.size));
  watch = {true, true, false};
}

WatchPause::WatchPause() : before_(watch.watchesNew) { watch.watchesNew = false; }

WatchPause::~WatchPause() { watch.watchesNew = before_; }

std::vector<Block> WatchedBlocks::stop() {
  std::vector<Block> left;
  if (!watch.active) return left;
  watch.active = false;
  for (const Entry& entry : entries) {
    if (entry.block == nullptr || entry.block == kGone) continue;
    left.push_back(
        {entry.size, {entry.stack, entry.stack + entry.frames}, entry.frames > 1});
  }
  return left;
}

}  // namespace orb::torture

using orb::torture::add;
using orb::torture::mustFail;

extern "C" {

void* malloc(std::size_t size) noexcept {
  if (mustFail()) return nullptr;
  void* block = __libc_malloc(size);
  add(block, size, __builtin_return_address(0));
  return block;
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  if (mustFail()) return nullptr;
  void* block = __libc_calloc(count, size);
  add(block, count * size, __builtin_return_address(0));
  return block;
}

void* realloc(void* block, std::size_t size) noexcept {
  if (mustFail()) return nullptr;
  void* moved = __libc_realloc(block, size);
  if (moved != nullptr || size == 0) orb::torture::remove(block);
  add(moved, size, __builtin_return_address(0));
  return moved;
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
  if (mustFail()) return nullptr;
  void* block = __libc_memalign(alignment, size);
  add(block, size, __builtin_return_address(0));
  return block;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
  *block = memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}

void free(void* block) noexcept {
  orb::torture::remove(block);
  __libc_free(block);
}

}  // extern "C"
