// Movable memory blocks: how the system holds large buffers. A handle names the block; locking
// gives its address, which stays as it is while the block is locked. The functions go to the
// platform's IMemory and add the rules that every user of a block relies on.
#pragma once

#include <cstdint>

#include "platform/memory.h"

namespace kivstore {

// Sizes are counted in 32 bits, signed, on every platform.
inline constexpr int64_t kLargestBlock = INT32_MAX;

// Null when there is no memory, or for a size below 0 or beyond the largest. The contents are
// undefined.
MemoryHandle AllocateBlock(int64_t size);

// Unlocks as often as needed first. A null handle and a block marked as discarded are left alone.
void FreeBlock(MemoryHandle handle);

// Null for a null handle and for a block of size 0.
void* LockBlock(MemoryHandle handle);
void UnlockBlock(MemoryHandle handle);

// Unlocks, then reallocates; true only if the block kept its handle. False for a null handle or a
// size below 1 or beyond the largest. The caller locks again either way: after a failure the block
// is as it was.
bool ResizeBlock(MemoryHandle handle, int64_t size);

}  // namespace kivstore
