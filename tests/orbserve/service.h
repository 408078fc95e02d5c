// SPDX-License-Identifier: MIT
// Messages for the local server, and calls of it.
#ifndef ORB_TESTS_ORBSERVE_SERVICE_H_
#define ORB_TESTS_ORBSERVE_SERVICE_H_

#include <httplib.h>

#include <cstdint>
#include <string>
#include <vector>

#include "orb.client.KALDEXArray.pb.h"
#include "orb.client.KALDEXParams.pb.h"
#include "orb.client.KALDEXResult.pb.h"
#include "support/server_process.h"

namespace orb::test {

using Array = client::KALDEX_Array;
using Result = client::KALDEX_Result;
using Shape = std::vector<uint64_t>;
using Numbers = std::vector<double>;

inline constexpr const char* kMessageType = "application/x-google-protobuf";

/// An array with type and dimensions, and no payload.
Array bare(Array::QXType type, const Shape& shape);
Array doubles(const Shape& shape, const Numbers& elements, const Numbers& imaginary = {});
Array scalar(double value);
Array chars(const std::u16string& text);
Array sparse(const Shape& shape, const std::vector<uint64_t>& rows,
             const std::vector<uint64_t>& starts, const Numbers& values);

/// One 2x1 array of every numeric class with the elements 1 and 2.
std::vector<Array> onesAndTwos();

Shape shapeOf(const Array& array);
Numbers elementsOf(const Array& array);
Numbers imaginaryOf(const Array& array);
std::u16string textOf(const Array& array);

std::string body(int nargout, const std::vector<Array>& inputs);

/// The server that the tests of this program share. It is started when first asked for.
ServerProcess& sharedServer();

/// A connection to the shared server.
httplib::Client connection();

/// Posts to /demo/<function> of the shared server. Throws std::runtime_error unless the
/// answer is a message with status 200.
Result post(const std::string& function, const std::string& body);
Result call(const std::string& function, int nargout, const std::vector<Array>& inputs);

/// call() with one output. Throws std::runtime_error, with the message, on an error.
Array callForOne(const std::string& function, const std::vector<Array>& inputs);

/// Identifier and message of an error result, and where it was raised.
struct Failure {
  std::string identifier;
  std::string message;
  std::string file;
  std::string name;
};

bool operator==(const Failure& left, const Failure& right);
std::ostream& operator<<(std::ostream& out, const Failure& failure);

Failure failureOf(const Result& result);

}  // namespace orb::test

#endif  // ORB_TESTS_ORBSERVE_SERVICE_H_
