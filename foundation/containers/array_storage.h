// Where the elements of an array lie. Plain values lie in a movable block that stays locked; other
// elements in a heap array whose elements are constructed and destroyed.
//
// Reserve makes room for `capacity` elements, keeping the first `size`; false, with everything as
// it was, if there is no memory. The room behind them is not cleared.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

#include "foundation/memory/memory_block.h"

namespace kivstore {

template <class T>
class SBlockStorage {
 public:
  T* Data() const { return data; }

  bool Reserve(int32_t capacity, int32_t) {
    const int64_t bytes = static_cast<int64_t>(capacity) * static_cast<int64_t>(sizeof(T));
    return handle == nullptr ? Allocate(bytes) : Resize(bytes);
  }

  void Free() {
    FreeBlock(handle);
    handle = nullptr;
    data = nullptr;
  }

 private:
  bool Allocate(int64_t bytes) {
    handle = AllocateBlock(bytes);
    data = static_cast<T*>(LockBlock(handle));
    if (data == nullptr) {
      Free();
      return false;
    }
    return true;
  }

  bool Resize(int64_t bytes) {
    const bool resized = ResizeBlock(handle, bytes);
    data = static_cast<T*>(LockBlock(handle));
    return resized;
  }

  MemoryHandle handle = nullptr;
  T* data = nullptr;
};

template <class T>
class SHeapStorage {
 public:
  T* Data() const { return data; }

  bool Reserve(int32_t capacity, int32_t size) {
    if (static_cast<size_t>(capacity) > PTRDIFF_MAX / sizeof(T) - 1) {
      return false;
    }
    T* const moved = new (std::nothrow) T[static_cast<size_t>(capacity)];
    if (moved == nullptr) {
      return false;
    }
    std::move(data, data + size, moved);
    delete[] data;
    data = moved;
    return true;
  }

  void Free() {
    delete[] data;
    data = nullptr;
  }

 private:
  T* data = nullptr;
};

template <class T>
using SArrayStorage =
    std::conditional_t<std::is_trivially_copyable_v<T>, SBlockStorage<T>, SHeapStorage<T>>;

}  // namespace kivstore
