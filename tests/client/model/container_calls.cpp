// SPDX-License-Identifier: MIT
// Random calls of the functions on structs, cells and sparse arrays.
#include "client/model/call.h"

namespace orb::model {
namespace {

constexpr size_t kMaxCapacity = 2048;

Verdict effectiveIf(bool condition) {
  return condition ? Verdict::kEffective : Verdict::kWithoutEffect;
}

/// Judges storing `value` where `reaches` says whether there is such a place.
template <class Reaches>
auto judgeStore(Variable a, Variable value, Reaches reaches) {
  return [=](const ModelWorld& model) {
    const size_t total = weight(*model.at(a)) + weight(*model.at(value));
    return total > kMaxWeight ? Verdict::kTooLarge : effectiveIf(reaches(*model.at(a)));
  };
}

bool hasElement(const Array& a, size_t index) {
  return index < orbGetNumberOfElements(&a);
}

Operation getFieldNameByNumber(Chooser& choose) {
  const Variable a = choose.array(orbIsStruct);
  return query(ORB_MODEL_BOTH(orbGetFieldNameByNumber), a, choose.fieldNumber(a));
}

Operation getFieldNumber(Chooser& choose) {
  const Variable a = choose.array(orbIsStruct);
  return query(ORB_MODEL_BOTH(orbGetFieldNumber), a, choose.fieldName(a));
}

Operation getField(Chooser& choose) {
  const Variable a = choose.array(orbIsStruct);
  const size_t index = choose.index(a);
  return creation(choose, ORB_MODEL_BOTH(orbGetField), a, index, choose.fieldName(a));
}

Operation getFieldByNumber(Chooser& choose) {
  const Variable a = choose.array(orbIsStruct);
  const size_t index = choose.index(a);
  return creation(choose, ORB_MODEL_BOTH(orbGetFieldByNumber), a, index,
                  choose.fieldNumber(a));
}

Operation setField(Chooser& choose) {
  const Variable a = choose.array(orbIsStruct);
  const Variable value = choose.anyArray();
  const size_t index = choose.index(a);
  const std::optional<std::string> name = choose.fieldName(a);
  const auto judge = judgeStore(a, value, [index, name](const Array& into) {
    return name && orbGetFieldNumber(&into, name->c_str()) >= 0 &&
           hasElement(into, index);
  });
  return judgedCall(ORB_MODEL_BOTH(orbSetField), judge, a, index, name, value);
}

Operation setFieldByNumber(Chooser& choose) {
  const Variable a = choose.array(orbIsStruct);
  const Variable value = choose.anyArray();
  const size_t index = choose.index(a);
  const int n = choose.fieldNumber(a);
  const auto judge = judgeStore(a, value, [index, n](const Array& into) {
    return orbGetFieldNameByNumber(&into, n) != nullptr && hasElement(into, index);
  });
  return judgedCall(ORB_MODEL_BOTH(orbSetFieldByNumber), judge, a, index, n, value);
}

Operation addField(Chooser& choose) {
  const Variable a = choose.array(orbIsStruct);
  const auto judge = [a](const ModelWorld& model) {
    // After a refused resize the extents may stand for any number of elements.
    const size_t count = orbGetNumberOfElements(model.at(a));
    const bool large = model.at(a)->elements.size() + count > kMaxWeight;
    return large ? Verdict::kTooLarge : Verdict::kEffective;
  };
  return judgedCall(ORB_MODEL_BOTH(orbAddField), judge, a, choose.fieldName(a));
}

Operation removeField(Chooser& choose) {
  const Variable a = choose.array(orbIsStruct);
  const int n = choose.fieldNumber(a);
  const auto judge = [a, n](const ModelWorld& model) {
    return effectiveIf(orbGetFieldNameByNumber(model.at(a), n) != nullptr);
  };
  return judgedCall(ORB_MODEL_BOTH(orbRemoveField), judge, a, n);
}

Operation getCell(Chooser& choose) {
  const Variable a = choose.array(orbIsCell);
  return creation(choose, ORB_MODEL_BOTH(orbGetCell), a, choose.index(a));
}

Operation setCell(Chooser& choose) {
  const Variable a = choose.array(orbIsCell);
  const Variable value = choose.anyArray();
  const size_t index = choose.index(a);
  const auto judge = judgeStore(a, value, [index](const Array& into) {
    return orbIsCell(&into) && hasElement(into, index);
  });
  return judgedCall(ORB_MODEL_BOTH(orbSetCell), judge, a, index, value);
}

Operation setNzmax(Chooser& choose) {
  const Variable a = choose.array(orbIsSparse);
  const Array* chosen = choose.at(a);
  const size_t nzmax =
      choose.capacity(chosen == nullptr ? 0 : orbGetNumberOfElements(chosen));
  const auto judge = [a, nzmax](const ModelWorld& model) {
    if (nzmax > kMaxCapacity && nzmax <= kMaxElements) return Verdict::kTooLarge;
    return effectiveIf(orbIsSparse(model.at(a)) &&
                       nzmax <= orbGetNumberOfElements(model.at(a)));
  };
  return judgedCall(ORB_MODEL_BOTH(orbSetNzmax), judge, a, nzmax);
}

}  // namespace

const std::vector<Kind>& containerKinds() {
  static const std::vector<Kind> kinds = {{2, getFieldNameByNumber},
                                          {3, getFieldNumber},
                                          {7, getField},
                                          {6, getFieldByNumber},
                                          {9, setField},
                                          {7, setFieldByNumber},
                                          {6, addField},
                                          {5, removeField},
                                          {12, getCell},
                                          {14, setCell},
                                          {4, setNzmax}};
  return kinds;
}

}  // namespace orb::model
