// SPDX-License-Identifier: MIT
// The typed view of array messages: matrices and texts out of them and into them.
#ifndef ORB_TOOLS_ORBSERVE_VALUES_H_
#define ORB_TOOLS_ORBSERVE_VALUES_H_

#include <Eigen/Core>
#include <Eigen/SparseCore>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "call.h"
#include "errors.h"

namespace orb::serve {

using Matrix = Eigen::MatrixXd;
using ComplexMatrix = Eigen::MatrixXcd;
using SparseMatrix = Eigen::SparseMatrix<double>;

// Views out of a message. Numbers of every class become doubles, which are exact up to
// 2^53. Each throws a CallError when the array is not what its name says.

Eigen::VectorXd realNumbersOf(const Array& array, SourceLine at = SourceLine::here());
Eigen::VectorXcd numbersOf(const Array& array, SourceLine at = SourceLine::here());

/// A real numeric or logical matrix with finite elements, at least one.
Matrix finiteMatrixOf(const Array& array, SourceLine at = SourceLine::here());

Matrix realMatrixOf(const Array& array, SourceLine at = SourceLine::here());
ComplexMatrix complexMatrixOf(const Array& array, SourceLine at = SourceLine::here());
SparseMatrix sparseMatrixOf(const Array& array, SourceLine at = SourceLine::here());
double scalarOf(const Array& array, SourceLine at = SourceLine::here());

/// UTF-8, with U+FFFD for what is not UTF-16.
std::string textOf(const Array& array, SourceLine at = SourceLine::here());

// Values into a message.

Array toArray(const Matrix& matrix);
Array toArray(const ComplexMatrix& matrix);
Array toArray(const SparseMatrix& matrix);
Array toArray(double scalar);
Array toArray(std::string_view ascii);

struct Field {
  std::string name;
  Array value;
};

/// A 1x1 struct.
Array toArray(const std::vector<Field>& fields);

/// An array with type and dimensions, and no elements yet.
Array emptyArray(Array::QXType type, const std::vector<uint64_t>& dimensions);

// Checks of what came.

/// Throws "expected <what>, got <summary of the array>" unless the condition holds.
void expect(bool condition, const std::string& what, const Array& array,
            SourceLine at = SourceLine::here());

/// Refuses results that would take more memory than a demonstration should: the inputs of
/// an outer product are short when the product is not.
void expectModestResult(uint64_t rows, uint64_t columns,
                        SourceLine at = SourceLine::here());

}  // namespace orb::serve

#endif  // ORB_TOOLS_ORBSERVE_VALUES_H_
