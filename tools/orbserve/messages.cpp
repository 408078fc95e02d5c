// SPDX-License-Identifier: MIT
#include "messages.h"

#include <algorithm>
#include <optional>

namespace orb::serve {
namespace {

using Sparse = Array::Sparse;

// Nothing when the product does not fit 64 bits.
std::optional<uint64_t> product(
    const google::protobuf::RepeatedField<uint64_t>& dimensions) {
  if (std::find(dimensions.begin(), dimensions.end(), 0) != dimensions.end()) return 0;
  uint64_t result = 1;
  for (const uint64_t dimension : dimensions) {
    if (__builtin_mul_overflow(result, dimension, &result)) return std::nullopt;
  }
  return result;
}

std::string shape(const Array& array) {
  std::string text;
  for (const uint64_t dimension : array.dimension()) {
    if (!text.empty()) text += "x";
    text += std::to_string(dimension);
  }
  return text;
}

template <class List>
uint64_t sizeOf(const List& list) {
  return static_cast<uint64_t>(list.size());
}

struct Sizes {
  uint64_t elements;
  uint64_t imaginary;
};

template <class Payload>
Sizes sizesOf(const Payload& payload) {
  return {sizeOf(payload.elements()), sizeOf(payload.imag_elements())};
}

Sizes sizesOf(const Array& array) {
  if (isNumeric(array)) {
    return withNumericPayload(array,
                              [](const auto& payload) { return sizesOf(payload); });
  }
  switch (static_cast<int>(array.type())) {
    case Array::LOGICAL:
      return {sizeOf(array.logical().elements()), 0};
    case Array::CHAR:
      return {sizeOf(array.qxchar().elements()), 0};
    case Array::STRUCT:
      return {sizeOf(array.struct_().elements()), 0};
    case Array::CELL:
      return {sizeOf(array.cell().elements()), 0};
  }
  throw std::logic_error("sizesOf: not a dense array");
}

Sizes sparseSizesOf(const Sparse& sparse) {
  if (sparse.type() == Sparse::LOGICAL) return {sizeOf(sparse.logical().elements()), 0};
  return sizesOf(sparse.qxsparsedouble());
}

[[noreturn]] void refuse(const std::string& text, SourceLine at) {
  throw CallError("payload", text, at);
}

void checkSparse(const Array& array, const std::string& what, SourceLine at) {
  const Sparse& sparse = array.sparse();
  if (array.dimension_size() != 2) {
    refuse("expected two dimensions of the sparse array " + what + ", got " +
               std::to_string(array.dimension_size()),
           at);
  }
  if (sparse.type() != Sparse::DOUBLE && sparse.type() != Sparse::LOGICAL) {
    refuse("expected sparse type 0 or 1 of " + what + ", got " +
               std::to_string(sparse.type()),
           at);
  }
  const Sizes sizes = sparseSizesOf(sparse);
  if (sizeOf(sparse.ir()) != sizes.elements) {
    refuse("expected as many values as row indices in " + what + ", got " +
               std::to_string(sizes.elements) + " values and " +
               std::to_string(sparse.ir_size()) + " row indices",
           at);
  }
  if (sizes.imaginary != 0 && sizes.imaginary != sizes.elements) {
    refuse("expected as many imaginary values as values in " + what + ", got " +
               std::to_string(sizes.imaginary) + " and " + std::to_string(sizes.elements),
           at);
  }
  // The subtraction is safe: the comparison before it has seen an entry.
  if (sparse.jc_size() == 0 || sizeOf(sparse.jc()) - 1 != array.dimension(1)) {
    refuse("expected one column start more than columns in " + what + ", got " +
               std::to_string(sparse.jc_size()) + " for " + summary(array),
           at);
  }
}

template <class List>
void checkEach(const List& arrays, const std::string& what, SourceLine at) {
  for (const Array& array : arrays) checkArray(array, what, at);
}

}  // namespace

std::string className(const Array& array) {
  static constexpr const char* kNames[] = {
      "uint8", "int8",   "uint16", "int16",   "uint32", "int32",  "uint64",
      "int64", "single", "double", "logical", "char",   "struct", "cell"};
  if (array.type() == Array::SPARSE) {
    return array.sparse().type() == Sparse::LOGICAL ? "logical" : "double";
  }
  return kNames[array.type()];
}

std::string summary(const Array& array) {
  return shape(array) + (isComplex(array) ? " complex" : "") +
         (array.type() == Array::SPARSE ? " sparse " : " ") + className(array);
}

bool isComplex(const Array& array) {
  return (array.type() == Array::SPARSE ? sparseSizesOf(array.sparse()) : sizesOf(array))
             .imaginary != 0;
}

uint64_t elementCount(const Array& array) { return product(array.dimension()).value(); }

void checkArray(const Array& array, const std::string& what, SourceLine at) {
  if (array.type() < Array::UINT8 || array.type() > Array::SPARSE) {
    throw CallError("type",
                    "expected types 0 to 14, got type " + std::to_string(array.type()) +
                        " in " + what,
                    at);
  }
  if (array.dimension_size() < 2) {
    refuse("expected at least two dimensions of " + what + ", got " +
               std::to_string(array.dimension_size()),
           at);
  }
  const std::optional<uint64_t> count = product(array.dimension());
  if (!count) {
    refuse("expected a number of elements that fits 64 bits, got " + shape(array) +
               " in " + what,
           at);
  }
  if (array.type() == Array::SPARSE) return checkSparse(array, what, at);

  uint64_t expected = *count;
  if (array.type() == Array::STRUCT &&
      __builtin_mul_overflow(expected, sizeOf(array.struct_().field_names()),
                             &expected)) {
    refuse("expected a number of field values that fits 64 bits, got " + shape(array) +
               " in " + what,
           at);
  }
  const Sizes sizes = sizesOf(array);
  const bool imaginaryFits = sizes.imaginary == 0 || sizes.imaginary == expected;
  if (sizes.elements != expected || !imaginaryFits) {
    const uint64_t got = sizes.elements != expected ? sizes.elements : sizes.imaginary;
    refuse("expected an element count of " + std::to_string(expected) + " in " + what +
               " (" + summary(array) + "), got " + std::to_string(got),
           at);
  }
  if (array.type() == Array::CELL) checkEach(array.cell().elements(), what, at);
  if (array.type() == Array::STRUCT) checkEach(array.struct_().elements(), what, at);
}

}  // namespace orb::serve
