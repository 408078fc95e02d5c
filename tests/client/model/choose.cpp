// SPDX-License-Identifier: MIT
#include "client/model/choose.h"

#include <algorithm>
#include <climits>

namespace orb::model {
namespace {

constexpr size_t kMostValues = 2048;
constexpr size_t kMostColumns = 40000;  // of a sparse array
constexpr size_t kMostSlots = 48;

// 2 to the 42nd, its successor and 2 to the 62nd: a call with them either is refused or
// makes nothing, for two of them may multiply to 0 modulo 2 to the 64th. Were it not
// refused, it would ask for more memory than there can be, and fail at once.
constexpr size_t kHugeExtents[] = {kHuge, kHuge + 1, size_t{1} << 62};

template <class Item, size_t n>
const Item& oneOf(Random& random, const Item (&items)[n]) {
  return items[random.below(n)];
}

}  // namespace

bool isAffordable(const std::vector<size_t>& dimensions) {
  const size_t count = product(dimensions);
  return count <= kMostValues || count > kMaxElements;
}

bool isAffordable(const std::vector<size_t>& dimensions, size_t slotsPerElement) {
  return product(dimensions) * slotsPerElement <= kMostSlots;
}

bool isAffordable(const Array& a, const std::vector<size_t>& dimensions) {
  if (product(dimensions) > kMaxElements) return true;
  if (orbIsSparse(&a)) {
    return dimensions[1] <= kMostColumns || dimensions[1] >= kMaxElements;
  }
  if (orbIsStruct(&a)) return isAffordable(dimensions, a.message->fieldNames.size());
  return orbIsCell(&a) ? isAffordable(dimensions, 1) : isAffordable(dimensions);
}

bool Chooser::hasArrays() const {
  for (size_t i = 0; i < kVariables; ++i) {
    if (model_.at({i}) != nullptr) return true;
  }
  return false;
}

Variable Chooser::result() {
  const size_t start = random_.below(kVariables);
  for (size_t i = 0; i < kVariables; ++i) {
    const Variable variable{(start + i) % kVariables};
    if (model_.at(variable) == nullptr) return variable;
  }
  return {start};
}

std::optional<Variable> Chooser::find(const std::function<bool(const Array*)>& fits) {
  const size_t start = random_.below(kVariables);
  for (size_t i = 0; i < kVariables; ++i) {
    const Variable variable{(start + i) % kVariables};
    if (model_.at(variable) != nullptr && fits(model_.at(variable))) return variable;
  }
  return std::nullopt;
}

Variable Chooser::array(const std::function<bool(const Array*)>& fits) {
  const bool wrong = random_.chance(8);
  const auto fitsAndIsShared = [&fits](const Array* a) {
    return fits(a) && a->message.use_count() > 1;
  };
  std::optional<Variable> chosen;
  if (!wrong && random_.chance(30)) chosen = find(fitsAndIsShared);
  if (!wrong && !chosen) chosen = find(fits);
  return chosen ? *chosen : anyArray();
}

Variable Chooser::anyArray() {
  return find([](const Array*) { return true; }).value_or(Variable{0});
}

size_t Chooser::extent() {
  const size_t kind = random_.below(100);
  if (kind < 10) return 0;
  if (kind < 35) return 1;
  if (kind < 85) return 2 + random_.below(3);
  if (kind < 94) return 5 + random_.below(5);
  if (kind < 98) return 10 + random_.below(40);
  return oneOf(random_, kHugeExtents);
}

std::vector<size_t> Chooser::dimensions() {
  const size_t kind = random_.below(100);
  const size_t ndim = kind < 5 ? 0 : kind < 15 ? 1 : kind < 70 ? 2 : kind < 95 ? 3 : 4;
  std::vector<size_t> chosen;
  for (size_t i = 0; i < ndim; ++i) chosen.push_back(extent());
  return chosen;
}

size_t Chooser::index(Variable container) {
  const size_t wrong[] = {kHuge, SIZE_MAX, 0, 1};
  const Array* a = at(container);
  if (a == nullptr) return 0;
  const size_t count = orbGetNumberOfElements(a);
  if (random_.chance(5)) return count;
  if (random_.chance(5)) return oneOf(random_, wrong);
  // Few different elements, so that several handles often share one.
  return count == 0 ? 0 : random_.below(std::min<size_t>(count, 2));
}

std::vector<size_t> Chooser::subscripts(Variable array) {
  std::vector<size_t> chosen;
  const Array* a = at(array);
  const size_t known = a == nullptr ? 0 : orbGetNumberOfDimensions(a);
  const size_t nsubs = random_.below(known + 2);
  for (size_t i = 0; i < nsubs; ++i) chosen.push_back(random_.below(9));
  if (nsubs != 0 && random_.chance(5)) chosen.back() = SIZE_MAX;
  return chosen;
}

size_t Chooser::capacity(size_t elements) {
  const size_t corners[] = {0, elements, elements + 1, kHuge, SIZE_MAX};
  if (random_.chance(20)) return oneOf(random_, corners);
  return random_.below(elements < 30 ? elements + 1 : 30);
}

orbClassID Chooser::numericClass() {
  const int wrong[] = {-1, INT_MIN, 10, 11, 12, 13, 14, INT_MAX};
  const orbClassID narrow[] = {orbUINT16_CLASS, orbINT16_CLASS};
  if (random_.chance(5)) return static_cast<orbClassID>(oneOf(random_, wrong));
  if (random_.chance(40)) return oneOf(random_, narrow);
  return static_cast<orbClassID>(random_.below(10));
}

orbComplexity Chooser::complexity() {
  const int other[] = {0, 2, -1};
  if (random_.chance(50)) return orbCOMPLEX;
  return static_cast<orbComplexity>(oneOf(random_, other));
}

std::string Chooser::text() {
  std::string chosen;
  const size_t length = random_.chance(10) ? random_.below(60) : random_.below(7);
  const bool ascii = random_.chance(60);
  for (size_t i = 0; i < length; ++i) {
    const size_t byte = ascii ? ' ' + random_.below(95) : 1 + random_.below(255);
    chosen += static_cast<char>(static_cast<unsigned char>(byte));
  }
  return chosen;
}

std::vector<std::string> Chooser::texts(size_t most) {
  std::vector<std::string> chosen(random_.below(most + 1));
  for (std::string& one : chosen) one = text();
  return chosen;
}

std::vector<std::string> Chooser::fieldNames() {
  const char* const names[] = {"a", "b", "c", "A", "", "a name that is not short"};
  std::vector<std::string> chosen(random_.below(4));
  for (std::string& one : chosen) one = oneOf(random_, names);
  return chosen;
}

std::optional<std::string> Chooser::fieldName(Variable structure) {
  const char* const names[] = {"a", "b", "c", "d", "A", "", "a name that is not short"};
  if (random_.chance(4)) return std::nullopt;
  const Array* a = at(structure);
  const int fields = a == nullptr ? 0 : orbGetNumberOfFields(a);
  if (fields == 0 || random_.chance(15)) return oneOf(random_, names);
  return a->message->fieldNames[random_.below(static_cast<size_t>(fields))];
}

int Chooser::fieldNumber(Variable structure) {
  const Array* a = at(structure);
  const int fields = a == nullptr ? 0 : orbGetNumberOfFields(a);
  const int wrong[] = {-1, fields, INT_MIN, INT_MAX};
  if (fields == 0 || random_.chance(8)) return oneOf(random_, wrong);
  return static_cast<int>(random_.below(static_cast<size_t>(fields)));
}

}  // namespace orb::model
