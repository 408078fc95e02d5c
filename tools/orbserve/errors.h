// SPDX-License-Identifier: MIT
// What a hosted function throws, and the message that its client receives.
#ifndef ORB_TOOLS_ORBSERVE_ERRORS_H_
#define ORB_TOOLS_ORBSERVE_ERRORS_H_

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "orb.client.KALDEXError.pb.h"

namespace orb::serve {

/// A line of this server's source. As the default of a parameter it is the caller's line.
struct SourceLine {
  const char* file;
  int line;

  static constexpr SourceLine here(const char* file = __builtin_FILE(),
                                   int line = __builtin_LINE()) {
    return {file, line};
  }
};

/// Ends a call with an error. The text says what was expected and what came; the name of
/// the function called is put before it later.
class CallError : public std::runtime_error {
 public:
  /// @param kind  The last part of the identifier: "shape", "class", ...
  CallError(std::string kind, const std::string& text, SourceLine at = SourceLine::here())
      : std::runtime_error(text), kind_(std::move(kind)), at_(at) {}

  const std::string& kind() const { return kind_; }
  SourceLine at() const { return at_; }

 private:
  std::string kind_;
  SourceLine at_;
};

/// Ends a call with an error message made by the function itself.
class RaisedError : public std::runtime_error {
 public:
  explicit RaisedError(client::KALDEX_Error error)
      : std::runtime_error(error.message()), error_(std::move(error)) {}

  const client::KALDEX_Error& error() const { return error_; }

 private:
  client::KALDEX_Error error_;
};

client::KALDEX_Error errorMessage(std::string_view function, std::string_view kind,
                                  std::string_view text, SourceLine at);

void addFrame(client::KALDEX_Error& error, std::string_view file, std::string_view name,
              int line);

/// Fills the report from the message and the stack, which must be complete.
void addReport(client::KALDEX_Error& error);

}  // namespace orb::serve

#endif  // ORB_TOOLS_ORBSERVE_ERRORS_H_
