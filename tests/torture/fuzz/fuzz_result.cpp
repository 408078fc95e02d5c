// SPDX-License-Identifier: MIT
// Receives bytes as the body of a reply.
#include <google/protobuf/stubs/logging.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "torture/fuzz/replies.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // The message library would write a line for every name that is not UTF-8.
  google::protobuf::SetLogHandler(nullptr);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  orb::torture::tryReply(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}
