// SPDX-License-Identifier: MIT
#include "client/transport/sweep.h"

#include <gtest/gtest.h>

#include <boost/numeric/conversion/cast.hpp>
#include <climits>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/array.h"

namespace orb::test {
namespace {

/// Runs what may refuse a type that a client cannot hold, or a size beyond all memory.
void attempt(const std::function<void()>& body) {
  try {
    body();
  } catch (const boost::numeric::positive_overflow& overflow) {
    EXPECT_STREQ(overflow.what(), "bad numeric conversion: positive overflow");
  } catch (const std::invalid_argument& refused) {
    EXPECT_STREQ(refused.what(), "dispatch_on_QXType");
  }
}

/// Writes every byte of the elements that were just read.
void touch(void* first, std::size_t size) {
  if (first == nullptr) return;
  const std::string kept(static_cast<const char*>(first), size);
  std::memset(first, 0x01, size);
  std::memcpy(first, kept.data(), size);
}

void readShape(orbArray a) {
  const std::size_t count = orbGetNumberOfDimensions(a);
  const size_t* extents = orbGetDimensions(a);
  EXPECT_EQ(extents == nullptr, count == 0);
  EXPECT_EQ(orbGetM(a), count > 0 ? extents[0] : 0);
  EXPECT_EQ(orbGetN(a), count > 1 ? extents[1] : 0);
  orbGetNumberOfElements(a);
  const std::vector<size_t> subscripts(count + 2, 1);
  for (std::size_t n = 0; n <= subscripts.size(); ++n) {
    orbCalcSingleSubscript(a, n, subscripts.data());
  }
}

void readClass(orbArray a) {
  orbGetClassID(a);
  EXPECT_NE(orbGetClassName(a), nullptr);
  EXPECT_TRUE(orbIsClass(a, orbGetClassName(a)));
  orbIsComplex(a);
  orbGetElementSize(a);
  for (const auto predicate :
       {orbIsDouble, orbIsSingle, orbIsInt8, orbIsUint8, orbIsInt16, orbIsUint16,
        orbIsInt32, orbIsUint32, orbIsInt64, orbIsUint64, orbIsNumeric, orbIsLogical,
        orbIsChar, orbIsStruct, orbIsCell, orbIsSparse, orbIsLogicalScalar,
        orbIsLogicalScalarTrue, orbIsEmpty}) {
    predicate(a);
  }
}

void readText(orbArray a) {
  char buffer[64];
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, sizeof buffer}) {
    orbGetString(a, buffer, size);
  }
  orbFree(orbArrayToString(a));
}

void touchData(orbArray a, std::size_t stored, std::size_t storedImag) {
  const std::size_t size = orbGetElementSize(a);
  orbGetScalar(a);
  touch(orbGetPr(a), stored * size);
  touch(orbGetPi(a), storedImag * size);
  touch(orbGetData(a), stored * size);
  touch(orbGetImagData(a), storedImag * size);
  touch(orbGetChars(a), stored * size);
  touch(orbGetLogicals(a), stored * size);
  orbGetIr(a);
  orbGetJc(a);
  orbGetNzmax(a);
}

/// The indices of elements that may or may not exist.
std::vector<std::size_t> indicesOf(orbArray a) {
  const std::size_t count = orbGetNumberOfElements(a);
  return {0, 1, 2, 3, count - 1, count, SIZE_MAX};
}

void readElements(orbArray a) {
  orbGetNumberOfFields(a);
  for (const int field : {-1, 0, 1, 2, INT_MAX}) {
    const char* name = orbGetFieldNameByNumber(a, field);
    orbGetFieldNumber(a, name);
    for (const std::size_t index : indicesOf(a)) {
      attempt([&] { const Array value(orbGetField(a, index, name)); });
      attempt([&] { const Array value(orbGetFieldByNumber(a, index, field)); });
    }
  }
  for (const std::size_t index : indicesOf(a)) {
    attempt([&] { const Array value(orbGetCell(a, index)); });
  }
}

void readAll(orbArray a, std::size_t stored, std::size_t storedImag) {
  readShape(a);
  readClass(a);
  readText(a);
  touchData(a, stored, storedImag);
  readElements(a);
}

void writeElements(orbArray a) {
  const Array value(orbCreateString("ab"));
  for (const std::size_t index : indicesOf(a)) {
    orbSetCell(a, index, value);
    orbSetFieldByNumber(a, index, 0, value);
    orbSetField(a, index, orbGetFieldNameByNumber(a, 1), value);
  }
}

}  // namespace

void callEveryFunction(orbArray a, std::size_t stored, std::size_t storedImag) {
  readAll(a, stored, storedImag);
  static const size_t kExtents[] = {2, 1, 2};
  const std::function<void(orbArray)> changes[] = {
      [](orbArray copy) { orbSetM(copy, 0); },
      [](orbArray copy) { orbSetM(copy, 3); },
      [](orbArray copy) { orbSetN(copy, 0); },
      [](orbArray copy) { orbSetN(copy, 3); },
      [](orbArray copy) { orbSetDimensions(copy, kExtents, 3); },
      [](orbArray copy) {
        orbSetDimensions(copy, orbGetDimensions(copy), orbGetNumberOfDimensions(copy));
      },
      [](orbArray copy) { orbSetNzmax(copy, 1); },
      [](orbArray copy) { orbSetNzmax(copy, 3); },
      [](orbArray copy) { orbAddField(copy, "another"); },
      [](orbArray copy) { orbRemoveField(copy, 0); },
      [](orbArray copy) { orbRemoveField(copy, 1); },
      writeElements,
  };
  for (const auto& change : changes) {
    const Array copy(orbDuplicateArray(a));
    readAll(copy, 0, 0);
    attempt([&] { change(copy); });
    readAll(copy, 0, 0);
    const Array again(orbDuplicateArray(copy));
    readAll(again, 0, 0);
  }
}

}  // namespace orb::test
