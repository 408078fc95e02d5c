// SPDX-License-Identifier: MIT
#include <algorithm>
#include <utility>

#include "client/transport/samples.h"
#include "support/wire.h"
#include "torture/allocations/describe.h"
#include "torture/allocations/receiver.h"
#include "torture/allocations/scenario.h"

namespace orb::torture {
namespace {

using test::Array;
using Make = std::function<Array()>;

/// What a function gave; which member, depends on the function.
struct Result {
  orbArray handle = nullptr;
  const void* pointer = nullptr;
  double number = 0;
  char* text = nullptr;  // to be freed
  char buffer[16] = "";
};

/// What a failed call leaves.
enum class Left {
  kAll,
  kElements,  // the extents may have changed
  kAnything
};

struct Function {
  const char* name;
  Promise promise;
  std::vector<std::string> failures;
  Left left;
  void (*call)(orbArray a, orbArray value, Result& result);
};

const std::size_t kLargerExtents[] = {3, 40};
const std::size_t kFirst[] = {0, 0};

#define ORB_ROW(name, promise, failures, left, expression)               \
  {                                                                      \
#name, promise, failures, left,                                      \
        []([[maybe_unused]] orbArray a, [[maybe_unused]] orbArray value, \
           [[maybe_unused]] Result & result) { expression; }             \
  }
#define ORB_NUMBER(name)                              \
  ORB_ROW(name, Promise::kNeverFails, {}, Left::kAll, \
          result.number = static_cast<double>(name(a)))
#define ORB_POINTER(name, promise) \
  ORB_ROW(name, promise, {}, Left::kAll, result.pointer = name(a))
#define ORB_HANDLE(name, expression) \
  ORB_ROW(name, Promise::kThrows, {}, Left::kAll, result.handle = expression)

using Failures = std::vector<std::string>;

const Function kFunctions[] = {
    ORB_NUMBER(orbGetClassID),
    ORB_NUMBER(orbIsComplex),
    ORB_NUMBER(orbGetElementSize),
    ORB_NUMBER(orbGetNumberOfDimensions),
    ORB_NUMBER(orbGetNumberOfElements),
    ORB_NUMBER(orbGetM),
    ORB_NUMBER(orbGetN),
    ORB_NUMBER(orbGetNumberOfFields),
    ORB_NUMBER(orbGetNzmax),
    ORB_NUMBER(orbIsDouble),
    ORB_NUMBER(orbIsSingle),
    ORB_NUMBER(orbIsInt8),
    ORB_NUMBER(orbIsUint8),
    ORB_NUMBER(orbIsInt16),
    ORB_NUMBER(orbIsUint16),
    ORB_NUMBER(orbIsInt32),
    ORB_NUMBER(orbIsUint32),
    ORB_NUMBER(orbIsInt64),
    ORB_NUMBER(orbIsUint64),
    ORB_NUMBER(orbIsNumeric),
    ORB_NUMBER(orbIsLogical),
    ORB_NUMBER(orbIsChar),
    ORB_NUMBER(orbIsStruct),
    ORB_NUMBER(orbIsCell),
    ORB_NUMBER(orbIsSparse),
    ORB_NUMBER(orbIsLogicalScalar),
    ORB_NUMBER(orbIsLogicalScalarTrue),
    ORB_NUMBER(orbIsEmpty),
    ORB_POINTER(orbGetClassName, Promise::kNeverFails),
    ORB_POINTER(orbGetDimensions, Promise::kNeverFails),
    ORB_POINTER(orbGetChars, Promise::kNeverFails),
    ORB_POINTER(orbGetPr, Promise::kThrows),
    ORB_POINTER(orbGetPi, Promise::kThrows),
    ORB_POINTER(orbGetData, Promise::kThrows),
    ORB_POINTER(orbGetImagData, Promise::kThrows),
    ORB_POINTER(orbGetLogicals, Promise::kThrows),
    ORB_POINTER(orbGetIr, Promise::kThrows),
    ORB_POINTER(orbGetJc, Promise::kThrows),
    ORB_ROW(orbGetScalar, Promise::kThrows, {}, Left::kAll,
            result.number = orbGetScalar(a)),
    ORB_ROW(orbCalcSingleSubscript, Promise::kNeverFails, {}, Left::kAll,
            result.number = static_cast<double>(orbCalcSingleSubscript(a, 2, kFirst))),
    ORB_ROW(orbIsClass, Promise::kNeverFails, {}, Left::kAll,
            result.number = orbIsClass(a, "double")),
    ORB_ROW(orbGetString, Promise::kNeverFails, {}, Left::kAll,
            result.number = orbGetString(a, result.buffer, sizeof result.buffer)),
    ORB_ROW(orbArrayToString, Promise::kReturns, Failures{"null 0"}, Left::kAll,
            result.text = orbArrayToString(a)),
    ORB_ROW(orbFree, Promise::kNeverFails, {}, Left::kAll,
            orbFree(std::exchange(result.text, nullptr))),
    ORB_ROW(orbGetFieldNameByNumber, Promise::kNeverFails, {}, Left::kAll,
            result.pointer = orbGetFieldNameByNumber(a, 1)),
    ORB_ROW(orbGetFieldNumber, Promise::kNeverFails, {}, Left::kAll,
            result.number = orbGetFieldNumber(a, "y")),
    ORB_HANDLE(orbDuplicateArray, orbDuplicateArray(a)),
    ORB_ROW(orbDestroyArray, Promise::kNeverFails, {}, Left::kAll,
            orbDestroyArray(std::exchange(result.handle, nullptr))),
    ORB_HANDLE(orbGetField, orbGetField(a, 0, "y")),
    ORB_HANDLE(orbGetFieldByNumber, orbGetFieldByNumber(a, 1, 0)),
    ORB_HANDLE(orbGetCell, orbGetCell(a, 1)),
    ORB_ROW(orbSetField, Promise::kThrows, {}, Left::kAll, orbSetField(a, 0, "y", value)),
    ORB_ROW(orbSetFieldByNumber, Promise::kThrows, {}, Left::kAll,
            orbSetFieldByNumber(a, 1, 0, value)),
    ORB_ROW(orbSetCell, Promise::kThrows, {}, Left::kAll, orbSetCell(a, 1, value)),
    ORB_ROW(orbAddField, Promise::kReturns, Failures{"null -1"}, Left::kAll,
            result.number = orbAddField(a, "a name too long to be held in place")),
    ORB_ROW(orbRemoveField, Promise::kThrows, {}, Left::kAll, orbRemoveField(a, 0)),
    ORB_ROW(orbSetNzmax, Promise::kThrows, {}, Left::kAll, orbSetNzmax(a, 5)),
    ORB_ROW(orbSetM, Promise::kThrows, {}, Left::kElements, orbSetM(a, 40)),
    ORB_ROW(orbSetN, Promise::kThrows, {}, Left::kElements, orbSetN(a, 40)),
    ORB_ROW(orbSetDimensions, Promise::kReturns, Failures{"null 1"}, Left::kAnything,
            result.number = orbSetDimensions(a, kLargerExtents, 2)),
};

#undef ORB_HANDLE
#undef ORB_POINTER
#undef ORB_NUMBER
#undef ORB_ROW

/// A function and an array.
class Call : public Situation {
 public:
  Call(const Function& function, Array a, Array value)
      : function_(function),
        a_(std::move(a)),
        value_(std::move(value)),
        elements_(elementsOf(a_)) {
    refill();
  }
  ~Call() override { clear(); }

  void act() override {
    if (hasActed_) refill();
    hasActed_ = true;
    function_.call(a_, value_, result_);
  }

  std::string outcome() override {
    std::string text = "null";
    if (result_.handle != nullptr) text = describe(result_.handle);
    if (result_.pointer != nullptr) text = "an address";
    if (result_.text != nullptr) text = result_.text;
    const auto number = static_cast<long long>(result_.number);
    return text + " " + std::to_string(number) + result_.buffer;
  }

  std::string kept() override {
    const std::string value = " from " + whole(value_);
    switch (function_.left) {
      case Left::kAll:
        return state();
      case Left::kElements:
        return describeElements(a_, elements_) + value;
      case Left::kAnything:
        break;
    }
    return value;
  }

  std::string state() override { return whole(a_) + " from " + whole(value_); }

 private:
  /// The array as a copy has it: reading might mend what a copy, or a call, would meet.
  static std::string whole(orbArray a) { return describe(Array(orbDuplicateArray(a))); }

  /// A received struct or cell may hold fewer than its extents say.
  static std::size_t elementsOf(orbArray a) {
    const Array copy(orbDuplicateArray(a));
    const bool isBare = describeElements(copy, 1).find("{null}") != std::string::npos;
    return isBare ? 0 : orbGetNumberOfElements(a);
  }

  void clear() {
    orbDestroyArray(result_.handle);
    orbFree(result_.text);
    result_ = {};
  }

  /// For the functions that release what others gave.
  void refill() {
    clear();
    const std::string name = function_.name;
    if (name == "orbDestroyArray") result_.handle = orbDuplicateArray(a_);
    if (name == "orbFree") result_.text = orbArrayToString(a_);
  }

  const Function& function_;
  const Array a_;
  const Array value_;
  const std::size_t elements_;
  bool hasActed_ = false;
  Result result_;
};

struct Source {
  std::string name;
  Make make;
};

std::vector<Source> sources() {
  std::vector<Source> result;
  for (const test::Sample& sample : test::samples()) {
    result.push_back({sample.name, sample.make});
    const std::string message = sample.message();
    result.push_back({"received " + sample.name, [message] { return receive(message); }});
    const std::string bare =
        test::wire::type(sample.type) + test::wire::dimensions(sample.extents);
    result.push_back({"received " + sample.name + " without elements",
                      [bare] { return receive(bare); }});
  }
  for (const orbClassID id : {orbUINT8_CLASS, orbINT16_CLASS, orbDOUBLE_CLASS}) {
    result.push_back({"empty of class " + std::to_string(id),
                      [id] { return Array(orbCreateNumericMatrix(0, 0, id, orbREAL)); }});
  }
  result.push_back({"empty logical", [] { return Array(orbCreateLogicalMatrix(0, 3)); }});
  result.push_back({"empty text", [] { return Array(orbCreateString("")); }});
  result.push_back({"empty cell", [] { return Array(orbCreateCellMatrix(0, 3)); }});
  return result;
}

/// What is stored into structs and cells.
Array makeValue() {
  return test::cellRow(test::charRow(u"some text that takes memory"),
                       test::doubleRow({1, 2, 3}));
}

}  // namespace

void addArrayScenarios(Scenarios& all) {
  for (const Function& function : kFunctions) {
    for (const Source& source : sources()) {
      all.push_back({function.name, "of " + source.name, function.promise,
                     function.failures, [&function, make = source.make] {
                       return std::make_unique<Call>(function, make(), makeValue());
                     }});
    }
  }
}

}  // namespace orb::torture
