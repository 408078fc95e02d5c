// SPDX-License-Identifier: MIT
// Functions for arrays of any shape: echo, describe, sum.
#include <algorithm>
#include <cmath>
#include <limits>

#include "functions.h"
#include "messages.h"
#include "values.h"

namespace orb::serve {
namespace {

struct Range {
  double minimum = std::numeric_limits<double>::quiet_NaN();
  double maximum = std::numeric_limits<double>::quiet_NaN();
  double total = 0;

  // fmin and fmax pass over NaN.
  void include(double number) {
    minimum = std::fmin(minimum, number);
    maximum = std::fmax(maximum, number);
    total += number;
  }
};

Range rangeOf(const Array& array) {
  Range range;
  if (array.type() == Array::SPARSE) {
    const SparseMatrix matrix = sparseMatrixOf(array);
    std::for_each_n(matrix.valuePtr(), matrix.nonZeros(),
                    [&range](double number) { range.include(number); });
    if (static_cast<uint64_t>(matrix.nonZeros()) < elementCount(array)) range.include(0);
  } else {
    for (const double number : realNumbersOf(array)) range.include(number);
  }
  return range;
}

bool hasRange(const Array& array) {
  return array.type() != Array::CHAR && array.type() != Array::STRUCT &&
         array.type() != Array::CELL && !isComplex(array) && elementCount(array) != 0;
}

// The sums of each `length` numbers in a row.
template <class Numbers>
Numbers sumsOf(const Numbers& numbers, Eigen::Index length, Eigen::Index count) {
  Numbers sums(count);
  for (Eigen::Index i = 0; i < count; ++i) {
    sums[i] = numbers.segment(i * length, length).sum();
  }
  return sums;
}

}  // namespace

void echo(Call& call) {
  const int count = call.inputs.size();
  if (call.nargout > count) {
    throw CallError("outputs", "expected nargout of at most the number of inputs, " +
                                   std::to_string(count) + ", got " +
                                   std::to_string(call.nargout));
  }
  call.outputs.Swap(&call.inputs);  // moves the arrays: no element is copied
  call.outputs.DeleteSubrange(call.nargout, count - call.nargout);
}

// The range of a real numeric or logical array goes into minimum, maximum and mean; of
// any other array, and of one without elements, they are empty.
void describe(Call& call) {
  const Array& array = call.input(0);
  const auto& dimensions = array.dimension();
  Eigen::RowVectorXd size(dimensions.size());
  std::transform(dimensions.begin(), dimensions.end(), size.data(),
                 [](uint64_t dimension) { return static_cast<double>(dimension); });

  const Array none = emptyArray(Array::DOUBLE, {0, 0});
  std::vector<Field> fields = {{"class", toArray(className(array))},
                               {"size", toArray(Matrix(size))},
                               {"minimum", none},
                               {"maximum", none},
                               {"mean", none}};
  if (hasRange(array)) {
    const Range range = rangeOf(array);
    fields[2].value = toArray(range.minimum);
    fields[3].value = toArray(range.maximum);
    fields[4].value = toArray(range.total / static_cast<double>(elementCount(array)));
  }
  call.put(toArray(fields));
}

// Sums over the first dimension that is not 1. The sum of a 0x0 array is 0.
void sum(Call& call) {
  const Array& array = call.input(0);
  std::vector<uint64_t> dimensions(array.dimension().begin(), array.dimension().end());
  if (dimensions == std::vector<uint64_t>{0, 0}) dimensions = {0, 1};

  Eigen::Index length = 1;
  Eigen::Index count = 1;
  const auto summed = std::find_if(dimensions.begin(), dimensions.end(),
                                   [](uint64_t dimension) { return dimension != 1; });
  if (summed != dimensions.end()) {
    length = static_cast<Eigen::Index>(*summed);
    for (auto after = summed + 1; after != dimensions.end(); ++after) {
      expectModestResult(static_cast<uint64_t>(count), *after);
      count *= static_cast<Eigen::Index>(*after);
    }
    *summed = 1;
  }

  Array sums = isComplex(array)
                   ? toArray(ComplexMatrix(sumsOf(numbersOf(array), length, count)))
                   : toArray(Matrix(sumsOf(realNumbersOf(array), length, count)));
  sums.mutable_dimension()->Assign(dimensions.begin(), dimensions.end());
  call.put(std::move(sums));
}

}  // namespace orb::serve
