// A field of the binary form (dob_binary_archive.h) straight from its bytes, for who has a row of
// them at once. Each operation moves behind what it has taken.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "archive/swap_bytes.h"
#include "foundation/time/date_time.h"

namespace kivstore {

// Bytes that a field takes; 0 for a type whose bytes depend on the value.
template <class T>
inline constexpr int32_t kStoredWidth = 0;
template <>
inline constexpr int32_t kStoredWidth<bool> = 1;
template <>
inline constexpr int32_t kStoredWidth<int16_t> = 2;
template <>
inline constexpr int32_t kStoredWidth<uint16_t> = 2;
template <>
inline constexpr int32_t kStoredWidth<int32_t> = 4;
template <>
inline constexpr int32_t kStoredWidth<uint32_t> = 4;
template <>
inline constexpr int32_t kStoredWidth<SDateTime> = 8;

template <class Number>
void TakeStored(const uint8_t*& from, Number& value) {
  CopySwapped(&value, from, kStoredWidth<Number>);
  from += kStoredWidth<Number>;
}
inline void TakeStored(const uint8_t*& from, bool& value) {
  value = *from != 0;
  from += kStoredWidth<bool>;
}
inline void TakeStored(const uint8_t*& from, SDateTime& value) {
  uint32_t seconds;
  from += kStoredWidth<SDateTime> - kStoredWidth<uint32_t>;  // the high word is dropped
  TakeStored(from, seconds);
  value.SetRaw(seconds);
}

// The count ahead of a row whose place is known from the start of the bytes; -1 if they end there.
inline int32_t StoredCountAt(std::string_view bytes, int64_t place) {
  constexpr int32_t kCount = kStoredWidth<uint16_t>;
  if (place + kCount > static_cast<int64_t>(bytes.size())) {
    return -1;
  }
  const uint8_t* from = reinterpret_cast<const uint8_t*>(bytes.data()) + place;
  uint16_t count;
  TakeStored(from, count);
  return count;
}

// A row of so many.
template <class Number>
void TakeStored(const uint8_t*& from, Number* row, int32_t count) {
  std::for_each(row, row + count, [&](Number& element) { TakeStored(from, element); });
}
// Eight at a time.
inline void TakeStored(const uint8_t*& from, bool* row, int32_t count) {
  constexpr uint64_t kLows = 0x7F7F7F7F7F7F7F7F;
  constexpr int32_t kWord = 8;
  for (; count >= kWord; count -= kWord, row += kWord, from += kWord) {
    uint64_t word;
    std::memcpy(&word, from, sizeof word);
    word = (((word & kLows) + kLows) | word) >> 7 & 0x0101010101010101;
    std::memcpy(row, &word, sizeof word);
  }
  std::for_each(row, row + count, [&](bool& element) { TakeStored(from, element); });
}

}  // namespace kivstore
