// SPDX-License-Identifier: MIT
#include "array/kaldex_array_proxy.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <stdexcept>
#include <typeinfo>

#include "array/data_accessor.h"
#include "orb/dispatch_on_QXType"
#include "unit/array/message.h"

namespace orb::test {
namespace {

std::string complexOf(QXType type) {
  return ofType(type, elements(type, {1, 2}) + imagElements(type, {3, 4}));
}

/// Messages of all kinds that the base class serves.
const char* const kTexts[] = {
    "type: UINT8 uint8 { elements: '\\x01\\x02' }",
    "type: INT8 int8 { elements: '\\x01\\x02' }",
    "type: UINT32 uint32 { elements: [1, 2] }",
    "type: INT32 int32 { elements: [1, 2] }",
    "type: UINT64 uint64 { elements: [1, 2] }",
    "type: INT64 int64 { elements: [1, 2] }",
    "type: SINGLE single { elements: [1, 2] }",
    "type: DOUBLE qxdouble { elements: [1, 2] imag_elements: [3, 4] }",
    "type: LOGICAL logical { elements: [true, false] }",
    "type: SPARSE sparse { ir: 0 jc: [0, 1] qxsparsedouble { elements: 1 } }",
    "type: SPARSE sparse { type: LOGICAL ir: 0 jc: [0, 1] logical { elements: true } }",
};

TEST(ArrayProxy, IsComplexWhereTheMessageHasImaginaryElements) {
  for (const QXType type : kNumericTypes) {
    SCOPED_TRACE(type);
    EXPECT_TRUE(KALDEXArrayProxy(shared(complexOf(type))).isComplex());
    EXPECT_FALSE(KALDEXArrayProxy(shared(ofType(type, elements(type, {1})))).isComplex());
  }
}

TEST(ArrayProxy, KeepsTheComplexityOfItsConstruction) {
  const SharedMessage message = shared(complexOf(KALDEX_Array::DOUBLE));
  const KALDEXArrayProxy before(message);
  message->mutable_qxdouble()->clear_imag_elements();
  EXPECT_TRUE(before.isComplex());
  EXPECT_FALSE(KALDEXArrayProxy(message).isComplex());
}

TEST(ArrayProxy, SharesTheMessage) {
  const SharedMessage message = shared("type: DOUBLE");
  KALDEXArrayProxy proxy(message);
  EXPECT_EQ(&proxy.message(), message.get());
  EXPECT_EQ(proxy.sharedMessage(), message);
  EXPECT_EQ(proxy.type(), KALDEX_Array::DOUBLE);
}

TEST(ArrayProxy, RefusesOtherTypesAndReleasesTheMessage) {
  for (const QXType type : kRefusedTypes) {
    SCOPED_TRACE(type);
    const SharedMessage message = boost::make_shared<KALDEX_Array>();
    message->set_type(type);
    try {
      KALDEXArrayProxy proxy(message);
      ADD_FAILURE() << "accepted";
    } catch (const std::invalid_argument& refusal) {
      EXPECT_STREQ(refusal.what(), "dispatch_on_QXType");
    }
    EXPECT_EQ(message.use_count(), 1);
  }
}

TEST(GetElementSize, IsThatOfTheStoredElement) {
  const struct {
    const char* text;
    size_t size;
  } rows[] = {
      {"type: UINT8", 1},
      {"type: INT8", 1},
      {"type: UINT32", 4},
      {"type: INT32", 4},
      {"type: UINT64", 8},
      {"type: INT64", 8},
      {"type: SINGLE", 4},
      {"type: DOUBLE", 8},
      {"type: LOGICAL", 1},
      {"type: SPARSE", 8},
      {"type: SPARSE sparse { type: LOGICAL }", 1},
  };
  for (const auto& [text, size] : rows) {
    SCOPED_TRACE(text);
    EXPECT_EQ(KALDEXArrayProxy(shared(text)).getElementSize(), size);
  }
}

TEST(GetElementSize, FollowsTheMessage) {
  const SharedMessage message = shared("type: SPARSE");
  const KALDEXArrayProxy proxy(message);
  message->mutable_sparse()->set_type(KALDEX_Array::Sparse::LOGICAL);
  EXPECT_EQ(proxy.getElementSize(), 1u);
}

TEST(GetData, PointsIntoTheMessage) {
  for (const char* text : kTexts) {
    SCOPED_TRACE(text);
    KALDEXArrayProxy proxy(shared(text));
    DataAccessor accessor(proxy.message(), proxy.isComplex());
    dispatch_on_QXType(proxy.type(), accessor);
    EXPECT_NE(proxy.getData(), nullptr);
    EXPECT_EQ(proxy.getData(), accessor.realPointer);
    EXPECT_EQ(proxy.getImagData(), accessor.imagPointer);
    EXPECT_EQ(proxy.getScalar(), 1.0);
  }
}

TEST(GetData, IsNullWithoutElementsAndMakesThePayloadPresent) {
  const SharedMessage message = shared("type: DOUBLE");
  KALDEXArrayProxy proxy(message);
  EXPECT_EQ(proxy.getData(), nullptr);
  EXPECT_THAT(*message, IsMessage("type: DOUBLE qxdouble { }"));
}

TEST(GetImagData, IsThatOfAComplexProxyOnly) {
  const SharedMessage message = shared(complexOf(KALDEX_Array::DOUBLE));
  KALDEXArrayProxy proxy(message);
  EXPECT_EQ(proxy.getImagData(),
            message->mutable_qxdouble()->mutable_imag_elements()->data());
  proxy.setComplex(false);
  EXPECT_EQ(proxy.getImagData(), nullptr);
}

TEST(GetImagData, OfASparseArrayDoesNotDependOnTheComplexity) {
  KALDEXArrayProxy proxy(
      shared("type: SPARSE sparse { qxsparsedouble { imag_elements: 1 } }"));
  proxy.setComplex(false);
  EXPECT_NE(proxy.getImagData(), nullptr);
}

TEST(GetScalar, IsZeroWithoutElements) {
  for (const char* text : {"type: UINT8", "type: DOUBLE", "type: LOGICAL", "type: SPARSE",
                           "type: SPARSE sparse { type: LOGICAL }"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(KALDEXArrayProxy(shared(text)).getScalar(), 0.0);
  }
}

TEST(Resize, ChangesThePayload) {
  const SharedMessage message = shared(complexOf(KALDEX_Array::DOUBLE));
  KALDEXArrayProxy(message).resize(3);
  EXPECT_THAT(*message, IsMessage("type: DOUBLE qxdouble { elements: [1, 2, 0] "
                                  "imag_elements: [3, 4, 0] }"));
}

TEST(FlushToMessage, ChangesNothing) {
  for (const char* text : kTexts) {
    KALDEXArrayProxy proxy(shared(text));
    proxy.flushToMessage();
    EXPECT_THAT(proxy.message(), IsMessage(text));
  }
  KALDEXArrayProxy proxy(shared("type: DOUBLE"));
  proxy.flushToMessage();
  EXPECT_THAT(proxy.message(), IsMessage("type: DOUBLE"));
}

TEST(Duplicate, SharesNothing) {
  for (const char* text : kTexts) {
    SCOPED_TRACE(text);
    KALDEXArrayProxy proxy(shared(text));
    const std::unique_ptr<KALDEXArrayProxy> copy = proxy.duplicate();
    const KALDEXArrayProxy& made = *copy;
    EXPECT_EQ(typeid(made), typeid(KALDEXArrayProxy));
    EXPECT_EQ(copy->isComplex(), proxy.isComplex());
    EXPECT_THAT(copy->message(), IsMessage(text));
    copy->resize(0);
    copy->message().add_dimension(7);
    EXPECT_THAT(proxy.message(), IsMessage(text));
  }
}

TEST(Duplicate, KeepsFieldsThatTheClientDoesNotRead) {
  const char* text =
      "type: DOUBLE arrayID: 5 memoryLayout: ROW_MAJOR isComplex: true "
      "sharedData { arrays { startIndex: 1 } } stringElements { strings: 1 }";
  EXPECT_THAT(KALDEXArrayProxy(shared(text)).duplicate()->message(), IsMessage(text));
}

TEST(Duplicate, WritesBackBefore) {
  class Flushing : public KALDEXArrayProxy {
   public:
    using KALDEXArrayProxy::KALDEXArrayProxy;
    void flushToMessage() override { message().add_dimension(7); }
  };
  Flushing proxy(shared("type: DOUBLE"));
  EXPECT_THAT(proxy.duplicate()->message(), IsMessage("type: DOUBLE dimension: 7"));
}

TEST(Duplicate, TakesTheComplexityFromTheStoredValues) {
  KALDEXArrayProxy proxy(shared("type: SPARSE"));
  proxy.setComplex(true);
  EXPECT_FALSE(proxy.duplicate()->isComplex());
}

}  // namespace
}  // namespace orb::test
