#include "foundation/files/file_type.h"

#include <gtest/gtest.h>

namespace kivstore {
namespace {

TEST(SFileType, HasFiveFieldsOfWhichTheStringsMustBeThereAndTheFlagIsOneDigitOne) {
  const SFileType type("Kiv File|Kiv Files|kiv|KivF|1");
  EXPECT_EQ(type.GetName() + type.GetPlural() + type.GetExtension(), "Kiv FileKiv Fileskiv");
  EXPECT_EQ(type.GetCode(), 0x4B697646u);
  for (const char* text :
       {"", "a", "a|b|c|code", "a|b|c", "|b|c|code|1", "a||c|code|1", "a|b||code|1", "||||"}) {
    EXPECT_FALSE(SFileType(text).IsValid()) << text;
  }
  const SFileType set("a|b|c|code|1");
  for (const char* text : {"a|b|c|code|0", "a|b|c|code|", "a|b|c|code|11", "x|b|c|code|1",
                           "a|x|c|code|1", "a|b|x|code|1", "a|b|c||1", "a|b|c|longer|1|more"}) {
    EXPECT_TRUE(SFileType(text).IsValid()) << text;
    EXPECT_FALSE(set == SFileType(text)) << text;
  }
  EXPECT_TRUE(set == SFileType("a|b|c|code and more|1"));
}

TEST(FileTypeRegistry, KnowsTheStandardTypesAndKeepsTheFirstRowOfAKey) {
  RegisterFileType(FourCharCode("tst1"), "First|Firsts|one|Cod1|1");
  RegisterFileType(FourCharCode("tst1"), "Second|Seconds|two|Cod2|1");
  RegisterFileType(FourCharCode("tst2"), 4005);
  const struct {
    const char (&key)[5];
    const char* text;
  } rows[] = {{"TEXT", "Text File|Text Files|txt|TEXT|1"},
              {"PREF", "Preference File|Preference Files|ini|pref|1"},
              {"QQBS", "QBundle File|QBundle Files|qbs|Qqbs|1"},
              {"PICT", "PICT File|PICT Files|pic|PICT|0"},
              {"BMP ", "BMP File|BMP Files|bmp|BMP |1"},
              {"EXEC", "Executable|Executables|exe|APPL|0"},
              {"QQBC", "QBun Script File|QBun Script Files|qbc|Qqbc|1"},
              {"QQBM", "QBun Make File|QBun Make Files|qbm|Qqbm|1"},
              {"KIVA", "Kiv File|Kiv Files|kiv|KivF|1"},
              {"DAT ", "DAT File|DAT Files|dat|TEXT|1"},
              {"JRNL", "Journal File|Journal Files|jnl|JDOC|0"},
              {"LOCK", "Lock File|Lock Files|lok|Lock|1"},
              {"tst1", "First|Firsts|one|Cod1|1"},
              {"tst2", "Executable|Executables|exe|APPL|0"},
              {"none", ""}};
  for (const auto& row : rows) {
    EXPECT_TRUE(FindFileType(FourCharCode(row.key)) == SFileType(row.text)) << row.key;
  }
}

}  // namespace
}  // namespace kivstore
