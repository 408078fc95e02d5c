// SPDX-License-Identifier: MIT
// Functions for dense matrices: mtimes, solve, svd, eig.
#include <Eigen/Eigenvalues>
#include <Eigen/LU>
#include <Eigen/SVD>
#include <limits>
#include <sstream>

#include "functions.h"
#include "messages.h"
#include "values.h"

namespace orb::serve {
namespace {

template <class AnyMatrix>
Array multiply(const AnyMatrix& left, const AnyMatrix& right, const Call& call) {
  if (left.size() == 1) return toArray(AnyMatrix(left(0) * right));
  if (right.size() == 1) return toArray(AnyMatrix(left * right(0)));
  if (left.cols() != right.rows()) {
    throw CallError("shape", "expected equal inner dimensions, got " +
                                 summary(call.input(0)) + " times " +
                                 summary(call.input(1)));
  }
  expectModestResult(left.rows(), right.cols());
  return toArray(AnyMatrix(left * right));
}

template <class Values, class Vectors>
void putEigen(Call& call, const Values& values, const Vectors& vectors) {
  if (!call.wants(1)) {
    call.put(toArray(Vectors(values)));
    return;
  }
  call.put(toArray(vectors));
  call.put(toArray(Vectors(values.asDiagonal())));
}

double reciprocalConditionOf(const Eigen::PartialPivLU<Matrix>& decomposition) {
  // Eigen's estimate divides by the pivots, and can be 1 after a division by 0.
  if ((decomposition.matrixLU().diagonal().array() == 0).any()) return 0;
  return decomposition.rcond();
}

std::string inDecimal(double number) {
  std::ostringstream text;
  text << number;
  return text.str();
}

}  // namespace

void mtimes(Call& call) {
  const Array& left = call.input(0);
  const Array& right = call.input(1);
  if (isComplex(left) || isComplex(right)) {
    call.put(multiply(complexMatrixOf(left), complexMatrixOf(right), call));
  } else {
    call.put(multiply(realMatrixOf(left), realMatrixOf(right), call));
  }
}

// solve(A, B): the X with A * X = B.
void solve(Call& call) {
  const Matrix coefficients = finiteMatrixOf(call.input(0));
  const Matrix right = realMatrixOf(call.input(1));
  const Eigen::Index unknowns = coefficients.rows();
  expect(unknowns == coefficients.cols(), "a square coefficient matrix", call.input(0));
  expect(right.rows() == unknowns,
         "a right-hand side of " + std::to_string(unknowns) + " rows", call.input(1));

  const Eigen::PartialPivLU<Matrix> decomposition(coefficients);
  const double reciprocalCondition = reciprocalConditionOf(decomposition);
  // Written so that a NaN, from an estimate that overflows, counts as singular.
  if (!(reciprocalCondition > std::numeric_limits<double>::epsilon())) {
    throw CallError("singular",
                    "expected a regular coefficient matrix, got one that is singular to "
                    "working precision (reciprocal condition " +
                        inDecimal(reciprocalCondition) + ")");
  }
  call.put(toArray(Matrix(decomposition.solve(right))));
}

// One output: the singular values as a column. Two or three: the full U and S, and V,
// with A = U * S * V'.
void svd(Call& call) {
  const Matrix matrix = finiteMatrixOf(call.input(0));
  if (!call.wants(1)) {
    call.put(toArray(Matrix(Eigen::BDCSVD<Matrix>(matrix).singularValues())));
    return;
  }
  expectModestResult(matrix.rows(), matrix.rows());
  expectModestResult(matrix.cols(), matrix.cols());
  const Eigen::BDCSVD<Matrix> decomposition(matrix,
                                            Eigen::ComputeFullU | Eigen::ComputeFullV);
  Matrix singularValues = Matrix::Zero(matrix.rows(), matrix.cols());
  singularValues.diagonal() = decomposition.singularValues();
  call.put(toArray(decomposition.matrixU()));
  call.put(toArray(singularValues));
  call.put(toArray(decomposition.matrixV()));
}

// One output: the eigenvalues as a column. Two: the vectors V and the diagonal D, with
// A * V = V * D. Both are complex when an eigenvalue is. A symmetric matrix gives
// ascending values and orthonormal vectors.
void eig(Call& call) {
  const Matrix matrix = finiteMatrixOf(call.input(0));
  expect(matrix.rows() == matrix.cols(), "a square matrix", call.input(0));
  if (matrix == matrix.transpose()) {
    const Eigen::SelfAdjointEigenSolver<Matrix> solver(matrix);
    putEigen(call, solver.eigenvalues(), solver.eigenvectors());
    return;
  }
  const Eigen::EigenSolver<Matrix> solver(matrix, call.wants(1));
  if (solver.info() != Eigen::Success) {
    throw CallError("convergence", "expected eigenvalues, got no convergence for " +
                                       summary(call.input(0)));
  }
  const Eigen::VectorXcd& values = solver.eigenvalues();
  const ComplexMatrix vectors = call.wants(1) ? solver.eigenvectors() : ComplexMatrix();
  if (values.imag().isZero(0)) {
    putEigen(call, Eigen::VectorXd(values.real()), Matrix(vectors.real()));
  } else {
    putEigen(call, values, vectors);
  }
}

}  // namespace orb::serve
