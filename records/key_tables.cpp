#include "records/key_tables.h"

#include <array>
#include <string_view>

#include "platform/platform.h"

namespace kivstore {
namespace {

constexpr int kReturn = 6;
constexpr int kFirstDigit = 18;
constexpr int kSpace = 28;
constexpr int kFirstLetter = 29;
constexpr int kFirstFunctionKey = 55;
constexpr int kFirstPadKey = 67;
constexpr int kFirstPunctuation = 83;
constexpr int kLastPunctuation = 93;

constexpr uint8_t kReturnVirtualKey = 0x0D;
constexpr uint16_t kNeedsShift = 0x200;
constexpr uint16_t kKeyOfEntry = 0xFF;

constexpr std::string_view kPunctuation = ".,;'/\\[]-=`";
constexpr std::string_view kShiftedPunctuation = "><:\"?|{}_+~";
constexpr std::string_view kShiftedDigits = ")!@#$%^&*(";

// clang-format off
constexpr std::array<const char*, kLastKeyCode + 1> kKeyNames = {
    "None", "Esc", "Clear", "Bksp", "Del", "Tab", "Return", "Enter",
    "UpArrow", "DownArrow", "LeftArrow", "RightArrow", "Home", "End", "PgUp", "PgDown",
    "Help", "Ins",
    "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "Space",
    "A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M",
    "N", "O", "P", "Q", "R", "S", "T", "U", "V", "W", "X", "Y", "Z",
    "F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8", "F9", "F10", "F11", "F12",
    "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "=", "/", "*", "-", "+", ".",
    ".", ",", ";", "'", "/", "\\", "[", "]", "-", "=", "`",
    "Shift", "Control", "Alt", "CapsLock", "Control"};
// clang-format on

using KeyToVirtualKeyTable = std::array<uint8_t, 100>;
using VirtualKeyToKeyTable = std::array<int32_t, 256>;
using CharToKeyTable = std::array<uint16_t, 128>;

constexpr KeyToVirtualKeyTable kStandardVirtualKeys = {
    0,    0x1B, 0x0C, 0x08, 0x2E, 0x09, 0x0D, 0x0D, 0x26, 0x28,  // 0: none, Esc ... DownArrow
    0x25, 0x27, 0x24, 0x23, 0x21, 0x22, 0x2F, 0x2D,              // 10: LeftArrow ... Ins
    0x30, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39,  // 18: 0 to 9
    0x20,                                                        // 28: space
    0x41, 0x42, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x4B, 0x4C, 0x4D,  // 29: A to M
    0x4E, 0x4F, 0x50, 0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5A,  // 42: N to Z
    0x70, 0x71, 0x72, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7A, 0x7B,        // 55: F1 to F12
    0x60, 0x61, 0x62, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x69,     // 67: 0 to 9, key pad
    0,    0x6F, 0x6A, 0x6D, 0x6B, 0x6E,                             // 77: = / * - + .
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,  // 83: set by the layout
    0x10, 0x11, 0x12, 0x14, 0,    0,                                // 94: Shift ... CapsLock
};

constexpr VirtualKeyToKeyTable Reversed(const KeyToVirtualKeyTable& table) {
  VirtualKeyToKeyTable reversed = {};
  for (int key = 1; key <= kLastKeyCode; ++key) {
    reversed[table[static_cast<size_t>(key)]] = key;
  }
  reversed[0] = kNoKeyCode;
  reversed[kReturnVirtualKey] = kReturn;
  return reversed;
}

constexpr void FillRow(CharToKeyTable& table, std::string_view characters, int firstKey,
                       uint16_t shift) {
  for (const char c : characters) {
    table[static_cast<size_t>(c)] = static_cast<uint16_t>(firstKey++ | shift);
  }
}

constexpr CharToKeyTable MakeCharToKey() {
  CharToKeyTable table = {};
  table[0x08] = 3;
  table[0x09] = 5;
  table[0x0D] = kReturn;
  table[0x1B] = 1;
  table[' '] = kSpace;
  table[0x7F] = 4;
  FillRow(table, "0123456789", kFirstDigit, 0);
  FillRow(table, kShiftedDigits, kFirstDigit, kNeedsShift);
  FillRow(table, "abcdefghijklmnopqrstuvwxyz", kFirstLetter, 0);
  FillRow(table, "ABCDEFGHIJKLMNOPQRSTUVWXYZ", kFirstLetter, kNeedsShift);
  FillRow(table, kPunctuation, kFirstPunctuation, 0);
  FillRow(table, kShiftedPunctuation, kFirstPunctuation, kNeedsShift);
  return table;
}

constinit KeyToVirtualKeyTable keyToVirtualKey = kStandardVirtualKeys;
constinit VirtualKeyToKeyTable virtualKeyToKey = Reversed(kStandardVirtualKeys);
constexpr CharToKeyTable charToKey = MakeCharToKey();

// Nothing below 1: bytes above 127 count as negative on every platform.
uint16_t EntryOf(char c) {
  const int value = static_cast<signed char>(c);
  return value < 1 ? uint16_t{0} : charToKey[static_cast<size_t>(value)];
}

}  // namespace

void InitKeyTables() {
  IKeyboard& keyboard = *Platform().keyboard;
  for (size_t i = 0; i < kPunctuation.size(); ++i) {
    const int16_t answer = keyboard.ScanCharacter(kPunctuation[i]);
    if (answer == -1) {
      continue;
    }
    const auto virtualKey = static_cast<uint8_t>(answer & 0xFF);
    const size_t key = kFirstPunctuation + i;
    keyToVirtualKey[key] = virtualKey;
    virtualKeyToKey[virtualKey] = static_cast<int32_t>(key);
  }
}

int VirtualKeyToKey(uint8_t virtualKey) {
  return virtualKeyToKey[virtualKey];
}

uint8_t KeyToVirtualKey(int key) {
  return key >= 0 && key <= kLastKeyCode ? keyToVirtualKey[static_cast<size_t>(key)] : uint8_t{0};
}

int CharToKey(char c) {
  return EntryOf(c) & kKeyOfEntry;
}

bool CharNeedsShift(char c) {
  return (EntryOf(c) & kNeedsShift) != 0;
}

const char* GetKeyName(int key) {
  return key >= 1 && key <= kLastKeyCode ? kKeyNames[static_cast<size_t>(key)] : "";
}

bool IsTextKey(int key) {
  return (key >= kFirstDigit && key < kSpace) || (key >= kFirstLetter && key < kFirstFunctionKey) ||
         (key >= kFirstPadKey && key <= kLastPunctuation);
}

}  // namespace kivstore
