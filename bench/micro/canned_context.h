// SPDX-License-Identifier: MIT
#ifndef ORB_BENCH_MICRO_CANNED_CONTEXT_H_
#define ORB_BENCH_MICRO_CANNED_CONTEXT_H_

#include <cstdint>
#include <string>

#include "runtime/client_context.h"
#include "value/library_array.h"

namespace orb::bench {

/// Calls that cost no transport: whatever is sent, the same reply comes back.
class CannedContext {
 public:
  explicit CannedContext(std::string reply);

  /// A call with one input and one output.
  LibraryArray call(orbArray input) { return feval(1, input); }
  /// A call without inputs.
  LibraryArray receive() { return feval(1, nullptr); }
  /// A call without outputs; the reply must be empty.
  void send(orbArray input) { feval(0, input); }

 private:
  LibraryArray feval(uint32_t outputs, orbArray input);

  orbClientContext context_;
};

}  // namespace orb::bench

#endif  // ORB_BENCH_MICRO_CANNED_CONTEXT_H_
