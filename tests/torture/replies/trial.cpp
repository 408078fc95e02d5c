// SPDX-License-Identifier: MIT
#include "torture/replies/trial.h"

#include <algorithm>
#include <exception>
#include <sstream>

#include "support/wire.h"
#include "torture/replies/examine.h"

namespace orb::torture {
namespace {

using test::Array;
using test::Outcome;
namespace wire = test::wire;

// A server keeps all its requests and connections until it ends.
constexpr std::uint64_t kItemsOfServer = 200;
// Calling every function takes longer than the call; undamaged arrays are like one another.
constexpr std::uint64_t kExamined = 3;
constexpr std::uint64_t kWholeExamined = 64;

constexpr const char* kNothing = "Server returned nothing (no headers, no data)";
constexpr const char* kPartial = "Transferred a partial file";
// What else libcurl and the reading of a head may find wrong with damaged bytes.
constexpr const char* kDamagedHead[] = {
    kNothing,
    kPartial,
    "Failure when receiving data from the peer",
    "Unsupported protocol",
    "Unrecognized or bad HTTP Content or Transfer-Encoding",
    "Weird server reply",
    "A libcurl function was given a bad argument",
    "bad lexical cast: source type value could not be interpreted as target",
};

/// A reply with kUsualValue; over the first road it ends the connection.
std::string goodReply(Road road) {
  const std::string body = wire::result({wire::doubleRow({test::kUsualValue})});
  return std::string("HTTP/1.1 200 OK\r\n") +
         (road == Road::kFirst ? "Connection: close\r\n" : "") +
         "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

/// Whether the client can tell the end of the reply as sent.
bool hasEnd(const Item& item, const Reply& reply) {
  if (item.framing == Framing::kUntilTheEnd || item.damage == Damage::kCut) return false;
  if (item.damage != Damage::kFlipped) return true;
  return item.framing == Framing::kLength && item.place >= 8 * reply.head;
}

test::Script scriptOf(const Item& item, const Reply& reply) {
  std::string bytes = reply.bytes;
  if (item.damage == Damage::kCut) bytes.resize(item.place);
  if (item.damage == Damage::kFlipped) {
    bytes[item.place / 8] =
        static_cast<char>(bytes[item.place / 8] ^ 1 << item.place % 8);
  }
  test::Script script{item.damage == Damage::kDripped
                          ? test::drip(bytes, std::chrono::milliseconds(0))
                          : test::send(bytes)};
  if (!hasEnd(item, reply)) script.push_back(test::close());
  return script;
}

/// What a status line and headers without a body come to.
Outcome outcomeOfHead(const Answer& answer) {
  if (answer.outcome.type == ORB_HTTP_ERROR && answer.outcome.status != ORB_OK) {
    return answer.outcome;
  }
  return answer.wanted == 0 ? test::success() : test::countMismatch(0, answer.wanted);
}

bool isCutBeforeStatus(const Item& item, const Reply& reply) {
  return item.damage == Damage::kCut && item.place < reply.statusLine;
}

/// Whether libcurl sends the request again when the reply ends here.
bool isSentAgain(const Item& item, const Reply& reply) {
  return item.road == Road::kReused && isCutBeforeStatus(item, reply);
}

/// Whether the reply, cut there, is all that libcurl asks for. Of the empty line behind the
/// last chunk it does not wait for the line feed.
bool isAll(const Item& item, const Reply& reply) {
  if (item.damage != Damage::kCut) return item.damage != Damage::kFlipped;
  return item.place + (item.framing == Framing::kChunked ? 1 : 0) >= reply.bytes.size();
}

/// Whether the head, cut there, tells that a body follows.
bool announcesBody(const Item& item, const Reply& reply) {
  if (item.place + 2 < reply.head || item.framing == Framing::kUntilTheEnd) return false;
  return item.framing == Framing::kChunked || !item.answer.body.empty();
}

/// Whether the call must come to `outcome` exactly.
bool isCertain(const Item& item, const Reply& reply, Outcome& outcome) {
  outcome = item.answer.outcome;
  if (isAll(item, reply) || isSentAgain(item, reply)) return true;
  const bool isError = outcome.status != ORB_OK && outcome.type == ORB_HTTP_ERROR;
  if (item.damage == Damage::kFlipped) {
    // The body of an HTTP error is not read.
    return isError && item.place >= 8 * reply.head && item.framing != Framing::kChunked;
  }
  if (isCutBeforeStatus(item, reply)) {
    outcome = test::genericError(kNothing);
    return true;
  }
  if (item.place < reply.head && !announcesBody(item, reply)) {
    outcome = outcomeOfHead(item.answer);
    return true;
  }
  if (item.framing == Framing::kUntilTheEnd) return isError;
  outcome = test::genericError(kPartial);
  return true;
}

/// Whether a reading of damaged outputs may end in this text.
bool isDamagedBody(const std::string& text, std::size_t wanted) {
  if (text == "dispatch_on_QXType") return true;
  for (std::size_t received = 0; received < 1000; ++received) {
    if (received != wanted && text == test::countMismatch(received, wanted).detail) {
      return true;
    }
  }
  return false;
}

/// Whether a reply damaged in this way may give such an error.
bool isPossible(const Item& item, const Reply& reply, const Outcome& outcome) {
  const bool headIsSound = item.damage == Damage::kCut || item.place >= 8 * reply.head;
  const bool framingIsSound = headIsSound && item.framing != Framing::kChunked;
  switch (outcome.type) {
    case ORB_HTTP_ERROR:
      if (outcome == item.answer.outcome) return true;
      return !headIsSound &&
             outcome == test::httpError(outcome.responseCode, outcome.detail);
    case ORB_KALDEX_ERROR:
      return outcome == test::kaldexError(outcome.detail, outcome.identifier);
    case ORB_GENERIC_ERROR:
      if (!(outcome == test::genericError(outcome.detail))) return false;
      return isDamagedBody(outcome.detail, item.answer.wanted) ||
             (!framingIsSound &&
              std::find(std::begin(kDamagedHead), std::end(kDamagedHead),
                        outcome.detail) != std::end(kDamagedHead));
  }
  return false;
}

}  // namespace

Tally& Tally::operator+=(const Tally& more) {
  items += more.items;
  whole += more.whole;
  other += more.other;
  httpErrors += more.httpErrors;
  serverErrors += more.serverErrors;
  genericErrors += more.genericErrors;
  examined += more.examined;
  return *this;
}

std::string Tally::describe() const {
  return grouped(items) + " replies: " + grouped(whole) + " read as if whole, " +
         grouped(other) + " read as other arrays, " + grouped(httpErrors) + " HTTP, " +
         grouped(serverErrors) + " server and " + grouped(genericErrors) +
         " generic errors; " + grouped(examined) + " arrays examined";
}

void UsualReply::set(std::string bytes, bool endsConnection) {
  const std::lock_guard<std::mutex> lock(mutex_);
  bytes_ = std::move(bytes);
  endsConnection_ = endsConnection;
}

test::Script UsualReply::script() {
  return {[this](test::Connection& connection) {
    std::unique_lock<std::mutex> lock(mutex_);
    const std::string bytes = bytes_;
    const bool endsConnection = endsConnection_;
    lock.unlock();
    test::send(bytes)(connection);
    if (endsConnection) test::close()(connection);
  }};
}

Lane::Lane(Run& run, Road road) : run_(run), road_(road) { startServer(); }

Lane::~Lane() { checkSentOn(); }

void Lane::startServer() {
  server_ = std::make_unique<test::ScriptedServer>(usualReply_.script());
  itemsOfServer_ = 0;
  makeGoodCall(0, {});
}

void Lane::run(std::uint64_t seed, const Item& item) {
  if (itemsOfServer_++ == kItemsOfServer) {
    checkSentOn();
    startServer();
  }
  descriptions_[seed] = item.describe();
  const Reply reply = item.reply();
  server_->onRequest(scriptOf(item, reply));
  usualReply_.set(framed(item.answer, Framing::kLength).bytes, false);
  std::vector<Array> outputs(item.answer.wanted);
  const Outcome outcome = caller_.call(server_->url(), outputs);
  const std::string objection = judge(item, reply, outcome);
  if (!objection.empty()) report(seed, objection);

  Outcome certain;
  const bool isWhole = isCertain(item, reply, certain) && outcome == test::success();
  // Reading may give an array without elements its empty storage, which then travels: what
  // is compared is sent on first.
  if (isWhole) expectedBodies_[seed] = wire::params(1, item.answer.outputs);
  if (isWhole) makeGoodCall(seed, outputs);
  if (seed % (isWhole ? kWholeExamined : kExamined) == 0) examineAll(seed, outputs);
  if (!isWhole) makeGoodCall(seed, outputs);
}

void Lane::examineAll(std::uint64_t seed, const std::vector<Array>& arrays) {
  try {
    for (const Array& array : arrays) {
      if (array.get() == nullptr) continue;
      examine(array);
      ++tally_.examined;
    }
  } catch (const std::exception& failure) {
    report(seed, failure.what());
  }
}

std::string Lane::judge(const Item& item, const Reply& reply, const Outcome& outcome) {
  std::ostringstream came;
  came << outcome;
  Outcome certain;
  if (isCertain(item, reply, certain)) {
    if (outcome == item.answer.outcome) ++tally_.whole;
    if (outcome == certain) return "";
    came << " instead of " << certain;
    return came.str();
  }
  if (outcome.status == ORB_OK) {
    ++tally_.other;
    return "";
  }
  switch (outcome.type) {
    case ORB_HTTP_ERROR:
      ++tally_.httpErrors;
      break;
    case ORB_KALDEX_ERROR:
      ++tally_.serverErrors;
      break;
    case ORB_GENERIC_ERROR:
      ++tally_.genericErrors;
      break;
  }
  return isPossible(item, reply, outcome) ? "" : came.str();
}

void Lane::makeGoodCall(std::uint64_t seed, const std::vector<Array>& inputs) {
  usualReply_.set(goodReply(road_), road_ == Road::kFirst);
  std::vector<orbArray> received;
  for (const Array& input : inputs) {
    if (input.get() != nullptr) received.push_back(input);
  }
  const std::string url = server_->url() + "?" + std::to_string(seed);
  std::vector<Array> outputs(1);
  const Outcome outcome = caller_.call(url, outputs, received);
  if (outcome == test::success() && orbGetScalar(outputs[0]) == test::kUsualValue) return;
  std::ostringstream came;
  came << "the call afterwards: " << outcome;
  report(seed, came.str());
}

void Lane::checkSentOn() {
  for (const test::Request& request : server_->requests()) {
    const std::size_t question = request.head.find('?');
    const std::size_t endOfLine = request.head.find('\r');
    if (question > endOfLine) continue;
    const std::uint64_t seed = std::stoull(request.head.substr(question + 1));
    const auto expected = expectedBodies_.find(seed);
    if (expected == expectedBodies_.end()) continue;
    if (request.body != expected->second) report(seed, "other values received");
    expectedBodies_.erase(expected);
  }
  for (const auto& [seed, body] : expectedBodies_) report(seed, "not sent on");
  expectedBodies_.clear();
  descriptions_.clear();
}

void Lane::report(std::uint64_t seed, const std::string& what) {
  run_.finding(descriptions_[seed] + ": " + what,
               "--seed " + std::to_string(seed) + " --count 1");
}

}  // namespace orb::torture
