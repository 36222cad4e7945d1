// The mark by which file servers keep Windows attributes on POSIX file systems: the extended
// attribute user.DOSATTRIB of a file or folder.
//
// Its value begins with a text, "0x" and hexadecimal digits, NUL-terminated: the attribute bits. In
// the plain form nothing follows. In the long form the text, which may be empty, is followed by,
// little-endian:
//
//   padding to an even offset
//   version    16 bits, 3 to 5 are known here
//   version    16 bits, once more
//   padding to an offset divisible by 4
//   valid      32 bits; bit 0: the attribute bits below are valid
//   bits       32 bits
//   more that is of no interest here
//
// and the valid bits of the long form go before the text. A value of another form says nothing.
#pragma once

#include <string_view>

namespace kivstore {

inline constexpr char kDosAttributeName[] = "user.DOSATTRIB";
inline constexpr int kMaxDosAttribute = 256;  // bytes; a longer value is not looked at

bool HasHiddenBit(std::string_view value);
// Sets or clears the hidden bit in place, wherever the value states it. False if it does so
// nowhere.
bool ChangeHiddenBit(char* value, int length, bool hidden);

}  // namespace kivstore
