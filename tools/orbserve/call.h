// SPDX-License-Identifier: MIT
// What a hosted function sees of the call that it answers.
#ifndef ORB_TOOLS_ORBSERVE_CALL_H_
#define ORB_TOOLS_ORBSERVE_CALL_H_

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "orb.client.KALDEXArray.pb.h"

namespace orb::serve {

using Array = client::KALDEX_Array;
using Arrays = google::protobuf::RepeatedPtrField<Array>;

/// Tells the calls under way, on any thread, that the server is about to end.
class StopSignal {
 public:
  void raise() {
    const std::lock_guard<std::mutex> lock(mutex_);
    raised_ = true;
    changed_.notify_all();
  }

  /// Whether the signal was raised before the time was over.
  bool waitFor(std::chrono::nanoseconds time) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, time, [this] { return raised_; });
  }

 private:
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  bool raised_ = false;
};

/// One call. When a function gets it, every input is sound (see checkArray()), and the
/// counts of inputs and outputs are within what the registry says.
struct Call {
  int nargout;
  Arrays& inputs;  // a function may take arrays out of it
  Arrays& outputs;
  const StopSignal& stopping;

  const Array& input(int index) const { return inputs.Get(index); }

  /// Whether the client asked for output `index`; what costs much is made only then.
  bool wants(int index) const { return nargout > index; }

  /// Adds the next output, unless the client has all that it asked for.
  void put(Array output) {
    if (wants(outputs.size())) *outputs.Add() = std::move(output);
  }
};

}  // namespace orb::serve

#endif  // ORB_TOOLS_ORBSERVE_CALL_H_
