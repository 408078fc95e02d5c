// SPDX-License-Identifier: MIT
#include "runtime/call_body.h"

#include <gtest/gtest.h>

#include "array/handle.h"
#include "array/received_array.h"
#include "orb.client.KALDEXParams.pb.h"
#include "unit/wire/random_array.h"

namespace orb::test {
namespace {

/// Arrays that share storage in all ways, made by random steps that depend on the seed
/// alone.
class Pool {
 public:
  explicit Pool(uint32_t seed) : random_(seed) {
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
        const std::string bytes = random_.array(random_.oneIn(4)).SerializeAsString();
        return keep(handleFromWire(sliceOf(bytes)).release());
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

std::string encoded(const std::vector<orbArray>& inputs) {
  ByteBlock block;
  const size_t size =
      encodeCall(UINT32_MAX, inputs.data(), static_cast<int32_t>(inputs.size()), block);
  return std::string(reinterpret_cast<const char*>(block.data()), size);
}

TEST(EncodeCall, WritesTheBytesOfTheMessageLibrary) {
  for (uint32_t seed = 0; seed < 4000; ++seed) {
    Pool fast(seed);
    Pool plain(seed);
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

TEST(EncodeCall, WithoutInputsIsTheNumberOfOutputs) {
  ByteBlock block;
  ASSERT_EQ(encodeCall(0, nullptr, 0, block), 2u);
  EXPECT_EQ(block.data()[0], 0x08);
  EXPECT_EQ(block.data()[1], 0x00);
}

}  // namespace
}  // namespace orb::test
