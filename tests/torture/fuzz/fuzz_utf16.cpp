// SPDX-License-Identifier: MIT
// Takes bytes as UTF-16 code units, through every function that makes or reads text.
#include <algorithm>
#include <boost/make_shared.hpp>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "array/orb_array_from_kaldex_array_factory.h"
#include "support/array.h"
#include "torture/fuzz/expect.h"
#include "torture/fuzz/tally.h"
#include "torture/fuzz/texts.h"

namespace {

using orb::KALDEX_Array;
using orb::test::Array;
using orb::torture::expect;
using orb::torture::expectTexts;
using orb::torture::Tally;
using orb::torture::utf8Of;

enum Kind { kConverted, kRefused };

Tally& tally() {
  static Tally tally("texts", {"converted", "that end in half a pair"});
  return tally;
}

bool holds(orbArray a, const std::vector<char16_t>& units) {
  const char16_t* found = orbGetChars(a);
  return found == nullptr ? units.empty() : std::equal(units.begin(), units.end(), found);
}

void tryCreated(const std::vector<char16_t>& units) {
  const size_t extents[] = {1, units.size()};
  const Array text(orbCreateCharArray(2, extents));
  std::copy(units.begin(), units.end(), orbGetChars(text));
  expectTexts(text, units, units.size());
  const Array copy(orbDuplicateArray(text));
  expect(holds(copy, units), "the units of a duplicate");

  std::vector<char16_t> resized = units;
  resized.resize(units.size() / 2);
  orbSetN(copy, resized.size());
  expectTexts(copy, resized, resized.size());
  resized.resize(units.size() + 3);
  orbSetN(copy, resized.size());
  expectTexts(copy, resized, resized.size());
}

// What is above 16 bits is dropped, and the extents promise what they like.
void tryReceived(const std::vector<char16_t>& units) {
  auto message = boost::make_shared<KALDEX_Array>();
  message->set_type(KALDEX_Array::CHAR);
  const size_t count = units.empty() ? 2 : units.size() + units.front() % 3 - 1;
  message->add_dimension(count);
  uint32_t above = 0;
  for (const char16_t unit : units) {
    message->mutable_qxchar()->add_elements(unit | above);
    above += 0x10000;
  }
  const orb::UniqueHandle text = orb::handleOver(message, orb::MessageUse::kShare);
  expectTexts(text.get(), units, count);
}

// Bytes are taken as signed, and widened.
std::vector<char16_t> widened(const std::string& bytes) {
  std::vector<char16_t> units;
  for (const char byte : bytes) {
    units.push_back(static_cast<char16_t>(static_cast<signed char>(byte)));
  }
  return units;
}

void tryStrings(const std::string& bytes) {
  const std::string first = bytes.c_str();  // up to the first NUL
  const std::string second =
      bytes.substr(std::min(bytes.size(), first.size() + 1)).c_str();
  const Array text(orbCreateString(first.c_str()));
  expectTexts(text, widened(first), first.size());

  const char* rows[] = {first.c_str(), second.c_str()};
  const Array matrix(orbCreateCharMatrixFromStrings(2, rows));
  const size_t width = std::max(first.size(), second.size());
  expect(orbGetM(matrix) == 2 && orbGetN(matrix) == width, "extents of two strings");
  std::string columns;
  for (size_t i = 0; i < width; ++i) {
    columns += i < first.size() ? first[i] : '\0';
    columns += i < second.size() ? second[i] : '\0';
  }
  expectTexts(matrix, widened(columns), columns.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<char16_t> units(size / 2);
  if (!units.empty()) std::memcpy(units.data(), data, 2 * units.size());
  tally().addInput();
  tally().add(utf8Of(units) ? kConverted : kRefused);
  tryCreated(units);
  tryReceived(units);
  tryStrings(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}
