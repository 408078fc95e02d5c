// SPDX-License-Identifier: MIT
#include "array/kaldex_char_array_proxy.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <stdexcept>
#include <typeinfo>

#include "unit/array/message.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kAbc[] = "type: CHAR dimension: [1, 3] qxchar { elements: [97, 98, 99] }";

char16_t* charsOf(KALDEXArrayProxy& proxy) {
  return static_cast<char16_t*>(proxy.getData());
}

TEST(CharProxy, KeepsTheLow16BitsOfEachUnit) {
  const KALDEXCharArrayProxy proxy(
      shared("type: CHAR qxchar { elements: [65, 65535, 65536, 0xFFFF0002] }"));
  EXPECT_THAT(proxy.chars(), ElementsAre(65, 65535, 0, 2));
}

TEST(CharProxy, HasNoElementsWhereThePayloadIsAbsent) {
  KALDEXCharArrayProxy proxy(shared("type: CHAR dimension: [1, 3]"));
  EXPECT_THAT(proxy.chars(), IsEmpty());
  EXPECT_EQ(proxy.getData(), nullptr);
  EXPECT_EQ(proxy.getScalar(), 0.0);
  EXPECT_THAT(proxy.message(), IsMessage("type: CHAR dimension: [1, 3]"));
}

TEST(CharProxy, AnswersFromItsOwnBuffer) {
  KALDEXCharArrayProxy proxy(shared("type: CHAR qxchar { elements: [65535, 66] }"));
  proxy.message().mutable_qxchar()->set_elements(0, 1);
  EXPECT_EQ(proxy.getData(), proxy.chars().data());
  EXPECT_EQ(proxy.getImagData(), nullptr);
  EXPECT_EQ(proxy.getScalar(), 65535.0);
  EXPECT_EQ(proxy.getElementSize(), 2u);
  EXPECT_FALSE(proxy.isComplex());
}

TEST(CharProxyFlushToMessage, WritesTheUnitsAndNothingElseDoes) {
  KALDEXCharArrayProxy proxy(shared(kAbc));
  charsOf(proxy)[1] = 0xFFFF;
  EXPECT_THAT(proxy.message(), IsMessage(kAbc));
  proxy.flushToMessage();
  EXPECT_THAT(
      proxy.message(),
      IsMessage("type: CHAR dimension: [1, 3] qxchar { elements: [97, 65535, 99] }"));
}

TEST(CharProxyFlushToMessage, MakesAnAbsentPayloadPresent) {
  KALDEXCharArrayProxy proxy(shared("type: CHAR"));
  proxy.flushToMessage();
  EXPECT_THAT(proxy.message(), IsMessage("type: CHAR qxchar { }"));
}

TEST(CharProxyFlushToMessage, StaysInsideAListThatAnotherHandleReplaced) {
  const struct {
    const char* list;
    const char* after;
  } rows[] = {
      {"type: CHAR", "type: CHAR qxchar { }"},
      {"type: CHAR qxchar { elements: 1 }", "type: CHAR qxchar { elements: 7 }"},
      {"type: CHAR qxchar { elements: [1, 2, 3, 4] }",
       "type: CHAR qxchar { elements: [7, 8, 3, 4] }"},
  };
  for (const auto& [list, after] : rows) {
    SCOPED_TRACE(list);
    KALDEXCharArrayProxy proxy(shared("type: CHAR qxchar { elements: [7, 8] }"));
    proxy.message() = parsed(list);
    proxy.flushToMessage();
    EXPECT_THAT(proxy.message(), IsMessage(after));
  }
}

TEST(CharProxyResize, ChangesBufferAndList) {
  KALDEXCharArrayProxy proxy(shared("type: CHAR qxchar { elements: [97, 98] }"));
  proxy.resize(3);
  EXPECT_THAT(proxy.chars(), ElementsAre(97, 98, 0));
  EXPECT_THAT(proxy.message(), IsMessage("type: CHAR qxchar { elements: [97, 98, 0] }"));
  proxy.resize(1);
  EXPECT_THAT(proxy.chars(), ElementsAre(97));
  EXPECT_THAT(proxy.message(), IsMessage("type: CHAR qxchar { elements: 97 }"));
  proxy.resize(0);
  EXPECT_EQ(proxy.getData(), nullptr);
  EXPECT_THAT(proxy.message(), IsMessage("type: CHAR qxchar { }"));
}

TEST(CharProxyDuplicate, CopiesWhatWasWrittenAndSharesNothing) {
  KALDEXCharArrayProxy proxy(shared(kAbc));
  charsOf(proxy)[0] = 'x';
  const std::unique_ptr<KALDEXArrayProxy> copy = proxy.duplicate();
  const KALDEXArrayProxy& made = *copy;
  EXPECT_EQ(typeid(made), typeid(KALDEXCharArrayProxy));
  const char* written = "type: CHAR dimension: [1, 3] qxchar { elements: [120, 98, 99] }";
  EXPECT_THAT(copy->message(), IsMessage(written));
  EXPECT_EQ(charsOf(*copy)[0], u'x');

  charsOf(*copy)[0] = 'y';
  copy->flushToMessage();
  EXPECT_EQ(charsOf(proxy)[0], u'x');
  EXPECT_THAT(proxy.message(), IsMessage(written));
}

TEST(CharProxyUtf16ToUtf8, ConvertsTheBuffer) {
  KALDEXCharArrayProxy proxy(shared(kAbc));
  charsOf(proxy)[1] = u'é';
  const std::unique_ptr<char, decltype(&std::free)> text(proxy.utf16ToUtf8(), &std::free);
  EXPECT_STREQ(text.get(),
               "a\xC3\xA9"
               "c");
}

TEST(CharProxyUtf16ToUtf8, RefusesASurrogateAtTheEnd) {
  const KALDEXCharArrayProxy proxy(shared("type: CHAR qxchar { elements: 0xD800 }"));
  EXPECT_THROW(proxy.utf16ToUtf8(), std::runtime_error);
}

TEST(CharProxyUtf16ToUtf8, OfNoElementsIsNull) {
  EXPECT_EQ(KALDEXCharArrayProxy(shared("type: CHAR")).utf16ToUtf8(), nullptr);
}

}  // namespace
}  // namespace orb::test
