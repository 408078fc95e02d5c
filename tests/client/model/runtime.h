// SPDX-License-Identifier: MIT
// Initialisation, the table's operations and calls, for the library and once more by their
// rules. Each operation gives what it did as text.
#ifndef ORB_CLIENT_MODEL_RUNTIME_H_
#define ORB_CLIENT_MODEL_RUNTIME_H_

#include <orb/qxorbclient.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/model/model.h"

namespace orb::model {

/// Configurations and contexts that a sequence can hold at a time, each.
inline constexpr size_t kSlots = 2;

/// The texts of a configuration, in the order of the table.
inline constexpr size_t kTexts = 5;
using Text = std::optional<std::string>;

/// What the server is asked for.
enum class Reply {
  kInputs,       // those that are picked
  kOtherForm,    // those, as the library itself would not write them
  kUnannounced,  // those, without a length in front
  kOddOutput,    // those, one of them replaced by an array of no class
  kServerError,
  kHttpError,
  kNullUrl,   // nothing: there is no address
  kNoServer,  // nothing: nobody listens
};

struct RemoteCall {
  size_t context = 0;
  Reply reply = Reply::kInputs;
  size_t number = 0;          // the place of the odd output, the error's or the status
  std::vector<size_t> picks;  // the outputs, as places among the inputs
  size_t wanted = 0;          // outputs

  std::string target() const;
};

/// Why a call failed.
struct Error {
  struct Frame {
    std::string file;
    std::string name;
    int32_t line;
  };

  orbErrorType type = ORB_HTTP_ERROR;
  std::string summary;
  std::string detail;  // the message of the error's kind
  std::string identifier;
  uint32_t responseCode = 0;
  std::vector<Frame> stack;

  std::string text() const;
};

/// The error that the server raises.
Error serverError(size_t number);

/// What to call, for all processes that are forked afterwards.
void setServer(const std::string& baseUrl, const std::string& refusingUrl);

class LibraryRuntime {
 public:
  LibraryRuntime() = default;
  LibraryRuntime(const LibraryRuntime&) = delete;
  LibraryRuntime& operator=(const LibraryRuntime&) = delete;
  ~LibraryRuntime();

  std::string orbInitializeEx(uint32_t version);
  std::string orbInitialize();
  std::string orbGetInitializationErrorMessage() const;
  /// Destroys all that is held before.
  std::string orbTerminate();

  std::string createConfig(size_t slot);
  std::string destroyConfig(size_t slot);
  std::string setTimeoutSec(size_t slot, uint64_t timeoutSec);
  std::string getTimeoutSec(size_t slot) const;
  std::string setResponseSizeLimit(size_t slot, uint32_t limitBytes);
  std::string getResponseSizeLimit(size_t slot) const;
  std::string setText(size_t slot, size_t which, const Text& text);
  std::string getText(size_t slot, size_t which) const;
  std::string setVerifyHost(size_t slot, bool verify);
  std::string getVerifyHost(size_t slot) const;
  std::string setVerifyPeer(size_t slot, bool verify);
  std::string getVerifyPeer(size_t slot) const;

  std::string createContext(size_t slot, size_t config);
  std::string destroyContext(size_t slot);
  std::string getLastErrorInfo(size_t context) const;
  std::string destroyLastErrorInfo(size_t context) const;
  /// `outputs` has the wanted number of slots.
  std::string feval(const RemoteCall& call, const std::vector<orbArray>& inputs,
                    std::vector<orbArray>& outputs);

 private:
  bool isTouched_ = false;  // by this sequence
  const orbClientRuntime* table_ = nullptr;
  std::array<orbClientConfig*, kSlots> configs_{};
  std::array<orbClientContext*, kSlots> contexts_{};
};

class ModelRuntime {
 public:
  std::string orbInitializeEx(uint32_t version);
  std::string orbInitialize();
  std::string orbGetInitializationErrorMessage() const;
  std::string orbTerminate();

  std::string createConfig(size_t slot);
  std::string destroyConfig(size_t slot);
  std::string setTimeoutSec(size_t slot, uint64_t timeoutSec);
  std::string getTimeoutSec(size_t slot) const;
  std::string setResponseSizeLimit(size_t slot, uint32_t limitBytes);
  std::string getResponseSizeLimit(size_t slot) const;
  std::string setText(size_t slot, size_t which, const Text& text);
  std::string getText(size_t slot, size_t which) const;
  std::string setVerifyHost(size_t slot, bool verify);
  std::string getVerifyHost(size_t slot) const;
  std::string setVerifyPeer(size_t slot, bool verify);
  std::string getVerifyPeer(size_t slot) const;

  std::string createContext(size_t slot, size_t config);
  std::string destroyContext(size_t slot);
  std::string getLastErrorInfo(size_t context) const;
  std::string destroyLastErrorInfo(size_t context) const;
  std::string feval(const RemoteCall& call, const std::vector<Array*>& inputs,
                    std::vector<Array*>& outputs);

  bool isInitialized() const { return version_ != 0; }
  bool hasConfig(size_t slot) const { return configs_[slot].has_value(); }
  bool hasContext(size_t slot) const { return contexts_[slot].has_value(); }

 private:
  struct Config {
    uint64_t timeoutSec = 120;
    uint32_t limitBytes = 64 << 20;
    std::array<std::string, kTexts> texts;
    bool verifyHost = true;
    bool verifyPeer = true;
  };
  struct Context {
    Config config;
    Error lastError;
  };

  bool hasTls() const { return version_ == ORB_CLIENT_1_1; }

  uint32_t version_ = 0;  // of the table, when there is one
  std::string message_;
  std::array<std::optional<Config>, kSlots> configs_;
  std::array<std::optional<Context>, kSlots> contexts_;
};

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_RUNTIME_H_
