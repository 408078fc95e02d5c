// SPDX-License-Identifier: MIT
// Every allocation of every exported function fails, alone and with all that follow it: no
// crash, no leak, what the header says comes about, and the next call succeeds.
#include <fstream>
#include <iterator>
#include <regex>

#include "torture/allocations/suite.h"

namespace {

/// The functions that the library exports.
std::set<std::string> exports() {
  std::ifstream file(ORB_EXPORTS);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const std::regex name("(orb[A-Za-z0-9]+);");
  std::set<std::string> result;
  for (std::sregex_iterator i(text.begin(), text.end(), name), end; i != end; ++i) {
    result.insert((*i)[1]);
  }
  result.insert("feval");
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  orb::torture::Scenarios all;
  orb::torture::addRuntimeScenarios(all);
  orb::torture::addCreationScenarios(all);
  orb::torture::addArrayScenarios(all);
  orb::torture::addCallScenarios(all);
  return orb::torture::tryScenarios(argc, argv, all, exports());
}
