// What the array of strings does differently from the others.
#include "foundation/containers/string_array.h"

#include <gtest/gtest.h>

#include <string>

namespace kivstore {
namespace {

struct TestArray : SStringArray {
  TestArray(std::initializer_list<const char*> texts = {}) {
    for (const char* text : texts) {
      Add(text);
    }
  }
  std::string Joined() const {
    std::string joined;
    for (int32_t i = 0; i < GetSize(); ++i) {
      joined += std::string((*this)[i].GetText()) + " ";
    }
    return joined;
  }
};

TEST(SStringArray, KeepsItsStringsWhileItGrowsAndInserts) {
  TestArray array;
  for (int i = 0; i < 100; ++i) {
    array.Add(SString(static_cast<char>('a' + i % 26), 3));
  }
  array.InsertAt(1, "x", 2);
  array.RemoveAt(3, 97);
  EXPECT_EQ(array.Joined(), "aaa x x uuu vvv ");
  array.Add(array[3]);
  array.InsertAt(0, array[4]);
  EXPECT_EQ(array.Joined(), "vvv aaa x x uuu vvv uuu ");
}

TEST(SStringArray, LetsGoOfTheStringsThatItDrops) {
  const SString shared("shared");
  const int32_t alone = shared.GetRefs();
  TestArray array;
  array.InsertAt(0, shared, 5);
  array.SetSize(4);
  array.RemoveAt(0, 2);
  EXPECT_EQ(shared.GetRefs(), alone + 2);
  array.SetSize(4);
  EXPECT_EQ(array.Joined(), "shared shared   ");
  array.RemoveAll();
  EXPECT_EQ(shared.GetRefs(), alone);
}

TEST(SStringArray, ComparesBytesUnlessToldToIgnoreCase) {
  TestArray array{"b", "B", "a", "\xE4", "A", "Z"};
  array.Sort();
  EXPECT_EQ(array.Joined(), "A B Z a b \xE4 ");
  EXPECT_EQ(array.FindLinear("z"), -1);
  EXPECT_EQ(array.InsertSorted("_"), 3);
  array.RemoveAt(3);
  array.Sort(CompareStrings);
  EXPECT_EQ(array.Joined(), "A a B b Z \xE4 ");
  EXPECT_EQ(array.FindLinear("z", CompareStrings), 4);
  EXPECT_EQ(array.FindSorted("z", CompareStrings), 4);
  EXPECT_EQ(array.InsertSorted("y", CompareStrings), 4);
}

}  // namespace
}  // namespace kivstore
