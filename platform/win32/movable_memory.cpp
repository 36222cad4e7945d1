// Movable memory of the system's own heap.
#include <windows.h>

#include "platform/base/never_destroyed.h"
#include "platform/win32/services.h"

namespace kivstore {
namespace {

static_assert(IMemory::kMovable == GMEM_MOVEABLE);
static_assert(IMemory::kDiscarded == GMEM_INVALID_HANDLE);
static_assert(IMemory::kLockCountMask == GMEM_LOCKCOUNT);

HGLOBAL ToGlobal(MemoryHandle handle) {
  return reinterpret_cast<HGLOBAL>(handle);
}

MemoryHandle FromGlobal(HGLOBAL handle) {
  return reinterpret_cast<MemoryHandle>(handle);
}

class MovableMemory final : public IMemory {
 public:
  MemoryHandle Allocate(uint32_t flags, int64_t size) override {
    return FromGlobal(GlobalAlloc(flags, static_cast<SIZE_T>(size)));
  }

  void Free(MemoryHandle handle) override { GlobalFree(ToGlobal(handle)); }

  void* Lock(MemoryHandle handle) override { return GlobalLock(ToGlobal(handle)); }

  void Unlock(MemoryHandle handle) override { GlobalUnlock(ToGlobal(handle)); }

  MemoryHandle Reallocate(MemoryHandle handle, int64_t size, uint32_t flags) override {
    return FromGlobal(GlobalReAlloc(ToGlobal(handle), static_cast<SIZE_T>(size), flags));
  }

  uint32_t Flags(MemoryHandle handle) override { return GlobalFlags(ToGlobal(handle)); }
};

constinit NeverDestroyed<MovableMemory> gMovableMemory;

}  // namespace

IMemory& WindowsMemory() {
  return gMovableMemory.object;
}

}  // namespace kivstore
