// SPDX-License-Identifier: MIT
#include "value/kaldex.h"

#include "orb.client.KALDEXParams.pb.h"
#include "orb.client.KALDEXResult.pb.h"

namespace orb::bench {
namespace {

using client::KALDEX_Array;

void fill(KALDEX_Array& array, const Value& value) {
  array.mutable_dimension()->Assign(value.dimensions.begin(), value.dimensions.end());
  switch (value.kind) {
    case Value::Kind::kDouble: {
      array.set_type(KALDEX_Array::DOUBLE);
      KALDEX_Array::Double& payload = *array.mutable_qxdouble();
      payload.mutable_elements()->Assign(value.real.begin(), value.real.end());
      payload.mutable_imag_elements()->Assign(value.imaginary.begin(),
                                              value.imaginary.end());
      return;
    }
    case Value::Kind::kUint16:
      array.set_type(KALDEX_Array::UINT16);
      array.mutable_uint16()->mutable_elements()->Assign(value.shorts.begin(),
                                                         value.shorts.end());
      return;
    case Value::Kind::kChar:
      array.set_type(KALDEX_Array::CHAR);
      array.mutable_qxchar()->mutable_elements()->Assign(value.text.begin(),
                                                         value.text.end());
      return;
    case Value::Kind::kCell:
      array.set_type(KALDEX_Array::CELL);
      for (const Value& element : value.elements) {
        fill(*array.mutable_cell()->add_elements(), element);
      }
      return;
    case Value::Kind::kStruct:
      array.set_type(KALDEX_Array::STRUCT);
      for (const std::string& name : value.fieldNames) {
        array.mutable_struct_()->add_field_names(name);
      }
      for (const Value& element : value.elements) {
        fill(*array.mutable_struct_()->add_elements(), element);
      }
      return;
    case Value::Kind::kSparse: {
      array.set_type(KALDEX_Array::SPARSE);
      KALDEX_Array::Sparse& sparse = *array.mutable_sparse();
      sparse.set_type(KALDEX_Array::Sparse::DOUBLE);
      sparse.mutable_ir()->Assign(value.rows.begin(), value.rows.end());
      sparse.mutable_jc()->Assign(value.columnStarts.begin(), value.columnStarts.end());
      sparse.mutable_qxsparsedouble()->mutable_elements()->Assign(value.real.begin(),
                                                                  value.real.end());
      return;
    }
  }
}

}  // namespace

std::string requestOf(const Workload& workload) {
  client::KALDEX_Params params;
  params.set_nargout(1);
  fill(*params.add_rhs(), workload.input);
  return params.SerializeAsString();
}

std::string replyTo(const Workload& workload) {
  client::KALDEX_Result result;
  fill(*result.add_lhs(), answerTo(workload));
  return result.SerializeAsString();
}

}  // namespace orb::bench
