// SPDX-License-Identifier: MIT
// Request bodies as another implementation of the message format reads them.
#ifndef ORB_TESTS_CLIENT_TRANSPORT_DECODER_H_
#define ORB_TESTS_CLIENT_TRANSPORT_DECODER_H_

#include <string>
#include <vector>

namespace orb::test {

/// One line of text for each body. Throws when one cannot be read.
std::vector<std::string> decode(const std::vector<std::string>& bodies);

}  // namespace orb::test

#endif  // ORB_TESTS_CLIENT_TRANSPORT_DECODER_H_
