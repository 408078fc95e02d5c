// SPDX-License-Identifier: MIT
#include "client/transport/decoder.h"

#include <array>
#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace orb::test {
namespace {

std::string hexadecimal(const std::string& bytes) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string result;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    result += {kDigits[value / 16], kDigits[value % 16]};
  }
  return result;
}

std::string outputOf(const std::string& command) {
  FILE* pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("popen");
  std::string output;
  std::array<char, 4096> part;
  while (const std::size_t size = std::fread(part.data(), 1, part.size(), pipe)) {
    output.append(part.data(), size);
  }
  if (::pclose(pipe) != 0) throw std::runtime_error("the decoder failed");
  return output;
}

}  // namespace

std::vector<std::string> decode(const std::vector<std::string>& bodies) {
  std::string command =
      "PROTOCOL_BUFFERS_PYTHON_IMPLEMENTATION=python PYTHONDONTWRITEBYTECODE=1 "
      "PYTHONPATH='" ORB_PYTHON_CLASSES "' '" ORB_PYTHON "' '" ORB_DECODER "'";
  for (const std::string& body : bodies) command += " " + hexadecimal(body);
  std::istringstream output(outputOf(command));
  std::vector<std::string> lines;
  for (std::string line; std::getline(output, line);) lines.push_back(line);
  if (lines.size() != bodies.size()) throw std::runtime_error("the decoder lost a body");
  return lines;
}

}  // namespace orb::test
