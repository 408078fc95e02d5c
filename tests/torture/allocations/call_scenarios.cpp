// SPDX-License-Identifier: MIT
#include <map>

#include "client/transport/certificates.h"
#include "client/transport/samples.h"
#include "support/scripted_server.h"
#include "support/wire.h"
#include "torture/allocations/describe.h"
#include "torture/allocations/failing_malloc.h"
#include "torture/allocations/receiver.h"
#include "torture/allocations/scenario.h"

namespace orb::torture {
namespace {

using test::Array;
namespace wire = test::wire;

// A server keeps all its connections until it ends.
constexpr int kCallsOfServer = 200;
constexpr std::size_t kShares = 100;

enum class Tls { kNone, kServer, kBoth };

/// A server that gives one reply, made anew when it holds too much.
class Server {
 public:
  Server(std::string reply, Tls tls) : reply_(std::move(reply)), tls_(tls) {}

  std::string url() {
    if (server_ == nullptr || ++calls_ == kCallsOfServer) start();
    return server_->url();
  }

 private:
  void start() {
    calls_ = 0;
    const test::Script script{test::send(reply_)};
    if (tls_ == Tls::kNone) {
      server_ = std::make_unique<test::ScriptedServer>(script);
      return;
    }
    test::TlsServerFiles files = test::Certificates::get().server();
    if (tls_ == Tls::kBoth) {
      files.clientAuthority = test::Certificates::get().authority();
    }
    server_ = std::make_unique<test::ScriptedServer>(script, files);
  }

  const std::string reply_;
  const Tls tls_;
  int calls_ = 0;
  std::unique_ptr<test::ScriptedServer> server_;
};

struct Plan {
  std::shared_ptr<Server> server;
  Tls tls = Tls::kNone;
  bool onReusedConnection = false;
  std::function<Array()> makeInput;
  std::uint32_t outputs = 1;
};

/// A context and one input.
class Call : public Situation {
 public:
  explicit Call(const Plan& plan)
      : input_(plan.makeInput()), outputs_(plan.outputs), handle_(input_) {
    makeContext(plan.tls);
    {
      const WatchPause pause;
      url_ = plan.server->url();
    }
    if (plan.onReusedConnection) act();
  }
  ~Call() override {
    destroyOutputs();
    table().destroyContext(context_);
  }

  void act() override {
    destroyOutputs();
    status_ =
        table().feval(context_, url_.c_str(), static_cast<std::uint32_t>(outputs_.size()),
                      outputs_.data(), 1, &handle_);
  }

  std::string outcome() override {
    if (status_ != ORB_OK) return failure();
    std::string text;
    for (const orbArray output : outputs_) text += describe(output) + "; ";
    return text;
  }

  std::string kept() override { return describe(input_); }

 private:
  void makeContext(Tls tls) {
    orbClientConfig* config = nullptr;
    table().createConfig(&config);
    table().setTimeoutSec(config, 20);
    const WatchPause pause;
    if (tls != Tls::kNone) {
      const test::Certificates& files = test::Certificates::get();
      table().setServerCertFile(config, files.authority().c_str());
      if (tls == Tls::kBoth) {
        table().setClientCertFile(config, files.clientCertificate().c_str());
        table().setClientPrivateKeyFile(config, files.lockedClientKey().c_str());
        table().setClientPrivateKeyPassword(config, test::Certificates::kPassword);
      }
    }
    table().createContext(&context_, config);
    table().destroyConfig(config);
  }

  void destroyOutputs() {
    for (orbArray& output : outputs_) {
      orbDestroyArray(output);
      output = nullptr;
    }
  }

  std::string failure() const {
    // The first output is the last to be stored: a call that failed has not got there.
    if (!outputs_.empty() && outputs_.front() != nullptr) return "fails with all outputs";
    orbErrorInfo info;
    table().getLastErrorInfo(context_, &info);
    const std::string text =
        info.type == ORB_GENERIC_ERROR
            ? std::string("reported: ") + info.details.generic.message
            : info.message;
    table().destroyLastErrorInfo(&info);
    return text;
  }

  const Array input_;
  std::vector<orbArray> outputs_;
  const orbArray handle_;
  std::string url_;
  orbClientContext* context_ = nullptr;
  orbStatus status_ = ORB_OK;
};

void add(Scenarios& all, const std::string& on, const Plan& plan) {
  for (const bool reused : {false, true}) {
    Plan copy = plan;
    copy.onReusedConnection = reused;
    all.push_back({"feval",
                   on + (reused ? ", on a reused connection" : ""),
                   Promise::kReports,
                   {},
                   [copy] { return std::make_unique<Call>(copy); }});
  }
}

Plan planFor(const std::string& reply, Tls tls, const std::function<Array()>& makeInput) {
  Plan plan;
  plan.server = std::make_shared<Server>(reply, tls);
  plan.tls = tls;
  plan.makeInput = makeInput;
  return plan;
}

Array makeText() { return Array(orbCreateString("some text that takes memory")); }

}  // namespace

void addCallScenarios(Scenarios& all) {
  for (const test::Sample& sample : test::samples()) {
    const std::string outputs = wire::result({sample.message(), sample.message()});
    Plan plan = planFor(wire::reply(outputs), Tls::kNone, sample.make);
    plan.outputs = 2;
    add(all, "of " + sample.name, plan);
    const std::string message = sample.message();
    plan = planFor(wire::chunkedReply(wire::result({message})), Tls::kNone,
                   [message] { return receive(message); });
    add(all, "of received " + sample.name, plan);
  }
  // A field twice, out of order: not what the message library would write.
  const std::string odd = wire::type(wire::kDouble) + wire::doubleRow({1, 2});
  add(all, "of an unusual reply",
      planFor(wire::reply(wire::result({odd})), Tls::kNone, &makeText));
  add(all, "with an error of the server",
      planFor(wire::reply(wire::error("no such thing in the world", "a:b",
                                      {{"f.k", "f", 1}, {"g.k", "g", 2}})),
              Tls::kNone, &makeText));
  add(all, "with an HTTP error",
      planFor("HTTP/1.1 404 Nothing was found under this name\r\nContent-Length: "
              "0\r\n\r\n",
              Tls::kNone, &makeText));
  const std::string large(300000, 'x');
  add(all, "of a large array",
      planFor(wire::reply(wire::result(
                  {wire::array(wire::kUint8, {1, large.size()}, wire::elements(large))})),
              Tls::kNone, [] {
                return Array(orbCreateNumericMatrix(300000, 1, orbUINT8_CLASS, orbREAL));
              }));
}

void addTlsCallScenarios(Scenarios& all) {
  const std::string reply = wire::reply(wire::result({wire::doubleRow({1, 2})}));
  Scenarios whole;
  add(whole, "over TLS", planFor(reply, Tls::kServer, &makeText));
  add(whole, "over TLS with a client certificate", planFor(reply, Tls::kBoth, &makeText));
  // A handshake allocates some thousand times: each share takes some seconds.
  for (std::size_t first = 1; first <= kShares; ++first) {
    for (Scenario share : whole) {
      share.first = first;
      share.step = kShares;
      all.push_back(share);
    }
  }
}

}  // namespace orb::torture
