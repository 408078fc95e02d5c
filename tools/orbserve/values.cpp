// SPDX-License-Identifier: MIT
#include "values.h"

#include <algorithm>
#include <complex>
#include <type_traits>

#include "messages.h"

namespace orb::serve {
namespace {

// 512 MiB of doubles.
constexpr uint64_t kMaxResultElements = uint64_t{1} << 26;

// Eigen counts rows and columns in a signed type.
constexpr uint64_t kMaxDimension = 0x7fffffff;

constexpr char16_t kHighSurrogates = 0xd800;
constexpr char16_t kLowSurrogates = 0xdc00;
constexpr char16_t kAfterSurrogates = 0xe000;
constexpr char32_t kReplacement = 0xfffd;

template <class Element, class List>
Eigen::VectorXd widen(const List& list) {
  Eigen::VectorXd numbers(static_cast<Eigen::Index>(list.size()));
  std::transform(list.begin(), list.end(), numbers.data(), [](const auto& element) {
    return static_cast<double>(static_cast<Element>(element));
  });
  return numbers;
}

// The 8-bit classes travel as bytes of type char, which say nothing of a sign.
template <class Payload, class List>
Eigen::VectorXd widenPayload(const List& list) {
  if constexpr (std::is_same_v<Payload, Array::Uint8>) {
    return widen<uint8_t>(list);
  } else if constexpr (std::is_same_v<Payload, Array::Int8>) {
    return widen<int8_t>(list);
  } else {
    return widen<typename List::value_type>(list);
  }
}

Eigen::VectorXd realParts(const Array& array) {
  if (array.type() == Array::LOGICAL) return widen<bool>(array.logical().elements());
  return withNumericPayload(array, [](const auto& payload) {
    return widenPayload<std::decay_t<decltype(payload)>>(payload.elements());
  });
}

Eigen::VectorXd imaginaryParts(const Array& array) {
  return withNumericPayload(array, [](const auto& payload) {
    return widenPayload<std::decay_t<decltype(payload)>>(payload.imag_elements());
  });
}

bool holdsNumbers(const Array& array) {
  return isNumeric(array) || array.type() == Array::LOGICAL;
}

void expectClass(bool condition, const std::string& what, const Array& array,
                 SourceLine at) {
  if (!condition) {
    throw CallError("class", "expected " + what + ", got " + summary(array), at);
  }
}

void expectMatrix(const Array& array, SourceLine at) {
  const bool fits = array.dimension_size() == 2 && array.dimension(0) <= kMaxDimension &&
                    array.dimension(1) <= kMaxDimension;
  expect(fits, "a matrix", array, at);
}

Eigen::Index rowsOf(const Array& array) {
  return static_cast<Eigen::Index>(array.dimension(0));
}

Eigen::Index columnsOf(const Array& array) {
  return static_cast<Eigen::Index>(array.dimension(1));
}

Eigen::VectorXd sparseValues(const Array::Sparse& sparse) {
  if (sparse.type() == Array::Sparse::LOGICAL) {
    return widen<bool>(sparse.logical().elements());
  }
  return widen<double>(sparse.qxsparsedouble().elements());
}

void expectSparseOrder(bool condition, const std::string& what, SourceLine at) {
  if (!condition) throw CallError("payload", "expected " + what, at);
}

bool isHighSurrogate(uint32_t unit) {
  return unit >= kHighSurrogates && unit < kLowSurrogates;
}

bool isLowSurrogate(uint32_t unit) {
  return unit >= kLowSurrogates && unit < kAfterSurrogates;
}

void appendUtf8(std::string& text, char32_t point) {
  const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
  const auto appendTail = [&](int shift) { append(0x80 | ((point >> shift) & 0x3f)); };
  if (point < 0x80) {
    append(point);
  } else if (point < 0x800) {
    append(0xc0 | (point >> 6));
    appendTail(0);
  } else if (point < 0x10000) {
    append(0xe0 | (point >> 12));
    appendTail(6);
    appendTail(0);
  } else {
    append(0xf0 | (point >> 18));
    appendTail(12);
    appendTail(6);
    appendTail(0);
  }
}

std::vector<uint64_t> shapeOf(Eigen::Index rows, Eigen::Index columns) {
  return {static_cast<uint64_t>(rows), static_cast<uint64_t>(columns)};
}

template <class Numbers>
void assign(google::protobuf::RepeatedField<double>& list, const Numbers& numbers) {
  list.Resize(static_cast<int>(numbers.size()), 0);
  Eigen::Map<Matrix>(list.mutable_data(), numbers.rows(), numbers.cols()) = numbers;
}

}  // namespace

Eigen::VectorXd realNumbersOf(const Array& array, SourceLine at) {
  expectClass(holdsNumbers(array) && !isComplex(array), "real numbers", array, at);
  return realParts(array);
}

Eigen::VectorXcd numbersOf(const Array& array, SourceLine at) {
  expectClass(holdsNumbers(array), "numbers", array, at);
  Eigen::VectorXcd numbers = realParts(array).cast<std::complex<double>>();
  if (isComplex(array)) numbers.imag() = imaginaryParts(array);
  return numbers;
}

Matrix realMatrixOf(const Array& array, SourceLine at) {
  expectMatrix(array, at);
  Matrix matrix = realNumbersOf(array, at);
  matrix.resize(rowsOf(array), columnsOf(array));  // same size: keeps the elements
  return matrix;
}

Matrix finiteMatrixOf(const Array& array, SourceLine at) {
  Matrix matrix = realMatrixOf(array, at);
  expect(matrix.size() != 0, "a matrix with elements", array, at);
  if (!matrix.allFinite()) {
    throw CallError("value",
                    "expected finite elements, got Inf or NaN in " + summary(array), at);
  }
  return matrix;
}

ComplexMatrix complexMatrixOf(const Array& array, SourceLine at) {
  expectMatrix(array, at);
  ComplexMatrix matrix = numbersOf(array, at);
  matrix.resize(rowsOf(array), columnsOf(array));
  return matrix;
}

SparseMatrix sparseMatrixOf(const Array& array, SourceLine at) {
  const bool isReal = array.type() == Array::SPARSE && !isComplex(array);
  expectClass(isReal, "a real sparse matrix", array, at);
  expectMatrix(array, at);
  const Array::Sparse& sparse = array.sparse();
  const Eigen::VectorXd values = sparseValues(sparse);
  const uint64_t rows = array.dimension(0);
  const int columns = sparse.jc_size() - 1;

  expectSparseOrder(sparse.jc(0) == 0, "column starts from 0", at);
  SparseMatrix matrix(rowsOf(array), columnsOf(array));
  for (int column = 0; column < columns; ++column) {
    const uint64_t first = sparse.jc(column);
    const uint64_t end = sparse.jc(column + 1);
    const bool rises = first <= end && end <= static_cast<uint64_t>(sparse.ir_size());
    expectSparseOrder(rises, "rising column starts within the stored values", at);
    matrix.startVec(column);
    for (int i = static_cast<int>(first); i < static_cast<int>(end); ++i) {
      const bool ordered =
          i == static_cast<int>(first) || sparse.ir(i - 1) < sparse.ir(i);
      expectSparseOrder(ordered && sparse.ir(i) < rows,
                        "rising row indices within each column", at);
      matrix.insertBack(static_cast<Eigen::Index>(sparse.ir(i)), column) = values[i];
    }
  }
  matrix.finalize();
  return matrix;
}

double scalarOf(const Array& array, SourceLine at) {
  expect(elementCount(array) == 1, "a scalar", array, at);
  return realNumbersOf(array, at)[0];
}

std::string textOf(const Array& array, SourceLine at) {
  expectClass(array.type() == Array::CHAR, "a char array", array, at);
  const auto& units = array.qxchar().elements();
  std::string text;
  for (int i = 0; i < units.size(); ++i) {
    const uint32_t unit = units[i];
    if (isHighSurrogate(unit) && i + 1 < units.size() && isLowSurrogate(units[i + 1])) {
      appendUtf8(text, 0x10000 + ((unit - kHighSurrogates) << 10) +
                           (units[++i] - kLowSurrogates));
    } else {
      const bool stray = isHighSurrogate(unit) || isLowSurrogate(unit) || unit > 0xffff;
      appendUtf8(text, stray ? kReplacement : char32_t{unit});
    }
  }
  return text;
}

Array emptyArray(Array::QXType type, const std::vector<uint64_t>& dimensions) {
  Array array;
  array.set_type(type);
  array.mutable_dimension()->Add(dimensions.begin(), dimensions.end());
  return array;
}

Array toArray(const Matrix& matrix) {
  Array array = emptyArray(Array::DOUBLE, shapeOf(matrix.rows(), matrix.cols()));
  assign(*array.mutable_qxdouble()->mutable_elements(), matrix);
  return array;
}

Array toArray(const ComplexMatrix& matrix) {
  Array array = emptyArray(Array::DOUBLE, shapeOf(matrix.rows(), matrix.cols()));
  assign(*array.mutable_qxdouble()->mutable_elements(), matrix.real());
  assign(*array.mutable_qxdouble()->mutable_imag_elements(), matrix.imag());
  return array;
}

Array toArray(const SparseMatrix& matrix) {
  Array array = emptyArray(Array::SPARSE, shapeOf(matrix.rows(), matrix.cols()));
  Array::Sparse& sparse = *array.mutable_sparse();
  sparse.set_type(Array::Sparse::DOUBLE);
  sparse.add_jc(0);
  for (Eigen::Index column = 0; column < matrix.outerSize(); ++column) {
    for (SparseMatrix::InnerIterator stored(matrix, column); stored; ++stored) {
      sparse.add_ir(static_cast<uint64_t>(stored.row()));
      sparse.mutable_qxsparsedouble()->add_elements(stored.value());
    }
    sparse.add_jc(static_cast<uint64_t>(sparse.ir_size()));
  }
  return array;
}

Array toArray(double scalar) { return toArray(Matrix::Constant(1, 1, scalar).eval()); }

Array toArray(std::string_view ascii) {
  Array array = emptyArray(Array::CHAR, {1, ascii.size()});
  for (const char letter : ascii) {
    array.mutable_qxchar()->add_elements(static_cast<unsigned char>(letter));
  }
  return array;
}

Array toArray(const std::vector<Field>& fields) {
  Array array = emptyArray(Array::STRUCT, {1, 1});
  for (const Field& field : fields) {
    array.mutable_struct_()->add_field_names(field.name);
    *array.mutable_struct_()->add_elements() = field.value;
  }
  return array;
}

void expect(bool condition, const std::string& what, const Array& array, SourceLine at) {
  if (!condition) {
    throw CallError("shape", "expected " + what + ", got " + summary(array), at);
  }
}

void expectModestResult(uint64_t rows, uint64_t columns, SourceLine at) {
  if (columns != 0 && rows > kMaxResultElements / columns) {
    throw CallError("size",
                    "expected a result of at most " + std::to_string(kMaxResultElements) +
                        " elements, got " + std::to_string(rows) + "x" +
                        std::to_string(columns),
                    at);
  }
}

}  // namespace orb::serve
