// SPDX-License-Identifier: MIT
// The messages of a call, made without the library.
#ifndef ORB_BENCH_VALUE_KALDEX_H_
#define ORB_BENCH_VALUE_KALDEX_H_

#include <string>

#include "value/workload.h"

namespace orb::bench {

/// The bytes of the KALDEX_Params that calls for one output.
std::string requestOf(const Workload& workload);

/// The bytes of the KALDEX_Result that answers it.
std::string replyTo(const Workload& workload);

}  // namespace orb::bench

#endif  // ORB_BENCH_VALUE_KALDEX_H_
