// The platform's movable memory.
#pragma once

#include <cstdint>

namespace kivstore {

struct MemoryBlock;  // the platform's own
using MemoryHandle = MemoryBlock*;

class IMemory {
 public:
  static constexpr uint32_t kMovable = 2;  // the one allocation flag in use
  static constexpr uint32_t kDiscarded =
      0x8000;  // set by Flags for a block that has lost its memory
  static constexpr uint32_t kLockCountMask = 0xFF;

  virtual ~IMemory() = default;

  // Null when there is no memory.
  virtual MemoryHandle Allocate(uint32_t flags, int64_t size) = 0;
  virtual void Free(MemoryHandle handle) = 0;
  // The block's address, one lock more; null for a block of size 0.
  virtual void* Lock(MemoryHandle handle) = 0;
  virtual void Unlock(MemoryHandle handle) = 0;
  // The handle after resizing, which may be another one; null, with the block as it was, on
  // failure.
  virtual MemoryHandle Reallocate(MemoryHandle handle, int64_t size, uint32_t flags) = 0;
  // kDiscarded and the lock count.
  virtual uint32_t Flags(MemoryHandle handle) = 0;
};

}  // namespace kivstore
