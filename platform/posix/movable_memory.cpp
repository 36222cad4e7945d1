// Movable memory over the C library's heap. The handle is a small record that stays in its place;
// only the bytes that it points at move. No block ever loses its memory, so none is discarded.
#include <cstdlib>

#include "platform/base/never_destroyed.h"
#include "platform/base/small_blocks.h"
#include "platform/posix/services.h"

namespace kivstore {

struct MemoryBlock {
  void* bytes;
  uint32_t locks;
};

namespace {

class MovableMemory final : public IMemory {
 public:
  MemoryHandle Allocate(uint32_t, int64_t size) override {
    void* const bytes = size != 0 ? std::malloc(static_cast<size_t>(size)) : nullptr;
    if (bytes == nullptr && size != 0) {
      return nullptr;
    }
    auto* const block = static_cast<MemoryBlock*>(AllocateSmall(sizeof(MemoryBlock)));
    if (block == nullptr) {
      std::free(bytes);
      return nullptr;
    }
    *block = {bytes, 0};
    return block;
  }

  void Free(MemoryHandle handle) override {
    std::free(handle->bytes);
    FreeSmall(handle, sizeof(MemoryBlock));
  }

  void* Lock(MemoryHandle handle) override {
    if (handle->bytes != nullptr && handle->locks < kLockCountMask) {
      ++handle->locks;
    }
    return handle->bytes;
  }

  void Unlock(MemoryHandle handle) override {
    if (handle->locks > 0) {
      --handle->locks;
    }
  }

  MemoryHandle Reallocate(MemoryHandle handle, int64_t size, uint32_t) override {
    void* const moved = std::realloc(handle->bytes, static_cast<size_t>(size));
    if (moved == nullptr) {
      return nullptr;
    }
    handle->bytes = moved;
    return handle;
  }

  uint32_t Flags(MemoryHandle handle) override { return handle->locks; }
};

constinit NeverDestroyed<MovableMemory> gMovableMemory;

}  // namespace

IMemory& PosixMemory() {
  return gMovableMemory.object;
}

}  // namespace kivstore
