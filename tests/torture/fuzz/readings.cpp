// SPDX-License-Identifier: MIT
#include "torture/fuzz/readings.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "orb/dispatch_on_QXType"
#include "support/array.h"
#include "torture/fuzz/expect.h"
#include "torture/fuzz/texts.h"

namespace orb::torture {
namespace {

using test::Array;
using Sparse = KALDEX_Array::Sparse;

uint64_t countOf(const KALDEX_Array& message) {
  uint64_t count = message.dimension_size() == 0 ? 0 : 1;
  for (const uint64_t extent : message.dimension()) count *= extent;
  return count;
}

/// The list that a client sees, from a list of numbers or a string of bytes.
template <class Native, class List>
std::vector<Native> natives(const List& list) {
  std::vector<Native> values;
  for (const auto value : list) values.push_back(static_cast<Native>(value));
  return values;
}

template <class Native>
bool isSame(const void* found, const std::vector<Native>& expected) {
  if (expected.empty()) return found == nullptr;
  return found != nullptr &&
         std::memcmp(found, expected.data(), expected.size() * sizeof(Native)) == 0;
}

bool isSame(const bool* found, const KALDEX_Array::Logical& values) {
  const auto& list = values.elements();
  return found == nullptr ? list.empty() : std::equal(list.begin(), list.end(), found);
}

/// What the class of an array makes its functions answer.
struct Facts {
  const char* className;
  bool isDouble = false;
  bool isNumeric = false;
  bool isLogical = false;
  bool isComplex = false;
  size_t elementSize;
  double scalar = 0.0;
};

void expectAnswers(orbArray a, const Facts& facts) {
  expectText(orbGetClassName(a), facts.className, "class name");
  expect(orbIsDouble(a) == facts.isDouble, "orbIsDouble");
  expect(orbIsNumeric(a) == facts.isNumeric, "orbIsNumeric");
  expect(orbIsLogical(a) == facts.isLogical, "orbIsLogical");
  expect(orbIsComplex(a) == facts.isComplex, "orbIsComplex");
  expect(orbGetElementSize(a) == facts.elementSize, "orbGetElementSize");
  const double scalar = orbGetScalar(a);
  expect(std::memcmp(&scalar, &facts.scalar, sizeof scalar) == 0, "orbGetScalar");
}

void expectNoData(orbArray a) {
  expect(orbGetPr(a) == nullptr && orbGetPi(a) == nullptr, "doubles of another class");
  expect(orbGetData(a) == nullptr && orbGetImagData(a) == nullptr,
         "numbers of another class");
}

/// Compares elements, as far as they belong to the type.
class ElementReader {
 public:
  ElementReader(orbArray a, const KALDEX_Array& message) : a_(a), message_(message) {}

  template <QXType T>
  void visit() {
    if constexpr (T == KALDEX_Array::SPARSE) {
      readSparse();
    } else if constexpr (kIsContainer<T>) {
      expectAnswers(a_, {className(T), false, false, false, false, sizeof(void*)});
      expectNoData(a_);
    } else if constexpr (T == KALDEX_Array::CHAR) {
      readChars();
    } else if constexpr (T == KALDEX_Array::LOGICAL) {
      readLogicals(message_.logical(), {"logical", false, false, true, false, 1});
    } else {
      readNumbers<T>();
    }
    if (T != KALDEX_Array::CHAR) expect(orbGetChars(a_) == nullptr, "orbGetChars");
  }

 private:
  template <QXType T>
  void readNumbers() {
    using Native = NativeElement<T>;
    const auto& payload = Payload<T>::of(message_);
    const auto real = natives<Native>(payload.elements());
    const auto imag = natives<Native>(payload.imag_elements());
    constexpr bool kIsDouble = T == KALDEX_Array::DOUBLE;
    expectAnswers(a_, {className(T), kIsDouble, true, false, !imag.empty(),
                       sizeof(Native), scalarOf(real)});
    readData(real, imag, kIsDouble);
  }

  template <class Native>
  static double scalarOf(const std::vector<Native>& values) {
    return values.empty() ? 0.0 : static_cast<double>(values.front());
  }

  template <class Native>
  void readData(const std::vector<Native>& real, const std::vector<Native>& imag,
                bool isDouble) {
    expect(isSame(orbGetData(a_), real), "orbGetData");
    expect(isSame(orbGetImagData(a_), imag), "orbGetImagData");
    const std::vector<Native> none;
    expect(isSame(orbGetPr(a_), isDouble ? real : none), "orbGetPr");
    expect(isSame(orbGetPi(a_), isDouble ? imag : none), "orbGetPi");
    expect(orbGetLogicals(a_) == nullptr, "logicals of numbers");
  }

  void readLogicals(const KALDEX_Array::Logical& values, Facts facts) {
    facts.scalar = !values.elements().empty() && values.elements(0) ? 1.0 : 0.0;
    expectAnswers(a_, facts);
    expect(isSame(orbGetLogicals(a_), values), "orbGetLogicals");
    expectNoData(a_);
  }

  void readSparse() {
    const Sparse& sparse = message_.sparse();
    if (sparse.type() == Sparse::DOUBLE) {
      const auto real = natives<double>(sparse.qxsparsedouble().elements());
      const auto imag = natives<double>(sparse.qxsparsedouble().imag_elements());
      expectAnswers(a_, {"double", true, true, false, !imag.empty(), 8, scalarOf(real)});
      readData(real, imag, true);
    } else if (sparse.type() == Sparse::LOGICAL) {
      readLogicals(sparse.logical(), {"logical", false, false, true, false, 1});
    } else {  // a kind that a server invented: its values are nobody's
      expectNoData(a_);
      expect(orbGetLogicals(a_) == nullptr, "logicals of no known kind");
    }
  }

  void readChars() {
    const auto units = natives<char16_t>(message_.qxchar().elements());
    expectAnswers(a_, {"char", false, false, false, false, 2, scalarOf(units)});
    expect(isSame(orbGetChars(a_), units), "orbGetChars");
    expectNoData(a_);
    expectTexts(a_, units, countOf(message_));
  }

  orbArray a_;
  const KALDEX_Array& message_;
};

void readShape(orbArray a, const KALDEX_Array& message) {
  const std::vector<size_t> extents(message.dimension().begin(),
                                    message.dimension().end());
  expect(orbGetNumberOfDimensions(a) == extents.size(), "orbGetNumberOfDimensions");
  expect(isSame(orbGetDimensions(a), extents), "orbGetDimensions");
  expect(orbGetNumberOfElements(a) == countOf(message), "orbGetNumberOfElements");
  expect(orbGetM(a) == (extents.empty() ? 0 : extents[0]), "orbGetM");
  expect(orbGetN(a) == (extents.size() < 2 ? 0 : extents[1]), "orbGetN");
  const bool isEmpty = extents.empty() || std::count(extents.begin(), extents.end(), 0);
  expect(orbIsEmpty(a) == isEmpty, "orbIsEmpty");

  std::vector<size_t> subscripts(extents.size() + 1);
  size_t index = 0;
  size_t stride = 1;
  for (size_t i = 0; i < extents.size(); ++i) {
    subscripts[i] = i + 2;
    index += stride * subscripts[i];
    stride *= extents[i];
  }
  expect(orbCalcSingleSubscript(a, subscripts.size(), subscripts.data()) == index,
         "orbCalcSingleSubscript");
}

void readClass(orbArray a, const KALDEX_Array& message) {
  const QXType type = message.type();
  const bool isSparse = type == KALDEX_Array::SPARSE;
  const int sparseClass = message.sparse().type() == Sparse::LOGICAL
                              ? KALDEX_Array::LOGICAL
                              : KALDEX_Array::DOUBLE;
  const int classId = isSparse ? sparseClass : type;
  expect(static_cast<int>(orbGetClassID(a)) == classId, "orbGetClassID");
  const bool isKnown = !isSparse || Sparse::SparseType_IsValid(message.sparse().type());
  expect(orbIsClass(a, orbGetClassName(a)) == isKnown, "orbIsClass");
  expect(!orbIsClass(a, "sparse"), "orbIsClass of another class");
  const std::pair<bool, QXType> predicates[] = {
      {orbIsSingle(a), KALDEX_Array::SINGLE}, {orbIsInt8(a), KALDEX_Array::INT8},
      {orbIsUint8(a), KALDEX_Array::UINT8},   {orbIsInt16(a), KALDEX_Array::INT16},
      {orbIsUint16(a), KALDEX_Array::UINT16}, {orbIsInt32(a), KALDEX_Array::INT32},
      {orbIsUint32(a), KALDEX_Array::UINT32}, {orbIsInt64(a), KALDEX_Array::INT64},
      {orbIsUint64(a), KALDEX_Array::UINT64}, {orbIsChar(a), KALDEX_Array::CHAR},
      {orbIsStruct(a), KALDEX_Array::STRUCT}, {orbIsCell(a), KALDEX_Array::CELL},
      {orbIsSparse(a), KALDEX_Array::SPARSE}};
  for (const auto& [answer, asked] : predicates) {
    expect(answer == (type == asked), KALDEX_Array::QXType_Name(asked).c_str());
  }
}

void readLogicalScalar(orbArray a, const KALDEX_Array& message) {
  const auto& extents = message.dimension();
  const bool isScalar =
      orbIsLogical(a) && extents.size() == 2 && extents[0] == 1 && extents[1] == 1;
  expect(orbIsLogicalScalar(a) == isScalar, "orbIsLogicalScalar");
  const bool* values = orbGetLogicals(a);
  expect(orbIsLogicalScalarTrue(a) == (isScalar && values != nullptr && values[0]),
         "orbIsLogicalScalarTrue");
}

void readSparseParts(orbArray a, const KALDEX_Array& message) {
  if (!orbIsSparse(a)) {
    expect(orbGetIr(a) == nullptr && orbGetJc(a) == nullptr, "indices of a full array");
    expect(orbGetNzmax(a) == SIZE_MAX, "orbGetNzmax of a full array");
    return;
  }
  expect(isSame(orbGetIr(a), natives<size_t>(message.sparse().ir())), "orbGetIr");
  expect(isSame(orbGetJc(a), natives<size_t>(message.sparse().jc())), "orbGetJc");
  expect(orbGetNzmax(a) == static_cast<size_t>(message.sparse().ir_size()),
         "orbGetNzmax");
}

/// Reads arrays down to their innermost elements, as long as there is work left.
class Walk {
 public:
  void read(orbArray a, const KALDEX_Array& message) {
    readShape(a, message);
    readClass(a, message);
    ElementReader elements(a, message);
    dispatch_on_QXType(message.type(), elements);
    readLogicalScalar(a, message);
    readSparseParts(a, message);
    readCells(a, message);
    readFields(a, message);
    if (!orbIsChar(a)) {
      char untouched = 'u';
      expect(orbGetString(a, &untouched, 1) == 1 && untouched == 'u', "orbGetString");
      expect(orbArrayToString(a) == nullptr, "orbArrayToString");
    }
  }

 private:
  /// Compares what `get` gives with the element that it has to refer to, if there is one.
  template <class Get>
  void readElement(const KALDEX_Array* expected, const Get& get) {
    try {
      const Array element(get());
      expect((element == nullptr) == (expected == nullptr), "an element");
      if (expected == nullptr) return;
      expect(isHeld(expected->type()), "an element that nobody can hold");
      if (arraysLeft_ == 0) return;
      --arraysLeft_;
      read(element, *expected);
    } catch (const std::invalid_argument& refused) {
      expectText(refused.what(), "dispatch_on_QXType", "a refused element");
      expect(expected != nullptr && !isHeld(expected->type()), "an element refused");
    }
  }

  void readCells(orbArray a, const KALDEX_Array& message) {
    const auto& elements = message.cell().elements();
    const bool isCell = message.type() == KALDEX_Array::CELL;
    for (const uint64_t i : indices(message, elements.size())) {
      const bool exists = isCell && i < countOf(message) && i < stored(elements);
      const KALDEX_Array* expected = exists ? &elements[static_cast<int>(i)] : nullptr;
      readElement(expected, [&] { return orbGetCell(a, i); });
    }
  }

  void readFields(orbArray a, const KALDEX_Array& message) {
    const bool isStruct = message.type() == KALDEX_Array::STRUCT;
    const auto& names = message.struct_().field_names();
    const int fields = isStruct ? names.size() : 0;
    expect(orbGetNumberOfFields(a) == fields, "orbGetNumberOfFields");
    expect(orbGetFieldNameByNumber(a, -1) == nullptr, "the name of field -1");
    expect(orbGetFieldNameByNumber(a, fields) == nullptr, "a name behind the last");
    expect(orbGetFieldNumber(a, nullptr) == -1, "the number of no name");
    expect(orbGetField(a, 0, nullptr) == nullptr, "a field without a name");
    for (int field = 0; field < std::min(fields, kSeveral); ++field) {
      const char* name = orbGetFieldNameByNumber(a, field);
      expectText(name, names[field].c_str(), "orbGetFieldNameByNumber");
      // The whole name is looked for: one with a NUL inside is not found.
      const auto found = std::find(names.begin(), names.end(), name);
      const int number =
          found == names.end() ? -1 : static_cast<int>(found - names.begin());
      expect(orbGetFieldNumber(a, name) == number, "orbGetFieldNumber");
      readField(a, message, field, name, number);
    }
  }

  void readField(orbArray a, const KALDEX_Array& message, int field, const char* name,
                 int number) {
    const auto& elements = message.struct_().elements();
    const auto fields = static_cast<uint64_t>(message.struct_().field_names_size());
    for (const uint64_t i : indices(message, elements.size())) {
      // Elements are int many, so an index beyond cannot have a value.
      const bool exists = number >= 0 && i < countOf(message) && i <= INT_MAX &&
                          i * fields + static_cast<uint64_t>(number) < stored(elements);
      const KALDEX_Array* expected =
          exists ? &elements[static_cast<int>(i * fields) + number] : nullptr;
      readElement(expected, [&] { return orbGetField(a, i, name); });
      // The same value: looked at no further.
      const int kept = std::exchange(arraysLeft_, 0);
      readElement(expected, [&] { return orbGetFieldByNumber(a, i, field); });
      arraysLeft_ = kept;
    }
  }

  /// The first few, and those around every end.
  static std::set<uint64_t> indices(const KALDEX_Array& message, int storedCount) {
    const uint64_t count = countOf(message);
    const auto last = static_cast<uint64_t>(storedCount);
    std::set<uint64_t> result = {last - 1, last, count - 1, count, SIZE_MAX};
    for (int i = 0; i < std::min(storedCount, kSeveral); ++i) {
      result.insert(static_cast<uint64_t>(i));
    }
    return result;
  }

  template <class List>
  static uint64_t stored(const List& list) {
    return static_cast<uint64_t>(list.size());
  }

  static constexpr int kSeveral = 4;

  int arraysLeft_ = 60;
};

}  // namespace

void expectReadings(orbArray a, const KALDEX_Array& message) { Walk().read(a, message); }

bool isHeld(QXType type) {
  return type >= KALDEX_Array::UINT8 && type <= KALDEX_Array::SPARSE;
}

}  // namespace orb::torture
