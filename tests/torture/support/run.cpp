// SPDX-License-Identifier: MIT
#include "torture/support/run.h"

#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace orb::torture {
namespace {

bool isNumber(const char* text, std::uint64_t& number) {
  char* end = nullptr;
  errno = 0;
  number = std::strtoull(text, &end, 10);
  return errno == 0 && end != text && *end == '\0';
}

}  // namespace

Run::Run(int argc, char** argv, std::uint64_t usualCount)
    : program_(argv[0]),
      count_(usualCount),
      end_(std::chrono::steady_clock::time_point::max()) {
  for (int i = 1; i < argc; i += 2) {
    const std::string_view name = argv[i];
    std::uint64_t number = 0;
    const bool valid = i + 1 < argc && isNumber(argv[i + 1], number);
    if (valid && name == "--count") {
      count_ = number;
    } else if (valid && name == "--seed") {
      seed_ = number;
    } else if (valid && name == "--seconds") {
      end_ = std::chrono::steady_clock::now() + std::chrono::seconds(number);
    } else {
      std::cerr << "usage: " << program_ << " [--count N] [--seed N] [--seconds N]\n";
      std::exit(2);
    }
  }
}

bool Run::wants(std::uint64_t done) const {
  return done < count_ && std::chrono::steady_clock::now() < end_;
}

void Run::finding(const std::string& what, const std::string& replayArguments) {
  const std::lock_guard<std::mutex> lock(mutex_);
  ++findings_;
  std::cout << "finding: " << what << "\nreplay: " << program_ << ' ' << replayArguments
            << std::endl;
}

int Run::finish(const std::string& reached) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::cout << "reached: " << reached << "; " << grouped(findings_) << " findings"
            << std::endl;
  return findings_ == 0 ? 0 : 1;
}

std::string grouped(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t left = text.size(); left > 3;) text.insert(left -= 3, 1, ',');
  return text;
}

}  // namespace orb::torture
