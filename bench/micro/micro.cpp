// SPDX-License-Identifier: MIT
// What the parts of a call cost, without transport.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>

#include "micro/canned_context.h"
#include "value/kaldex.h"
#include "value/library_array.h"
#include "value/workload.h"

namespace orb::bench {
namespace {

LibraryArray arrayOf(const char* workloadName) {
  return libraryArray(workloadNamed(workloadName).input);
}

void createDoubleMatrix(benchmark::State& state) {
  const auto n = static_cast<size_t>(state.range(0));
  for (auto _ : state) LibraryArray(orbCreateDoubleMatrix(n, n, orbREAL));
}
BENCHMARK(createDoubleMatrix)->Arg(1)->Arg(100)->Arg(1000);

void createCellMatrix(benchmark::State& state) {
  const auto n = static_cast<size_t>(state.range(0));
  for (auto _ : state) LibraryArray(orbCreateCellMatrix(n, 1));
}
BENCHMARK(createCellMatrix)->Arg(1)->Arg(10000);

void createString(benchmark::State& state) {
  const std::string text(static_cast<size_t>(state.range(0)), 'x');
  for (auto _ : state) LibraryArray(orbCreateString(text.c_str()));
}
BENCHMARK(createString)->Arg(10)->Arg(1000000);

/// Duplicating writes native elements back first.
void duplicate(benchmark::State& state, const char* workloadName) {
  const LibraryArray array = arrayOf(workloadName);
  for (auto _ : state) LibraryArray(orbDuplicateArray(array.get()));
}
BENCHMARK_CAPTURE(duplicate, double, "double-1000x1000");
BENCHMARK_CAPTURE(duplicate, uint16, "uint16-1000x1000");
BENCHMARK_CAPTURE(duplicate, char, "char-1x1000000");
BENCHMARK_CAPTURE(duplicate, cell, "cell-10000x1");
BENCHMARK_CAPTURE(duplicate, struct, "struct-1000x10");

void serialise(benchmark::State& state, const char* workloadName) {
  const LibraryArray array = arrayOf(workloadName);
  CannedContext context("");
  for (auto _ : state) context.send(array.get());
}
BENCHMARK_CAPTURE(serialise, scalar, "double-1x1");
BENCHMARK_CAPTURE(serialise, double, "double-1000x1000");
BENCHMARK_CAPTURE(serialise, uint16, "uint16-1000x1000");
BENCHMARK_CAPTURE(serialise, char, "char-1x1000000");
BENCHMARK_CAPTURE(serialise, cell, "cell-10000x1");
BENCHMARK_CAPTURE(serialise, struct, "struct-1000x10");
BENCHMARK_CAPTURE(serialise, sparse, "sparse-1000x1000");

void parse(benchmark::State& state, const char* workloadName) {
  CannedContext context(replyTo(workloadNamed(workloadName)));
  for (auto _ : state) context.receive();
}
BENCHMARK_CAPTURE(parse, scalar, "double-1x1");
BENCHMARK_CAPTURE(parse, double, "double-1000x1000");
BENCHMARK_CAPTURE(parse, uint16, "uint16-1000x1000");
BENCHMARK_CAPTURE(parse, char, "char-1x1000000");
BENCHMARK_CAPTURE(parse, cell, "cell-10000x1");
BENCHMARK_CAPTURE(parse, struct, "struct-1000x10");
BENCHMARK_CAPTURE(parse, sparse, "sparse-1000x1000");

void getCell(benchmark::State& state) {
  const LibraryArray cells = arrayOf("cell-1000x1");
  size_t i = 0;
  for (auto _ : state) LibraryArray(orbGetCell(cells.get(), i++ % 1000));
}
BENCHMARK(getCell);

void setCell(benchmark::State& state) {
  const LibraryArray cells = arrayOf("cell-1000x1");
  const LibraryArray value(orbCreateDoubleScalar(1));
  size_t i = 0;
  for (auto _ : state) orbSetCell(cells.get(), i++ % 1000, value.get());
}
BENCHMARK(setCell);

void getField(benchmark::State& state) {
  const LibraryArray structs = arrayOf("struct-100x10");
  size_t i = 0;
  for (auto _ : state) LibraryArray(orbGetField(structs.get(), i++ % 100, "field9"));
}
BENCHMARK(getField);

void getFieldByNumber(benchmark::State& state) {
  const LibraryArray structs = arrayOf("struct-100x10");
  size_t i = 0;
  for (auto _ : state) LibraryArray(orbGetFieldByNumber(structs.get(), i++ % 100, 9));
}
BENCHMARK(getFieldByNumber);

void arrayToString(benchmark::State& state, char16_t unit) {
  constexpr size_t kUnits = 100000;
  const LibraryArray chars(orbCreateCharArray(1, &kUnits));
  std::fill_n(orbGetChars(chars.get()), kUnits, unit);
  for (auto _ : state) orbFree(orbArrayToString(chars.get()));
}
BENCHMARK_CAPTURE(arrayToString, oneByte, u'x');
BENCHMARK_CAPTURE(arrayToString, threeBytes, u'\u4e2d');

void getString(benchmark::State& state) {
  const LibraryArray chars = arrayOf("char-1x100000");
  std::string text(100001, '\0');
  for (auto _ : state) orbGetString(chars.get(), text.data(), text.size());
}
BENCHMARK(getString);

}  // namespace
}  // namespace orb::bench

BENCHMARK_MAIN();
