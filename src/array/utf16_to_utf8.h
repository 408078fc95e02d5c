// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_UTF16_TO_UTF8_H_
#define ORB_ARRAY_UTF16_TO_UTF8_H_

#include <cstddef>

namespace orb {

/// Converts code units to NUL-terminated UTF-8 in memory from malloc(). A surrogate, high
/// or low, is combined with whatever unit follows it. Null for no units, and when the
/// result cannot be shrunk to its size. Throws std::runtime_error, "Invalid UTF-16 data"
/// when the last unit is a surrogate, "Trouble resizing UTF-8 data." when memory ends.
char* utf16ToUtf8(const char16_t* units, size_t count);

}  // namespace orb

#endif  // ORB_ARRAY_UTF16_TO_UTF8_H_
