// SPDX-License-Identifier: MIT
#include "torture/threads/exchange.h"

#include <utility>

namespace orb::torture {

void Mailbox::putShared(test::Array array) {
  const std::lock_guard<std::mutex> lock(mutex_);
  mail_.shared.push_back(std::move(array));
}

void Mailbox::putOwn(test::Array array) {
  const std::lock_guard<std::mutex> lock(mutex_);
  mail_.own.push_back(std::move(array));
}

Mail Mailbox::takeAll() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(mail_, Mail{});
}

std::unique_ptr<test::Caller> ContextPool::swap(std::unique_ptr<test::Caller> context) {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::swap(context, waiting_);
  return context ? std::move(context) : std::make_unique<test::Caller>();
}

}  // namespace orb::torture
