// SPDX-License-Identifier: MIT
#ifndef ORB_BENCH_CLIENT_READY_POST_H_
#define ORB_BENCH_CLIENT_READY_POST_H_

#include <string>

#include "client/contender.h"
#include "client/curl_post.h"
#include "client/ready_request.h"
#include "net/socket.h"

namespace orb::bench {

/// A POST of ready bytes. Body collects the answer: it has append(), view() and
/// release().
template <class Body>
class ReadyPost : public Contender {
 public:
  explicit ReadyPost(const Endpoint& endpoint)
      : rawPort_(endpoint.rawPort),
        post_(endpoint.port, "application/x-google-protobuf") {}

  void prepare(const Workload& workload) override {
    Socket socket = Socket::connectTo(rawPort_);
    request_ = readyRequest(socket, workload.name);
    post_.setPath("/" + workload.name);
  }

  void call() override { post_.perform(request_, body_); }
  uint64_t read() override { return checksumOfBytes(body_.view()); }
  void release() override { body_.release(); }

 private:
  uint16_t rawPort_;
  CurlPost post_;
  std::string request_;
  Body body_;
};

}  // namespace orb::bench

#endif  // ORB_BENCH_CLIENT_READY_POST_H_
