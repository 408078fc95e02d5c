// SPDX-License-Identifier: MIT
// From the name of a function and a call message to the result message.
#ifndef ORB_TOOLS_ORBSERVE_REGISTRY_H_
#define ORB_TOOLS_ORBSERVE_REGISTRY_H_

#include <string_view>

#include "call.h"
#include "orb.client.KALDEXParams.pb.h"
#include "orb.client.KALDEXResult.pb.h"

namespace orb::serve {

struct Function {
  std::string_view name;
  void (*run)(Call& call);
  int fewestInputs;
  int mostInputs;
  int mostOutputs;
};

/// Null when no function has the name.
const Function* findFunction(std::string_view name);

/// Runs the function. Whatever goes wrong in it becomes the error of the result.
/// @param params  The inputs, which the function may take over.
client::KALDEX_Result evaluate(const Function& function, client::KALDEX_Params& params,
                               const StopSignal& stopping);

}  // namespace orb::serve

#endif  // ORB_TOOLS_ORBSERVE_REGISTRY_H_
