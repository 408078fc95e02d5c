// SPDX-License-Identifier: MIT
#include "torture/support/random_array.h"

#include <cstring>

#include "client/array/types.h"

namespace orb::torture {
namespace {

using test::Array;

constexpr int kDeepest = 2;

void fillWith(Random& random, const test::Type& type, void* data, std::size_t count) {
  if (data == nullptr) return;
  if (type.id == orbLOGICAL_CLASS) {
    auto* values = static_cast<bool*>(data);
    for (std::size_t i = 0; i < count; ++i) values[i] = random.chance(50);
    return;
  }
  auto* bytes = static_cast<unsigned char*>(data);
  for (std::size_t i = 0; i < count * type.elementSize; ++i) {
    bytes[i] = static_cast<unsigned char>(random.number() >> 32);
  }
}

Array arrayAt(Random& random, int depth);

void fillElements(Random& random, orbArray parent, int depth) {
  const int fields = orbGetNumberOfFields(parent);
  for (std::size_t i = 0; i < orbGetNumberOfElements(parent); ++i) {
    if (!random.chance(30)) continue;
    const Array value = arrayAt(random, depth + 1);
    if (orbIsCell(parent)) {
      orbSetCell(parent, i, value);
    } else {
      const auto field = random.below(static_cast<std::uint64_t>(fields));
      orbSetFieldByNumber(parent, i, static_cast<int>(field), value);
    }
  }
}

Array arrayAt(Random& random, int depth) {
  const test::Type& type = test::types()[random.below(test::types().size())];
  const std::vector<test::Shape>& shapes = test::shapesOf(type);
  const orbComplexity flag = random.chance(30) ? orbCOMPLEX : orbREAL;
  Array made = test::create(type, shapes[random.below(shapes.size())], flag);
  if (type.id == orbSTRUCT_CLASS || type.id == orbCELL_CLASS) {
    if (depth < kDeepest) fillElements(random, made, depth);
    return made;
  }
  const std::size_t count = orbGetNumberOfElements(made);
  fillWith(random, type, test::realData(type, made), count);
  if (orbIsComplex(made)) fillWith(random, type, orbGetImagData(made), count);
  return made;
}

std::size_t countStored(orbArray a) {
  return orbIsSparse(a) ? orbGetNzmax(a) : orbGetNumberOfElements(a);
}

const void* valuesOf(orbArray a) {
  if (orbIsChar(a)) return orbGetChars(a);
  return orbIsLogical(a) ? static_cast<const void*>(orbGetLogicals(a)) : orbGetData(a);
}

bool areSameBytes(const void* left, const void* right, std::size_t bytes) {
  if (left == nullptr || right == nullptr) return left == right;
  return std::memcmp(left, right, bytes) == 0;
}

bool areSameElements(orbArray left, orbArray right) {
  const int fields = orbGetNumberOfFields(left);
  if (fields != orbGetNumberOfFields(right)) return false;
  for (int n = 0; n < fields; ++n) {
    const char* name = orbGetFieldNameByNumber(left, n);
    if (std::strcmp(name, orbGetFieldNameByNumber(right, n)) != 0) return false;
  }
  for (std::size_t i = 0; i < orbGetNumberOfElements(left); ++i) {
    if (orbIsCell(left)) {
      if (!areSame(Array(orbGetCell(left, i)), Array(orbGetCell(right, i)))) return false;
    }
    for (int n = 0; n < fields; ++n) {
      if (!areSame(Array(orbGetFieldByNumber(left, i, n)),
                   Array(orbGetFieldByNumber(right, i, n)))) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace

Array randomArray(Random& random) { return arrayAt(random, 0); }

Array randomLargeArray(Random& random) {
  static constexpr orbClassID kClasses[] = {orbUINT8_CLASS, orbINT16_CLASS,
                                            orbDOUBLE_CLASS, orbCHAR_CLASS};
  const orbClassID id = kClasses[random.below(4)];
  const std::size_t count = 20000 + random.below(100000);
  const std::size_t dims[] = {1, count};
  Array made(id == orbCHAR_CLASS ? orbCreateCharArray(2, dims)
                                 : orbCreateNumericArray(2, dims, id, orbREAL));
  void* data = id == orbCHAR_CLASS ? orbGetChars(made) : orbGetData(made);
  std::memset(data, static_cast<int>(random.below(128)), count * orbGetElementSize(made));
  return made;
}

bool areSame(orbArray left, orbArray right) {
  if (left == nullptr || right == nullptr) return left == right;
  if (orbGetClassID(left) != orbGetClassID(right) ||
      orbIsSparse(left) != orbIsSparse(right) ||
      orbIsComplex(left) != orbIsComplex(right) ||
      test::dimensionsOf(left) != test::dimensionsOf(right) ||
      countStored(left) != countStored(right)) {
    return false;
  }
  if (orbIsCell(left) || orbIsStruct(left)) return areSameElements(left, right);
  const std::size_t stored = countStored(left);
  const std::size_t bytes = stored * orbGetElementSize(left);
  const std::size_t starts = (orbGetN(left) + 1) * sizeof(std::size_t);
  return areSameBytes(valuesOf(left), valuesOf(right), bytes) &&
         areSameBytes(orbGetImagData(left), orbGetImagData(right), bytes) &&
         areSameBytes(orbGetIr(left), orbGetIr(right), stored * sizeof(std::size_t)) &&
         areSameBytes(orbGetJc(left), orbGetJc(right), starts);
}

}  // namespace orb::torture
