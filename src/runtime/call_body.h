// SPDX-License-Identifier: MIT
#ifndef ORB_RUNTIME_CALL_BODY_H_
#define ORB_RUNTIME_CALL_BODY_H_

#include <cstddef>
#include <cstdint>

#include "http/byte_block.h"
#include "orb/qxorbclient.h"

namespace orb {

/// Writes the body of a call into the block and gives its size: the number of outputs
/// wanted and the input arrays, a KALDEX_Params message. Inputs whose storage others can
/// see are written back, in order, before any is encoded. The inputs keep their values
/// whatever happens. Throws boost::numeric::positive_overflow for a body above 2147483647
/// bytes.
size_t encodeCall(uint32_t outputsWanted, const orbArray* inputs, int32_t inputCount,
                  ByteBlock& block);

}  // namespace orb

#endif  // ORB_RUNTIME_CALL_BODY_H_
