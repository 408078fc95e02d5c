// SPDX-License-Identifier: MIT
#include "client/transport/samples.h"

#include <cstring>

#include "support/wire.h"

namespace orb::test {
namespace {

/// How the elements of a list are written.
enum class Coding { kBytes, kVarint, kFixed32, kFixed64 };

/// Elements as their bits, sign-extended to 64; a row of them.
struct Elements {
  orbClassID classId;
  const char* className;
  std::size_t size;
  Coding coding;
  std::vector<std::uint64_t> real;
  std::vector<std::uint64_t> imaginary;
};

constexpr std::uint64_t kMinusOne = ~std::uint64_t{0};

// Zero, one or minus one, and the end of the range that takes most bytes.
const Elements kElements[] = {
    {orbUINT8_CLASS, "uint8", 1, Coding::kBytes, {0, 1, 255}, {2, 3, 128}},
    {orbINT8_CLASS, "int8", 1, Coding::kBytes, {0, 255, 128}, {127, 1, 2}},
    {orbUINT16_CLASS, "uint16", 2, Coding::kVarint, {0, 1, 65535}, {2, 300, 32768}},
    {orbINT16_CLASS,
     "int16",
     2,
     Coding::kVarint,
     {0, kMinusOne, kMinusOne - 32767},
     {2, 300, 32767}},
    {orbUINT32_CLASS,
     "uint32",
     4,
     Coding::kFixed32,
     {0, 1, 0xFFFFFFFF},
     {2, 3, 0x80000000}},
    {orbINT32_CLASS,
     "int32",
     4,
     Coding::kFixed32,
     {0, 0xFFFFFFFF, 0x80000000},
     {2, 3, 0x7FFFFFFF}},
    {orbUINT64_CLASS,
     "uint64",
     8,
     Coding::kVarint,
     {0, 1, kMinusOne},
     {2, 300, 1U << 31}},
    {orbINT64_CLASS,
     "int64",
     8,
     Coding::kVarint,
     {0, kMinusOne, std::uint64_t{1} << 63},
     {2, 300, kMinusOne >> 1}},
    // 1.5, minus infinity and a NaN with a payload; minus zero and the smallest number.
    {orbSINGLE_CLASS,
     "single",
     4,
     Coding::kFixed32,
     {0x3FC00000, 0xFF800000, 0x7FC00001},
     {0x80000000, 1, 0}},
    {orbDOUBLE_CLASS,
     "double",
     8,
     Coding::kFixed64,
     {0x3FF8000000000000, 0xFFF0000000000000, 0x7FF8000000000001},
     {0x8000000000000000, 1, 0}},
    {orbLOGICAL_CLASS, "logical", 1, Coding::kVarint, {0, 1, 1}, {}},
    {orbCHAR_CLASS, "char", 2, Coding::kVarint, {0x41, 0, 0xD83D}, {}},
};

std::string packed(Coding coding, const std::vector<std::uint64_t>& values) {
  std::string result;
  for (const std::uint64_t value : values) {
    switch (coding) {
      case Coding::kBytes:
        result += wire::littleEndian(static_cast<std::uint8_t>(value));
        break;
      case Coding::kVarint:
        result += wire::varint(value);
        break;
      case Coding::kFixed32:
        result += wire::littleEndian(static_cast<std::uint32_t>(value));
        break;
      case Coding::kFixed64:
        result += wire::littleEndian(value);
        break;
    }
  }
  return result;
}

std::string unpacked(Coding coding, int field, const std::vector<std::uint64_t>& values) {
  std::string result;
  for (const std::uint64_t value : values) {
    switch (coding) {
      case Coding::kBytes:
        return wire::bytes(field, packed(coding, values));
      case Coding::kVarint:
        result += wire::number(field, value);
        break;
      case Coding::kFixed32:
        result += wire::fixed32(field, static_cast<std::uint32_t>(value));
        break;
      case Coding::kFixed64:
        result += wire::fixed64(field, value);
        break;
    }
  }
  return result;
}

void fill(void* first, const Elements& of, const std::vector<std::uint64_t>& values) {
  auto* to = static_cast<unsigned char*>(first);
  for (const std::uint64_t value : values) {
    std::memcpy(to, &value, of.size);  // the low bytes come first
    to += of.size;
  }
}

void* dataOf(orbArray a) {
  if (orbIsLogical(a)) return orbGetLogicals(a);
  if (orbIsChar(a)) return orbGetChars(a);
  return orbGetData(a);
}

Array make(const Elements& of, bool complex) {
  const size_t extents[] = {1, of.real.size()};
  if (of.classId == orbLOGICAL_CLASS || of.classId == orbCHAR_CLASS) {
    Array row(of.classId == orbCHAR_CLASS ? orbCreateCharArray(2, extents)
                                          : orbCreateLogicalArray(2, extents));
    fill(dataOf(row), of, of.real);
    return row;
  }
  Array row(
      orbCreateNumericArray(2, extents, of.classId, complex ? orbCOMPLEX : orbREAL));
  fill(dataOf(row), of, of.real);
  if (complex) fill(orbGetImagData(row), of, of.imaginary);
  return row;
}

Sample sampleOf(const Elements& of, bool complex) {
  std::string payload = wire::bytes(1, packed(of.coding, of.real));
  std::string unpackedPayload = unpacked(of.coding, 1, of.real);
  if (complex) {
    payload += wire::bytes(2, packed(of.coding, of.imaginary));
    unpackedPayload += unpacked(of.coding, 2, of.imaginary);
  }
  return {(complex ? "complex " : "") + std::string(of.className),
          of.className,
          of.classId,
          payload,
          unpackedPayload,
          {1, of.real.size()},
          [&of, complex] { return make(of, complex); }};
}

/// 1-by-2 with fields x and y: 2 and "ab", and two values never set.
Sample structSample() {
  std::string payload = wire::bytes(1, "x") + wire::bytes(1, "y");
  for (const std::string& value : {wire::doubleRow({2}), wire::charRow(u"ab"),
                                   wire::emptySlot(), wire::emptySlot()}) {
    payload += wire::bytes(2, value);
  }
  return {"struct", "struct", wire::kStruct, payload, payload, {1, 2}, [] {
            const char* names[] = {"x", "y"};
            Array result(orbCreateStructMatrix(1, 2, 2, names));
            orbSetField(result, 0, "x", doubleRow({2}));
            orbSetField(result, 0, "y", charRow(u"ab"));
            return result;
          }};
}

/// A cell with a number, a cell with a text inside, and one never set.
Sample cellSample() {
  const std::string payload = wire::bytes(1, wire::doubleRow({2})) +
                              wire::bytes(1, wire::cellRow({wire::charRow(u"ab")})) +
                              wire::bytes(1, wire::emptySlot());
  return {"cell", "cell", wire::kCell, payload, payload, {1, 3}, [] {
            Array result(orbCreateCellMatrix(1, 3));
            orbSetCell(result, 0, doubleRow({2}));
            orbSetCell(result, 1, cellRow(charRow(u"ab")));
            return result;
          }};
}

/// 3-by-2 with a value at (1, 0) and one at (2, 1).
Sample sparseSample(bool logical, bool complex) {
  const std::string lists =
      wire::bytes(2, wire::varints({1, 2})) + wire::bytes(3, wire::varints({0, 1, 2}));
  const std::string unpackedLists = wire::number(2, 1) + wire::number(2, 2) +
                                    wire::number(3, 0) + wire::number(3, 1) +
                                    wire::number(3, 2);
  std::string values = wire::elements(wire::doubles({1.5, -2}));
  if (logical) values = wire::elements(wire::varints({1, 0}));
  if (complex) values = wire::elements(wire::doubles({1.5, -2}), wire::doubles({3, 4}));
  const std::string tail = wire::bytes(logical ? 17 : 16, values);
  const std::string head = wire::number(1, logical ? 1 : 0);
  return {std::string("sparse ") + (complex ? "complex " : "") +
              (logical ? "logical" : "double"),
          logical ? "logical" : "double",
          wire::kSparse,
          head + lists + tail,
          head + unpackedLists + tail,
          {3, 2},
          [logical, complex] {
            Array result(logical
                             ? orbCreateSparseLogicalMatrix(3, 2, 2)
                             : orbCreateSparse(3, 2, 2, complex ? orbCOMPLEX : orbREAL));
            orbGetIr(result)[0] = 1;
            orbGetIr(result)[1] = 2;
            orbGetJc(result)[1] = 1;
            orbGetJc(result)[2] = 2;
            if (logical) {
              orbGetLogicals(result)[0] = true;
              return result;
            }
            orbGetPr(result)[0] = 1.5;
            orbGetPr(result)[1] = -2;
            if (complex) {
              orbGetPi(result)[0] = 3;
              orbGetPi(result)[1] = 4;
            }
            return result;
          }};
}

std::vector<Sample> makeSamples() {
  std::vector<Sample> result;
  for (const Elements& elements : kElements) {
    result.push_back(sampleOf(elements, false));
    if (!elements.imaginary.empty()) result.push_back(sampleOf(elements, true));
  }
  result.push_back(structSample());
  result.push_back(cellSample());
  result.push_back(sparseSample(false, false));
  result.push_back(sparseSample(false, true));
  result.push_back(sparseSample(true, false));
  return result;
}

}  // namespace

std::string Sample::message() const { return wire::array(type, extents, payload); }

const std::vector<Sample>& samples() {
  static const std::vector<Sample> all = makeSamples();
  return all;
}

}  // namespace orb::test
