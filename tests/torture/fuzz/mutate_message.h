// SPDX-License-Identifier: MIT
#ifndef ORB_TESTS_TORTURE_FUZZ_MUTATE_MESSAGE_H_
#define ORB_TESTS_TORTURE_FUZZ_MUTATE_MESSAGE_H_

#include <google/protobuf/message.h>

#include <cstdint>
#include <random>

namespace orb::torture {

/// Changes messages of any kind, one field of one message inside them at a time. Gives
/// the same for the same seed.
class MessageMutator {
 public:
  explicit MessageMutator(uint32_t seed) : engine_(seed) {}

  void mutate(google::protobuf::Message& message);
  /// Puts a part of the other message in the place of one of the same kind.
  void cross(google::protobuf::Message& message, const google::protobuf::Message& other);
  /// Puts bytes that no message is written as into one inside; the lengths around it stay
  /// right.
  void damage(google::protobuf::Message& message);

  /// A number below `bound`.
  uint32_t below(uint32_t bound) { return static_cast<uint32_t>(engine_() % bound); }
  bool oneIn(uint32_t n) { return below(n) == 0; }

 private:
  using Message = google::protobuf::Message;
  using Field = google::protobuf::FieldDescriptor;

  Message& anyInside(Message& message);
  void mutateField(Message& message, const Field& field);
  void mutateRepeated(Message& message, const Field& field);
  void mutateSingular(Message& message, const Field& field);
  void addUnknown(Message& message);

  uint64_t number();
  std::string text();
  std::string junk();

  std::mt19937_64 engine_;
};

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_FUZZ_MUTATE_MESSAGE_H_
