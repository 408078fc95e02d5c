// SPDX-License-Identifier: MIT
// Functions for tables of observations: regress, pca.
#include <Eigen/QR>
#include <Eigen/SVD>
#include <cmath>

#include "functions.h"
#include "messages.h"
#include "values.h"

namespace orb::serve {

// regress(y, X): the coefficients b of the least-squares fit y = X * b, their standard
// errors, and R² about the mean of y. An intercept is a column of ones in X.
void regress(Call& call) {
  const Matrix observed = finiteMatrixOf(call.input(0));
  const Matrix predictors = finiteMatrixOf(call.input(1));
  const Eigen::Index count = predictors.rows();
  const Eigen::Index terms = predictors.cols();
  expect(observed.cols() == 1, "a column of observations", call.input(0));
  expect(observed.rows() == count,
         "predictors with " + std::to_string(observed.rows()) + " rows", call.input(1));
  expect(count > terms, "more observations than predictors", call.input(1));

  // Columns of length 1 keep predictors of very different units apart from rank loss.
  const Eigen::VectorXd lengths = predictors.colwise().stableNorm().transpose();
  const Eigen::VectorXd scale =
      lengths.unaryExpr([](double length) { return length > 0 ? 1 / length : 1.0; });
  const Eigen::ColPivHouseholderQR<Matrix> qr(predictors * scale.asDiagonal());
  if (qr.rank() < terms) {
    throw CallError("rank", "expected linearly independent predictors, got rank " +
                                std::to_string(qr.rank()) + " of " +
                                std::to_string(terms));
  }
  const Eigen::VectorXd coefficients = scale.cwiseProduct(qr.solve(observed).col(0));
  const double residual = (observed - predictors * coefficients).squaredNorm();
  const double deviation = (observed.array() - observed.mean()).matrix().squaredNorm();

  // The covariance of the scaled coefficients is variance * P * inv(R) * inv(R)' * P'.
  const Matrix inverse = qr.matrixR().topRows(terms).triangularView<Eigen::Upper>().solve(
      Matrix::Identity(terms, terms));
  const Eigen::VectorXd spread =
      (qr.colsPermutation() * inverse).rowwise().norm().cwiseProduct(scale);
  const double variance = residual / static_cast<double>(count - terms);

  call.put(toArray(Matrix(coefficients)));
  call.put(toArray(Matrix(std::sqrt(variance) * spread)));
  call.put(toArray(1 - residual / deviation));
}

// pca(X), with observations in rows: the principal components as columns, the scores of
// the observations, and the variances as a column, largest first. The largest entry of
// every component is positive.
void pca(Call& call) {
  const Matrix observations = finiteMatrixOf(call.input(0));
  expect(observations.rows() > 1, "at least two observations", call.input(0));
  const Matrix centred = observations.rowwise() - observations.colwise().mean();
  const Eigen::BDCSVD<Matrix> decomposition(centred,
                                            Eigen::ComputeThinU | Eigen::ComputeThinV);
  Matrix components = decomposition.matrixV();
  for (auto component : components.colwise()) {
    Eigen::Index largest = 0;
    component.cwiseAbs().maxCoeff(&largest);
    if (component[largest] < 0) component = -component;
  }
  const double freedom = static_cast<double>(observations.rows() - 1);
  call.put(toArray(components));
  call.put(toArray(Matrix(centred * components)));
  call.put(toArray(
      Matrix(decomposition.singularValues().array().square().matrix() / freedom)));
}

}  // namespace orb::serve
