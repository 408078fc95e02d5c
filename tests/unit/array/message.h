// SPDX-License-Identifier: MIT
// Messages written as text, and the types that tables run over.
#ifndef ORB_TESTS_UNIT_ARRAY_MESSAGE_H_
#define ORB_TESTS_UNIT_ARRAY_MESSAGE_H_

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "array/handle.h"
#include "array/kaldex_array_proxy.h"

namespace orb::test {

inline constexpr QXType kNumericTypes[] = {
    KALDEX_Array::UINT8,  KALDEX_Array::INT8,   KALDEX_Array::UINT16, KALDEX_Array::INT16,
    KALDEX_Array::UINT32, KALDEX_Array::INT32,  KALDEX_Array::UINT64, KALDEX_Array::INT64,
    KALDEX_Array::SINGLE, KALDEX_Array::DOUBLE,
};

/// Numbers that a server may send and no array can have.
inline constexpr QXType kRefusedTypes[] = {
    KALDEX_Array::OBJECT,    KALDEX_Array::HANDLE_OBJECT_REF,
    KALDEX_Array::ARRAYREF,  KALDEX_Array::ENUMERATION,
    KALDEX_Array::STRING,    static_cast<QXType>(100),
    static_cast<QXType>(-1),
};

/// What every never-set cell and field reads as.
inline constexpr char kEmptySlot[] = "type: DOUBLE dimension: [0, 0]";

/// A message from its text, such as "type: DOUBLE qxdouble { elements: [1, 2] }".
KALDEX_Array parsed(const std::string& text);
SharedMessage shared(const std::string& text);

/// The text of a message of a type up to CELL, with this content in its payload field.
std::string ofType(QXType type, const std::string& payload);

/// The text of one list of a payload; byte strings are written for the 8-bit types.
std::string elements(QXType type, const std::vector<int>& values);
std::string imagElements(QXType type, const std::vector<int>& values);

/// A handle whose proxy views the message as the library would.
UniqueHandle handleOf(const std::string& text);

/// Holds for a message with exactly the fields of a text, present and empty ones too.
MATCHER_P(IsMessage, text, std::string("is ") + text) {
  return arg.SerializeAsString() == parsed(text).SerializeAsString();
}

}  // namespace orb::test

#endif  // ORB_TESTS_UNIT_ARRAY_MESSAGE_H_
