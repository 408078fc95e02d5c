// SPDX-License-Identifier: MIT
#include "runtime/call_body.h"

#include <algorithm>
#include <vector>

#include "array/checked_cast.h"
#include "array/handle.h"
#include "array/wire_format.h"
#include "orb.client.KALDEXParams.pb.h"

namespace orb {
namespace {

using client::KALDEX_Params;

constexpr uint32_t kNargoutTag =
    wire::tagOf(KALDEX_Params::kNargoutFieldNumber, wire::kVarint);

struct Input {
  KALDEXArrayProxy* proxy;
  Sending sending;
  WireSizes sizes;
};

std::vector<Input> inputsOf(const orbArray* arrays, int32_t count) {
  std::vector<Input> inputs;
  inputs.reserve(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) {
    KALDEXArrayProxy& proxy = proxyOf(arrays[i]);
    inputs.push_back({&proxy, proxy.sending(), {}});
  }
  return inputs;
}

bool isWrittenBack(const Input& input) { return input.sending == Sending::kWrittenBack; }

bool isDirect(const Input& input) {
  return input.sending == Sending::kDirect || input.sending == Sending::kDirectIfAlone;
}

// A write-back can change the elements of a struct or cell that stands before it in the
// call. That array goes out as it was at its turn, so it is written back as well.
void writeBack(std::vector<Input>& inputs) {
  if (std::none_of(inputs.begin(), inputs.end(), isWrittenBack)) return;
  for (Input& input : inputs) {
    if (input.sending == Sending::kDirectIfAlone) input.sending = Sending::kWrittenBack;
    if (isWrittenBack(input)) input.proxy->flushToMessage();
  }
}

WireSizes measure(std::vector<Input>& inputs) {
  WireSizes sizes;
  for (Input& input : inputs) {
    const KALDEXArrayProxy& proxy = *input.proxy;
    input.sizes =
        isDirect(input) ? proxy.measureWire() : proxy.KALDEXArrayProxy::measureWire();
    sizes.total += wire::fieldSize(KALDEX_Params::kRhsFieldNumber, input.sizes.total);
    sizes.lent += input.sizes.lent;
  }
  return sizes;
}

void write(const std::vector<Input>& inputs, wire::MessagePieces& pieces) {
  for (const Input& input : inputs) {
    const KALDEXArrayProxy& proxy = *input.proxy;
    pieces.setEnd(wire::writeFieldHead(KALDEX_Params::kRhsFieldNumber, input.sizes.total,
                                       pieces.end()));
    if (isDirect(input)) {
      proxy.writeWire(input.sizes, pieces);
    } else {
      proxy.KALDEXArrayProxy::writeWire(input.sizes, pieces);
    }
  }
}

}  // namespace

CallBody::CallBody(ByteBlock& block, uint32_t outputsWanted, const orbArray* inputs,
                   int32_t inputCount)
    : block_(block) {
  std::vector<Input> parts = inputsOf(inputs, inputCount);
  writeBack(parts);
  // The number is signed, and a negative one sign-extended.
  const auto nargout =
      static_cast<uint64_t>(int64_t{static_cast<int32_t>(outputsWanted)});
  const WireSizes sizes = measure(parts);
  size_ = wire::varintSize(kNargoutTag) + wire::varintSize(nargout) + sizes.total;
  // Beyond 31 bits the message library cannot count, and would write a broken message.
  checkedInt32(size_);
  writtenSize_ = size_ - sizes.lent;
  block.reserve(writtenSize_, 0);
  pieces_.start(block.data());
  pieces_.setEnd(
      wire::writeVarint(nargout, wire::writeVarint(kNargoutTag, pieces_.end())));
  write(parts, pieces_);
  pieces_.finish();
}

}  // namespace orb
