// SPDX-License-Identifier: MIT
#include "errors.h"

namespace orb::serve {

client::KALDEX_Error errorMessage(std::string_view function, std::string_view kind,
                                  std::string_view text, SourceLine at) {
  client::KALDEX_Error error;
  error.set_message(std::string(function).append(": ").append(text));
  error.set_identifier(
      std::string("orbserve:").append(function).append(":").append(kind));
  const std::string_view path(at.file);
  addFrame(error, path.substr(path.rfind('/') + 1), function, at.line);
  addReport(error);
  return error;
}

void addFrame(client::KALDEX_Error& error, std::string_view file, std::string_view name,
              int line) {
  client::KALDEX_Error::Stack_Frame& frame = *error.add_stack();
  frame.set_file(std::string(file));
  frame.set_name(std::string(name));
  frame.set_line(line);
}

void addReport(client::KALDEX_Error& error) {
  std::string report = "Error: " + error.message();
  for (const client::KALDEX_Error::Stack_Frame& frame : error.stack()) {
    report += "\n    in " + frame.name() + " (" + frame.file() + ":" +
              std::to_string(frame.line()) + ")";
  }
  error.set_report(report);
}

}  // namespace orb::serve
