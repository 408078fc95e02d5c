// SPDX-License-Identifier: MIT
// Errors that the server raises before and around its functions, and damaged messages.
#include <gmock/gmock.h>

#include <random>

#include "orbserve/service.h"

namespace orb::test {
namespace {

struct CountRow {
  std::string function;
  int nargout;
  size_t inputs;
  std::string kind;
  std::string text;
};

class WrongCount : public ::testing::TestWithParam<CountRow> {};

TEST_P(WrongCount, IsAnError) {
  const CountRow& row = GetParam();
  const std::vector<Array> inputs(row.inputs, scalar(1));
  EXPECT_EQ(failureOf(call(row.function, row.nargout, inputs)),
            (Failure{"orbserve:" + row.function + ":" + row.kind,
                     row.function + ": " + row.text, "registry.cpp", row.function}));
}

INSTANTIATE_TEST_SUITE_P(
    Counts, WrongCount,
    ::testing::Values(
        CountRow{"solve", 1, 1, "inputs", "expected 2 inputs, got 1"},
        CountRow{"sum", 1, 0, "inputs", "expected 1 input, got 0"},
        CountRow{"fail", 0, 2, "inputs", "expected 0 to 1 inputs, got 2"},
        CountRow{"svd", 4, 1, "outputs", "expected nargout from 0 to 3, got 4"},
        CountRow{"sum", -1, 1, "outputs", "expected nargout from 0 to 1, got -1"}));

TEST(NoOutputs, AreAnsweredWithNone) {
  for (const std::string function : {"describe", "eig", "pca", "sum", "svd"}) {
    const Result result = call(function, 0, {doubles({2, 2}, {2, 1, 1, 2})});
    EXPECT_EQ(result.lhs_size(), 0) << function;
    EXPECT_FALSE(result.has_error()) << result.error().message();
  }
}

TEST(Fail, RaisesAnErrorWithThreeFrames) {
  const Result result = call("fail", 1, {});
  EXPECT_EQ(result.lhs_size(), 0);
  const client::KALDEX_Error& error = result.error();
  EXPECT_EQ(error.message(), "This function always fails.");
  EXPECT_EQ(error.identifier(), "orbserve:fail:requested");
  ASSERT_EQ(error.stack_size(), 3);
  EXPECT_EQ(error.stack(0).file(), "checks.src");
  EXPECT_EQ(error.stack(0).name(), "checkPositive");
  EXPECT_EQ(error.stack(0).line(), 7);
  EXPECT_EQ(error.stack(1).file(), "model.src");
  EXPECT_EQ(error.stack(1).name(), "fitModel");
  EXPECT_EQ(error.stack(1).line(), 42);
  EXPECT_EQ(error.stack(2).file(), "fail.src");
  EXPECT_EQ(error.stack(2).name(), "fail");
  EXPECT_EQ(error.stack(2).line(), 3);
  EXPECT_EQ(error.report(),
            "Error: This function always fails.\n"
            "    in checkPositive (checks.src:7)\n"
            "    in fitModel (model.src:42)\n"
            "    in fail (fail.src:3)");
}

struct FailRow {
  std::u16string text;
  std::string message;
};

class FailWithMessage : public ::testing::TestWithParam<FailRow> {};

TEST_P(FailWithMessage, RaisesItInUtf8) {
  EXPECT_EQ(call("fail", 0, {chars(GetParam().text)}).error().message(),
            GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, FailWithMessage,
    ::testing::Values(FailRow{u"no luck", "no luck"}, FailRow{u"", ""},
                      FailRow{u"\u00e9\u20ac", "\u00e9\u20ac"},
                      FailRow{u"\xd83d\xde00.", "\xf0\x9f\x98\x80."},
                      FailRow{u"\xdc00\xd800", "\xef\xbf\xbd\xef\xbf\xbd"},
                      FailRow{u"\xd800z", "\xef\xbf\xbdz"}));

TEST(Fail, ReplacesWhatIsNoUtf16Unit) {
  Array text = bare(Array::CHAR, {1, 2});
  text.mutable_qxchar()->add_elements(0x10000);
  text.mutable_qxchar()->add_elements(0xffffffff);
  EXPECT_EQ(call("fail", 0, {text}).error().message(), "\xef\xbf\xbd\xef\xbf\xbd");
}

TEST(Fail, TakesCharAlone) {
  EXPECT_EQ(failureOf(call("fail", 0, {scalar(1)})),
            (Failure{"orbserve:fail:class", "fail: expected a char array, got 1x1 double",
                     "control.cpp", "fail"}));
}

TEST(Report, TellsMessageAndLine) {
  const Result result = call("sum", 1, {});
  EXPECT_EQ(result.error().report(),
            "Error: sum: expected 1 input, got 0\n    in sum (registry.cpp:" +
                std::to_string(result.error().stack(0).line()) + ")");
}

TEST(Sleep, ReturnsTheSeconds) {
  EXPECT_THAT(elementsOf(callForOne("sleep", {scalar(0.01)})),
              ::testing::ElementsAre(0.01));
}

TEST(Sleep, RefusesNegativeTimes) {
  EXPECT_EQ(
      failureOf(call("sleep", 1, {scalar(-1)})),
      (Failure{"orbserve:sleep:value", "sleep: expected seconds from 0, got -1.000000",
               "control.cpp", "sleep"}));
}

TEST(Sleep, RefusesSeveralNumbers) {
  EXPECT_EQ(failureOf(call("sleep", 1, {doubles({1, 2}, {1, 2})})),
            (Failure{"orbserve:sleep:shape", "sleep: expected a scalar, got 1x2 double",
                     "control.cpp", "sleep"}));
}

struct DamageRow {
  std::string name;
  Array array;
  std::string kind;
  std::string text;
};

class DamagedArray : public ::testing::TestWithParam<DamageRow> {};

TEST_P(DamagedArray, IsAnErrorForEveryFunction) {
  const DamageRow& row = GetParam();
  for (const std::string function : {"echo", "sum", "describe", "upper"}) {
    EXPECT_EQ(failureOf(call(function, 1, {row.array})),
              (Failure{"orbserve:" + function + ":" + row.kind,
                       function + ": " + row.text, "registry.cpp", function}));
  }
}

Array ofType(int type) { return bare(static_cast<Array::QXType>(type), {1, 1}); }

Array inCell(const Array& array) {
  Array cell = bare(Array::CELL, {1, 1});
  *cell.mutable_cell()->add_elements() = array;
  return cell;
}

Array inStruct(const Array& array) {
  Array record = bare(Array::STRUCT, {1, 1});
  record.mutable_struct_()->add_field_names("a");
  *record.mutable_struct_()->add_elements() = array;
  return record;
}

Array structWithoutValues() {
  Array record = bare(Array::STRUCT, {uint64_t{1} << 63, 1});
  for (const char* name : {"a", "b"}) record.mutable_struct_()->add_field_names(name);
  return record;
}

Array sparseOfType(int type) {
  Array array = sparse({1, 1}, {}, {0, 0}, {});
  array.mutable_sparse()->set_type(static_cast<Array::Sparse::SparseType>(type));
  return array;
}

Array shortImaginarySparse() {
  Array array = sparse({2, 1}, {0, 1}, {0, 2}, {1, 2});
  array.mutable_sparse()->mutable_qxsparsedouble()->add_imag_elements(1);
  return array;
}

Array bytesOf(const std::string& elements) {
  Array array = bare(Array::UINT8, {2, 2});
  array.mutable_uint8()->set_elements(elements);
  return array;
}

constexpr uint64_t kHuge = uint64_t{1} << 32;

INSTANTIATE_TEST_SUITE_P(
    Arrays, DamagedArray,
    ::testing::Values(
        DamageRow{"Object", ofType(15), "type",
                  "expected types 0 to 14, got type 15 in input 1"},
        DamageRow{"String", ofType(19), "type",
                  "expected types 0 to 14, got type 19 in input 1"},
        DamageRow{"UnknownType", ofType(1000), "type",
                  "expected types 0 to 14, got type 1000 in input 1"},
        DamageRow{"NegativeType", ofType(-1), "type",
                  "expected types 0 to 14, got type -1 in input 1"},
        DamageRow{"TypeInCell", inCell(ofType(19)), "type",
                  "expected types 0 to 14, got type 19 in input 1"},
        DamageRow{"TypeInStruct", inStruct(inCell(ofType(19))), "type",
                  "expected types 0 to 14, got type 19 in input 1"},
        DamageRow{"NoDimensions", doubles({}, {}), "payload",
                  "expected at least two dimensions of input 1, got 0"},
        DamageRow{"OneDimension", doubles({1}, {1}), "payload",
                  "expected at least two dimensions of input 1, got 1"},
        DamageRow{"ShortPayload", doubles({2, 2}, {1, 2, 3}), "payload",
                  "expected an element count of 4 in input 1 (2x2 double), got 3"},
        DamageRow{"LongPayload", doubles({1, 2}, {1, 2, 3}), "payload",
                  "expected an element count of 2 in input 1 (1x2 double), got 3"},
        DamageRow{"NoPayload", bare(Array::CHAR, {1, 2}), "payload",
                  "expected an element count of 2 in input 1 (1x2 char), got 0"},
        DamageRow{"ShortBytes", bytesOf("abc"), "payload",
                  "expected an element count of 4 in input 1 (2x2 uint8), got 3"},
        DamageRow{"ShortLogical", bare(Array::LOGICAL, {1, 1}), "payload",
                  "expected an element count of 1 in input 1 (1x1 logical), got 0"},
        DamageRow{
            "ShortImaginary", doubles({1, 2}, {1, 2}, {3}), "payload",
            "expected an element count of 2 in input 1 (1x2 complex double), got 1"},
        DamageRow{"WrappingProduct", doubles({kHuge, kHuge}, {}), "payload",
                  "expected a number of elements that fits 64 bits, got "
                  "4294967296x4294967296 in input 1"},
        DamageRow{"WrappingFields", structWithoutValues(), "payload",
                  "expected a number of field values that fits 64 bits, got "
                  "9223372036854775808x1 in input 1"},
        DamageRow{"ShortCell", bare(Array::CELL, {1, 3}), "payload",
                  "expected an element count of 3 in input 1 (1x3 cell), got 0"},
        DamageRow{"SparseCube", sparse({1, 1, 1}, {}, {0, 0}, {}), "payload",
                  "expected two dimensions of the sparse array input 1, got 3"},
        DamageRow{"SparseType", sparseOfType(2), "payload",
                  "expected sparse type 0 or 1 of input 1, got 2"},
        DamageRow{"SparseValues", sparse({2, 1}, {0, 1}, {0, 2}, {1}), "payload",
                  "expected as many values as row indices in input 1, got 1 values and 2 "
                  "row indices"},
        DamageRow{"SparseImaginary", shortImaginarySparse(), "payload",
                  "expected as many imaginary values as values in input 1, got 1 and 2"},
        DamageRow{"SparseStarts", sparse({2, 2}, {0}, {0, 1}, {1}), "payload",
                  "expected one column start more than columns in input 1, got 2 for 2x2 "
                  "sparse double"},
        DamageRow{"SparseNoStarts", sparse({1, ~uint64_t{0}}, {}, {}, {}), "payload",
                  "expected one column start more than columns in input 1, got 0 for "
                  "1x18446744073709551615 sparse double"}),
    [](const auto& row) { return row.param.name; });

TEST(DamagedArray, IsNamedByItsPlace) {
  EXPECT_EQ(call("mtimes", 1, {scalar(1), doubles({1, 1}, {})}).error().message(),
            "mtimes: expected an element count of 1 in input 2 (1x1 double), got 0");
}

TEST(HugeDimension, OfAnEmptyArrayPasses) {
  const Array empty = doubles({uint64_t{1} << 63, 0}, {});
  EXPECT_EQ(shapeOf(callForOne("echo", {empty})), shapeOf(empty));
}

TEST(HugeDimension, IsRefusedWhereTheResultWouldFillIt) {
  EXPECT_EQ(call("sum", 1, {doubles({0, uint64_t{1} << 63}, {})}).error().message(),
            "sum: expected a result of at most 67108864 elements, got "
            "1x9223372036854775808");
}

// Whatever the bytes are, the answer is an HTTP one and the server goes on.
TEST(DamagedBytes, NeverEndTheServer) {
  const std::vector<Array> inputs = {
      sparse({3, 2}, {0, 2, 1}, {0, 2, 3}, {1, 3, 2}), inStruct(inCell(chars(u"abc"))),
      doubles({2, 2}, {1, 2, 3, 4}, {5, 6, 7, 8}), bytesOf("abcd")};
  const std::vector<std::string> functions = {"echo", "describe", "sum",          "upper",
                                              "eig",  "solve",    "sparse_mtimes"};
  std::mt19937 random(20240607);
  httplib::Client client = connection();
  client.set_keep_alive(true);
  for (int i = 0; i < 3000; ++i) {
    const size_t count = 1 + random() % 2;
    std::vector<Array> chosen;
    while (chosen.size() < count) chosen.push_back(inputs[random() % inputs.size()]);
    std::string bytes = body(1, chosen);
    for (size_t flips = 1 + random() % 3; flips != 0; --flips) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    const std::string function = functions[random() % functions.size()];
    const httplib::Result reply = client.Post("/demo/" + function, bytes, kMessageType);
    ASSERT_TRUE(reply) << function << " " << reply.error();
    ASSERT_THAT(reply->status, ::testing::AnyOf(200, 400)) << function;
  }
}

}  // namespace
}  // namespace orb::test
