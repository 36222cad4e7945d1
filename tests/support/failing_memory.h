// Movable memory that can run out, and that counts what was asked of it.
#pragma once

#include "platform/platform.h"

namespace kivtest {

class FailingMemory : public kivstore::IMemory {
 public:
  using MemoryHandle = kivstore::MemoryHandle;

  MemoryHandle Allocate(uint32_t flags, int64_t size) override {
    return Allows(size) ? inner.Allocate(flags, size) : nullptr;
  }
  void Free(MemoryHandle handle) override { inner.Free(handle); }
  void* Lock(MemoryHandle handle) override { return inner.Lock(handle); }
  void Unlock(MemoryHandle handle) override { inner.Unlock(handle); }
  MemoryHandle Reallocate(MemoryHandle handle, int64_t size, uint32_t flags) override {
    return Allows(size) ? inner.Reallocate(handle, size, flags) : nullptr;
  }
  uint32_t Flags(MemoryHandle handle) override { return inner.Flags(handle); }

  bool exhausted = false;
  int requests = 0;
  int64_t largest = 0;

 private:
  bool Allows(int64_t size) {
    ++requests;
    largest = size > largest ? size : largest;
    return !exhausted;
  }

  kivstore::IMemory& inner = *kivstore::Platform().memory;
  kivstore::SPlatformOverride<kivstore::IMemory> installed{kivstore::Platform().memory, this};
};

}  // namespace kivtest
