// SPDX-License-Identifier: MIT
// A realloc that tells its requests and fails on demand. Programs that link
// failing_realloc.cpp are linked with --wrap=realloc and --wrap=malloc.
#ifndef ORB_TESTS_UNIT_HTTP_FAILING_REALLOC_H_
#define ORB_TESTS_UNIT_HTTP_FAILING_REALLOC_H_

#include <cstddef>
#include <vector>

namespace orb::test {

/// The sizes that realloc was asked for while one lives. It fails for `failingSize`
/// bytes, and malloc with it: compilers make a malloc of a realloc that starts from null.
class WatchedRealloc {
 public:
  WatchedRealloc();
  WatchedRealloc(const WatchedRealloc&) = delete;
  WatchedRealloc& operator=(const WatchedRealloc&) = delete;
  ~WatchedRealloc();

  std::vector<size_t> sizes;
  size_t failingSize = 0;
};

}  // namespace orb::test

#endif  // ORB_TESTS_UNIT_HTTP_FAILING_REALLOC_H_
