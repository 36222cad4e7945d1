#include "store/list/name_derivation.h"

#include <gtest/gtest.h>

#include "tests/store/store_scope.h"
#include "tests/support/temp_folder.h"

using namespace kivstore;
using namespace std::string_literals;
using kivtest::Bytes;
using kivtest::SpecOn;
using kivtest::TempFolder;

namespace {

struct Derived {
  std::string name;
  bool exists = false;
};

Derived FolderFor(const TempFolder& folder, const char* first, const char* last) {
  SFileSpec spec = SpecOn(folder.Path());
  const SString path = spec.GetPath();
  Derived derived{"", true};
  derived.name = Bytes(DeriveFolderName(spec, first, last, derived.exists));
  EXPECT_EQ(spec.GetPath(), path);
  return derived;
}

TEST(DeriveFolderName, KeepsLettersAndDigitsThenThinsVowelsThenCuts) {
  const TempFolder folder;
  const struct {
    const char *first, *last, *name;
  } cases[] = {
      {"Christopher", "Applebaum", "Chrstphr"},
      {"Room 12", "", "Room12"},
      {"Anneliese", "", "Annliese"},
      {"AEIOUAEIOUx", "", "AEIOUAEI"},
      {"Zo\xE9", "O'Hara-Smith", "ZOHrSmth"},
      {"", "", "Empty"},
      {"...", "!?", "Empty"},
      {"..\\x", "/", "x"},
      // one by one taken: padded with noughts, then through the digits
      {"Ann", "Lee", "AnnLee"},
      {"Ann", "Lee", "AnnLee0"},
      {"Ann", "Lee", "AnnLee00"},
      {"Ann", "Lee", "AnnLee01"},
      {"Ann", "Lee", "AnnLee02"},
  };
  for (const auto& c : cases) {
    const Derived derived = FolderFor(folder, c.first, c.last);
    EXPECT_EQ(derived.name, c.name);
    EXPECT_FALSE(derived.exists);
    if (derived.name != "Empty") {
      folder.MakeFolder(derived.name);
    }
  }
}

TEST(DeriveFolderName, ExistsOnlyForAFolderThatSaysSo) {
  for (const int32_t mode : {kSiteLocal, kSiteSharedTeachers}) {
    const kivtest::SiteScope site(mode);
    const TempFolder folder;
    folder.WriteFile("AnnLee/longname.kiv", "Anna\0Lee\0"s);
    folder.WriteFile("AnnLee0", "a file in the way");
    folder.MakeFolder("AnnLee00/longname.kiv");
    folder.WriteFile("AnnLee01/longname.kiv", "");
    EXPECT_EQ(FolderFor(folder, "Ann", "Lee").name, "AnnLee02");
    folder.WriteFile("annlee02/LONGNAME.KIV", "ANN LEE\0\0"s);
    const Derived derived = FolderFor(folder, "Ann", "Lee");
    EXPECT_EQ(derived.name, "AnnLee02");
    EXPECT_TRUE(derived.exists);
  }
}

TEST(DeriveName, GivesTheLastVariantWhenAllAreTaken) {
  const TempFolder folder;
  const std::string digits = "0123456789abcdefghijklmnopqrstuvwxyz";
  for (const char first : digits) {
    for (const char second : digits) {
      folder.MakeFolder({first, second});
    }
  }
  SFileSpec spec = SpecOn(folder.Path());
  bool exists = true;
  EXPECT_EQ(DeriveName(spec, "q", "q", "Empty", 2, exists, SString()), "zz");
  EXPECT_FALSE(exists);
  EXPECT_EQ(DeriveName(spec, "q", "q", "Empty", 0, exists, SString()), "");
}

TEST(DeriveFileName, CountsAFileOfTheNameAsTaken) {
  const TempFolder folder;
  folder.WriteFile("UserFile.zep", "");
  folder.WriteFile("Mygame.txt", "");
  const struct {
    const char *longName, *name;
    bool exists;
  } cases[] = {{"My game!", "Mygame", false}, {"???", "UserFil0", true}};
  for (const auto& c : cases) {
    SFileSpec spec = SpecOn(folder.Path());
    bool exists = !c.exists;
    EXPECT_EQ(DeriveFileName(spec, c.longName, exists, "zep"), c.name);
    EXPECT_EQ(exists, c.exists);
  }
}

TEST(NextVariant, StepsTheDigitAndMovesOnAfterZ) {
  const struct {
    int position, digit;
    const char* text;
    bool moved;
    int nextPosition, nextDigit;
  } cases[] = {
      {3, -1, "abc0", false, 3, 0},  {3, 9, "abca", false, 3, 10}, {3, 34, "abcz", true, 2, -1},
      {0, 34, "zbcd", true, -1, -1}, {9, 4, "abcd", false, 9, 5},  {-1, 34, "abcd", true, -2, -1},
  };
  for (const auto& c : cases) {
    SString text = "abcd";
    int position = c.position, digit = c.digit;
    EXPECT_EQ(NextVariant(text, position, digit), c.moved);
    EXPECT_EQ(text, c.text);
    EXPECT_EQ(position, c.nextPosition);
    EXPECT_EQ(digit, c.nextDigit);
  }
}

TEST(LongName, IsTwoTextsAndIsMadeOnlyWhereFilesAre) {
  const TempFolder folder;
  const SFileSpec spec = SpecOn(folder.Path());
  WriteLongName(spec, "Room 12", "");
  EXPECT_FALSE(folder.Exists("longname.kiv"));
  {
    const kivtest::CreatingScope creating;
    WriteLongName(spec, "A longer name", "");
  }
  WriteLongName(spec, "Ann", "Lee");
  EXPECT_EQ(folder.ReadFile("longname.kiv"), "Ann\0Lee\0"s);
}

TEST(LongName, KeepsTheLastNameWhereTheFileEndsWithinTheFirst) {
  const TempFolder folder;
  const struct {
    std::string bytes;
    const char *first, *last;
  } cases[] = {
      {"", "", "before"},      {"An", "An", "before"},        {"Ann\0"s, "Ann", ""},
      {"Ann\0L"s, "Ann", "L"}, {"Ann\0Lee\0"s, "Ann", "Lee"}, {"\0\0"s, "", ""},
  };
  for (const auto& c : cases) {
    folder.WriteFile("longname.kiv", c.bytes);
    SString first, last = "before";
    EXPECT_TRUE(ReadLongName(SpecOn(folder.Path("longname.kiv")), first, last));
    EXPECT_EQ(first, c.first);
    EXPECT_EQ(last, c.last);
  }
  SString first = "x", last = "y";
  EXPECT_FALSE(ReadLongName(SpecOn(folder.Path("none.kiv")), first, last));
  EXPECT_EQ(first + last, "xy");
}

}  // namespace
