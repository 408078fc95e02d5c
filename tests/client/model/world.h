// SPDX-License-Identifier: MIT
// The variables h0, h1, ... of a sequence of calls, and what it has of the runtime, once
// for the library and once for the model.
#ifndef ORB_CLIENT_MODEL_WORLD_H_
#define ORB_CLIENT_MODEL_WORLD_H_

#include <orb/qxorbclient.h>

#include <array>
#include <cstddef>
#include <type_traits>

#include "client/model/functions.h"
#include "client/model/model.h"
#include "client/model/runtime.h"

namespace orb::model {

inline constexpr size_t kVariables = 7;

struct Variable {
  size_t number;
};

template <class Handle>
using RuntimeOf =
    std::conditional_t<std::is_same_v<Handle, orbArray>, LibraryRuntime, ModelRuntime>;

/// Owns the handles; an empty variable is null.
template <class Handle>
class World {
 public:
  World() = default;
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  ~World() {
    for (const Handle handle : handles_) orbDestroyArray(handle);
  }

  Handle at(Variable variable) const { return handles_[variable.number]; }

  /// Destroys what the variable held before.
  void assign(Variable variable, Handle handle) {
    orbDestroyArray(handles_[variable.number]);
    handles_[variable.number] = handle;
  }

  RuntimeOf<Handle>& runtime() { return runtime_; }
  const RuntimeOf<Handle>& runtime() const { return runtime_; }

 private:
  std::array<Handle, kVariables> handles_{};
  RuntimeOf<Handle> runtime_;
};

using LibraryWorld = World<orbArray>;
using ModelWorld = World<Array*>;

/// Where a call is made. Without a library, the model alone takes part.
struct Worlds {
  ModelWorld& model;
  LibraryWorld* library;
  Tally& tally;
};

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_WORLD_H_
