// SPDX-License-Identifier: MIT
#include "array/canonical_form.h"

#include <algorithm>

#include "array/payload.h"

namespace orb::wire {
namespace {

// The message library reads 100 messages deep, and each cell or struct adds two. What
// comes near is left to it.
constexpr int kMaxNesting = 40;

bool areVarints(Slice list, uint64_t greatest) {
  Reader reader(list);
  uint64_t value = 0;
  while (!reader.atEnd()) {
    if (!reader.readVarint(value) || value > greatest) return false;
  }
  return list.size != 0;
}

// Negative ones are sign-extended to 64 bits.
bool areInt32s(Slice list) {
  Reader reader(list);
  uint64_t value = 0;
  while (!reader.atEnd()) {
    if (!reader.readVarint(value)) return false;
    const auto number = static_cast<int64_t>(value);
    if (number < INT32_MIN || number > INT32_MAX) return false;
  }
  return list.size != 0;
}

bool areFixed(Slice list, size_t width) {
  return list.size != 0 && list.size % width == 0;
}

bool areBools(Slice list) {
  return list.size != 0 && std::all_of(list.data, list.data + list.size,
                                       [](uint8_t byte) { return byte <= 1; });
}

/// Whether the bytes are what `elements` or `imag_elements` of a dense payload may hold.
bool areElements(int payloadField, Slice list) {
  switch (payloadField) {
    case KALDEX_Array::kUint8FieldNumber:
    case KALDEX_Array::kInt8FieldNumber:
      return true;
    case KALDEX_Array::kUint16FieldNumber:
    case KALDEX_Array::kQxcharFieldNumber:
      return areVarints(list, UINT32_MAX);
    case KALDEX_Array::kInt16FieldNumber:
      return areInt32s(list);
    case KALDEX_Array::kUint32FieldNumber:
    case KALDEX_Array::kInt32FieldNumber:
    case KALDEX_Array::kSingleFieldNumber:
      return areFixed(list, 4);
    case KALDEX_Array::kUint64FieldNumber:
    case KALDEX_Array::kInt64FieldNumber:
      return areVarints(list, UINT64_MAX);
    case KALDEX_Array::kLogicalFieldNumber:
      return areBools(list);
  }
  return areFixed(list, 8);  // double
}

bool hasImaginaryPart(int payloadField) {
  return payloadField != KALDEX_Array::kLogicalFieldNumber &&
         payloadField != KALDEX_Array::kQxcharFieldNumber;
}

bool isDensePayload(int payloadField, Slice bytes) {
  Reader reader(bytes);
  uint64_t last = 0;
  while (!reader.atEnd()) {
    uint64_t tag = 0;
    Slice list{};
    if (!reader.readVarint(tag) || tag <= last || !reader.readLengthDelimited(list)) {
      return false;
    }
    last = tag;
    const bool known =
        tag == tagOf(1, kLengthDelimited) ||
        (tag == tagOf(2, kLengthDelimited) && hasImaginaryPart(payloadField));
    if (!known || !areElements(payloadField, list)) return false;
  }
  return true;
}

bool isArray(Slice bytes, int nesting);

// Field names first, in ASCII: others have to be valid UTF-8, which the message library
// checks.
bool isContainerPayload(int payloadField, Slice bytes, int nesting) {
  const bool isStruct = payloadField == KALDEX_Array::kStructFieldNumber;
  const uint32_t nameTag = tagOf(1, kLengthDelimited);
  const uint32_t elementTag = isStruct ? tagOf(2, kLengthDelimited) : nameTag;
  Reader reader(bytes);
  bool inElements = false;
  while (!reader.atEnd()) {
    uint64_t tag = 0;
    Slice part{};
    if (!reader.readVarint(tag) || !reader.readLengthDelimited(part)) return false;
    if (tag == elementTag) {
      inElements = true;
      if (!isArray(part, nesting + 1)) return false;
    } else if (tag != nameTag || inElements ||
               std::any_of(part.data, part.data + part.size,
                           [](uint8_t byte) { return byte >= 0x80; })) {
      return false;
    }
  }
  return true;
}

/// Whether the value of one field of an array is canonical; leaves the reader behind it.
bool isField(uint64_t tag, Reader& reader, int nesting) {
  uint64_t value = 0;
  switch (tag) {
    case tagOf(KALDEX_Array::kTypeFieldNumber, kVarint):
      return reader.readVarint(value) && value <= KALDEX_Array::SPARSE;
    case tagOf(KALDEX_Array::kArrayIDFieldNumber, kVarint):
    case tagOf(KALDEX_Array::kDataFrameFieldNumber, kVarint):
      return reader.readVarint(value);
    case tagOf(KALDEX_Array::kMemoryLayoutFieldNumber, kVarint):
      return reader.readVarint(value) && value <= KALDEX_Array::UNKNOWN;
    case tagOf(KALDEX_Array::kIsComplexFieldNumber, kVarint):
      return reader.readVarint(value) && value <= 1;
    default:
      break;
  }
  Slice part{};
  if (tag > UINT32_MAX || tag % 8 != kLengthDelimited ||
      !reader.readLengthDelimited(part))
    return false;
  const auto field = static_cast<int>(tag / 8);
  if (field == KALDEX_Array::kDimensionFieldNumber) return areVarints(part, UINT64_MAX);
  if (field == KALDEX_Array::kCellFieldNumber ||
      field == KALDEX_Array::kStructFieldNumber) {
    return isContainerPayload(field, part, nesting);
  }
  if (field < KALDEX_Array::kUint8FieldNumber ||
      field > KALDEX_Array::kQxcharFieldNumber) {
    return false;
  }
  return isDensePayload(field, part);
}

/// Reads canonical fields as long as their tags are below the end.
bool readFields(uint64_t endTag, Reader& reader, int nesting) {
  uint64_t last = 0;
  while (!reader.atEnd()) {
    Reader ahead = reader;
    uint64_t tag = 0;
    if (!ahead.readVarint(tag) || tag <= last) return false;
    if (tag >= endTag) return true;
    if (!isField(tag, ahead, nesting)) return false;
    reader = ahead;
    last = tag;
  }
  return true;
}

bool isArray(Slice bytes, int nesting) {
  Reader reader(bytes);
  return nesting <= kMaxNesting && readFields(UINT64_MAX, reader, nesting) &&
         reader.atEnd();
}

}  // namespace

bool isCanonicalArray(Slice bytes) { return isArray(bytes, 0); }

bool readCanonicalFieldsBelow(int payloadField, Reader& reader) {
  return readFields(tagOf(payloadField, kVarint), reader, 0);
}

}  // namespace orb::wire
