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

size_t measure(std::vector<Input>& inputs) {
  size_t size = 0;
  for (Input& input : inputs) {
    const KALDEXArrayProxy& proxy = *input.proxy;
    input.sizes =
        isDirect(input) ? proxy.measureWire() : proxy.KALDEXArrayProxy::measureWire();
    size += wire::fieldSize(KALDEX_Params::kRhsFieldNumber, input.sizes.total);
  }
  return size;
}

void write(const std::vector<Input>& inputs, uint8_t* target) {
  for (const Input& input : inputs) {
    const KALDEXArrayProxy& proxy = *input.proxy;
    target =
        wire::writeFieldHead(KALDEX_Params::kRhsFieldNumber, input.sizes.total, target);
    target = isDirect(input) ? proxy.writeWire(input.sizes, target)
                             : proxy.KALDEXArrayProxy::writeWire(input.sizes, target);
  }
}

}  // namespace

size_t encodeCall(uint32_t outputsWanted, const orbArray* inputs, int32_t inputCount,
                  ByteBlock& block) {
  std::vector<Input> parts = inputsOf(inputs, inputCount);
  writeBack(parts);
  // The number is signed, and a negative one sign-extended.
  const auto nargout =
      static_cast<uint64_t>(int64_t{static_cast<int32_t>(outputsWanted)});
  const size_t size =
      wire::varintSize(kNargoutTag) + wire::varintSize(nargout) + measure(parts);
  // Beyond 31 bits the message library cannot count, and would write a broken message.
  checkedInt32(size);
  block.reserve(size, 0);
  write(parts, wire::writeVarint(nargout, wire::writeVarint(kNargoutTag, block.data())));
  return size;
}

}  // namespace orb
