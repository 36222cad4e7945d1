// The keys: who types them, what they are called, which codes they have; and the screens.
#include <gtest/gtest.h>

#include <string>

#include "platform/platform.h"
#include "records/error_dob.h"
#include "records/key_tables.h"
#include "records/screens.h"

namespace kivstore {
namespace {

// The American keyboard: the keys by index and by finger, and what they give without Shift and
// with it.
const std::string kByIndex = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-=,./;'[`]\\ ";
const std::string kOthersByIndex = "abcdefghijklmnopqrstuvwxyz)!@#$%^&*(_+<>?:\"{~}| ";
constexpr std::pair<int, const char*> kFingers[] = {
    {0, "`1QAZ"},    {1, "2WSX"}, {2, "3EDC"}, {3, "45RTFGVB"},   {5, " "},
    {6, "67YUHJNM"}, {7, "8IK,"}, {8, "9OL."}, {9, "0P-=[]\\;'/"}};
const std::string kPunctuation = ".,;'/\\[]-=`";
const std::tuple<int, std::string, std::string> kCharacterKeys[] = {
    {18, "0123456789", ")!@#$%^&*("},
    {29, "abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ"},
    {83, kPunctuation, "><:\"?|{}_+~"},
    {28, " ", ""}};

TEST(KeyCounts, AddUpByFingerAndHandAndWrap) {
  for (const auto& [typedBy, typed] : kFingers) {
    SDErrorDob record;
    uint32_t wrong = 0, total = 0;
    for (const char* key = typed; *key != '\0'; ++key, total += 0x7FFFFFFF) {
      record.keyTypedWrong.SetAt(KeyIndexOf(*key), *key);
      record.keyTypedTotal.SetAt(KeyIndexOf(*key), 0x7FFFFFFF);
      wrong += static_cast<uint32_t>(*key);
    }
    for (int finger = -1; finger <= 12; ++finger) {
      const bool counts = finger == typedBy || finger == (typedBy < 5 ? 10 : 11);
      EXPECT_EQ(record.GetWrongByFinger(finger), static_cast<int32_t>(counts ? wrong : 0));
      EXPECT_EQ(record.GetTotalByFinger(finger), static_cast<int32_t>(counts ? total : 0));
    }
    record.keyTypedTotal.Release();  // what a table lacks counts nothing
    EXPECT_EQ(record.GetTotalByFinger(typedBy), 0);
  }
}

TEST(KeyIndex, IsThatOfEitherCharacterOfTheKey) {
  for (int key = 0; key < kKeyCount; ++key) {
    const auto place = static_cast<size_t>(key);
    EXPECT_EQ(KeyCharacter(key), kByIndex[place]);
    EXPECT_EQ(KeyIndexOf(kByIndex[place]), key);
    EXPECT_EQ(KeyIndexOf(kOthersByIndex[place]), key);
  }
  EXPECT_EQ(KeyIndexOf('\0'), kNoKey);
  EXPECT_EQ(KeyIndexOf('\xE9'), kNoKey);
  EXPECT_EQ(KeyCharacter(kKeyCount), '\0');
  EXPECT_EQ(KeyCharacter(-1), '\0');
}

TEST(KeyTables, KeysGoToVirtualKeysAndBack) {
  const std::pair<int, std::string> kRuns[] = {
      {1, "\x1B\x0C\x08\x2E\x09\x0D"},
      {8, "&(%'$#!\"/-0123456789 ABCDEFGHIJKLMNOPQRSTUVWXYZpqrstuvwxyz{`abcdefghi"},
      {78, "ojmkn"},
      {94, "\x10\x11\x12\x14"}};
  for (const auto& [firstKey, virtualKeys] : kRuns) {
    for (int key = firstKey; key < firstKey + std::ssize(virtualKeys); ++key) {
      const auto code = static_cast<uint8_t>(virtualKeys[static_cast<size_t>(key - firstKey)]);
      EXPECT_EQ(KeyToVirtualKey(key), code) << key;
      EXPECT_EQ(VirtualKeyToKey(code), key);
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
    const size_t place = kPunctuation.find(character);
    return character == '\\' ? int16_t{-1} : static_cast<int16_t>(0x100 | (first + place));
  }
  size_t first = 0xD0;

 private:
  SPlatformOverride<IKeyboard> installed{Platform().keyboard, this};
};

TEST(KeyTables, PunctuationFollowsTheLayout) {
  SmallLayout layout;
  for (const bool told : {false, true}) {
    for (int key = 83; key <= 93; ++key) {
      const int virtualKey = 0xD0 + key - 83, known = told && key != 88 ? 1 : 0;
      EXPECT_EQ(KeyToVirtualKey(key), known * virtualKey);
      EXPECT_EQ(VirtualKeyToKey(static_cast<uint8_t>(virtualKey)), known * key);
    }
    InitKeyTables();
  }
  layout.first = 0xF1;
  InitKeyTables();
  EXPECT_EQ(KeyToVirtualKey(83), 0xF1);
  EXPECT_EQ(VirtualKeyToKey(0xF1), 83);
  EXPECT_EQ(VirtualKeyToKey(0xD0), 83);  // the older layout's way back stays
}

TEST(KeyTables, CharactersLeadToTheirKeys) {
  for (const auto& [firstKey, plain, shifted] : kCharacterKeys) {
    for (const std::string& characters : {plain, shifted}) {
      for (int key = firstKey; key < firstKey + std::ssize(characters); ++key) {
        const char character = characters[static_cast<size_t>(key - firstKey)];
        EXPECT_EQ(CharToKey(character), key) << character;
        EXPECT_EQ(CharNeedsShift(character), characters == shifted) << character;
      }
    }
  }
  std::string keys;
  for (const char character : std::string("\b\t\r\x1B\x7F\n\x01\x80\xFF\0", 10)) {
    keys += std::to_string(CharToKey(character)) + (CharNeedsShift(character) ? "+ " : " ");
  }
  EXPECT_EQ(keys, "3 5 6 1 4 0 0 0 0 0 ");
}

TEST(KeyTables, NameTheKeysAndTheShortcuts) {
  std::string names;  // those of text keys without a blank ahead
  for (int key = -1; key <= 100; ++key) {
    names += std::string(IsTextKey(key) ? "" : " ") + GetKeyName(key);
  }
  EXPECT_EQ(names,
            "   Esc Clear Bksp Del Tab Return Enter UpArrow DownArrow LeftArrow RightArrow Home End"
            " PgUp PgDown Help Ins0123456789 SpaceABCDEFGHIJKLMNOPQRSTUVWXYZ"
            " F1 F2 F3 F4 F5 F6 F7 F8 F9 F10 F11 F120123456789=/*-+..,;'/\\[]-=`"
            " Shift Control Alt CapsLock Control  ");
  const std::pair<uint16_t, int> kShortcuts[] = {{0x700, 55}, {0x100, 7},   {0x200, 5},
                                                 {0x400, 98}, {0xF8FF, 28}, {0x100, 0},
                                                 {0x100, 99}, {0, 66},      {0, -1}};
  SString texts;
  for (const auto& [modifiers, key] : kShortcuts) {
    texts += FormatShortcut(modifiers, key) + "|";
  }
  EXPECT_EQ(texts, "Ctrl+Alt+Shift+F1|Ctrl+Enter|Shift+Tab|Alt+Control|Space||Ctrl+|F12||");
}

TEST(Screens, EveryNameLeadsBackToItsNumber) {
  std::string names;
  for (int id = -1; id <= kScreenCount; ++id) {
    names += std::string(GetScreenName(id).View()) + " ";
    EXPECT_EQ(GetScreenId(GetScreenName(id)), id < kScreenCount ? id : -1);
  }
  EXPECT_EQ(names,
            " SPLASH TITLE LOGIN TEACHER_DLG CREDITS HELPDLG ZEPSCRN MAIN KEYFIGURES WINDSHIELD"
            " JOURNAL TYPELINE CHARTS GRAPHS DICTWARP PLAYPRACTICE HOME_REMINDER CHECKPOINT WARMUP"
            " LEARN_NEW_KEYS LESSON_EXERCISES POWER_BOOSTER  ");
  EXPECT_EQ(GetScreenId("main"), -1);
  EXPECT_EQ(GetScreenId("MAI"), -1);
}

}  // namespace
}  // namespace kivstore
