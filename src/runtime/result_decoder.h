// SPDX-License-Identifier: MIT
#ifndef ORB_RUNTIME_RESULT_DECODER_H_
#define ORB_RUNTIME_RESULT_DECODER_H_

#include <vector>

#include "array/handle.h"
#include "array/wire_format.h"
#include "orb.client.KALDEXResult.pb.h"

namespace orb {

/// Makes the outputs straight from a body that holds exactly `count` of them, each in the
/// form that the message library writes, and nothing else. False, with the outputs in any
/// state, for every other body: those go through parseResult(). Throws std::bad_alloc;
/// the outputs behind the one that found no memory are then made.
bool readOutputs(wire::Slice body, uint32_t limitBytes, uint32_t count,
                 std::vector<UniqueHandle>& outputs);

/// Parses a body up to the limit. Whether all of it could be parsed is not asked: what
/// was read before a stop is used.
void parseResult(wire::Slice body, uint32_t limitBytes, client::KALDEX_Result& result);

}  // namespace orb

#endif  // ORB_RUNTIME_RESULT_DECODER_H_
