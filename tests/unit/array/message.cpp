// SPDX-License-Identifier: MIT
#include "unit/array/message.h"

#include <google/protobuf/text_format.h>

#include <boost/make_shared.hpp>
#include <stdexcept>

#include "array/orb_array_from_kaldex_array_factory.h"

namespace orb::test {
namespace {

std::string list(QXType type, const char* name, const std::vector<int>& values) {
  const bool isBytes = type <= KALDEX_Array::INT8;
  std::string text = name + std::string(isBytes ? ": \"" : ": [");
  for (size_t i = 0; i < values.size(); ++i) {
    if (isBytes) {
      const char digits[] = "0123456789abcdef";
      text += std::string("\\x") + digits[values[i] >> 4] + digits[values[i] & 15];
    } else {
      text += (i == 0 ? "" : ", ") + std::to_string(values[i]);
    }
  }
  return text + (isBytes ? "\" " : "] ");
}

}  // namespace

KALDEX_Array parsed(const std::string& text) {
  KALDEX_Array message;
  if (!google::protobuf::TextFormat::ParseFromString(text, &message)) {
    throw std::invalid_argument(text);
  }
  return message;
}

SharedMessage shared(const std::string& text) {
  return boost::make_shared<KALDEX_Array>(parsed(text));
}

std::string ofType(QXType type, const std::string& payload) {
  constexpr int kFirstPayload = KALDEX_Array::kUint8FieldNumber;
  const auto* field = KALDEX_Array::descriptor()->FindFieldByNumber(kFirstPayload + type);
  return "type: " + KALDEX_Array::QXType_Name(type) + " " + field->name() + " { " +
         payload + "}";
}

std::string elements(QXType type, const std::vector<int>& values) {
  return list(type, "elements", values);
}

std::string imagElements(QXType type, const std::vector<int>& values) {
  return list(type, "imag_elements", values);
}

UniqueHandle handleOf(const std::string& text) {
  return handleOver(shared(text), MessageUse::kShare);
}

}  // namespace orb::test
