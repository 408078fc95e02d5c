// SPDX-License-Identifier: MIT
// Moves elements between a message's 32-bit list and a native 16-bit buffer.
#ifndef ORB_ARRAY_NATIVE_BUFFER_H_
#define ORB_ARRAY_NATIVE_BUFFER_H_

#include <google/protobuf/repeated_field.h>

#include <algorithm>
#include <vector>

namespace orb {

/// The low 16 bits of each element.
template <class Native, class Wire>
std::vector<Native> narrowed(const google::protobuf::RepeatedField<Wire>& list) {
  std::vector<Native> buffer(static_cast<size_t>(list.size()));
  std::transform(list.begin(), list.end(), buffer.begin(),
                 [](Wire unit) { return static_cast<Native>(unit); });
  return buffer;
}

/// Overwrites the list in place. Its length is its own: another handle of the array may
/// have resized it since the buffer was filled, so what either has more than the other
/// stays.
template <class Native, class Wire>
void widen(const std::vector<Native>& buffer,
           google::protobuf::RepeatedField<Wire>& list) {
  const size_t common = std::min(buffer.size(), static_cast<size_t>(list.size()));
  std::copy_n(buffer.begin(), common, list.begin());
}

}  // namespace orb

#endif  // ORB_ARRAY_NATIVE_BUFFER_H_
