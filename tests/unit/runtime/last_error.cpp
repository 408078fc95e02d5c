// SPDX-License-Identifier: MIT
#include "unit/runtime/last_error.h"

namespace orb::test {
namespace {

std::string detailsOf(const orbErrorInfo& info) {
  switch (info.type) {
    case ORB_HTTP_ERROR:
      return std::to_string(info.details.http.responseCode) + "|" +
             info.details.http.responseMessage;
    case ORB_KALDEX_ERROR: {
      const auto& error = info.details.kaldex;
      std::string text = std::string(error.message) + "|" + error.identifier;
      for (uint64_t i = 0; i < error.stackDepth; ++i) {
        const orbStackFrame& frame = error.stack[i];
        text += std::string("|") + frame.file + ":" + frame.name + ":" +
                std::to_string(frame.line);
      }
      return text;
    }
    case ORB_GENERIC_ERROR:
      return info.details.generic.message;
  }
  return "no such type";
}

}  // namespace

std::string lastErrorOf(orbClientContext& context) {
  orbErrorInfo info;
  getLastErrorInfo(&context, &info);
  const std::string text =
      std::to_string(info.type) + "|" + info.message + "|" + detailsOf(info);
  destroyLastErrorInfo(&info);
  return text;
}

std::string genericError(const std::string& message) {
  return "2|A generic error was thrown|" + message;
}

}  // namespace orb::test
