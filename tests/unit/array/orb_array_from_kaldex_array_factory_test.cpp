// SPDX-License-Identifier: MIT
#include "array/orb_array_from_kaldex_array_factory.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <stdexcept>
#include <typeinfo>

#include "unit/array/message.h"

namespace orb::test {
namespace {

SharedMessage ofOnlyType(QXType type) {
  const SharedMessage message = boost::make_shared<KALDEX_Array>();
  message->set_type(type);
  return message;
}

void build(orbArrayHandle& handle, const SharedMessage& message, MessageUse use) {
  OrbArrayFromKALDEX_ArrayFactory factory(handle, message, use);
  dispatch_on_QXType(message->type(), factory);
}

TEST(Factory, MakesTheProxyClassOfTheType) {
  const struct {
    QXType type;
    const std::type_info& proxy;
  } rows[] = {
      {KALDEX_Array::UINT8, typeid(KALDEXArrayProxy)},
      {KALDEX_Array::INT8, typeid(KALDEXArrayProxy)},
      {KALDEX_Array::UINT16, typeid(KALDEXUint16ArrayProxy)},
      {KALDEX_Array::INT16, typeid(KALDEXInt16ArrayProxy)},
      {KALDEX_Array::UINT32, typeid(KALDEXArrayProxy)},
      {KALDEX_Array::INT32, typeid(KALDEXArrayProxy)},
      {KALDEX_Array::UINT64, typeid(KALDEXArrayProxy)},
      {KALDEX_Array::INT64, typeid(KALDEXArrayProxy)},
      {KALDEX_Array::SINGLE, typeid(KALDEXArrayProxy)},
      {KALDEX_Array::DOUBLE, typeid(KALDEXArrayProxy)},
      {KALDEX_Array::LOGICAL, typeid(KALDEXArrayProxy)},
      {KALDEX_Array::CHAR, typeid(KALDEXCharArrayProxy)},
      {KALDEX_Array::STRUCT, typeid(KALDEXStructArrayProxy)},
      {KALDEX_Array::CELL, typeid(KALDEXCellArrayProxy)},
      {KALDEX_Array::SPARSE, typeid(KALDEXArrayProxy)},
  };
  for (const auto& [type, proxy] : rows) {
    SCOPED_TRACE(type);
    const UniqueHandle handle = handleOver(ofOnlyType(type), MessageUse::kShare);
    const KALDEXArrayProxy& made = *handle->proxy;
    EXPECT_EQ(typeid(made), proxy);
    EXPECT_EQ(made.type(), type);
  }
}

TEST(Factory, BuildsTheProxyOverTheMessageItself) {
  for (const MessageUse use : {MessageUse::kShare, MessageUse::kOwn}) {
    for (int type = KALDEX_Array::UINT8; type <= KALDEX_Array::SPARSE; ++type) {
      SCOPED_TRACE(type);
      const SharedMessage message = ofOnlyType(static_cast<QXType>(type));
      const UniqueHandle handle = handleOver(message, use);
      EXPECT_EQ(handle->proxy->sharedMessage(), message);
    }
  }
}

TEST(Factory, LeavesTheListOfASharedMessageAndEmptiesThatOfItsOwn) {
  const struct {
    const char* text;
    const char* emptied;
  } rows[] = {
      {"type: CELL cell { elements { type: CHAR } }", "type: CELL cell { }"},
      {"type: STRUCT struct_ { field_names: 'a' elements { type: CHAR } }",
       "type: STRUCT struct_ { field_names: 'a' }"},
  };
  for (const auto& [text, emptied] : rows) {
    SCOPED_TRACE(text);
    const UniqueHandle sharing = handleOver(shared(text), MessageUse::kShare);
    EXPECT_THAT(sharing->proxy->message(), IsMessage(text));
    const UniqueHandle owning = handleOver(shared(text), MessageUse::kOwn);
    EXPECT_THAT(owning->proxy->message(), IsMessage(emptied));
    owning->proxy->flushToMessage();
    EXPECT_THAT(owning->proxy->message(), IsMessage(text));
  }
}

TEST(Factory, RefusesOtherTypesWithTheSlotUntouched) {
  orbArrayHandle handle;
  build(handle, ofOnlyType(KALDEX_Array::DOUBLE), MessageUse::kShare);
  const KALDEXArrayProxy* before = handle.proxy.get();
  for (const QXType type : kRefusedTypes) {
    SCOPED_TRACE(type);
    const SharedMessage message = ofOnlyType(type);
    try {
      build(handle, message, MessageUse::kOwn);
      ADD_FAILURE() << "accepted";
    } catch (const std::invalid_argument& refusal) {
      EXPECT_STREQ(refusal.what(), "dispatch_on_QXType");
    }
    EXPECT_EQ(handle.proxy.get(), before);
    EXPECT_EQ(message.use_count(), 1);
    EXPECT_THROW(handleOver(message, MessageUse::kShare), std::invalid_argument);
    EXPECT_EQ(message.use_count(), 1);
  }
}

TEST(Factory, KeepsTheOldProxyWhenTheNewOneCannotBeMade) {
  orbArrayHandle handle;
  build(handle, ofOnlyType(KALDEX_Array::DOUBLE), MessageUse::kShare);
  const KALDEXArrayProxy* before = handle.proxy.get();
  const SharedMessage message = ofOnlyType(KALDEX_Array::OBJECT);
  {
    OrbArrayFromKALDEX_ArrayFactory factory(handle, message, MessageUse::kShare);
    EXPECT_THROW(factory.visit<KALDEX_Array::CHAR>(), std::invalid_argument);
  }
  EXPECT_EQ(handle.proxy.get(), before);
  EXPECT_EQ(message.use_count(), 1);
}

TEST(Factory, DestroysTheOldProxyOnceTheNewOneIsInPlace) {
  class Witness : public KALDEXArrayProxy {
   public:
    Witness(SharedMessage message, orbArrayHandle& handle,
            const KALDEXArrayProxy*& inPlace)
        : KALDEXArrayProxy(std::move(message)), handle_(handle), inPlace_(inPlace) {}
    ~Witness() override { inPlace_ = handle_.proxy.get(); }

   private:
    orbArrayHandle& handle_;
    const KALDEXArrayProxy*& inPlace_;
  };
  const KALDEXArrayProxy* inPlace = nullptr;
  orbArrayHandle handle;
  const SharedMessage message = ofOnlyType(KALDEX_Array::DOUBLE);
  handle.proxy = std::make_unique<Witness>(message, handle, inPlace);
  build(handle, ofOnlyType(KALDEX_Array::CHAR), MessageUse::kShare);
  ASSERT_NE(inPlace, nullptr);
  EXPECT_EQ(inPlace, handle.proxy.get());
  EXPECT_EQ(inPlace->type(), KALDEX_Array::CHAR);
  EXPECT_EQ(message.use_count(), 1);
}

}  // namespace
}  // namespace orb::test
