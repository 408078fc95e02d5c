// SPDX-License-Identifier: MIT
#include "client/model/call.h"

#include <cstdio>

namespace orb::model {
namespace {

template <class Item>
std::string writtenList(const std::vector<Item>& items) {
  std::string list;
  for (const Item& item : items) list += (list.empty() ? "" : ", ") + written(item);
  return "{" + list + "}";
}

}  // namespace

std::string written(Variable variable) { return "h" + std::to_string(variable.number); }

std::string written(const std::string& text) {
  std::string literal = "\"";
  for (const char unit : text) {
    const bool plain = unit >= ' ' && unit <= '~' && unit != '"' && unit != '\\';
    char octal[5] = {unit, '\0'};
    if (!plain) {
      std::snprintf(octal, sizeof octal, "\\%03o",
                    static_cast<unsigned>(static_cast<unsigned char>(unit)));
    }
    literal += octal;
  }
  return literal + '"';
}

std::string written(const std::optional<std::string>& text) {
  return text ? written(*text) : "NULL";
}

std::string written(const std::vector<size_t>& list) { return writtenList(list); }

std::string written(const std::vector<std::string>& texts) { return writtenList(texts); }

}  // namespace orb::model
