// SPDX-License-Identifier: MIT
// The function for sparse matrices: sparse_mtimes.
#include "functions.h"
#include "messages.h"
#include "values.h"

namespace orb::serve {

// A sparse matrix times a dense one, which gives a dense one, or times a sparse one,
// which gives a sparse one.
void sparse_mtimes(Call& call) {
  const Array& second = call.input(1);
  const SparseMatrix left = sparseMatrixOf(call.input(0));
  if (second.dimension(0) != call.input(0).dimension(1)) {
    throw CallError("shape", "expected equal inner dimensions, got " +
                                 summary(call.input(0)) + " times " + summary(second));
  }
  if (second.type() == Array::SPARSE) {
    const SparseMatrix right = sparseMatrixOf(second);
    expectModestResult(left.rows(), 1);  // the product keeps a dense column at a time
    call.put(toArray(SparseMatrix(left * right)));
  } else {
    const Matrix right = realMatrixOf(second);
    expectModestResult(left.rows(), right.cols());
    call.put(toArray(Matrix(left * right)));
  }
}

}  // namespace orb::serve
