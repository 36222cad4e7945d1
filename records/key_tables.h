// The system's own key codes: small numbers for keyboard keys that no platform changes, with the
// ways to and from the platform's virtual keys, from a typed character, and to a readable text.
// The key index of the statistics (records/key_index.h) is another numbering.
//
//    0       no key               28       space             77 to 82  = / * - + . of the key pad
//    1 to 5  Esc Clear Bksp       29 to 54 A to Z            83 to 93  . , ; ' / \ [ ] - = `
//            Del Tab              55 to 66 F1 to F12         94 to 97  Shift Control Alt CapsLock
//    6, 7    Return Enter         67 to 76 0 to 9 of the     98        Control, without a
//    8 to 17 arrows and editing            key pad                     virtual key
//   18 to 27 0 to 9
//
// The punctuation keys 83 to 93 depend on the layout: InitKeyTables fills them in, until then they
// have no virtual key. It may be called again after a change of the layout; what an older layout
// used keeps its way back. Return and Enter share a virtual key, which counts as Return.
#pragma once

#include <cstdint>

#include "foundation/text/string.h"

namespace kivstore {

inline constexpr int kNoKeyCode = 0;
inline constexpr int kLastKeyCode = 98;

enum KeyModifier : uint16_t { kControlDown = 0x100, kShiftDown = 0x200, kAltDown = 0x400 };

void InitKeyTables();

int VirtualKeyToKey(uint8_t virtualKey);
uint8_t KeyToVirtualKey(int key);  // 0 for a key without one and outside the codes

// Of the standard American keyboard; no key and false for what it lacks.
int CharToKey(char c);
bool CharNeedsShift(char c);

// Empty for a code below 1 or above 98.
const char* GetKeyName(int key);

// Digits, letters, the key pad's keys and punctuation; not the space.
bool IsTextKey(int key);

// "Ctrl+Alt+Shift+F1", in this order whatever bits of KeyModifier are set; empty without a key.
SString FormatShortcut(uint16_t modifiers, int key);

}  // namespace kivstore
