// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_PENDING_ELEMENTS_H_
#define ORB_ARRAY_PENDING_ELEMENTS_H_

#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "array/payload.h"
#include "array/wire_format.h"

namespace orb {

/// Received elements that are still bytes, in canonical form: building a message of each
/// would cost a few hundred bytes and several allocations, and many are never looked at.
class PendingElements {
 public:
  /// Where an element is among the bytes; bodies stay below 2^31 of them.
  struct Place {
    uint32_t offset;
    uint32_t size;
  };

  PendingElements() = default;
  /// Takes a copy of the bytes.
  PendingElements(wire::Slice bytes, std::vector<Place> places)
      : bytes_(new uint8_t[bytes.size]), places_(std::move(places)) {
    std::memcpy(bytes_.get(), bytes.data, bytes.size);
  }

  size_t size() const { return places_.size(); }
  bool empty() const { return places_.empty(); }
  wire::Slice bytes(size_t i) const {
    return {bytes_.get() + places_[i].offset, places_[i].size};
  }
  /// Builds element i in a fresh message; canonical bytes always parse.
  void parse(size_t i, KALDEX_Array& message) const {
    static_cast<void>(
        message.ParseFromArray(bytes(i).data, static_cast<int>(bytes(i).size)));
  }
  void clear() { *this = PendingElements(); }

 private:
  std::shared_ptr<uint8_t[]> bytes_;  // never changed; copies of the array share them
  std::vector<Place> places_;
};

}  // namespace orb

#endif  // ORB_ARRAY_PENDING_ELEMENTS_H_
