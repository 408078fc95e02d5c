// SPDX-License-Identifier: MIT
#include "orb/dispatch_on_QXType"

#include <gmock/gmock.h>

#include <boost/exception/get_error_info.hpp>
#include <limits>
#include <vector>

#include "array/array_attributes_retriever.h"
#include "unit/array/message.h"

namespace orb::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

struct Recorder {
  template <QXType T>
  void visit() {
    visited.push_back(T);
  }

  std::vector<QXType> visited;
};

TEST(Dispatch, CallsTheVisitOfTheTypeOnce) {
  Recorder recorder;
  std::vector<QXType> types;
  for (int type = KALDEX_Array::UINT8; type <= KALDEX_Array::SPARSE; ++type) {
    types.push_back(static_cast<QXType>(type));
    dispatch_on_QXType(types.back(), recorder);
  }
  EXPECT_EQ(recorder.visited, types);
}

TEST(Dispatch, RefusesEveryOtherNumberWithoutAVisit) {
  std::vector<QXType> types(std::begin(kRefusedTypes), std::end(kRefusedTypes));
  types.push_back(static_cast<QXType>(std::numeric_limits<int>::min()));
  types.push_back(static_cast<QXType>(std::numeric_limits<int>::max()));
  for (const QXType type : types) {
    SCOPED_TRACE(type);
    Recorder recorder;
    try {
      dispatch_on_QXType(type, recorder);
      ADD_FAILURE() << "accepted";
    } catch (const std::invalid_argument& refusal) {
      EXPECT_STREQ(refusal.what(), "dispatch_on_QXType");
    }
    EXPECT_TRUE(recorder.visited.empty());
  }
}

TEST(Dispatch, NamesSourceAndVisitorInTheException) {
  const KALDEX_Array message;
  OrbArrayAttributesRetriever visitor(message);
  try {
    dispatch_on_QXType(KALDEX_Array::STRING, visitor);
    FAIL() << "accepted";
  } catch (const boost::exception& refusal) {
    const char* const* file = boost::get_error_info<boost::throw_file>(refusal);
    const int* line = boost::get_error_info<boost::throw_line>(refusal);
    const char* const* function = boost::get_error_info<boost::throw_function>(refusal);
    ASSERT_TRUE(file != nullptr && line != nullptr && function != nullptr);
    EXPECT_STREQ(*file, "client/c/orb/include/orb/dispatch_on_QXType");
    EXPECT_EQ(*line, 12);
    EXPECT_THAT(*function, AllOf(HasSubstr("void orb::dispatch_on_QXType("),
                                 HasSubstr("OrbArrayAttributesRetriever")));
  }
}

}  // namespace
}  // namespace orb::test
