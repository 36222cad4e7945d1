// The keys: who types them, what they are called, which codes they have; and the screens.
#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "platform/platform.h"
#include "records/error_dob.h"
#include "records/key_tables.h"
#include "records/screens.h"

namespace kivstore {
namespace {

// The American keyboard: the keys by finger, and what they give without Shift and with it.
constexpr std::pair<int, const char*> kFingers[] = {
    {0, "`1QAZ"},    {1, "2WSX"}, {2, "3EDC"}, {3, "45RTFGVB"},   {5, " "},
    {6, "67YUHJNM"}, {7, "8IK,"}, {8, "9OL."}, {9, "0P-=[]\\;'/"}};
const std::string kPlain = "abcdefghijklmnopqrstuvwxyz0123456789.,;'/\\[]-=`";
const std::string kShifted = "ABCDEFGHIJKLMNOPQRSTUVWXYZ)!@#$%^&*(><:\"?|{}_+~";

TEST(KeyCounts, AddUpByFingerAndHand) {
  size_t keys = 0;
  for (const auto& [typedBy, typed] : kFingers) {
    SDErrorDob record;
    int32_t wrong = 0, total = 0;
    for (const char* key = typed; *key != '\0'; ++key, ++keys, total += 2) {
      const int index = KeyIndexOf(*key);
      EXPECT_EQ(KeyCharacter(index), *key);
      record.keyTypedWrong.SetAt(index, *key);
      record.keyTypedTotal.SetAt(index, 2);
      wrong += *key;
    }
    for (int finger = -1; finger <= 12; ++finger) {
      const bool counts = finger == typedBy || finger == (typedBy < 5 ? 10 : 11);
      EXPECT_EQ(record.GetWrongByFinger(finger), counts ? wrong : 0) << finger;
      EXPECT_EQ(record.GetTotalByFinger(finger), counts ? total : 0) << finger;
    }
  }
  EXPECT_EQ(keys, static_cast<size_t>(kKeyCount));
}

TEST(KeyCounts, WrapAndCountWhatAShortTableLacksAsNothing) {
  SDErrorDob record;
  for (int key = 0; key < kKeyCount; ++key) {
    record.keyTypedWrong.SetAt(key, 1);
    record.keyTypedTotal.SetAt(key, 0x7FFFFFFF);
  }
  EXPECT_EQ(record.GetTotalByFinger(1), -4);
  record.keyTypedWrong.SetSize(17);
  record.keyTypedTotal.Release();
  EXPECT_EQ(record.GetWrongByFinger(0), 2);
  EXPECT_EQ(record.GetTotalByFinger(11), 0);
}

TEST(KeyIndex, GoesByLettersDigitsAndPunctuation) {
  for (size_t i = 0; i < kPlain.size(); ++i) {
    const int index = KeyIndexOf(kPlain[i]);
    EXPECT_EQ(KeyIndexOf(kShifted[i]), index) << kPlain[i];
    EXPECT_TRUE(i < 36 ? index == static_cast<int>(i) : index >= 36 && index < 47) << kPlain[i];
  }
  EXPECT_EQ(KeyCharacter(38), ',');
  EXPECT_EQ(KeyCharacter(39), '.');
  EXPECT_EQ(KeyCharacter(44), '`');
  EXPECT_EQ(KeyIndexOf(' '), kSpaceKey);
  EXPECT_EQ(KeyIndexOf('\0'), kNoKey);
  EXPECT_EQ(KeyIndexOf('\xE9'), kNoKey);
  EXPECT_EQ(KeyCharacter(48), '\0');
  EXPECT_EQ(KeyCharacter(-1), '\0');
}

TEST(KeyTables, KeysGoToVirtualKeysAndBack) {
  const std::pair<int, std::string> kRuns[] = {
      {1, "\x1B\x0C\x08\x2E\x09\x0D"},
      {8, "&(%'$#!\"/-0123456789 ABCDEFGHIJKLMNOPQRSTUVWXYZpqrstuvwxyz{`abcdefghi"},
      {78, "ojmkn"},
      {94, "\x10\x11\x12\x14"}};
  for (const auto& [firstKey, virtualKeys] : kRuns) {
    for (size_t i = 0; i < virtualKeys.size(); ++i) {
      const int key = firstKey + static_cast<int>(i);
      EXPECT_EQ(KeyToVirtualKey(key), static_cast<uint8_t>(virtualKeys[i])) << key;
      EXPECT_EQ(VirtualKeyToKey(static_cast<uint8_t>(virtualKeys[i])), key);
    }
  }
  EXPECT_EQ(KeyToVirtualKey(7), 0x0D);  // Enter has no way back
  for (const int key : {0, 77, 98, 99, 100, -1, 100000}) {
    EXPECT_EQ(KeyToVirtualKey(key), 0) << key;
  }
  EXPECT_EQ(VirtualKeyToKey(0) + VirtualKeyToKey(0xFF), 0);
}

// A layout in which the punctuation lies side by side, without the backslash.
class SmallLayout final : public IKeyboard {
 public:
  int16_t ScanCharacter(char character) override {
    const size_t place = kPlain.find(character) - kPlain.find('.');
    return character == '\\' ? int16_t{-1} : static_cast<int16_t>(0x100 | (first + place));
  }
  size_t first = 0xD0;

 private:
  SPlatformOverride<IKeyboard> installed{Platform().keyboard, this};
};

TEST(KeyTables, PunctuationFollowsTheLayout) {
  for (int key = 83; key <= 93; ++key) {
    EXPECT_EQ(KeyToVirtualKey(key), 0) << key;
  }
  SmallLayout layout;
  InitKeyTables();
  for (int key = 83; key <= 93; ++key) {
    const auto virtualKey = static_cast<uint8_t>(0xD0 + key - 83);
    EXPECT_EQ(KeyToVirtualKey(key), key == 88 ? 0 : virtualKey);
    EXPECT_EQ(VirtualKeyToKey(virtualKey), key == 88 ? 0 : key);
  }
  layout.first = 0xF1;
  InitKeyTables();
  EXPECT_EQ(KeyToVirtualKey(83), 0xF1);
  EXPECT_EQ(VirtualKeyToKey(0xF1), 83);
  EXPECT_EQ(VirtualKeyToKey(0xD0), 83);  // the older layout's way back stays
}

// A character leads to the key of its name; two characters of one key differ in Shift.
TEST(KeyTables, CharactersLeadToTheirKeys) {
  for (size_t i = 0; i < kPlain.size(); ++i) {
    const int key = CharToKey(kPlain[i]);
    EXPECT_EQ(GetKeyName(key), std::string(1, static_cast<char>(std::toupper(kPlain[i]))));
    EXPECT_FALSE(key >= 67 && key <= 82) << "of the key pad";
    EXPECT_FALSE(CharNeedsShift(kPlain[i])) << kPlain[i];
    EXPECT_EQ(CharToKey(kShifted[i]), key) << kShifted[i];
    EXPECT_TRUE(CharNeedsShift(kShifted[i])) << kShifted[i];
  }
  for (const auto& [character, name] : {std::pair('\b', "Bksp"),
                                        {'\t', "Tab"},
                                        {'\r', "Return"},
                                        {'\x1B', "Esc"},
                                        {' ', "Space"},
                                        {'\x7F', "Del"},
                                        {'\0', ""},
                                        {'\n', ""},
                                        {'\x01', ""},
                                        {'\x80', ""},
                                        {'\xFF', ""}}) {
    EXPECT_STREQ(GetKeyName(CharToKey(character)), name);
    EXPECT_FALSE(CharNeedsShift(character)) << name;
  }
}

TEST(KeyTables, NameTheTextKeysAndTheShortcuts) {
  std::string textKeys;
  for (int key = -1; key <= 99; ++key) {
    textKeys += IsTextKey(key) ? GetKeyName(key) : "";
  }
  EXPECT_EQ(textKeys, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789=/*-+..,;'/\\[]-=`");
  const struct {
    uint16_t modifiers;
    int key;
    const char* text;
  } kCases[] = {{0x700, 55, "Ctrl+Alt+Shift+F1"},
                {0x100, 7, "Ctrl+Enter"},
                {0x200, 5, "Shift+Tab"},
                {0x400, 98, "Alt+Control"},
                {0xF8FF, 28, "Space"},
                {0x100, 0, ""},
                {0x100, 99, "Ctrl+"},
                {0, 66, "F12"},
                {0, -1, ""}};
  for (const auto& c : kCases) {
    EXPECT_EQ(FormatShortcut(c.modifiers, c.key), SString(c.text)) << c.text;
  }
}

TEST(Screens, EveryNameLeadsBackToItsNumber) {
  for (int id = 0; id < kScreenCount; ++id) {
    EXPECT_EQ(GetScreenId(GetScreenName(id)), id);
  }
  EXPECT_EQ(GetScreenName(kMainScreen), SString("MAIN"));
  EXPECT_EQ(GetScreenId("POWER_BOOSTER"), 21);
  for (const char* const name : {"main", "MAI", ""}) {
    EXPECT_EQ(GetScreenId(name), -1) << name;
  }
  EXPECT_TRUE(GetScreenName(-1).IsEmpty() && GetScreenName(kScreenCount).IsEmpty());
}

}  // namespace
}  // namespace kivstore
