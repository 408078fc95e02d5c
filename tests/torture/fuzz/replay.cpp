// SPDX-License-Identifier: MIT
// Runs the files of the folders given through a fuzzer's target, without the fuzzer.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int*, char***);

namespace {

std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

int main(int argc, char** argv) {
  if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&argc, &argv);
  int files = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& file : std::filesystem::directory_iterator(argv[i])) {
      std::cout << file.path().string() << std::endl;  // a crash is about the last one
      const std::string bytes = contentOf(file.path());
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()),
                             bytes.size());
      ++files;
    }
  }
  return files == 0 ? 1 : 0;
}
