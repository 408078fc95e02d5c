// SPDX-License-Identifier: MIT
#include "orbserve/service.h"

#include <ostream>
#include <stdexcept>
#include <tuple>

namespace orb::test {
namespace {

template <class List>
std::vector<typename List::value_type> copyOf(const List& list) {
  return {list.begin(), list.end()};
}

}  // namespace

Array bare(Array::QXType type, const Shape& shape) {
  Array array;
  array.set_type(type);
  array.mutable_dimension()->Add(shape.begin(), shape.end());
  return array;
}

Array doubles(const Shape& shape, const Numbers& elements, const Numbers& imaginary) {
  Array array = bare(Array::DOUBLE, shape);
  Array::Double& payload = *array.mutable_qxdouble();
  payload.mutable_elements()->Add(elements.begin(), elements.end());
  payload.mutable_imag_elements()->Add(imaginary.begin(), imaginary.end());
  return array;
}

Array scalar(double value) { return doubles({1, 1}, {value}); }

Array chars(const std::u16string& text) {
  Array array = bare(Array::CHAR, {1, text.size()});
  array.mutable_qxchar()->mutable_elements()->Add(text.begin(), text.end());
  return array;
}

Array sparse(const Shape& shape, const std::vector<uint64_t>& rows,
             const std::vector<uint64_t>& starts, const Numbers& values) {
  Array array = bare(Array::SPARSE, shape);
  Array::Sparse& payload = *array.mutable_sparse();
  payload.set_type(Array::Sparse::DOUBLE);
  payload.mutable_ir()->Add(rows.begin(), rows.end());
  payload.mutable_jc()->Add(starts.begin(), starts.end());
  payload.mutable_qxsparsedouble()->mutable_elements()->Add(values.begin(), values.end());
  return array;
}

std::vector<Array> onesAndTwos() {
  std::vector<Array> arrays;
  for (int type = Array::UINT8; type <= Array::DOUBLE; ++type) {
    arrays.push_back(bare(static_cast<Array::QXType>(type), {2, 1}));
  }
  const auto fill = [](auto* payload) {
    payload->add_elements(1);
    payload->add_elements(2);
  };
  arrays[Array::UINT8].mutable_uint8()->set_elements("\1\2");
  arrays[Array::INT8].mutable_int8()->set_elements("\1\2");
  fill(arrays[Array::UINT16].mutable_uint16());
  fill(arrays[Array::INT16].mutable_int16());
  fill(arrays[Array::UINT32].mutable_uint32());
  fill(arrays[Array::INT32].mutable_int32());
  fill(arrays[Array::UINT64].mutable_uint64());
  fill(arrays[Array::INT64].mutable_int64());
  fill(arrays[Array::SINGLE].mutable_single());
  fill(arrays[Array::DOUBLE].mutable_qxdouble());
  return arrays;
}

Shape shapeOf(const Array& array) { return copyOf(array.dimension()); }

Numbers elementsOf(const Array& array) { return copyOf(array.qxdouble().elements()); }

Numbers imaginaryOf(const Array& array) {
  return copyOf(array.qxdouble().imag_elements());
}

std::u16string textOf(const Array& array) {
  std::u16string text;
  for (const uint32_t unit : array.qxchar().elements()) {
    text += static_cast<char16_t>(unit);
  }
  return text;
}

std::string body(int nargout, const std::vector<Array>& inputs) {
  client::KALDEX_Params params;
  params.set_nargout(nargout);
  params.mutable_rhs()->Add(inputs.begin(), inputs.end());
  return params.SerializeAsString();
}

ServerProcess& sharedServer() {
  static ServerProcess server({ORBSERVE_PATH});
  return server;
}

httplib::Client connection() {
  httplib::Client client(sharedServer().url());
  client.set_tcp_nodelay(true);  // it sends head and body apart
  return client;
}

Result post(const std::string& function, const std::string& body) {
  const httplib::Result reply =
      connection().Post("/demo/" + function, body, kMessageType);
  if (!reply) throw std::runtime_error("no answer: " + to_string(reply.error()));
  if (reply->status != 200) throw std::runtime_error(reply->body);
  Result result;
  if (!result.ParseFromString(reply->body)) throw std::runtime_error("no KALDEX_Result");
  return result;
}

Result call(const std::string& function, int nargout, const std::vector<Array>& inputs) {
  return post(function, body(nargout, inputs));
}

Array callForOne(const std::string& function, const std::vector<Array>& inputs) {
  const Result result = call(function, 1, inputs);
  if (result.has_error()) throw std::runtime_error(result.error().message());
  if (result.lhs_size() != 1) throw std::runtime_error("not one output");
  return result.lhs(0);
}

bool operator==(const Failure& left, const Failure& right) {
  return std::tie(left.identifier, left.message, left.file, left.name) ==
         std::tie(right.identifier, right.message, right.file, right.name);
}

std::ostream& operator<<(std::ostream& out, const Failure& failure) {
  return out << failure.identifier << ", \"" << failure.message << "\", in "
             << failure.name << " (" << failure.file << ")";
}

Failure failureOf(const Result& result) {
  const client::KALDEX_Error& error = result.error();
  if (result.lhs_size() != 0 || error.stack_size() != 1 || error.stack(0).line() < 1) {
    return {"", "not an error with one stack frame: " + result.ShortDebugString(), "",
            ""};
  }
  return {error.identifier(), error.message(), error.stack(0).file(),
          error.stack(0).name()};
}

}  // namespace orb::test
