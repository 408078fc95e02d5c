// SPDX-License-Identifier: MIT
#include "runtime/result_decoder.h"

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include "array/checked_cast.h"
#include "array/received_array.h"

namespace orb {
namespace {

// The limit is a signed number to the parser: from 2^31 up it reads nothing.
int32_t signedLimit(uint32_t limitBytes) { return static_cast<int32_t>(limitBytes); }

/// Cuts a body of nothing but `count` outputs into these.
bool splitOutputs(wire::Slice body, uint32_t count, std::vector<wire::Slice>& parts) {
  constexpr uint32_t kOutputTag =
      wire::tagOf(client::KALDEX_Result::kLhsFieldNumber, wire::kLengthDelimited);
  wire::Reader reader(body);
  while (parts.size() < count) {
    uint64_t tag = 0;
    wire::Slice output{};
    if (!reader.readVarint(tag) || tag != kOutputTag) return false;
    if (!reader.readLengthDelimited(output)) return false;
    parts.push_back(output);
  }
  return reader.atEnd();
}

}  // namespace

bool readOutputs(wire::Slice body, uint32_t limitBytes, uint32_t count,
                 std::vector<UniqueHandle>& outputs) {
  if (static_cast<int64_t>(body.size) > signedLimit(limitBytes)) return false;
  std::vector<wire::Slice> parts;
  if (!splitOutputs(body, count, parts)) return false;
  outputs.resize(count);
  for (size_t i = parts.size(); i-- > 0;) {
    outputs[i] = handleFromWire(parts[i]);
    if (!outputs[i]) return false;
  }
  return true;
}

void parseResult(wire::Slice body, uint32_t limitBytes, client::KALDEX_Result& result) {
  google::protobuf::io::ArrayInputStream bytes(body.data, checkedInt32(body.size));
  google::protobuf::io::CodedInputStream input(&bytes);
  input.SetTotalBytesLimit(signedLimit(limitBytes));
  static_cast<void>(result.ParseFromCodedStream(&input));
}

}  // namespace orb
