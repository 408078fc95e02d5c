// SPDX-License-Identifier: MIT
#include "torture/ceilings/shapes.h"

#include "support/wire.h"

namespace orb::torture {
namespace {

namespace wire = test::wire;

// Fields of an array that clients do not use.
constexpr int kSharedData = 5;
constexpr int kObjects = 32;
constexpr int kUnknown = 1000;

std::string repeated(const std::string& unit, std::size_t bytes) {
  std::string result;
  result.reserve(bytes);
  while (result.size() + unit.size() <= bytes) result += unit;
  return result;
}

Body oneOutput(const std::string& array) { return {wire::result({array}), 1}; }

/// Nothing is read the short way that holds a field which no schema has.
std::string odd(const std::string& array) { return array + wire::number(kUnknown, 0); }

/// An array of a dense type, of elements that each look like the unit.
auto dense(int type, const std::string& unit) {
  return [=](std::size_t bytes) {
    const std::string list = repeated(unit, bytes);
    return oneOutput(
        wire::array(type, {1, list.size() / unit.size()}, wire::elements(list)));
  };
}

/// The same with a field for every element.
auto unpacked(int type, std::uint64_t value) {
  return [=](std::size_t bytes) {
    const std::string unit = wire::number(1, value);
    const std::string list = repeated(unit, bytes);
    return oneOutput(wire::array(type, {1, list.size() / unit.size()}, list));
  };
}

std::string sparsePart(int field, const std::string& unit, std::size_t bytes) {
  return wire::bytes(field, repeated(unit, bytes));
}

Body sparseDoubles(std::size_t bytes) {
  // Of each stored value a one-byte row index and eight bytes.
  const std::string values = wire::elements(repeated(wire::doubles({1}), bytes / 9 * 8));
  return oneOutput(wire::array(
      wire::kSparse, {1u << 31, 1},
      wire::number(1, 0) + sparsePart(2, "\1", bytes / 9) + wire::bytes(16, values)));
}

Body sparseLogicals(std::size_t bytes) {
  const std::string values = wire::elements(repeated("\1", bytes / 3));
  return oneOutput(wire::array(wire::kSparse, {1u << 31, 1},
                               wire::number(1, 1) + sparsePart(2, "\1", bytes / 3) +
                                   sparsePart(3, "\1", bytes / 3) +
                                   wire::bytes(17, values)));
}

std::string cells(const std::string& cell, std::size_t bytes) {
  const std::string unit = wire::bytes(1, cell);
  const std::string list = repeated(unit, bytes);
  return wire::array(wire::kCell, {1, list.size() / unit.size()}, list);
}

auto cellsOf(const std::string& cell) {
  return [=](std::size_t bytes) { return oneOutput(cells(cell, bytes)); };
}

/// These are read by the message library.
auto oddCellsOf(const std::string& cell) {
  return [=](std::size_t bytes) { return oneOutput(odd(cells(cell, bytes))); };
}

auto structOfFields(const std::string& name, const std::string& value) {
  return [=](std::size_t bytes) {
    const std::string unit = wire::bytes(1, name) + wire::bytes(2, value);
    const std::size_t count = bytes / unit.size();
    return oneOutput(wire::structRow(1, std::vector<std::string>(count, name),
                                     std::vector<std::string>(count, value)));
  };
}

Body structOfNames(std::size_t bytes) {
  return oneOutput(wire::structRow(0, std::vector<std::string>(bytes / 2), {}));
}

auto structElements(const std::string& value) {
  return [=](std::size_t bytes) {
    const std::size_t count = bytes / (2 * wire::bytes(2, value).size());
    return oneOutput(
        wire::structRow(count, {"a", "b"}, std::vector<std::string>(2 * count, value)));
  };
}

auto outputsOf(const std::string& array) {
  return [=](std::size_t bytes) {
    const std::string unit = wire::bytes(1, array);
    const std::string body = repeated(unit, bytes);
    return Body{body, static_cast<std::uint32_t>(body.size() / unit.size())};
  };
}

/// A 1-by-1 double array with such fields behind.
auto fields(int number, const std::string& content) {
  return [=](std::size_t bytes) {
    return oneOutput(wire::doubleRow({1}) +
                     wire::bytes(number, repeated(content, bytes)));
  };
}

auto unknownFields(const std::string& field) {
  return [=](std::size_t bytes) {
    return oneOutput(wire::doubleRow({1}) + repeated(field, bytes));
  };
}

Body extents(std::size_t bytes) {
  return oneOutput(wire::type(wire::kDouble) + wire::bytes(2, repeated("\1", bytes)));
}

std::string nestedArray(Nesting nesting, int depth) {
  std::string array = wire::doubleRow({42});
  for (int level = 0; level < depth; ++level) {
    const bool isCell = nesting == Nesting::kCells || level % 2 == 0;
    array = isCell ? wire::cellRow({array}) : wire::structRow(1, {"f"}, {array});
  }
  return array;
}

auto deepCells(int depth) {
  return cellsOf(nestedArray(Nesting::kCellsAndStructs, depth - 1));
}

/// An error whose stack has frames without anything in them.
Body frames(std::size_t bytes) {
  return {wire::bytes(2, repeated(wire::bytes(3, ""), bytes)), 0};
}

std::string group(const std::string& content) {
  return wire::varint(kUnknown << 3 | 3) + content + wire::varint(kUnknown << 3 | 4);
}

}  // namespace

// The ceilings are what was measured, and a tenth more. Where a factor is large, many
// messages or handles of some hundred bytes stand for two bytes on the wire each.
const std::vector<Shape>& shapes() {
  const std::string number = wire::doubleRow({1});
  static const std::vector<Shape> all = {
      {"uint8", dense(wire::kUint8, "\1"), 2.2, 2.2},
      {"int8", dense(wire::kInt8, "\1"), 2.2, 2.2},
      {"uint16 of 1 byte", dense(wire::kUint16, "\1"), 3.3, 3.3},
      {"uint16 of 3 bytes", dense(wire::kUint16, wire::varint(0xFFFF)), 1.9, 1.9},
      {"uint16 not packed", unpacked(wire::kUint16, 1), 7.8, 7.8},
      {"int16 of 1 byte", dense(wire::kInt16, "\1"), 3.3, 3.3},
      {"int16 of 10 bytes", dense(wire::kInt16, wire::varint(UINT64_MAX)), 1.4, 1.4},
      {"uint32", dense(wire::kUint32, wire::littleEndian(1u)), 2.2, 2.2},
      {"int32", dense(wire::kInt32, wire::littleEndian(1u)), 2.2, 2.2},
      {"uint64 of 1 byte", dense(wire::kUint64, "\1"), 28, 28},
      {"int64 of 1 byte", dense(wire::kInt64, "\1"), 28, 28},
      {"int64 not packed", unpacked(wire::kInt64, 1), 14.4, 14.4},
      {"single", dense(wire::kSingle, wire::littleEndian(1u)), 2.2, 2.2},
      {"double", dense(wire::kDouble, wire::doubles({1})), 2.2, 2.2},
      {"double, in chunks", dense(wire::kDouble, wire::doubles({1})), 2.3, 2.3,
       Framing::kChunked},
      {"logical", dense(wire::kLogical, "\1"), 4.4, 4.4},
      {"char of 1 byte", dense(wire::kChar, "x"), 3.3, 4.4},
      {"char of 3 bytes", dense(wire::kChar, wire::varint(0x20AC)), 2.2, 5.5},
      {"sparse doubles", sparseDoubles, 3.2, 3.2},
      {"sparse logicals", sparseLogicals, 12.2, 12.2},
      {"extents of 1 byte", extents, 28, 28},
      {"cells of nothing", cellsOf(""), 25, 210},
      {"cells of nothing, odd", oddCellsOf(""), 186, 213},
      {"cells of empty doubles", cellsOf(wire::emptySlot()), 7.8, 63},
      {"cells of empty cells", cellsOf(wire::type(wire::kCell)), 13.3, 93},
      {"cells of a double", cellsOf(number), 4.6, 27},
      {"cells of a double, odd", oddCellsOf(number), 26, 26},
      {"cells and structs 40 deep", deepCells(40), 2.3, 39},
      {"cells and structs 49 deep", deepCells(49), 37, 37},
      {"fields without a name", structOfNames, 41, 41},
      {"fields of a double", structOfFields("abc", number), 6.7, 6.7},
      {"struct elements of nothing", structElements(""), 25, 210},
      {"struct elements of doubles", structElements(number), 4.6, 27},
      {"outputs of nothing", outputsOf(""), 226, 244},
      {"outputs of empty doubles", outputsOf(wire::type(wire::kDouble)), 116, 127},
      {"outputs of empty cells", outputsOf(wire::type(wire::kCell)), 151, 151},
      {"outputs of empty chars", outputsOf(wire::type(wire::kChar)), 134, 134},
      {"unknown numbers", unknownFields(wire::number(kUnknown, 1)), 14.4, 14.4},
      {"unknown texts", unknownFields(wire::bytes(kUnknown, "")), 28, 28},
      {"unknown groups", unknownFields(group("")), 14.4, 14.4},
      {"objects of nothing", fields(kObjects, wire::bytes(1, "")), 94, 94},
      {"shared arrays of nothing",
       fields(kSharedData, wire::bytes(3, wire::bytes(1, ""))), 83, 83},
      {"frames of an error", frames, 50, 59},
      {"trailer lines",
       [](std::size_t bytes) {
         return Body{repeated("a:\r\n", bytes), 1};
       },
       17.6, 17.6, Framing::kTrailer},
  };
  return all;
}

std::string replyOf(Framing framing, const std::string& bytes) {
  switch (framing) {
    case Framing::kAnnounced:
      return wire::reply(bytes);
    case Framing::kChunked:
      return wire::chunkedReply(bytes);
    case Framing::kTrailer:
      break;
  }
  std::string reply = wire::chunkedReply(wire::result({""}));
  return reply.insert(reply.size() - 2, bytes);
}

Body nested(Nesting nesting, int depth) { return oneOutput(nestedArray(nesting, depth)); }

Body nestedGroups(int depth) {
  std::string content;
  for (int level = 0; level < depth; ++level) content = group(content);
  return oneOutput(wire::doubleRow({42}) + content);
}

Body nestedObjects(int depth) {
  std::string array = wire::doubleRow({42});
  for (int level = 0; level < depth; ++level) {
    const std::string object = wire::bytes(4, array);
    array = wire::doubleRow({42}) + wire::bytes(kObjects, wire::bytes(1, object));
  }
  return oneOutput(array);
}

Body nestedSharedData(int depth) {
  std::string array = wire::doubleRow({42});
  for (int level = 0; level < depth; ++level) {
    const std::string arrays = wire::bytes(3, wire::bytes(1, array));
    array = wire::doubleRow({42}) + wire::bytes(kSharedData, arrays);
  }
  return oneOutput(array);
}

}  // namespace orb::torture
