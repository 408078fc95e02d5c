// SPDX-License-Identifier: MIT
// One call of a sequence, made on the library and on the model.
#ifndef ORB_CLIENT_MODEL_OPERATION_H_
#define ORB_CLIENT_MODEL_OPERATION_H_

#include <functional>
#include <string>
#include <vector>

#include "client/model/choose.h"
#include "client/model/compare.h"
#include "client/model/world.h"

namespace orb::model {

/// Keeps its arguments: it can be run again in other sequences. Where a variable that it
/// needs is empty, or the array would become large, it does nothing.
struct Operation {
  std::string text;  // the call as C would write it
  std::function<Difference(const Worlds&)> run;
  Depth depth = Depth::kOwnState;  // of the comparison that follows
};

/// Makes one kind of operation; kinds are drawn in proportion to their weights.
struct Kind {
  size_t weight;
  Operation (*make)(Chooser&);
};

const std::vector<Kind>& creationKinds();
const std::vector<Kind>& dataKinds();
const std::vector<Kind>& containerKinds();
const std::vector<Kind>& runtimeKinds();

Operation oneOf(const std::vector<Kind>& kinds, Chooser& choose);

/// One of runtimeKinds(), or what has to come before most of them.
Operation randomRuntimeOperation(Chooser& choose);

/// A call that suits what the model holds; so many percent are of the runtime.
Operation randomOperation(Random& random, const ModelWorld& model, size_t runtimePercent);

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_OPERATION_H_
