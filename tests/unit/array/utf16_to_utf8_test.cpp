// SPDX-License-Identifier: MIT
#include "array/utf16_to_utf8.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

extern "C" {
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);
}

namespace orb::test {
namespace {

using ::testing::ElementsAre;

constexpr size_t kNever = ~size_t{0};

/// Observes the memory that a conversion asks for while it lives, and lets one of the
/// requests, counted from zero, fail.
struct Recording {
  explicit Recording(size_t failing = kNever) : failingRequest(failing) {
    current = this;
  }
  ~Recording() { current = nullptr; }

  static Recording* current;

  size_t failingRequest;
  std::vector<size_t> requests;
  int blocksInUse = 0;
};

Recording* Recording::current = nullptr;

void* request(void* block, size_t size) {
  if (Recording* recording = Recording::current) {
    recording->requests.push_back(size);
    if (recording->requests.size() - 1 == recording->failingRequest) return nullptr;
    if (block == nullptr) ++recording->blocksInUse;
  }
  return __real_realloc(block, size);
}

void giveBack(void* block) {
  if (Recording::current != nullptr && block != nullptr) {
    --Recording::current->blocksInUse;
  }
  __real_free(block);
}

/// The text up to the NUL that the last request made room for.
std::string convert(const std::u16string& units) {
  Recording recording;
  char* text = utf16ToUtf8(units.data(), units.size());
  const size_t length = recording.requests.back() - 1;
  EXPECT_EQ(text[length], '\0');
  const std::string bytes(text, length);
  giveBack(text);
  return bytes;
}

TEST(Utf16ToUtf8, OfNoUnitsIsNull) { EXPECT_EQ(utf16ToUtf8(u"", 0), nullptr); }

TEST(Utf16ToUtf8, EncodesCodePoints) {
  const struct {
    std::u16string units;
    std::string bytes;
  } rows[] = {
      {u"A", "A"},
      {u"\x7F", "\x7F"},
      {u"\x80", "\xC2\x80"},
      {u"A\xE9", "A\xC3\xA9"},
      {u"\x7FF", "\xDF\xBF"},
      {u"\x800", "\xE0\xA0\x80"},
      {u"\x20AC", "\xE2\x82\xAC"},
      {u"\xD7FF", "\xED\x9F\xBF"},
      {u"\xE000", "\xEE\x80\x80"},
      {u"\xFFC3\xFFA9", "\xEF\xBF\x83\xEF\xBE\xA9"},
      {u"\xFFFF", "\xEF\xBF\xBF"},
      {{0xD800, 0xDC00}, "\xF0\x90\x80\x80"},
      {{0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"},
      {{0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF"},
      {{'a', 0xD83D, 0xDE00, 'b'},
       "a\xF0\x9F\x98\x80"
       "b"},
  };
  for (const auto& [units, bytes] : rows) {
    EXPECT_EQ(convert(units), bytes) << ::testing::PrintToString(units);
  }
}

TEST(Utf16ToUtf8, KeepsNulUnits) {
  EXPECT_EQ(convert({'a', 0, 'b', 0}), std::string("a\0b\0", 4));
  EXPECT_EQ(convert({0}), std::string(1, '\0'));
}

TEST(Utf16ToUtf8, CombinesASurrogateWithWhateverFollows) {
  const struct {
    std::u16string units;
    std::string bytes;
  } rows[] = {
      // Low before anything.
      {{0xDC00, 0x0041}, "\xE2\x91\x81"},
      {{0xDC00, 0xDC00}, "\xF4\x90\x80\x80"},
      {{0xDC00, 0xD800}, "\xEF\xB0\x80"},
      {{0xDFFF, 0xDFFF}, "\xF8\x8F\xBF\xBF"},
      // High before what is not low.
      {{0xD800, 0x0041}, "\xE2\x91\x81"},
      {{0xD83D, 0x0041}, "\xEF\x91\x81"},
      {{0xD800, 0x0000}, "\xE2\x90\x80"},
      {{0xD800, 0xD800}, "\xEF\xB0\x80"},
      {{0xD800, 0xDBFF}, "\xEF\xBF\xBF"},
      {{0xD800, 0xE000}, "\xF0\x90\x90\x80"},
      {{0xDBFF, 0xFFFF}, "\xF4\x8F\xBF\xBF"},
      // Two units are used up each time.
      {{0xD800, 'A', 'B'},
       "\xE2\x91\x81"
       "B"},
      {{0xDC00, 0xD83D, 0xDE00, 'A'}, "\xEF\xB0\xBD\xE2\x91\x81"},
  };
  for (const auto& [units, bytes] : rows) {
    EXPECT_EQ(convert(units), bytes) << ::testing::PrintToString(units);
  }
}

TEST(Utf16ToUtf8, RefusesASurrogateAtTheEndAndFreesTheText) {
  const std::u16string rows[] = {
      {0xD800},
      {0xDBFF},
      {0xDC00},
      {0xDFFF},
      {'A', 0xD800},
      {'A', 0xDC00},
      {0xD83D, 0xDE00, 0xD83D},
  };
  for (const std::u16string& units : rows) {
    SCOPED_TRACE(::testing::PrintToString(units));
    Recording recording;
    try {
      utf16ToUtf8(units.data(), units.size());
      ADD_FAILURE() << "accepted";
    } catch (const std::runtime_error& refusal) {
      EXPECT_STREQ(refusal.what(), "Invalid UTF-16 data");
    }
    EXPECT_EQ(recording.blocksInUse, 0);
  }
}

TEST(Utf16ToUtf8, DoublesItsMemoryAndCutsItToTheText) {
  const struct {
    std::u16string units;
    std::vector<size_t> requests;
  } rows[] = {
      {u"A", {2}},
      {u"ABC", {4}},
      {u"\x80", {2, 4, 3}},
      {u"\x800", {2, 4}},
      {u"\x80"
       u"A",
       {3, 6, 4}},
      {u"\x800\x800\x800", {4, 8, 16, 10}},
      {{0xD83D, 0xDE00}, {3, 6, 5}},
  };
  for (const auto& [units, requests] : rows) {
    SCOPED_TRACE(::testing::PrintToString(units));
    Recording recording;
    char* text = utf16ToUtf8(units.data(), units.size());
    EXPECT_EQ(recording.requests, requests);
    EXPECT_EQ(recording.blocksInUse, 1);
    giveBack(text);
  }
}

TEST(Utf16ToUtf8, ReportsTextThatCannotBeStoredAndFreesIt) {
  const std::u16string units = u"\x800\x800\x800";
  for (const size_t failingRequest : {0, 1, 2}) {
    SCOPED_TRACE(failingRequest);
    Recording recording(failingRequest);
    try {
      utf16ToUtf8(units.data(), units.size());
      ADD_FAILURE() << "accepted";
    } catch (const std::runtime_error& failure) {
      EXPECT_STREQ(failure.what(), "Trouble resizing UTF-8 data.");
    }
    EXPECT_EQ(recording.requests.size(), failingRequest + 1);
    EXPECT_EQ(recording.blocksInUse, 0);
  }
}

TEST(Utf16ToUtf8, OfTextThatCannotBeCutIsNullAndFreed) {
  Recording recording(3);
  EXPECT_EQ(utf16ToUtf8(u"\x800\x800\x800", 3), nullptr);
  EXPECT_THAT(recording.requests, ElementsAre(4, 8, 16, 10));
  EXPECT_EQ(recording.blocksInUse, 0);
}

}  // namespace
}  // namespace orb::test

// The linker directs this program's own calls here, a first realloc() among them that the
// compiler made a malloc(). Those inside shared libraries are not touched.
extern "C" {

void* __wrap_malloc(size_t size) { return orb::test::request(nullptr, size); }

void* __wrap_realloc(void* block, size_t size) { return orb::test::request(block, size); }

void __wrap_free(void* block) { orb::test::giveBack(block); }
}
