// The list of pointers: random steps against std::deque.
#include "foundation/containers/ptr_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <functional>

#include "tests/support/draw.h"

namespace kivstore {
namespace {

using kivtest::Draw;

char letters[26];

using Model = std::deque<void*>;

// Read both ways.
void Check(const SPtrList& list, const Model& model) {
  Model forward, backward;
  for (const auto* node = list.GetHead(); node != nullptr; node = node->next) {
    forward.push_back(node->data);
  }
  for (const auto* node = list.GetTail(); node != nullptr; node = node->previous) {
    backward.push_front(node->data);
  }
  ASSERT_EQ(forward, model);
  ASSERT_EQ(backward, model);
  ASSERT_EQ(list.GetCount(), static_cast<int32_t>(model.size()));
}

void Step(SPtrList& list, Model& model, Draw& draw) {
  void* const data = letters + draw.Below(26);
  const int32_t at = draw.Between(-1, list.GetCount());
  SPtrList::Node* const node = list.FindIndex(at);
  ASSERT_EQ(node != nullptr, at >= 0 && at < list.GetCount());
  const auto place = model.begin() + (node != nullptr ? at : 0);
  const auto behind = node != nullptr ? place + 1 : model.end();
  const auto found = std::find(node != nullptr ? behind : model.begin(), model.end(), data);
  const auto index = static_cast<int32_t>(found - model.begin());
  EXPECT_EQ(list.Find(data, node), found != model.end() ? list.FindIndex(index) : nullptr);
  const Model copy = model;
  const std::function<void()> steps[] = {
      [&] { list.AddHead(data), model.push_front(data); },
      [&] { list.AddTail(data), model.push_back(data); },
      [&] { list.InsertBefore(node, data), model.insert(place, data); },
      [&] { list.InsertAfter(node, data), model.insert(behind, data); },
      [&] { list.RemoveAt(node), node != nullptr ? model.erase(place) : place; },
      [&] { EXPECT_EQ(list.RemoveHead(), copy.empty() ? nullptr : copy.front()); },
      [&] { EXPECT_EQ(list.RemoveTail(), copy.empty() ? nullptr : copy.back()); },
      [&] { list.AddHeadList(list), model.insert(model.begin(), copy.begin(), copy.end()); },
      [&] { list.AddTailList(list), model.insert(model.end(), copy.begin(), copy.end()); },
      [&] { list.RemoveAll(), model.clear(); }};
  const int32_t what = list.GetCount() > 100 ? 9 : draw.Below(draw.OneIn(20) ? 10 : 7);
  steps[what]();
  if ((what == 5 || what == 6) && !model.empty()) {
    what == 5 ? model.pop_front() : model.pop_back();
  }
  Check(list, model);
}

TEST(SPtrList, DoesWhatADequeDoes) {
  kivtest::ForSeeds(20, [](Draw& draw) {
    SPtrList list(draw.Between(-3, 4));
    Model model;
    for (int step = 0; step < 200 && !testing::Test::HasFailure(); ++step) {
      Step(list, model, draw);
    }
  });
}

}  // namespace
}  // namespace kivstore
