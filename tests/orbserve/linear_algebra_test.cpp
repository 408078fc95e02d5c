// SPDX-License-Identifier: MIT
// The functions for dense and sparse matrices.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "orbserve/service.h"

namespace orb::test {
namespace {

using ::testing::DoubleNear;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::Pointwise;

constexpr double kRounding = 1e-12;
const double kNan = std::numeric_limits<double>::quiet_NaN();

MATCHER_P(IsNear, expected, "") {
  return ::testing::ExplainMatchResult(
      Pointwise(::testing::DoubleNear(kRounding), Numbers(expected)), arg,
      result_listener);
}

/// The product of outputs of other functions.
Array times(const Array& left, const Array& right) {
  return callForOne("mtimes", {left, right});
}

Array transposed(const Array& matrix) {
  const Shape shape = shapeOf(matrix);
  const Numbers elements = elementsOf(matrix);
  Numbers result;
  for (uint64_t row = 0; row < shape[0]; ++row) {
    for (uint64_t column = 0; column < shape[1]; ++column) {
      result.push_back(elements[column * shape[0] + row]);
    }
  }
  return doubles({shape[1], shape[0]}, result);
}

TEST(Mtimes, MultipliesMatrices) {
  const Array product =
      times(doubles({2, 3}, {1, 2, 3, 4, 5, 6}), doubles({3, 2}, {1, 0, 2, 0, 1, 0}));
  EXPECT_EQ(shapeOf(product), (Shape{2, 2}));
  EXPECT_THAT(elementsOf(product), ElementsAre(11, 14, 3, 4));
}

TEST(Mtimes, ScalesByAScalarOnEitherSide) {
  const Array matrix = doubles({1, 2}, {1, 2});
  EXPECT_THAT(elementsOf(times(scalar(3), matrix)), ElementsAre(3, 6));
  EXPECT_THAT(elementsOf(times(matrix, scalar(3))), ElementsAre(3, 6));
}

TEST(Mtimes, MultipliesComplexByReal) {
  const Array product = times(doubles({1, 2}, {1, 2}, {3, 4}), doubles({2, 1}, {5, 6}));
  EXPECT_THAT(elementsOf(product), ElementsAre(17));
  EXPECT_THAT(imaginaryOf(product), ElementsAre(39));
}

TEST(Mtimes, SumsOverNoElements) {
  const Array product = times(doubles({2, 0}, {}), doubles({0, 2}, {}));
  EXPECT_EQ(shapeOf(product), (Shape{2, 2}));
  EXPECT_THAT(elementsOf(product), ElementsAre(0, 0, 0, 0));
}

TEST(Solve, FindsTheUnknowns) {
  const Array solution =
      callForOne("solve", {doubles({2, 2}, {2, 1, 1, 3}), doubles({2, 1}, {3, 5})});
  EXPECT_EQ(shapeOf(solution), (Shape{2, 1}));
  EXPECT_THAT(elementsOf(solution), IsNear(Numbers{0.8, 1.4}));
}

TEST(Solve, TakesSeveralRightHandSides) {
  const Array solution =
      callForOne("solve", {doubles({2, 2}, {2, 0, 0, 4}), doubles({2, 2}, {2, 4, 6, 8})});
  EXPECT_EQ(shapeOf(solution), (Shape{2, 2}));
  EXPECT_THAT(elementsOf(solution), ElementsAre(1, 1, 3, 2));
}

class SolveSingular : public ::testing::TestWithParam<Numbers> {};

TEST_P(SolveSingular, IsAnError) {
  const Result result =
      call("solve", 1, {doubles({3, 3}, GetParam()), doubles({3, 1}, {1, 2, 3})});
  EXPECT_EQ(result.error().identifier(), "orbserve:solve:singular");
}

INSTANTIATE_TEST_SUITE_P(Matrices, SolveSingular,
                         ::testing::Values(Numbers{0, 0, 0, 0, 0, 0, 0, 0, 0},
                                           Numbers{1, 0, 0, 0, 0, 0, 0, 0, 1},
                                           Numbers{0, 0, 0, 0, 1, 2, 0, 3, 5},
                                           Numbers{0, 1, 0, 0, 0, 1, 0, 0, 0},
                                           Numbers{1, 1, 1, 1, 1, 1, 1, 1, 1},
                                           Numbers{1, 2, 3, 4, 5, 6, 7, 8, 9}));

TEST(Svd, GivesTheSingularValuesAsAColumn) {
  const Array values = callForOne("svd", {doubles({2, 2}, {3, 4, 0, 5})});
  EXPECT_EQ(shapeOf(values), (Shape{2, 1}));
  EXPECT_THAT(elementsOf(values), IsNear(Numbers{3 * std::sqrt(5), std::sqrt(5)}));
}

TEST(Svd, GivesFactorsOfTheMatrix) {
  const Array matrix = doubles({3, 2}, {1, 2, 3, 4, 5, 7});
  const Result result = call("svd", 3, {matrix});
  ASSERT_EQ(result.lhs_size(), 3) << result.DebugString();
  EXPECT_EQ(shapeOf(result.lhs(0)), (Shape{3, 3}));
  EXPECT_EQ(shapeOf(result.lhs(1)), (Shape{3, 2}));
  EXPECT_EQ(shapeOf(result.lhs(2)), (Shape{2, 2}));
  const Array product =
      times(times(result.lhs(0), result.lhs(1)), transposed(result.lhs(2)));
  EXPECT_THAT(elementsOf(product), IsNear(elementsOf(matrix)));
  EXPECT_THAT(elementsOf(times(transposed(result.lhs(0)), result.lhs(0))),
              IsNear(Numbers{1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

TEST(Svd, GivesTwoFactors) {
  const Result result = call("svd", 2, {doubles({2, 1}, {3, 4})});
  ASSERT_EQ(result.lhs_size(), 2);
  EXPECT_EQ(shapeOf(result.lhs(0)), (Shape{2, 2}));
  EXPECT_THAT(elementsOf(result.lhs(1)), IsNear(Numbers{5, 0}));
}

TEST(Eig, GivesAscendingValuesOfASymmetricMatrix) {
  const Array values = callForOne("eig", {doubles({2, 2}, {2, 1, 1, 2})});
  EXPECT_EQ(shapeOf(values), (Shape{2, 1}));
  EXPECT_THAT(elementsOf(values), IsNear(Numbers{1, 3}));
  EXPECT_THAT(imaginaryOf(values), ElementsAre());
}

TEST(Eig, GivesComplexValuesOfARotation) {
  const Array values = callForOne("eig", {doubles({2, 2}, {0, 1, -1, 0})});
  EXPECT_THAT(elementsOf(values), IsNear(Numbers{0, 0}));
  Numbers imaginary = imaginaryOf(values);
  std::sort(imaginary.begin(), imaginary.end());
  EXPECT_THAT(imaginary, IsNear(Numbers{-1, 1}));
}

TEST(Eig, GivesRealValuesOfATriangle) {
  const Array values = callForOne("eig", {doubles({2, 2}, {1, 0, 5, 2})});
  EXPECT_THAT(imaginaryOf(values), ElementsAre());
  Numbers sorted = elementsOf(values);
  std::sort(sorted.begin(), sorted.end());
  EXPECT_THAT(sorted, IsNear(Numbers{1, 2}));
}

class EigOfMatrices : public ::testing::TestWithParam<Numbers> {};

TEST_P(EigOfMatrices, GivesVectorsAndDiagonal) {
  const Array matrix = doubles({3, 3}, GetParam());
  const Result result = call("eig", 2, {matrix});
  ASSERT_EQ(result.lhs_size(), 2) << result.DebugString();
  const Array left = times(matrix, result.lhs(0));
  const Array right = times(result.lhs(0), result.lhs(1));
  EXPECT_EQ(shapeOf(right), (Shape{3, 3}));
  EXPECT_THAT(elementsOf(left), IsNear(elementsOf(right)));
  EXPECT_THAT(imaginaryOf(left), IsNear(imaginaryOf(right)));
  EXPECT_NE(elementsOf(left), Numbers(9, 0.0));
}

INSTANTIATE_TEST_SUITE_P(Matrices, EigOfMatrices,
                         ::testing::Values(Numbers{2, -1, 0, -1, 2, -1, 0, -1, 2},
                                           Numbers{0, 1, 0, 0, 0, 1, 1, 0, 0},
                                           Numbers{1, 0, 0, 2, 3, 0, 4, 5, 6}));

// The matrix (1 0; 0 2; 3 0).
Array smallSparse() { return sparse({3, 2}, {0, 2, 1}, {0, 2, 3}, {1, 3, 2}); }

TEST(SparseMtimes, GivesADenseProductOfADenseMatrix) {
  const Array product =
      callForOne("sparse_mtimes", {smallSparse(), doubles({2, 2}, {1, 2, 3, 4})});
  EXPECT_EQ(product.type(), Array::DOUBLE);
  EXPECT_EQ(shapeOf(product), (Shape{3, 2}));
  EXPECT_THAT(elementsOf(product), ElementsAre(1, 4, 3, 3, 8, 9));
}

TEST(SparseMtimes, GivesASparseProductOfASparseMatrix) {
  const Array right = sparse({2, 2}, {1, 0}, {0, 1, 2}, {5, 7});
  const Array product = callForOne("sparse_mtimes", {smallSparse(), right});
  EXPECT_EQ(product.type(), Array::SPARSE);
  EXPECT_EQ(shapeOf(product), (Shape{3, 2}));
  EXPECT_THAT(product.sparse().ir(), ElementsAre(1, 0, 2));
  EXPECT_THAT(product.sparse().jc(), ElementsAre(0, 1, 3));
  EXPECT_THAT(product.sparse().qxsparsedouble().elements(), ElementsAre(10, 7, 21));
}

TEST(SparseMtimes, LeavesOutUnusedCapacity) {
  const Array left = sparse({2, 2}, {1, 0, 0}, {0, 1, 1}, {4, 9, 9});
  const Array product = callForOne("sparse_mtimes", {left, doubles({2, 1}, {1, 1})});
  EXPECT_THAT(elementsOf(product), ElementsAre(0, 4));
}

struct RefusalRow {
  std::string function;
  std::vector<Array> inputs;
  std::string kind;
  std::string text;
  std::string file = "linear_algebra.cpp";
};

class MatrixRefusal : public ::testing::TestWithParam<RefusalRow> {};

TEST_P(MatrixRefusal, SaysWhatWasExpectedAndWhatCame) {
  const RefusalRow& row = GetParam();
  EXPECT_EQ(failureOf(call(row.function, 1, row.inputs)),
            (Failure{"orbserve:" + row.function + ":" + row.kind,
                     row.function + ": " + row.text, row.file, row.function}));
}

const Array kMatrix32 = doubles({3, 2}, {1, 2, 3, 4, 5, 6});
const Array kMatrix22 = doubles({2, 2}, {1, 2, 3, 4});

INSTANTIATE_TEST_SUITE_P(
    Dense, MatrixRefusal,
    ::testing::Values(
        RefusalRow{"mtimes",
                   {kMatrix32, kMatrix32},
                   "shape",
                   "expected equal inner dimensions, got 3x2 double times 3x2 double"},
        RefusalRow{"mtimes",
                   {kMatrix22, doubles({1, 1, 2}, {1, 2})},
                   "shape",
                   "expected a matrix, got 1x1x2 double"},
        RefusalRow{"mtimes",
                   {chars(u"ab"), kMatrix22},
                   "class",
                   "expected real numbers, got 1x2 char"},
        RefusalRow{"mtimes",
                   {doubles({1u << 20, 0}, {}), doubles({0, 1u << 20}, {})},
                   "size",
                   "expected a result of at most 67108864 elements, got 1048576x1048576"},
        RefusalRow{"mtimes",
                   {doubles({uint64_t{1} << 63, 0}, {}), doubles({0, 2}, {})},
                   "shape",
                   "expected a matrix, got 9223372036854775808x0 double"},
        RefusalRow{"solve",
                   {kMatrix32, kMatrix32},
                   "shape",
                   "expected a square coefficient matrix, got 3x2 double"},
        RefusalRow{"solve",
                   {kMatrix22, kMatrix32},
                   "shape",
                   "expected a right-hand side of 2 rows, got 3x2 double"},
        RefusalRow{"solve",
                   {doubles({2, 2}, {1, 2, 2, 4}), doubles({2, 1}, {1, 1})},
                   "singular",
                   "expected a regular coefficient matrix, got one that is singular to "
                   "working precision (reciprocal condition 0)"},
        RefusalRow{"solve",
                   {doubles({1, 1}, {0}), scalar(1)},
                   "singular",
                   "expected a regular coefficient matrix, got one that is singular to "
                   "working precision (reciprocal condition 0)"},
        RefusalRow{"solve",
                   {doubles({1, 1}, {kNan}), scalar(1)},
                   "value",
                   "expected finite elements, got Inf or NaN in 1x1 double"},
        RefusalRow{"solve",
                   {doubles({1, 1}, {1}, {1}), scalar(1)},
                   "class",
                   "expected real numbers, got 1x1 complex double"},
        RefusalRow{"svd",
                   {doubles({0, 3}, {})},
                   "shape",
                   "expected a matrix with elements, got 0x3 double"},
        RefusalRow{
            "eig", {kMatrix32}, "shape", "expected a square matrix, got 3x2 double"}));

INSTANTIATE_TEST_SUITE_P(
    Sparse, MatrixRefusal,
    ::testing::Values(
        RefusalRow{"sparse_mtimes",
                   {kMatrix22, kMatrix22},
                   "class",
                   "expected a real sparse matrix, got 2x2 double",
                   "sparse.cpp"},
        RefusalRow{"sparse_mtimes",
                   {smallSparse(), kMatrix32},
                   "shape",
                   "expected equal inner dimensions, got 3x2 sparse double times 3x2 "
                   "double",
                   "sparse.cpp"},
        RefusalRow{"sparse_mtimes",
                   {sparse({2, 2}, {0, 2}, {0, 1, 2}, {1, 1}), kMatrix22},
                   "payload",
                   "expected rising row indices within each column",
                   "sparse.cpp"},
        RefusalRow{"sparse_mtimes",
                   {sparse({2, 2}, {1, 0}, {0, 2, 2}, {1, 1}), kMatrix22},
                   "payload",
                   "expected rising row indices within each column",
                   "sparse.cpp"},
        RefusalRow{"sparse_mtimes",
                   {sparse({2, 2}, {0}, {0, 2, 1}, {1}), kMatrix22},
                   "payload",
                   "expected rising column starts within the stored values",
                   "sparse.cpp"},
        RefusalRow{"sparse_mtimes",
                   {sparse({2, 2}, {0, 1}, {0, 2, 1}, {1, 1}), kMatrix22},
                   "payload",
                   "expected rising column starts within the stored values",
                   "sparse.cpp"},
        RefusalRow{"sparse_mtimes",
                   {sparse({2, 2}, {0}, {1, 1, 1}, {1}), kMatrix22},
                   "payload",
                   "expected column starts from 0",
                   "sparse.cpp"},
        RefusalRow{"sparse_mtimes",
                   {sparse({1u << 30, 1}, {}, {0, 0}, {}), scalar(1)},
                   "size",
                   "expected a result of at most 67108864 elements, got 1073741824x1",
                   "sparse.cpp"}));

}  // namespace
}  // namespace orb::test
