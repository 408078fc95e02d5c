// SPDX-License-Identifier: MIT
#include "client/model/operation.h"

namespace orb::model {

Operation oneOf(const std::vector<Kind>& kinds, Chooser& choose) {
  size_t total = 0;
  for (const Kind& kind : kinds) total += kind.weight;
  size_t drawn = choose.random().below(total);
  auto kind = kinds.begin();
  for (; drawn >= kind->weight; ++kind) drawn -= kind->weight;
  return kind->make(choose);
}

Operation randomOperation(Random& random, const ModelWorld& model,
                          size_t runtimePercent) {
  Chooser choose(random, model);
  if (random.chance(runtimePercent)) return randomRuntimeOperation(choose);
  if (!choose.hasArrays() || random.chance(22)) return oneOf(creationKinds(), choose);
  return oneOf(random.chance(45) ? dataKinds() : containerKinds(), choose);
}

}  // namespace orb::model
