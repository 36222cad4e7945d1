// The array family: random steps against a vector, growth, order, and no memory.
#include "foundation/containers/array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include "foundation/containers/string_array.h"
#include "tests/support/draw.h"
#include "tests/support/failing_memory.h"

namespace kivstore {
namespace {

using kivtest::Draw;

// From -50 on, so that signed and unsigned elements differ in their order.
template <class T>
T MakeValue(int32_t number) {
  return static_cast<T>(number - 50);
}
template <>
SString MakeValue(int32_t number) {
  return SString(static_cast<char>('0' + number / 4), number % 4);
}

template <class T>
int ByTens(const T* a, const T* b) {
  if constexpr (std::is_same_v<T, SString>) {
    return a->GetLength() - b->GetLength();
  } else {
    return static_cast<int>(*a / 10) - static_cast<int>(*b / 10);
  }
}

template <class T>
class ArrayRun {
 public:
  void Step(Draw& draw) {
    const int32_t size = array.GetSize();
    const int32_t at = draw.Between(-1, size + 2), count = draw.Between(-1, 3);
    const T value = MakeValue<T>(draw.Below(100));
    const Values copies(size_t(std::max(count, 0)), value), none;
    const bool removes = at >= 0 && count >= 0 && at + count <= size;
    const Order order = draw.OneIn(2) ? ByTens<T> : nullptr;
    const std::vector<std::function<void()>> steps = {
        [&] { array.Add(value), model.push_back(value); },
        [&] { array.SetAtGrow(at, value), Insert(at, {value}, at >= 0 && at < size); },
        [&] { array.InsertAt(at, value, count), Insert(at, copies); },
        [&] { array.InsertArrayAt(at, &other), Insert(at, otherModel); },
        [&] { Insert(array.Append(other), otherModel); },
        [&] { array.RemoveAt(at, count), Insert(at, none, removes ? size_t(count) : 0); },
        [&] { array.SetSize(at), model.resize(at < 0 ? model.size() : size_t(at)); },
        [&] { array.SetSize(size + 5, count), model.resize(size_t(size + 5)); },
        [&] { array.SetAll(value), std::fill(model.begin(), model.end(), value); },
        [&] { other.Copy(array), otherModel = model; },
        [&] { array.Swap(other), std::swap(model, otherModel), array.FreeExtra(); },
        [&] { array.Reserve(size + 9), model.reserve(99); },
        [&] { array.Shuffle(), Shuffled(); },
        [&] { array.Sort(order), Sort(order); },
        [&] { Insert(array.InsertSorted(value, order), {value}), Find(value, order); }};
    steps[static_cast<size_t>(draw.Below(static_cast<int32_t>(steps.size())))]();
    ASSERT_EQ(Values(array.Data(), array.Data() + array.GetSize()), model);
    ASSERT_LE(array.GetSize(), array.GetCapacity());
    if (size > 200) {
      array.RemoveAll(), model.clear();
      ASSERT_EQ(array.Data(), nullptr);
    }
  }

 private:
  using Order = typename SArray<T>::Compare;
  using Values = std::vector<T>;

  void Insert(int32_t at, const Values& values, size_t replaced = 0) {
    if (at >= 0 && (!values.empty() || replaced > 0)) {
      model.resize(std::max(model.size(), size_t(at)));
      model.erase(model.begin() + at, model.begin() + at + static_cast<int32_t>(replaced));
      model.insert(model.begin() + at, values.begin(), values.end());
    }
  }
  static bool IsBelow(const T& a, const T& b, Order order) {
    return order != nullptr ? order(&a, &b) < 0 : a < b;
  }
  void Sort(Order order) {
    std::stable_sort(model.begin(), model.end(),
                     [=](const T& a, const T& b) { return IsBelow(a, b, order); });
    for (int32_t number = 0; number < 100; number += 7) {
      const T value = MakeValue<T>(number);
      const int32_t first = Find(value, order), found = array.FindSorted(value, order);
      EXPECT_EQ(found >= 0, first >= 0);
      EXPECT_TRUE(found < 0 ||
                  !(IsBelow(array[found], value, order) || IsBelow(value, array[found], order)));
    }
  }
  int32_t Find(const T& value, Order order) {
    const auto first = std::find_if(model.begin(), model.end(), [&](const T& v) {
      return !IsBelow(v, value, order) && !IsBelow(value, v, order);
    });
    const int32_t found = array.FindLinear(value, order);
    EXPECT_EQ(found, first == model.end() ? -1 : first - model.begin());
    return found;
  }
  void Shuffled() {
    Values before = std::exchange(model, Values(array.Data(), array.Data() + array.GetSize()));
    EXPECT_TRUE(before != model || std::set<T>(model.begin(), model.end()).size() < 20);
    EXPECT_TRUE(std::is_permutation(before.begin(), before.end(), model.begin(), model.end()));
  }

  SArray<T> array, other;
  Values model, otherModel;
};

template <class T>
class SArrayTest : public testing::Test {};
using Elements = testing::Types<uint32_t, int16_t, double, SString>;
TYPED_TEST_SUITE(SArrayTest, Elements);

TYPED_TEST(SArrayTest, DoesWhatAVectorDoes) {
  kivtest::ForSeeds(10, [](Draw& draw) {
    ArrayRun<TypeParam> run;
    for (int step = 0; step < 300 && !testing::Test::HasFailure(); ++step) {
      run.Step(draw);
    }
  });
}

TEST(SArraySetSize, GrowsCapacityByAnEighthOfTheOldSizeWithin4And1024) {
  const struct {
    int32_t oldSize, newSize, growBy, capacity;
  } cases[] = {
      {1000, 1001, 0, 1125},     // an eighth
      {1000, 1125, 0, 1125},     // as much as the step
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
    array.SetSize(c.newSize, c.growBy);
    EXPECT_EQ(array.GetCapacity(), c.capacity) << c.oldSize << " to " << c.newSize;
  }
  SShortArray array;
  for (const int32_t size : {1000, 1001, 1, 1126}) {
    array.SetSize(size);
  }
  EXPECT_EQ(array.GetCapacity(), 1129) << "the step follows the size, not the capacity";
}

TEST(SArray, StaysAsItWasWhenThereIsNoMemoryOrNoSuchPlace) {
  constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
  kivtest::FailingMemory memory;
  SLongArray empty, array, other;
  for (const int32_t value : {1, 2, 3}) {
    array.Add(value), other.Add(value);
  }
  other.Add(4);
  array.FreeExtra();
  memory.exhausted = true;
  empty.Add(1), array.SetSize(10), array.Add(4), array.InsertAt(0, 4), array.Copy(other);
  array.InsertArrayAt(1, &other);
  EXPECT_EQ(array.Append(other), 3);
  EXPECT_EQ(array.InsertSorted(2), -1);
  EXPECT_FALSE(array.Reserve(4));
  memory.exhausted = false;
  array.SetAtGrow(kMost, 9), array.InsertAt(kMost, 9), array.InsertAt(1, 9, kMost);
  array.RemoveAt(2, kMost), array.RemoveAt(kMost), array.InsertArrayAt(0, nullptr);
  array.InsertArrayAt(0, &array), array.Copy(array);
  EXPECT_EQ(array.Append(array), 3);
  EXPECT_EQ(empty.GetSize(), 0);
  EXPECT_EQ(std::vector<int32_t>(array.Data(), array.Data() + array.GetSize()),
            (std::vector<int32_t>{1, 2, 3}));
  EXPECT_EQ(array.GetCapacity(), 3);
}

int comparisons = 0;

TEST(SArraySort, AListInOrderCostsOnePassAndContradictionsStayInside) {
  SDoubleArray array;
  for (int i = 0; i < 300; ++i) {
    array.Add(i);
  }
  array.Sort(
      [](const double* a, const double* b) { return ++comparisons, *a < *b ? -1 : *a > *b; });
  EXPECT_EQ(comparisons, 299);
  array.SetAtGrow(150, std::numeric_limits<double>::quiet_NaN());
  array.Sort();
  array.Sort([](const double*, const double*) { return -1; });
}

TEST(SStringArray, LetsGoOfTheStringsThatItDrops) {
  const SString shared("shared");
  const int32_t alone = shared.GetRefs();
  SStringArray array;
  array.InsertAt(0, shared, 5);
  array.SetSize(4);
  array.RemoveAt(0, 2);
  EXPECT_EQ(shared.GetRefs(), alone + 2);
  array.RemoveAll();
  EXPECT_EQ(shared.GetRefs(), alone);
  for (const char* text : {"b", "B", "a"}) {
    array.Add(text);
  }
  array.Sort(CompareStrings);
  EXPECT_EQ(array[0] + array[1] + array[2], "abB");
}

}  // namespace
}  // namespace kivstore
