// SPDX-License-Identifier: MIT
#include "unit/wire/random_array.h"

namespace orb::test {

// Of any magnitude: varints of every length come about as often.
uint64_t RandomArrays::number() { return engine_() >> below(64); }

std::string RandomArrays::text(uint32_t length) {
  std::string result;
  while (result.size() < length) result += static_cast<char>('a' + below(26));
  return oneIn(8) ? result + "\xC3\xA9" : result;
}

void RandomArrays::fillSparse(KALDEX_Array::Sparse& sparse, uint32_t count) {
  const bool isLogical = oneIn(2);
  sparse.set_type(isLogical ? KALDEX_Array::Sparse::LOGICAL
                            : KALDEX_Array::Sparse::DOUBLE);
  for (uint32_t i = 0; i < count; ++i) {
    sparse.add_ir(number());
    sparse.add_jc(i);
    if (isLogical) {
      sparse.mutable_logical()->add_elements(oneIn(2));
    } else {
      sparse.mutable_qxsparsedouble()->add_elements(static_cast<double>(number()));
    }
  }
}

void RandomArrays::fillPayload(KALDEX_Array& message, uint32_t count, int depth) {
  const auto fill = [&](auto* payload, auto next) {
    for (uint32_t i = 0; i < count; ++i) payload->add_elements(next());
  };
  const auto fillBoth = [&](auto* payload, auto next) {
    fill(payload, next);
    if (!oneIn(3)) return;
    for (uint32_t i = 0; i < count; ++i) payload->add_imag_elements(next());
  };
  const auto fillBytes = [&](auto* payload) {
    payload->set_elements(text(count));
    if (oneIn(3)) payload->set_imag_elements(text(count));
  };
  switch (message.type()) {
    case KALDEX_Array::UINT8:
      return fillBytes(message.mutable_uint8());
    case KALDEX_Array::INT8:
      return fillBytes(message.mutable_int8());
    case KALDEX_Array::UINT16:
      return fillBoth(message.mutable_uint16(),
                      [&] { return static_cast<uint32_t>(number()) & 0xFFFF; });
    case KALDEX_Array::INT16:
      return fillBoth(message.mutable_int16(),
                      [&] { return int32_t{static_cast<int16_t>(number())}; });
    case KALDEX_Array::UINT32:
      return fillBoth(message.mutable_uint32(),
                      [&] { return static_cast<uint32_t>(number()); });
    case KALDEX_Array::INT32:
      return fillBoth(message.mutable_int32(),
                      [&] { return static_cast<int32_t>(number()); });
    case KALDEX_Array::UINT64:
      return fillBoth(message.mutable_uint64(), [&] { return number(); });
    case KALDEX_Array::INT64:
      return fillBoth(message.mutable_int64(),
                      [&] { return static_cast<int64_t>(number()); });
    case KALDEX_Array::SINGLE:
      return fillBoth(message.mutable_single(),
                      [&] { return static_cast<float>(number()); });
    case KALDEX_Array::DOUBLE:
      return fillBoth(message.mutable_qxdouble(),
                      [&] { return static_cast<double>(number()); });
    case KALDEX_Array::LOGICAL:
      return fill(message.mutable_logical(), [&] { return oneIn(2); });
    case KALDEX_Array::CHAR:
      return fill(message.mutable_qxchar(), [&] {
        return static_cast<uint32_t>(oneIn(4) ? number() & 0xFFFF : 'x');
      });
    case KALDEX_Array::STRUCT:
      message.mutable_struct_()->add_field_names(text(3));
      for (uint32_t i = 0; i < count; ++i) {
        *message.mutable_struct_()->add_elements() = array(oneIn(20), depth + 1);
      }
      return;
    case KALDEX_Array::CELL:
      message.mutable_cell();
      for (uint32_t i = 0; i < count; ++i) {
        *message.mutable_cell()->add_elements() = array(oneIn(20), depth + 1);
      }
      return;
    default:
      return fillSparse(*message.mutable_sparse(), count);
  }
}

void RandomArrays::makeOdd(KALDEX_Array& message) {
  switch (below(8)) {
    case 0:
      return message.set_arrayid(number());
    case 1:
      return message.set_iscomplex(oneIn(2));
    case 2:
      message.GetReflection()->MutableUnknownFields(&message)->AddVarint(99, number());
      return;
    case 3:
      return message.clear_type();
    case 4:
      return message.clear_dimension();
    case 5:
      message.mutable_uint8()->mutable_elements();
      return;
    case 6:
      return message.mutable_qxchar()->add_elements(static_cast<uint32_t>(number()));
    default:
      return message.set_type(static_cast<QXType>(below(20)));
  }
}

KALDEX_Array RandomArrays::array(bool mayBeOdd, int depth) {
  KALDEX_Array message;
  const uint32_t types = depth < 3 ? KALDEX_Array::SPARSE + 1 : KALDEX_Array::STRUCT;
  message.set_type(static_cast<QXType>(below(types)));
  const uint32_t count =
      oneIn(4) ? 0 : below(message.type() == KALDEX_Array::CHAR ? 90 : 20);
  message.add_dimension(1);
  message.add_dimension(count);
  if (count != 0 || oneIn(2)) fillPayload(message, count, depth);
  if (mayBeOdd && oneIn(2)) makeOdd(message);
  return message;
}

KALDEX_Array RandomArrays::arrayOf(QXType type, uint32_t count) {
  KALDEX_Array message;
  message.set_type(type);
  message.add_dimension(1);
  message.add_dimension(count);
  fillPayload(message, count, 0);
  return message;
}

KALDEX_Array RandomArrays::largeArray() {
  KALDEX_Array message =
      arrayOf(static_cast<QXType>(below(KALDEX_Array::STRUCT)), 60000 + below(10000));
  if (oneIn(4)) makeOdd(message);
  return message;
}

std::string RandomArrays::damaged(std::string bytes) {
  if (bytes.empty()) return bytes;
  const auto place = [&] { return below(static_cast<uint32_t>(bytes.size())); };
  switch (below(4)) {
    case 0:
      bytes.resize(place());
      break;
    case 1:
      bytes[place()] ^= static_cast<char>(1 << below(8));
      break;
    case 2:
      bytes.insert(place(), 1, static_cast<char>(number()));
      break;
    default:
      bytes.erase(place(), 1);
  }
  return bytes;
}

}  // namespace orb::test
