// SPDX-License-Identifier: MIT
#include "runtime/call_body.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/make_shared.hpp>
#include <initializer_list>

#include "array/handle.h"
#include "array/orb_array_from_kaldex_array_factory.h"
#include "array/received_array.h"
#include "orb.client.KALDEXParams.pb.h"
#include "unit/wire/random_array.h"

namespace orb::test {
namespace {

/// Arrays that share storage in all ways, made by random steps that depend on the seed
/// alone.
class Pool {
 public:
  explicit Pool(uint32_t seed, bool withLarge = false)
      : random_(seed), withLarge_(withLarge) {
    for (int i = 0; i < 12; ++i) step();
  }

  const std::vector<UniqueHandle>& arrays() const { return arrays_; }

  /// Some of the arrays, possibly one of them twice.
  std::vector<orbArray> pick() {
    std::vector<orbArray> picked;
    for (uint32_t n = random_.below(4); n > 0; --n) picked.push_back(any());
    return picked;
  }

 private:
  orbArray any() {
    return arrays_[random_.below(static_cast<uint32_t>(arrays_.size()))].get();
  }
  void keep(orbArray a) {
    if (a != nullptr) arrays_.emplace_back(a);
  }

  void step() {
    const uint32_t choice = arrays_.size() < 2 ? random_.below(4) : random_.below(12);
    switch (choice) {
      case 0:
        return keep(orbCreateCellMatrix(1, random_.below(4)));
      case 1:
        return keep(orbCreateNumericMatrix(1, random_.below(40), orbINT16_CLASS,
                                           random_.oneIn(2) ? orbCOMPLEX : orbREAL));
      case 2:
        return keep(orbCreateString("some text of more than sixteen units"));
      case 3: {
        const KALDEX_Array array = withLarge_ && random_.oneIn(2)
                                       ? random_.largeArray()
                                       : random_.array(random_.oneIn(4));
        return keep(handleFromWire(sliceOf(array.SerializeAsString())).release());
      }
      case 4:
      case 5:
        return orbSetCell(any(), random_.below(3), any());
      case 6:
        return keep(orbGetCell(any(), random_.below(3)));
      case 7: {
        const size_t extents[] = {1, random_.below(30)};
        orbSetDimensions(any(), extents, 2);
        return;
      }
      case 8:
        return keep(orbDuplicateArray(any()));
      case 9:
        orbAddField(any(), "added");
        return;
      case 10:
        arrays_.erase(arrays_.begin());
        return;
      default:
        return fill(any());
    }
  }

  void fill(orbArray a) {
    if (!orbIsInt16(a) && !orbIsUint16(a) && !orbIsChar(a)) return;
    auto* data = static_cast<uint16_t*>(proxyOf(a).getData());
    const size_t count = orbGetNumberOfElements(a);
    if (data == nullptr || count > 40) return;
    data[0] = static_cast<uint16_t>(random_.below(0x10000));
  }

  RandomArrays random_;
  bool withLarge_;
  std::vector<UniqueHandle> arrays_;
};

/// Every input written back in order, then all encoded by the message library.
std::string reference(const std::vector<orbArray>& inputs) {
  for (const orbArray input : inputs) proxyOf(input).flushToMessage();
  client::KALDEX_Params params;
  params.set_nargout(-1);
  for (const orbArray input : inputs) *params.add_rhs() = messageOf(input);
  return params.SerializeAsString();
}

/// What is read of a body by reads of these many bytes and, at the end, of the rest.
std::string readFrom(CallBody& body, std::initializer_list<size_t> reads) {
  std::string bytes(body.size() + 1, '\0');
  auto* const start = reinterpret_cast<uint8_t*>(bytes.data());
  size_t size = 0;
  for (const size_t part : reads) {
    size += body.read(start + size, std::min(part, bytes.size() - size));
  }
  size += body.read(start + size, bytes.size() - size);
  bytes.resize(size);
  return bytes;
}

std::string encoded(const std::vector<orbArray>& inputs) {
  ByteBlock block;
  CallBody body(block, UINT32_MAX, inputs.data(), static_cast<int32_t>(inputs.size()));
  if (body.data() != nullptr) {
    return std::string(reinterpret_cast<const char*>(body.data()), body.size());
  }
  const std::string bytes = readFrom(body, {});
  body.rewind();
  EXPECT_EQ(bytes, readFrom(body, {1, 20, 7, 20000, 1, 1, 1, 1, 1, 2, 3, 16384}));
  return bytes;
}

void compareWithTheMessageLibrary(uint32_t seeds, bool withLarge) {
  for (uint32_t seed = 0; seed < seeds; ++seed) {
    Pool fast(seed, withLarge);
    Pool plain(seed, withLarge);
    for (int call = 0; call < 2; ++call) {
      ASSERT_EQ(encoded(fast.pick()), reference(plain.pick())) << "seed " << seed;
    }
    ASSERT_EQ(fast.arrays().size(), plain.arrays().size());
    for (size_t i = 0; i < fast.arrays().size(); ++i) {
      const std::vector<orbArray> one{fast.arrays()[i].get()};
      const std::vector<orbArray> other{plain.arrays()[i].get()};
      ASSERT_EQ(reference(one), reference(other)) << "seed " << seed << ", array " << i;
    }
  }
}

TEST(CallBody, HasTheBytesOfTheMessageLibrary) {
  compareWithTheMessageLibrary(4000, false);
}

TEST(CallBody, HasTheBytesOfTheMessageLibraryWhereListsAreLarge) {
  compareWithTheMessageLibrary(100, true);
}

/// The bytes of a body that are not in the block.
size_t bytesLent(const std::vector<orbArray>& inputs) {
  ByteBlock block;
  const CallBody body(block, 1, inputs.data(), static_cast<int32_t>(inputs.size()));
  return body.size() - std::min<size_t>(body.size(), block.capacity());
}

TEST(CallBody, LendsTheListsOfLargeArrays) {
  constexpr size_t kCount = 65536;
  for (const orbClassID id :
       {orbUINT8_CLASS, orbINT8_CLASS, orbUINT16_CLASS, orbINT16_CLASS, orbUINT32_CLASS,
        orbINT32_CLASS, orbSINGLE_CLASS, orbDOUBLE_CLASS}) {
    SCOPED_TRACE(id);
    const UniqueHandle array(orbCreateNumericMatrix(kCount, 1, id, orbCOMPLEX));
    const bool isNative = id == orbUINT16_CLASS || id == orbINT16_CLASS;
    const size_t wireSize = isNative ? 1 : orbGetElementSize(array.get());
    EXPECT_EQ(bytesLent({array.get()}), 2 * kCount * wireSize);
    if (isNative) continue;  // its elements are another message's, in 32 bits
    const UniqueHandle cell(orbCreateCellMatrix(1, 1));
    orbSetCell(cell.get(), 0, array.get());
    EXPECT_EQ(bytesLent({cell.get()}), 2 * kCount * wireSize);
  }
}

TEST(CallBody, SendsLargeElementsOfAnyTypeOn) {
  for (const int type : {-1, 15, 20}) {
    SCOPED_TRACE(type);
    auto message = boost::make_shared<KALDEX_Array>();
    message->set_type(KALDEX_Array::CELL);
    message->add_dimension(1);
    KALDEX_Array& element = *message->mutable_cell()->add_elements();
    element.set_type(static_cast<QXType>(type));
    element.mutable_qxdouble()->mutable_elements()->Resize(10000, 1.5);
    const std::string bytes = message->SerializeAsString();
    const UniqueHandle cell = handleOver(std::move(message), MessageUse::kOwn);
    EXPECT_NE(encoded({cell.get()}).find(bytes), std::string::npos);
  }
}

TEST(CallBody, IsInOnePieceBelow64KiB) {
  ByteBlock block;
  for (const size_t count : {0, 1, 65535}) {
    const UniqueHandle array(orbCreateNumericMatrix(count, 1, orbUINT8_CLASS, orbREAL));
    const orbArray input = array.get();
    const CallBody body(block, 1, &input, 1);
    EXPECT_EQ(body.data(), block.data());
  }
}

TEST(CallBody, WithoutInputsIsTheNumberOfOutputs) {
  ByteBlock block;
  const CallBody body(block, 0, nullptr, 0);
  ASSERT_EQ(body.size(), 2u);
  EXPECT_EQ(body.data()[0], 0x08);
  EXPECT_EQ(body.data()[1], 0x00);
}

// Extents alone take it above the size from which lists are lent.
TEST(CallBody, GivesNoPayloadToAnArrayWithoutElements) {
  std::vector<size_t> extents(70000, 1);
  extents[0] = 0;
  for (const int classid : {orbUINT8_CLASS, orbINT32_CLASS, orbDOUBLE_CLASS}) {
    const UniqueHandle array(orbCreateNumericArray(extents.size(), extents.data(),
                                                   orbClassID(classid), orbREAL));
    const UniqueHandle cell(orbCreateCellMatrix(1, 1));
    orbSetCell(cell.get(), 0, array.get());
    EXPECT_EQ(encoded({array.get()}), reference({array.get()}));
    EXPECT_EQ(encoded({cell.get()}), reference({cell.get()}));
  }
}

TEST(CallBody, SendsLargeElementsThatNoArrayCouldBe) {
  KALDEX_Array ofAnotherType;
  ofAnotherType.set_type(KALDEX_Array::OBJECT);
  ofAnotherType.mutable_uint8()->set_elements(std::string(100000, 'x'));
  KALDEX_Array withUnknownField;
  withUnknownField.set_type(KALDEX_Array::UINT8);
  const std::string payload = ofAnotherType.uint8().SerializeAsString() + "\x18\x01";
  ASSERT_TRUE(withUnknownField.mutable_uint8()->ParseFromString(payload));
  KALDEX_Array withASecondPayload;
  withASecondPayload.set_type(KALDEX_Array::UINT8);
  withASecondPayload.mutable_uint8()->set_elements(std::string(100000, 'x'));
  withASecondPayload.mutable_qxdouble()->add_elements(1.5);
  for (const KALDEX_Array& element :
       {ofAnotherType, withUnknownField, withASecondPayload}) {
    auto cell = boost::make_shared<KALDEX_Array>();
    cell->set_type(KALDEX_Array::CELL);
    *cell->mutable_cell()->add_elements() = element;
    const UniqueHandle handle = handleOver(std::move(cell), MessageUse::kOwn);
    EXPECT_EQ(encoded({handle.get()}), reference({handle.get()}));
  }
}

}  // namespace
}  // namespace orb::test
