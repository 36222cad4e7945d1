// The list that owns: random steps against a vector, and nothing left behind.
#include "foundation/containers/owning_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "tests/support/draw.h"
#include "tests/support/failing_memory.h"

namespace kivstore {
namespace {

using kivtest::Draw;

struct Item {
  Item(int key, int serial) : key(key), serial(serial) { ++living; }
  ~Item() { --living; }
  Item(const Item&) = delete;
  Item& operator=(const Item&) = delete;

  int key, serial;  // the order goes by the key alone
  static inline int living = 0;
};

int ByKey(const Item& a, const Item& b) {
  return a.key - b.key;
}

bool IsOdd(const Item& item) {
  return item.key % 2 != 0;
}

using Model = std::vector<std::pair<int, int>>;
using List = SOwningList<Item>;

Model Contents(const List& list) {
  Model contents;
  for (const Item& item : list) {
    contents.emplace_back(item.key, item.serial);
  }
  return contents;
}

bool IsBelow(const Model::value_type& a, const Model::value_type& b) {
  return a.first < b.first;
}

Model TakeOdd(Model& model) {
  const auto odd = std::stable_partition(model.begin(), model.end(),
                                         [](const auto& item) { return item.first % 2 == 0; });
  const Model taken(odd, model.end());
  model.erase(odd, model.end());
  return taken;
}

void MoveAll(Model& from, Model& to) {
  to.insert(to.end(), from.begin(), from.end());
  from.clear();
}

void Step(List& list, Model& model, List& other, Model& otherModel, Draw& draw, int serial) {
  const Model::value_type pair{draw.Below(50), serial};
  auto item = std::make_unique<Item>(pair.first, pair.second);
  const int32_t at = draw.Below(list.GetSize() + 1);
  const auto isEqual = [&](const auto& there) { return there.first == pair.first; };
  const bool isThere = std::any_of(model.begin(), model.end(), isEqual);
  Model odd;
  const std::function<void()> steps[] = {
      [&] { list.Add(std::move(item)), model.push_back(pair); },
      [&] { list.InsertAt(at, std::move(item)), model.insert(model.begin() + at, pair); },
      [&] {
        list.Sort(ByKey), std::stable_sort(model.begin(), model.end(), IsBelow);
        const auto place = std::find_if(model.begin(), model.end(),
                                        [&](const auto& there) { return !IsBelow(there, pair); });
        EXPECT_EQ(list.InsertSorted(std::move(item), ByKey), place - model.begin());
        model.insert(place, pair);
      },
      [&] { list.RemoveAt(at), model.erase(model.begin() + at); },
      [&] {
        EXPECT_EQ(list.Take(at)->serial, model[static_cast<size_t>(at)].second);
        model.erase(model.begin() + at);
      },
      [&] { list.Sort(ByKey), std::stable_sort(model.begin(), model.end(), IsBelow); },
      [&] {
        list.SortByKey([](const Item& i) { return i.key / 8; }, ByKey);
        std::stable_sort(model.begin(), model.end(), IsBelow);
        EXPECT_EQ(list.FindSorted(*item, ByKey) >= 0, isThere);
      },
      [&] { EXPECT_EQ(list.RemoveIf(IsOdd), static_cast<int32_t>(TakeOdd(model).size())); },
      [&] { list.MoveIf(other, IsOdd), odd = TakeOdd(model), MoveAll(odd, otherModel); },
      [&] { list.Append(std::move(other)), MoveAll(otherModel, model); },
      [&] { std::swap(list, other), std::swap(model, otherModel); }};
  const bool isEnd = at == list.GetSize();
  steps[draw.OneIn(2) ? draw.Below(3) : draw.Between(isEnd ? 5 : 3, 10)]();
  item.reset();
  ASSERT_EQ(Contents(list), model);
  ASSERT_EQ(Contents(other), otherModel);
  ASSERT_EQ(Item::living, static_cast<int>(model.size() + otherModel.size()));
}

TEST(SOwningList, DoesAndOwnsWhatAModelDoes) {
  kivtest::ForSeeds(20, [](Draw& draw) {
    List list, other;
    Model model, otherModel;
    for (int step = 0; step < 300 && !testing::Test::HasFailure(); ++step) {
      Step(list, model, other, otherModel, draw, step);
    }
  });
  EXPECT_EQ(Item::living, 0);
}

TEST(SOwningList, StaysAsItWasAndFreesWhatItCannotHold) {
  kivtest::FailingMemory memory;
  List list, other;
  ASSERT_TRUE(list.Reserve(2) && list.Add(std::make_unique<Item>(1, 0)));
  memory.exhausted = true;
  EXPECT_TRUE(list.Add(std::make_unique<Item>(2, 0))) << "there was room";
  EXPECT_FALSE(list.Add(std::make_unique<Item>(3, 0)));
  EXPECT_EQ(list.InsertSorted(std::make_unique<Item>(0, 0), ByKey), -1);
  EXPECT_FALSE(other.Append(std::move(list)));
  EXPECT_FALSE(list.MoveIf(other, IsOdd));
  EXPECT_EQ(Contents(list), (Model{{1, 0}, {2, 0}}));
  EXPECT_EQ(Item::living, 2);
  memory.exhausted = false;
  EXPECT_FALSE(list.Add(nullptr));
  EXPECT_EQ(list.InsertSorted(nullptr, ByKey), -1);
  EXPECT_TRUE(list.Append(std::move(list)));
  EXPECT_EQ(list.GetSize(), 2);
}

TEST(SPtrView, FindsTheObjectItselfAndOwnsNothing) {
  Item first(1, 1), second(1, 2);
  SPtrView<Item> view;
  ASSERT_TRUE(view.Add(&first) && view.Add(&second));
  EXPECT_EQ(view.Find(&second), 1);
  view.CutTo(1);
  EXPECT_EQ(view.Find(&second), -1);
  EXPECT_EQ(Item::living, 2);
}

}  // namespace
}  // namespace kivstore
