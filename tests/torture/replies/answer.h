// SPDX-License-Identifier: MIT
// What servers answer, and what a call comes to that receives it whole.
#ifndef ORB_TESTS_TORTURE_REPLIES_ANSWER_H_
#define ORB_TESTS_TORTURE_REPLIES_ANSWER_H_

#include <cstddef>
#include <string>
#include <vector>

#include "client/transport/caller.h"
#include "torture/replies/random_message.h"

namespace orb::torture {

struct Answer {
  std::string name;
  std::string status;  // "200 OK"
  std::string body;
  test::Outcome outcome;
  std::vector<std::string> outputs;  // their messages, as they are sent on
  std::size_t wanted;                // outputs that the call asks for
};

/// Every class as an output, several outputs at once, none, errors of the function, and
/// statuses other than 200.
const std::vector<Answer>& fixedAnswers();

Answer randomAnswer(Random& random);

/// How the end of a body is told.
enum class Framing { kLength, kChunked, kUntilTheEnd };
constexpr Framing kFramings[] = {Framing::kLength, Framing::kChunked,
                                 Framing::kUntilTheEnd};

/// A reply as it goes over the connection.
struct Reply {
  std::string bytes;
  std::size_t statusLine;  // its length, line ending included
  std::size_t head;        // the length up to the body
};

Reply framed(const Answer& answer, Framing framing);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_REPLIES_ANSWER_H_
