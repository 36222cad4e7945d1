// Keystroke counts and the key index they go by.
#include <gtest/gtest.h>

#include "records/error_dob.h"
#include "tests/records/memory_archive.h"

namespace kivtest {
namespace {

using namespace kivstore;

void SetAll(SHandleArray<int32_t>& counts, int32_t value) {
  for (int key = 0; key < kKeyCount; ++key) {
    counts.SetAt(key, value);
  }
}

TEST(SDErrorDob, SumsByTheFingerOfEachKey) {
  // Finger, and the keys that it types.
  struct {
    int finger;
    std::vector<int> keys;
  } const kHands[] = {
      {0, {0, 16, 25, 27, 44}},
      {1, {18, 22, 23, 28}},
      {2, {2, 3, 4, 29}},
      {3, {1, 5, 6, 17, 19, 21, 30, 31}},
      {4, {}},
      {5, {47}},
      {6, {7, 9, 12, 13, 20, 24, 32, 33}},
      {7, {8, 10, 34, 38}},
      {8, {11, 14, 35, 39}},
      {9, {15, 26, 36, 37, 40, 41, 42, 43, 45, 46}},
  };
  for (const auto& hand : kHands) {
    SDErrorDob record;
    for (const int key : hand.keys) {
      record.keyTypedWrong.SetAt(key, key + 1);
      record.keyTypedTotal.SetAt(key, 2);
    }
    int32_t wrong = 0;
    for (const int key : hand.keys) {
      wrong += key + 1;
    }
    const int32_t total = 2 * static_cast<int32_t>(hand.keys.size());
    EXPECT_EQ(record.GetWrongByFinger(hand.finger), wrong) << hand.finger;
    EXPECT_EQ(record.GetTotalByFinger(hand.finger), total) << hand.finger;
    EXPECT_EQ(record.GetTotalByFinger(10), hand.finger < 5 ? total : 0) << hand.finger;
    EXPECT_EQ(record.GetTotalByFinger(11), hand.finger < 5 ? 0 : total) << hand.finger;
  }
}

TEST(SDErrorDob, SumsTheHandsToTheWholeKeyboard) {
  SDErrorDob record;
  SetAll(record.keyTypedTotal, 1);
  EXPECT_EQ(record.GetTotalByFinger(10), 21);
  EXPECT_EQ(record.GetTotalByFinger(11), 27);
  for (const int finger : {-1, 12, -2147483647, 2147483647}) {
    EXPECT_EQ(record.GetTotalByFinger(finger), 0) << finger;
  }
}

TEST(SDErrorDob, CountsKeysThatAShortTableLacksAsNothing) {
  SDErrorDob record;
  SetAll(record.keyTypedWrong, 1);
  record.keyTypedWrong.SetSize(17);
  record.keyTypedTotal.Release();
  EXPECT_EQ(record.GetWrongByFinger(0), 2);
  EXPECT_EQ(record.GetTotalByFinger(11), 0);
}

TEST(SDErrorDob, WrapsLikeThirtyTwoBits) {
  SDErrorDob record;
  SetAll(record.keyTypedTotal, 0x7FFFFFFF);
  EXPECT_EQ(record.GetTotalByFinger(1), -4);
}

TEST(SDErrorDob, MergesByReplacingTheCounts) {
  SDErrorDob here;
  SDErrorDob there;
  SetAll(here.keyTypedWrong, 5);
  there.keyTypedWrong.SetAt(3, 7);
  there.SetDirty(true);
  here.Merge(there);
  EXPECT_TRUE(here.IsEqual(there));
  EXPECT_TRUE(here.IsDirty());
}

TEST(SDBErrorDob, PutsTheIdentifierInFront) {
  SDBErrorDob record;
  record.id = 0x01020304;
  record.errorDob.keyTypedWrong.SetSize(1);
  record.errorDob.keyTypedTotal.SetSize(0);
  record.errorDob.keyTypedWrong.SetAt(0, 9);
  EXPECT_EQ(BytesOf(record), std::string("\1\2\3\4\0\1\0\0\0\x9\0\0", 12));
  SDBErrorDob copy;
  copy.Copy(record);
  EXPECT_TRUE(copy.IsEqual(record));
  copy.errorDob.keyTypedWrong.SetAt(0, 8);
  EXPECT_FALSE(copy.IsEqual(record));
}

TEST(KeyIndex, PutsEveryKeyUnderItsFingerOnTheAmericanKeyboard) {
  struct {
    int finger;
    const char* keys;
  } const kKeyboard[] = {{0, "`1qaz"},    {1, "2wsx"}, {2, "3edc"}, {3, "45rtfgvb"},   {5, " "},
                         {6, "67yuhjnm"}, {7, "8ik,"}, {8, "9ol."}, {9, "0p-=[]\\;'/"}};
  int keys = 0;
  for (const auto& row : kKeyboard) {
    for (const char* key = row.keys; *key != '\0'; ++key, ++keys) {
      const int index = KeyIndexOf(*key);
      ASSERT_NE(index, kNoKey) << *key;
      EXPECT_EQ(kFingerOfKey[index], row.finger) << *key;
    }
  }
  EXPECT_EQ(keys, kKeyCount);
}

TEST(KeyIndex, KnowsBothCharactersOfAKey) {
  const char kPairs[][2] = {{'a', 'A'}, {'1', '!'}, {'0', ')'}, {'-', '_'},  {'`', '~'},
                            {'/', '?'}, {',', '<'}, {';', ':'}, {'\\', '|'}, {'\'', '"'}};
  for (const auto& pair : kPairs) {
    EXPECT_EQ(KeyIndexOf(pair[0]), KeyIndexOf(pair[1])) << pair[0];
  }
  EXPECT_EQ(KeyIndexOf('\0'), kNoKey);
  EXPECT_EQ(KeyIndexOf('\xE9'), kNoKey);
  EXPECT_EQ(KeyCharacter(0), 'A');
  EXPECT_EQ(KeyCharacter(44), '`');
  EXPECT_EQ(KeyCharacter(48), '\0');
  EXPECT_EQ(KeyCharacter(-1), '\0');
}

}  // namespace
}  // namespace kivtest
