// SPDX-License-Identifier: MIT
// Which change made through one handle is seen through another, and from when on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "client/array/types.h"

namespace orb::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

/// Whether the elements that callers write lie in the storage that handles share.
bool isInSharedStorage(const Type& type) {
  return type.id != orbUINT16_CLASS && type.id != orbINT16_CLASS &&
         type.id != orbCHAR_CLASS;
}

bool handsOutData(const Type& type) {
  return type.id != orbSTRUCT_CLASS && type.id != orbCELL_CLASS;
}

std::vector<Type> typesWithData() {
  std::vector<Type> withData;
  for (const Type& type : types()) {
    if (handsOutData(type)) withData.push_back(type);
  }
  return withData;
}

Array elementOf(orbArray cell, size_t index = 0) {
  return Array(orbGetCell(cell, index));
}

double scalarAt(orbArray cell, size_t index = 0) {
  return orbGetScalar(elementOf(cell, index));
}

class Sharing : public ::testing::TestWithParam<Type> {
 protected:
  /// Stores `value_` in the cell, then changes it.
  void storeThenWrite() {
    orbSetCell(cell_, 0, value_);
    write(value_);
  }

  void write(orbArray a) {
    fill(type_, realData(type_, a), 2, 1);
    if (orbGetImagData(a) != nullptr) fill(type_, orbGetImagData(a), 2, 101);
  }

  /// Expects a fresh handle on the element to have what write() wrote, or zeros.
  void expectSeen(bool seen) {
    const Array fresh = elementOf(cell_);
    const Bytes real = bytesOf(type_, realData(type_, fresh), 2);
    const Bytes imag = bytesOf(type_, orbGetImagData(fresh), 2);
    if (seen) {
      EXPECT_EQ(real, bytesOf(type_, realData(type_, value_), 2));
      EXPECT_EQ(imag, bytesOf(type_, orbGetImagData(value_), 2));
      EXPECT_EQ(real[0], 1);
    } else {
      EXPECT_THAT(real, Each(0));
      EXPECT_THAT(imag, Each(0));
    }
  }

  const Type type_ = GetParam();
  const Array cell_{orbCreateCellMatrix(1, 1)};
  const Array value_ = create(type_, {1, 2}, orbCOMPLEX);
};

TEST_P(Sharing, StoringWritesBackWhatTheValueHolds) {
  write(value_);
  orbSetCell(cell_, 0, value_);
  expectSeen(true);
}

TEST_P(Sharing, StoringInAStructWritesBackWhatTheValueHolds) {
  const Array s = structOf({"f"});
  write(value_);
  orbSetField(s, 0, "f", value_);
  EXPECT_EQ(bytesOf(type_, realData(type_, Array(orbGetField(s, 0, "f"))), 2),
            bytesOf(type_, realData(type_, value_), 2));
  orbSetFieldByNumber(s, 0, 0, value_);
  EXPECT_EQ(bytesOf(type_, orbGetImagData(Array(orbGetFieldByNumber(s, 0, 0))), 2),
            bytesOf(type_, orbGetImagData(value_), 2));
}

TEST_P(Sharing, LaterWritesToTheValueReachTheParentAtOnceOnlyFromSharedStorage) {
  storeThenWrite();
  expectSeen(isInSharedStorage(type_));
}

TEST_P(Sharing, LaterWritesToTheValueReachTheParentWhenItIsStoredAgain) {
  storeThenWrite();
  orbSetCell(cell_, 0, value_);
  expectSeen(true);
}

TEST_P(Sharing, LaterWritesToTheValueReachTheParentWhenItIsStoredElsewhere) {
  storeThenWrite();
  const Array other(orbCreateCellMatrix(1, 1));
  orbSetCell(other, 0, value_);
  expectSeen(true);
}

TEST_P(Sharing, LaterWritesToTheValueReachTheParentWhenItIsDuplicated) {
  storeThenWrite();
  const Array copy(orbDuplicateArray(value_));
  expectSeen(true);
}

TEST_P(Sharing, ARefusedStoreWritesNothingBack) {
  storeThenWrite();
  orbSetCell(cell_, 1, value_);
  expectSeen(isInSharedStorage(type_));
}

TEST_P(Sharing, WritesThroughAnElementHandleAreInTheParentAtOnceOnlyFromSharedStorage) {
  orbSetCell(cell_, 0, value_);
  const Array element = elementOf(cell_);
  write(element);
  const Array fresh = elementOf(cell_);
  EXPECT_EQ(bytesOf(type_, realData(type_, fresh), 2) ==
                bytesOf(type_, realData(type_, element), 2),
            isInSharedStorage(type_));
  orbSetCell(cell_, 0, element);
  EXPECT_EQ(bytesOf(type_, realData(type_, elementOf(cell_)), 2),
            bytesOf(type_, realData(type_, element), 2));
}

TEST_P(Sharing, WritesThroughTheParentsDuplicateNeverReachTheValue) {
  orbSetCell(cell_, 0, value_);
  const Array copy(orbDuplicateArray(cell_));
  const Array element = elementOf(copy);
  write(element);
  orbSetCell(copy, 0, element);
  expectSeen(false);
  EXPECT_THAT(bytesOf(type_, realData(type_, value_), 2), Each(0));
}

TEST_P(Sharing, ResizingTheValueChangesTheParentsElementAtOnce) {
  write(value_);
  orbSetCell(cell_, 0, value_);
  orbSetN(value_, 1);
  const Array fresh = elementOf(cell_);
  EXPECT_THAT(dimensionsOf(fresh), ElementsAre(1, 1));
  EXPECT_EQ(bytesOf(type_, realData(type_, fresh), 1),
            bytesOf(type_, realData(type_, value_), 1));
  EXPECT_EQ(bytesOf(type_, realData(type_, fresh), 1)[0], 1);
}

INSTANTIATE_TEST_SUITE_P(Types, Sharing, ::testing::ValuesIn(typesWithData()),
                         TypeName());

TEST(GetCell, TwiceGivesTwoHandlesOnOneElement) {
  const Array cell = cellRow(doubleRow({1}));
  const Array first = elementOf(cell);
  const Array second = elementOf(cell);
  orbGetPr(first)[0] = 2;
  EXPECT_EQ(orbGetScalar(second), 2);
  EXPECT_EQ(scalarAt(cell), 2);
}

TEST(GetField, TwiceGivesTwoHandlesOnOneValue) {
  const Array s = structOf({"f"});
  const Array first(orbGetField(s, 0, "f"));
  const Array second(orbGetFieldByNumber(s, 0, 0));
  const size_t dims[] = {1, 1};
  orbSetDimensions(first, dims, 2);
  orbGetPr(first)[0] = 2;
  EXPECT_EQ(orbGetScalar(second), 2);
}

TEST(SetCell, OfOneValueInTwoCellsSharesIt) {
  const Array value = doubleRow({1});
  const Array cell(orbCreateCellMatrix(1, 2));
  orbSetCell(cell, 0, value);
  orbSetCell(cell, 1, value);
  orbGetPr(elementOf(cell, 0))[0] = 2;
  EXPECT_EQ(scalarAt(cell, 1), 2);
  EXPECT_EQ(orbGetScalar(value), 2);
}

TEST(SetCell, OfACharArrayLeavesItsOtherHandlesWithTheTextTheyReadBefore) {
  const Array cell = cellRow(charRow(u"old"));
  const Array reader = elementOf(cell);
  const Array writer = elementOf(cell);
  orbGetChars(writer)[0] = u'O';
  orbSetCell(cell, 0, writer);
  EXPECT_EQ(unitsOf(reader), u"old");
  EXPECT_EQ(unitsOf(elementOf(cell)), u"Old");
}

TEST(SetCell, OfTwoHandlesOnOneCharArrayTheLastOneStoredWins) {
  const Array cell = cellRow(charRow(u"abc"));
  const Array first = elementOf(cell);
  const Array second = elementOf(cell);
  orbGetChars(first)[0] = u'1';
  orbGetChars(second)[2] = u'2';
  orbSetCell(cell, 0, first);
  orbSetCell(cell, 0, second);
  EXPECT_EQ(unitsOf(elementOf(cell)), u"ab2");
}

TEST(SetCell, ShowsAChangedElementOfAStoredCellOnlyAfterThatCellIsStoredAgain) {
  const Array inner = cellRow(doubleRow({1}));
  const Array outer(orbCreateCellMatrix(1, 1));
  orbSetCell(outer, 0, inner);
  orbSetCell(inner, 0, doubleRow({2}));
  EXPECT_EQ(scalarAt(elementOf(outer)), 1);
  orbSetCell(outer, 0, inner);
  EXPECT_EQ(scalarAt(elementOf(outer)), 2);
}

TEST(SetCell, ShowsAWrittenElementOfAStoredCellOnlyAfterThatCellIsStoredAgain) {
  const Array leaf = doubleRow({1});
  const Array inner(orbCreateCellMatrix(1, 1));
  orbSetCell(inner, 0, leaf);
  const Array outer(orbCreateCellMatrix(1, 1));
  orbSetCell(outer, 0, inner);
  orbGetPr(leaf)[0] = 2;
  EXPECT_EQ(scalarAt(inner), 2);
  EXPECT_EQ(scalarAt(elementOf(outer)), 1);
  orbSetCell(outer, 0, inner);
  EXPECT_EQ(scalarAt(elementOf(outer)), 2);
}

TEST(SetField, ShowsAChangedFieldOfAStoredStructOnlyAfterThatStructIsStoredAgain) {
  const Array inner = structOf({"f"});
  const Array outer = structOf({"s"});
  orbSetField(outer, 0, "s", inner);
  orbSetField(inner, 0, "f", doubleRow({2}));
  EXPECT_TRUE(orbIsEmpty(Array(orbGetField(Array(orbGetField(outer, 0, "s")), 0, "f"))));
  orbSetField(outer, 0, "s", inner);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(Array(orbGetField(outer, 0, "s")), 0, "f"))),
            2);
}

TEST(AddField, ToAStoredStructShowsTheNameAtOnceAndTheValueWhenStoredAgain) {
  const Array inner = structOf({"a"});
  const Array outer(orbCreateCellMatrix(1, 1));
  orbSetCell(outer, 0, inner);
  orbAddField(inner, "b");
  EXPECT_EQ(orbGetNumberOfFields(elementOf(outer)), 2);
  EXPECT_EQ(orbGetField(elementOf(outer), 0, "b"), nullptr);
  orbSetCell(outer, 0, inner);
  EXPECT_TRUE(orbIsEmpty(Array(orbGetField(elementOf(outer), 0, "b"))));
}

TEST(RemoveField, OfAStoredStructTakesTheNameAtOnceAndTheValueWhenStoredAgain) {
  const Array inner = structOf({"a", "b"});
  orbSetField(inner, 0, "a", doubleRow({1}));
  orbSetField(inner, 0, "b", doubleRow({2}));
  const Array outer(orbCreateCellMatrix(1, 1));
  orbSetCell(outer, 0, inner);
  orbRemoveField(inner, 0);
  EXPECT_EQ(orbGetNumberOfFields(elementOf(outer)), 1);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(elementOf(outer), 0, "b"))), 1);
  orbSetCell(outer, 0, inner);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(elementOf(outer), 0, "b"))), 2);
}

TEST(GetCell, GivesAGrandchildThatReachesTheRootOnlyWhenEachLevelIsStoredAgain) {
  const Array root = cellRow(cellRow(cellRow(doubleRow({1}))));
  const Array top = elementOf(root);
  const Array middle = elementOf(top);
  orbGetPr(elementOf(middle))[0] = 2;
  EXPECT_EQ(scalarAt(middle), 2);
  EXPECT_EQ(scalarAt(elementOf(elementOf(root))), 1);

  orbSetCell(root, 0, top);
  EXPECT_EQ(scalarAt(elementOf(elementOf(root))), 1);

  orbSetCell(top, 0, middle);
  EXPECT_EQ(scalarAt(elementOf(elementOf(root))), 1);
  orbSetCell(root, 0, top);
  EXPECT_EQ(scalarAt(elementOf(elementOf(root))), 2);
}

TEST(GetCell, GivesACellThatKeepsItsViewWhenAnotherHandleStoresIntoTheSameCell) {
  const Array root = cellRow(cellRow(doubleRow({1})));
  const Array first = elementOf(root);
  const Array second = elementOf(root);
  orbSetCell(first, 0, doubleRow({2}));
  orbSetCell(root, 0, first);
  EXPECT_EQ(scalarAt(second), 1);
  EXPECT_EQ(scalarAt(elementOf(root)), 2);
}

// Two handles on one child, one of which changes its size: the other keeps its own view
// of the elements, and no function may read or write past it.

TEST(StaleHandle, OfAGrownCharArrayReadsItsOwnUnitsAndWritesBackOnlyThem) {
  const Array cell = cellRow(charRow(u"abc"));
  const Array resized = elementOf(cell);
  const Array stale = elementOf(cell);
  orbSetN(resized, 5);
  orbGetChars(resized)[3] = u'd';
  orbGetChars(resized)[4] = u'e';

  char buffer[] = "#######";
  EXPECT_EQ(orbGetNumberOfElements(stale), 5u);
  EXPECT_EQ(orbGetString(stale, buffer, 6), 0);
  EXPECT_THAT(buffer, ElementsAre('a', 'b', 'c', '\0', '\0', '\0', '#', '\0'));
  char* text = orbArrayToString(stale);
  EXPECT_STREQ(text, "abc");
  orbFree(text);

  orbGetChars(stale)[0] = u'A';
  orbSetCell(cell, 0, resized);
  orbSetCell(cell, 0, stale);
  EXPECT_EQ(unitsOf(elementOf(cell)), u"Abcde");
}

TEST(StaleHandle, OfAShrunkCharArrayWritesBackOnlyWhatFits) {
  const Array cell = cellRow(charRow(u"abc"));
  const Array resized = elementOf(cell);
  const Array stale = elementOf(cell);
  orbSetN(resized, 1);
  orbGetChars(stale)[0] = u'A';
  orbSetCell(cell, 0, resized);
  orbSetCell(cell, 0, stale);
  EXPECT_EQ(unitsOf(elementOf(cell)), u"A");
  EXPECT_EQ(unitsOf(Array(orbDuplicateArray(stale))), u"A");
}

TEST(StaleHandle, OfAResized16BitArrayWritesBackOnlyWhatFits) {
  for (const size_t n : {1, 5}) {
    SCOPED_TRACE(n);
    const Array cell =
        cellRow(Array(orbCreateNumericMatrix(1, 3, orbINT16_CLASS, orbCOMPLEX)));
    const Array resized = elementOf(cell);
    const Array stale = elementOf(cell);
    orbSetN(resized, n);
    static_cast<int16_t*>(orbGetData(stale))[0] = -7;
    static_cast<int16_t*>(orbGetImagData(stale))[0] = 8;
    orbSetCell(cell, 0, resized);
    orbSetCell(cell, 0, stale);

    const Array fresh = elementOf(cell);
    std::vector<int16_t> expected(n);
    expected[0] = -7;
    EXPECT_EQ(elementsOf<int16_t>(fresh), expected);
    EXPECT_EQ(static_cast<int16_t*>(orbGetImagData(fresh))[0], 8);
  }
}

TEST(StaleHandle, OfAResizedDoubleArraySeesTheNewElementsAtOnce) {
  const Array cell = cellRow(doubleRow({1, 2}));
  const Array resized = elementOf(cell);
  const Array other = elementOf(cell);
  orbSetN(resized, 3);
  EXPECT_THAT(elementsOf<double>(other), ElementsAre(1, 2, 0));
}

TEST(StaleHandle, OfAGrownCellHasOnlyTheElementsItKnows) {
  const Array root = cellRow(cellRow(doubleRow({1})));
  const Array resized = elementOf(root);
  const Array stale = elementOf(root);
  orbSetN(resized, 3);
  EXPECT_EQ(orbGetNumberOfElements(stale), 3u);
  EXPECT_EQ(orbGetCell(stale, 1), nullptr);
  orbSetCell(stale, 1, doubleRow({9}));

  orbSetCell(root, 0, resized);
  EXPECT_TRUE(orbIsEmpty(elementOf(elementOf(root), 2)));
  orbSetCell(root, 0, stale);
  EXPECT_EQ(scalarAt(elementOf(root)), 1);
  EXPECT_EQ(orbGetCell(elementOf(root), 1), nullptr);
  EXPECT_EQ(scalarAt(Array(orbDuplicateArray(stale))), 1);
}

TEST(StaleHandle, OfAShrunkCellHasNoElementBeyondTheDimensions) {
  const Array root = cellRow(cellRow(doubleRow({1}), doubleRow({2})));
  const Array resized = elementOf(root);
  const Array stale = elementOf(root);
  orbSetN(resized, 1);
  EXPECT_EQ(orbGetCell(stale, 1), nullptr);
  orbSetCell(root, 0, resized);
  orbSetCell(root, 0, stale);
  EXPECT_EQ(scalarAt(elementOf(root)), 1);
  EXPECT_EQ(orbGetCell(elementOf(root), 1), nullptr);
}

TEST(StaleHandle, OfAShrunkStructHasNoElementBeyondTheDimensions) {
  const Array s = structOf({"a"});
  orbSetN(s, 2);
  const Array root(orbCreateCellMatrix(1, 1));
  orbSetCell(root, 0, s);
  const Array resized = elementOf(root);
  const Array stale = elementOf(root);
  orbSetN(resized, 1);
  EXPECT_NE(Array(orbGetField(stale, 0, "a")).get(), nullptr);
  EXPECT_EQ(orbGetField(stale, 1, "a"), nullptr);
}

TEST(StaleHandle, OfAStructLeftWithoutElementsGainsOnlyTheNameOfAField) {
  const Array root = cellRow(structOf({"a"}));
  const Array resized = elementOf(root);
  const Array stale = elementOf(root);
  orbSetN(resized, 0);
  EXPECT_EQ(orbAddField(stale, "b"), 1);
  EXPECT_EQ(orbGetNumberOfFields(resized), 2);
}

TEST(StaleHandle, OfAStructThatGainedAFieldRefusesWhatItDoesNotHold) {
  const Array root = cellRow(structOf({"a"}));
  const Array changed = elementOf(root);
  const Array stale = elementOf(root);
  EXPECT_EQ(orbAddField(changed, "b"), 1);
  orbSetField(changed, 0, "b", doubleRow({2}));

  EXPECT_EQ(orbGetNumberOfFields(stale), 2);
  EXPECT_EQ(orbGetField(stale, 0, "b"), nullptr);
  orbSetField(stale, 0, "b", doubleRow({9}));
  EXPECT_EQ(orbAddField(stale, "c"), -1);
  EXPECT_EQ(orbGetNumberOfFields(stale), 2);

  orbSetCell(root, 0, changed);
  EXPECT_EQ(orbGetScalar(Array(orbGetField(elementOf(root), 0, "b"))), 2);
}

TEST(StaleHandle, OfAStructThatLostAFieldIsSafeToUse) {
  const Array root = cellRow(structOf({"a", "b"}));
  const Array changed = elementOf(root);
  const Array stale = elementOf(root);
  orbRemoveField(changed, 0);
  EXPECT_EQ(orbGetNumberOfFields(stale), 1);
  EXPECT_EQ(orbGetField(stale, 0, "a"), nullptr);
  orbRemoveField(stale, 0);
  orbSetCell(root, 0, stale);
  EXPECT_EQ(orbGetNumberOfFields(elementOf(root)), 0);
}

// More elements than before: the imaginary part has no place for them in shared storage.
TEST(SetM, OfAComplex16BitArrayToNoneAndToMoreGivesADuplicateThatIsReal) {
  for (const orbClassID id : {orbUINT16_CLASS, orbINT16_CLASS}) {
    const Array a(orbCreateNumericMatrix(2, 1, id, orbCOMPLEX));
    orbSetM(a, 0);
    EXPECT_EQ(orbGetImagData(a), nullptr);
    orbSetM(a, 100);
    EXPECT_TRUE(orbIsComplex(a));
    auto* imag = static_cast<uint16_t*>(orbGetImagData(a));
    ASSERT_NE(imag, nullptr);
    EXPECT_THAT(std::vector<uint16_t>(imag, imag + 100), Each(0));
    static_cast<uint16_t*>(orbGetData(a))[99] = 7;
    imag[99] = 8;

    const Array copy(orbDuplicateArray(a));
    EXPECT_EQ(elementsOf<uint16_t>(copy), elementsOf<uint16_t>(a));
    EXPECT_EQ(static_cast<uint16_t*>(orbGetData(copy))[99], 7);
    EXPECT_FALSE(orbIsComplex(copy));
    EXPECT_EQ(orbGetImagData(copy), nullptr);
  }
}

TEST(DestroyArray, OfHandlesThatShareAnElementMayHappenOnDifferentThreads) {
  for (int round = 0; round < 100; ++round) {
    Array cell = cellRow(doubleRow({1, 2, 3}));
    Array element = elementOf(cell);
    std::thread other([&cell] { orbDestroyArray(cell.release()); });
    orbDestroyArray(element.release());
    other.join();
  }
}

}  // namespace
}  // namespace orb::test
