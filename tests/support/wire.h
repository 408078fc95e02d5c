// SPDX-License-Identifier: MIT
// Builders of message bytes, written by hand so that damaged forms can be made as well.
#ifndef ORB_TESTS_SUPPORT_WIRE_H_
#define ORB_TESTS_SUPPORT_WIRE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace orb::test::wire {

/// Types of arrays, as numbered on the wire.
enum Type {
  kUint8,
  kInt8,
  kUint16,
  kInt16,
  kUint32,
  kInt32,
  kUint64,
  kInt64,
  kSingle,
  kDouble,
  kLogical,
  kChar,
  kStruct,
  kCell,
  kSparse,
  kObject,
  kHandleObjectRef,
  kArrayRef,
  kEnumeration,
  kString
};

/// The number of the payload field of a type up to kSparse.
constexpr int payloadField(int type) {
  if (type == kStruct) return 29;
  return type == kCell ? 28 : 16 + type;
}

std::string varint(std::uint64_t value);

/// One field each: a varint, a length-delimited one, a fixed one.
std::string number(int field, std::uint64_t value);
std::string bytes(int field, const std::string& content);
std::string fixed32(int field, std::uint32_t value);
std::string fixed64(int field, std::uint64_t value);

/// The elements of a list one behind the other, as packed lists hold them.
std::string varints(const std::vector<std::uint64_t>& values);
std::string doubles(const std::vector<double>& values);
template <class T>
std::string littleEndian(T value) {
  std::string result;
  for (std::size_t i = 0; i < sizeof value; ++i) {
    result.push_back(static_cast<char>(value >> (8 * i)));
  }
  return result;
}

/// The type and dimension fields of an array.
std::string type(int value);
std::string dimensions(const std::vector<std::uint64_t>& extents);

/// Type, dimensions and the payload field that belongs to the type.
std::string array(int arrayType, const std::vector<std::uint64_t>& extents,
                  const std::string& payload);
/// The payload of the first twelve types: packed or raw elements.
std::string elements(const std::string& real);
std::string elements(const std::string& real, const std::string& imaginary);

std::string doubleRow(const std::vector<double>& values);
std::string charRow(const std::u16string& units);
std::string cellRow(const std::vector<std::string>& cells);
std::string structRow(std::uint64_t count, const std::vector<std::string>& fieldNames,
                      const std::vector<std::string>& values);
std::string emptySlot();

/// The body of a call.
std::string params(std::uint32_t outputs, const std::vector<std::string>& inputs);

struct Frame {
  std::string file;
  std::string name;
  std::int32_t line;
};

/// The body of a reply: outputs, or an error.
std::string result(const std::vector<std::string>& outputs);
std::string error(const std::string& message, const std::string& identifier,
                  const std::vector<Frame>& stack = {});

/// A whole HTTP reply with status 200 and the body's length.
std::string reply(const std::string& body);
/// A whole HTTP reply with status 200 in one chunk, which announces no length.
std::string chunkedReply(const std::string& body);

}  // namespace orb::test::wire

#endif  // ORB_TESTS_SUPPORT_WIRE_H_
