// The swap between stream and memory: numbers turned around on their way.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kivstore {

namespace swap_bytes_detail {

inline uint16_t Turned(uint16_t value) {
  return __builtin_bswap16(value);
}
inline uint32_t Turned(uint32_t value) {
  return __builtin_bswap32(value);
}
inline uint64_t Turned(uint64_t value) {
  return __builtin_bswap64(value);
}

template <class Word>
void CopyTurned(void* to, const void* from) {
  Word word;
  std::memcpy(&word, from, sizeof word);
  word = Turned(word);
  std::memcpy(to, &word, sizeof word);
}

}  // namespace swap_bytes_detail

// Copies `count` bytes in reverse order. The ranges do not overlap.
inline void CopySwapped(void* to, const void* from, int32_t count) {
  using namespace swap_bytes_detail;
  switch (count) {
    case 1:
      *static_cast<uint8_t*>(to) = *static_cast<const uint8_t*>(from);
      return;
    case 2:
      return CopyTurned<uint16_t>(to, from);
    case 4:
      return CopyTurned<uint32_t>(to, from);
    case 8:
      return CopyTurned<uint64_t>(to, from);
    default:
      std::reverse_copy(static_cast<const uint8_t*>(from),
                        static_cast<const uint8_t*>(from) + count, static_cast<uint8_t*>(to));
  }
}

}  // namespace kivstore
