// SPDX-License-Identifier: MIT
// The dimension list of a message.
#ifndef ORB_ARRAY_DIMENSIONS_H_
#define ORB_ARRAY_DIMENSIONS_H_

#include <cstddef>
#include <cstdint>

#include "array/payload.h"

namespace orb {

/// The product of all extents, modulo 2 to the 64th; 0 when there are none.
uint64_t numberOfElements(const KALDEX_Array& array);

/// Extent i, 0 when the list has none.
uint64_t extent(const KALDEX_Array& array, int i);

/// Replaces the dimension list by `count` extents, which may be those of the list itself.
/// A single extent becomes a column. Throws std::invalid_argument for none, and
/// boost::numeric::positive_overflow, with the list emptied, for more than 2147483647.
void setDimensions(KALDEX_Array& array, const size_t* extents, size_t count);

}  // namespace orb

#endif  // ORB_ARRAY_DIMENSIONS_H_
