// SPDX-License-Identifier: MIT
#include "array/packed_varints.h"

#include <gtest/gtest.h>

#include "array/varint_groups.h"
#include "unit/wire/random_array.h"

namespace orb::test {
namespace {

/// Elements and the bytes that the message library makes of them.
template <class Element>
struct Reference;

template <>
struct Reference<uint16_t> {
  static std::string pack(const std::vector<uint16_t>& elements) {
    KALDEX_Array::Uint16 payload;
    for (const uint16_t element : elements) payload.add_elements(element);
    return payload.SerializeAsString();
  }
};

template <>
struct Reference<int16_t> {
  static std::string pack(const std::vector<int16_t>& elements) {
    KALDEX_Array::Int16 payload;
    for (const int16_t element : elements) payload.add_elements(element);
    return payload.SerializeAsString();
  }
};

template <>
struct Reference<char16_t> {
  static std::string pack(const std::vector<char16_t>& elements) {
    KALDEX_Array::Char payload;
    for (const char16_t element : elements) payload.add_elements(element);
    return payload.SerializeAsString();
  }
};

/// The packed list inside a payload of one field.
std::string listIn(const std::string& payload) {
  wire::Reader reader(sliceOf(payload));
  uint64_t tag = 0;
  wire::Slice list{};
  if (payload.empty() || !reader.readVarint(tag) || !reader.readLengthDelimited(list))
    return "";
  return std::string(reinterpret_cast<const char*>(list.data), list.size);
}

template <class Element>
class PackedVarints : public ::testing::Test {
 protected:
  static void expectSameAsMessageLibrary(const std::vector<Element>& elements) {
    const std::string expected = listIn(Reference<Element>::pack(elements));
    const size_t size = wire::packedSize(elements.data(), elements.size());
    ASSERT_EQ(size, expected.size());
    // Not a byte more, not even one that would be written over.
    const std::string behind(64, '#');
    std::string bytes = std::string(size, '\0') + behind;
    auto* const start = reinterpret_cast<uint8_t*>(bytes.data());
    ASSERT_EQ(wire::writePacked(elements.data(), elements.size(), start), start + size);
    ASSERT_EQ(bytes, expected + behind);
    std::vector<Element> read;
    ASSERT_TRUE(wire::readPacked({start, size}, read));
    ASSERT_EQ(read, elements);
  }
};

using Elements = ::testing::Types<uint16_t, int16_t, char16_t>;
TYPED_TEST_SUITE(PackedVarints, Elements, );

TYPED_TEST(PackedVarints, OfEveryElementAreTheMessageLibrarys) {
  std::vector<TypeParam> elements;
  for (uint32_t i = 0; i <= 0xFFFF; ++i) elements.push_back(static_cast<TypeParam>(i));
  this->expectSameAsMessageLibrary(elements);
}

TYPED_TEST(PackedVarints, OfEveryCountAndMagnitudeAreTheMessageLibrarys) {
  RandomArrays random(4);
  for (size_t count = 0; count < 120; ++count) {
    for (const uint32_t bound : {0x80u, 0x81u, 0x4000u, 0x10000u}) {
      std::vector<TypeParam> elements(count);
      for (TypeParam& element : elements) {
        element = static_cast<TypeParam>(random.oneIn(3) ? random.below(bound) : 7);
      }
      this->expectSameAsMessageLibrary(elements);
    }
  }
}

// Whether all elements of a block take a byte each is told by the bits that any of them has.
TYPED_TEST(PackedVarints, OfOneBitAreTheMessageLibrarys) {
  for (int bit = 0; bit < 16; ++bit) {
    const std::vector<TypeParam> elements(200, static_cast<TypeParam>(1u << bit));
    this->expectSameAsMessageLibrary(elements);
  }
}

#ifdef ORB_VARINT_GROUPS
TEST(ReadGroups, GoesOnWhileABlockHasRoom) {
  if (!wire::hasVarintGroups()) GTEST_SKIP() << "not on this processor";
  struct Row {
    uint16_t first;
    uint16_t others;
    uint64_t ends;  // in a block of these elements
    size_t bytesRead;
    size_t elementsRead;
  };
  for (const Row& row :
       {Row{7, 7, ~uint64_t{0}, 52, 52}, Row{300, 7, ~uint64_t{1}, 49, 48},
        Row{300, 300, 0xAAAAAAAAAAAAAAAA, 56, 28},
        Row{40000, 40000, 0x4924924924924924, 60, 20}}) {
    std::vector<uint16_t> elements(64, row.others);
    elements[0] = row.first;
    uint8_t block[3 * 64];
    wire::writePacked(elements.data(), elements.size(), &block[0]);
    std::vector<uint16_t> read(64);
    uint16_t* target = read.data();
    EXPECT_EQ(wire::readGroups(&block[0], row.ends, target), &block[row.bytesRead]);
    elements.resize(row.elementsRead);
    read.resize(static_cast<size_t>(target - read.data()));
    EXPECT_EQ(read, elements);
  }
}
#endif

TYPED_TEST(PackedVarints, OfShortElementsAreNotWrittenPastTheirEnd) {
  for (size_t count = 60; count < 100; ++count) {
    std::vector<TypeParam> elements(count, 7);
    elements[0] = 300;  // else the bytes would be copied
    this->expectSameAsMessageLibrary(elements);
  }
}

TEST(ReadPacked, KeepsTheLow16BitsOfLongVarints) {
  std::vector<uint16_t> read;
  const std::string bytes = "\xFF\xFF\xFF\xFF\x0F\x80\x80\x04\x05";
  ASSERT_TRUE(wire::readPacked(sliceOf(bytes), read));
  EXPECT_EQ(read, (std::vector<uint16_t>{0xFFFF, 0, 5}));
}

TEST(ReadPacked, ReadsABlockToItsLastByte) {
  std::string bytes;
  for (int i = 0; i < 16; ++i) bytes += "\xFF\xFF\xFF\x7F";
  std::vector<uint16_t> read;
  ASSERT_TRUE(wire::readPacked(sliceOf(bytes), read));
  EXPECT_EQ(read, std::vector<uint16_t>(16, 0xFFFF));
}

TEST(ReadPacked, RefusesWhatEndsInsideAVarint) {
  RandomArrays random(5);
  for (size_t size = 1; size < 80; ++size) {
    std::string bytes(size, 'x');
    bytes.back() = '\x80';
    std::vector<char16_t> read;
    EXPECT_FALSE(wire::readPacked(sliceOf(bytes), read)) << size;
  }
}

TEST(ReadPacked, RefusesVarintsOfElevenBytes) {
  for (size_t before = 0; before < 40; ++before) {
    const std::string bytes =
        std::string(before, 'x') + std::string(10, '\x80') + std::string(80, '\x01');
    std::vector<uint16_t> read;
    EXPECT_FALSE(wire::readPacked(sliceOf(bytes), read)) << before;
  }
}

TEST(ReadPacked, ReadsRandomBytesAsTheMessageLibraryDoes) {
  RandomArrays random(6);
  for (int i = 0; i < 20000; ++i) {
    std::string bytes(random.below(60), '\0');
    for (char& byte : bytes)
      byte = static_cast<char>(random.oneIn(2) ? random.below(256) : 'x');
    std::string payload =
        "\x0A" + std::string(1, static_cast<char>(bytes.size())) + bytes;
    KALDEX_Array::Uint16 message;
    const bool valid = message.ParseFromString(payload);
    std::vector<uint16_t> read;
    ASSERT_EQ(wire::readPacked(sliceOf(bytes), read), valid);
    if (!valid) continue;
    ASSERT_EQ(read.size(), static_cast<size_t>(message.elements_size()));
    for (size_t j = 0; j < read.size(); ++j) {
      ASSERT_EQ(read[j], static_cast<uint16_t>(message.elements(static_cast<int>(j))));
    }
  }
}

}  // namespace
}  // namespace orb::test
