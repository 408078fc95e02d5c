// SPDX-License-Identifier: MIT
#include "client/model/compare.h"

#include <cstring>
#include <sstream>
#include <string_view>

namespace orb::model {
namespace {

template <class Value>
std::string textOf(const Value& value) {
  std::ostringstream text;
  text.precision(17);
  text << +value;
  return text.str();
}

std::string textOf(const char* value) {
  return value == nullptr ? "NULL" : '"' + std::string(value) + '"';
}

bool isSame(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) return a == b;
  return std::string_view(a) == b;
}

bool isSame(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

template <class Value>
bool isSame(const Value& a, const Value& b) {
  return a == b;
}

/// Reads one pair of arrays and keeps the first difference.
class Comparison {
 public:
  Comparison(orbArray library, Array* model, Tally& tally)
      : library_(library), model_(model), tally_(tally) {}

  void readShape();
  void readClass();
  void readValues();
  void readContainer();
  void readElements();

  const Difference& found() const { return found_; }

 private:
  template <class Value>
  void check(Function function, const Value& library, const Value& model) {
    tally_.add(function, library != Value{});
    if (!isSame(library, model)) differ(function, textOf(library), textOf(model));
  }

  /// The lengths of the lists are the model's: the interface does not tell them.
  void checkList(Function function, const void* library, const void* model, size_t bytes);

  /// Owns both handles of one element.
  void checkElement(const std::string& path, orbArray library, Array* model);

  void differ(Function function, const std::string& library, const std::string& model) {
    if (!found_) {
      found_ =
          std::string(nameOf(function)) + " gives " + library + ", expected " + model;
    }
  }

  orbArray library_;
  Array* model_;
  Tally& tally_;
  Difference found_;
};

void Comparison::checkList(Function function, const void* library, const void* model,
                           size_t bytes) {
  tally_.add(function, library != nullptr);
  if ((library == nullptr) != (model == nullptr)) {
    differ(function, library == nullptr ? "null" : "a list",
           model == nullptr ? "null" : "a list");
  } else if (library != nullptr && std::memcmp(library, model, bytes) != 0) {
    const auto* actual = static_cast<const unsigned char*>(library);
    const auto* expected = static_cast<const unsigned char*>(model);
    size_t i = 0;
    while (actual[i] == expected[i]) ++i;
    differ(function, "byte " + textOf(i) + " = " + textOf(actual[i]),
           textOf(expected[i]));
  }
}

void Comparison::readShape() {
  using F = Function;
  const size_t ndim = orbGetNumberOfDimensions(model_);
  check(F::orbGetNumberOfDimensions, orbGetNumberOfDimensions(library_), ndim);
  if (found_) return;
  checkList(F::orbGetDimensions, orbGetDimensions(library_), orbGetDimensions(model_),
            ndim * sizeof(size_t));
  check(F::orbGetNumberOfElements, orbGetNumberOfElements(library_),
        orbGetNumberOfElements(model_));
  check(F::orbGetM, orbGetM(library_), orbGetM(model_));
  check(F::orbGetN, orbGetN(library_), orbGetN(model_));
  check(F::orbIsEmpty, orbIsEmpty(library_), orbIsEmpty(model_));
}

void Comparison::readClass() {
  using F = Function;
  check<int>(F::orbGetClassID, orbGetClassID(library_), orbGetClassID(model_));
  check(F::orbGetClassName, orbGetClassName(library_), orbGetClassName(model_));
  check(F::orbGetElementSize, orbGetElementSize(library_), orbGetElementSize(model_));
  check(F::orbIsComplex, orbIsComplex(library_), orbIsComplex(model_));
  check(F::orbIsDouble, orbIsDouble(library_), orbIsDouble(model_));
  check(F::orbIsSingle, orbIsSingle(library_), orbIsSingle(model_));
  check(F::orbIsInt8, orbIsInt8(library_), orbIsInt8(model_));
  check(F::orbIsUint8, orbIsUint8(library_), orbIsUint8(model_));
  check(F::orbIsInt16, orbIsInt16(library_), orbIsInt16(model_));
  check(F::orbIsUint16, orbIsUint16(library_), orbIsUint16(model_));
  check(F::orbIsInt32, orbIsInt32(library_), orbIsInt32(model_));
  check(F::orbIsUint32, orbIsUint32(library_), orbIsUint32(model_));
  check(F::orbIsInt64, orbIsInt64(library_), orbIsInt64(model_));
  check(F::orbIsUint64, orbIsUint64(library_), orbIsUint64(model_));
  check(F::orbIsNumeric, orbIsNumeric(library_), orbIsNumeric(model_));
  check(F::orbIsLogical, orbIsLogical(library_), orbIsLogical(model_));
  check(F::orbIsChar, orbIsChar(library_), orbIsChar(model_));
  check(F::orbIsStruct, orbIsStruct(library_), orbIsStruct(model_));
  check(F::orbIsCell, orbIsCell(library_), orbIsCell(model_));
  check(F::orbIsSparse, orbIsSparse(library_), orbIsSparse(model_));
}

void Comparison::readValues() {
  using F = Function;
  const size_t real = realPart(*model_).size();
  const size_t imag = imagPart(*model_).size();
  checkList(F::orbGetPr, orbGetPr(library_), orbGetPr(model_), real);
  checkList(F::orbGetPi, orbGetPi(library_), orbGetPi(model_), imag);
  checkList(F::orbGetData, orbGetData(library_), orbGetData(model_), real);
  checkList(F::orbGetImagData, orbGetImagData(library_), orbGetImagData(model_), imag);
  checkList(F::orbGetChars, orbGetChars(library_), orbGetChars(model_), real);
  checkList(F::orbGetLogicals, orbGetLogicals(library_), orbGetLogicals(model_), real);
  check(F::orbGetScalar, orbGetScalar(library_), orbGetScalar(model_));
  check(F::orbIsLogicalScalar, orbIsLogicalScalar(library_), orbIsLogicalScalar(model_));
  check(F::orbIsLogicalScalarTrue, orbIsLogicalScalarTrue(library_),
        orbIsLogicalScalarTrue(model_));
  checkList(F::orbGetIr, orbGetIr(library_), orbGetIr(model_),
            model_->message->ir.size() * sizeof(size_t));
  checkList(F::orbGetJc, orbGetJc(library_), orbGetJc(model_),
            model_->message->jc.size() * sizeof(size_t));
}

void Comparison::readContainer() {
  using F = Function;
  const size_t nzmax = orbGetNzmax(library_);
  tally_.add(F::orbGetNzmax, nzmax != SIZE_MAX);
  if (nzmax != orbGetNzmax(model_)) {
    differ(F::orbGetNzmax, textOf(nzmax), textOf(orbGetNzmax(model_)));
  }
  const int fields = orbGetNumberOfFields(model_);
  check(F::orbGetNumberOfFields, orbGetNumberOfFields(library_), fields);
  for (int n = 0; n < fields; ++n) {
    check(F::orbGetFieldNameByNumber, orbGetFieldNameByNumber(library_, n),
          orbGetFieldNameByNumber(model_, n));
  }
}

void Comparison::readElements() {
  const size_t fields = model_->message->fieldNames.size();
  for (size_t slot = 0; slot < model_->elements.size() && !found_; ++slot) {
    if (orbIsCell(model_)) {
      checkElement("cell " + textOf(slot), orbGetCell(library_, slot),
                   orbGetCell(model_, slot));
    } else if (fields != 0) {
      const size_t index = slot / fields;
      const char* name = model_->message->fieldNames[slot % fields].c_str();
      checkElement("element " + textOf(index) + ", field " + textOf(name),
                   orbGetField(library_, index, name), orbGetField(model_, index, name));
    }
  }
}

void Comparison::checkElement(const std::string& path, orbArray library, Array* model) {
  if ((library == nullptr) != (model == nullptr)) {
    found_ = path + (library == nullptr ? " is missing" : " is there, expected none");
  } else if (library != nullptr) {
    const Difference inside = difference(library, model, Depth::kElements, tally_);
    if (inside) found_ = path + ": " + *inside;
  }
  orbDestroyArray(library);
  orbDestroyArray(model);
}

}  // namespace

Difference difference(orbArray library, Array* model, Depth depth, Tally& tally) {
  Comparison comparison(library, model, tally);
  comparison.readClass();
  comparison.readShape();
  // Lists are read to the model's lengths only when both arrays are alike so far.
  if (!comparison.found()) comparison.readContainer();
  if (!comparison.found()) comparison.readValues();
  if (!comparison.found() && depth == Depth::kElements) comparison.readElements();
  return comparison.found();
}

}  // namespace orb::model
