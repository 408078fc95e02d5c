// SPDX-License-Identifier: MIT
#include "array/kaldex_16bit_integer_array_proxy.h"

#include <gmock/gmock.h>

#include <typeinfo>

#include "unit/array/message.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;

struct Uint16 {
  using Native = uint16_t;
  using Proxy = KALDEXUint16ArrayProxy;
  static constexpr QXType kType = KALDEX_Array::UINT16;
};

struct Int16 {
  using Native = int16_t;
  using Proxy = KALDEXInt16ArrayProxy;
  static constexpr QXType kType = KALDEX_Array::INT16;
};

template <class Type>
class SixteenBitProxy : public ::testing::Test {
 protected:
  using Native = typename Type::Native;
  using Proxy = typename Type::Proxy;
  using Values = std::vector<int>;

  static std::string real(const Values& values) {
    return ofType(Type::kType, elements(Type::kType, values));
  }
  static std::string complex(const Values& values, const Values& imag) {
    return ofType(Type::kType,
                  elements(Type::kType, values) + imagElements(Type::kType, imag));
  }
  static Native* dataOf(KALDEXArrayProxy& proxy) {
    return static_cast<Native*>(proxy.getData());
  }
  static Native* imagOf(KALDEXArrayProxy& proxy) {
    return static_cast<Native*>(proxy.getImagData());
  }
};

struct TypeName {
  template <class Type>
  static std::string GetName(int) {
    return KALDEX_Array::QXType_Name(Type::kType);
  }
};

using SixteenBitTypes = ::testing::Types<Uint16, Int16>;
TYPED_TEST_SUITE(SixteenBitProxy, SixteenBitTypes, TypeName);

TYPED_TEST(SixteenBitProxy, ReadsTheMessageWhenItIsBuilt) {
  const SharedMessage message = shared(this->complex({1, 2}, {3, 4}));
  typename TestFixture::Proxy proxy(message);
  message->Clear();
  message->set_type(TypeParam::kType);
  ASSERT_NE(proxy.getData(), nullptr);
  ASSERT_NE(proxy.getImagData(), nullptr);
  EXPECT_EQ(this->dataOf(proxy)[0], 1);
  EXPECT_EQ(this->dataOf(proxy)[1], 2);
  EXPECT_EQ(this->imagOf(proxy)[0], 3);
  EXPECT_EQ(this->imagOf(proxy)[1], 4);
  EXPECT_TRUE(proxy.isComplex());
  EXPECT_EQ(proxy.getElementSize(), 2u);
}

TYPED_TEST(SixteenBitProxy, OfARealArrayHasNoImaginaryPart) {
  typename TestFixture::Proxy proxy(shared(this->real({1})));
  EXPECT_EQ(proxy.getImagData(), nullptr);
  EXPECT_FALSE(proxy.isComplex());
}

TYPED_TEST(SixteenBitProxy, HasNoElementsWhereThePayloadIsAbsent) {
  const std::string absent = "type: " + KALDEX_Array::QXType_Name(TypeParam::kType);
  typename TestFixture::Proxy proxy(shared(absent));
  EXPECT_EQ(proxy.getData(), nullptr);
  EXPECT_EQ(proxy.getImagData(), nullptr);
  EXPECT_EQ(proxy.getScalar(), 0.0);
  EXPECT_THAT(proxy.message(), IsMessage(absent));
  proxy.flushToMessage();
  EXPECT_THAT(proxy.message(), IsMessage(ofType(TypeParam::kType, "")));
}

TYPED_TEST(SixteenBitProxy, KeepsPartsOfDifferentLengths) {
  const std::string text = this->complex({1}, {3, 4});
  typename TestFixture::Proxy proxy(shared(text));
  EXPECT_EQ(this->dataOf(proxy)[0], 1);
  EXPECT_EQ(this->imagOf(proxy)[1], 4);
  this->imagOf(proxy)[1] = 5;
  proxy.flushToMessage();
  EXPECT_THAT(proxy.message(), IsMessage(this->complex({1}, {3, 5})));
}

TYPED_TEST(SixteenBitProxy, FlushWritesBothPartsAndNothingElseDoes) {
  const std::string text = this->complex({1, 2}, {3, 4});
  typename TestFixture::Proxy proxy(shared(text));
  this->dataOf(proxy)[1] = 12;
  this->imagOf(proxy)[0] = 13;
  EXPECT_THAT(proxy.message(), IsMessage(text));
  proxy.flushToMessage();
  EXPECT_THAT(proxy.message(), IsMessage(this->complex({1, 12}, {13, 4})));
}

TYPED_TEST(SixteenBitProxy, FlushKeepsARealArrayReal) {
  const SharedMessage message = shared(this->real({1}));
  typename TestFixture::Proxy proxy(message);
  proxy.flushToMessage();
  EXPECT_THAT(*message, IsMessage(this->real({1})));
}

TYPED_TEST(SixteenBitProxy, FlushStaysInsideListsThatAnotherHandleReplaced) {
  const struct {
    std::string lists;
    std::string after;
  } rows[] = {
      {this->real({}), this->real({})},
      {this->real({1, 2}), this->real({7, 8})},
      {this->complex({1}, {2}), this->complex({7}, {9})},
      {this->complex({1, 2, 3}, {4, 5, 6}), this->complex({7, 8, 3}, {9, 10, 6})},
  };
  for (const auto& [lists, after] : rows) {
    SCOPED_TRACE(lists);
    typename TestFixture::Proxy proxy(shared(this->complex({7, 8}, {9, 10})));
    proxy.message() = parsed(lists);
    proxy.flushToMessage();
    EXPECT_THAT(proxy.message(), IsMessage(after));
  }
}

TYPED_TEST(SixteenBitProxy, ResizeOfARealArrayChangesTheRealPart) {
  typename TestFixture::Proxy proxy(shared(this->real({1, 2})));
  proxy.resize(3);
  EXPECT_THAT(proxy.message(), IsMessage(this->real({1, 2, 0})));
  EXPECT_EQ(this->dataOf(proxy)[1], 2);
  EXPECT_EQ(this->dataOf(proxy)[2], 0);
  EXPECT_EQ(proxy.getImagData(), nullptr);
  proxy.resize(0);
  EXPECT_THAT(proxy.message(), IsMessage(this->real({})));
  EXPECT_EQ(proxy.getData(), nullptr);
}

TYPED_TEST(SixteenBitProxy, ResizeOfAComplexArrayChangesBothParts) {
  typename TestFixture::Proxy proxy(shared(this->complex({1, 2}, {3, 4})));
  proxy.resize(3);
  this->dataOf(proxy)[2] = 5;
  EXPECT_EQ(this->imagOf(proxy)[2], 0);
  this->imagOf(proxy)[2] = 6;
  proxy.flushToMessage();
  EXPECT_THAT(proxy.message(), IsMessage(this->complex({1, 2, 5}, {3, 4, 6})));
  proxy.resize(1);
  EXPECT_THAT(proxy.message(), IsMessage(this->complex({1}, {3})));
  EXPECT_EQ(this->imagOf(proxy)[0], 3);
}

TYPED_TEST(SixteenBitProxy, ResizedToNothingStaysComplexWithoutImaginaryValues) {
  typename TestFixture::Proxy proxy(shared(this->complex({1}, {3})));
  proxy.resize(0);
  EXPECT_EQ(proxy.getImagData(), nullptr);
  proxy.resize(2);
  EXPECT_TRUE(proxy.isComplex());
  ASSERT_NE(proxy.getImagData(), nullptr);
  this->imagOf(proxy)[0] = 9;
  proxy.flushToMessage();
  EXPECT_THAT(proxy.message(), IsMessage(this->real({0, 0})));
}

TYPED_TEST(SixteenBitProxy, DuplicateCopiesWhatWasWrittenAndSharesNothing) {
  typename TestFixture::Proxy proxy(shared(this->complex({1}, {3})));
  this->dataOf(proxy)[0] = 7;
  const std::unique_ptr<KALDEXArrayProxy> copy = proxy.duplicate();
  const KALDEXArrayProxy& made = *copy;
  EXPECT_EQ(typeid(made), typeid(typename TestFixture::Proxy));
  EXPECT_TRUE(copy->isComplex());
  EXPECT_THAT(copy->message(), IsMessage(this->complex({7}, {3})));
  EXPECT_EQ(this->dataOf(*copy)[0], 7);

  this->dataOf(*copy)[0] = 8;
  copy->flushToMessage();
  EXPECT_EQ(this->dataOf(proxy)[0], 7);
  EXPECT_THAT(proxy.message(), IsMessage(this->complex({7}, {3})));
}

TEST(Uint16Proxy, KeepsTheLow16BitsUnsigned) {
  KALDEXUint16ArrayProxy proxy(
      shared("type: UINT16 uint16 { elements: [65535, 65541] imag_elements: 65536 }"));
  const auto* data = static_cast<const uint16_t*>(proxy.getData());
  EXPECT_EQ(data[0], 65535);
  EXPECT_EQ(data[1], 5);
  EXPECT_EQ(proxy.getScalar(), 65535.0);
  proxy.flushToMessage();
  EXPECT_THAT(proxy.message(),
              IsMessage("type: UINT16 uint16 { elements: [65535, 5] imag_elements: 0 }"));
}

TEST(Int16Proxy, KeepsTheLow16BitsSigned) {
  KALDEXInt16ArrayProxy proxy(
      shared("type: INT16 int16 { elements: [-1, 32768, 65541] imag_elements: -32769 }"));
  const auto* data = static_cast<const int16_t*>(proxy.getData());
  EXPECT_EQ(data[0], -1);
  EXPECT_EQ(data[1], -32768);
  EXPECT_EQ(data[2], 5);
  EXPECT_EQ(proxy.getScalar(), -1.0);
  proxy.flushToMessage();
  EXPECT_THAT(
      proxy.message(),
      IsMessage("type: INT16 int16 { elements: [-1, -32768, 5] imag_elements: 32767 }"));
}

}  // namespace
}  // namespace orb::test
