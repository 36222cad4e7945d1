#include "platform/posix/dos_attribute.h"

#include <cstdint>

namespace kivstore {
namespace {

constexpr int kNowhere = -1;

unsigned ByteAt(std::string_view value, size_t index) {
  return static_cast<unsigned char>(value[index]);
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Where the text form keeps the lowest four bits.
int LastDigit(std::string_view value) {
  if (value.size() < 3 || value[0] != '0' || value[1] != 'x') {
    return kNowhere;
  }
  size_t end = 2;
  while (end < value.size() && HexDigit(value[end]) >= 0) {
    ++end;
  }
  return end > 2 && (end == value.size() || value[end] == '\0') ? static_cast<int>(end) - 1
                                                                : kNowhere;
}

// Where the long form keeps the lowest eight bits.
int BinaryBits(std::string_view value) {
  const size_t textEnd = value.find('\0');
  if (textEnd == std::string_view::npos) {
    return kNowhere;
  }
  const size_t versionAt = (textEnd + 2) & ~size_t{1};
  const size_t infoAt = (versionAt + 7) & ~size_t{3};
  if (value.size() < infoAt + 8) {
    return kNowhere;
  }
  const unsigned version = ByteAt(value, versionAt) | ByteAt(value, versionAt + 1) << 8;
  if (version == 0 || version > 5) {
    return kNowhere;
  }
  return static_cast<int>(version == 1 ? infoAt : infoAt + 4);
}

}  // namespace

unsigned DosBits(std::string_view value) {
  constexpr unsigned kBoth = kDosReadOnly | kDosHidden;
  if (const int at = BinaryBits(value); at != kNowhere) {
    return ByteAt(value, static_cast<size_t>(at)) & kBoth;
  }
  const int at = LastDigit(value);
  return at != kNowhere ? static_cast<unsigned>(HexDigit(value[static_cast<size_t>(at)])) & kBoth
                        : 0;
}

bool ChangeDosBit(char* value, int length, unsigned bit, bool set) {
  const std::string_view view(value, static_cast<size_t>(length));
  const int digitAt = LastDigit(view);
  const int bitsAt = BinaryBits(view);
  if (digitAt != kNowhere) {
    const unsigned digit = static_cast<unsigned>(HexDigit(value[digitAt]));
    value[digitAt] = "0123456789abcdef"[set ? digit | bit : digit & ~bit];
  }
  if (bitsAt != kNowhere) {
    const unsigned bits = ByteAt(view, static_cast<size_t>(bitsAt));
    value[bitsAt] = static_cast<char>(set ? bits | bit : bits & ~bit);
  }
  return digitAt != kNowhere || bitsAt != kNowhere;
}

}  // namespace kivstore
