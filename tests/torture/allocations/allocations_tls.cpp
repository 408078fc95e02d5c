// SPDX-License-Identifier: MIT
// Every allocation of a call over TLS fails, those of OpenSSL included.
#include "torture/allocations/suite.h"

int main(int argc, char** argv) {
  orb::torture::Scenarios all;
  orb::torture::addTlsCallScenarios(all);
  return orb::torture::tryScenarios(argc, argv, all, {"feval"});
}
