// SPDX-License-Identifier: MIT
// What several files of the model need of one another.
#ifndef ORB_CLIENT_MODEL_RULES_H_
#define ORB_CLIENT_MODEL_RULES_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "client/model/model.h"

namespace orb::model {

struct ClassFacts {
  const char* name;
  size_t elementSize;
};

/// `classid` must be a class of arrays.
const ClassFacts& factsOf(orbClassID classid);

bool isNumeric(orbClassID classid);

/// Whether handles hold native buffers apart from the message.
bool isBuffered(const Message& message);

void requireAtMostMax(size_t count);

/// What an element holds to which nothing was stored.
std::shared_ptr<Message> emptyDouble();

/// Changes the number of elements that the handle of a struct or cell array sees.
void resizeElements(Array& a, size_t count);

/// Fits what is stored to `count` elements.
void resize(Array& a, size_t count);

/// The write-back: makes the message hold what this handle sees.
void flush(Array& a);

template <class Element>
Element* pointerTo(Bytes& bytes) {
  return bytes.empty() ? nullptr : reinterpret_cast<Element*>(bytes.data());
}

/// The units that the handle of a char array sees.
size_t unitsOf(const Array& a);
char16_t unitAt(const Array& a, size_t i);

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_RULES_H_
