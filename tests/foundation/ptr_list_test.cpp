// The list of pointers.
#include "foundation/containers/ptr_list.h"

#include <gtest/gtest.h>

#include <string>

namespace kivstore {
namespace {

char letters[] = "abcdefghijklmnopqrstuvwxyz";

struct TestList : SPtrList {
  explicit TestList(int letterCount = 0, int32_t blockSize = 10) : SPtrList(blockSize) {
    for (int i = 0; i < letterCount; ++i) {
      AddTail(letters + i);
    }
  }

  // The entries, read both ways.
  std::string Contents() const {
    std::string forward, backward;
    for (const Node* node = GetHead(); node != nullptr; node = node->next) {
      forward += *static_cast<const char*>(node->data);
    }
    for (const Node* node = GetTail(); node != nullptr; node = node->previous) {
      backward.insert(backward.begin(), *static_cast<const char*>(node->data));
    }
    EXPECT_EQ(forward, backward);
    EXPECT_EQ(forward.size(), static_cast<size_t>(GetCount()));
    return forward;
  }
};

TEST(SPtrList, AddsAtBothEndsAndBesideANode) {
  TestList list(0, 2);
  SPtrList::Node* const middle = list.AddHead(letters + 12);
  list.AddHead(letters + 0);
  list.AddTail(letters + 25);
  list.InsertBefore(middle, letters + 11);
  list.InsertAfter(middle, letters + 13);
  list.InsertBefore(nullptr, letters + 7);
  list.InsertAfter(nullptr, letters + 8);
  EXPECT_EQ(list.Contents(), "halmnzi");
}

TEST(SPtrList, RemovesAnywhereAndGivesNullWhenEmpty) {
  TestList list(4, -3);
  list.RemoveAt(nullptr);
  list.RemoveAt(list.FindIndex(2));
  EXPECT_EQ(list.RemoveHead(), letters);
  EXPECT_EQ(list.RemoveTail(), letters + 3);
  EXPECT_EQ(list.Contents(), "b");
  list.RemoveTail();
  EXPECT_EQ(list.RemoveTail(), nullptr);
  EXPECT_EQ(list.RemoveHead(), nullptr);
  list.AddHead(letters);
  EXPECT_EQ(list.Contents(), "a");
}

TEST(SPtrList, AddedListsKeepTheirOrderAlsoTheListItself) {
  TestList list, other(3);
  list.AddTail(letters + 25);
  list.AddHeadList(other);
  list.AddTailList(other);
  EXPECT_EQ(list.Contents(), "abczabc");
  list.RemoveAll();
  list.AddHeadList(other);
  list.AddHeadList(list);
  list.AddTailList(list);
  EXPECT_EQ(list.Contents(), "abcabcabcabc");
}

TEST(SPtrList, FindsBehindTheStartAndByIndexWithinTheList) {
  TestList list(3);
  list.AddTail(letters + 1);
  SPtrList::Node* const first = list.Find(letters + 1);
  EXPECT_EQ(first, list.FindIndex(1));
  EXPECT_EQ(list.Find(letters + 1, first), list.FindIndex(3));
  EXPECT_EQ(list.Find(letters + 1, list.GetTail()), nullptr);
  EXPECT_EQ(list.FindIndex(4), nullptr);
  EXPECT_EQ(list.FindIndex(-1), nullptr);
}

}  // namespace
}  // namespace kivstore
