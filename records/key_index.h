// The key index of the keystroke statistics: 48 entries, one for each key of the typing keyboard.
// It is not the key code of the key tables.
//
//   0 to 25    the letters A to Z
//   26 to 35   the digits 0 to 9
//   36 to 46   the punctuation keys - = , . / ; ' [ ` ] \   (American keyboard)
//   47         the space bar
//
// The finger that types a key is fixed with the index, so the order of the punctuation keys is the
// one that puts each under its finger: 44 is typed by the left small finger, 38 by the right middle
// finger, 39 by the right ring finger, the others by the right small finger.
#pragma once

#include <cstdint>

namespace kivstore {

inline constexpr int16_t kKeyCount = 48;
inline constexpr int kSpaceKey = 47;
inline constexpr int kNoKey = -1;

// Fingers count from the left small finger across the hands.
enum Finger : int {
  kLeftSmall = 0,
  kLeftRing = 1,
  kLeftMiddle = 2,
  kLeftIndex = 3,
  kLeftThumb = 4,  // types nothing
  kRightThumb = 5,
  kRightIndex = 6,
  kRightMiddle = 7,
  kRightRing = 8,
  kRightSmall = 9,
  kLeftHand = 10,  // the sum of 0 to 4
  kRightHand = 11  // the sum of 5 to 9
};

// By key index.
inline constexpr int8_t kFingerOfKey[kKeyCount] = {
    0, 3, 2, 2, 2, 3, 3, 6, 7, 6, 7, 8, 6,  // A to M
    6, 8, 9, 0, 3, 1, 3, 6, 3, 1, 1, 6, 0,  // N to Z
    9, 0, 1, 2, 3, 3, 6, 6, 7, 8,           // 0 to 9
    9, 9, 7, 8, 9, 9, 9, 9, 0, 9, 9,        // - = , . / ; ' [ ` ] backslash
    5};                                     // space

// The key's index, or kNoKey. Letters of either case, and both characters of the other keys.
int KeyIndexOf(char character);
// What the key gives without Shift, letters as capitals; NUL outside 0 to 47.
char KeyCharacter(int index);

}  // namespace kivstore
