// Where a delimited text ends. Delimiters that are null or empty leave the NUL as the only stop.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace kivstore {

inline bool StopsAtNulOnly(const char* delimiters) {
  return delimiters == nullptr || *delimiters == '\0';
}

// A delimiter or NUL. `delimiters` is not null.
inline bool IsTextStop(uint8_t c, const char* delimiters) {
  return std::strchr(delimiters, c) != nullptr;
}

inline bool IsDelimiter(uint8_t c, const char* delimiters) {
  return c != 0 && IsTextStop(c, delimiters);
}

inline uint64_t LoadLittleEndian(const uint8_t* from) {
  uint64_t word;
  std::memcpy(&word, from, sizeof word);
  return std::endian::native == std::endian::little ? word : __builtin_bswap64(word);
}

// The bytes before the first NUL, or all of them. Names are short: most end in the first words.
inline int32_t FindNul(const uint8_t* from, int32_t count) {
  constexpr uint64_t kOnes = 0x0101010101010101;
  constexpr uint64_t kTops = 0x8080808080808080;
  constexpr int32_t kWord = 8;
  int32_t at = 0;
  for (; at + kWord <= count && at < 2 * kWord; at += kWord) {
    const uint64_t word = LoadLittleEndian(from + at);
    const uint64_t nuls = (word - kOnes) & ~word & kTops;
    if (nuls != 0) {
      return at + std::countr_zero(nuls) / 8;
    }
  }
  const void* const nul =
      at < count ? std::memchr(from + at, 0, static_cast<size_t>(count - at)) : nullptr;
  return nul != nullptr ? static_cast<int32_t>(static_cast<const uint8_t*>(nul) - from) : count;
}

// The bytes before the first stop, or all of them.
inline int32_t LengthToStop(const uint8_t* from, int32_t count, const char* delimiters) {
  if (StopsAtNulOnly(delimiters)) {
    return FindNul(from, count);
  }
  int32_t length = 0;
  while (length < count && !IsTextStop(from[length], delimiters)) {
    ++length;
  }
  return length;
}

}  // namespace kivstore
