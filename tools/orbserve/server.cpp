// SPDX-License-Identifier: MIT
#include "server.h"

#include <netdb.h>
#include <sys/socket.h>

#include <chrono>
#include <filesystem>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

#include "orb.client.KALDEXParams.pb.h"
#include "orb.client.KALDEXResult.pb.h"
#include "registry.h"

namespace orb::serve {
namespace {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

constexpr std::string_view kFunctionsPath = "/demo/";
constexpr const char* kMessageType = "application/x-google-protobuf";

constexpr time_t kKeepAliveSec = 30;
constexpr auto kReadTimeout = 30s;

enum Status {
  kOk = 200,
  kBadRequest = 400,
  kNotFound = 404,
  kMethodNotAllowed = 405,
  kPayloadTooLarge = 413,
  kUnsupportedMediaType = 415,
  kInternalError = 500,
};

void refuse(httplib::Response& reply, Status status, const std::string& reason) {
  reply.status = status;
  reply.set_content("orbserve: " + reason + "\n", "text/plain");
}

/// Takes in a request body, whatever its length, and keeps no more than the limit: a body
/// that is left unread would be taken for the next request of the connection.
class BodyReceiver {
 public:
  explicit BodyReceiver(size_t limitBytes) : limitBytes_(limitBytes) {}

  bool operator()(const char* data, size_t size) {
    tooLong_ = tooLong_ || size > limitBytes_ - bytes_.size();
    if (!tooLong_) bytes_.append(data, size);
    return true;
  }

  bool tooLong() const { return tooLong_; }
  const std::string& bytes() const { return bytes_; }

 private:
  size_t limitBytes_;
  bool tooLong_ = false;
  std::string bytes_;
};

// Without either header the library would read until the client hangs up.
bool hasBody(const httplib::Request& request) {
  return request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
}

bool discardBody(const httplib::Request& request, const httplib::ContentReader& read) {
  const auto discard = [](const char*, size_t) { return true; };
  if (!hasBody(request)) return true;
  if (!request.is_multipart_form_data()) return read(discard);
  return read([](const httplib::MultipartFormData&) { return true; }, discard);
}

const Function* functionAt(std::string_view path) {
  if (path.substr(0, kFunctionsPath.size()) != kFunctionsPath) return nullptr;
  return findFunction(path.substr(kFunctionsPath.size()));
}

void refuseMethod(const httplib::Request& request, httplib::Response& reply) {
  reply.set_header("Allow", "POST");
  refuse(reply, kMethodNotAllowed, "expected POST, got " + request.method);
}

void refuseMethodWithBody(const httplib::Request& request, httplib::Response& reply,
                          const httplib::ContentReader& read) {
  discardBody(request, read);
  refuseMethod(request, reply);
}

// The port at the other end of a TCP connection; nothing when the descriptor is none.
std::optional<int> clientPort(int descriptor) {
  sockaddr_storage peer{};
  socklen_t size = sizeof peer;
  char port[NI_MAXSERV];
  auto* address = reinterpret_cast<sockaddr*>(&peer);
  if (getpeername(descriptor, address, &size) != 0 || peer.ss_family == AF_UNIX ||
      getnameinfo(address, size, nullptr, 0, port, sizeof port, NI_NUMERICSERV) != 0) {
    return std::nullopt;
  }
  return std::stoi(port);
}

// The library's own options let two servers share a port, each getting some of the calls.
void reuseAddress(int listener) {
  const int yes = 1;
  setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

}  // namespace

void BusyClients::add(int port) {
  const std::lock_guard<std::mutex> lock(mutex_);
  ports_.insert(port);
}

void BusyClients::remove(int port) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (const auto found = ports_.find(port); found != ports_.end()) ports_.erase(found);
}

bool BusyClients::contains(int port) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return ports_.count(port) != 0;
}

Server::Server(const Options& options) : options_(options) {
  http_.set_keep_alive_max_count(std::numeric_limits<int>::max());
  http_.set_keep_alive_timeout(kKeepAliveSec);
  http_.set_read_timeout(kReadTimeout);
  http_.set_tcp_nodelay(true);
  http_.set_socket_options(reuseAddress);
  http_.new_task_queue = [this] { return new httplib::ThreadPool(options_.threads); };
  route();

  if (options_.port == 0) {
    port_ = http_.bind_to_any_port(options_.host);
  } else if (http_.bind_to_port(options_.host, options_.port)) {
    port_ = options_.port;
  }
  if (port_ < 0) {
    throw std::runtime_error("cannot listen on " + options_.host + " port " +
                             std::to_string(options_.port));
  }
  accepting_ = std::async(std::launch::async, [this] { http_.listen_after_bind(); });
  // stop() has no effect before.
  while (!http_.is_running()) std::this_thread::sleep_for(1ms);
}

Server::~Server() {
  stopping_.raise();
  http_.stop();
  // Again and again: a connection may have been accepted just now.
  do {
    hangUpOnIdleClients();
  } while (accepting_.wait_for(10ms) != std::future_status::ready);
}

std::string Server::url() const {
  const bool isIpv6 = options_.host.find(':') != std::string::npos;
  return "http://" + (isIpv6 ? "[" + options_.host + "]" : options_.host) + ":" +
         std::to_string(port_);
}

// The library keeps its sockets to itself, and waits for idle clients until their time is
// over. Their connections are the only connected internet sockets of this process. A busy
// client is left alone: the library sends nothing on a connection that it finds cut.
void Server::hangUpOnIdleClients() const {
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int descriptor = std::stoi(entry.path().filename());
    const std::optional<int> port = clientPort(descriptor);
    if (port && !busy_.contains(*port)) shutdown(descriptor, SHUT_RD);
  }
}

void Server::route() {
  static constexpr const char* kAnyPath = ".*";
  http_.Post(kAnyPath, [this](const httplib::Request& request, httplib::Response& reply,
                              const httplib::ContentReader& read) {
    answerPost(request, reply, read);
  });
  http_.Put(kAnyPath, refuseMethodWithBody);
  http_.Patch(kAnyPath, refuseMethodWithBody);
  http_.Delete(kAnyPath, refuseMethodWithBody);
  http_.Get(kAnyPath, refuseMethod);
  http_.Options(kAnyPath, refuseMethod);
  // The library calls its logger when an answer is sent.
  http_.set_logger([this](const httplib::Request& request, const httplib::Response&) {
    busy_.remove(request.remote_port);
  });
}

void Server::answerPost(const httplib::Request& request, httplib::Response& reply,
                        const httplib::ContentReader& read) {
  const Function* function = functionAt(request.path);
  if (function == nullptr) {
    discardBody(request, read);
    return refuse(reply, kNotFound, "no function at " + request.path);
  }
  if (request.is_multipart_form_data()) {
    discardBody(request, read);
    return refuse(reply, kUnsupportedMediaType, std::string("expected ") + kMessageType);
  }

  BodyReceiver body(options_.maxBodyBytes);
  if (hasBody(request) && !read(std::ref(body))) {
    return refuse(reply, kBadRequest, "the body ended early");
  }
  busy_.add(request.remote_port);
  if (body.tooLong()) {
    return refuse(
        reply, kPayloadTooLarge,
        "expected a body of at most " + std::to_string(options_.maxBodyBytes) + " bytes");
  }
  client::KALDEX_Params params;
  if (!params.ParseFromString(body.bytes())) {
    return refuse(reply, kBadRequest, "the body is not a KALDEX_Params message");
  }

  const client::KALDEX_Result result = evaluate(*function, params, stopping_);
  if (!result.SerializeToString(&reply.body)) {
    return refuse(reply, kInternalError, "the result is too large for a message");
  }
  reply.status = kOk;
  reply.set_header("Content-Type", kMessageType);
}

}  // namespace orb::serve
