#include "store/list/name_derivation.h"

#include "store/list/long_name.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;
using namespace std::string_literals;

namespace {

// The name, with a "!" for one whose folder is there and says so.
std::string FolderFor(const TempFolder& folder, const char* first, const char* last) {
  SFileSpec spec = SpecOn(folder.Path());
  const SString path = spec.GetPath();
  bool exists = true;
  const std::string name = Bytes(DeriveFolderName(spec, first, last, exists));
  EXPECT_EQ(spec.GetPath(), path);
  return name + (exists ? "!" : "");
}

TEST(DeriveFolderName, KeepsLettersAndDigitsThenThinsVowelsThenCuts) {
  const TempFolder folder;
  const struct {
    const char *first, *last;
    std::string name;
  } cases[] = {
      {"Christopher", "Applebaum", "Chrstphr"},
      {"Room 12", "", "Room12"},
      {"Anneliese", "", "Annliese"},
      {"AEIOUAEIOUx", "", "AEIOUAEI"},
      {"Zo\xE9", "O'Hara-Smith", "ZOHrSmth"},
      {"", "", "Empty"},
      {"..\\x", "/", "x"},
      // one by one taken: padded with noughts, then through the digits
      {"Ann", "Lee", "AnnLee"},
      {"Ann", "Lee", "AnnLee0"},
      {"Ann", "Lee", "AnnLee00"},
      {"Ann", "Lee", "AnnLee01"},
      {"Ann", "Lee", "AnnLee02"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FolderFor(folder, c.first, c.last), c.name);
    folder.MakeFolder(c.name);
  }
}

TEST(DeriveFolderName, ExistsOnlyForAFolderThatSaysSo) {
  const TempFolder folder;
  folder.WriteFile("AnnLee/longname.kiv", "Anna\0Lee\0"s);
  folder.WriteFile("AnnLee0", "a file in the way");
  folder.MakeFolder("AnnLee00/longname.kiv");
  folder.WriteFile("AnnLee01/longname.kiv", "");
  EXPECT_EQ(FolderFor(folder, "Ann", "Lee"), "AnnLee02");
  folder.WriteFile("annlee02/LONGNAME.KIV", "ANN LEE\0\0"s);
  EXPECT_EQ(FolderFor(folder, "Ann", "Lee"), "AnnLee02!");
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
  for (const auto& [longName, name] : {std::pair("My game!", "Mygame"), {"???", "UserFil0"}}) {
    SFileSpec spec = SpecOn(folder.Path());
    bool exists = *longName == 'M';
    EXPECT_EQ(DeriveFileName(spec, longName, exists, "zep"), name);
    EXPECT_EQ(exists, *longName == '?');
  }
}

TEST(LongName, KeepsTheLastNameWhereTheFileEndsWithinTheFirst) {
  const TempFolder folder;
  for (const auto& [bytes, names] : {std::pair(""s, ":before"),
                                     {"An"s, "An:before"},
                                     {"Ann\0"s, "Ann:"},
                                     {"Ann\0L"s, "Ann:L"},
                                     {"Ann\0Lee\0"s, "Ann:Lee"},
                                     {"\0\0"s, ":"}}) {
    folder.WriteFile("longname.kiv", bytes);
    SString first, last = "before";
    EXPECT_TRUE(ReadLongName(SpecOn(folder.Path("longname.kiv")), first, last));
    EXPECT_EQ(first + ":" + last, names);
  }
  SString first = "x", last = "y";
  EXPECT_FALSE(ReadLongName(SpecOn(folder.Path("none.kiv")), first, last));
  EXPECT_EQ(first + last, "xy");
}

}  // namespace
