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

/// A call that suits the arrays that the model holds.
Operation randomOperation(Random& random, const ModelWorld& model);

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_OPERATION_H_
