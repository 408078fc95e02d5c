// SPDX-License-Identifier: MIT
// What the two floors share: bytes that they neither make nor understand.
#ifndef ORB_BENCH_CLIENT_READY_REQUEST_H_
#define ORB_BENCH_CLIENT_READY_REQUEST_H_

#include <cstring>
#include <string>
#include <string_view>

#include "net/raw_frame.h"
#include "net/socket.h"
#include "value/checksum.h"

namespace orb::bench {

/// Fetches the ready request of a workload from the server, so that nothing of the
/// message library's passes through the memory of a floor.
inline std::string readyRequest(Socket& socket, const std::string& workloadName) {
  const RawFrame frame{RawFrame::kSelect, workloadName.size()};
  socket.send({reinterpret_cast<const char*>(&frame), sizeof frame}, workloadName);
  uint64_t size = 0;
  socket.receiveAll(&size, sizeof size);
  std::string request(size, '\0');
  socket.receiveAll(request.data(), size);
  return request;
}

/// Reads every byte, eight at a time and at most seven that remain.
inline uint64_t checksumOfBytes(std::string_view bytes) {
  Checksum checksum;
  while (bytes.size() >= sizeof(uint64_t)) {
    uint64_t word;
    std::memcpy(&word, bytes.data(), sizeof word);
    checksum.add(word);
    bytes.remove_prefix(sizeof word);
  }
  checksum.addAll(bytes);
  return checksum.sum();
}

}  // namespace orb::bench

#endif  // ORB_BENCH_CLIENT_READY_REQUEST_H_
