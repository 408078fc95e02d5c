// SPDX-License-Identifier: MIT
#ifndef ORB_BENCH_VALUE_VALUE_H_
#define ORB_BENCH_VALUE_VALUE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace orb::bench {

/// An array as a program has it in hand, before a contender gives it a form of its own.
struct Value {
  enum class Kind { kDouble, kUint16, kChar, kCell, kStruct, kSparse };

  Kind kind = Kind::kDouble;
  std::vector<uint64_t> dimensions;
  std::vector<double> real;             // kDouble, kSparse
  std::vector<double> imaginary;        // kDouble; empty when the array is real
  std::vector<uint16_t> shorts;         // kUint16
  std::string text;                     // kChar; ASCII
  std::vector<std::string> fieldNames;  // kStruct
  std::vector<Value> elements;          // kCell, kStruct; all fields of element 0 first
  std::vector<uint64_t> rows;           // kSparse
  std::vector<uint64_t> columnStarts;   // kSparse
};

Value doubleScalar(double value);

/// The bytes of all elements in their C types, those of nested arrays included.
uint64_t payloadBytes(const Value& value);

}  // namespace orb::bench

#endif  // ORB_BENCH_VALUE_VALUE_H_
