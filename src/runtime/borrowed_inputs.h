// SPDX-License-Identifier: MIT
#ifndef ORB_RUNTIME_BORROWED_INPUTS_H_
#define ORB_RUNTIME_BORROWED_INPUTS_H_

#include <boost/noncopyable.hpp>
#include <cstdint>
#include <vector>

#include "array/handle.h"
#include "orb.client.KALDEXParams.pb.h"

namespace orb {

/// The message of a call. Its inputs are the callers' own messages, held by pointer for
/// as long as this object lives and given back untouched whatever happens.
class BorrowedInputs : boost::noncopyable {
 public:
  explicit BorrowedInputs(uint32_t outputsWanted) {
    params_.set_nargout(static_cast<int32_t>(outputsWanted));
  }

  ~BorrowedInputs() {
    for (int n = params_.rhs_size(); n > 0; --n) {
      static_cast<void>(params_.mutable_rhs()->UnsafeArenaReleaseLast());
    }
  }

  /// Writes each input's native elements back and puts its message into the call.
  void add(const orbArray* inputs, int32_t count) {
    params_.mutable_rhs()->Reserve(count);
    held_.reserve(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
      KALDEXArrayProxy& proxy = proxyOf(inputs[i]);
      proxy.flushToMessage();
      held_.push_back(proxy.sharedMessage());
      params_.mutable_rhs()->UnsafeArenaAddAllocated(&proxy.message());
    }
  }

  const client::KALDEX_Params& params() const { return params_; }

 private:
  std::vector<SharedMessage> held_;
  client::KALDEX_Params params_;
};

}  // namespace orb

#endif  // ORB_RUNTIME_BORROWED_INPUTS_H_
