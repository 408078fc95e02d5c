// SPDX-License-Identifier: MIT
// What is sent in a measurement.
#ifndef ORB_BENCH_VALUE_WORKLOAD_H_
#define ORB_BENCH_VALUE_WORKLOAD_H_

#include <string>

#include "value/value.h"

namespace orb::bench {

/// What the server answers with.
enum class Function {
  kEcho,   // the array that it was sent
  kFirst,  // a 1-by-1 array of that array's first element
};

struct Workload {
  std::string name;
  Function function;
  Value input;
};

/// Makes the workload of a name: a kind, a dash and its size, as in "double-100x100",
/// "first-1000x1000" (doubles of which the first comes back), "complex-500x1000",
/// "uint16-2000x2000", "char-1x1000000", "cell-100000x1", "struct-10000x10" (elements by
/// fields) and "sparse-10000x10000". Equal names give equal elements in every process.
/// Throws std::invalid_argument for any other name.
Workload workloadNamed(const std::string& name);

/// What comes back.
Value answerTo(const Workload& workload);

}  // namespace orb::bench

#endif  // ORB_BENCH_VALUE_WORKLOAD_H_
