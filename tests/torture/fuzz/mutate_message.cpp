// SPDX-License-Identifier: MIT
#include "torture/fuzz/mutate_message.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace orb::torture {
namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Message;

/// The message and all inside it.
void collect(Message& message, std::vector<Message*>& all) {
  all.push_back(&message);
  const auto& reflection = *message.GetReflection();
  std::vector<const FieldDescriptor*> fields;
  reflection.ListFields(message, &fields);
  for (const FieldDescriptor* field : fields) {
    if (field->cpp_type() != FieldDescriptor::CPPTYPE_MESSAGE) continue;
    if (!field->is_repeated()) {
      collect(*reflection.MutableMessage(&message, field), all);
      continue;
    }
    for (int i = 0; i < reflection.FieldSize(message, field); ++i) {
      collect(*reflection.MutableRepeatedMessage(&message, field, i), all);
    }
  }
}

std::vector<Message*> allInside(Message& message) {
  std::vector<Message*> all;
  collect(message, all);
  return all;
}

/// Sets a field of numbers, or adds to it, whatever the width and the sign.
void put(Message& message, const FieldDescriptor& field, uint64_t value) {
  const auto& reflection = *message.GetReflection();
  const auto with = [&](auto set, auto add, auto number) {
    if (field.is_repeated()) {
      (reflection.*add)(&message, &field, number);
    } else {
      (reflection.*set)(&message, &field, number);
    }
  };
  using google::protobuf::Reflection;
  switch (field.cpp_type()) {
    case FieldDescriptor::CPPTYPE_INT32:
      return with(&Reflection::SetInt32, &Reflection::AddInt32,
                  static_cast<int32_t>(value));
    case FieldDescriptor::CPPTYPE_INT64:
      return with(&Reflection::SetInt64, &Reflection::AddInt64,
                  static_cast<int64_t>(value));
    case FieldDescriptor::CPPTYPE_UINT32:
      return with(&Reflection::SetUInt32, &Reflection::AddUInt32,
                  static_cast<uint32_t>(value));
    case FieldDescriptor::CPPTYPE_UINT64:
      return with(&Reflection::SetUInt64, &Reflection::AddUInt64, value);
    case FieldDescriptor::CPPTYPE_DOUBLE:
      return with(&Reflection::SetDouble, &Reflection::AddDouble,
                  static_cast<double>(value));
    case FieldDescriptor::CPPTYPE_FLOAT:
      return with(&Reflection::SetFloat, &Reflection::AddFloat,
                  static_cast<float>(value));
    case FieldDescriptor::CPPTYPE_BOOL:
      return with(&Reflection::SetBool, &Reflection::AddBool, value % 2 == 1);
    case FieldDescriptor::CPPTYPE_ENUM:
      return with(&Reflection::SetEnumValue, &Reflection::AddEnumValue,
                  static_cast<int>(value));
    case FieldDescriptor::CPPTYPE_STRING:
    case FieldDescriptor::CPPTYPE_MESSAGE:
      break;
  }
}

}  // namespace

// Small ones are what lists and types are counted by; then every magnitude.
uint64_t MessageMutator::number() {
  return oneIn(2) ? below(22) : engine_() >> below(64);
}

std::string MessageMutator::text() {
  std::string result(below(6), '\0');
  for (char& letter : result) {
    letter = static_cast<char>(oneIn(16) ? engine_() : 'a' + below(3));
  }
  return result;
}

// A text behind a tag that no message has, or any bytes.
std::string MessageMutator::junk() {
  const std::string content = text();
  const std::string tag(1, static_cast<char>(oneIn(2) ? below(4) : engine_()));
  return tag + static_cast<char>(oneIn(4) ? engine_() : content.size()) + content;
}

Message& MessageMutator::anyInside(Message& message) {
  const std::vector<Message*> all = allInside(message);
  return *all[below(static_cast<uint32_t>(all.size()))];
}

void MessageMutator::mutate(Message& message) {
  Message& chosen = anyInside(message);
  const auto& descriptor = *chosen.GetDescriptor();
  if (oneIn(40)) return addUnknown(chosen);
  std::vector<const Field*> present;
  chosen.GetReflection()->ListFields(chosen, &present);
  const bool isPresent = !present.empty() && !oneIn(3);
  const Field* field = isPresent ? present[below(static_cast<uint32_t>(present.size()))]
                                 : descriptor.field(static_cast<int>(below(
                                       static_cast<uint32_t>(descriptor.field_count()))));
  mutateField(chosen, *field);
}

void MessageMutator::mutateField(Message& message, const Field& field) {
  if (oneIn(12)) return message.GetReflection()->ClearField(&message, &field);
  if (field.is_repeated()) {
    mutateRepeated(message, field);
  } else {
    mutateSingular(message, field);
  }
}

void MessageMutator::mutateSingular(Message& message, const Field& field) {
  const auto& reflection = *message.GetReflection();
  if (field.cpp_type() == Field::CPPTYPE_MESSAGE) {
    reflection.MutableMessage(&message, &field);
  } else if (field.cpp_type() == Field::CPPTYPE_STRING) {
    reflection.SetString(&message, &field, text());
  } else {
    put(message, field, number());
  }
}

void MessageMutator::mutateRepeated(Message& message, const Field& field) {
  const auto& reflection = *message.GetReflection();
  const int size = reflection.FieldSize(message, &field);
  const auto any = [&] { return static_cast<int>(below(static_cast<uint32_t>(size))); };
  if (size > 0 && oneIn(4)) return reflection.RemoveLast(&message, &field);
  if (size > 1 && oneIn(4)) {
    return reflection.SwapElements(&message, &field, any(), any());
  }
  for (uint32_t more = oneIn(4) ? below(20) : 1; more > 0; --more) {
    if (field.cpp_type() == Field::CPPTYPE_MESSAGE) {
      Message& added = *reflection.AddMessage(&message, &field);
      // Mostly one more of what is there, so that elements have elements.
      if (size > 0 && !oneIn(4)) {
        added.CopyFrom(reflection.GetRepeatedMessage(message, &field, any()));
      }
    } else if (field.cpp_type() == Field::CPPTYPE_STRING) {
      reflection.AddString(&message, &field, text());
    } else {
      put(message, field, number());
    }
  }
}

void MessageMutator::addUnknown(Message& message) {
  auto& fields = *message.GetReflection()->MutableUnknownFields(&message);
  const int field = static_cast<int>(below(1000)) + 1;
  switch (below(5)) {
    case 0:
      return fields.AddVarint(field, number());
    case 1:
      return fields.AddFixed32(field, static_cast<uint32_t>(number()));
    case 2:
      return fields.AddFixed64(field, number());
    case 3:
      return fields.AddLengthDelimited(field, text());
    default:
      fields.AddGroup(field)->AddVarint(field, number());
  }
}

void MessageMutator::damage(Message& message) {
  Message& around = anyInside(message);
  const auto& reflection = *around.GetReflection();
  std::vector<const Field*> fields;
  reflection.ListFields(around, &fields);
  const auto holdsNone = [](const Field* field) {
    return field->cpp_type() != Field::CPPTYPE_MESSAGE;
  };
  fields.erase(std::remove_if(fields.begin(), fields.end(), holdsNone), fields.end());
  if (fields.empty()) return;
  const Field& field = *fields[below(static_cast<uint32_t>(fields.size()))];
  const std::unique_ptr<Message> part(field.is_repeated()
                                          ? reflection.ReleaseLast(&around, &field)
                                          : reflection.ReleaseMessage(&around, &field));
  std::string bytes = part->SerializeAsString();
  bytes.insert(oneIn(2) ? 0 : below(static_cast<uint32_t>(bytes.size()) + 1), junk());
  // Written behind the known fields, as what was there mostly was.
  reflection.MutableUnknownFields(&around)->AddLengthDelimited(field.number(), bytes);
}

void MessageMutator::cross(Message& message, const Message& other) {
  std::unique_ptr<Message> copy(other.New());
  copy->CopyFrom(other);
  Message& part = anyInside(*copy);
  std::vector<Message*> places = allInside(message);
  const auto isOther = [&](const Message* place) {
    return place->GetDescriptor() != part.GetDescriptor();
  };
  places.erase(std::remove_if(places.begin(), places.end(), isOther), places.end());
  if (places.empty()) return;
  Message& place = *places[below(static_cast<uint32_t>(places.size()))];
  if (oneIn(2)) {
    place.CopyFrom(part);
  } else {
    place.MergeFrom(part);
  }
}

}  // namespace orb::torture
