// The version word of every record that is written or accepted.
#pragma once

#include <cstdint>

namespace kivstore {

namespace file_version_detail {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr bool IsWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Up to two digits as nibbles; moves behind them.
constexpr uint32_t TakePair(const char*& at) {
  uint32_t pair = 0;
  for (int taken = 0; taken < 2 && IsDigit(*at); ++taken, ++at) {
    pair = pair << 4 | static_cast<uint32_t>(*at - '0');
  }
  return pair;
}

}  // namespace file_version_detail

// "major.minor" as binary-coded decimal: major in the top byte, minor in the next. "0.01" gives
// 0x00010000. Leading white space is skipped; a text that does not begin with a digit gives 0.
constexpr uint32_t PackVersion(const char* text) {
  using namespace file_version_detail;
  while (IsWhiteSpace(*text)) {
    ++text;
  }
  if (!IsDigit(*text)) {
    return 0;
  }
  const uint32_t major = TakePair(text);
  const uint32_t minor = *text == '.' ? TakePair(++text) : 0;
  return major << 24 | minor << 16;
}

inline constexpr uint32_t gFileVersion = PackVersion("0.01");

}  // namespace kivstore
