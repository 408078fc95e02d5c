// SPDX-License-Identifier: MIT
// Random calls of the functions on handles, shapes and values.
#include <algorithm>

#include "client/model/call.h"

namespace orb::model {
namespace {

bool isAny(const Array*) { return true; }

Operation destroyArray(Chooser& choose) {
  const Variable a = choose.anyArray();
  Operation operation;
  operation.text = writtenCall(Function::orbDestroyArray, a);
  operation.run = [a](const Worlds& worlds) -> Difference {
    const Verdict verdict =
        isMissing(worlds.model, a) ? Verdict::kWithoutEffect : Verdict::kEffective;
    return sameOutcome(worlds, Function::orbDestroyArray, verdict, [a](auto& world) {
      world.assign(a, nullptr);
      return "done";
    });
  };
  return operation;
}

Operation duplicateArray(Chooser& choose) {
  const Variable a = choose.array(isAny);
  const auto judge = [a](const ModelWorld& model) {
    const bool large = weight(*model.at(a)) > kMaxWeight;
    return large ? Verdict::kTooLarge : Verdict::kEffective;
  };
  return judgedCreation(choose, ORB_MODEL_BOTH(orbDuplicateArray), judge, a);
}

Operation calcSingleSubscript(Chooser& choose) {
  const Variable a = choose.anyArray();
  const std::vector<size_t> subs = choose.subscripts(a);
  return query(ORB_MODEL_BOTH(orbCalcSingleSubscript), a, subs.size(), subs);
}

/// Judges a resize to the extents that `change` makes of the present ones.
template <class Change>
auto judgeResize(Variable a, Change change) {
  return [=](const ModelWorld& model) {
    const std::vector<size_t> dimensions = change(model.at(a)->message->dimensions);
    if (!isAffordable(*model.at(a), dimensions)) return Verdict::kTooLarge;
    const bool fits = product(dimensions) <= kMaxElements;
    return fits ? Verdict::kEffective : Verdict::kWithoutEffect;
  };
}

Operation setM(Chooser& choose) {
  const Variable a = choose.array(isAny);
  const size_t m = choose.extent();
  const auto judge = judgeResize(a, [m](std::vector<size_t> dims) {
    dims[0] = m;
    return dims;
  });
  return judgedCall(ORB_MODEL_BOTH(orbSetM), judge, a, m);
}

Operation setN(Chooser& choose) {
  const Variable a = choose.array(isAny);
  const size_t n = choose.extent();
  const auto judge = judgeResize(a, [n](std::vector<size_t> dims) {
    dims[1] = n;
    return dims;
  });
  return judgedCall(ORB_MODEL_BOTH(orbSetN), judge, a, n);
}

Operation setDimensions(Chooser& choose) {
  const Variable a = choose.array(isAny);
  const std::vector<size_t> dims = choose.dimensions();
  const auto judge = [=](const ModelWorld& model) {
    if (dims.empty()) return Verdict::kWithoutEffect;
    return judgeResize(a, [&](const auto&) { return normalised(dims); })(model);
  };
  return judgedCall(ORB_MODEL_BOTH(orbSetDimensions), judge, a, dims, dims.size());
}

/// Hands the array's own list, or the start of it, back to it.
Operation setOwnDimensions(Chooser& choose) {
  const Variable a = choose.anyArray();
  const size_t most = 1 + choose.random().below(4);
  const auto start = [most](std::vector<size_t> dims) {
    dims.resize(std::min(dims.size(), most));
    return normalised(dims);
  };
  const auto judge = judgeResize(a, start);
  Operation operation;
  operation.text = "orbSetDimensions(" + written(a) + ", orbGetDimensions(" + written(a) +
                   "), <at most " + written(most) + ">)";
  operation.run = [=](const Worlds& worlds) -> Difference {
    if (isMissing(worlds.model, a)) return std::nullopt;
    const Verdict verdict = judge(worlds.model);
    if (verdict == Verdict::kTooLarge) return std::nullopt;
    const size_t ndim = std::min(orbGetNumberOfDimensions(worlds.model.at(a)), most);
    return sameOutcome(
        worlds, Function::orbSetDimensions, verdict, [a, ndim](auto& world) {
          return std::to_string(
              orbSetDimensions(world.at(a), orbGetDimensions(world.at(a)), ndim));
        });
  };
  return operation;
}

Operation getString(Chooser& choose) {
  const Variable a = choose.array(orbIsChar);
  const Array* chosen = choose.at(a);
  const size_t count = chosen == nullptr ? 0 : chosen->real.size() / 2;
  const size_t buflen = choose.random().below(count + 4);
  Operation operation;
  operation.text = writtenCall(Function::orbGetString, a, std::string("buf"), buflen);
  operation.run = [a, buflen](const Worlds& worlds) -> Difference {
    if (isMissing(worlds.model, a)) return std::nullopt;
    const Verdict verdict =
        orbIsChar(worlds.model.at(a)) ? Verdict::kEffective : Verdict::kWithoutEffect;
    return sameOutcome(worlds, Function::orbGetString, verdict, [=](auto& world) {
      std::string buffer(buflen + 1, '~');
      const int result = orbGetString(world.at(a), buffer.data(), buflen);
      return std::to_string(result) + " and " + written(buffer);
    });
  };
  return operation;
}

Operation arrayToString(Chooser& choose) {
  const Variable a = choose.array(orbIsChar);
  Operation operation;
  operation.text = writtenCall(Function::orbArrayToString, a);
  operation.run = [a](const Worlds& worlds) -> Difference {
    if (isMissing(worlds.model, a)) return std::nullopt;
    // The text may hold NULs: its length is the model's.
    const size_t length = utf8Of(*worlds.model.at(a)).value_or("").size();
    worlds.tally.add(Function::orbFree, length != 0);
    return sameOutcome(
        worlds, Function::orbArrayToString, Verdict::kEffective, [&](auto& world) {
          char* text = orbArrayToString(world.at(a));
          const std::string result =
              text == nullptr ? "null" : written(std::string(text, length + 1));
          chosen(world, ::orbFree, orbFree)(text);
          return result;
        });
  };
  return operation;
}

Operation isClass(Chooser& choose) {
  const char* const other[] = {"sparse", "Double", "numeric", "", "doubles"};
  const Variable a = choose.anyArray();
  const bool right = choose.at(a) != nullptr && choose.random().chance(70);
  const std::string name =
      right ? orbGetClassName(choose.at(a)) : other[choose.random().below(5)];
  return query(ORB_MODEL_BOTH(orbIsClass), a, name);
}

/// Which of an array's lists a pointer leads to.
enum class List { kReal, kImag, kIr, kJc };

size_t bytesOf(Array& a, List list) {
  switch (list) {
    case List::kReal:
      return realPart(a).size();
    case List::kImag:
      return imagPart(a).size();
    case List::kIr:
      return a.message->ir.size() * sizeof(size_t);
    case List::kJc:
      return a.message->jc.size() * sizeof(size_t);
  }
  return 0;
}

// Values that are recognised when they turn up in the wrong place.
void fill(void* first, size_t bytes, Random& random) {
  auto* byte = static_cast<unsigned char*>(first);
  for (size_t i = 0; i < bytes; ++i) {
    byte[i] = static_cast<unsigned char>(random.number());
  }
}

void fill(double* first, size_t bytes, Random& random) {
  for (size_t i = 0; i < bytes / sizeof *first; ++i) {
    first[i] = static_cast<double>(random.below(4001)) / 4 - 500;
  }
}

void fill(bool* first, size_t bytes, Random& random) {
  for (size_t i = 0; i < bytes; ++i) first[i] = random.chance(50);
}

void fill(size_t* first, size_t bytes, Random& random) {
  for (size_t i = 0; i < bytes / sizeof *first; ++i) first[i] = random.below(100);
}

void fill(char16_t* first, size_t bytes, Random& random) {
  for (size_t i = 0; i < bytes / sizeof *first; ++i) {
    const size_t starts[] = {0, 0x80, 0x800, 0xD800, 0xDC00, 0xFF80};
    first[i] = static_cast<char16_t>(starts[random.below(6)] + random.below(0x80));
  }
}

/// Writes into an array through the pointer that a function gives.
template <class Library, class Model>
Operation filling(Chooser& choose, Function function, Library library, Model model,
                  List list, bool (*fits)(const Array*)) {
  const Variable a = choose.array(fits);
  const uint64_t seed = choose.random().below(1000);
  Operation operation;
  operation.text =
      "fill(" + writtenCall(function, a) + ", <from seed " + written(seed) + ">)";
  operation.run = [=](const Worlds& worlds) -> Difference {
    if (isMissing(worlds.model, a)) return std::nullopt;
    const size_t bytes = bytesOf(*worlds.model.at(a), list);
    return sameOutcome(worlds, function, Verdict::kEffective,
                       [=](auto& world) -> std::string {
                         auto* first = chosen(world, library, model)(world.at(a));
                         if (first == nullptr) return "null";
                         Random values(seed);
                         fill(first, bytes, values);
                         return "a list";
                       });
  };
  return operation;
}

Operation fillPr(Chooser& choose) {
  return filling(choose, ORB_MODEL_BOTH(orbGetPr), List::kReal, orbIsDouble);
}

Operation fillPi(Chooser& choose) {
  return filling(choose, ORB_MODEL_BOTH(orbGetPi), List::kImag,
                 [](const Array* a) { return orbIsDouble(a) && orbIsComplex(a); });
}

Operation fillData(Chooser& choose) {
  return filling(choose, ORB_MODEL_BOTH(orbGetData), List::kReal, orbIsNumeric);
}

Operation fillImagData(Chooser& choose) {
  return filling(choose, ORB_MODEL_BOTH(orbGetImagData), List::kImag, orbIsComplex);
}

Operation fillChars(Chooser& choose) {
  return filling(choose, ORB_MODEL_BOTH(orbGetChars), List::kReal, orbIsChar);
}

Operation fillLogicals(Chooser& choose) {
  return filling(choose, ORB_MODEL_BOTH(orbGetLogicals), List::kReal, orbIsLogical);
}

Operation fillIr(Chooser& choose) {
  return filling(choose, ORB_MODEL_BOTH(orbGetIr), List::kIr, orbIsSparse);
}

Operation fillJc(Chooser& choose) {
  return filling(choose, ORB_MODEL_BOTH(orbGetJc), List::kJc, orbIsSparse);
}

}  // namespace

const std::vector<Kind>& dataKinds() {
  static const std::vector<Kind> kinds = {{8, destroyArray},
                                          {9, duplicateArray},
                                          {2, calcSingleSubscript},
                                          {6, setM},
                                          {6, setN},
                                          {8, setDimensions},
                                          {2, setOwnDimensions},
                                          {4, getString},
                                          {4, arrayToString},
                                          {2, isClass},
                                          {3, fillPr},
                                          {3, fillPi},
                                          {8, fillData},
                                          {8, fillImagData},
                                          {8, fillChars},
                                          {4, fillLogicals},
                                          {3, fillIr},
                                          {3, fillJc}};
  return kinds;
}

}  // namespace orb::model
