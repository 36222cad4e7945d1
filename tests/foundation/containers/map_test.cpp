// The map family: random steps against std::map, the order of a walk, letter case, bucket counts.
#include "foundation/containers/map.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "foundation/containers/hash_size.h"
#include "tests/support/draw.h"

namespace kivstore {
namespace {

using kivtest::Draw;

template <class Key, class Value>
std::map<Key, Value> Walked(const SMap<Key, Value>& map, std::vector<Key>* keys = nullptr) {
  std::map<Key, Value> entries;
  Key key{};
  Value value{};
  for (SMapPosition position = map.GetStartPosition(); position != 0;) {
    map.GetNextAssoc(position, key, value);
    EXPECT_TRUE(entries.emplace(key, value).second);
    keys != nullptr ? keys->push_back(key) : void();
  }
  return entries;
}

TEST(SMap, DoesWhatAMapOfTheStandardLibraryDoes) {
  kivtest::ForSeeds(20, [](Draw& draw) {
    SMapLongToLong map(draw.Between(-2, 5)), other;
    std::map<int32_t, int32_t> model, otherModel;
    for (int step = 0; step < 300 && !testing::Test::HasFailure(); ++step) {
      const int32_t key = draw.Between(-300, 300);
      switch (draw.Below(16)) {
        case 0:
          other.Copy(map), map.Copy(map), map.Append(map), otherModel = model;
          break;
        case 1:
          map.Append(other);
          for (const auto& [k, v] : otherModel) {
            model[k] = v;
          }
          break;
        case 2:
          map.InitHashTable(static_cast<uint32_t>(draw.Below(70)), draw.OneIn(2)), model.clear();
          break;
        case 3:
          // An entry may go after the walk has handed it out.
          for (const auto& entry : Walked(map)) {
            EXPECT_TRUE(entry.first % 3 != 0 || map.Remove(entry.first));
          }
          std::erase_if(model, [](const auto& entry) { return entry.first % 3 == 0; });
          break;
        case 4:
        case 5:
        case 6:
          EXPECT_EQ(map.Remove(key), model.erase(key) == 1);
          break;
        case 7:
          EXPECT_EQ(map[key] += 5, model[key] += 5) << "a node used again starts at 0";
          break;
        default:
          map.SetAt(key, step), model[key] = step;
      }
      int32_t value = -1;
      const auto found = model.find(key);
      ASSERT_EQ(map.Lookup(key, value), found != model.end());
      ASSERT_EQ(map.Contains(key), found != model.end());
      ASSERT_EQ(value, found != model.end() ? found->second : -1);
      ASSERT_EQ(Walked(map), model);
      ASSERT_EQ(map.GetCount(), static_cast<int32_t>(model.size()));
      ASSERT_EQ(map.GetStartPosition(), model.empty() ? 0 : kBeforeFirst);
    }
    EXPECT_EQ(Walked(other), otherModel);
    other.Copy(map);
    EXPECT_EQ(other.GetBucketCount(), map.GetBucketCount());
  });
}

template <class Map, class Key>
std::vector<Key> Order(Map&& map, std::vector<Key> keys) {
  for (const Key& key : keys) {
    map[key] = {};
  }
  std::vector<Key> walked;
  Walked(map, &walked);
  return walked;
}

TEST(SMap, WalksBucketsUpwardsByTheHashesAndEachFromTheNewestToTheOldest) {
  // Sixteen neighbours share a hash; 272 = 17 * 16 is in bucket 0 again; -1 hashes to 0x0FFFFFFF,
  // bucket 15.
  EXPECT_EQ(Order(SMapLongToShort(), std::vector<int32_t>{-1, 40, 5, 272, 16, 6}),
            (std::vector<int32_t>{6, 272, 5, 16, 40, -1}));
  // 0xFFFF8000 >> 4 = 0x0FFFF800: bucket 8.
  EXPECT_EQ(Order(SMapShortToPtr(), std::vector<int16_t>{-1, 16, -32768}),
            (std::vector<int16_t>{16, -32768, -1}));
  // By 23: "a" is 97, bucket 5; "ab" is 97 * 33 + 98 = 3299, bucket 10; "\xFF" is 0xFFFFFFFF,
  // bucket 11.
  SMapStringToShort texts;
  texts.InitHashTable(23);
  EXPECT_EQ(Order(texts, std::vector<SString>{"\xFF", "ab", "a"}),
            (std::vector<SString>{"a", "ab", "\xFF"}));
  // By 17: "0" is in bucket 14, "b" in 13, but as "B" in 15.
  EXPECT_EQ(Order(SMapStringToLong(10, true), std::vector<SString>{"b", "0"}),
            (std::vector<SString>{"0", "b"}));
}

TEST(SStringMap, IgnoringCaseFindsEverySpellingButRemovesTheStoredOne) {
  SMapStringToLong exact, map(10, true);
  exact["Alpha"] = map["Alpha"] = 1;
  map["ALPHA"] = 2;
  EXPECT_FALSE(exact.Contains("alpha") || exact.IgnoresCase());
  EXPECT_EQ(map.GetCount(), 1);
  SMapStringToLong copy(map);
  EXPECT_FALSE(map.Remove("ALPHA"));
  EXPECT_TRUE(map.Remove("Alpha"));
  EXPECT_EQ(copy["alpha"], 2) << "takes the rule and the entries";
  const SString key("shared");
  const int32_t alone = key.GetRefs();
  for (const bool all : {false, true}) {
    map[key] = map["other"] = 1;
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
