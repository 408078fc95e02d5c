// SPDX-License-Identifier: MIT
#include "array/dimensions.h"

#include <google/protobuf/repeated_field.h>

#include <functional>
#include <numeric>
#include <stdexcept>
#include <type_traits>

#include "array/checked_cast.h"

namespace orb {

// Callers read extents and sparse indices in place.
static_assert(std::is_same_v<size_t, uint64_t>);

uint64_t numberOfElements(const KALDEX_Array& array) {
  const auto& extents = array.dimension();
  if (extents.empty()) return 0;
  return std::accumulate(extents.begin(), extents.end(), uint64_t{1},
                         std::multiplies<uint64_t>());
}

uint64_t extent(const KALDEX_Array& array, int i) {
  return i < array.dimension_size() ? array.dimension(i) : 0;
}

void setDimensions(KALDEX_Array& array, const size_t* extents, size_t count) {
  if (count == 0) {
    throw std::invalid_argument("Number of dimensions must be greater than zero.");
  }
  // Kept until the end: the extents may lie in it.
  google::protobuf::RepeatedField<uint64_t> replaced;
  replaced.Swap(array.mutable_dimension());
  google::protobuf::RepeatedField<uint64_t>& list = *array.mutable_dimension();
  const int32_t size = checkedInt32(count);
  if (size == 1) {
    list.Reserve(2);
    list.Add(extents[0]);
    list.Add(1);
  } else {
    list.Reserve(size);
    list.Add(extents, extents + size);
  }
}

}  // namespace orb
