// SPDX-License-Identifier: MIT
// Owning handles and small builders for tests that see arrays as a client does.
#ifndef ORB_TESTS_SUPPORT_ARRAY_H_
#define ORB_TESTS_SUPPORT_ARRAY_H_

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "orb/qxorbclient.h"

namespace orb::test {

/// Owns one handle, or none, and destroys it. Converts to the handle, so that the
/// exported functions take it as it is.
class Array {
 public:
  explicit Array(orbArray handle = nullptr) : handle_(handle) {}
  Array(Array&& other) noexcept : handle_(other.release()) {}
  Array& operator=(Array&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  Array(const Array&) = delete;
  Array& operator=(const Array&) = delete;
  ~Array() { orbDestroyArray(handle_); }

  operator orbArray() const { return handle_; }
  orbArray get() const { return handle_; }
  orbArray release() { return std::exchange(handle_, nullptr); }

 private:
  orbArray handle_;
};

/// A 1-by-n double array.
Array doubleRow(const std::vector<double>& values);

/// A 1-by-n char array, 0-by-0 for no units.
Array charRow(const std::u16string& units);

/// A 1-by-n cell array of the given elements, which are destroyed once stored.
template <class... Elements>
Array cellRow(Elements... elements) {
  Array cell(orbCreateCellMatrix(1, sizeof...(elements)));
  size_t index = 0;
  (orbSetCell(cell, index++, elements), ...);
  return cell;
}

/// A 1-by-1 struct array with one field per name, each reading as a 0-by-0 double array.
Array structOf(const std::vector<const char*>& names);

std::vector<size_t> dimensionsOf(orbArray a);

/// Copies the elements: bools of a logical, char16_t of a char, else T of a numeric
/// array. Empty when the array hands out no pointer.
template <class T>
std::vector<T> elementsOf(orbArray a) {
  const T* first;
  if constexpr (std::is_same_v<T, bool>) {
    first = orbGetLogicals(a);
  } else if constexpr (std::is_same_v<T, char16_t>) {
    first = orbGetChars(a);
  } else {
    first = static_cast<const T*>(orbGetData(a));
  }
  if (first == nullptr) return {};
  return std::vector<T>(first, first + orbGetNumberOfElements(a));
}

/// The code units of a char array.
std::u16string unitsOf(orbArray a);

}  // namespace orb::test

#endif  // ORB_TESTS_SUPPORT_ARRAY_H_
