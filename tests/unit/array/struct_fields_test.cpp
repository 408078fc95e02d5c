// SPDX-License-Identifier: MIT
#include "array/struct_fields.h"

#include <gmock/gmock.h>

#include <boost/numeric/conversion/cast.hpp>
#include <boost/weak_ptr.hpp>
#include <stdexcept>

#include "unit/array/message.h"

namespace orb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ThrowsMessage;

using Names = std::vector<std::string>;

/// A struct with these dimensions and the values 0, 1, ... told by their arrayID.
std::string structOf(const std::string& dimensions, const Names& names, int values) {
  std::string text = "type: STRUCT dimension: [" + dimensions + "] struct_ { ";
  for (const std::string& name : names) text += "field_names: '" + name + "' ";
  for (int i = 0; i < values; ++i)
    text += "elements { arrayID: " + std::to_string(i) + " } ";
  return text + "}";
}

constexpr int kAdded = -1;

/// The arrayIDs of the values, kAdded for those without one.
std::vector<int> valuesOf(KALDEXStructArrayProxy& proxy) {
  std::vector<int> values;
  for (const SharedMessage& entry : proxy.elements()) {
    values.push_back(entry->has_arrayid() ? static_cast<int>(entry->arrayid()) : kAdded);
  }
  return values;
}

Names namesOf(const KALDEXStructArrayProxy& proxy) {
  const auto& names = proxy.message().struct_().field_names();
  return Names(names.begin(), names.end());
}

TEST(FieldNumber, IsThatOfTheFirstFieldWithExactlyThisName) {
  const KALDEX_Array message = parsed(structOf("0, 0", {"ab", "x", "a", "x", ""}, 0));
  const struct {
    const char* name;
    int number;
  } rows[] = {{"ab", 0}, {"x", 1}, {"a", 2}, {"", 4}, {"X", -1}, {"b", -1}, {"abc", -1}};
  for (const auto& [name, number] : rows) {
    EXPECT_EQ(fieldNumber(message.struct_(), name), number) << name;
  }
  EXPECT_EQ(fieldNumber(KALDEX_Array::Struct(), "a"), -1);
}

TEST(AddField, PutsAValueBehindThoseOfEachElement) {
  const struct {
    Names names;
    std::string dimensions;
    int values;
    std::vector<int> after;
  } rows[] = {
      {{}, "1, 2", 0, {kAdded, kAdded}},
      {{"a"}, "3, 1", 3, {0, kAdded, 1, kAdded, 2, kAdded}},
      {{"a", "b"}, "1, 2", 4, {0, 1, kAdded, 2, 3, kAdded}},
      {{"a", "b", "d"}, "1", 3, {0, 1, 2, kAdded}},
  };
  for (const auto& [names, dimensions, values, after] : rows) {
    SCOPED_TRACE(dimensions);
    KALDEXStructArrayProxy proxy(shared(structOf(dimensions, names, values)));
    EXPECT_EQ(addField(proxy, "c"), static_cast<int>(names.size()));
    EXPECT_EQ(valuesOf(proxy), after);
    Names namesAfter = names;
    namesAfter.push_back("c");
    EXPECT_EQ(namesOf(proxy), namesAfter);
  }
}

TEST(AddField, KeepsTheOtherValuesThemselves) {
  KALDEXStructArrayProxy proxy(shared(structOf("1, 2", {"a"}, 2)));
  const Elements before = proxy.elements();
  addField(proxy, "b");
  EXPECT_EQ(proxy.elements()[0], before[0]);
  EXPECT_EQ(proxy.elements()[2], before[1]);
}

TEST(AddField, GivesEachElementAnEmptySlotOfItsOwnWithAnEmptyPayload) {
  KALDEXStructArrayProxy proxy(shared(structOf("1, 2", {}, 0)));
  addField(proxy, "a");
  const std::string bytes("\x08\x09\x12\x02\x00\x00\x82\x01\x02\x0A\x00", 11);
  ASSERT_EQ(proxy.elements().size(), 2u);
  EXPECT_EQ(proxy.elements()[0]->SerializeAsString(), bytes);
  EXPECT_EQ(proxy.elements()[1]->SerializeAsString(), bytes);
  EXPECT_NE(proxy.elements()[0], proxy.elements()[1]);
}

TEST(AddField, OfAStructWithoutElementsAddsTheNameOnly) {
  for (const char* dimensions : {"", "0, 0", "0, 5", "4294967296, 4294967296"}) {
    for (const int values : {0, 2}) {
      SCOPED_TRACE(std::string(dimensions) + " with " + std::to_string(values));
      KALDEXStructArrayProxy proxy(shared(structOf(dimensions, {"a"}, values)));
      const Elements before = proxy.elements();
      EXPECT_EQ(addField(proxy, "b"), 1);
      EXPECT_EQ(namesOf(proxy), (Names{"a", "b"}));
      EXPECT_EQ(proxy.elements(), before);
    }
  }
}

TEST(AddField, MakesAnAbsentPayloadPresent) {
  KALDEXStructArrayProxy proxy(shared("type: STRUCT"));
  EXPECT_EQ(addField(proxy, "a"), 0);
  EXPECT_THAT(proxy.message(), IsMessage("type: STRUCT struct_ { field_names: 'a' }"));
}

TEST(AddField, RefusesValuesThatDoNotMatchAndChangesNothing) {
  const struct {
    Names names;
    std::string dimensions;
    int values;
  } rows[] = {
      {{"a", "b"}, "1, 2", 3},
      {{"a", "b"}, "1, 2", 2},
      {{"a", "b"}, "1, 2", 5},
      {{"a", "b"}, "1, 2", 6},
      {{"a", "b"}, "1, 2", 0},
      {{}, "1, 1", 1},
      // Times two fields this number of elements wraps to 2.
      {{"a", "b"}, "9223372036854775809, 1", 2},
  };
  for (const auto& [names, dimensions, values] : rows) {
    SCOPED_TRACE(dimensions + " with " + std::to_string(values));
    const std::string text = structOf(dimensions, names, values);
    KALDEXStructArrayProxy proxy(shared(text));
    const Elements before = proxy.elements();
    EXPECT_THAT(
        [&] { addField(proxy, "c"); },
        ThrowsMessage<std::length_error>("struct values do not match its fields"));
    EXPECT_THAT(proxy.message(), IsMessage(text));
    EXPECT_EQ(proxy.elements(), before);
  }
}

TEST(AddField, RefusesMoreValuesThan32BitsCountAndChangesNothing) {
  const std::string text = structOf("2147483648, 1", {}, 0);
  KALDEXStructArrayProxy proxy(shared(text));
  EXPECT_THROW(addField(proxy, "a"), boost::numeric::positive_overflow);
  EXPECT_THAT(proxy.message(), IsMessage(text));
  EXPECT_TRUE(proxy.elements().empty());
}

TEST(RemoveField, DropsItsValueFromEachElement) {
  const struct {
    int number;
    Names names;
    std::vector<int> values;
  } rows[] = {
      {0, {"b", "c"}, {1, 2, 4, 5}},
      {1, {"a", "c"}, {0, 2, 3, 5}},
      {2, {"a", "b"}, {0, 1, 3, 4}},
  };
  for (const auto& [number, names, values] : rows) {
    SCOPED_TRACE(number);
    KALDEXStructArrayProxy proxy(shared(structOf("2, 1", {"a", "b", "c"}, 6)));
    const Elements before = proxy.elements();
    removeField(proxy, number);
    EXPECT_EQ(namesOf(proxy), names);
    EXPECT_EQ(valuesOf(proxy), values);
    EXPECT_EQ(proxy.elements()[3], before[static_cast<size_t>(values[3])]);
  }
}

TEST(RemoveField, ReleasesTheValues) {
  KALDEXStructArrayProxy proxy(shared(structOf("1, 2", {"a", "b"}, 4)));
  const boost::weak_ptr<KALDEX_Array> first = proxy.elements()[0];
  const boost::weak_ptr<KALDEX_Array> second = proxy.elements()[2];
  removeField(proxy, 0);
  EXPECT_TRUE(first.expired());
  EXPECT_TRUE(second.expired());
}

TEST(RemoveField, OfTheOnlyFieldLeavesNoValues) {
  KALDEXStructArrayProxy proxy(shared(structOf("1, 2", {"a"}, 2)));
  removeField(proxy, 0);
  EXPECT_EQ(namesOf(proxy), Names());
  EXPECT_THAT(valuesOf(proxy), ElementsAre());
}

TEST(RemoveField, TouchesOnlyValuesOfTheElements) {
  const struct {
    std::string dimensions;
    int values;
    std::vector<int> after;
  } rows[] = {
      {"0, 0", 4, {0, 1, 2, 3}}, {"", 2, {0, 1}},     {"1, 1", 4, {0, 2, 3}},
      {"1, 3", 3, {0, 2}},       {"1, 3", 4, {0, 2}}, {"1, 3", 0, {}},
  };
  for (const auto& [dimensions, values, after] : rows) {
    SCOPED_TRACE(dimensions + " with " + std::to_string(values));
    KALDEXStructArrayProxy proxy(shared(structOf(dimensions, {"a", "b"}, values)));
    removeField(proxy, 1);
    EXPECT_EQ(namesOf(proxy), Names{"a"});
    EXPECT_EQ(valuesOf(proxy), after);
  }
}

}  // namespace
}  // namespace orb::test
