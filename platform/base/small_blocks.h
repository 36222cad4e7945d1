// Memory for many small, short-lived things: string blocks, roster entries.
//
// One list of free blocks for each size class of 16 bytes, up to 128 bytes, so that making and
// freeing cost a few instructions; anything larger goes straight to malloc and free. Blocks are
// aligned to 8 bytes at least. What the lists hold is used again but never given back. Whoever
// frees a block says its size again. Not for several threads.
#pragma once

#include <cstddef>
#include <cstdlib>

// The checking tools see faults only in blocks that malloc knows.
#if defined(__SANITIZE_ADDRESS__)
#define KIVSTORE_PLAIN_BLOCKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KIVSTORE_PLAIN_BLOCKS 1
#endif
#endif

namespace kivstore {

inline constexpr size_t kSmallBlockStep = 16;
inline constexpr size_t kSmallBlockClasses = 8;

struct FreeSmallBlock {
  FreeSmallBlock* next;
};

extern constinit FreeSmallBlock* gFreeSmallBlocks[kSmallBlockClasses];

// Takes a new chunk for the class and returns one block of it; null when there is no memory.
void* RefillSmallBlocks(size_t sizeClass);

// Null when there is no memory.
inline void* AllocateSmall(size_t size) {
#ifndef KIVSTORE_PLAIN_BLOCKS
  const size_t sizeClass = (size - 1) / kSmallBlockStep;
  if (sizeClass < kSmallBlockClasses) {
    FreeSmallBlock* const block = gFreeSmallBlocks[sizeClass];
    if (block == nullptr) {
      return RefillSmallBlocks(sizeClass);
    }
    gFreeSmallBlocks[sizeClass] = block->next;
    return block;
  }
#endif
  return std::malloc(size);
}

// `size` is what the block was allocated with.
inline void FreeSmall(void* block, [[maybe_unused]] size_t size) {
#ifndef KIVSTORE_PLAIN_BLOCKS
  const size_t sizeClass = (size - 1) / kSmallBlockStep;
  if (sizeClass < kSmallBlockClasses && block != nullptr) {
    auto* const freed = static_cast<FreeSmallBlock*>(block);
    freed->next = gFreeSmallBlocks[sizeClass];
    gFreeSmallBlocks[sizeClass] = freed;
    return;
  }
#endif
  std::free(block);
}

}  // namespace kivstore
