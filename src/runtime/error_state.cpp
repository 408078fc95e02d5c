// SPDX-License-Identifier: MIT
#include "runtime/error_state.h"

#include <new>
#include <utility>

namespace orb {
namespace {

/// Null when there are no frames, and when there is no memory for them.
orbStackFrame* newStack(const client::KALDEX_Error& error) {
  const int depth = error.stack_size();
  if (depth == 0) return nullptr;
  auto* stack = new (std::nothrow) orbStackFrame[static_cast<size_t>(depth)];
  for (int i = 0; stack != nullptr && i < depth; ++i) {
    const client::KALDEX_Error::Stack_Frame& frame = error.stack(i);
    stack[i] = {frame.file().c_str(), frame.name().c_str(), frame.line()};
  }
  return stack;
}

}  // namespace

void ErrorState::recordHttpError(uint32_t status,
                                 std::string&& responseMessage) noexcept {
  type_ = ORB_HTTP_ERROR;
  summary_ = "A non-200 HTTP response was received";
  httpStatus_ = status;
  httpResponseMessage_ = std::move(responseMessage);
  releaseServerError();
}

void ErrorState::recordServerError(client::KALDEX_Error& error) noexcept {
  type_ = ORB_KALDEX_ERROR;
  summary_ = "Error was thrown while executing KALDEX code";
  serverError_.Swap(&error);
}

void ErrorState::recordGenericError(const std::exception& failure) noexcept {
  type_ = ORB_GENERIC_ERROR;
  summary_ = "A generic error was thrown";
  genericFailure_ = std::current_exception();
  genericMessage_ = failure.what();
  releaseServerError();
}

void ErrorState::describe(orbErrorInfo& info) const noexcept {
  info.type = type_;
  info.message = summary_;
  switch (type_) {
    case ORB_HTTP_ERROR:
      info.details.http.responseCode = httpStatus_;
      info.details.http.responseMessage = httpResponseMessage_.c_str();
      break;
    case ORB_KALDEX_ERROR:
      info.details.kaldex.message = serverError_.message().c_str();
      info.details.kaldex.identifier = serverError_.identifier().c_str();
      info.details.kaldex.stackDepth = static_cast<uint64_t>(serverError_.stack_size());
      info.details.kaldex.stack = newStack(serverError_);
      break;
    case ORB_GENERIC_ERROR:
      info.details.generic.message = genericMessage_;
      break;
  }
}

void releaseStack(orbErrorInfo& info) noexcept {
  if (info.type != ORB_KALDEX_ERROR || info.details.kaldex.stackDepth == 0) return;
  delete[] info.details.kaldex.stack;
  info.details.kaldex.stack = nullptr;
}

}  // namespace orb
