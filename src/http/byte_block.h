// SPDX-License-Identifier: MIT
#ifndef ORB_HTTP_BYTE_BLOCK_H_
#define ORB_HTTP_BYTE_BLOCK_H_

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace orb {

/// A block of bytes that is used again from call to call: giving memory of some size back
/// to the kernel and faulting it in again costs more than copying into it.
class ByteBlock {
 public:
  /// The largest block that is kept, in bytes.
  static constexpr size_t kKeptBytes = size_t{64} << 20;

  /// Grows to at least this capacity, keeping the first `used` bytes. Throws
  /// std::bad_alloc.
  void reserve(size_t capacity, size_t used);
  uint8_t* data() { return bytes_.get(); }
  const uint8_t* data() const { return bytes_.get(); }
  size_t capacity() const { return capacity_; }
  /// Releases a block that is larger than what is kept, or far larger than the bytes just
  /// used.
  void trim(size_t used);

 private:
  struct Free {
    void operator()(uint8_t* p) const { std::free(p); }
  };

  std::unique_ptr<uint8_t, Free> bytes_;
  size_t capacity_ = 0;
};

/// The block that a client keeps for the bodies of its responses.
class KeptBlock {
 public:
  /// The block, or a new one where a response still holds it. Throws std::bad_alloc.
  boost::shared_ptr<ByteBlock> take() {
    if (block_.use_count() != 1) block_ = boost::make_shared<ByteBlock>();
    return block_;
  }

 private:
  boost::shared_ptr<ByteBlock> block_;
};

}  // namespace orb

#endif  // ORB_HTTP_BYTE_BLOCK_H_
