// Numbers from and to text.
#include <cstdio>
#include <cstdlib>

#include "foundation/text/string.h"
#include "platform/base/bytes.h"

namespace kivstore {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// -1 for a character that is no digit.
int HexDigit(char c) {
  if (IsDigit(c)) {
    return c - '0';
  }
  const unsigned char upper = FoldUpper(static_cast<unsigned char>(c));
  return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

// Every digit counts, whatever stands between; false if anything does, or if there is nothing.
bool ReadDigits(std::string_view source, uint32_t& value) {
  value = 0;
  bool clean = !source.empty();
  for (const char c : source) {
    if (IsDigit(c)) {
      value = value * 10 + static_cast<uint32_t>(c - '0');
    } else {
      clean = false;
    }
  }
  return clean;
}

// The digits before `end`, from the last backwards; returns where they begin.
char* WriteDigits(uint32_t value, char* end) {
  do {
    *--end = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  return end;
}

constexpr int kLongestNumber = 11;  // a sign and ten digits
constexpr size_t kLongestDouble = 512;

}  // namespace

void SString::FromLong(int32_t value) {
  char digits[kLongestNumber];
  char* const end = digits + kLongestNumber;
  const auto bits = static_cast<uint32_t>(value);
  char* start = WriteDigits(value < 0 ? 0 - bits : bits, end);
  if (value < 0) {
    *--start = '-';
  }
  Assign(static_cast<int>(end - start), start);
}

void SString::FromULong(uint32_t value) {
  char digits[kLongestNumber];
  char* const end = digits + kLongestNumber;
  char* const start = WriteDigits(value, end);
  Assign(static_cast<int>(end - start), start);
}

bool SString::ToLong(int32_t& out) const {
  std::string_view rest = View();
  const bool negative = rest.starts_with('-');
  if (negative || rest.starts_with('+')) {
    rest.remove_prefix(1);
  }
  uint32_t value = 0;
  const bool clean = ReadDigits(rest, value);
  out = static_cast<int32_t>(negative ? 0 - value : value);
  return clean;
}

bool SString::ToULong(uint32_t& out) const {
  std::string_view rest = View();
  if (rest.starts_with('+')) {
    rest.remove_prefix(1);
  }
  return ReadDigits(rest, out);
}

bool SString::ToHex(uint32_t& out) const {
  out = 0;
  std::string_view rest = View();
  if (rest.starts_with("0x") || rest.starts_with("0X")) {
    rest.remove_prefix(2);
  }
  for (const char c : rest) {
    const int digit = HexDigit(c);
    if (digit < 0) {
      return false;
    }
    out = out << 4 | static_cast<uint32_t>(digit);
  }
  return !IsEmpty();
}

bool SString::ToHex(int16_t& out) const {
  uint32_t bits = 0;
  if (!ToHex(bits)) {
    return false;
  }
  const auto value = static_cast<int32_t>(bits);
  if (value < INT16_MIN || value > INT16_MAX) {
    return false;
  }
  out = static_cast<int16_t>(value);
  return true;
}

bool SString::ToHex(uint16_t& out) const {
  uint32_t value = 0;
  if (!ToHex(value) || value > UINT16_MAX) {
    return false;
  }
  out = static_cast<uint16_t>(value);
  return true;
}

void SString::FromDouble(double value, int decimals) {
  char buffer[kLongestDouble];  // the largest double has 309 digits before the point
  if (decimals >= 0 && decimals <= 6) {
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
  } else {
    std::snprintf(buffer, sizeof buffer, "%g", value);
  }
  Assign(buffer);
}

bool SString::ToDouble(double& out) const {
  char* end = nullptr;
  out = std::strtod(text, &end);
  return !IsEmpty() && end == text + GetLength();
}

}  // namespace kivstore
