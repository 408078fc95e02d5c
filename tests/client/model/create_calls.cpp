// SPDX-License-Identifier: MIT
// Random calls of the functions that make an array from nothing.
#include "client/model/call.h"

namespace orb::model {
namespace {

struct Extents {
  size_t m;
  size_t n;
};

/// Draws until the matrix is affordable, or refused by the check of m and n.
template <class... Slots>
Extents extents(Chooser& choose, Slots... slotsPerElement) {
  while (true) {
    const size_t m = choose.extent();
    const size_t n = choose.extent();
    if (m > kMaxElements || n > kMaxElements) return {m, n};
    if (isAffordable({m, n}, slotsPerElement...)) return {m, n};
  }
}

template <class... Slots>
std::vector<size_t> dimensions(Chooser& choose, Slots... slotsPerElement) {
  while (true) {
    const std::vector<size_t> dims = choose.dimensions();
    if (isAffordable(normalised(dims), slotsPerElement...)) return dims;
  }
}

Operation createNumericArray(Chooser& choose) {
  const orbClassID classid = choose.numericClass();
  const bool unlimited = classid == orbUINT8_CLASS || classid == orbINT8_CLASS;
  std::vector<size_t> dims;
  do {
    dims = dimensions(choose);
  } while (unlimited && product(normalised(dims)) > kMaxElements);
  return creation(choose, ORB_MODEL_BOTH(orbCreateNumericArray), dims.size(), dims,
                  classid, choose.complexity());
}

Operation createNumericMatrix(Chooser& choose) {
  const auto [m, n] = extents(choose);
  const orbClassID classid = choose.numericClass();
  return creation(choose, ORB_MODEL_BOTH(orbCreateNumericMatrix), m, n, classid,
                  choose.complexity());
}

Operation createDoubleMatrix(Chooser& choose) {
  const auto [m, n] = extents(choose);
  return creation(choose, ORB_MODEL_BOTH(orbCreateDoubleMatrix), m, n,
                  choose.complexity());
}

Operation createDoubleScalar(Chooser& choose) {
  const double value = static_cast<double>(choose.random().below(4001)) / 4 - 500;
  return creation(choose, ORB_MODEL_BOTH(orbCreateDoubleScalar), value);
}

Operation createLogicalArray(Chooser& choose) {
  const std::vector<size_t> dims = dimensions(choose);
  return creation(choose, ORB_MODEL_BOTH(orbCreateLogicalArray), dims.size(), dims);
}

Operation createLogicalMatrix(Chooser& choose) {
  const auto [m, n] = extents(choose);
  return creation(choose, ORB_MODEL_BOTH(orbCreateLogicalMatrix), m, n);
}

Operation createLogicalScalar(Chooser& choose) {
  return creation(choose, ORB_MODEL_BOTH(orbCreateLogicalScalar),
                  choose.random().chance(50));
}

Operation createCharArray(Chooser& choose) {
  const std::vector<size_t> dims = dimensions(choose);
  return creation(choose, ORB_MODEL_BOTH(orbCreateCharArray), dims.size(), dims);
}

Operation createString(Chooser& choose) {
  return creation(choose, ORB_MODEL_BOTH(orbCreateString), choose.text());
}

Operation createCharMatrixFromStrings(Chooser& choose) {
  const std::vector<std::string> texts = choose.texts(4);
  return creation(choose, ORB_MODEL_BOTH(orbCreateCharMatrixFromStrings), texts.size(),
                  texts);
}

Operation createCellArray(Chooser& choose) {
  const std::vector<size_t> dims = dimensions(choose, size_t{1});
  return creation(choose, ORB_MODEL_BOTH(orbCreateCellArray), dims.size(), dims);
}

Operation createCellMatrix(Chooser& choose) {
  const auto [m, n] = extents(choose, size_t{1});
  return creation(choose, ORB_MODEL_BOTH(orbCreateCellMatrix), m, n);
}

/// A negative count stands for no names at all, as 0 does.
int fieldCount(Chooser& choose, const std::vector<std::string>& names) {
  if (names.empty() && choose.random().chance(30)) return -1;
  return static_cast<int>(names.size());
}

Operation createStructArray(Chooser& choose) {
  const std::vector<std::string> names = choose.fieldNames();
  const std::vector<size_t> dims = dimensions(choose, names.size());
  return creation(choose, ORB_MODEL_BOTH(orbCreateStructArray), dims.size(), dims,
                  fieldCount(choose, names), names);
}

Operation createStructMatrix(Chooser& choose) {
  const std::vector<std::string> names = choose.fieldNames();
  const auto [m, n] = extents(choose, names.size());
  return creation(choose, ORB_MODEL_BOTH(orbCreateStructMatrix), m, n,
                  fieldCount(choose, names), names);
}

/// A sparse array may have more elements than any other: they are not stored.
Extents sparseExtents(Chooser& choose) {
  if (choose.random().chance(2)) return {100000, 30000};
  const size_t m = choose.extent();
  const size_t n = choose.extent();
  return {m, n};
}

size_t capacity(Chooser& choose) {
  return choose.random().chance(3) ? kHuge : choose.random().below(12);
}

Operation createSparse(Chooser& choose) {
  const auto [m, n] = sparseExtents(choose);
  const size_t nzmax = capacity(choose);
  return creation(choose, ORB_MODEL_BOTH(orbCreateSparse), m, n, nzmax,
                  choose.complexity());
}

Operation createSparseLogicalMatrix(Chooser& choose) {
  const auto [m, n] = sparseExtents(choose);
  const size_t nzmax = capacity(choose);
  return creation(choose, ORB_MODEL_BOTH(orbCreateSparseLogicalMatrix), m, n, nzmax);
}

}  // namespace

const std::vector<Kind>& creationKinds() {
  static const std::vector<Kind> kinds = {
      {7, createNumericArray},  {6, createNumericMatrix},
      {2, createDoubleMatrix},  {2, createDoubleScalar},
      {2, createLogicalArray},  {2, createLogicalMatrix},
      {2, createLogicalScalar}, {3, createCharArray},
      {4, createString},        {3, createCharMatrixFromStrings},
      {6, createCellArray},     {6, createCellMatrix},
      {6, createStructArray},   {6, createStructMatrix},
      {4, createSparse},        {4, createSparseLogicalMatrix}};
  return kinds;
}

}  // namespace orb::model
