// SPDX-License-Identifier: MIT
#include "array/kaldex_struct_cell_array_proxy.h"

#include <gmock/gmock.h>

#include <boost/numeric/conversion/cast.hpp>
#include <boost/weak_ptr.hpp>
#include <type_traits>
#include <typeinfo>

#include "unit/array/message.h"

namespace orb::test {
namespace {

using Texts = std::vector<std::string>;

const std::string kA = "type: CHAR qxchar { elements: 97 }";
const std::string kB = "type: DOUBLE dimension: [1, 1] qxdouble { elements: 2 }";
const std::string kC = "type: LOGICAL";

std::string listOf(const Texts& texts) {
  std::string list;
  for (const std::string& text : texts) list += "elements { " + text + " } ";
  return list;
}

std::string cellOf(const Texts& texts) {
  return "type: CELL cell { " + listOf(texts) + "}";
}

std::string structOf(const Texts& texts, const std::string& names = "'a'") {
  return "type: STRUCT struct_ { field_names: [" + names + "] " + listOf(texts) + "}";
}

struct Cell {
  using Proxy = KALDEXCellArrayProxy;
  static std::string text(const Texts& texts) { return cellOf(texts); }
  static auto& list(KALDEX_Array& message) { return *message.mutable_cell(); }
};

struct Struct {
  using Proxy = KALDEXStructArrayProxy;
  static std::string text(const Texts& texts) { return structOf(texts); }
  static auto& list(KALDEX_Array& message) { return *message.mutable_struct_(); }
};

struct TypeName {
  template <class Type>
  static std::string GetName(int) {
    return std::is_same_v<Type, Cell> ? "CELL" : "STRUCT";
  }
};

Texts textsOf(const Elements& entries) {
  Texts texts;
  for (const SharedMessage& entry : entries) {
    texts.push_back(entry ? entry->SerializeAsString() : "null");
  }
  return texts;
}

Texts bytesOf(const Texts& texts) {
  Texts bytes;
  for (const std::string& text : texts) bytes.push_back(parsed(text).SerializeAsString());
  return bytes;
}

/// A struct of one field: as many values as elements, as a cell array has.
template <class Type>
class ContainerProxy : public ::testing::Test {
 protected:
  using Proxy = typename Type::Proxy;
};

using ContainerTypes = ::testing::Types<Cell, Struct>;
TYPED_TEST_SUITE(ContainerProxy, ContainerTypes, TypeName);

TYPED_TEST(ContainerProxy, CopiesTheElementsAndLeavesASharedMessageAlone) {
  const SharedMessage message = shared(TypeParam::text({kA, kB}));
  typename TestFixture::Proxy proxy(message);
  EXPECT_EQ(textsOf(proxy.elements()), bytesOf({kA, kB}));
  EXPECT_THAT(*message, IsMessage(TypeParam::text({kA, kB})));
  TypeParam::list(*message).mutable_elements(0)->Clear();
  EXPECT_EQ(textsOf(proxy.elements()), bytesOf({kA, kB}));
}

TYPED_TEST(ContainerProxy, TakesTheElementsOverFromAMessageOfItsOwn) {
  const SharedMessage message = shared(TypeParam::text({kA, kB, kC}));
  const KALDEX_Array* second = &TypeParam::list(*message).elements(1);
  typename TestFixture::Proxy proxy(message, MessageUse::kOwn);
  EXPECT_EQ(textsOf(proxy.elements()), bytesOf({kA, kB, kC}));
  EXPECT_EQ(proxy.elements()[1].get(), second);
  EXPECT_THAT(*message, IsMessage(TypeParam::text({})));
  proxy.flushToMessage();
  EXPECT_THAT(*message, IsMessage(TypeParam::text({kA, kB, kC})));
}

TYPED_TEST(ContainerProxy, HasNoElementsWhereThePayloadIsAbsent) {
  const std::string absent =
      "type: " + KALDEX_Array::QXType_Name(parsed(TypeParam::text({})).type());
  for (const MessageUse use : {MessageUse::kShare, MessageUse::kOwn}) {
    typename TestFixture::Proxy proxy(shared(absent), use);
    EXPECT_TRUE(proxy.elements().empty());
    EXPECT_EQ(proxy.getData(), nullptr);
    EXPECT_THAT(proxy.message(), IsMessage(absent));
  }
}

TYPED_TEST(ContainerProxy, AnswersFromItsElements) {
  typename TestFixture::Proxy proxy(shared(TypeParam::text({kB, kB})));
  EXPECT_EQ(proxy.getData(), proxy.elements().data());
  EXPECT_EQ(proxy.getImagData(), nullptr);
  EXPECT_EQ(proxy.getScalar(), 0.0);
  EXPECT_EQ(proxy.getElementSize(), 8u);
  EXPECT_FALSE(proxy.isComplex());
}

TYPED_TEST(ContainerProxy, FlushBringsTheListToTheElements) {
  const struct {
    Texts list;
    Texts entries;
  } rows[] = {
      {{}, {}},
      {{}, {kA, kB}},
      {{kA}, {kB, kC, kA}},
      {{kA, kB}, {kB, kA}},
      {{kA, kB, kC}, {kC}},
      {{kA, kB, kC}, {}},
  };
  for (const auto& [list, entries] : rows) {
    SCOPED_TRACE(::testing::PrintToString(list) + ::testing::PrintToString(entries));
    typename TestFixture::Proxy proxy(shared(TypeParam::text(list)));
    proxy.elements().clear();
    for (const std::string& entry : entries) proxy.elements().push_back(shared(entry));
    EXPECT_THAT(proxy.message(), IsMessage(TypeParam::text(list)));
    proxy.flushToMessage();
    EXPECT_THAT(proxy.message(), IsMessage(TypeParam::text(entries)));
  }
}

TYPED_TEST(ContainerProxy, FlushCopiesTheElements) {
  typename TestFixture::Proxy proxy(shared(TypeParam::text({kA})));
  proxy.flushToMessage();
  proxy.elements()[0]->Clear();
  EXPECT_THAT(proxy.message(), IsMessage(TypeParam::text({kA})));
}

TYPED_TEST(ContainerProxy, FlushGivesNullEntriesAnEmptySlot) {
  typename TestFixture::Proxy proxy(shared(TypeParam::text({kA})));
  proxy.elements() = {nullptr, shared(kB), nullptr};
  proxy.flushToMessage();
  EXPECT_EQ(textsOf(proxy.elements()), bytesOf({kEmptySlot, kB, kEmptySlot}));
  EXPECT_THAT(proxy.message(), IsMessage(TypeParam::text({kEmptySlot, kB, kEmptySlot})));
}

TYPED_TEST(ContainerProxy, ResizeAppendsEmptySlotsAndLeavesTheMessageAlone) {
  typename TestFixture::Proxy proxy(shared(TypeParam::text({kA})));
  const SharedMessage first = proxy.elements()[0];
  proxy.resize(3);
  EXPECT_EQ(textsOf(proxy.elements()), bytesOf({kA, kEmptySlot, kEmptySlot}));
  EXPECT_EQ(proxy.elements()[0], first);
  EXPECT_NE(proxy.elements()[1], proxy.elements()[2]);
  EXPECT_THAT(proxy.message(), IsMessage(TypeParam::text({kA})));
}

TYPED_TEST(ContainerProxy, ResizeReleasesSurplusElements) {
  typename TestFixture::Proxy proxy(shared(TypeParam::text({kA, kB, kC})));
  const boost::weak_ptr<KALDEX_Array> second = proxy.elements()[1];
  proxy.resize(1);
  EXPECT_EQ(textsOf(proxy.elements()), bytesOf({kA}));
  EXPECT_TRUE(second.expired());
  EXPECT_THAT(proxy.message(), IsMessage(TypeParam::text({kA, kB, kC})));
  proxy.resize(3);
  EXPECT_EQ(textsOf(proxy.elements()), bytesOf({kA, kEmptySlot, kEmptySlot}));
}

TYPED_TEST(ContainerProxy, ResizeLeavesOldNullEntriesAlone) {
  typename TestFixture::Proxy proxy(shared(TypeParam::text({})));
  proxy.elements().resize(1);
  proxy.resize(2);
  EXPECT_EQ(proxy.elements()[0], nullptr);
  EXPECT_NE(proxy.elements()[1], nullptr);
}

TYPED_TEST(ContainerProxy, DuplicateCopiesTheElementsAndSharesNothing) {
  const SharedMessage message = shared(TypeParam::text({kA}));
  typename TestFixture::Proxy proxy(message);
  proxy.elements() = {shared(kB), nullptr};
  const std::unique_ptr<KALDEXArrayProxy> copy = proxy.duplicate();
  auto& made = dynamic_cast<typename TestFixture::Proxy&>(*copy);
  EXPECT_EQ(textsOf(made.elements()), bytesOf({kB, kEmptySlot}));
  EXPECT_THAT(*message, IsMessage(TypeParam::text({kB, kEmptySlot})));

  made.elements()[0]->Clear();
  made.elements().pop_back();
  made.flushToMessage();
  EXPECT_EQ(textsOf(proxy.elements()), bytesOf({kB, kEmptySlot}));
  EXPECT_THAT(*message, IsMessage(TypeParam::text({kB, kEmptySlot})));
}

TYPED_TEST(ContainerProxy, DuplicateOfAnArrayThatNobodyElseSeesIsNotWrittenBackFor) {
  typename TestFixture::Proxy proxy(shared(TypeParam::text({kA})));
  proxy.elements() = {shared(kB), nullptr};
  const std::unique_ptr<KALDEXArrayProxy> copy = proxy.duplicate();
  EXPECT_THAT(proxy.message(), IsMessage(TypeParam::text({})));
  auto& made = dynamic_cast<typename TestFixture::Proxy&>(*copy);
  EXPECT_NE(made.elements()[0], proxy.elements()[0]);
  made.elements()[0]->Clear();
  EXPECT_EQ(textsOf({proxy.element(0), proxy.element(1)}), bytesOf({kB, kEmptySlot}));
  EXPECT_THAT(*made.element(1), IsMessage(kEmptySlot));
}

TEST(StructProxyResize, GivesEachElementAValuePerField) {
  KALDEXStructArrayProxy proxy(shared(structOf({kA, kB}, "'a', 'b'")));
  proxy.resize(6);
  Texts expected(12, kEmptySlot);
  expected[0] = kA;
  expected[1] = kB;
  EXPECT_EQ(textsOf(proxy.elements()), bytesOf(expected));
}

TEST(StructProxyResize, OfNoFieldsGivesNoValues) {
  KALDEXStructArrayProxy proxy(shared("type: STRUCT"));
  proxy.resize(6);
  EXPECT_TRUE(proxy.elements().empty());
}

TEST(StructProxyResize, RefusesMoreValuesThan32BitsCount) {
  KALDEXStructArrayProxy proxy(shared(structOf({kA, kB}, "'a', 'b'")));
  for (const int32_t count : {1073741824, 2147483647}) {
    EXPECT_THROW(proxy.resize(count), boost::numeric::positive_overflow);
    EXPECT_EQ(textsOf(proxy.elements()), bytesOf({kA, kB}));
  }
}

TEST(CellProxyResize, CountsFieldsWhereTheMessageIsAStruct) {
  KALDEXCellArrayProxy proxy(shared(structOf({}, "'a', 'b'")));
  proxy.resize(2);
  EXPECT_EQ(proxy.elements().size(), 4u);
}

TEST(CellProxyElement, OfANullEntryIsAnEmptySlot) {
  KALDEXCellArrayProxy proxy(shared("type: CELL"));
  proxy.elements() = {nullptr, shared(kA)};
  EXPECT_THAT(*proxy.element(0), IsMessage(kEmptySlot));
  EXPECT_EQ(proxy.element(0), proxy.elements()[0]);
  EXPECT_THAT(*proxy.element(1), IsMessage(kA));
}

}  // namespace
}  // namespace orb::test
