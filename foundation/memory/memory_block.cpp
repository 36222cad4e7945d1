#include "foundation/memory/memory_block.h"

#include "platform/platform.h"

namespace kivstore {

MemoryHandle AllocateBlock(int64_t size) {
  if (size < 0 || size > kLargestBlock) {
    return nullptr;
  }
  return Platform().memory->Allocate(IMemory::kMovable, size);
}

void FreeBlock(MemoryHandle handle) {
  if (handle == nullptr) {
    return;
  }
  IMemory& memory = *Platform().memory;
  const uint32_t flags = memory.Flags(handle);
  if ((flags & IMemory::kDiscarded) != 0) {
    return;
  }
  for (uint32_t locks = flags & IMemory::kLockCountMask; locks > 0; --locks) {
    memory.Unlock(handle);
  }
  memory.Free(handle);
}

void* LockBlock(MemoryHandle handle) {
  return handle != nullptr ? Platform().memory->Lock(handle) : nullptr;
}

void UnlockBlock(MemoryHandle handle) {
  if (handle != nullptr) {
    Platform().memory->Unlock(handle);
  }
}

bool ResizeBlock(MemoryHandle handle, int64_t size) {
  if (handle == nullptr || size < 1 || size > kLargestBlock) {
    return false;
  }
  IMemory& memory = *Platform().memory;
  memory.Unlock(handle);
  return memory.Reallocate(handle, size, IMemory::kMovable) == handle;
}

}  // namespace kivstore
