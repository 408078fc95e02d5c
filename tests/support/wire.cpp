// SPDX-License-Identifier: MIT
#include "support/wire.h"

#include <cstring>
#include <sstream>

namespace orb::test::wire {
namespace {

enum WireType { kVarint = 0, kFixed64 = 1, kBytes = 2, kFixed32 = 5 };

std::string tag(int field, WireType wireType) {
  return varint(static_cast<std::uint64_t>(field) << 3 | wireType);
}

std::string hex(std::size_t value) {
  std::ostringstream text;
  text << std::hex << value;
  return text.str();
}

}  // namespace

std::string varint(std::uint64_t value) {
  std::string result;
  for (; value >= 0x80; value >>= 7) {
    result.push_back(static_cast<char>(value | 0x80));
  }
  result.push_back(static_cast<char>(value));
  return result;
}

std::string number(int field, std::uint64_t value) {
  return tag(field, kVarint) + varint(value);
}

std::string bytes(int field, const std::string& content) {
  return tag(field, kBytes) + varint(content.size()) + content;
}

std::string fixed32(int field, std::uint32_t value) {
  return tag(field, kFixed32) + littleEndian(value);
}

std::string fixed64(int field, std::uint64_t value) {
  return tag(field, kFixed64) + littleEndian(value);
}

std::string varints(const std::vector<std::uint64_t>& values) {
  std::string result;
  for (const std::uint64_t value : values) result += varint(value);
  return result;
}

std::string doubles(const std::vector<double>& values) {
  std::string result;
  for (const double value : values) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    result += littleEndian(bits);
  }
  return result;
}

std::string type(int value) { return number(1, static_cast<std::uint64_t>(value)); }

std::string dimensions(const std::vector<std::uint64_t>& extents) {
  return extents.empty() ? "" : bytes(2, varints(extents));
}

std::string array(int arrayType, const std::vector<std::uint64_t>& extents,
                  const std::string& payload) {
  return type(arrayType) + dimensions(extents) + bytes(payloadField(arrayType), payload);
}

std::string elements(const std::string& real) { return bytes(1, real); }

std::string elements(const std::string& real, const std::string& imaginary) {
  return bytes(1, real) + bytes(2, imaginary);
}

std::string doubleRow(const std::vector<double>& values) {
  return array(kDouble, {1, values.size()}, elements(doubles(values)));
}

std::string charRow(const std::u16string& units) {
  return array(kChar, {1, units.size()}, elements(varints({units.begin(), units.end()})));
}

std::string cellRow(const std::vector<std::string>& cells) {
  std::string payload;
  for (const std::string& cell : cells) payload += bytes(1, cell);
  return array(kCell, {1, cells.size()}, payload);
}

std::string structRow(std::uint64_t count, const std::vector<std::string>& fieldNames,
                      const std::vector<std::string>& values) {
  std::string payload;
  for (const std::string& name : fieldNames) payload += bytes(1, name);
  for (const std::string& value : values) payload += bytes(2, value);
  return array(kStruct, {1, count}, payload);
}

std::string emptySlot() { return type(kDouble) + dimensions({0, 0}); }

std::string params(std::uint32_t outputs, const std::vector<std::string>& inputs) {
  std::string body = number(1, outputs);
  for (const std::string& input : inputs) body += bytes(2, input);
  return body;
}

std::string result(const std::vector<std::string>& outputs) {
  std::string body;
  for (const std::string& output : outputs) body += bytes(1, output);
  return body;
}

std::string error(const std::string& message, const std::string& identifier,
                  const std::vector<Frame>& stack) {
  std::string content = bytes(1, message) + bytes(2, identifier);
  for (const Frame& frame : stack) {
    content += bytes(3, bytes(1, frame.file) + bytes(2, frame.name) +
                            number(3, static_cast<std::uint64_t>(frame.line)));
  }
  return bytes(2, content);
}

std::string reply(const std::string& body) {
  return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\n\r\n" + body;
}

std::string chunkedReply(const std::string& body) {
  // An empty chunk would be the last one.
  const std::string chunk = body.empty() ? "" : hex(body.size()) + "\r\n" + body + "\r\n";
  return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + chunk + "0\r\n\r\n";
}

}  // namespace orb::test::wire
