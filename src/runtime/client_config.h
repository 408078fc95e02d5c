// SPDX-License-Identifier: MIT
// What an orbClientConfig points to.
#ifndef ORB_RUNTIME_CLIENT_CONFIG_H_
#define ORB_RUNTIME_CLIENT_CONFIG_H_

#include <exception>
#include <memory>

#include "http/qx_client_config.h"
#include "orb/qxorbclient.h"

/// Owns a configuration; empty when it could not be made.
struct orbClientConfig {
  std::unique_ptr<orb::QXClientConfig> object;
};

namespace orb {

orbStatus createConfig(orbClientConfig** out);
void destroyConfig(orbClientConfig* config);

/// A table slot that hands its arguments on to the owned object's operation. Nothing
/// leaves it: a text that finds no memory leaves the setting as it was.
template <auto operation>
struct ConfigForwarder;

template <class Value, void (QXClientConfig::*set)(Value)>
struct ConfigForwarder<set> {
  static void call(orbClientConfig* config, Value value) {
    try {
      (*config->object.*set)(value);
    } catch (const std::exception&) {
    }
  }
};

template <class Value, Value (QXClientConfig::*get)() const>
struct ConfigForwarder<get> {
  static Value call(orbClientConfig* config) { return (*config->object.*get)(); }
};

}  // namespace orb

#endif  // ORB_RUNTIME_CLIENT_CONFIG_H_
