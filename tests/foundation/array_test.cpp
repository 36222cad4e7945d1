// Growth, insertion, removal and order of the array family.
#include "foundation/containers/array.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tests/records/failing_memory.h"

namespace kivstore {
namespace {

using Values = std::vector<int32_t>;

struct TestArray : SLongArray {
  TestArray(std::initializer_list<int32_t> values = {}) {
    for (const int32_t value : values) {
      Add(value);
    }
  }
  Values Contents() const { return Values(Data(), Data() + GetSize()); }
};

TEST(SArraySetSize, GrowsCapacityByAnEighthOfTheOldSizeWithin4And1024) {
  const struct {
    int32_t oldSize, newSize, growBy, capacity;
  } cases[] = {
      {1000, 1001, 0, 1125},     // an eighth
      {1000, 1200, 0, 1200},     // more than the step
      {10000, 10001, 0, 11024},  // 1,024 at most
      {8, 9, 0, 12},             // 4 at least
      {100, 101, 50, 150},       // the step that was set
      {100, 101, -1, 112},       // -1 keeps the stored step, here the automatic one
      {100, 101, -7, 101},       // a step below 0 is never more than what is needed
  };
  for (const auto& c : cases) {
    SUInt32Array array;
    array.SetSize(c.oldSize);
    ASSERT_EQ(array.GetCapacity(), c.oldSize);
    array.SetSize(c.newSize, c.growBy);
    EXPECT_EQ(array.GetSize(), c.newSize);
    EXPECT_EQ(array.GetCapacity(), c.capacity) << c.oldSize << " to " << c.newSize;
  }
  SShortArray array;
  for (const int32_t size : {1000, 1001, 1, 1126}) {
    array.SetSize(size);
  }
  EXPECT_EQ(array.GetCapacity(), 1129) << "the step follows the size, not the capacity";
}

TEST(SArraySetSize, NewElementsAreZeroAlsoAfterShrinking) {
  TestArray array{1, 2, 3, 4, 5};
  array.SetSize(2);
  array.SetSize(5);
  array.SetSize(-1, 5);
  EXPECT_EQ(array.Contents(), (Values{1, 2, 0, 0, 0}));
  array.SetSize(500);
  Values expected{1, 2};
  expected.resize(500);
  EXPECT_EQ(array.Contents(), expected);
  array.SetSize(0);
  EXPECT_EQ(array.GetCapacity(), 0);
  EXPECT_EQ(array.Data(), nullptr);
}

TEST(SArray, StaysAsItWasWhenThereIsNoMemory) {
  kivtest::FailingMemory memory;
  TestArray empty, array{1, 2, 3}, other{7, 8, 9, 10};
  array.FreeExtra();
  memory.exhausted = true;
  empty.Add(1);
  array.SetSize(10);
  array.Add(4);
  array.InsertAt(0, 4);
  array.InsertArrayAt(1, &other);
  EXPECT_EQ(array.Append(other), 3);
  array.Copy(other);
  EXPECT_EQ(array.InsertSorted(2), -1);
  EXPECT_EQ(empty.GetSize(), 0);
  EXPECT_EQ(array.Contents(), (Values{1, 2, 3}));
  EXPECT_EQ(array.GetCapacity(), 3);
  memory.exhausted = false;
  array.Add(4);  // the next write tries again
  EXPECT_EQ(array.Contents(), (Values{1, 2, 3, 4}));
}

TEST(SArray, IndicesAndCountsOutsideTheRangeAndTheArrayItselfDoNothing) {
  constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
  TestArray array{1, 2, 3};
  for (const int32_t index : {-1, kMost}) {
    array.SetAtGrow(index, 9);
    array.InsertAt(index, 9);
    array.RemoveAt(index, 1);
    array.RemoveAt(2, index);
  }
  array.InsertAt(1, 9, 0);
  array.InsertAt(1, 9, kMost);
  array.RemoveAt(1, 3);
  array.RemoveAt(4, 0);
  array.InsertArrayAt(0, nullptr);
  array.InsertArrayAt(0, &array);
  array.Copy(array);
  EXPECT_EQ(array.Append(array), 3);
  EXPECT_EQ(array.Contents(), (Values{1, 2, 3}));
}

TEST(SArray, InsertingMovesTheTailAndPastTheEndLeavesZeros) {
  TestArray array{1, 2}, other{8, 9}, nothing;
  array.InsertAt(1, 7, 2);
  array.InsertArrayAt(1, &other);
  array.InsertArrayAt(1, &nothing);
  EXPECT_EQ(array.Contents(), (Values{1, 8, 9, 7, 7, 2}));
  array.InsertAt(7, 5, 2);
  array.SetAtGrow(10, 4);
  EXPECT_EQ(array.Append(other), 11);
  EXPECT_EQ(array.Contents(), (Values{1, 8, 9, 7, 7, 2, 0, 5, 5, 0, 4, 8, 9}));
  array.Copy(other);
  other.SetAll(99);
  EXPECT_EQ(array.Contents(), (Values{8, 9}));
}

TEST(SArray, RemovingMovesTheTailDownAndKeepsTheCapacityUntilItIsFreed) {
  TestArray array{1, 2, 3, 4, 5};
  const int32_t capacity = array.GetCapacity();
  array.RemoveAt(1, 2);
  EXPECT_EQ(array.GetCapacity(), capacity);
  array.FreeExtra();
  EXPECT_EQ(array.GetCapacity(), 3);
  EXPECT_EQ(array.Contents(), (Values{1, 4, 5}));
  array.RemoveAt(0, 3);
  array.FreeExtra();
  EXPECT_EQ(array.GetCapacity(), 0);
}

template <class Array, class T>
bool SortsTo(T first, T second) {
  Array array;
  array.Add(second);
  array.Add(first);
  array.Sort();
  return array[0] == first && array[1] == second && array.FindSorted(second) == 1;
}

TEST(SArraySort, DefaultOrderIsThatOfTheElementType) {
  char memory[2] = {};
  EXPECT_TRUE((SortsTo<SUInt32Array, uint32_t>(1, 0x80000000)));
  EXPECT_TRUE((SortsTo<SLongArray, int32_t>(INT32_MIN, 1)));
  EXPECT_TRUE((SortsTo<SShortArray, int16_t>(-1, 1)));
  EXPECT_TRUE((SortsTo<SDoubleArray, double>(0.25, 0.5)));
  EXPECT_TRUE((SortsTo<SBoolArray, bool>(false, true)));
  EXPECT_TRUE((SortsTo<SPtrArray, void*>(memory, memory + 1)));
}

int comparisons = 0;

int CompareByTens(const int32_t* a, const int32_t* b) {
  ++comparisons;
  return *a / 10 - *b / 10;
}

TEST(SArraySort, EqualElementsKeepTheirOrderAndOneInOrderCostsOneComparison) {
  TestArray array;
  Values expected;
  for (int32_t i = 0; i < 200; ++i) {
    array.Add((199 - i) / 10 * 10 + i % 10);
    expected.push_back(i);
  }
  array.Sort(CompareByTens);
  EXPECT_EQ(array.Contents(), expected);
  comparisons = 0;
  array.Sort(CompareByTens);
  EXPECT_EQ(comparisons, 199);
}

TEST(SArraySort, AnOrderThatContradictsItselfStaysInsideTheArray) {
  SDoubleArray array;
  for (int i = 0; i < 300; ++i) {
    array.Add(i % 3 == 0 ? std::numeric_limits<double>::quiet_NaN() : 300.0 - i);
  }
  array.Sort();
  array.Sort([](const double*, const double*) { return -1; });
}

TEST(SArray, FindsAnIndexOrMinusOneAndInsertsBeforeTheFirstElementThatIsNotBelow) {
  TestArray array{10, 20, 30};
  for (int32_t i = 0; i < 3; ++i) {
    EXPECT_EQ(array.FindSorted(array[i]), i);
    EXPECT_EQ(array.FindLinear(array[i]), i);
  }
  for (const int32_t missing : {0, 15, 60}) {
    EXPECT_EQ(array.FindSorted(missing), -1);
    EXPECT_EQ(array.FindLinear(missing), -1);
  }
  EXPECT_EQ(array.FindLinear(39, CompareByTens), 2);
  EXPECT_EQ(array.InsertSorted(25, CompareByTens), 1);
  EXPECT_EQ(array.InsertSorted(40), 4);
  EXPECT_EQ(array.InsertSorted(5), 0);
  EXPECT_EQ(array.Contents(), (Values{5, 10, 25, 20, 30, 40}));
}

TEST(SArrayShuffle, KeepsEveryElement) {
  TestArray array{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20};
  const Values before = array.Contents();
  array.Shuffle();
  EXPECT_NE(array.Contents(), before);
  array.Sort();
  EXPECT_EQ(array.Contents(), before);
}

}  // namespace
}  // namespace kivstore
