// SPDX-License-Identifier: MIT
// The functions for tables of observations, on data with known answers.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "orbserve/service.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

using Rows = std::vector<Numbers>;

/// The rows after the first line. Texts in quotes count as 0.
Rows readTable(const std::string& file) {
  std::ifstream input(std::string(ORB_DATA_FOLDER) + "/" + file);
  std::string line;
  if (!std::getline(input, line)) throw std::runtime_error("cannot read " + file);
  Rows rows;
  while (std::getline(input, line)) {
    std::istringstream fields(line);
    rows.emplace_back();
    for (std::string field; std::getline(fields, field, ',');) {
      rows.back().push_back(std::strtod(field.c_str(), nullptr));
    }
  }
  return rows;
}

Numbers columnOf(const Rows& rows, size_t column) {
  Numbers numbers;
  for (const Numbers& row : rows) numbers.push_back(row.at(column));
  return numbers;
}

/// The given columns side by side.
Array matrixOf(const Rows& rows, const std::vector<size_t>& columns) {
  Numbers elements;
  for (const size_t column : columns) {
    const Numbers numbers = columnOf(rows, column);
    elements.insert(elements.end(), numbers.begin(), numbers.end());
  }
  return doubles({rows.size(), columns.size()}, elements);
}

void expectDigits(const Numbers& found, const Numbers& certified, double relativeError) {
  ASSERT_EQ(found.size(), certified.size());
  for (size_t i = 0; i < found.size(); ++i) {
    EXPECT_NEAR(found[i], certified[i], std::abs(certified[i]) * relativeError) << i;
  }
}

TEST(Regress, AgreesWithTheCertifiedFitOfLongley) {
  Rows rows = readTable("longley.csv");
  for (Numbers& row : rows) row[0] = 1;  // the number of the observation: the intercept
  const Result result =
      call("regress", 3, {matrixOf(rows, {1}), matrixOf(rows, {0, 2, 3, 4, 5, 6, 7})});
  ASSERT_EQ(result.lhs_size(), 3) << result.DebugString();
  EXPECT_EQ(shapeOf(result.lhs(0)), (Shape{7, 1}));
  expectDigits(elementsOf(result.lhs(0)), columnOf(readTable("longley-certified.csv"), 1),
               1e-10);
  expectDigits(elementsOf(result.lhs(1)),
               {890420.383607373, 84.9149257747669, 0.0334910077722432, 0.488399681651699,
                0.214274163161675, 0.226073200069370, 455.478499142212},
               1e-10);
  expectDigits(elementsOf(result.lhs(2)), {0.995479004577296}, 1e-10);
}

TEST(Regress, FitsALine) {
  const Result result =
      call("regress", 3,
           {doubles({4, 1}, {1, 3, 4, 6}), doubles({4, 2}, {1, 1, 1, 1, 0, 1, 2, 3})});
  ASSERT_EQ(result.lhs_size(), 3) << result.DebugString();
  expectDigits(elementsOf(result.lhs(0)), {1.1, 1.6}, 1e-14);
  expectDigits(elementsOf(result.lhs(1)), {std::sqrt(0.07), std::sqrt(0.02)}, 1e-13);
  expectDigits(elementsOf(result.lhs(2)), {1 - 0.2 / 13}, 1e-14);
}

TEST(Pca, FindsTheComponentsOfIris) {
  const Array flowers = matrixOf(readTable("iris.csv"), {0, 1, 2, 3});
  const Result result = call("pca", 3, {flowers});
  ASSERT_EQ(result.lhs_size(), 3) << result.DebugString();
  EXPECT_EQ(shapeOf(result.lhs(0)), (Shape{4, 4}));
  EXPECT_EQ(shapeOf(result.lhs(1)), (Shape{150, 4}));
  EXPECT_EQ(shapeOf(result.lhs(2)), (Shape{4, 1}));
  const Numbers components = elementsOf(result.lhs(0));
  expectDigits({components.begin(), components.begin() + 4},
               {0.36138659178536, -0.08452251406457, 0.85667060594983, 0.35828919715155},
               1e-10);
  expectDigits(elementsOf(result.lhs(2)),
               {4.22824170603486, 0.24267074792863, 0.07820950004292, 0.02383509297345},
               1e-10);
}

TEST(Pca, ScoresAreTheCentredObservationsAlongTheComponents) {
  const Result result = call("pca", 2, {doubles({3, 2}, {1, 2, 3, -2, -4, -6})});
  ASSERT_EQ(result.lhs_size(), 2) << result.DebugString();
  const Numbers components = elementsOf(result.lhs(0));
  expectDigits({components[0], components[1]}, {-1 / std::sqrt(5), 2 / std::sqrt(5)},
               1e-14);
  const Numbers scores = elementsOf(result.lhs(1));
  EXPECT_NEAR(scores[0], std::sqrt(5), 1e-14);
  EXPECT_NEAR(scores[1], 0, 1e-14);
  EXPECT_NEAR(scores[2], -std::sqrt(5), 1e-14);
}

class PcaSigns : public ::testing::TestWithParam<double> {};

TEST_P(PcaSigns, MakeTheLargestEntryPositive) {
  const double sign = GetParam();
  for (size_t flowers : {5, 20, 50, 100}) {
    Rows rows = readTable("iris.csv");
    rows.resize(flowers);
    for (Numbers& row : rows) row[1] *= sign;
    const Numbers components = elementsOf(callForOne("pca", {matrixOf(rows, {0, 1, 2})}));
    for (size_t first = 0; first < components.size(); first += 3) {
      const auto [least, greatest] = std::minmax_element(
          components.begin() + static_cast<std::ptrdiff_t>(first),
          components.begin() + static_cast<std::ptrdiff_t>(first + 3));
      EXPECT_GT(*greatest, -*least) << flowers << " flowers, component " << first / 3;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(OfAColumn, PcaSigns, ::testing::Values(1, -1));

struct StatisticsRefusalRow {
  std::string function;
  std::vector<Array> inputs;
  std::string kind;
  std::string text;
};

class StatisticsRefusal : public ::testing::TestWithParam<StatisticsRefusalRow> {};

TEST_P(StatisticsRefusal, SaysWhatWasExpectedAndWhatCame) {
  const StatisticsRefusalRow& row = GetParam();
  EXPECT_EQ(failureOf(call(row.function, 1, row.inputs)),
            (Failure{"orbserve:" + row.function + ":" + row.kind,
                     row.function + ": " + row.text, "statistics.cpp", row.function}));
}

const Array kColumn3 = doubles({3, 1}, {1, 2, 3});

INSTANTIATE_TEST_SUITE_P(
    Rows, StatisticsRefusal,
    ::testing::Values(
        StatisticsRefusalRow{"regress",
                             {doubles({1, 3}, {1, 2, 3}), kColumn3},
                             "shape",
                             "expected a column of observations, got 1x3 double"},
        StatisticsRefusalRow{"regress",
                             {kColumn3, doubles({2, 1}, {1, 2})},
                             "shape",
                             "expected predictors with 3 rows, got 2x1 double"},
        StatisticsRefusalRow{
            "regress",
            {doubles({2, 1}, {1, 2}), doubles({2, 2}, {1, 0, 0, 1})},
            "shape",
            "expected more observations than predictors, got 2x2 double"},
        StatisticsRefusalRow{"regress",
                             {kColumn3, doubles({3, 2}, {1, 2, 3, 2, 4, 6})},
                             "rank",
                             "expected linearly independent predictors, got rank 1 of 2"},
        StatisticsRefusalRow{"regress",
                             {kColumn3, doubles({3, 1}, {0, 0, 0})},
                             "rank",
                             "expected linearly independent predictors, got rank 0 of 1"},
        StatisticsRefusalRow{"pca",
                             {doubles({1, 3}, {1, 2, 3})},
                             "shape",
                             "expected at least two observations, got 1x3 double"}));

}  // namespace
}  // namespace orb::test
