// SPDX-License-Identifier: MIT
#include "torture/replies/random_message.h"

#include <functional>
#include <vector>

#include "support/wire.h"

namespace orb::torture {
namespace {

namespace wire = test::wire;

constexpr int kDeepest = 3;

/// Of any magnitude: varints of every length come about as often.
std::uint64_t anyNumber(Random& random) { return random() >> below(random, 64); }

std::string repeated(std::uint64_t count, const std::function<std::string()>& next) {
  std::string result;
  for (std::uint64_t i = 0; i < count; ++i) result += next();
  return result;
}

/// One element of a list, as packed lists hold them.
std::string element(Random& random, int type) {
  const std::uint64_t number = anyNumber(random);
  switch (type) {
    case wire::kUint8:
    case wire::kInt8:
      return wire::littleEndian(static_cast<std::uint8_t>(number));
    case wire::kUint16:
    case wire::kChar:
      return wire::varint(number & 0xFFFF);
    case wire::kInt16:
      return wire::varint(static_cast<std::uint64_t>(static_cast<std::int16_t>(number)));
    case wire::kUint32:
    case wire::kInt32:
    case wire::kSingle:
      return wire::littleEndian(static_cast<std::uint32_t>(number));
    case wire::kLogical:
      return wire::varint(number & 1);
    case wire::kDouble:
      return wire::littleEndian(number);
    default:
      return wire::varint(number);
  }
}

std::string numbers(Random& random, int type, std::uint64_t count) {
  const auto list = [&] {
    return repeated(count, [&] { return element(random, type); });
  };
  const bool isComplex = type <= wire::kDouble && below(random, 3) == 0;
  return isComplex ? wire::elements(list(), list()) : wire::elements(list());
}

std::string cells(Random& random, std::uint64_t count, int depth) {
  return repeated(count,
                  [&] { return wire::bytes(1, randomMessage(random, depth + 1)); });
}

std::string structure(Random& random, std::uint64_t count, int depth) {
  const std::uint64_t fields = 1 + below(random, 3);
  std::string result;
  for (std::uint64_t i = 0; i < fields; ++i) {
    result += wire::bytes(1, std::string(1, static_cast<char>('a' + i)) +
                                 randomText(random, below(random, 4)));
  }
  return result + repeated(count * fields, [&] {
           return wire::bytes(2, randomMessage(random, depth + 1));
         });
}

/// As many stored values as columns, one in the first row of each.
std::string sparse(Random& random, std::uint64_t columns) {
  const bool isLogical = below(random, 2) == 0;
  std::vector<std::uint64_t> starts(1);
  while (starts.size() <= columns) starts.push_back(starts.size());
  return wire::number(1, isLogical ? 1 : 0) +
         wire::bytes(2, wire::varints(std::vector<std::uint64_t>(columns))) +
         wire::bytes(3, wire::varints(starts)) +
         wire::bytes(isLogical ? 17 : 16,
                     isLogical
                         ? wire::elements(repeated(
                               columns, [&] { return element(random, wire::kLogical); }))
                         : numbers(random, wire::kDouble, columns));
}

}  // namespace

std::uint64_t below(Random& random, std::uint64_t bound) { return random() % bound; }

std::string randomText(Random& random, std::uint64_t length) {
  return repeated(
      length, [&] { return std::string(1, static_cast<char>('a' + below(random, 26))); });
}

std::string randomMessage(Random& random, int depth) {
  const auto types = static_cast<std::uint64_t>(wire::kSparse) + 1;
  int type = static_cast<int>(below(random, types));
  if (depth == kDeepest && (type == wire::kCell || type == wire::kStruct)) {
    type = wire::kChar;
  }
  const bool isContainer = type == wire::kCell || type == wire::kStruct;
  const bool isLarge = depth == 0 && !isContainer && below(random, 16) == 0;
  const std::uint64_t most = isLarge ? 3000 : isContainer ? 3 : 12;
  const std::uint64_t rows = type == wire::kSparse ? 1 : 1 + below(random, 3);
  const std::uint64_t columns = 1 + below(random, most);
  std::vector<std::uint64_t> extents{rows, columns};
  std::uint64_t count = rows * columns;
  if (type != wire::kSparse && below(random, 4) == 0) {
    extents.push_back(2);
    count *= 2;
  }
  if (type == wire::kCell) return wire::array(type, extents, cells(random, count, depth));
  if (type == wire::kStruct) {
    return wire::array(type, extents, structure(random, count, depth));
  }
  if (type == wire::kSparse) return wire::array(type, extents, sparse(random, columns));
  return wire::array(type, extents, numbers(random, type, count));
}

}  // namespace orb::torture
