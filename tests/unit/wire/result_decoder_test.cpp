// SPDX-License-Identifier: MIT
#include "runtime/result_decoder.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <boost/make_shared.hpp>
#include <climits>

#include "array/orb_array_from_kaldex_array_factory.h"
#include "orb/qxorbclient.h"
#include "unit/wire/random_array.h"

namespace {

/// Memory that was to be backed with huge pages.
struct Advised {
  const char* begin;
  size_t size;
};

std::vector<Advised>& advised() {
  static std::vector<Advised> all;
  return all;
}

}  // namespace

extern "C" int madvise(void* begin, size_t size, int advice) noexcept {
  if (advice == MADV_HUGEPAGE) {
    advised().push_back({static_cast<const char*>(begin), size});
  }
  return static_cast<int>(::syscall(SYS_madvise, begin, size, advice));
}

namespace orb::test {
namespace {

/// All that a caller can learn of an array, as text; touches every element.
std::string observed(orbArray a) {
  std::string text = std::to_string(orbGetClassID(a)) + (orbIsComplex(a) ? "c" : "r") +
                     std::to_string(orbGetScalar(a)) + (orbIsEmpty(a) ? "e" : "f");
  const UniqueHandle copy(orbDuplicateArray(a));
  copy->proxy->flushToMessage();
  return text + (orbIsComplex(copy.get()) ? "c" : "r") +
         messageOf(copy.get()).SerializeAsString();
}

std::vector<std::string> observedElements(orbArray a) {
  std::vector<std::string> texts;
  for (size_t i = 0; i < orbGetNumberOfElements(a) && i < 40; ++i) {
    for (int field = 0; field < (orbIsStruct(a) ? orbGetNumberOfFields(a) : 1); ++field) {
      const UniqueHandle element(orbIsCell(a) ? orbGetCell(a, i)
                                              : orbGetFieldByNumber(a, i, field));
      texts.push_back(element ? observed(element.get()) : "none");
    }
  }
  return texts;
}

/// Decodes a body on both ways. Where the short one takes it, the results have to be the
/// same.
void expectSameResult(const std::string& body, uint32_t count, int* taken = nullptr) {
  std::vector<UniqueHandle> outputs;
  if (!readOutputs(sliceOf(body), INT_MAX, count, outputs)) return;
  if (taken != nullptr) ++*taken;
  client::KALDEX_Result result;
  ASSERT_TRUE(result.ParseFromString(body));
  ASSERT_FALSE(result.has_error());
  ASSERT_EQ(static_cast<uint32_t>(result.lhs_size()), count);
  for (uint32_t i = 0; i < count; ++i) {
    const UniqueHandle expected =
        handleOver(boost::make_shared<KALDEX_Array>(result.lhs(static_cast<int>(i))),
                   MessageUse::kOwn);
    if (i % 2 == 0 && (orbIsCell(expected.get()) || orbIsStruct(expected.get()))) {
      ASSERT_EQ(observedElements(outputs[i].get()), observedElements(expected.get()));
    }
    ASSERT_EQ(observed(outputs[i].get()), observed(expected.get()));
  }
}

client::KALDEX_Result randomResult(RandomArrays& random, uint32_t count, bool mayBeOdd) {
  client::KALDEX_Result result;
  for (uint32_t i = 0; i < count; ++i) *result.add_lhs() = random.array(mayBeOdd);
  return result;
}

bool mayThrow(const client::KALDEX_Result& result) {
  const std::string bytes = result.DebugString();
  for (const char* type :
       {"OBJECT", "HANDLE_OBJECT_REF", "ARRAYREF", "ENUMERATION", "STRING"}) {
    if (bytes.find(type) != std::string::npos) return true;
  }
  return false;
}

TEST(ReadOutputs, GivesWhatParsingGives) {
  RandomArrays random(7);
  int taken = 0;
  for (int i = 0; i < 10000; ++i) {
    const uint32_t count = random.below(3);
    expectSameResult(randomResult(random, count, false).SerializeAsString(), count,
                     &taken);
  }
  EXPECT_GT(taken, 700);
}

TEST(ReadOutputs, TakesEveryType) {
  RandomArrays random(11);
  std::vector<KALDEX_Array> arrays;
  for (int type = 0; type < KALDEX_Array::STRUCT; ++type) {
    arrays.push_back(random.arrayOf(static_cast<QXType>(type), 9));
  }
  KALDEX_Array cell;
  cell.set_type(KALDEX_Array::CELL);
  *cell.mutable_cell()->add_elements() = arrays[0];
  KALDEX_Array record;
  record.set_type(KALDEX_Array::STRUCT);
  record.mutable_struct_()->add_field_names("a");
  *record.mutable_struct_()->add_elements() = arrays[0];
  arrays.insert(arrays.end(), {cell, record});
  for (const KALDEX_Array& array : arrays) {
    client::KALDEX_Result result;
    *result.add_lhs() = array;
    int taken = 0;
    expectSameResult(result.SerializeAsString(), 1, &taken);
    EXPECT_EQ(taken, 1) << array.type();
  }
}

TEST(ReadOutputs, GivesWhatParsingGivesForOddArrays) {
  RandomArrays random(8);
  int taken = 0;
  for (int i = 0; i < 10000; ++i) {
    const uint32_t count = random.below(3);
    const client::KALDEX_Result result = randomResult(random, count, true);
    if (!mayThrow(result)) expectSameResult(result.SerializeAsString(), count, &taken);
  }
  EXPECT_GT(taken, 500);
}

TEST(ReadOutputs, GivesWhatParsingGivesForDamagedBodies) {
  RandomArrays random(9);
  for (int i = 0; i < 10000; ++i) {
    const uint32_t count = random.below(3);
    const std::string body =
        randomResult(random, count, random.oneIn(4)).SerializeAsString();
    for (int j = 0; j < 12; ++j) expectSameResult(random.damaged(body), count);
  }
}

TEST(ReadOutputs, GivesWhatParsingGivesForHugeLists) {
  RandomArrays random(10);
  for (const QXType type :
       {KALDEX_Array::UINT32, KALDEX_Array::INT32, KALDEX_Array::SINGLE,
        KALDEX_Array::DOUBLE, KALDEX_Array::LOGICAL}) {
    for (int i = 0; i < 2; ++i) {
      SCOPED_TRACE(type);
      client::KALDEX_Result result;
      const uint32_t count = type == KALDEX_Array::LOGICAL ? 1u << 22 : 1u << 20;
      *result.add_lhs() = random.arrayOf(type, count + random.below(100));
      const std::string body = result.SerializeAsString();
      int taken = 0;
      expectSameResult(body, 1, &taken);
      EXPECT_EQ(taken, 1);
      for (int j = 0; j < 4; ++j) expectSameResult(random.damaged(body), 1);
    }
  }
}

TEST(ReadOutputs, GivesHugeArraysNoPayloadThatTheyDoNotHave) {
  for (const bool hasEmptyPayload : {false, true}) {
    client::KALDEX_Result result;
    KALDEX_Array& array = *result.add_lhs();
    array.set_type(KALDEX_Array::DOUBLE);
    array.mutable_uint8()->set_elements(std::string(size_t{4} << 20, 'x'));
    if (hasEmptyPayload) array.mutable_qxdouble();
    const std::string body = result.SerializeAsString();
    std::vector<UniqueHandle> outputs;
    ASSERT_TRUE(readOutputs(sliceOf(body), INT_MAX, 1, outputs));
    EXPECT_EQ(messageOf(outputs[0].get()).has_qxdouble(), hasEmptyPayload);
    EXPECT_EQ(messageOf(outputs[0].get()).uint8().elements(), array.uint8().elements());
  }
}

/// Type DOUBLE, unless something else is asked for, and these bytes of payload, in a body.
std::string bodyWithPayload(const std::string& payload,
                            const std::string& before = "\x08\x09") {
  const auto field = [](const std::string& tag, const std::string& bytes) {
    uint8_t size[wire::kMaxVarintSize];
    uint8_t* const end = wire::writeVarint(bytes.size(), size);
    return tag + std::string(&size[0], end) + bytes;
  };
  KALDEX_Array array;
  array.mutable_qxdouble();
  std::string tag = array.SerializeAsString();
  tag.pop_back();  // the size, 0
  return field("\x0A", before + field(tag, payload));
}

/// A real array of this size in bytes, as doubles and as many extents as it takes.
KALDEX_Array arrayOfSize(size_t size) {
  KALDEX_Array array;
  array.set_type(KALDEX_Array::DOUBLE);
  const size_t count = (size - 32) / sizeof(double);
  array.mutable_qxdouble()->mutable_elements()->Resize(static_cast<int>(count), 1.5);
  while (array.ByteSizeLong() < size) array.add_dimension(1);
  return array;
}

TEST(ReadOutputs, AsksForHugePagesFrom4MiBOn) {
  constexpr size_t kHuge = size_t{4} << 20;
  for (const size_t size : {kHuge - 1, kHuge}) {
    client::KALDEX_Result result;
    *result.add_lhs() = arrayOfSize(size);
    ASSERT_EQ(result.lhs(0).ByteSizeLong(), size);
    const std::string body = result.SerializeAsString();
    advised().clear();
    std::vector<UniqueHandle> outputs;
    ASSERT_TRUE(readOutputs(sliceOf(body), INT_MAX, 1, outputs));
    ASSERT_EQ(advised().size(), size == kHuge ? 1u : 0u);
    if (advised().empty()) continue;
    const Advised& pages = advised().front();
    const auto* const list = reinterpret_cast<const char*>(orbGetPr(outputs[0].get()));
    const size_t inPage = reinterpret_cast<uintptr_t>(list) % 4096;
    EXPECT_EQ(pages.begin, list - inPage);
    const auto count = static_cast<size_t>(result.lhs(0).qxdouble().elements_size());
    EXPECT_EQ(pages.size, inPage + count * sizeof(double));
  }
}

TEST(ReadOutputs, LeavesBrokenHugeListsAlone) {
  constexpr size_t kHuge = size_t{4} << 20;
  const std::string head = "\x0A\x80\x80\x80\x02";
  const std::string list(kHuge, '\x01');
  const auto taken = [](const std::string& payload) {
    std::vector<UniqueHandle> outputs;
    return readOutputs(sliceOf(bodyWithPayload(payload)), INT_MAX, 1, outputs);
  };
  EXPECT_TRUE(taken(head + list));
  EXPECT_TRUE(taken(head + list + std::string("\x12\0", 2)));
  EXPECT_TRUE(taken(head + list + std::string("\x12\x80\0", 3))) << "a long length";
  for (const std::string& bad :
       {"\x0A\x81\x80\x80\x02" + list + "x", "\x0A\x88\x80\x80\x02" + list,
        head + list + "\x12\x01y", head + list + "\x12\x08y"}) {
    EXPECT_FALSE(taken(bad));
  }
  // An unknown field, which the message library keeps, and a type that is there twice.
  const std::string unknown("\x1A\0", 2);
  EXPECT_TRUE(taken(head + list + unknown));
  expectSameResult(bodyWithPayload(head + list + unknown), 1);
  expectSameResult(bodyWithPayload(head + list, "\x08\x09\x08\x09"), 1);
}

TEST(ReadOutputs, LeavesAlone) {
  client::KALDEX_Result result;
  result.add_lhs()->set_type(KALDEX_Array::DOUBLE);
  const std::string body = result.SerializeAsString();
  const auto taken = [](const std::string& bytes, uint32_t limitBytes, uint32_t count) {
    std::vector<UniqueHandle> outputs;
    return readOutputs(sliceOf(bytes), limitBytes, count, outputs);
  };
  EXPECT_TRUE(taken(body, 4, 1));
  EXPECT_FALSE(taken(body, 3, 1)) << "a body above the limit";
  EXPECT_FALSE(taken(body, 0x80000000u, 1)) << "a limit above 31 bits";
  EXPECT_FALSE(taken(body, 4, 0)) << "too many outputs";
  EXPECT_FALSE(taken(body, 4, 2)) << "too few outputs";
  EXPECT_FALSE(taken("\x0A\x06\x08\x0D\xE2\x01\x01\x80", 99, 1))
      << "half a tag in a cell";
  result.mutable_error();
  EXPECT_FALSE(taken(result.SerializeAsString(), 99, 1)) << "an error";
  EXPECT_TRUE(taken("", 0, 0)) << "nothing wanted, nothing sent";
}

// Of a body above the limit, what lies behind it is not kept.
TEST(ParseResult, ReadsNothingBehindTheLimit) {
  RandomArrays random(12);
  const client::KALDEX_Result sent = randomResult(random, 20, false);
  const std::string body = sent.SerializeAsString();
  for (size_t limit = 0; limit < body.size(); ++limit) {
    // Of this very size, so that AddressSanitizer sees a byte too many.
    const std::unique_ptr<uint8_t[]> kept(new uint8_t[limit]);
    std::copy_n(body.begin(), limit, kept.get());
    client::KALDEX_Result result;
    parseResult({kept.get(), body.size()}, static_cast<uint32_t>(limit), result);
    EXPECT_LE(result.lhs_size(), sent.lhs_size());
  }
}

}  // namespace
}  // namespace orb::test
