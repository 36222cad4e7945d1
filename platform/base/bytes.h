// Byte comparison and folding. The system's case rule is A to Z and nothing else: a byte above 127
// is the same only as itself, whatever character set a site uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kivstore {

constexpr unsigned char FoldLower(unsigned char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + ('a' - 'A')) : c;
}

constexpr unsigned char FoldUpper(unsigned char c) {
  return c >= 'a' && c <= 'z' ? static_cast<unsigned char>(c - ('a' - 'A')) : c;
}

// Below, equal to or above 0. Bytes compare unsigned; a text that is the start of the other comes
// first.
inline int CompareBytes(std::string_view a, std::string_view b) {
  return a.compare(b);
}

namespace bytes_detail {

int CompareFolded(std::string_view a, std::string_view b);

}  // namespace bytes_detail

// The system's case-blind comparison: both bytes folded to lower case, then compared unsigned.
inline int CompareBytesNoCase(std::string_view a, std::string_view b) {
  // Most texts of a list differ in their first byte.
  if (!a.empty() && !b.empty()) {
    const int first = FoldLower(static_cast<unsigned char>(a[0]));
    const int other = FoldLower(static_cast<unsigned char>(b[0]));
    if (first != other) {
      return first - other;
    }
  }
  return bytes_detail::CompareFolded(a, b);
}

inline bool EqualBytesNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && CompareBytesNoCase(a, b) == 0;
}

// Eight bytes as one number, so that a text is folded and compared eight bytes at a time. The first
// byte stands on top; what is missing at the end is 0.
uint64_t PackBytes(const char* bytes, size_t count);

// FoldLower of each of the eight bytes.
constexpr uint64_t FoldLowerPacked(uint64_t bytes) {
  constexpr uint64_t kOnes = 0x0101010101010101;
  constexpr uint64_t kTopBits = 0x80 * kOnes;
  // Adding carries into the top bit of each byte that is at or beyond the letter.
  const uint64_t low = bytes & ~kTopBits;
  const uint64_t fromA = low + (0x80 - 'A') * kOnes;
  const uint64_t beyondZ = low + (0x7F - 'Z') * kOnes;
  return bytes | (fromA & ~beyondZ & ~bytes & kTopBits) >> 2;
}

// The first eight bytes folded to lower case, first byte on top, zero-filled: two texts whose keys
// differ compare case-blind as their keys do. Folder names have at most eight characters, so the
// key nearly always decides and a sort by it touches no text.
inline uint64_t FoldedSortKey(std::string_view text) {
  return FoldLowerPacked(PackBytes(text.data(), text.size()));
}

namespace bytes_detail {

inline uint64_t PackFour(const char* bytes) {
  const auto* const b = reinterpret_cast<const unsigned char*>(bytes);
  return static_cast<uint64_t>(b[0]) << 24 | static_cast<uint64_t>(b[1]) << 16 |
         static_cast<uint64_t>(b[2]) << 8 | b[3];
}

}  // namespace bytes_detail

inline uint64_t PackBytes(const char* bytes, size_t count) {
  using bytes_detail::PackFour;
  if (count >= 8) {
    return PackFour(bytes) << 32 | PackFour(bytes + 4);
  }
  if (count >= 4) {
    // The two halves overlap; both put the same byte in the same place.
    return PackFour(bytes) << 32 | PackFour(bytes + count - 4) << (8 * (8 - count));
  }
  uint64_t packed = 0;
  for (size_t i = 0; i < count; ++i) {
    packed |= static_cast<uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * (7 - i));
  }
  return packed;
}

}  // namespace kivstore
