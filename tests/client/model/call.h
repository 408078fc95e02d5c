// SPDX-License-Identifier: MIT
// Turns a pair of functions, the library's and the model's, and arguments into an
// operation.
#ifndef ORB_CLIENT_MODEL_CALL_H_
#define ORB_CLIENT_MODEL_CALL_H_

#include <boost/numeric/conversion/cast.hpp>
#include <exception>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "client/model/operation.h"

/// A function by its number, the library's and the model's: three arguments of the
/// templates below.
#define ORB_MODEL_BOTH(name) Function::name, &::name, &::orb::model::name

namespace orb::model {

/// What a call is going to do, judged by the model before it is made.
enum class Verdict { kEffective, kWithoutEffect, kTooLarge };

/// `const char**` of texts that live elsewhere.
class Pointers {
 public:
  explicit Pointers(const std::vector<std::string>& texts) {
    for (const std::string& text : texts) pointers_.push_back(text.c_str());
  }
  operator const char**() { return pointers_.data(); }

 private:
  std::vector<const char*> pointers_;
};

// The argument as the functions take it.
template <class Handle>
Handle passed(const World<Handle>& world, Variable variable) {
  return world.at(variable);
}
template <class World>
const size_t* passed(const World&, const std::vector<size_t>& list) {
  return list.data();
}
template <class World>
Pointers passed(const World&, const std::vector<std::string>& texts) {
  return Pointers(texts);
}
template <class World>
const char* passed(const World&, const std::string& text) {
  return text.c_str();
}
template <class World>
const char* passed(const World&, const std::optional<std::string>& text) {
  return text ? text->c_str() : nullptr;
}
template <class World, class Number, class = std::enable_if_t<!std::is_class_v<Number>>>
Number passed(const World&, Number number) {
  return number;
}

// The argument as a reader sees it.
std::string written(Variable variable);
std::string written(const std::string& text);
std::string written(const std::optional<std::string>& text);
std::string written(const std::vector<size_t>& list);
std::string written(const std::vector<std::string>& texts);
template <class Number, class = std::enable_if_t<!std::is_class_v<Number>>>
std::string written(Number number) {
  return std::to_string(number);
}

template <class... Arguments>
std::string writtenCall(Function function, const Arguments&... arguments) {
  std::string list;
  ((list += (list.empty() ? "" : ", ") + written(arguments)), ...);
  return std::string(nameOf(function)) + "(" + list + ")";
}

template <class Argument>
bool isMissing(const ModelWorld& model, const Argument& argument) {
  if constexpr (std::is_same_v<Argument, Variable>) {
    return model.at(argument) == nullptr;
  } else {
    return false;
  }
}

/// The result of `call`, or the exception that it lets out, as text.
template <class Call>
std::string outcomeOf(const Call& call) {
  try {
    return call();
  } catch (const PositiveOverflow&) {
    return "positive_overflow: bad numeric conversion: positive overflow";
  } catch (const boost::numeric::positive_overflow& failure) {
    return std::string("positive_overflow: ") + failure.what();
  } catch (const std::exception& failure) {
    return std::string("exception: ") + failure.what();
  }
}

/// What `call` gives for the model and for the library, when it is not the same.
template <class Call>
Difference sameOutcome(const Worlds& worlds, Function function, Verdict verdict,
                       const Call& call) {
  const std::string expected = outcomeOf([&] { return call(worlds.model); });
  if (worlds.library == nullptr) return std::nullopt;
  const std::string actual = outcomeOf([&] { return call(*worlds.library); });
  const bool refused =
      expected == "null" || expected == "-1" || expected.compare(0, 8, "positive") == 0;
  worlds.tally.add(function, verdict == Verdict::kEffective && !refused);
  if (actual == expected) return std::nullopt;
  return std::string(nameOf(function)) + " gives " + actual + ", expected " + expected;
}

// The function for this side.
template <class Library, class Model>
Library chosen(const LibraryWorld&, Library library, Model) {
  return library;
}
template <class Library, class Model>
Model chosen(const ModelWorld&, Library, Model model) {
  return model;
}

/// Calls `choice` and names what it gives; a new handle goes to the variable `result`.
template <class Handle, class Choice, class... Arguments>
std::string resultOf(World<Handle>& world, Variable result, Choice choice,
                     const Arguments&... arguments) {
  using Result = decltype(choice(passed(world, arguments)...));
  if constexpr (std::is_void_v<Result>) {
    choice(passed(world, arguments)...);
    return "done";
  } else if constexpr (std::is_same_v<Result, Handle>) {
    const Handle handle = choice(passed(world, arguments)...);
    world.assign(result, handle);
    return handle == nullptr ? "null" : "an array";
  } else if constexpr (std::is_same_v<Result, const char*>) {
    const char* text = choice(passed(world, arguments)...);
    return text == nullptr ? "null" : written(std::string(text));
  } else {
    return std::to_string(choice(passed(world, arguments)...));
  }
}

/// What most calls need no look at the arrays for.
inline Verdict alwaysEffective(const ModelWorld&) { return Verdict::kEffective; }

/// A call whose result, if it is a handle, goes to the variable `result`.
template <class Library, class Model, class Judge, class... Arguments>
Operation callWithResult(Variable result, Function function, Library library, Model model,
                         Judge judge, Arguments... arguments) {
  Operation operation;
  operation.text = writtenCall(function, arguments...);
  operation.run = [=](const Worlds& worlds) -> Difference {
    if ((isMissing(worlds.model, arguments) || ...)) return std::nullopt;
    const Verdict verdict = judge(worlds.model);
    if (verdict == Verdict::kTooLarge) return std::nullopt;
    return sameOutcome(worlds, function, verdict, [&](auto& world) {
      return resultOf(world, result, chosen(world, library, model), arguments...);
    });
  };
  return operation;
}

/// A call that gives no handle, and whose effect `judge` foretells from the model.
template <class Library, class Model, class Judge, class... Arguments>
Operation judgedCall(Function function, Library library, Model model, Judge judge,
                     Arguments... arguments) {
  return callWithResult(Variable{0}, function, library, model, judge, arguments...);
}

/// A call that only reads, and gives a number or a text.
template <class Library, class Model, class... Arguments>
Operation query(Function function, Library library, Model model, Arguments... arguments) {
  return judgedCall(function, library, model, alwaysEffective, arguments...);
}

/// A call that gives a new handle, and whose effect `judge` foretells from the model.
template <class Library, class Model, class Judge, class... Arguments>
Operation judgedCreation(Chooser& choose, Function function, Library library, Model model,
                         Judge judge, Arguments... arguments) {
  const Variable result = choose.result();
  Operation operation =
      callWithResult(result, function, library, model, judge, arguments...);
  operation.text = written(result) + " = " + operation.text;
  return operation;
}

/// A call that gives a new handle.
template <class Library, class Model, class... Arguments>
Operation creation(Chooser& choose, Function function, Library library, Model model,
                   Arguments... arguments) {
  return judgedCreation(choose, function, library, model, alwaysEffective, arguments...);
}

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_CALL_H_
