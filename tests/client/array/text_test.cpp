// SPDX-License-Identifier: MIT
// Text: char arrays as C strings and as UTF-8.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iconv.h>
#include <malloc.h>

#include <cstring>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

#include "client/array/types.h"

namespace orb::test {
namespace {

using std::string_literals::operator""s;
using ::testing::ElementsAre;

struct Free {
  void operator()(char* text) const { orbFree(text); }
};
using Text = std::unique_ptr<char, Free>;

Text utf8Of(orbArray a) { return Text(orbArrayToString(a)); }

/// Expects the text of `a` to be exactly these bytes and a NUL.
void expectText(orbArray a, const std::string& bytes) {
  const Text text = utf8Of(a);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::string(text.get(), bytes.size() + 1), bytes + '\0');
}

TEST(GetString, OfFiveCharactersIntoABufferOf3WritesTwoAndANulAndReturnsOne) {
  char buffer[] = "######";
  EXPECT_EQ(orbGetString(charRow(u"hello"), buffer, 3), 1);
  EXPECT_THAT(buffer, ElementsAre('h', 'e', '\0', '#', '#', '#', '\0'));
}

TEST(GetString, OfFiveCharactersIntoABufferOf6WritesAllAndANulAndReturnsZero) {
  char buffer[] = "#######";
  EXPECT_EQ(orbGetString(charRow(u"hello"), buffer, 6), 0);
  EXPECT_THAT(buffer, ElementsAre('h', 'e', 'l', 'l', 'o', '\0', '#', '\0'));
}

TEST(GetString, IntoABufferOneTooShortReturnsOne) {
  char buffer[] = "######";
  EXPECT_EQ(orbGetString(charRow(u"hello"), buffer, 5), 1);
  EXPECT_STREQ(buffer, "hell");
}

TEST(GetString, IntoABufferOf1WritesANul) {
  char buffer[] = "#";
  EXPECT_EQ(orbGetString(charRow(u"hello"), buffer, 1), 1);
  EXPECT_STREQ(buffer, "");
}

TEST(GetString, IntoABufferOf0WritesNothingAndReturnsZero) {
  char buffer[] = "#";
  EXPECT_EQ(orbGetString(charRow(u"hello"), buffer, 0), 0);
  EXPECT_STREQ(buffer, "#");
  EXPECT_EQ(orbGetString(charRow(u"hello"), nullptr, 0), 0);
}

TEST(GetString, OfAnEmptyArrayWritesANulAndReturnsZero) {
  char buffer[] = "#";
  EXPECT_EQ(orbGetString(charRow(u""), buffer, 1), 0);
  EXPECT_STREQ(buffer, "");
}

TEST(GetString, TakesABufferOfAnySize) {
  char buffer[] = "######";
  EXPECT_EQ(orbGetString(charRow(u"hello"), buffer, SIZE_MAX), 0);
  EXPECT_STREQ(buffer, "hello");
}

TEST(GetString, OfAnotherClassReturnsOneAndLeavesTheBufferUntouched) {
  for (const Type& type : types()) {
    if (type.id == orbCHAR_CLASS) continue;
    SCOPED_TRACE(type.name);
    char buffer[] = "#";
    const Array a = create(type, {1, 1});
    EXPECT_EQ(orbGetString(a, buffer, 2), 1);
    EXPECT_EQ(orbGetString(a, buffer, 0), 1);
    EXPECT_STREQ(buffer, "#");
  }
}

TEST(GetString, KeepsTheLowByteOfEveryUnit) {
  char buffer[5];
  EXPECT_EQ(orbGetString(charRow(u"A\xFFE9\x0142\x0100"), buffer, 5), 0);
  EXPECT_THAT(buffer, ElementsAre('A', '\xE9', 'B', '\0', '\0'));
}

TEST(GetString, GivesBackTheBytesOfCreateString) {
  std::string bytes;
  for (int byte = 1; byte <= 0xFF; ++byte) bytes += static_cast<char>(byte);
  char buffer[256];
  EXPECT_EQ(orbGetString(Array(orbCreateString(bytes.c_str())), buffer, 256), 0);
  EXPECT_EQ(buffer, bytes);
}

TEST(GetString, ReadsAMatrixByColumns) {
  const char* rows[] = {"ac", "bd"};
  char buffer[5];
  EXPECT_EQ(orbGetString(Array(orbCreateCharMatrixFromStrings(2, rows)), buffer, 5), 0);
  EXPECT_STREQ(buffer, "abcd");
}

TEST(ArrayToString, OfAnEmptyCharArrayIsNullNotEmptyText) {
  EXPECT_EQ(orbArrayToString(charRow(u"")), nullptr);
  EXPECT_EQ(orbArrayToString(create(types()[11], {0, 3})), nullptr);
}

TEST(ArrayToString, OfAnotherClassIsNull) {
  for (const Type& type : types()) {
    if (type.id == orbCHAR_CLASS) continue;
    SCOPED_TRACE(type.name);
    EXPECT_EQ(orbArrayToString(create(type, {1, 1})), nullptr);
  }
}

TEST(ArrayToString, SeesWhatWasJustWrittenThroughGetChars) {
  const Array a = charRow(u"ab");
  orbGetChars(a)[1] = u'c';
  expectText(a, "ac");
}

struct Units {
  const char* name;
  std::u16string units;
  std::string utf8;
};

void PrintTo(const Units& units, std::ostream* out) { *out << units.name; }

class ArrayToString : public ::testing::TestWithParam<Units> {};

TEST_P(ArrayToString, ConvertsToTheByte) {
  expectText(charRow(GetParam().units), GetParam().utf8);
}

std::string unitsName(const ::testing::TestParamInfo<Units>& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    WellFormed, ArrayToString,
    ::testing::Values(Units{"AFollowedByE9", u"\x0041\x00E9", "\x41\xC3\xA9"},
                      Units{"ThePairD83dDe00", u"\xD83D\xDE00", "\xF0\x9F\x98\x80"},
                      Units{"NulInside", {u'a', 0, u'b'}, {'a', '\0', 'b'}},
                      Units{"NulAlone", {0}, {'\0'}},
                      Units{"NulAtTheEnd", {u'a', 0}, {'a', '\0'}},
                      Units{"LastOfOneByte", u"\x007F", "\x7F"},
                      Units{"FirstOfTwoBytes", u"\x0080", "\xC2\x80"},
                      Units{"LastOfTwoBytes", u"\x07FF", "\xDF\xBF"},
                      Units{"FirstOfThreeBytes", u"\x0800", "\xE0\xA0\x80"},
                      Units{"LastBeforeTheSurrogates", u"\xD7FF", "\xED\x9F\xBF"},
                      Units{"FirstAfterTheSurrogates", u"\xE000", "\xEE\x80\x80"},
                      Units{"LastOfThreeBytes", u"\xFFFF", "\xEF\xBF\xBF"},
                      Units{"FirstPair", u"\xD800\xDC00", "\xF0\x90\x80\x80"},
                      Units{"LastPair", u"\xDBFF\xDFFF", "\xF4\x8F\xBF\xBF"}),
    unitsName);

// Whatever follows a surrogate is combined with it, in 32 bits that wrap.
INSTANTIATE_TEST_SUITE_P(
    Malformed, ArrayToString,
    ::testing::Values(
        Units{"ALoneDc00FollowedBy0041", u"\xDC00\x0041", "\xE2\x91\x81"},
        Units{"HighThenLetter", u"\xD800\x0041", "\xE2\x91\x81"},
        Units{"HighThenNul", {0xD800, 0}, "\xE2\x90\x80"},
        Units{"LastHighThenNul", {0xDBFF, 0}, "\xEF\xB0\x80"},
        Units{"HighThenHigh", u"\xD800\xD800", "\xEF\xB0\x80"},
        Units{"HighThenLastHigh", u"\xD800\xDBFF", "\xEF\xBF\xBF"},
        Units{"LowThenLow", u"\xDC00\xDC00", "\xF4\x90\x80\x80"},
        Units{"LowThenHigh", u"\xDC00\xD800", "\xEF\xB0\x80"},
        Units{"LastLowThenLastLow", u"\xDFFF\xDFFF", "\xF8\x8F\xBF\xBF"},
        Units{"HighThenUnitAboveTheSurrogates", u"\xD800\xE000", "\xF0\x90\x90\x80"},
        Units{"HighThenLastUnit", u"\xD800\xFFFF", "\xF0\x92\x8F\xBF"},
        Units{"LastLowThenLastUnit", u"\xDFFF\xFFFF", "\xF8\x8F\xBF\xBF"},
        Units{"HighThenUnitThatGivesASurrogate", u"\xD800\xB400", "\xED\xA0\x80"},
        Units{"TextGoesOnAfterTheCombination", u"x\xDC00yz", "x\xE2\x91\xB9z"}),
    unitsName);

TEST(ArrayToString, OfALastUnitThatIsALoneSurrogateIsNull) {
  for (const char16_t unit : u"\xD800\xDBFF\xDC00\xDFFF"s) {
    SCOPED_TRACE(static_cast<unsigned>(unit));
    EXPECT_EQ(orbArrayToString(charRow({unit})), nullptr);
    EXPECT_EQ(orbArrayToString(charRow({u'a', unit})), nullptr);
    EXPECT_EQ(orbArrayToString(charRow({0xD83D, 0xDE00, unit})), nullptr);
  }
}

TEST(ArrayToString, OfTheUtf8BytesOfEAcuteInCreateStringGivesTwoThreeByteSequences) {
  const Array a(orbCreateString("\xC3\xA9"));
  EXPECT_THAT(elementsOf<char16_t>(a), ElementsAre(0xFFC3, 0xFFA9));
  expectText(a, "\xEF\xBF\x83\xEF\xBE\xA9");
}

TEST(ArrayToString, GrowsItsBufferForEveryLengthAndWidth) {
  const Units kinds[] = {{"one", u"a", "a"},
                         {"two", u"\x00E9", "\xC3\xA9"},
                         {"three", u"\x20AC", "\xE2\x82\xAC"},
                         {"four", u"\xD83D\xDE00", "\xF0\x9F\x98\x80"}};
  for (const Units& head : kinds) {
    for (const Units& tail : kinds) {
      std::u16string units = head.units;
      std::string utf8 = head.utf8;
      for (int length = 1; length <= 40; ++length) {
        SCOPED_TRACE(std::string(head.name) + tail.name + std::to_string(length));
        expectText(charRow(units), utf8);
        units += tail.units;
        utf8 += tail.utf8;
      }
    }
  }
}

TEST(ArrayToString, KeepsNoMemoryBeyondTheText) {
  const Text text = utf8Of(charRow(std::u16string(1000, u'\x20AC')));
  EXPECT_LT(malloc_usable_size(text.get()), 3100u);
}

TEST(ArrayToString, ReadsAMatrixByColumns) {
  const char* rows[] = {"ac", "b"};
  expectText(Array(orbCreateCharMatrixFromStrings(2, rows)), std::string("abc\0", 4));
}

/// Converts with the C library.
std::string converted(const char* to, const char* from, std::string bytes) {
  const iconv_t converter = iconv_open(to, from);
  if (converter == reinterpret_cast<iconv_t>(-1)) throw std::runtime_error("iconv_open");
  std::string result(bytes.size() + 4, '\0');
  char* in = bytes.data();
  char* out = result.data();
  size_t inLeft = bytes.size();
  size_t outLeft = result.size();
  const size_t outcome = iconv(converter, &in, &inLeft, &out, &outLeft);
  iconv_close(converter);
  if (outcome != 0 || inLeft != 0) throw std::runtime_error("iconv");
  result.resize(result.size() - outLeft);
  return result;
}

TEST(ArrayToString, EqualsAnotherConverterForAllScalarValues) {
  size_t scalars = 0;
  for (char32_t plane = 0; plane <= 0x10; ++plane) {
    SCOPED_TRACE(static_cast<unsigned>(plane));
    std::u32string points;
    for (char32_t point = plane << 16; point < (plane + 1) << 16; ++point) {
      if (point < 0xD800 || point > 0xDFFF) points += point;
    }
    scalars += points.size();
    const std::string utf32(reinterpret_cast<const char*>(points.data()),
                            points.size() * sizeof(char32_t));
    const std::string utf16 = converted("UTF-16LE", "UTF-32LE", utf32);
    const size_t dims[] = {1, utf16.size() / sizeof(char16_t)};
    const Array a(orbCreateCharArray(2, dims));
    std::memcpy(orbGetChars(a), utf16.data(), utf16.size());

    const std::string utf8 = converted("UTF-8", "UTF-32LE", utf32);
    const Text text = utf8Of(a);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(std::memcmp(text.get(), utf8.c_str(), utf8.size() + 1), 0);
  }
  EXPECT_EQ(scalars, 1112064u);
}

}  // namespace
}  // namespace orb::test
