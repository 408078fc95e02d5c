// SPDX-License-Identifier: MIT
// Received arrays whose parts contradict each other: no function reads past what is
// stored, and they travel on as inputs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>

#include "client/transport/caller.h"
#include "client/transport/samples.h"
#include "client/transport/sweep.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;
using Extents = std::vector<std::uint64_t>;

constexpr std::uint64_t kTwoToThe32nd = std::uint64_t{1} << 32;
constexpr std::uint64_t kTwoToThe40th = std::uint64_t{1} << 40;

/// Shapes that fit none of the samples, or only by the product modulo 2 to the 64th.
const Extents kExtents[] = {
    {},
    {5},
    {0, 0},
    {1, 1},
    {7, 2},
    {1, 1000},
    {2, 1, 3},
    {kTwoToThe32nd, kTwoToThe32nd},  // wraps to 0
    {3, 0xAAAAAAAAAAAAAAAC},         // wraps to 4
    {kTwoToThe40th, 3},              // no memory holds it
    {1, UINT64_MAX},                 // one column less than can be counted
};

class Received : public ::testing::Test {
 protected:
  Array receive(const std::string& message) { return exchange_.receive(message); }

  /// The message that travels when the array is an input.
  std::string messageOf(orbArray a) {
    const std::string body = exchange_.bodyWith({a});
    const std::string head = wire::params(0, {""});
    return body.substr(head.size() - 1 + wire::varint(body.size() - head.size()).size());
  }

  Exchange exchange_;
};

TEST_F(Received, OfEveryClassAndAnyShapeStaysInsideWhatIsStored) {
  for (const Sample& sample : samples()) {
    const std::size_t stored = sample.type == wire::kSparse   ? 2
                               : sample.type >= wire::kStruct ? 0
                                                              : 3;
    for (const Extents& extents : kExtents) {
      SCOPED_TRACE(sample.name + " of " + ::testing::PrintToString(extents));
      const std::string message = wire::array(sample.type, extents, sample.payload);
      const Array array = receive(message);
      EXPECT_STREQ(orbGetClassName(array), sample.className.c_str());
      callEveryFunction(array, stored, orbIsComplex(array) ? stored : 0);
      EXPECT_EQ(exchange_.bodyWith({array, array}), wire::params(0, {message, message}));
    }
  }
}

TEST_F(Received, WithoutPayloadReadsAsWithoutElements) {
  for (int type = wire::kUint8; type <= wire::kSparse; ++type) {
    for (const Extents& extents : kExtents) {
      SCOPED_TRACE(std::to_string(type) + " of " + ::testing::PrintToString(extents));
      const Array array = receive(wire::type(type) + wire::dimensions(extents));
      EXPECT_EQ(orbGetScalar(array), 0.0);
      EXPECT_EQ(orbGetPr(array), nullptr);
      EXPECT_EQ(orbGetPi(array), nullptr);
      EXPECT_EQ(orbGetData(array), nullptr);
      EXPECT_EQ(orbGetImagData(array), nullptr);
      EXPECT_EQ(orbGetChars(array), nullptr);
      EXPECT_EQ(orbGetLogicals(array), nullptr);
      EXPECT_EQ(orbArrayToString(array), nullptr);
      EXPECT_EQ(orbGetCell(array, 0), nullptr);
      EXPECT_EQ(orbGetFieldByNumber(array, 0, 0), nullptr);
      EXPECT_EQ(orbGetIr(array), nullptr);
      EXPECT_EQ(orbGetJc(array), nullptr);
      EXPECT_FALSE(orbIsComplex(array));
      EXPECT_FALSE(orbIsLogicalScalarTrue(array));
      callEveryFunction(array);
      exchange_.bodyWith({array});
    }
  }
}

TEST_F(Received, WithoutAnyFieldIsUint8WithoutDimensions) {
  const Array array = receive("");
  EXPECT_EQ(orbGetClassID(array), orbUINT8_CLASS);
  EXPECT_EQ(orbGetNumberOfDimensions(array), 0U);
  EXPECT_EQ(orbGetNumberOfElements(array), 0U);
  EXPECT_TRUE(orbIsEmpty(array));
  callEveryFunction(array);
}

TEST_F(Received, WithoutDimensionsHasNoExtents) {
  const Array array =
      receive(wire::array(wire::kDouble, {}, wire::elements(wire::doubles({7}))));
  EXPECT_EQ(orbGetDimensions(array), nullptr);
  EXPECT_EQ(orbGetM(array), 0U);
  EXPECT_EQ(orbGetN(array), 0U);
  EXPECT_EQ(orbGetNumberOfElements(array), 0U);
  EXPECT_TRUE(orbIsEmpty(array));
  EXPECT_EQ(orbGetScalar(array), 7.0);
  orbSetM(array, 4);
  orbSetN(array, 4);
  EXPECT_EQ(orbGetNumberOfDimensions(array), 0U);
  EXPECT_EQ(orbGetScalar(array), 7.0);
}

TEST_F(Received, WithOneDimensionHasNoSecondExtent) {
  const Array array =
      receive(wire::array(wire::kDouble, {2}, wire::elements(wire::doubles({7, 8}))));
  EXPECT_EQ(orbGetM(array), 2U);
  EXPECT_EQ(orbGetN(array), 0U);
  EXPECT_EQ(orbGetNumberOfElements(array), 2U);
  EXPECT_FALSE(orbIsEmpty(array));
  orbSetN(array, 4);
  EXPECT_THAT(dimensionsOf(array), ElementsAre(2));
  orbSetM(array, 3);
  EXPECT_THAT(dimensionsOf(array), ElementsAre(3));
  EXPECT_THAT(elementsOf<double>(array), ElementsAre(7, 8, 0));
}

TEST_F(Received, LogicalOfOneDimensionIsNoScalar) {
  const Array array = receive(wire::array(wire::kLogical, {1}, wire::elements("\1")));
  EXPECT_FALSE(orbIsLogicalScalar(array));
  EXPECT_FALSE(orbIsLogicalScalarTrue(array));
}

TEST_F(Received, ImaginaryPartMayBeShorterOrLonger) {
  struct LengthRow {
    std::size_t real;
    std::size_t imaginary;
  };
  for (int type = wire::kUint8; type <= wire::kDouble; ++type) {
    // An element of each coding: raw bytes, varints, fixed bytes.
    const std::string element =
        type <= wire::kInt16                            ? "\1"
        : type <= wire::kInt32 || type == wire::kSingle ? std::string("\1\0\0\0", 4)
        : type <= wire::kInt64                          ? "\1"
                               : std::string("\1\0\0\0\0\0\0\0", 8);
    const auto list = [&element](std::size_t count) {
      std::string result;
      for (std::size_t i = 0; i < count; ++i) result += element;
      return result;
    };
    for (const LengthRow row : {LengthRow{3, 1}, {1, 3}, {3, 0}, {0, 3}, {0, 1}}) {
      SCOPED_TRACE(std::to_string(type) + ": " + std::to_string(row.real) + " and " +
                   std::to_string(row.imaginary));
      std::string payload;
      if (row.real > 0) payload += wire::bytes(1, list(row.real));
      if (row.imaginary > 0) payload += wire::bytes(2, list(row.imaginary));
      const std::string message = wire::array(type, {1, 3}, payload);
      const Array array = receive(message);
      EXPECT_EQ(orbIsComplex(array), row.imaginary > 0);
      EXPECT_EQ(orbGetData(array) == nullptr, row.real == 0);
      EXPECT_EQ(orbGetImagData(array) == nullptr, row.imaginary == 0);
      callEveryFunction(array, row.real, row.imaginary);
      EXPECT_EQ(messageOf(array), message);
    }
  }
}

TEST_F(Received, CharUnitsKeepTheirLow16Bits) {
  const Array array = receive(wire::array(
      wire::kChar, {1, 3}, wire::elements(wire::varints({0x10041, 0xFFFFFFFF, 0x42}))));
  EXPECT_EQ(unitsOf(array), std::u16string({0x41, 0xFFFF, 0x42}));
  EXPECT_EQ(orbGetScalar(array), 65.0);
  EXPECT_EQ(messageOf(array),
            wire::array(wire::kChar, {1, 3},
                        wire::elements(wire::varints({0x41, 0xFFFF, 0x42}))));
}

TEST_F(Received, SixteenBitElementsKeepTheirLow16Bits) {
  const Array array = receive(wire::array(
      wire::kInt16, {1, 2},
      wire::elements(wire::varints({0x1FFFF, 0x8000}), wire::varints({70000, 1}))));
  EXPECT_THAT(elementsOf<std::int16_t>(array), ElementsAre(-1, -32768));
  EXPECT_EQ(static_cast<std::int16_t*>(orbGetImagData(array))[0], 4464);
  const std::uint64_t minusOne = UINT64_MAX;
  EXPECT_EQ(messageOf(array),
            wire::array(wire::kInt16, {1, 2},
                        wire::elements(wire::varints({minusOne, minusOne - 32767}),
                                       wire::varints({4464, 1}))));
}

TEST_F(Received, MatrixOfUint16HasItsSixValuesInColumns) {
  const Array array = receive(wire::array(
      wire::kUint16, {2, 3}, wire::elements(wire::varints({1, 2, 300, 65535, 7, 0}))));
  EXPECT_EQ(orbGetM(array), 2U);
  EXPECT_EQ(orbGetN(array), 3U);
  EXPECT_THAT(elementsOf<std::uint16_t>(array), ElementsAre(1, 2, 300, 65535, 7, 0));
}

TEST_F(Received, MissingCharUnitsReadAsNul) {
  for (const Extents& extents :
       {Extents{1, 5}, Extents{kTwoToThe40th, 3}, Extents{3, 0xAAAAAAAAAAAAAAAC}}) {
    SCOPED_TRACE(::testing::PrintToString(extents));
    const Array array = receive(
        wire::array(wire::kChar, extents, wire::elements(wire::varints({0x41, 0x142}))));
    char text[] = "......";
    EXPECT_EQ(orbGetString(array, text, 4), 1);
    EXPECT_EQ(std::string(text, 6), std::string("AB\0\0..", 6));
    char* utf8 = orbArrayToString(array);
    EXPECT_STREQ(utf8, "A\xC5\x82");
    orbFree(utf8);
  }
  const Array array =
      receive(wire::array(wire::kChar, {1, 5}, wire::elements(wire::varints({0x41}))));
  char text[] = "......";
  EXPECT_EQ(orbGetString(array, text, 6), 0);
  EXPECT_EQ(std::string(text, 6), std::string("A\0\0\0\0\0", 6));
}

TEST_F(Received, CharUnitsBeyondTheDimensionsAreNotInTheString) {
  const Array array = receive(
      wire::array(wire::kChar, {1, 1}, wire::elements(wire::varints({0x41, 0x42}))));
  char text[] = "...";
  EXPECT_EQ(orbGetString(array, text, 3), 0);
  EXPECT_STREQ(text, "A");
}

TEST_F(Received, CellsBeyondTheListAreNotThere) {
  const Array cell = receive(
      wire::array(wire::kCell, {kTwoToThe40th, 1}, wire::bytes(1, wire::doubleRow({7}))));
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 0))), 7.0);
  const Array value(orbCreateDoubleScalar(8));
  for (const std::size_t index : {std::size_t{1}, std::size_t{kTwoToThe40th - 1},
                                  std::size_t{kTwoToThe40th}, SIZE_MAX}) {
    EXPECT_EQ(orbGetCell(cell, index), nullptr);
    orbSetCell(cell, index, value);
  }
  EXPECT_EQ(messageOf(cell), wire::array(wire::kCell, {kTwoToThe40th, 1},
                                         wire::bytes(1, wire::doubleRow({7}))));
}

TEST_F(Received, CellsBeyondTheDimensionsAreNotReached) {
  const Array cell = receive(wire::array(
      wire::kCell, {1, 1},
      wire::bytes(1, wire::doubleRow({7})) + wire::bytes(1, wire::doubleRow({8}))));
  EXPECT_EQ(orbGetCell(cell, 1), nullptr);
}

/// A struct of this many elements with these fields and this many values.
std::string structMessage(std::uint64_t count, const std::vector<std::string>& names,
                          std::size_t values) {
  return wire::structRow(count, names,
                         std::vector<std::string>(values, wire::doubleRow({7})));
}

TEST_F(Received, StructValuesBeyondTheListAreNotThere) {
  const std::string message = structMessage(kTwoToThe40th, {"a", "b"}, 3);
  const Array array = receive(message);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(array, 0, "b"))), 7.0);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(array, 1, "a"))), 7.0);
  const Array value(orbCreateDoubleScalar(8));
  EXPECT_EQ(orbGetField(array, 1, "b"), nullptr);
  EXPECT_EQ(orbGetFieldByNumber(array, 1, 1), nullptr);
  EXPECT_EQ(orbGetField(array, kTwoToThe40th - 1, "a"), nullptr);
  orbSetField(array, 1, "b", value);
  orbSetFieldByNumber(array, kTwoToThe40th - 1, 0, value);
  EXPECT_EQ(messageOf(array), message);
}

TEST_F(Received, StructWhoseListDoesNotMatchTakesNoField) {
  struct MismatchRow {
    std::uint64_t count;
    std::vector<std::string> names;
    std::size_t values;
  };
  const MismatchRow rows[] = {
      {2, {"a", "b"}, 3},     {2, {"a", "b"}, 5},
      {2, {"a"}, 0},          {2, {}, 2},
      {1, {"a"}, 2},          {kTwoToThe40th, {"a"}, 1},
      {UINT64_MAX, {"a"}, 1}, {kTwoToThe32nd << 31, {"a", "b"}, 0},
  };
  for (const MismatchRow& row : rows) {
    SCOPED_TRACE(std::to_string(row.count) + " with " + std::to_string(row.values));
    const std::string message = structMessage(row.count, row.names, row.values);
    const Array array = receive(message);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(orbAddField(array, "c"), -1);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_EQ(orbGetNumberOfFields(array), static_cast<int>(row.names.size()));
    if (!row.names.empty()) {
      EXPECT_EQ(orbAddField(array, "a"), 0);
    }
    EXPECT_EQ(messageOf(array), message);
    callEveryFunction(array);
  }
}

TEST_F(Received, StructWithoutElementsTakesTheNameOfAFieldOnly) {
  for (const Extents& extents : {Extents{}, Extents{0, 3}}) {
    for (const std::string& values :
         {std::string(), wire::bytes(2, wire::doubleRow({7}))}) {
      const Array array =
          receive(wire::array(wire::kStruct, extents, wire::bytes(1, "a") + values));
      EXPECT_EQ(orbAddField(array, "b"), 1);
      EXPECT_EQ(messageOf(array),
                wire::array(wire::kStruct, extents,
                            wire::bytes(1, "a") + wire::bytes(1, "b") + values));
    }
  }
}

TEST_F(Received, StructThatMatchesTakesAField) {
  const Array array = receive(structMessage(2, {"a"}, 2));
  EXPECT_EQ(orbAddField(array, "b"), 1);
  // A value added in this way carries an empty payload of another class.
  const std::string added = wire::emptySlot() + wire::bytes(16, wire::bytes(1, ""));
  EXPECT_EQ(messageOf(array),
            wire::structRow(2, {"a", "b"},
                            {wire::doubleRow({7}), added, wire::doubleRow({7}), added}));
}

TEST_F(Received, StructWhoseListDoesNotMatchLosesFieldsInsideIt) {
  const Array array = receive(structMessage(kTwoToThe40th, {"a", "b"}, 3));
  orbRemoveField(array, 0);
  EXPECT_EQ(orbGetNumberOfFields(array), 1);
  EXPECT_STREQ(orbGetFieldNameByNumber(array, 0), "b");
  callEveryFunction(array);
}

TEST_F(Received, ElementOfARefusedTypeThrowsWhenItIsTaken) {
  const std::string refused = wire::type(wire::kString) + wire::dimensions({1, 1});
  const std::string cellMessage = wire::cellRow({wire::doubleRow({7}), refused});
  const std::string structBytes =
      wire::structRow(1, {"a", "b"}, {refused, wire::doubleRow({7})});
  const Array cell = receive(cellMessage);
  const Array structure = receive(structBytes);
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 0))), 7.0);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(structure, 0, "b"))), 7.0);
  const auto expectRefusal = [](const auto& take) {
    try {
      const Array taken(take());
      ADD_FAILURE() << "taken";
    } catch (const std::invalid_argument& failure) {
      EXPECT_STREQ(failure.what(), "dispatch_on_QXType");
    }
  };
  expectRefusal([&] { return orbGetCell(cell, 1); });
  expectRefusal([&] { return orbGetField(structure, 0, "a"); });
  expectRefusal([&] { return orbGetFieldByNumber(structure, 0, 0); });
  callEveryFunction(cell);
  callEveryFunction(structure);
  EXPECT_EQ(messageOf(cell), cellMessage);
  EXPECT_EQ(messageOf(structure), structBytes);
  orbSetCell(cell, 1, Array(orbCreateDoubleScalar(8)));
  EXPECT_EQ(orbGetScalar(Array(orbGetCell(cell, 1))), 8.0);
}

TEST_F(Received, SparsePartsMayHaveAnyLengths) {
  const std::string head = wire::number(1, 0);
  const std::string ir = wire::bytes(2, wire::varints({2}));
  const std::string jc = wire::bytes(3, wire::varints({0, 1}));
  const std::string values = wire::bytes(16, wire::elements(wire::doubles({1, 2})));
  const std::string imaginary =
      wire::bytes(16, wire::elements(wire::doubles({1}), wire::doubles({2, 3, 4})));
  for (const std::string& payload :
       {head, head + ir, head + jc, head + values, head + ir + values, head + imaginary,
        ir + jc + imaginary, std::string()}) {
    for (const Extents& extents : kExtents) {
      SCOPED_TRACE(::testing::PrintToString(extents));
      const std::string message = wire::array(wire::kSparse, extents, payload);
      const Array array = receive(message);
      EXPECT_EQ(orbGetClassID(array), orbDOUBLE_CLASS);
      callEveryFunction(array);
      exchange_.bodyWith({array});
    }
  }
}

TEST_F(Received, SparseOfAnotherKindOfValuesHasNone) {
  const std::string ir = wire::bytes(2, wire::varints({2}));
  const std::string values = wire::bytes(16, wire::elements(wire::doubles({1})));
  const Array array =
      receive(wire::array(wire::kSparse, {1, 1}, wire::number(1, 1) + ir + values));
  EXPECT_TRUE(orbIsLogical(array));
  EXPECT_EQ(orbGetLogicals(array), nullptr);
  EXPECT_EQ(orbGetPr(array), nullptr);
  EXPECT_TRUE(orbIsLogicalScalar(array));
  EXPECT_FALSE(orbIsLogicalScalarTrue(array));
  callEveryFunction(array);
}

TEST_F(Received, OutlivesItsContextAndTheNextCalls) {
  Array array;
  {
    Exchange exchange;
    array = exchange.receive(wire::cellRow({wire::charRow(u"ab")}));
    exchange.receive(wire::doubleRow({1}));
  }
  EXPECT_EQ(unitsOf(Array(orbGetCell(array, 0))), u"ab");
}

}  // namespace
}  // namespace orb::test
