// SPDX-License-Identifier: MIT
#include "torture/ceilings/painted_stack.h"

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace orb::torture {
namespace {

constexpr unsigned char kPaint = 0xA5;

/// Ends the program unless a system call succeeded.
void require(bool succeeded) {
  if (!succeeded) std::abort();
}

void* runBody(void* body) {
  (*static_cast<const std::function<void()>*>(body))();
  return nullptr;
}

}  // namespace

std::size_t usedStackOf(const std::function<void()>& body, std::size_t stackBytes) {
  const auto guardBytes = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* block = mmap(nullptr, guardBytes + stackBytes, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  require(block != MAP_FAILED && mprotect(block, guardBytes, PROT_NONE) == 0);
  auto* const stack = static_cast<unsigned char*>(block) + guardBytes;
  std::memset(stack, kPaint, stackBytes);

  pthread_attr_t attributes;
  require(pthread_attr_init(&attributes) == 0);
  require(pthread_attr_setstack(&attributes, stack, stackBytes) == 0);
  pthread_t thread;
  require(pthread_create(&thread, &attributes, &runBody,
                         const_cast<std::function<void()>*>(&body)) == 0);
  require(pthread_join(thread, nullptr) == 0);
  pthread_attr_destroy(&attributes);

  const auto* const deepest = std::find_if(
      stack, stack + stackBytes, [](unsigned char byte) { return byte != kPaint; });
  const auto used = static_cast<std::size_t>(stack + stackBytes - deepest);
  munmap(block, guardBytes + stackBytes);
  return used;
}

}  // namespace orb::torture
