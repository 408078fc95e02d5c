// SPDX-License-Identifier: MIT
// Finds where an array of the library reads otherwise than the model's.
#ifndef ORB_CLIENT_MODEL_COMPARE_H_
#define ORB_CLIENT_MODEL_COMPARE_H_

#include <orb/qxorbclient.h>

#include <optional>
#include <string>

#include "client/model/functions.h"
#include "client/model/model.h"

namespace orb::model {

/// Names what differs, with both readings; nothing when all is equal.
using Difference = std::optional<std::string>;

/// Whether the elements of structs and cells are read, too. Reading a value never set
/// makes the library store one.
enum class Depth { kOwnState, kElements };

/// Calls every accessor that needs no choice of arguments on both arrays.
Difference difference(orbArray library, Array* model, Depth depth, Tally& tally);

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_COMPARE_H_
