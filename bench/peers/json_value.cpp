// SPDX-License-Identifier: MIT
#include "peers/json_value.h"

#include <rapidjson/writer.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace orb::bench {
namespace {

class Json {
 public:
  explicit Json(rapidjson::StringBuffer& text) : writer_(text) {}

  void write(const Value& value) {
    writer_.StartObject();
    writeList("dimensions", value.dimensions);
    switch (value.kind) {
      case Value::Kind::kDouble:
        writeList("real", value.real);
        if (!value.imaginary.empty()) writeList("imaginary", value.imaginary);
        break;
      case Value::Kind::kUint16:
        writeList("shorts", value.shorts);
        break;
      case Value::Kind::kChar:
        writer_.Key("text");
        write(value.text);
        break;
      case Value::Kind::kCell:
        writeList("elements", value.elements);
        break;
      case Value::Kind::kStruct:
        writeList("fieldNames", value.fieldNames);
        writeList("elements", value.elements);
        break;
      case Value::Kind::kSparse:
        writeList("rows", value.rows);
        writeList("columnStarts", value.columnStarts);
        writeList("real", value.real);
        break;
    }
    writer_.EndObject();
  }

 private:
  template <class Element>
  void writeList(const char* key, const std::vector<Element>& list) {
    writer_.Key(key);
    writer_.StartArray();
    for (const Element& element : list) write(element);
    writer_.EndArray();
  }

  void write(double value) { writer_.Double(value); }
  void write(uint64_t value) { writer_.Uint64(value); }
  void write(uint16_t value) { writer_.Uint(value); }
  void write(const std::string& text) {
    writer_.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  }

  rapidjson::Writer<rapidjson::StringBuffer> writer_;
};

}  // namespace

void writeJson(rapidjson::StringBuffer& text, const Value& value) {
  Json(text).write(value);
}

void parseJson(rapidjson::Document& document, const char* text, size_t size) {
  document.Parse<rapidjson::kParseFullPrecisionFlag>(text, size);
  if (document.HasParseError()) throw std::runtime_error("The text is not JSON.");
}

}  // namespace orb::bench
