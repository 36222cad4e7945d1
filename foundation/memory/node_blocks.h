// Nodes for maps and lists, taken from blocks of several to spare the heap.
//
// Node has a field `next` and is made by its default constructor. Nodes are given out in ascending
// address order; one given back is the next to be given out. Pointers to nodes hold until FreeAll,
// which the owner's destructor must call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace kivstore {

template <class Node>
class SNodeBlocks {
 public:
  // A size below 1 counts as 1.
  explicit SNodeBlocks(int32_t nodesPerBlock) : blockSize(nodesPerBlock > 1 ? nodesPerBlock : 1) {}
  SNodeBlocks(const SNodeBlocks&) = delete;
  SNodeBlocks& operator=(const SNodeBlocks&) = delete;

  int32_t GetBlockSize() const { return blockSize; }

  // A node in its first state; null when there is no memory.
  Node* Take() {
    if (freeList == nullptr && !AddBlock()) {
      return nullptr;
    }
    Node* const node = freeList;
    freeList = node->next;
    node->next = nullptr;
    return node;
  }

  void GiveBack(Node* node) {
    node->~Node();
    PushFree(new (node) Node);
  }

  // Destroys every node, in use or not.
  void FreeAll() {
    while (blocks != nullptr) {
      Block* const block = blocks;
      blocks = block->next;
      for (int32_t i = 0; i < blockSize; ++i) {
        NodeAt(block, i)->~Node();
      }
      std::free(block);
    }
    freeList = nullptr;
  }

 private:
  struct alignas(Node) alignas(void*) Block {
    Block* next;
  };

  static Node* NodeAt(Block* block, int32_t index) {
    return reinterpret_cast<Node*>(block + 1) + index;
  }

  void PushFree(Node* node) {
    node->next = freeList;
    freeList = node;
  }

  bool AddBlock() {
    const auto count = static_cast<size_t>(blockSize);
    if (count > (PTRDIFF_MAX - sizeof(Block)) / sizeof(Node)) {
      return false;
    }
    void* const memory = std::malloc(sizeof(Block) + count * sizeof(Node));
    if (memory == nullptr) {
      return false;
    }
    blocks = new (memory) Block{blocks};
    for (int32_t i = blockSize - 1; i >= 0; --i) {
      PushFree(new (NodeAt(blocks, i)) Node);
    }
    return true;
  }

  Node* freeList = nullptr;
  Block* blocks = nullptr;
  int32_t blockSize;
};

}  // namespace kivstore
