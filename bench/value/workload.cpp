// SPDX-License-Identifier: MIT
#include "value/workload.h"

#include <algorithm>
#include <random>
#include <stdexcept>
#include <utility>

namespace orb::bench {
namespace {

constexpr uint64_t kSparsePerColumn = 50;

using Random = std::mt19937_64;

std::vector<double> randomDoubles(Random& random, uint64_t count) {
  std::uniform_real_distribution<double> distribution;
  std::vector<double> values(count);
  std::generate(values.begin(), values.end(), [&] { return distribution(random); });
  return values;
}

Value emptyValue(Value::Kind kind, std::vector<uint64_t> dimensions) {
  Value value;
  value.kind = kind;
  value.dimensions = std::move(dimensions);
  return value;
}

Value doubleMatrix(Random& random, uint64_t m, uint64_t n) {
  Value value = emptyValue(Value::Kind::kDouble, {m, n});
  value.real = randomDoubles(random, m * n);
  return value;
}

Value complexMatrix(Random& random, uint64_t m, uint64_t n) {
  Value value = doubleMatrix(random, m, n);
  value.imaginary = randomDoubles(random, m * n);
  return value;
}

Value uint16Matrix(Random& random, uint64_t m, uint64_t n) {
  Value value = emptyValue(Value::Kind::kUint16, {m, n});
  value.shorts.resize(m * n);
  std::generate(value.shorts.begin(), value.shorts.end(),
                [&] { return static_cast<uint16_t>(random()); });
  return value;
}

Value charMatrix(Random& random, uint64_t m, uint64_t n) {
  std::uniform_int_distribution<int> letter('a', 'z');
  Value value = emptyValue(Value::Kind::kChar, {m, n});
  value.text.resize(m * n);
  std::generate(value.text.begin(), value.text.end(),
                [&] { return static_cast<char>(letter(random)); });
  return value;
}

std::vector<Value> scalars(Random& random, uint64_t count) {
  std::vector<Value> elements;
  elements.reserve(count);
  for (const double value : randomDoubles(random, count)) {
    elements.push_back(doubleScalar(value));
  }
  return elements;
}

Value cellMatrix(Random& random, uint64_t m, uint64_t n) {
  Value value = emptyValue(Value::Kind::kCell, {m, n});
  value.elements = scalars(random, m * n);
  return value;
}

Value structColumn(Random& random, uint64_t count, uint64_t fields) {
  Value value = emptyValue(Value::Kind::kStruct, {count, 1});
  for (uint64_t f = 0; f < fields; ++f) {
    value.fieldNames.push_back("field" + std::to_string(f));
  }
  value.elements = scalars(random, count * fields);
  return value;
}

/// Every column holds equally many values, in distinct rows at random distances.
Value sparseMatrix(Random& random, uint64_t m, uint64_t n) {
  const uint64_t perColumn = std::min(kSparsePerColumn, m);
  const uint64_t stride = m / perColumn;
  std::uniform_int_distribution<uint64_t> offset(0, stride - 1);
  Value value = emptyValue(Value::Kind::kSparse, {m, n});
  value.columnStarts.push_back(0);
  for (uint64_t column = 0; column < n; ++column) {
    for (uint64_t i = 0; i < perColumn; ++i) {
      value.rows.push_back(i * stride + offset(random));
    }
    value.columnStarts.push_back(value.rows.size());
  }
  value.real = randomDoubles(random, value.rows.size());
  return value;
}

struct Kind {
  const char* name;
  Function function;
  Value (*make)(Random& random, uint64_t first, uint64_t second);
};

constexpr Kind kKinds[] = {{"double", Function::kEcho, doubleMatrix},
                           {"first", Function::kFirst, doubleMatrix},
                           {"complex", Function::kEcho, complexMatrix},
                           {"uint16", Function::kEcho, uint16Matrix},
                           {"char", Function::kEcho, charMatrix},
                           {"cell", Function::kEcho, cellMatrix},
                           {"struct", Function::kEcho, structColumn},
                           {"sparse", Function::kEcho, sparseMatrix}};

}  // namespace

Workload workloadNamed(const std::string& name) {
  const size_t dash = name.find('-');
  const size_t cross = name.find('x', dash + 1);
  const auto kind =
      std::find_if(std::begin(kKinds), std::end(kKinds),
                   [&](const Kind& k) { return name.compare(0, dash, k.name) == 0; });
  if (kind == std::end(kKinds) || dash == std::string::npos ||
      cross == std::string::npos) {
    throw std::invalid_argument("There is no workload \"" + name + "\".");
  }
  Random random;
  return {name, kind->function,
          kind->make(random, std::stoull(name.substr(dash + 1)),
                     std::stoull(name.substr(cross + 1)))};
}

Value answerTo(const Workload& workload) {
  switch (workload.function) {
    case Function::kEcho:
      return workload.input;
    case Function::kFirst:
      return doubleScalar(workload.input.real.front());
  }
  throw std::invalid_argument("There is no such function.");
}

}  // namespace orb::bench
