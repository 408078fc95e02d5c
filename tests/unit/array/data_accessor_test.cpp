// SPDX-License-Identifier: MIT
#include "array/data_accessor.h"

#include <gtest/gtest.h>

#include "orb/dispatch_on_QXType"
#include "unit/array/message.h"

namespace orb::test {
namespace {

constexpr bool kReal = false;
constexpr bool kComplex = true;

DataAccessor access(KALDEX_Array& message, bool isComplex) {
  DataAccessor accessor(message, isComplex);
  dispatch_on_QXType(message.type(), accessor);
  return accessor;
}

/// The addresses of the lists of a dense payload.
struct Storage {
  explicit Storage(KALDEX_Array& array) : message(array) {
    dispatch_on_QXType(message.type(), *this);
  }

  template <QXType T>
  void visit() {
    if constexpr (kIsNumeric<T>) {
      real = startOf(*Payload<T>::in(message).mutable_elements());
      imag = startOf(*Payload<T>::in(message).mutable_imag_elements());
    }
  }

  static void* startOf(std::string& bytes) { return bytes.data(); }
  template <class Element>
  static void* startOf(google::protobuf::RepeatedField<Element>& list) {
    return list.mutable_data();
  }

  KALDEX_Array& message;
  void* real = nullptr;
  void* imag = nullptr;
};

TEST(DataAccessor, PointsIntoTheMessageOfANumericArray) {
  for (const QXType type : kNumericTypes) {
    SCOPED_TRACE(type);
    KALDEX_Array message =
        parsed(ofType(type, elements(type, {1, 2}) + imagElements(type, {3, 4})));
    const DataAccessor accessor = access(message, kComplex);
    const Storage storage(message);
    EXPECT_EQ(accessor.realPointer, storage.real);
    EXPECT_EQ(accessor.imagPointer, storage.imag);
    EXPECT_EQ(accessor.scalar, 1.0);
  }
}

TEST(DataAccessor, GivesNoImaginaryPartOfANumericArrayThatCountsAsReal) {
  for (const QXType type : kNumericTypes) {
    SCOPED_TRACE(type);
    KALDEX_Array message =
        parsed(ofType(type, elements(type, {1}) + imagElements(type, {3})));
    EXPECT_EQ(access(message, kReal).imagPointer, nullptr);
  }
}

TEST(DataAccessor, GivesNoImaginaryPartThatHasNoElements) {
  for (const QXType type : kNumericTypes) {
    const std::string text = ofType(type, elements(type, {1}));
    SCOPED_TRACE(text);
    KALDEX_Array message = parsed(text);
    EXPECT_EQ(access(message, kComplex).imagPointer, nullptr);
    EXPECT_THAT(message, IsMessage(text));
  }
}

TEST(DataAccessor, GivesAnImaginaryPartWithoutARealOne) {
  for (const QXType type : kNumericTypes) {
    SCOPED_TRACE(type);
    KALDEX_Array message = parsed(ofType(type, imagElements(type, {3})));
    const DataAccessor accessor = access(message, kComplex);
    EXPECT_EQ(accessor.realPointer, nullptr);
    EXPECT_EQ(accessor.imagPointer, Storage(message).imag);
    EXPECT_EQ(accessor.scalar, 0.0);
  }
}

TEST(DataAccessor, MakesAnAbsentPayloadPresentAndItsBytesNot) {
  std::vector<QXType> types(std::begin(kNumericTypes), std::end(kNumericTypes));
  types.push_back(KALDEX_Array::LOGICAL);
  for (const QXType type : types) {
    SCOPED_TRACE(type);
    KALDEX_Array message = parsed("type: " + KALDEX_Array::QXType_Name(type));
    const DataAccessor accessor = access(message, kComplex);
    EXPECT_EQ(accessor.realPointer, nullptr);
    EXPECT_EQ(accessor.imagPointer, nullptr);
    EXPECT_EQ(accessor.scalar, 0.0);
    EXPECT_THAT(message, IsMessage(ofType(type, "")));
  }
}

TEST(DataAccessor, PointsIntoLogicals) {
  KALDEX_Array message = parsed("type: LOGICAL logical { elements: [true, false] }");
  const DataAccessor accessor = access(message, kComplex);
  EXPECT_EQ(accessor.realPointer, message.mutable_logical()->mutable_elements()->data());
  EXPECT_EQ(accessor.imagPointer, nullptr);
}

TEST(DataAccessor, LeavesTypesWithNativeElementsAlone) {
  for (const char* text : {"type: CHAR qxchar { elements: 65 }", "type: CHAR",
                           "type: STRUCT struct_ { elements { } }", "type: STRUCT",
                           "type: CELL cell { elements { } }", "type: CELL"}) {
    SCOPED_TRACE(text);
    KALDEX_Array message = parsed(text);
    const DataAccessor accessor = access(message, kComplex);
    EXPECT_EQ(accessor.realPointer, nullptr);
    EXPECT_EQ(accessor.imagPointer, nullptr);
    EXPECT_EQ(accessor.scalar, 0.0);
    EXPECT_THAT(message, IsMessage(text));
  }
}

TEST(DataAccessor, PointsIntoBothPartsOfASparseArrayWhateverItsComplexity) {
  for (const bool isComplex : {kReal, kComplex}) {
    SCOPED_TRACE(isComplex);
    KALDEX_Array message =
        parsed("type: SPARSE sparse { qxsparsedouble { elements: 5 imag_elements: 6 } }");
    const DataAccessor accessor = access(message, isComplex);
    KALDEX_Array::Double& values = *message.mutable_sparse()->mutable_qxsparsedouble();
    EXPECT_EQ(accessor.realPointer, values.mutable_elements()->data());
    EXPECT_EQ(accessor.imagPointer, values.mutable_imag_elements()->data());
  }
}

TEST(DataAccessor, PointsIntoSparseLogicalsOfEveryTypeButDouble) {
  for (const char* type : {"LOGICAL", "7", "-1"}) {
    SCOPED_TRACE(type);
    KALDEX_Array message =
        parsed(std::string("type: SPARSE sparse { type: ") + type +
               " logical { elements: true } qxsparsedouble { imag_elements: 1 } }");
    const DataAccessor accessor = access(message, kComplex);
    EXPECT_EQ(accessor.realPointer,
              message.mutable_sparse()->mutable_logical()->mutable_elements()->data());
    EXPECT_EQ(accessor.imagPointer, nullptr);
    EXPECT_EQ(accessor.scalar, 1.0);
  }
}

TEST(DataAccessor, MakesTheAbsentPayloadsOfASparseArrayPresent) {
  const struct {
    const char* before;
    const char* after;
  } rows[] = {
      {"type: SPARSE", "type: SPARSE sparse { qxsparsedouble { } }"},
      {"type: SPARSE sparse { type: DOUBLE }",
       "type: SPARSE sparse { type: DOUBLE qxsparsedouble { } }"},
      {"type: SPARSE sparse { type: LOGICAL }",
       "type: SPARSE sparse { type: LOGICAL logical { } }"},
  };
  for (const auto& [before, after] : rows) {
    SCOPED_TRACE(before);
    KALDEX_Array message = parsed(before);
    const DataAccessor accessor = access(message, kComplex);
    EXPECT_EQ(accessor.realPointer, nullptr);
    EXPECT_EQ(accessor.imagPointer, nullptr);
    EXPECT_EQ(accessor.scalar, 0.0);
    EXPECT_THAT(message, IsMessage(after));
  }
}

TEST(DataAccessor, ConvertsTheFirstElementToDouble) {
  const struct {
    const char* text;
    double scalar;
  } rows[] = {
      {"type: UINT8 uint8 { elements: '\\xff\\x01' }", 255.0},
      {"type: INT8 int8 { elements: '\\xff\\x01' }", -1.0},
      {"type: INT8 int8 { elements: '\\x80' }", -128.0},
      {"type: UINT16 uint16 { elements: [65541, 1] }", 65541.0},
      {"type: UINT16 uint16 { elements: 4294967295 }", 4294967295.0},
      {"type: INT16 int16 { elements: -70000 }", -70000.0},
      {"type: UINT32 uint32 { elements: 4294967295 }", 4294967295.0},
      {"type: INT32 int32 { elements: -2147483648 }", -2147483648.0},
      {"type: UINT64 uint64 { elements: 18446744073709551615 }", 18446744073709551616.0},
      {"type: INT64 int64 { elements: -9223372036854775808 }", -9223372036854775808.0},
      {"type: SINGLE single { elements: 0.1 }", 0.100000001490116119384765625},
      {"type: DOUBLE qxdouble { elements: [0.1, 5] }", 0.1},
      {"type: LOGICAL logical { elements: [true, false] }", 1.0},
      {"type: LOGICAL logical { elements: [false, true] }", 0.0},
      {"type: SPARSE sparse { qxsparsedouble { elements: [-2.5, 1] } }", -2.5},
      {"type: SPARSE sparse { type: LOGICAL logical { elements: true } }", 1.0},
  };
  for (const auto& [text, scalar] : rows) {
    SCOPED_TRACE(text);
    KALDEX_Array message = parsed(text);
    EXPECT_EQ(access(message, kReal).scalar, scalar);
  }
}

TEST(DataAccessor, RefusesOtherTypes) {
  KALDEX_Array message;
  DataAccessor accessor(message, kReal);
  for (const QXType type : kRefusedTypes) {
    EXPECT_THROW(dispatch_on_QXType(type, accessor), std::invalid_argument);
  }
}

}  // namespace
}  // namespace orb::test
