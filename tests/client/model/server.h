// SPDX-License-Identifier: MIT
#ifndef ORB_CLIENT_MODEL_SERVER_H_
#define ORB_CLIENT_MODEL_SERVER_H_

#include "support/loopback_server.h"

namespace orb::model {

/// Answers what RemoteCall::target() asks for.
test::HttpAnswer answer(const test::HttpCall& call);

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_SERVER_H_
