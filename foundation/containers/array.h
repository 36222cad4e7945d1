// The array family: growable arrays.
//
//   SUInt32Array  SShortArray  SLongArray  SDoubleArray  SPtrArray  SBoolArray
//   SStringArray  (foundation/containers/string_array.h)
//
// Plain values lie in one movable block that stays locked for the array's whole life, so Data() is
// usable directly. SPtrArray never owns what its pointers point at. An array that cannot grow stays
// as it was and reports nothing. Arrays are not copied by assignment: Copy does that.
#pragma once

#include <cstdint>

#include "foundation/containers/array_storage.h"

namespace kivstore {

template <class T>
class SArray {
 public:
  // Below, equal to or above 0. A null comparison means the default order of the element type:
  // numeric, addresses and bools unsigned, strings by their bytes.
  using Compare = int (*)(const T* a, const T* b);

  SArray() = default;
  virtual ~SArray();
  SArray(const SArray&) = delete;
  SArray& operator=(const SArray&) = delete;

  int32_t GetSize() const { return size; }
  int32_t GetCapacity() const { return capacity; }
  T* Data() { return storage.Data(); }
  const T* Data() const { return storage.Data(); }
  T& operator[](int32_t index) { return Data()[index]; }              // index within the size
  const T& operator[](int32_t index) const { return Data()[index]; }  // index within the size

  // growBy -1 keeps the stored step; 0 is automatic, an eighth of the old size within 4 and 1,024.
  // New elements are 0. A negative size does nothing; 0 frees the block.
  void SetSize(int32_t newSize, int32_t newGrowBy = -1);
  int32_t Append(const SArray& other);  // returns the old size
  void Copy(const SArray& other);
  void FreeExtra();
  // Room for `count` elements in all, with the size as it is; false if there is no memory.
  bool Reserve(int32_t count);
  void Swap(SArray& other);
  void RemoveAll() { SetSize(0); }
  void Add(T value) { SetAtGrow(size, std::move(value)); }
  void SetAtGrow(int32_t index, T value) {
    if (index >= 0 && (index < size || GrowToHold(index))) {
      Data()[index] = std::move(value);
    }
  }
  // Past the end the array grows to index + count; what lies between is 0.
  void InsertAt(int32_t index, T value, int32_t count = 1);
  void InsertArrayAt(int32_t index, const SArray* other);  // nothing for the array itself
  void RemoveAt(int32_t index, int32_t count = 1);
  void SetAll(T value);
  void Shuffle();

  // Index, or -1. FindSorted is a binary search of an array that Sort has put in this order.
  int32_t FindLinear(T value, Compare compare = nullptr) const;
  int32_t FindSorted(T value, Compare compare = nullptr) const;
  // Equal elements keep their order.
  void Sort(Compare compare = nullptr);
  // Before the first element that is not below it; returns the index, -1 if there is no memory.
  int32_t InsertSorted(T value, Compare compare = nullptr);

 private:
  // Makes the array hold an index at or past its size.
  bool GrowToHold(int32_t index) {
    if (index == size && size < capacity) {
      ++size;
      return true;
    }
    return GrowTo(static_cast<int64_t>(index) + 1);
  }
  bool GrowTo(int64_t newSize);
  int32_t CapacityFor(int32_t newSize) const;
  // Makes room for `count` elements at the index, whose values are left to the caller.
  bool OpenGap(int32_t index, int32_t count);

  SArrayStorage<T> storage;  // handle and data; strings have no handle
  int32_t size = 0;
  int32_t capacity = 0;
  int32_t growBy = 0;
};

using SUInt32Array = SArray<uint32_t>;
using SShortArray = SArray<int16_t>;
using SLongArray = SArray<int32_t>;
using SDoubleArray = SArray<double>;
using SPtrArray = SArray<void*>;
using SBoolArray = SArray<bool>;

extern template class SArray<uint32_t>;
extern template class SArray<int16_t>;
extern template class SArray<int32_t>;
extern template class SArray<double>;
extern template class SArray<void*>;
extern template class SArray<bool>;

}  // namespace kivstore
