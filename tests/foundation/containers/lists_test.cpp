// The list that owns and the list of pointers: random steps against a vector.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "foundation/containers/owning_list.h"
#include "foundation/containers/ptr_list.h"
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

// Moves the odd ones of `from` behind `to`, and tells how many.
int32_t MoveOdd(Model& from, Model& to) {
  const auto odd = std::stable_partition(from.begin(), from.end(),
                                         [](const auto& item) { return item.first % 2 == 0; });
  const auto count = static_cast<int32_t>(from.end() - odd);
  to.insert(to.end(), odd, from.end());
  from.erase(odd, from.end());
  return count;
}

void Step(List& list, Model& model, List& other, Model& otherModel, Draw& draw, int serial) {
  const Model::value_type pair{draw.Below(50), serial};
  auto item = std::make_unique<Item>(pair.first, pair.second);
  const int32_t at = draw.Below(list.GetSize() + 1);
  const auto sort = [&] { std::stable_sort(model.begin(), model.end(), IsBelow); };
  Model gone;
  const std::function<void()> steps[] = {
      [&] { list.Add(std::move(item)), model.push_back(pair); },
      [&] { list.InsertAt(at, std::move(item)), model.insert(model.begin() + at, pair); },
      [&] {
        list.Sort(ByKey), sort();
        const auto place = std::lower_bound(model.begin(), model.end(), pair, IsBelow);
        EXPECT_EQ(list.InsertSorted(std::move(item), ByKey), place - model.begin());
        model.insert(place, pair);
      },
      [&] { list.RemoveAt(at), model.erase(model.begin() + at); },
      [&] {
        EXPECT_EQ(list.Take(at)->serial, model[static_cast<size_t>(at)].second);
        model.erase(model.begin() + at);
      },
      [&] {
        list.SortByKey([](const Item& i) { return i.key / 8; }, ByKey), sort();
        EXPECT_EQ(list.FindSorted(*item, ByKey) >= 0,
                  std::binary_search(model.begin(), model.end(), pair, IsBelow));
      },
      [&] { EXPECT_EQ(list.RemoveIf(IsOdd), MoveOdd(model, gone)); },
      [&] { list.MoveIf(other, IsOdd), MoveOdd(model, otherModel); },
      [&] {
        list.Append(std::move(other));
        model.insert(model.end(), otherModel.begin(), otherModel.end()), otherModel.clear();
      },
      [&] { std::swap(list, other), std::swap(model, otherModel); }};
  steps[draw.OneIn(2) ? draw.Below(3) : draw.Between(at == list.GetSize() ? 5 : 3, 9)]();
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
  EXPECT_FALSE(other.Append(std::move(list)) || list.MoveIf(other, IsOdd));
  memory.exhausted = false;
  EXPECT_FALSE(list.Add(nullptr));
  EXPECT_EQ(list.InsertSorted(nullptr, ByKey), -1);
  EXPECT_TRUE(list.Append(std::move(list)));
  EXPECT_EQ(Contents(list), (Model{{1, 0}, {2, 0}}));
  EXPECT_EQ(Item::living, 2);
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

using Pointers = std::vector<void*>;

// What stands at a place, which goes; null for none.
void* TakeOut(Pointers& model, size_t at) {
  if (at >= model.size()) {
    return nullptr;
  }
  void* const taken = model[at];
  model.erase(model.begin() + static_cast<int32_t>(at));
  return taken;
}

// Read forward, then backward.
Pointers BothWays(const SPtrList& list) {
  Pointers read;
  for (const auto* node = list.GetHead(); node != nullptr; node = node->next) {
    read.push_back(node->data);
  }
  for (const auto* node = list.GetTail(); node != nullptr; node = node->previous) {
    read.push_back(node->data);
  }
  return read;
}

void Step(SPtrList& list, Pointers& model, Draw& draw) {
  static char letters[26];
  void* const data = letters + draw.Below(26);
  const int32_t at = draw.Between(-1, list.GetCount());
  SPtrList::Node* const node = list.FindIndex(at);
  ASSERT_EQ(node != nullptr, at >= 0 && at < list.GetCount());
  const auto place = model.begin() + (node != nullptr ? at : 0);
  const auto behind = node != nullptr ? place + 1 : model.end();
  const auto found = std::find(node != nullptr ? behind : place, model.end(), data);
  const auto index = static_cast<int32_t>(found - model.begin());
  EXPECT_EQ(list.Find(data, node), found != model.end() ? list.FindIndex(index) : nullptr);
  const Pointers copy = model;
  const std::function<void()> steps[] = {
      [&] { list.AddHead(data), model.insert(model.begin(), data); },
      [&] { list.AddTail(data), model.push_back(data); },
      [&] { list.InsertBefore(node, data), model.insert(place, data); },
      [&] { list.InsertAfter(node, data), model.insert(behind, data); },
      [&] { list.RemoveAt(node), TakeOut(model, static_cast<size_t>(at)); },
      [&] { EXPECT_EQ(list.RemoveHead(), TakeOut(model, 0)); },
      [&] { EXPECT_EQ(list.RemoveTail(), TakeOut(model, model.size() - 1)); },
      [&] { list.AddHeadList(list), model.insert(model.begin(), copy.begin(), copy.end()); },
      [&] { list.AddTailList(list), model.insert(model.end(), copy.begin(), copy.end()); },
      [&] { list.RemoveAll(), model.clear(); }};
  steps[list.GetCount() > 100 ? 9 : draw.Below(draw.OneIn(20) ? 10 : 7)]();
  Pointers both = model;
  both.insert(both.end(), model.rbegin(), model.rend());
  ASSERT_EQ(BothWays(list), both);
  ASSERT_EQ(list.GetCount(), static_cast<int32_t>(model.size()));
}

TEST(SPtrList, DoesWhatAVectorDoes) {
  kivtest::ForSeeds(20, [](Draw& draw) {
    SPtrList list(draw.Between(-3, 4));
    Pointers model;
    for (int step = 0; step < 200 && !testing::Test::HasFailure(); ++step) {
      Step(list, model, draw);
    }
  });
}

}  // namespace
}  // namespace kivstore
