// SPDX-License-Identifier: MIT
// Names, numbers, types and labels of the messages: servers know them by these.
#include <gmock/gmock.h>
#include <google/protobuf/descriptor.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orb.client.KALDEXArray.pb.h"
#include "orb.client.KALDEXError.pb.h"
#include "orb.client.KALDEXParams.pb.h"
#include "orb.client.KALDEXResult.pb.h"

namespace orb::test {
namespace {

using client::KALDEX_Array;
using client::KALDEX_Error;
using client::KALDEX_Params;
using client::KALDEX_Result;
using google::protobuf::Descriptor;
using google::protobuf::EnumDescriptor;
using google::protobuf::FieldDescriptor;
using google::protobuf::FileDescriptor;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

using Lines = std::vector<std::string>;

std::string shortName(const std::string& fullName) {
  const std::string package = "orb.client.";
  EXPECT_EQ(fullName.compare(0, package.size(), package), 0) << fullName;
  return fullName.substr(package.size());
}

std::string typeOf(const FieldDescriptor& field) {
  if (field.message_type() != nullptr)
    return shortName(field.message_type()->full_name());
  if (field.enum_type() != nullptr) return shortName(field.enum_type()->full_name());
  return field.type_name();
}

std::string labelOf(const FieldDescriptor& field) {
  if (field.is_packed()) return "packed";
  if (field.is_repeated()) return "repeated";
  return field.has_optional_keyword() ? "optional" : "implicit";
}

void describe(const EnumDescriptor& values, Lines& lines) {
  for (int i = 0; i < values.value_count(); ++i) {
    lines.push_back(shortName(values.full_name()) + " " +
                    std::to_string(values.value(i)->number()) + " " +
                    values.value(i)->name());
  }
}

void describe(const Descriptor& message, Lines& lines) {
  for (int i = 0; i < message.enum_type_count(); ++i) {
    describe(*message.enum_type(i), lines);
  }
  for (int i = 0; i < message.nested_type_count(); ++i) {
    describe(*message.nested_type(i), lines);
  }
  for (int i = 0; i < message.field_count(); ++i) {
    const FieldDescriptor& field = *message.field(i);
    lines.push_back(shortName(message.full_name()) + " " +
                    std::to_string(field.number()) + " " + field.name() + ": " +
                    labelOf(field) + " " + typeOf(field));
  }
}

Lines linesOf(const FileDescriptor& file) {
  EXPECT_EQ(file.syntax(), FileDescriptor::SYNTAX_PROTO3);
  Lines lines;
  for (int i = 0; i < file.message_type_count(); ++i) {
    describe(*file.message_type(i), lines);
  }
  return lines;
}

Lines importsOf(const FileDescriptor& file) {
  Lines names;
  for (int i = 0; i < file.dependency_count(); ++i) {
    names.push_back(file.dependency(i)->name());
  }
  return names;
}

constexpr const char* kArrayFile = "orb.client.KALDEXArray.proto";
constexpr const char* kErrorFile = "orb.client.KALDEXError.proto";

TEST(Schema, OfArrays) {
  const FileDescriptor& file = *KALDEX_Array::descriptor()->file();
  EXPECT_EQ(file.name(), kArrayFile);
  EXPECT_THAT(importsOf(file), ElementsAre());
  EXPECT_THAT(
      linesOf(file),
      ElementsAreArray({
          "KALDEX_Array.QXType 0 UINT8",
          "KALDEX_Array.QXType 1 INT8",
          "KALDEX_Array.QXType 2 UINT16",
          "KALDEX_Array.QXType 3 INT16",
          "KALDEX_Array.QXType 4 UINT32",
          "KALDEX_Array.QXType 5 INT32",
          "KALDEX_Array.QXType 6 UINT64",
          "KALDEX_Array.QXType 7 INT64",
          "KALDEX_Array.QXType 8 SINGLE",
          "KALDEX_Array.QXType 9 DOUBLE",
          "KALDEX_Array.QXType 10 LOGICAL",
          "KALDEX_Array.QXType 11 CHAR",
          "KALDEX_Array.QXType 12 STRUCT",
          "KALDEX_Array.QXType 13 CELL",
          "KALDEX_Array.QXType 14 SPARSE",
          "KALDEX_Array.QXType 15 OBJECT",
          "KALDEX_Array.QXType 16 HANDLE_OBJECT_REF",
          "KALDEX_Array.QXType 17 ARRAYREF",
          "KALDEX_Array.QXType 18 ENUMERATION",
          "KALDEX_Array.QXType 19 STRING",
          "KALDEX_Array.QXMemoryLayout 0 COLUMN_MAJOR",
          "KALDEX_Array.QXMemoryLayout 1 ROW_MAJOR",
          "KALDEX_Array.QXMemoryLayout 2 UNKNOWN",
          "KALDEX_Array.Uint8 1 elements: optional bytes",
          "KALDEX_Array.Uint8 2 imag_elements: optional bytes",
          "KALDEX_Array.Int8 1 elements: optional bytes",
          "KALDEX_Array.Int8 2 imag_elements: optional bytes",
          "KALDEX_Array.Uint16 1 elements: packed uint32",
          "KALDEX_Array.Uint16 2 imag_elements: packed uint32",
          "KALDEX_Array.Int16 1 elements: packed int32",
          "KALDEX_Array.Int16 2 imag_elements: packed int32",
          "KALDEX_Array.Uint32 1 elements: packed fixed32",
          "KALDEX_Array.Uint32 2 imag_elements: packed fixed32",
          "KALDEX_Array.Int32 1 elements: packed sfixed32",
          "KALDEX_Array.Int32 2 imag_elements: packed sfixed32",
          "KALDEX_Array.Uint64 1 elements: packed uint64",
          "KALDEX_Array.Uint64 2 imag_elements: packed uint64",
          "KALDEX_Array.Int64 1 elements: packed int64",
          "KALDEX_Array.Int64 2 imag_elements: packed int64",
          "KALDEX_Array.Single 1 elements: packed float",
          "KALDEX_Array.Single 2 imag_elements: packed float",
          "KALDEX_Array.Double 1 elements: packed double",
          "KALDEX_Array.Double 2 imag_elements: packed double",
          "KALDEX_Array.Logical 1 elements: packed bool",
          "KALDEX_Array.Char 1 elements: packed uint32",
          "KALDEX_Array.Cell 1 elements: repeated KALDEX_Array",
          "KALDEX_Array.Struct 1 field_names: repeated string",
          "KALDEX_Array.Struct 2 elements: repeated KALDEX_Array",
          "KALDEX_Array.Sparse.SparseType 0 DOUBLE",
          "KALDEX_Array.Sparse.SparseType 1 LOGICAL",
          "KALDEX_Array.Sparse 1 type: optional KALDEX_Array.Sparse.SparseType",
          "KALDEX_Array.Sparse 2 ir: packed uint64",
          "KALDEX_Array.Sparse 3 jc: packed uint64",
          "KALDEX_Array.Sparse 16 qxsparsedouble: optional KALDEX_Array.Double",
          "KALDEX_Array.Sparse 17 logical: optional KALDEX_Array.Logical",
          "KALDEX_Array.Object.Dynamic_Property 1 propertyName: packed uint32",
          "KALDEX_Array.Object.Dynamic_Property 2 propertyClassName: packed uint32",
          "KALDEX_Array.Object.Dynamic_Property 3 propertyDataTypeName: packed uint32",
          "KALDEX_Array.Object.Dynamic_Property 4 propertyValue: repeated KALDEX_Array",
          "KALDEX_Array.Object 1 classNameIndex: optional uint32",
          "KALDEX_Array.Object 2 propertyName: packed uint32",
          "KALDEX_Array.Object 3 propertyClassName: packed uint32",
          "KALDEX_Array.Object 4 propertyValue: repeated KALDEX_Array",
          "KALDEX_Array.Object 5 enumerationNameIndex: optional uint32",
          "KALDEX_Array.Object 6 dynamicProperties: repeated "
          "KALDEX_Array.Object.Dynamic_Property",
          "KALDEX_Array.Objects 1 elements: repeated KALDEX_Array.Object",
          "KALDEX_Array.WkrID 1 wkrID: optional bytes",
          "KALDEX_Array.Handle_Object_Ref.QXHandleObjectType 0 UNKNOWN_HANDLE_TYPE",
          "KALDEX_Array.Handle_Object_Ref.QXHandleObjectType 1 FUNCTION_HANDLE",
          "KALDEX_Array.Handle_Object_Ref.QXHandleObjectType 2 HANDLE",
          "KALDEX_Array.Handle_Object_Ref.QXHandleObjectType 3 MCOS",
          "KALDEX_Array.Handle_Object_Ref.QXHandleObjectType 4 SHARED_COPY",
          "KALDEX_Array.Handle_Object_Ref 1 wkrID: packed uint32",
          "KALDEX_Array.Handle_Object_Ref 2 objectID: packed uint64",
          "KALDEX_Array.Handle_Object_Ref 3 htype: packed "
          "KALDEX_Array.Handle_Object_Ref.QXHandleObjectType",
          "KALDEX_Array.Handle_Object_Ref 4 data: repeated KALDEX_Array",
          "KALDEX_Array.String 1 strings: packed uint32",
          "KALDEX_Array.String 2 stringSizes: packed uint64",
          "KALDEX_Array 1 type: optional KALDEX_Array.QXType",
          "KALDEX_Array 2 dimension: packed uint64",
          "KALDEX_Array 3 arrayID: optional uint64",
          "KALDEX_Array 4 dataFrame: optional uint64",
          "KALDEX_Array 5 sharedData: optional KALDEX_Shared_Data",
          "KALDEX_Array 6 memoryLayout: optional KALDEX_Array.QXMemoryLayout",
          "KALDEX_Array 7 isComplex: optional bool",
          "KALDEX_Array 16 uint8: optional KALDEX_Array.Uint8",
          "KALDEX_Array 17 int8: optional KALDEX_Array.Int8",
          "KALDEX_Array 18 uint16: optional KALDEX_Array.Uint16",
          "KALDEX_Array 19 int16: optional KALDEX_Array.Int16",
          "KALDEX_Array 20 uint32: optional KALDEX_Array.Uint32",
          "KALDEX_Array 21 int32: optional KALDEX_Array.Int32",
          "KALDEX_Array 22 uint64: optional KALDEX_Array.Uint64",
          "KALDEX_Array 23 int64: optional KALDEX_Array.Int64",
          "KALDEX_Array 24 single: optional KALDEX_Array.Single",
          "KALDEX_Array 25 qxdouble: optional KALDEX_Array.Double",
          "KALDEX_Array 26 logical: optional KALDEX_Array.Logical",
          "KALDEX_Array 27 qxchar: optional KALDEX_Array.Char",
          "KALDEX_Array 28 cell: optional KALDEX_Array.Cell",
          "KALDEX_Array 29 struct_: optional KALDEX_Array.Struct",
          "KALDEX_Array 30 sparse: optional KALDEX_Array.Sparse",
          "KALDEX_Array 31 classNameIndex: optional uint32",
          "KALDEX_Array 32 objects: optional KALDEX_Array.Objects",
          "KALDEX_Array 33 objectRefs: optional KALDEX_Array.Handle_Object_Ref",
          "KALDEX_Array 34 arrayRef: optional uint64",
          "KALDEX_Array 35 targetType: optional KALDEX_Array.QXType",
          "KALDEX_Array 36 enumerationClassName: optional uint32",
          "KALDEX_Array 37 enumerations: optional KALDEX_Array.Objects",
          "KALDEX_Array 38 stringElements: optional KALDEX_Array.String",
          "KALDEX_Shared_Strings 1 stringEntry: repeated bytes",
          "KALDEX_Shared_Strings 2 startIndex: optional uint64",
          "KALDEX_Name 1 nameIndex: optional uint32",
          "KALDEX_ClassInfo 1 classNameIndex: optional uint32",
          "KALDEX_ClassInfo 2 propertyNameIndex: packed uint32",
          "KALDEX_ClassInfo 3 superclassNameIndex: packed uint32",
          "KALDEX_ClassInfoTable 1 classInfo: repeated KALDEX_ClassInfo",
          "KALDEX_SharedArrays 1 elements: repeated KALDEX_Array",
          "KALDEX_SharedArrays 2 startIndex: optional uint64",
          "KALDEX_Shared_Data 1 stringTable: optional KALDEX_Shared_Strings",
          "KALDEX_Shared_Data 2 classInfo: optional KALDEX_ClassInfoTable",
          "KALDEX_Shared_Data 3 arrays: optional KALDEX_SharedArrays",
      }));
}

TEST(Schema, OfErrors) {
  const FileDescriptor& file = *KALDEX_Error::descriptor()->file();
  EXPECT_EQ(file.name(), kErrorFile);
  EXPECT_THAT(importsOf(file), ElementsAre());
  EXPECT_THAT(linesOf(file),
              ElementsAre("KALDEX_Error.Stack_Frame 1 file: optional string",
                          "KALDEX_Error.Stack_Frame 2 name: optional string",
                          "KALDEX_Error.Stack_Frame 3 line: optional int32",
                          "KALDEX_Error 1 message: optional string",
                          "KALDEX_Error 2 identifier: optional string",
                          "KALDEX_Error 3 stack: repeated KALDEX_Error.Stack_Frame",
                          "KALDEX_Error 4 report: optional string"));
}

TEST(Schema, OfCalls) {
  const FileDescriptor& file = *KALDEX_Params::descriptor()->file();
  EXPECT_EQ(file.name(), "orb.client.KALDEXParams.proto");
  EXPECT_THAT(importsOf(file), ElementsAre(kArrayFile));
  EXPECT_THAT(linesOf(file), ElementsAre("KALDEX_Params 1 nargout: optional int32",
                                         "KALDEX_Params 2 rhs: repeated KALDEX_Array"));
}

TEST(Schema, OfResults) {
  const FileDescriptor& file = *KALDEX_Result::descriptor()->file();
  EXPECT_EQ(file.name(), "orb.client.KALDEXResult.proto");
  EXPECT_THAT(importsOf(file), ElementsAre(kArrayFile, kErrorFile));
  EXPECT_THAT(linesOf(file), ElementsAre("KALDEX_Result 1 lhs: repeated KALDEX_Array",
                                         "KALDEX_Result 2 error: optional KALDEX_Error"));
}

}  // namespace
}  // namespace orb::test
