// SPDX-License-Identifier: MIT
#include "array/message_pieces.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace orb::wire {
namespace {

template <class Native>
uint8_t* encodeVarints(const uint8_t* elements, size_t count, uint8_t* target) {
  return writePacked(reinterpret_cast<const Native*>(elements), count, target);
}

}  // namespace

template <class Native>
PackedList asVarints(const std::vector<Native>& elements, size_t count, size_t wireSize) {
  constexpr size_t kGreatest = std::is_signed_v<Native> ? kMaxVarintSize : 3;
  return {reinterpret_cast<const uint8_t*>(elements.data()),
          count,
          wireSize,
          &encodeVarints<Native>,
          sizeof(Native),
          kGreatest};
}

template PackedList asVarints(const std::vector<uint16_t>&, size_t, size_t);
template PackedList asVarints(const std::vector<int16_t>&, size_t, size_t);
template PackedList asVarints(const std::vector<char16_t>&, size_t, size_t);

void MessagePieces::start(uint8_t* block) {
  written_ = block;
  end_ = block;
}

void MessagePieces::appendField(int field, const PackedList& list) {
  if (list.wireSize == 0) return;
  end_ = writeFieldHead(field, list.wireSize, end_);
  append(list);
}

void MessagePieces::append(const PackedList& list) {
  if (isLarge(list.wireSize)) {
    addWritten();
    pieces_.push_back(list);
  } else if (list.encode == nullptr) {
    std::memcpy(end_, list.elements, list.wireSize);
    end_ += list.wireSize;
  } else {
    end_ = list.encode(list.elements, list.count, end_);
  }
}

void MessagePieces::finish() {
  if (!pieces_.empty()) addWritten();
}

void MessagePieces::addWritten() {
  if (end_ == written_) return;
  pieces_.push_back(asStored(written_, static_cast<size_t>(end_ - written_)));
  written_ = end_;
}

size_t MessagePieces::read(uint8_t* target, size_t capacity) noexcept {
  uint8_t* at = target;
  const uint8_t* const end = target + capacity;
  while (at != end) {
    if (spillBegin_ != spillEnd_) {
      *at++ = spill_[spillBegin_++];
    } else if (piece_ == pieces_.size()) {
      break;
    } else if (done_ == pieces_[piece_].count) {
      ++piece_;
      done_ = 0;
    } else {
      at = readFrom(pieces_[piece_], at, end);
    }
  }
  return static_cast<size_t>(at - target);
}

/// Reads as many elements as surely fit, or spills one.
uint8_t* MessagePieces::readFrom(const PackedList& list, uint8_t* target,
                                 const uint8_t* end) noexcept {
  const auto room = static_cast<size_t>(end - target);
  const size_t fitting = std::min(list.count - done_, room / list.greatestWireSize);
  const uint8_t* const elements = list.elements + done_ * list.elementSize;
  done_ += std::max(fitting, size_t{1});
  if (list.encode == nullptr) {
    std::memcpy(target, elements, fitting);
    return target + fitting;
  }
  if (fitting != 0) return list.encode(elements, fitting, target);
  spillBegin_ = 0;
  spillEnd_ = static_cast<size_t>(list.encode(elements, 1, spill_) - spill_);
  return target;
}

void MessagePieces::rewind() noexcept {
  piece_ = 0;
  done_ = 0;
  spillBegin_ = 0;
  spillEnd_ = 0;
}

}  // namespace orb::wire
