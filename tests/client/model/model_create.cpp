// SPDX-License-Identifier: MIT
// The functions that make an array from nothing.
#include <algorithm>
#include <cstring>

#include "client/model/rules.h"

namespace orb::model {
namespace {

std::vector<size_t> matrix(size_t m, size_t n) {
  requireAtMostMax(m);
  requireAtMostMax(n);
  return {m, n};
}

std::vector<std::string> namesOf(int nfields, const char** fieldnames) {
  if (nfields <= 0) return {};
  return {fieldnames, fieldnames + nfields};
}

Array* create(orbClassID classid, const std::vector<size_t>& dimensions,
              orbComplexity flag = orbREAL) {
  const size_t count = product(dimensions);
  const bool unlimited =
      isContainer(classid) || classid == orbUINT8_CLASS || classid == orbINT8_CLASS;
  if (!unlimited) requireAtMostMax(count);
  auto message = std::make_shared<Message>();
  message->classid = classid;
  message->dimensions = dimensions;
  if (!isContainer(classid)) message->real.resize(count * factsOf(classid).elementSize);
  if (flag == orbCOMPLEX) message->imag.resize(count * factsOf(classid).elementSize);
  auto* a = new Array(message);
  if (isContainer(classid)) resizeElements(*a, count);
  return a;
}

Array* createStruct(const std::vector<size_t>& dimensions,
                    const std::vector<std::string>& fieldNames) {
  const size_t count = product(dimensions) * fieldNames.size();
  auto message = std::make_shared<Message>();
  message->classid = orbSTRUCT_CLASS;
  message->dimensions = dimensions;
  message->fieldNames = fieldNames;
  auto* a = new Array(message);
  resizeElements(*a, count);
  return a;
}

Array* createSparse(orbClassID classid, size_t m, size_t n, size_t nzmax,
                    orbComplexity flag) {
  auto message = std::make_shared<Message>();
  message->classid = classid;
  message->sparse = true;
  message->dimensions = matrix(m, n);
  requireAtMostMax(n + 1);
  requireAtMostMax(nzmax);
  message->ir.resize(nzmax);
  message->jc.resize(n + 1);
  message->real.resize(nzmax * factsOf(classid).elementSize);
  if (flag == orbCOMPLEX) message->imag.resize(nzmax * factsOf(classid).elementSize);
  auto* a = new Array(message);
  a->complex = flag == orbCOMPLEX && m * n != 0;
  return a;
}

void storeString(char16_t* first, size_t stride, const char* str) {
  for (size_t i = 0; str[i] != '\0'; ++i) {
    first[i * stride] = static_cast<char16_t>(static_cast<signed char>(str[i]));
  }
}

}  // namespace

Array* orbCreateNumericArray(size_t ndim, const size_t* dims, orbClassID classid,
                             orbComplexity flag) {
  if (!isNumeric(classid)) return nullptr;
  return create(classid, normalised({dims, dims + ndim}), flag);
}

Array* orbCreateNumericMatrix(size_t m, size_t n, orbClassID classid,
                              orbComplexity flag) {
  if (!isNumeric(classid)) return nullptr;
  return create(classid, matrix(m, n), flag);
}

Array* orbCreateDoubleMatrix(size_t m, size_t n, orbComplexity flag) {
  return create(orbDOUBLE_CLASS, matrix(m, n), flag);
}

Array* orbCreateDoubleScalar(double value) {
  Array* a = create(orbDOUBLE_CLASS, {1, 1});
  *orbGetPr(a) = value;
  return a;
}

Array* orbCreateLogicalArray(size_t ndim, const size_t* dims) {
  return create(orbLOGICAL_CLASS, normalised({dims, dims + ndim}));
}

Array* orbCreateLogicalMatrix(size_t m, size_t n) {
  return create(orbLOGICAL_CLASS, matrix(m, n));
}

Array* orbCreateLogicalScalar(bool value) {
  Array* a = create(orbLOGICAL_CLASS, {1, 1});
  *orbGetLogicals(a) = value;
  return a;
}

Array* orbCreateCharArray(size_t ndim, const size_t* dims) {
  return create(orbCHAR_CLASS, normalised({dims, dims + ndim}));
}

Array* orbCreateString(const char* str) {
  const size_t length = std::strlen(str);
  if (length == 0) return create(orbCHAR_CLASS, {0, 0});
  Array* a = create(orbCHAR_CLASS, matrix(1, length));
  storeString(orbGetChars(a), 1, str);
  return a;
}

Array* orbCreateCharMatrixFromStrings(size_t m, const char** str) {
  size_t width = 0;
  for (size_t i = 0; i < m; ++i) width = std::max(width, std::strlen(str[i]));
  Array* a = create(orbCHAR_CLASS, matrix(m, width));
  for (size_t i = 0; i < m; ++i) storeString(orbGetChars(a) + i, m, str[i]);
  return a;
}

Array* orbCreateCellArray(size_t ndim, const size_t* dims) {
  return create(orbCELL_CLASS, normalised({dims, dims + ndim}));
}

Array* orbCreateCellMatrix(size_t m, size_t n) {
  return create(orbCELL_CLASS, matrix(m, n));
}

Array* orbCreateStructArray(size_t ndim, const size_t* dims, int nfields,
                            const char** fieldnames) {
  return createStruct(normalised({dims, dims + ndim}), namesOf(nfields, fieldnames));
}

Array* orbCreateStructMatrix(size_t m, size_t n, int nfields, const char** fieldnames) {
  return createStruct(matrix(m, n), namesOf(nfields, fieldnames));
}

Array* orbCreateSparse(size_t m, size_t n, size_t nzmax, orbComplexity flag) {
  return createSparse(orbDOUBLE_CLASS, m, n, nzmax, flag);
}

Array* orbCreateSparseLogicalMatrix(size_t m, size_t n, size_t nzmax) {
  return createSparse(orbLOGICAL_CLASS, m, n, nzmax, orbREAL);
}

}  // namespace orb::model
