// SPDX-License-Identifier: MIT
#ifndef ORB_RUNTIME_CALL_BODY_H_
#define ORB_RUNTIME_CALL_BODY_H_

#include <cstddef>
#include <cstdint>

#include "array/message_pieces.h"
#include "http/byte_block.h"
#include "http/qx_client.h"
#include "orb/qxorbclient.h"

namespace orb {

/// The body of a call, a KALDEX_Params message: the number of outputs wanted and the
/// input arrays. What is small of it stands in the block; the large lists of the inputs
/// are read where they are, so the inputs must stay as they are until the call is over.
class CallBody final : public BodySource {
 public:
  /// Inputs whose storage others can see are written back, in order, before any is
  /// encoded. The inputs keep their values whatever happens. Throws
  /// boost::numeric::positive_overflow for a body above 2147483647 bytes.
  CallBody(ByteBlock& block, uint32_t outputsWanted, const orbArray* inputs,
           int32_t inputCount);
  ~CallBody() { block_.trim(writtenSize_); }

  /// The whole body where it is in one piece, null otherwise.
  const uint8_t* data() const { return pieces_.isInBlock() ? block_.data() : nullptr; }
  uint64_t size() const override { return size_; }
  size_t read(uint8_t* target, size_t capacity) noexcept override {
    return pieces_.read(target, capacity);
  }
  void rewind() noexcept override { pieces_.rewind(); }

 private:
  ByteBlock& block_;
  size_t size_ = 0;
  size_t writtenSize_ = 0;
  wire::MessagePieces pieces_;
};

}  // namespace orb

#endif  // ORB_RUNTIME_CALL_BODY_H_
