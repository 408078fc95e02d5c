// SPDX-License-Identifier: MIT
#include "array/message_pieces.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orb::wire {
namespace {

constexpr size_t kLarge = size_t{64} << 10;

/// All that is left, read a few bytes at a time.
std::string readBy(size_t capacity, MessagePieces& pieces) {
  std::string bytes;
  std::vector<uint8_t> part(capacity);
  while (const size_t count = pieces.read(part.data(), capacity)) {
    bytes.append(part.begin(), part.begin() + static_cast<ptrdiff_t>(count));
  }
  return bytes;
}

class MessagePiecesTest : public ::testing::Test {
 protected:
  MessagePiecesTest() { pieces_.start(block_); }

  std::string written() const {
    return std::string(block_, static_cast<const uint8_t*>(pieces_.end()));
  }

  uint8_t block_[kLarge + 100];
  MessagePieces pieces_;
};

TEST_F(MessagePiecesTest, WritesSmallListsToTheBlock) {
  pieces_.appendField(1, asStored("abc", 3));
  pieces_.append(asStored("de", 2));
  const std::vector<int16_t> numbers = {1, 300, 9};
  pieces_.appendField(2, asVarints(numbers, 2, 3));
  pieces_.finish();
  EXPECT_TRUE(pieces_.isInBlock());
  EXPECT_EQ(written(),
            "\x0A\x03"
            "abcde"
            "\x12\x03\x01\xAC\x02");
}

TEST_F(MessagePiecesTest, LeavesOutFieldsWithoutElements) {
  pieces_.appendField(1, asStored(nullptr, 0));
  pieces_.finish();
  EXPECT_TRUE(pieces_.isInBlock());
  EXPECT_EQ(written(), "");
}

TEST_F(MessagePiecesTest, LendsListsFrom64KiBOn) {
  const std::string below(kLarge - 1, 'b');
  const std::string large(kLarge, 'l');
  pieces_.append(asStored(below.data(), below.size()));
  EXPECT_TRUE(pieces_.isInBlock());
  pieces_.append(asStored(large.data(), large.size()));
  pieces_.appendField(1, asStored("x", 1));
  pieces_.finish();
  EXPECT_FALSE(pieces_.isInBlock());
  EXPECT_EQ(written(), below + "\x0A\x01x");
  EXPECT_EQ(readBy(1000, pieces_), below + large + "\x0A\x01x");
}

TEST_F(MessagePiecesTest, ReadsAsManyBytesAsAreAskedFor) {
  const std::vector<uint16_t> numbers(kLarge, 0xFFFF);
  pieces_.append(asVarints(numbers, numbers.size(), 3 * numbers.size()));
  pieces_.finish();
  std::vector<uint8_t> part(100);
  for (const size_t capacity : {1, 1, 2, 3, 4, 100, 5}) {
    EXPECT_EQ(pieces_.read(part.data(), capacity), capacity);
  }
}

TEST_F(MessagePiecesTest, SplitsElementsAcrossReads) {
  std::vector<int16_t> numbers(kLarge);
  for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<int16_t>(i * 37);
  std::vector<uint8_t> encoded(packedSize(numbers.data(), numbers.size()));
  writePacked(numbers.data(), numbers.size(), encoded.data());
  pieces_.append(asVarints(numbers, numbers.size(), encoded.size()));
  pieces_.finish();
  for (const size_t capacity : {1, 7, 10, 11, 16384}) {
    SCOPED_TRACE(capacity);
    EXPECT_EQ(readBy(capacity, pieces_), std::string(encoded.begin(), encoded.end()));
    pieces_.rewind();
  }
}

TEST_F(MessagePiecesTest, RewindsFromWithinAnElement) {
  const std::vector<uint16_t> numbers(kLarge, 300);
  pieces_.append(asVarints(numbers, numbers.size(), 2 * numbers.size()));
  pieces_.finish();
  uint8_t byte = 0;
  ASSERT_EQ(pieces_.read(&byte, 1), 1u);
  EXPECT_EQ(byte, 0xAC);
  pieces_.rewind();
  ASSERT_EQ(pieces_.read(&byte, 1), 1u);
  EXPECT_EQ(byte, 0xAC);
  EXPECT_EQ(readBy(4096, pieces_).size(), 2 * numbers.size() - 1);
}

}  // namespace
}  // namespace orb::wire
