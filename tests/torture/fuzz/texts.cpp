// SPDX-License-Identifier: MIT
#include "torture/fuzz/texts.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "torture/fuzz/expect.h"

namespace orb::torture {
namespace {

bool isSurrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }
bool isHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

/// The code point of a pair. One that is no pair gives what the same arithmetic makes of
/// it, in 32 bits.
uint32_t codePointOf(char16_t first, char16_t second) {
  if (isHigh(first) && isLow(second)) {
    return 0x10000u + (first & 0x3FFu) * 0x400u + (second & 0x3FFu);
  }
  const int32_t high = (first - 0xD800) * 0x400;
  const int32_t low = second - 0xDC00;
  return static_cast<uint32_t>(high | low) + 0x10000u;
}

void append(uint32_t codePoint, std::string& text) {
  constexpr uint32_t kLimits[] = {0x80, 0x800, 0x10000};
  constexpr uint32_t kLeads[] = {0x00, 0xC0, 0xE0, 0xF0};
  const auto tails = static_cast<uint32_t>(
      std::upper_bound(std::begin(kLimits), std::end(kLimits), codePoint) - kLimits);
  text += static_cast<char>(kLeads[tails] | codePoint >> (6 * tails));
  for (uint32_t left = tails; left > 0; --left) {
    text += static_cast<char>(0x80 | (codePoint >> (6 * (left - 1)) & 0x3F));
  }
}

void expectUtf8(orbArray a, const std::vector<char16_t>& units) {
  const std::unique_ptr<char, decltype(&orbFree)> text(orbArrayToString(a), &orbFree);
  const std::optional<std::string> expected = utf8Of(units);
  if (units.empty() || !expected) {
    expect(text == nullptr, "a text where there is none");
    return;
  }
  expect(text != nullptr, "no UTF-8 text");
  expect(std::memcmp(text.get(), expected->c_str(), expected->size() + 1) == 0,
         "the UTF-8 text");
}

void expectBytes(orbArray a, const std::vector<char16_t>& units, uint64_t count,
                 size_t size) {
  std::string expected;
  while (expected.size() + 1 < size && expected.size() < count) {
    const size_t i = expected.size();
    expected += i < units.size() ? static_cast<char>(units[i]) : '\0';
  }
  // Of exactly this size, so that a byte behind it is seen by a memory checker.
  const std::unique_ptr<char[]> buffer(new char[size]);
  expect(orbGetString(a, buffer.get(), size) == (count >= size ? 1 : 0), "orbGetString");
  expect(std::memcmp(buffer.get(), expected.c_str(), expected.size() + 1) == 0,
         "the bytes of orbGetString");
}

}  // namespace

std::optional<std::string> utf8Of(const std::vector<char16_t>& units) {
  std::string text;
  for (size_t i = 0; i < units.size(); ++i) {
    if (!isSurrogate(units[i])) {
      append(units[i], text);
    } else if (i + 1 == units.size()) {
      return std::nullopt;
    } else {
      append(codePointOf(units[i], units[i + 1]), text);
      ++i;
    }
  }
  return text;
}

void expectTexts(orbArray a, const std::vector<char16_t>& units, uint64_t count) {
  expectUtf8(a, units);
  expect(orbGetString(a, nullptr, 0) == 0, "orbGetString without a buffer");
  for (const size_t size :
       {size_t{1}, units.size(), units.size() + 1, units.size() + 2}) {
    if (size != 0) expectBytes(a, units, count, size);
  }
}

}  // namespace orb::torture
