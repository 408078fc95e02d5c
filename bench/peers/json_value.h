// SPDX-License-Identifier: MIT
// The arrays of the benchmark as JSON.
#ifndef ORB_BENCH_PEERS_JSON_VALUE_H_
#define ORB_BENCH_PEERS_JSON_VALUE_H_

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>

#include "value/value.h"

namespace orb::bench {

void writeJson(rapidjson::StringBuffer& text, const Value& value);

/// Doubles are read to the last bit, as every other contender gives them back. Throws
/// std::runtime_error for text that is not JSON.
void parseJson(rapidjson::Document& document, const char* text, size_t size);

}  // namespace orb::bench

#endif  // ORB_BENCH_PEERS_JSON_VALUE_H_
