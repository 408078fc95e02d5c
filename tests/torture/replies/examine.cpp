// SPDX-License-Identifier: MIT
#include "torture/replies/examine.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>

#include "client/transport/sweep.h"
#include "support/array.h"

namespace orb::torture {
namespace {

using test::Array;

constexpr double kMostElements = 1e5;
constexpr std::size_t kVisited = 4;
constexpr int kDeepest = 4;

/// Whether the array can be resized to three rows or three columns without taking much
/// memory. Damaged extents may promise anything.
bool isModest(orbArray a) {
  const std::size_t* extents = orbGetDimensions(a);
  const std::size_t count = orbGetNumberOfDimensions(a);
  double elements = std::max(1, orbGetNumberOfFields(a));
  for (std::size_t i = 0; i < count; ++i) {
    elements *= static_cast<double>(std::max<std::size_t>(extents[i], 3));
  }
  return elements <= kMostElements;
}

/// Whether a server invented the kind of values: no class name fits such an array.
bool isOfUnknownKind(orbArray a) {
  return orbIsSparse(a) && !orbIsDouble(a) && !orbIsLogical(a);
}

/// What is read without a change of size.
void readOnly(orbArray a) {
  char text[16];
  orbGetString(a, text, sizeof text);
  orbFree(orbArrayToString(a));
  orbGetScalar(a);
  orbIsLogicalScalarTrue(a);
  const Array copy(orbDuplicateArray(a));
  if (orbGetScalar(copy) != orbGetScalar(a) && orbGetScalar(a) == orbGetScalar(a)) {
    throw std::runtime_error("a copy differs");
  }
}

/// An element, or null where there is none or its type is one that a client cannot hold.
template <class Get>
Array elementOf(const Get& get) {
  try {
    return Array(get());
  } catch (const std::invalid_argument& refused) {
    if (refused.what() != std::string("dispatch_on_QXType")) throw;
    return Array();
  }
}

}  // namespace

void examine(orbArray a, int depth) {
  readOnly(a);
  if (isModest(a) && !isOfUnknownKind(a)) test::callEveryFunction(a);
  if (depth == kDeepest) return;
  const std::size_t elements = std::min(orbGetNumberOfElements(a), kVisited);
  for (std::size_t i = 0; i < elements; ++i) {
    const Array cell = elementOf([&] { return orbGetCell(a, i); });
    if (cell.get() != nullptr) examine(cell, depth + 1);
    for (int field = 0; field < orbGetNumberOfFields(a); ++field) {
      const Array value = elementOf([&] { return orbGetFieldByNumber(a, i, field); });
      if (value.get() != nullptr) examine(value, depth + 1);
    }
  }
}

}  // namespace orb::torture
