# SPDX-License-Identifier: MIT
# The arrays of the benchmark as a user of Thrift would describe them.
namespace cpp orb.bench.peer

struct Value {
  1: list<i64> dimensions
  2: optional list<double> real
  3: optional list<double> imaginary
  4: optional list<i16> shorts
  5: optional string text
  6: optional list<string> fieldNames
  7: optional list<Value> elements
  8: optional list<i64> rows
  9: optional list<i64> columnStarts
}

service Echo {
  Value all(1: Value input)
  Value first(1: Value input)
}
