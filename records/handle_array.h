// The small growable array of the progress records, with its transfer through an archive.
//
// Elements lie in one movable block, locked for the array's whole life. `fill` is what new elements
// get. Counts are 16 bits. An array that cannot get memory ends with what its operation says and
// reports nothing.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "archive/dob_archive.h"
#include "archive/stored_form.h"
#include "foundation/memory/memory_block.h"

namespace kivstore {

template <class T>
class SHandleArray {
  static_assert(kStoredWidth<T> > 0);

 public:
  SHandleArray() = default;
  explicit SHandleArray(T fillValue) : fill(fillValue) {}
  SHandleArray(const SHandleArray& other) { Assign(other); }
  SHandleArray& operator=(const SHandleArray& other) {
    Assign(other);
    return *this;
  }
  ~SHandleArray() { Release(); }

  int16_t GetCount() const { return count; }
  int16_t GetCapacity() const { return capacity; }
  const T* Data() const { return data; }
  T* Data() { return data; }
  // The fill value outside the array.
  T At(int32_t index) const { return index >= 0 && index < count ? data[index] : fill; }
  T GetFill() const { return fill; }
  void SetFill(T value) { fill = value; }

  void Release();
  // Changes the block to exactly n elements, keeping what fits.
  void Resize(int16_t n);
  // Shortening keeps the block; growing is exact and fills.
  void SetSize(int16_t n);
  // Grows in multiples of 10, filling; never shortens.
  void EnsureSize(int16_t n);
  // Exactly n elements of the fill value.
  void ResetTo(int16_t n);
  // Grows on demand; nothing below 0 or beyond 32,766.
  void SetAt(int32_t index, T value);
  // An exact copy: capacity becomes the count. Without memory the array is left empty.
  void Assign(const SHandleArray& other);

  // Count (2 bytes) and elements. On reading, fewer elements than the array has shorten it and keep
  // the block. Of a count beyond 32,767 the first 32,767 elements are kept and the others read
  // past. The block grows as elements arrive, so a count that the rest of the data cannot back
  // costs nothing: the array ends with the fill value near the first element that failed, and the
  // archive has its error. In the text form an absent element keeps its value and the rest is
  // read.
  void Transfer(IDobArchive& archive, const char* key);

  // The same straight from the binary form: how many bytes stand behind the first `length`, false
  // if that cannot be told or is more than is taken on trust; and taking them.
  static bool Measure(std::string_view bytes, int64_t& length);
  void Take(const uint8_t*& from);

  // Counts and elements; capacity and fill do not count.
  bool operator==(const SHandleArray& other) const;

 private:
  static constexpr int32_t kMaxCount = 32767;
  // What is taken on trust: how many elements a count from a file may claim before they arrive.
  static constexpr int32_t kTrustedCount = 256;
  // How many elements in a row a text may lack.
  static constexpr int32_t kMissesInText = 256;

  bool Reallocate(int16_t n);
  bool Allocate(int16_t n);
  void FillFrom(int32_t first, int16_t n);
  void TakeCount(uint16_t n);
  void MakeRoom(int32_t index, uint16_t claimed);
  void TransferPlain(IDobArchive& archive, uint16_t n);
  void TransferKeyed(IDobArchive& archive, uint16_t n);

  int16_t count = 0;
  int16_t capacity = 0;
  T* data = nullptr;
  MemoryHandle handle = nullptr;
  T fill{};
};

template <class T>
void SHandleArray<T>::Release() {
  if (handle == nullptr || data == nullptr) {
    return;
  }
  FreeBlock(handle);
  handle = nullptr;
  data = nullptr;
  count = 0;
  capacity = 0;
}

template <class T>
void SHandleArray<T>::Resize(int16_t n) {
  if (capacity == n || n < 0) {
    return;
  }
  if (n == 0) {
    return Release();
  }
  const bool resized = handle != nullptr ? Reallocate(n) : Allocate(n);
  if (!resized) {
    return;
  }
  capacity = n;
  count = std::min(count, n);
}

template <class T>
bool SHandleArray<T>::Reallocate(int16_t n) {
  const bool resized = ResizeBlock(handle, static_cast<int64_t>(n) * sizeof(T));
  data = static_cast<T*>(LockBlock(handle));
  return resized;
}

template <class T>
bool SHandleArray<T>::Allocate(int16_t n) {
  handle = AllocateBlock(static_cast<int64_t>(n) * sizeof(T));
  data = static_cast<T*>(LockBlock(handle));
  if (data != nullptr) {
    return true;
  }
  FreeBlock(handle);
  handle = nullptr;
  count = 0;
  capacity = 0;
  return false;
}

// The count becomes n, or what the block holds of it; elements from `first` on get the fill value.
template <class T>
void SHandleArray<T>::FillFrom(int32_t first, int16_t n) {
  count = std::min(n, capacity);
  if (first >= count) {
    return;
  }
  if constexpr (sizeof(T) == 1) {
    std::memset(data + first, fill, static_cast<size_t>(count - first));
  } else {
    std::fill(data + first, data + count, fill);
  }
}

template <class T>
void SHandleArray<T>::SetSize(int16_t n) {
  if (n < 0) {
    return;
  }
  if (n < count) {
    count = n;
    return;
  }
  Resize(n);
  FillFrom(count, n);
}

template <class T>
void SHandleArray<T>::EnsureSize(int16_t n) {
  if (n < 0) {
    return;
  }
  if (n > capacity) {
    Resize(static_cast<int16_t>(std::min((n + 9) / 10 * 10, kMaxCount)));
  }
  if (n <= capacity && n > count) {
    FillFrom(count, n);
  }
}

template <class T>
void SHandleArray<T>::ResetTo(int16_t n) {
  if (n < 0) {
    return;
  }
  if (count <= n) {
    Resize(n);
  }
  FillFrom(0, n);
}

template <class T>
void SHandleArray<T>::SetAt(int32_t index, T value) {
  if (index < 0 || index >= kMaxCount) {
    return;
  }
  EnsureSize(static_cast<int16_t>(index + 1));
  if (index < count) {
    data[index] = value;
  }
}

template <class T>
void SHandleArray<T>::Assign(const SHandleArray& other) {
  if (this == &other) {
    return;
  }
  fill = other.fill;
  if (other.count == 0) {
    return Release();
  }
  // A block of the right size serves again.
  if (capacity != other.count) {
    Release();
    if (!Allocate(other.count)) {
      return;
    }
  }
  count = other.count;
  capacity = other.count;
  std::copy_n(other.data, count, data);
}

// A count up to kTrustedCount is taken at once, a larger one as far as that; MakeRoom does the
// rest.
template <class T>
void SHandleArray<T>::TakeCount(uint16_t n) {
  if (n <= count) {
    count = static_cast<int16_t>(n);
    return;
  }
  const int32_t trusted = std::min<int32_t>(n, std::max<int32_t>(kTrustedCount, count));
  const int32_t old = count;
  Resize(static_cast<int16_t>(trusted));
  FillFrom(old, static_cast<int16_t>(trusted));
}

template <class T>
void SHandleArray<T>::MakeRoom(int32_t index, uint16_t claimed) {
  if (index < count || count == kMaxCount) {
    return;
  }
  const int32_t wanted = std::min<int32_t>({claimed, 2 * index, kMaxCount});
  const int32_t old = count;
  Resize(static_cast<int16_t>(wanted));
  FillFrom(old, static_cast<int16_t>(wanted));
}

template <class T>
void SHandleArray<T>::Transfer(IDobArchive& archive, const char* key) {
  uint16_t n = static_cast<uint16_t>(count);
  if (const uint8_t* from = archive.TakeReady(kStoredWidth<uint16_t>)) {
    TakeStored(from, n);
    TakeCount(n);
    return TransferPlain(archive, n);
  }
  archive.PushKey(key);
  archive.TransferUShort("Count", n);
  if (archive.IsReading()) {
    TakeCount(n);
  }
  // An archive without keys needs no call for each element's, and ends at its first failure.
  if (archive.GetKey() != nullptr) {
    TransferKeyed(archive, n);
  } else {
    TransferPlain(archive, n);
  }
  archive.PopKey();
}

template <class T>
bool SHandleArray<T>::Measure(std::string_view bytes, int64_t& length) {
  const int32_t n = StoredCountAt(bytes, length);
  length += kStoredWidth<uint16_t> + int64_t{n} * kStoredWidth<T>;
  return n >= 0 && n <= kTrustedCount;
}

// What there is no room for is passed over.
template <class T>
void SHandleArray<T>::Take(const uint8_t*& from) {
  uint16_t n;
  TakeStored(from, n);
  TakeCount(n);
  const uint8_t* elements = from;
  TakeStored(elements, data, std::min<int32_t>(n, count));
  from += n * kStoredWidth<T>;
}

template <class T>
void SHandleArray<T>::TransferPlain(IDobArchive& archive, uint16_t n) {
  const uint8_t* from = n <= count ? archive.TakeReady(n * kStoredWidth<T>) : nullptr;
  if (from != nullptr) {
    return TakeStored(from, data, n);
  }
  for (int32_t i = 0; i < n; ++i) {
    T past = fill;
    if (i >= count) {
      MakeRoom(i, n);
    }
    if (!kivstore::Transfer(archive, nullptr, i < count ? data[i] : past)) {
      return;
    }
  }
}

template <class T>
void SHandleArray<T>::TransferKeyed(IDobArchive& archive, uint16_t n) {
  int32_t misses = 0;
  for (int32_t i = 0; i < n && misses <= kMissesInText; ++i) {
    MakeRoom(i, n);
    T past = fill;
    archive.PushKeyNumber(static_cast<uint16_t>(i));
    const bool found = kivstore::Transfer(archive, nullptr, i < count ? data[i] : past);
    archive.PopKey();
    misses = found ? 0 : misses + 1;
  }
}

template <class T>
bool SHandleArray<T>::operator==(const SHandleArray& other) const {
  return count == other.count && std::equal(data, data + count, other.data);
}

}  // namespace kivstore
