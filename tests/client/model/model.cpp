// SPDX-License-Identifier: MIT
#include "client/model/model.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "client/model/rules.h"

namespace orb::model {
namespace {

// In the order of orbClassID.
constexpr ClassFacts kClasses[] = {
    {"uint8", 1},   {"int8", 1},   {"uint16", 2}, {"int16", 2},  {"uint32", 4},
    {"int32", 4},   {"uint64", 8}, {"int64", 8},  {"single", 4}, {"double", 8},
    {"logical", 1}, {"char", 2},   {"struct", 8}, {"cell", 8}};

void copyInPlace(const Bytes& from, Bytes& to) {
  std::copy_n(from.begin(), std::min(from.size(), to.size()), to.begin());
}

void appendUtf8(std::string& text, uint32_t point) {
  const auto append = [&text](uint32_t byte) { text += static_cast<char>(byte & 0xFF); };
  const auto trail = [&](unsigned shift) { append(0x80 | ((point >> shift) & 0x3F)); };
  if (point <= 0x7F) {
    append(point);
  } else if (point <= 0x7FF) {
    append(0xC0 | (point >> 6));
    trail(0);
  } else if (point <= 0xFFFF) {
    append(0xE0 | (point >> 12));
    trail(6);
    trail(0);
  } else {
    append(0xF0 | (point >> 18));
    trail(12);
    trail(6);
    trail(0);
  }
}

size_t weight(const Message& message) {
  size_t total = 1;
  for (const Message& element : message.elements) total += weight(element);
  return total;
}

}  // namespace

Array::Array(std::shared_ptr<Message> viewed)
    : message(std::move(viewed)), complex(!message->imag.empty()) {
  if (isBuffered(*message)) {
    real = message->real;
    imag = message->imag;
  }
  for (const Message& element : message->elements) {
    elements.push_back(std::make_shared<Message>(element));
  }
}

size_t product(const std::vector<size_t>& dimensions) {
  if (dimensions.empty()) return 0;
  size_t count = 1;
  for (const size_t extent : dimensions) count *= extent;
  return count;
}

std::vector<size_t> normalised(const std::vector<size_t>& list) {
  if (list.empty()) return {0, 0};
  if (list.size() == 1) return {list[0], 1};
  return list;
}

bool isContainer(orbClassID classid) {
  return classid == orbSTRUCT_CLASS || classid == orbCELL_CLASS;
}

Bytes& realPart(Array& a) { return isBuffered(*a.message) ? a.real : a.message->real; }

Bytes& imagPart(Array& a) { return isBuffered(*a.message) ? a.imag : a.message->imag; }

std::optional<std::string> utf8Of(const Array& a) {
  if (!orbIsChar(&a) || unitsOf(a) == 0) return std::nullopt;
  std::string text;
  for (size_t i = 0; i < unitsOf(a); ++i) {
    const uint32_t unit = unitAt(a, i);
    if (unit < 0xD800 || unit >= 0xE000) {
      appendUtf8(text, unit);
      continue;
    }
    if (++i == unitsOf(a)) return std::nullopt;
    const uint32_t low = unitAt(a, i);
    appendUtf8(text, (((unit - 0xD800) << 10) | (low - 0xDC00)) + 0x10000);
  }
  return text;
}

size_t weight(const Array& a) {
  size_t total = 1;
  for (const auto& element : a.elements) total += weight(*element);
  return total;
}

const ClassFacts& factsOf(orbClassID classid) { return kClasses[classid]; }

bool isNumeric(orbClassID classid) {
  return classid >= orbUINT8_CLASS && classid <= orbDOUBLE_CLASS;
}

bool isBuffered(const Message& message) {
  return message.classid == orbCHAR_CLASS || message.classid == orbUINT16_CLASS ||
         message.classid == orbINT16_CLASS;
}

void requireAtMostMax(size_t count) {
  if (count > kMaxElements) throw PositiveOverflow();
}

std::shared_ptr<Message> emptyDouble() {
  Message message;
  message.dimensions = {0, 0};
  return std::make_shared<Message>(message);
}

void resizeElements(Array& a, size_t count) {
  const size_t kept = std::min(count, a.elements.size());
  a.elements.resize(count);
  std::generate(a.elements.begin() + static_cast<std::ptrdiff_t>(kept), a.elements.end(),
                emptyDouble);
}

void resize(Array& a, size_t count) {
  Message& message = *a.message;
  if (isContainer(message.classid)) {
    const size_t perElement =
        message.classid == orbSTRUCT_CLASS ? message.fieldNames.size() : 1;
    requireAtMostMax(count * perElement);
    resizeElements(a, count * perElement);
  } else if (message.sparse) {
    requireAtMostMax(message.dimensions[1] + 1);
    message.jc.resize(message.dimensions[1] + 1);
  } else {
    const size_t size = count * factsOf(message.classid).elementSize;
    message.real.resize(size);
    // Once emptied, the stored imaginary part does not come back; a native one does.
    if (!message.imag.empty()) message.imag.resize(size);
    if (isBuffered(message)) {
      a.real.resize(size);
      if (a.complex) a.imag.resize(size);
    }
  }
}

void flush(Array& a) {
  copyInPlace(a.real, a.message->real);
  copyInPlace(a.imag, a.message->imag);
  if (!isContainer(a.message->classid)) return;
  a.message->elements.clear();
  for (const auto& element : a.elements) a.message->elements.push_back(*element);
}

size_t unitsOf(const Array& a) { return a.real.size() / sizeof(char16_t); }

char16_t unitAt(const Array& a, size_t i) {
  char16_t unit;
  std::memcpy(&unit, a.real.data() + i * sizeof unit, sizeof unit);
  return unit;
}

}  // namespace orb::model
