// The system's key codes and what they turn into.
#include "records/key_tables.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/platform.h"

namespace kivstore {
namespace {

// A layout in which the punctuation lies side by side, without the backslash.
class SmallLayout final : public IKeyboard {
 public:
  int16_t ScanCharacter(char character) override {
    const char* const found = std::strchr(".,;'/[]-=`", character);
    return character == '\\' || found == nullptr
               ? int16_t{-1}
               : static_cast<int16_t>(0x100 | (first + (found - ".,;'/[]-=`")));
  }

  int first = 0xE1;

 private:
  SPlatformOverride<IKeyboard> installed{Platform().keyboard, this};
};

TEST(KeyTables, KeysGoToVirtualKeysAndBack) {
  struct Run {
    int firstKey;
    const char* virtualKeys;
    const char* names;
  };
  const Run runs[] = {
      {1, "\x1B\x0C\x08\x2E\x09\x0D", "Esc Clear Bksp Del Tab Return "},
      {8, "&(%'$#!\"/-", "UpArrow DownArrow LeftArrow RightArrow Home End PgUp PgDown Help Ins "},
      {18, "0123456789 ", "0 1 2 3 4 5 6 7 8 9 Space "},
      {29, "ABCDEFGHIJKLM", "A B C D E F G H I J K L M "},
      {42, "NOPQRSTUVWXYZ", "N O P Q R S T U V W X Y Z "},
      {55, "pqrstuvwxyz{", "F1 F2 F3 F4 F5 F6 F7 F8 F9 F10 F11 F12 "},
      {67, "`abcdefghi", "0 1 2 3 4 5 6 7 8 9 "},
      {78, "ojmkn", "/ * - + . "},
      {94, "\x10\x11\x12\x14", "Shift Control Alt CapsLock "},
  };
  for (const Run& run : runs) {
    int key = run.firstKey;
    std::string names;
    for (const char* c = run.virtualKeys; *c != '\0'; ++c, ++key) {
      const auto virtualKey = static_cast<uint8_t>(*c);
      EXPECT_EQ(KeyToVirtualKey(key), virtualKey) << key;
      EXPECT_EQ(VirtualKeyToKey(virtualKey), key) << key;
      names += std::string(GetKeyName(key)) + " ";
    }
    EXPECT_EQ(names, run.names);
  }
}

TEST(KeyTables, SomeKeysHaveNoWayBackOrNone) {
  EXPECT_EQ(KeyToVirtualKey(7), 0x0D);
  EXPECT_EQ(VirtualKeyToKey(0x0D), 6);
  EXPECT_STREQ(GetKeyName(7), "Enter");
  EXPECT_STREQ(GetKeyName(98), "Control");
  for (const int key : {0, 77, 98, 99, 100, -1, 100000}) {
    EXPECT_EQ(KeyToVirtualKey(key), 0) << key;
  }
  for (const int key : {-1, 0, 99, 100000}) {
    EXPECT_STREQ(GetKeyName(key), "") << key;
  }
  EXPECT_EQ(VirtualKeyToKey(0), 0);
  EXPECT_EQ(VirtualKeyToKey(0xFF), 0);
}

TEST(KeyTables, PunctuationFollowsTheLayout) {
  SmallLayout layout;
  InitKeyTables();
  const int keys[] = {83, 84, 85, 86, 87, 89, 90, 91, 92, 93};
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(KeyToVirtualKey(keys[i]), 0xE1 + i);
    EXPECT_EQ(VirtualKeyToKey(static_cast<uint8_t>(0xE1 + i)), keys[i]);
  }
  EXPECT_EQ(KeyToVirtualKey(88), 0);  // the layout lacks it
  layout.first = 0xF1;
  InitKeyTables();
  EXPECT_EQ(KeyToVirtualKey(83), 0xF1);
  EXPECT_EQ(VirtualKeyToKey(0xF1), 83);
  EXPECT_EQ(VirtualKeyToKey(0xE1), 83);  // the older layout's way back stays
}

TEST(CharToKey, KnowsTheStandardAmericanKeyboard) {
  struct Case {
    const char* characters;
    int firstKey;
    bool shift;
  };
  const Case runs[] = {{"0123456789", 18, false},
                       {")!@#$%^&*(", 18, true},
                       {"abcdefghijklmnopqrstuvwxyz", 29, false},
                       {"ABCDEFGHIJKLMNOPQRSTUVWXYZ", 29, true},
                       {".,;'/\\[]-=`", 83, false},
                       {"><:\"?|{}_+~", 83, true},
                       {" ", 28, false}};
  for (const Case& run : runs) {
    int key = run.firstKey;
    for (const char* c = run.characters; *c != '\0'; ++c) {
      EXPECT_EQ(CharToKey(*c), key++) << *c;
      EXPECT_EQ(CharNeedsShift(*c), run.shift) << *c;
    }
  }
  EXPECT_EQ(CharToKey('\b'), 3);
  EXPECT_EQ(CharToKey('\t'), 5);
  EXPECT_EQ(CharToKey('\r'), 6);
  EXPECT_EQ(CharToKey('\x1B'), 1);
  EXPECT_EQ(CharToKey('\x7F'), 4);
  for (const char c : {'\0', '\n', '\x01', '\x80', '\xC4', '\xFF'}) {
    EXPECT_EQ(CharToKey(c), 0);
    EXPECT_FALSE(CharNeedsShift(c));
  }
}

TEST(IsTextKey, TakesDigitsLettersKeyPadAndPunctuation) {
  std::string textKeys;
  for (int key = -1; key <= 99; ++key) {
    if (IsTextKey(key)) {
      textKeys += GetKeyName(key);
    }
  }
  EXPECT_EQ(textKeys, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789=/*-+..,;'/\\[]-=`");
}

TEST(FormatShortcut, NamesControlAltShiftThenTheKey) {
  struct Case {
    uint16_t modifiers;
    int key;
    const char* text;
  };
  const Case cases[] = {{0x700, 55, "Ctrl+Alt+Shift+F1"},
                        {0x100, 29, "Ctrl+A"},
                        {0x200, 5, "Shift+Tab"},
                        {0x400, 83, "Alt+."},
                        {0xF8FF, 28, "Space"},
                        {0x100, 0, ""},
                        {0x100, 99, "Ctrl+"},
                        {0, 1, "Esc"}};
  for (const Case& c : cases) {
    EXPECT_EQ(FormatShortcut(c.modifiers, c.key), SString(c.text)) << c.text;
  }
}

}  // namespace
}  // namespace kivstore
