// SPDX-License-Identifier: MIT
// Finds what of a failing sequence the failure needs.
#ifndef ORB_CLIENT_MODEL_SHRINK_H_
#define ORB_CLIENT_MODEL_SHRINK_H_

#include <algorithm>
#include <cstddef>
#include <vector>

namespace orb::model {

/// Drops items, many at a time first, as long as `fails` holds for what is left: in the
/// end it does not hold without any single one of them.
template <class Item, class Fails>
std::vector<Item> shortest(std::vector<Item> items, const Fails& fails) {
  size_t chunk = items.size() / 2;
  while (chunk != 0) {
    bool dropped = false;
    for (size_t first = 0; first < items.size();) {
      const size_t last = std::min(first + chunk, items.size());
      std::vector<Item> left(items.begin(),
                             items.begin() + static_cast<std::ptrdiff_t>(first));
      left.insert(left.end(), items.begin() + static_cast<std::ptrdiff_t>(last),
                  items.end());
      if (fails(left)) {
        items = std::move(left);
        dropped = true;
      } else {
        first = last;
      }
    }
    if (!dropped) chunk /= 2;
  }
  return items;
}

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_SHRINK_H_
