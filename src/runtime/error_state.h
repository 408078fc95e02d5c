// SPDX-License-Identifier: MIT
#ifndef ORB_RUNTIME_ERROR_STATE_H_
#define ORB_RUNTIME_ERROR_STATE_H_

#include <cstdint>
#include <exception>
#include <string>

#include "orb.client.KALDEXError.pb.h"
#include "orb/qxorbclient.h"

namespace orb {

/// The last failure of a context. Each kind of failure overwrites the kind, the summary
/// and its own fields. The server's error, which may be as large as a reply, is released
/// when another kind follows; the other fields keep what they had. Recording allocates
/// nothing, so it works when memory has ended.
class ErrorState {
 public:
  void recordHttpError(uint32_t status, std::string&& responseMessage) noexcept;
  /// Takes the error's contents.
  void recordServerError(client::KALDEX_Error& error) noexcept;
  /// Records the exception being handled; call it inside the handler.
  void recordGenericError(const std::exception& failure) noexcept;

  /// Fills a caller's record with pointers into this object and a newly allocated stack.
  void describe(orbErrorInfo& info) const noexcept;

 private:
  void releaseServerError() noexcept { client::KALDEX_Error().Swap(&serverError_); }

  orbErrorType type_ = ORB_HTTP_ERROR;
  const char* summary_ = "";
  std::exception_ptr genericFailure_;  // keeps the text below alive
  const char* genericMessage_ = "";
  uint32_t httpStatus_ = 0;
  std::string httpResponseMessage_;
  client::KALDEX_Error serverError_;
};

/// Releases the stack that describe() allocated.
void releaseStack(orbErrorInfo& info) noexcept;

}  // namespace orb

#endif  // ORB_RUNTIME_ERROR_STATE_H_
