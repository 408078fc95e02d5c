// SPDX-License-Identifier: MIT
// Picks the arguments of random calls: fitting ones mostly, wrong ones often.
#ifndef ORB_CLIENT_MODEL_CHOOSE_H_
#define ORB_CLIENT_MODEL_CHOOSE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "client/model/model.h"
#include "client/model/world.h"

namespace orb::model {

/// More than any list may hold.
inline constexpr size_t kHuge = size_t{1} << 42;

/// The most arrays that a call may copy.
inline constexpr size_t kMaxWeight = 150;

/// Whether a new array of these dimensions stays small, or is refused for its size before
/// anything is allocated.
bool isAffordable(const std::vector<size_t>& dimensions);

/// Whether a new cell or struct array stays small: no number of elements is refused.
bool isAffordable(const std::vector<size_t>& dimensions, size_t slotsPerElement);

/// Whether resizing `a` to these dimensions stays small or is refused.
bool isAffordable(const Array& a, const std::vector<size_t>& dimensions);

/// Numbers of its own making: the same on every platform, unlike std::distributions.
class Random {
 public:
  explicit Random(uint64_t seed) : engine_(seed) {}
  uint64_t number() { return engine_(); }
  size_t below(size_t limit) { return engine_() % limit; }
  bool chance(size_t percent) { return below(100) < percent; }

 private:
  std::mt19937_64 engine_;
};

class Chooser {
 public:
  Chooser(Random& random, const ModelWorld& model) : random_(random), model_(model) {}

  Random& random() { return random_; }
  const Array* at(Variable variable) const { return model_.at(variable); }
  const ModelRuntime& runtime() const { return model_.runtime(); }
  bool hasArrays() const;

  /// A variable for a new handle: an empty one if there is any.
  Variable result();
  /// A variable that mostly holds an array for which `fits` holds, and often one whose
  /// storage others share.
  Variable array(const std::function<bool(const Array*)>& fits);
  Variable anyArray();

  size_t extent();
  std::vector<size_t> dimensions();
  size_t index(Variable container);
  std::vector<size_t> subscripts(Variable array);
  size_t capacity(size_t elements);

  orbClassID numericClass();
  orbComplexity complexity();
  std::string text();
  std::vector<std::string> texts(size_t most);
  std::vector<std::string> fieldNames();
  /// Null is a name, too.
  std::optional<std::string> fieldName(Variable structure);
  int fieldNumber(Variable structure);

 private:
  std::optional<Variable> find(const std::function<bool(const Array*)>& fits);

  Random& random_;
  const ModelWorld& model_;
};

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_CHOOSE_H_
