// SPDX-License-Identifier: MIT
// Values as arrays of the library, by its public functions alone.
#ifndef ORB_BENCH_VALUE_LIBRARY_ARRAY_H_
#define ORB_BENCH_VALUE_LIBRARY_ARRAY_H_

#include <memory>
#include <type_traits>

#include "orb/qxorbclient.h"
#include "value/checksum.h"
#include "value/value.h"

namespace orb::bench {

struct DestroyArray {
  void operator()(orbArray array) const { orbDestroyArray(array); }
};
using LibraryArray = std::unique_ptr<std::remove_pointer_t<orbArray>, DestroyArray>;

LibraryArray libraryArray(const Value& value);

/// Reads all of an array.
void addArray(Checksum& checksum, orbArray array);

}  // namespace orb::bench

#endif  // ORB_BENCH_VALUE_LIBRARY_ARRAY_H_
