// SPDX-License-Identifier: MIT
// How every server of the benchmark lives and ends.
#ifndef ORB_BENCH_SERVER_MAIN_LOOP_H_
#define ORB_BENCH_SERVER_MAIN_LOOP_H_

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace orb::bench {

/// Prints the ports and waits until standard input ends: whoever started the server holds
/// the other end, so the server never outlives it. Other threads serve meanwhile and are
/// left where they are.
[[noreturn]] inline void serveUntilInputEnds(std::initializer_list<uint16_t> ports) {
  for (const uint16_t port : ports) std::printf("%u ", static_cast<unsigned>(port));
  std::printf("\n");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  std::_Exit(EXIT_SUCCESS);
}

}  // namespace orb::bench

#endif  // ORB_BENCH_SERVER_MAIN_LOOP_H_
