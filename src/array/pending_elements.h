// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_PENDING_ELEMENTS_H_
#define ORB_ARRAY_PENDING_ELEMENTS_H_

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "array/payload.h"
#include "array/wire_format.h"

namespace orb {

/// Received elements that are still bytes, in canonical form: building a message of each
/// would cost a few hundred bytes and several allocations, and many are never looked at.
class PendingElements {
 public:
  PendingElements() = default;
  /// Takes a copy of the bytes; `elements` are slices of them.
  PendingElements(wire::Slice bytes, const std::vector<wire::Slice>& elements)
      : bytes_(new uint8_t[bytes.size]) {
    std::memcpy(bytes_.get(), bytes.data, bytes.size);
    places_.reserve(elements.size());
    for (const wire::Slice& element : elements) {
      places_.push_back({static_cast<uint32_t>(element.data - bytes.data),
                         static_cast<uint32_t>(element.size)});
    }
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
  // Bodies stay below 2^31 bytes.
  struct Place {
    uint32_t offset;
    uint32_t size;
  };

  std::shared_ptr<uint8_t[]> bytes_;  // never changed; copies of the array share them
  std::vector<Place> places_;
};

}  // namespace orb

#endif  // ORB_ARRAY_PENDING_ELEMENTS_H_
