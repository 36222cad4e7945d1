// The mark by which file servers keep Windows attributes on POSIX file systems: the extended
// attribute user.DOSATTRIB of a file or folder.
//
// Its value begins with a text, "0x" and hexadecimal digits, NUL-terminated: the attribute bits. In
// the plain form nothing follows. In the long form the text, which may be empty, is followed by,
// little-endian:
//
//   padding to an even offset
//   version    16 bits, 1 to 5 are known here
//   version    16 bits, once more
//   padding to an offset divisible by 4
//   flags      32 bits, not in version 1; what they say of the bits the file servers do not ask
//   bits       32 bits
//   more that is of no interest here
//
// and the bits of the long form go before the text. A value of another form says nothing.
#pragma once

#include <string_view>

namespace kivstore {

inline constexpr char kDosAttributeName[] = "user.DOSATTRIB";
inline constexpr int kMaxDosAttribute = 256;  // bytes; a longer value is not looked at

// Attribute bits.
inline constexpr unsigned kDosReadOnly = 1;
inline constexpr unsigned kDosHidden = 2;

// These two, as far as the value states them.
unsigned DosBits(std::string_view value);
// Sets or clears one of them in place, wherever the value states it. False if it does so nowhere.
bool ChangeDosBit(char* value, int length, unsigned bit, bool set);

}  // namespace kivstore
