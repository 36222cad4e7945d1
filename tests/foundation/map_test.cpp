// Lookup, order, memory and letter case of the map family; bucket counts.
#include "foundation/containers/map.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <vector>

#include "foundation/containers/hash_size.h"

namespace kivstore {
namespace {

template <class Key, class Value>
std::vector<Key> Keys(const SMap<Key, Value>& map) {
  std::vector<Key> keys;
  Key key{};
  Value value{};
  for (SMapPosition position = map.GetStartPosition(); position != 0;) {
    map.GetNextAssoc(position, key, value);
    keys.push_back(key);
  }
  return keys;
}

static_assert(!std::is_copy_assignable_v<SMapLongToLong>);
static_assert(!std::is_copy_assignable_v<SMapStringToLong>);

TEST(SMap, FindsWhatWasSetAndNothingElse) {
  SMapLongToLong map;
  int32_t value = -1;
  EXPECT_FALSE(map.Lookup(1, value));
  for (int32_t i = -500; i < 500; ++i) {
    map.SetAt(i, i * 2);
  }
  map[7] += 1;
  EXPECT_EQ(map.GetCount(), 1000);
  EXPECT_TRUE(map.Lookup(7, value));
  EXPECT_FALSE(map.Lookup(500, value));
  EXPECT_EQ(value, 15);
  EXPECT_EQ(map[500], 0);
  EXPECT_TRUE(map.Contains(500) && map.Contains(-500));
}

TEST(SMap, WalksBucketsUpwardsByTheHashesAndEachFromTheNewestToTheOldest) {
  SMapLongToShort map;
  EXPECT_EQ(map.GetStartPosition(), 0U);
  // Sixteen neighbours share a hash; 272 = 17 * 16 is in bucket 0 again; -1 hashes to 0x0FFFFFFF,
  // bucket 15.
  for (const int32_t key : {-1, 40, 5, 272, 16, 6}) {
    map.SetAt(key, 1);
  }
  EXPECT_EQ(map.GetStartPosition(), kBeforeFirst);
  EXPECT_EQ(Keys(map), (std::vector<int32_t>{6, 272, 5, 16, 40, -1}));

  SMapShortToPtr shorts;
  for (const int16_t key :
       {int16_t{-1}, int16_t{16}, int16_t{-32768}}) {  // 0xFFFF8000 >> 4 = 0x0FFFF800: bucket 8
    shorts.SetAt(key, nullptr);
  }
  EXPECT_EQ(Keys(shorts), (std::vector<int16_t>{16, -32768, -1}));

  // By 23: "a" is 97, bucket 5; "ab" is 97 * 33 + 98 = 3299, bucket 10; "\xFF" is 0xFFFFFFFF,
  // bucket 11.
  SMapStringToShort texts;
  texts.InitHashTable(23);
  for (const char* key : {"\xFF", "ab", "a"}) {
    texts.SetAt(key, 1);
  }
  EXPECT_EQ(Keys(texts), (std::vector<SString>{"a", "ab", "\xFF"}));

  // By 17: "0" is in bucket 14, "b" in 13, but as "B" in 15.
  SMapStringToLong folded(10, true);
  folded["b"] = folded["0"] = 1;
  EXPECT_EQ(Keys(folded), (std::vector<SString>{"0", "b"}));
}

TEST(SMapRemove, UnlinksAnywhereInAChainAndTheLastKeepsTheBucketCount) {
  for (const uint32_t first : {1U, 2U, 3U}) {
    SMapUInt32ToPtr map;
    map.InitHashTable(101);
    for (const uint32_t key : {1U, 2U, 3U}) {
      map.SetAt(key, &map);
    }
    EXPECT_TRUE(map.Remove(first));
    EXPECT_FALSE(map.Remove(first));
    EXPECT_EQ(map.GetCount(), 2);
    EXPECT_EQ(map[first], nullptr);  // a node used again starts at 0
    // An entry may go after the walk has handed it out.
    uint32_t key = 0;
    void* value = nullptr;
    for (SMapPosition position = map.GetStartPosition(); position != 0;) {
      map.GetNextAssoc(position, key, value);
      EXPECT_TRUE(map.Remove(key));
    }
    EXPECT_EQ(map.GetCount(), 0);
    EXPECT_EQ(map.GetStartPosition(), 0U);
    EXPECT_EQ(map[first], nullptr);
    EXPECT_EQ(map.GetBucketCount(), 101U);
  }
}

TEST(SMap, CopyTakesEntriesAndBucketCountAppendAddsAndReplaces) {
  SMapLongToLong map, other;
  other.InitHashTable(67);
  other.SetAt(1, 2);
  other.SetAt(49, 50);
  map.SetAt(-1, 5);
  map.SetAt(1, 77);
  map.Append(other);
  EXPECT_EQ(map.GetCount(), 3);
  EXPECT_EQ(map[1], 2);
  map.Copy(other);
  map.Copy(map);
  map.Append(map);
  EXPECT_EQ(map.GetCount(), 2);
  EXPECT_EQ(map.GetBucketCount(), 67U);
  EXPECT_EQ(map[49], 50);
}

TEST(SMap, AnyBucketCountAndBlockSizeServes) {
  for (const int32_t blockSize : {std::numeric_limits<int32_t>::min(), -1, 0, 1, 3}) {
    for (const uint32_t bucketCount : {0U, 1U, 2U}) {
      SMapLongToLong map(blockSize);
      map.InitHashTable(bucketCount, bucketCount != 1);
      for (int32_t i = 0; i < 40; ++i) {
        map.SetAt(i, i);
      }
      map.InitHashTable(bucketCount);  // on a map that holds entries
      EXPECT_EQ(map.GetCount(), 0);
      map.SetAt(1, 2);
      EXPECT_EQ(map[1], 2);
    }
  }
}

TEST(SStringMap, IgnoringCaseFindsEverySpellingButRemovesTheStoredOne) {
  SMapStringToLong exact, map(10, true);
  exact["Alpha"] = map["Alpha"] = 1;
  map["ALPHA"] = 2;
  EXPECT_FALSE(exact.Contains("alpha"));
  EXPECT_EQ(map.GetCount(), 1);
  SMapStringToLong copy(map);
  EXPECT_FALSE(map.Remove("ALPHA"));
  EXPECT_TRUE(map.Remove("Alpha"));
  EXPECT_FALSE(map.Contains("Alpha"));
  EXPECT_EQ(copy["alpha"], 2) << "takes the rule and the entries";
}

TEST(SStringMap, LetsGoOfItsKeys) {
  const SString key("shared");
  const int32_t alone = key.GetRefs();
  SMapStringToLong map;
  map["other"] = 2;
  for (const bool all : {false, true}) {
    map[key] = 1;
    EXPECT_EQ(key.GetRefs(), alone + 1);
    all ? map.RemoveAll() : static_cast<void>(map.Remove(key));
    EXPECT_EQ(key.GetRefs(), alone);
  }
}

TEST(SuggestHashSize, GivesTheFirstPrimeAboveTheCountAndAFifth) {
  const struct {
    uint32_t count, size;
  } cases[] = {{0, 17},    {14, 17},   {15, 23},   {19, 23},   {20, 43},
               {814, 977}, {815, 997}, {830, 997}, {831, 997}, {0xFFFFFFFF, 997}};
  for (const auto& c : cases) {
    EXPECT_EQ(SuggestHashSize(c.count), c.size) << c.count;
  }
}

}  // namespace
}  // namespace kivstore
