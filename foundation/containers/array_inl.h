// Bodies of the array family, for the source files that instantiate it.
#pragma once

#include <algorithm>
#include <compare>
#include <limits>
#include <memory>
#include <utility>

#include "foundation/containers/array.h"
#include "foundation/time/random.h"

namespace kivstore {

template <class T>
int DefaultOrder(const T* a, const T* b) {
  const auto order = std::compare_three_way{}(*a, *b);
  return order < 0 ? -1 : order > 0;
}

// Back to the first state; what the elements held is released.
template <class T>
void ResetElements(T* begin, T* end) {
  std::destroy(begin, end);
  std::uninitialized_value_construct(begin, end);
}

template <class T>
SArray<T>::~SArray() {
  storage.Free();
}

template <class T>
int32_t SArray<T>::CapacityFor(int32_t newSize) const {
  constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
  const int32_t step = growBy != 0 ? growBy : std::clamp(size / 8, 4, 1024);
  if (Data() == nullptr || newSize - capacity >= step) {
    return newSize;
  }
  return newSize > kMost - step ? kMost : capacity + step;
}

template <class T>
void SArray<T>::SetSize(int32_t newSize, int32_t newGrowBy) {
  if (newSize < 0) {
    return;
  }
  if (newGrowBy != -1) {
    growBy = newGrowBy;
  }
  if (newSize == 0) {
    storage.Free();
    size = capacity = 0;
    return;
  }
  if (newSize > capacity) {
    const int32_t newCapacity = CapacityFor(newSize);
    if (!storage.Reserve(newCapacity, size)) {
      return;
    }
    capacity = newCapacity;
  }
  if (newSize > size) {
    ResetElements(Data() + size, Data() + newSize);
  } else if constexpr (!std::is_trivially_copyable_v<T>) {
    ResetElements(Data() + newSize, Data() + size);
  }
  size = newSize;
}

template <class T>
bool SArray<T>::GrowTo(int64_t newSize) {
  if (newSize > std::numeric_limits<int32_t>::max()) {
    return false;
  }
  SetSize(static_cast<int32_t>(newSize));
  return size == newSize;
}

template <class T>
int32_t SArray<T>::Append(const SArray& other) {
  const int32_t oldSize = size;
  if (&other != this && other.size > 0 && GrowTo(static_cast<int64_t>(size) + other.size)) {
    std::copy_n(other.Data(), other.size, Data() + oldSize);
  }
  return oldSize;
}

template <class T>
void SArray<T>::Copy(const SArray& other) {
  if (&other == this) {
    return;
  }
  SetSize(other.size);
  if (size == other.size) {
    std::copy_n(other.Data(), size, Data());
  }
}

template <class T>
void SArray<T>::FreeExtra() {
  if (size == 0) {
    SetSize(0);
  } else if (size < capacity && storage.Reserve(size, size)) {
    capacity = size;
  }
}

template <class T>
bool SArray<T>::Reserve(int32_t count) {
  if (count <= capacity) {
    return true;
  }
  if (!storage.Reserve(count, size)) {
    return false;
  }
  capacity = count;
  return true;
}

template <class T>
void SArray<T>::Swap(SArray& other) {
  std::swap(storage, other.storage);
  std::swap(size, other.size);
  std::swap(capacity, other.capacity);
  std::swap(growBy, other.growBy);
}

template <class T>
bool SArray<T>::OpenGap(int32_t index, int32_t count) {
  const int32_t oldSize = size;
  if (index < 0 || count <= 0 || !GrowTo(static_cast<int64_t>(std::max(index, size)) + count)) {
    return false;
  }
  if (index < oldSize) {
    std::move_backward(Data() + index, Data() + oldSize, Data() + oldSize + count);
  }
  return true;
}

template <class T>
void SArray<T>::InsertAt(int32_t index, T value, int32_t count) {
  if (OpenGap(index, count)) {
    std::fill_n(Data() + index, count, value);
  }
}

template <class T>
void SArray<T>::InsertArrayAt(int32_t index, const SArray* other) {
  if (other != nullptr && other != this && OpenGap(index, other->size)) {
    std::copy_n(other->Data(), other->size, Data() + index);
  }
}

template <class T>
void SArray<T>::RemoveAt(int32_t index, int32_t count) {
  if (index < 0 || count < 0 || index > size || count > size - index) {
    return;
  }
  T* const end = Data() + size;
  [[maybe_unused]] T* const newEnd = std::move(Data() + index + count, end, Data() + index);
  if constexpr (!std::is_trivially_copyable_v<T>) {
    ResetElements(newEnd, end);
  }
  size -= count;
}

template <class T>
void SArray<T>::SetAll(T value) {
  std::fill_n(Data(), size, value);
}

template <class T>
void SArray<T>::Shuffle() {
  for (int32_t i = 1; i < size; ++i) {
    const int32_t j = Random(0, i);
    if (j != i) {
      std::swap(Data()[i], Data()[j]);
    }
  }
}

template <class T>
int32_t SArray<T>::FindLinear(T value, Compare compare) const {
  const Compare order = compare != nullptr ? compare : DefaultOrder<T>;
  for (int32_t i = 0; i < size; ++i) {
    if (order(&value, Data() + i) == 0) {
      return i;
    }
  }
  return -1;
}

// The halving of the C library's search, written out so that among equal elements every platform
// gives the same one.
template <class T>
int32_t SArray<T>::FindSorted(T value, Compare compare) const {
  const Compare order = compare != nullptr ? compare : DefaultOrder<T>;
  int32_t low = 0, high = size;
  while (low < high) {
    const int32_t middle = low + (high - low) / 2;
    const int sign = order(&value, Data() + middle);
    if (sign == 0) {
      return middle;
    }
    if (sign < 0) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return -1;
}

template <class T>
void SArray<T>::Sort(Compare compare) {
  if (size < 2) {
    return;
  }
  const Compare order = compare != nullptr ? compare : DefaultOrder<T>;
  const auto isBelow = [order](const T& a, const T& b) { return order(&a, &b) < 0; };
  T* const end = Data() + size;
  // Lists mostly come in order already; then one pass is all.
  T* const firstWrong = std::is_sorted_until(Data(), end, isBelow);
  if (firstWrong != end) {
    std::stable_sort(Data(), end, isBelow);  // does without its buffer if there is no memory
  }
}

template <class T>
int32_t SArray<T>::InsertSorted(T value, Compare compare) {
  const Compare order = compare != nullptr ? compare : DefaultOrder<T>;
  int32_t index = 0;
  while (index < size && order(&value, Data() + index) > 0) {
    ++index;
  }
  const int32_t oldSize = size;
  InsertAt(index, std::move(value));
  return size > oldSize ? index : -1;
}

}  // namespace kivstore
