// SPDX-License-Identifier: MIT
// Memory that ends inside a call: what the caller is told, and an array that goes on
// working.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <optional>
#include <ostream>
#include <string>

#include "client/array/types.h"
#include "client/transport/caller.h"
#include "support/failing_new.h"

namespace orb::test {
namespace {

using ::testing::PrintToString;

constexpr const char* kLongName = "a name too long to be held in place";
const size_t kTwoByThree[] = {2, 3};

/// Class, shape and values; reading them fills empty elements in.
std::string contentOf(orbArray a) {
  if (a == nullptr) return "null";
  std::string text = orbGetClassName(a) + PrintToString(dimensionsOf(a));
  if (orbIsComplex(a)) text += " complex";
  if (orbIsSparse(a)) return text + " for " + std::to_string(orbGetNzmax(a));
  if (orbIsDouble(a)) text += PrintToString(elementsOf<double>(a));
  if (orbIsChar(a)) text += PrintToString(elementsOf<char16_t>(a));
  for (int n = 0; n < orbGetNumberOfFields(a); ++n) {
    text += std::string(" ") + orbGetFieldNameByNumber(a, n);
  }
  for (size_t i = 0; i < orbGetNumberOfElements(a); ++i) {
    if (orbIsCell(a)) text += "{" + contentOf(Array(orbGetCell(a, i))) + "}";
    for (int n = 0; n < orbGetNumberOfFields(a); ++n) {
      text += "{" + contentOf(Array(orbGetFieldByNumber(a, i, n))) + "}";
    }
  }
  return text;
}

/// The content of a copy: reading the array itself might mend what the copy would meet.
std::string copiedContentOf(orbArray a) { return contentOf(Array(orbDuplicateArray(a))); }

/// Measures the array as a call does, and gets no further: nobody listens on port 1.
void expectCanBeSent(orbArray a) {
  static Caller caller;
  std::vector<Array> outputs;
  EXPECT_EQ(caller.call("http://127.0.0.1:1/f", outputs, {a}),
            genericError("Couldn't connect to server"));
}

/// What the nth allocation of a call, failing, comes to.
enum class Fate { kNotReached, kBadAlloc, kReturned };

Fate failAt(size_t n, const std::function<void()>& call) {
  FailingNew failing = FailingNew::at(n);
  try {
    call();
  } catch (const std::bad_alloc&) {
    return failing.stop() ? Fate::kBadAlloc : Fate::kReturned;
  }
  return failing.stop() ? Fate::kReturned : Fate::kNotReached;
}

struct Call {
  const char* name;
  double (*run)(orbArray a);
  std::optional<double> failure = std::nullopt;  // none where std::bad_alloc leaves it
  bool keepsExtents = true;                      // when it fails
};

const Call kCalls[] = {
    {"GetPr", [](orbArray a) -> double { return orbGetPr(a) != nullptr; }},
    {"GetPi", [](orbArray a) -> double { return orbGetPi(a) != nullptr; }},
    {"GetData", [](orbArray a) -> double { return orbGetData(a) != nullptr; }},
    {"GetImagData", [](orbArray a) -> double { return orbGetImagData(a) != nullptr; }},
    {"GetLogicals", [](orbArray a) -> double { return orbGetLogicals(a) != nullptr; }},
    {"GetScalar", [](orbArray a) -> double { return orbGetScalar(a); }},
    {"GetIr", [](orbArray a) -> double { return orbGetIr(a) != nullptr; }},
    {"GetJc", [](orbArray a) -> double { return orbGetJc(a) != nullptr; }},
    {"SetNzmax", [](orbArray a) -> double { return orbSetNzmax(a, 0), 0.0; }},
    {"SetDimensions",
     [](orbArray a) -> double { return orbSetDimensions(a, kTwoByThree, 2); }, 1.0,
     false},
    {"AddField", [](orbArray a) -> double { return orbAddField(a, "c"); }, -1.0},
    {"AddFieldOfALongName",
     [](orbArray a) -> double { return orbAddField(a, kLongName); }, -1.0},
};

/// An array without elements.
struct Source {
  std::string name;
  Type type;
  orbComplexity flag;

  Array make() const { return create(type, {0, 0}, flag); }
};

void PrintTo(const Source& source, std::ostream* out) { *out << source.name; }

std::vector<Source> sources() {
  std::vector<Source> result;
  for (const Type& type : types()) {
    result.push_back({type.name, type, orbREAL});
    const Source complex{std::string("Complex") + type.name, type, orbCOMPLEX};
    if (isNumeric(type) || type.isSparse) result.push_back(complex);
  }
  return result;
}

class ArrayWithoutElements : public ::testing::TestWithParam<Source> {};

TEST_P(ArrayWithoutElements, GoesOnWorkingWhenMemoryEndsInACall) {
  for (const Call& call : kCalls) {
    const Array untouched = GetParam().make();
    const std::string before = copiedContentOf(untouched);
    const double wanted = call.run(untouched);
    const std::string after = copiedContentOf(untouched);
    for (size_t n = 1;; ++n) {
      SCOPED_TRACE(call.name + (", allocation " + std::to_string(n)));
      const Array a = GetParam().make();
      double result = 0;
      const Fate fate = failAt(n, [&] { result = call.run(a); });
      if (fate == Fate::kNotReached) break;
      EXPECT_EQ(fate, call.failure ? Fate::kReturned : Fate::kBadAlloc);
      if (call.failure) {
        EXPECT_EQ(result, *call.failure);
      }

      expectCanBeSent(a);
      const std::string copied = copiedContentOf(a);
      EXPECT_EQ(copied, contentOf(a));
      if (call.keepsExtents) {
        EXPECT_EQ(copied, before);
      }
      EXPECT_EQ(call.run(a), wanted);
      EXPECT_EQ(copiedContentOf(a), after);
    }
  }
}

std::string sourceName(const ::testing::TestParamInfo<Source>& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Classes, ArrayWithoutElements, ::testing::ValuesIn(sources()),
                         sourceName);

Array three() { return doubleRow({1, 2, 3}); }
Array text() { return charRow(u"some text"); }
Array flatCell() { return cellRow(three(), text()); }

// No element has elements, and no struct several fields: of a list of messages or names
// that the message library copies, it loses what it has made when memory ends.
struct Value {
  const char* name;
  Array (*make)();
};

constexpr Value kValues[] = {{"Double", three}, {"Char", text}, {"Cell", flatCell}};

TEST(AddField, OfAStructWithElementsKeepsItsFieldsWhenMemoryEnds) {
  for (const char* name : {"b", kLongName}) {
    size_t n = 1;
    for (;; ++n) {
      SCOPED_TRACE(name + (", allocation " + std::to_string(n)));
      const Array s = structOf({"a"});
      orbSetField(s, 0, "a", three());
      const std::string before = copiedContentOf(s);
      int number = 0;
      if (failAt(n, [&] { number = orbAddField(s, name); }) == Fate::kNotReached) break;
      EXPECT_EQ(number, -1);
      EXPECT_EQ(orbGetNumberOfFields(s), 1);
      EXPECT_EQ(copiedContentOf(s), before);
      EXPECT_EQ(orbAddField(s, name), 1);
      EXPECT_STREQ(orbGetFieldNameByNumber(s, 1), name);
      EXPECT_TRUE(orbIsEmpty(Array(orbGetField(s, 0, name))));
    }
    EXPECT_GT(n, 1u);
  }
}

TEST(SetCell, StoresTheValueOnceThereIsMemory) {
  size_t failed = 0;  // a double is stored without more memory
  for (const Value& value : kValues) {
    for (size_t n = 1;; ++n) {
      SCOPED_TRACE(value.name + (", allocation " + std::to_string(n)));
      const Array cell = cellRow(doubleRow({7}), doubleRow({8}));
      const Array stored = value.make();
      const Fate fate = failAt(n, [&] { orbSetCell(cell, 1, stored); });
      if (fate == Fate::kNotReached) break;
      ++failed;
      EXPECT_EQ(fate, Fate::kBadAlloc);
      EXPECT_EQ(copiedContentOf(cell),
                contentOf(cellRow(doubleRow({7}), doubleRow({8}))));
      orbSetCell(cell, 1, stored);
      EXPECT_EQ(copiedContentOf(cell), contentOf(cellRow(doubleRow({7}), value.make())));
      EXPECT_EQ(contentOf(Array(orbGetCell(cell, 1))), contentOf(value.make()));
    }
  }
  EXPECT_GT(failed, 0u);
}

TEST(SetField, StoresTheValueOnceThereIsMemory) {
  size_t failed = 0;  // a double is stored without more memory
  for (const Value& value : kValues) {
    for (size_t n = 1;; ++n) {
      SCOPED_TRACE(value.name + (", allocation " + std::to_string(n)));
      const Array s = structOf({"a", "b"});
      const std::string before = copiedContentOf(s);
      const Array stored = value.make();
      const Fate fate = failAt(n, [&] { orbSetField(s, 0, "b", stored); });
      if (fate == Fate::kNotReached) break;
      ++failed;
      EXPECT_EQ(fate, Fate::kBadAlloc);
      EXPECT_EQ(copiedContentOf(s), before);
      orbSetField(s, 0, "b", stored);
      const Array copy(orbDuplicateArray(s));
      EXPECT_EQ(contentOf(Array(orbGetField(copy, 0, "b"))), contentOf(value.make()));
      EXPECT_EQ(contentOf(Array(orbGetField(s, 0, "b"))), contentOf(value.make()));
    }
  }
  EXPECT_GT(failed, 0u);
}

Array flatStruct() {
  Array s = structOf({"a"});
  orbSetField(s, 0, "a", three());
  return s;
}

// What a failed copy loses, the leak checker tells at the end of the program.
TEST(DuplicateArray, LeavesTheOriginalAndNothingElseWhenMemoryEnds) {
  const Value originals[] = {
      {"Double", three}, {"Char", text}, {"Cell", flatCell}, {"Struct", flatStruct}};
  for (const Value& original : originals) {
    size_t n = 1;
    for (;; ++n) {
      SCOPED_TRACE(original.name + (", allocation " + std::to_string(n)));
      const Array a = original.make();
      Array copy;
      const Fate fate = failAt(n, [&] { copy = Array(orbDuplicateArray(a)); });
      if (fate == Fate::kNotReached) break;
      EXPECT_EQ(fate, Fate::kBadAlloc);
      EXPECT_EQ(copiedContentOf(a), contentOf(original.make()));
    }
    EXPECT_GT(n, 1u);
  }
}

}  // namespace
}  // namespace orb::test
