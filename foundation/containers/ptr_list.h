// A doubly linked list of pointers. It never owns what they point at. Nodes come in blocks; the
// last removal releases them all. A node stands until it is removed; when there is no memory for
// one, nothing is added and the result is null.
#pragma once

#include <cstdint>

#include "foundation/memory/node_blocks.h"

namespace kivstore {

class SPtrList {
 public:
  struct Node {
    Node* next = nullptr;
    Node* previous = nullptr;
    void* data = nullptr;
  };

  explicit SPtrList(int32_t blockSize = 10) : nodes(blockSize) {}
  ~SPtrList() { RemoveAll(); }
  SPtrList(const SPtrList&) = delete;
  SPtrList& operator=(const SPtrList&) = delete;

  int32_t GetCount() const { return count; }
  bool IsEmpty() const { return count == 0; }
  Node* GetHead() const { return head; }
  Node* GetTail() const { return tail; }

  Node* AddHead(void* data) { return Insert(nullptr, data, head); }
  Node* AddTail(void* data) { return Insert(tail, data, nullptr); }
  // A copy of the other list's entries, in its order; the other list may be this one.
  void AddHeadList(const SPtrList& other);
  void AddTailList(const SPtrList& other);
  // The entry's data, or null if the list is empty.
  void* RemoveHead() { return Remove(head); }
  void* RemoveTail() { return Remove(tail); }

  // A null node means the head for InsertBefore and the tail for InsertAfter.
  Node* InsertBefore(Node* node, void* data);
  Node* InsertAfter(Node* node, void* data);
  void RemoveAt(Node* node) { Remove(node); }
  void RemoveAll();

  // Null if there is none. Find begins behind `start`, or at the head.
  Node* FindIndex(int32_t index) const;
  Node* Find(const void* data, const Node* start = nullptr) const;

 private:
  Node* Insert(Node* previous, void* data, Node* next);
  void* Remove(Node* node);
  // What points at the node behind `previous`, and at the one in front of `next`.
  Node*& LinkAfter(Node* previous) { return previous != nullptr ? previous->next : head; }
  Node*& LinkBefore(Node* next) { return next != nullptr ? next->previous : tail; }

  Node* head = nullptr;
  Node* tail = nullptr;
  int32_t count = 0;
  SNodeBlocks<Node> nodes;  // freeList, blocks, blockSize
};

}  // namespace kivstore
