#include "foundation/containers/ptr_list.h"

namespace kivstore {

SPtrList::Node* SPtrList::Insert(Node* previous, void* data, Node* next) {
  Node* const node = nodes.Take();
  if (node == nullptr) {
    return nullptr;
  }
  *node = {next, previous, data};
  LinkAfter(previous) = node;
  LinkBefore(next) = node;
  ++count;
  return node;
}

void* SPtrList::Remove(Node* node) {
  if (node == nullptr) {
    return nullptr;
  }
  void* const data = node->data;
  LinkAfter(node->previous) = node->next;
  LinkBefore(node->next) = node->previous;
  nodes.GiveBack(node);
  if (--count == 0) {
    RemoveAll();
  }
  return data;
}

void SPtrList::RemoveAll() {
  head = tail = nullptr;
  count = 0;
  nodes.FreeAll();
}

// Both walk by the count of before, which ends also where the list grows under the walk.
void SPtrList::AddHeadList(const SPtrList& other) {
  const Node* node = other.tail;
  for (int32_t left = other.count; left > 0; --left) {
    AddHead(node->data);
    node = node->previous;
  }
}

void SPtrList::AddTailList(const SPtrList& other) {
  const Node* node = other.head;
  for (int32_t left = other.count; left > 0; --left) {
    AddTail(node->data);
    node = node->next;
  }
}

SPtrList::Node* SPtrList::InsertBefore(Node* node, void* data) {
  return node != nullptr ? Insert(node->previous, data, node) : AddHead(data);
}

SPtrList::Node* SPtrList::InsertAfter(Node* node, void* data) {
  return node != nullptr ? Insert(node, data, node->next) : AddTail(data);
}

SPtrList::Node* SPtrList::FindIndex(int32_t index) const {
  if (index < 0 || index >= count) {
    return nullptr;
  }
  Node* node = head;
  while (index-- > 0) {
    node = node->next;
  }
  return node;
}

SPtrList::Node* SPtrList::Find(const void* data, const Node* start) const {
  Node* node = start != nullptr ? start->next : head;
  while (node != nullptr && node->data != data) {
    node = node->next;
  }
  return node;
}

}  // namespace kivstore
