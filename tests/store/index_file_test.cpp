#include "store/list/index_file.h"

#include <gtest/gtest.h>

#include "foundation/files/file.h"
#include "tests/store/store_scope.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/temp_folder.h"

using namespace kivstore;
using namespace std::string_literals;
using kivtest::Bytes;
using kivtest::FaultFileServices;
using kivtest::SpecOn;
using kivtest::TempFolder;

namespace {

const std::string kRoom = "\0\0\0\1Rm\0Room\0\0\0\0\0\0"s;
const std::string kBoth = "\0\0\0\1Rm\0Room\0\0\0\0\0\1a.zep\0A game\0zep\0"s;

struct Whole : SIndexObj {
  Whole() {
    NeedLogins();
    NeedFiles();
  }
};

bool Read(const TempFolder& folder, SIndexObj& index) {
  SFileSpec spec = SpecOn(folder.Path("index.kiv"));
  const bool read = ReadIndex(spec, &index);
  EXPECT_EQ(spec.GetPath(), SpecOn(folder.Path()).GetPath());
  return read;
}

std::string Told(const SIndexObj& index) {
  std::string told;
  for (int32_t i = 0; index.logins != nullptr && i < index.logins->GetSize(); ++i) {
    const SLoginNameObj& login = *index.LoginAt(i);
    told += "[" + Bytes(login.folderName) + "|" + Bytes(login.firstName) + "|" +
            Bytes(login.lastName) + "]";
  }
  for (int32_t i = 0; index.files != nullptr && i < index.files->GetSize(); ++i) {
    const SOurFileObj& file = *index.FileAt(i);
    told +=
        "(" + Bytes(file.fileName) + "|" + Bytes(file.longName) + "|" + Bytes(file.extension) + ")";
  }
  return told;
}

TEST(ReadIndex, TakesWhatTheFileHolds) {
  const struct {
    std::string bytes, told;
  } cases[] = {
      {kRoom, "[Rm|Room|]"},
      {kBoth, "[Rm|Room|](a.zep|A game|zep)"},
      {"", ""},
      {"\0\0\0\0"s, ""},
      {"\0\0\0\1\xC4\0\xFF\x80\0\xE9\0\0\0\0\0"s, "[\xC4|\xFF\x80|\xE9]"},
      // torn: what was counted is made, with empty texts
      {"\0\0\0\2Rm\0Room\0\0"s, "[Rm|Room|][||]"},
      {"\0\0\0\3Rm\0Room\0Ro"s, "[Rm|Room|Ro][||][||]"},
      {"\0\0\0\2"s, "[||]"},
      {"\0\0\0\0\0\0\0\2a.zep\0A"s, "(a.zep|A|)(||)"},
      // counts that nothing backs
      {"\xFF\xFF\xFF\xFF\0\0\0\1a\0b\0c\0"s, "(a|b|c)"},
      {"\x7F\xFF\xFF\xFF"
       "a\0b\0c\0"s,
       "[a|b|c][||][||]"},
      {"\0\0\0\0\x7F\xFF\xFF\xFF"s, "(||)"},
  };
  const TempFolder folder;
  for (const auto& c : cases) {
    folder.WriteFile("index.kiv", c.bytes);
    Whole index;
    EXPECT_TRUE(Read(folder, index));
    EXPECT_EQ(Told(index), c.told) << testing::PrintToString(c.bytes);
    EXPECT_FALSE(index.incomplete);
  }
}

TEST(ReadIndex, IsFalseWithoutAFile) {
  const TempFolder folder;
  Whole index;
  EXPECT_FALSE(Read(folder, index));
  SFileSpec assumed = SpecOn(folder.Path());
  ASSERT_TRUE(assumed.DownAssumed("index.kiv"));
  EXPECT_FALSE(ReadIndex(assumed, &index));
  EXPECT_FALSE(index.incomplete);
  folder.MakeFolder("index.kiv/deeper");
  EXPECT_FALSE(Read(folder, index));
}

TEST(ReadIndex, KeepsNoMoreEntriesThanAListIsWalkedFor) {
  const TempFolder folder;
  std::string bytes = "\0\0\x80\1"s;
  for (int i = 0; i < 0x8001; ++i) {
    bytes += "F\0N\0\0"s;
  }
  folder.WriteFile("index.kiv", bytes + "\0\0\0\1a\0b\0c\0"s);
  Whole index;
  EXPECT_TRUE(Read(folder, index));
  EXPECT_EQ(index.logins->GetSize(), 32767);
  ASSERT_EQ(index.files->GetSize(), 1);
  EXPECT_EQ(index.FileAt(0)->extension, "c");
  EXPECT_TRUE(index.incomplete);
}

TEST(WriteIndex, WritesByteForByteAndKeepsTheHalfThatItDoesNotHold) {
  const TempFolder folder;
  const SFileSpec spec = SpecOn(folder.Path());
  const std::string ann = "\0\0\0\1AnnLee\0Ann\0Lee\0"s;
  Whole whole;
  whole.logins->Add(new SLoginNameObj("Room", "", "Rm"));
  EXPECT_TRUE(WriteIndex(spec, whole));
  EXPECT_FALSE(folder.Exists("index.kiv"));  // nothing is made
  folder.WriteFile("index.kiv", std::string(200, 'x'));
  EXPECT_TRUE(WriteIndex(spec, whole));
  EXPECT_EQ(folder.ReadFile("index.kiv"), kRoom);
  whole.files->Add(new SOurFileObj("a.zep", "A game", "zep"));
  folder.Remove("index.kiv");
  const kivtest::CreatingScope creating;
  EXPECT_TRUE(WriteIndex(spec, whole));
  EXPECT_EQ(folder.ReadFile("index.kiv"), kBoth);

  SIndexObj logins, files;
  logins.NeedLogins();
  logins.logins->Add(new SLoginNameObj("Ann", "Lee", "AnnLee"));
  EXPECT_TRUE(WriteIndex(spec, logins));
  EXPECT_EQ(folder.ReadFile("index.kiv"), ann + "\0\0\0\1a.zep\0A game\0zep\0"s);
  files.NeedFiles();
  EXPECT_TRUE(WriteIndex(spec, files));
  EXPECT_EQ(folder.ReadFile("index.kiv"), ann + std::string(4, '\0'));
}

TEST(WriteIndex, LeavesAFileInUseAsItWas) {
  const TempFolder folder;
  folder.WriteFile("index.kiv", kBoth);
  const SFileSpec spec = SpecOn(folder.Path("index.kiv"));
  SFile other;
  Whole index;
  ASSERT_TRUE(other.Open(SFile::kWrite, spec));
  EXPECT_FALSE(Read(folder, index));
  EXPECT_TRUE(index.incomplete);
  EXPECT_TRUE(WriteIndex(SpecOn(folder.Path()), index));
  other.Close();
  // Free again, but this index never saw what the file holds.
  EXPECT_TRUE(WriteIndex(SpecOn(folder.Path()), index));
  EXPECT_EQ(folder.ReadFile("index.kiv"), kBoth);
}

// Whatever operation fails, once or from then on: the file holds the old list or the new one.
TEST(EnsureEntry, LosesNothingWhenAnOperationFails) {
  const std::string added = "\0\0\0\2Rm\0Room\0\0AnnLee\0Ann\0Lee\0\0\0\0\1a.zep\0A game\0zep\0"s;
  const TempFolder folder;
  FaultFileServices faults(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &faults);
  for (const bool forever : {false, true}) {
    for (int n = 1;; ++n) {
      folder.WriteFile("index.kiv", kBoth);
      const SFileSpec spec = SpecOn(folder.Path());
      faults.FailAt(n, SystemError::kSharingViolation, forever);
      EnsureEntry(spec, "AnnLee", "Ann", "Lee", kNoLimit);
      const bool struck = faults.HasStruck();
      faults.FailNever();
      const std::string now = folder.ReadFile("index.kiv");
      EXPECT_TRUE(now == kBoth || now == added) << n << testing::PrintToString(now);
      EXPECT_TRUE(faults.OpenPaths().empty());
      if (!struck) {
        EXPECT_EQ(now, added);
        break;
      }
    }
  }
}

TEST(EnsureEntry, AddsWhatIsNotThereAndCountsAheadOfLooking) {
  const TempFolder folder;
  folder.WriteFile("index.kiv", kRoom);
  const SFileSpec spec = SpecOn(folder.Path());
  EXPECT_FALSE(EnsureEntry(spec, "Rm", "Room", "", 1));
  EXPECT_FALSE(EnsureEntry(spec, "Rm", "Room", "", 0));
  EXPECT_TRUE(EnsureEntry(spec, "RM", "ROOM", "", 2));
  EXPECT_EQ(folder.ReadFile("index.kiv"), kRoom);
  EXPECT_TRUE(EnsureEntry(spec, "Rm0", "Room", "", 2));
  EXPECT_EQ(folder.ReadFile("index.kiv"), "\0\0\0\2Rm\0Room\0\0Rm0\0Room\0\0\0\0\0\0"s);
  EXPECT_FALSE(EnsureEntry(spec, "Rm1", "Room", "", 2));
}

TEST(ReadIndexCount, OpensReadsFourBytesAndAsksNothingElse) {
  const struct {
    std::string bytes;
    int32_t count;
  } cases[] = {{"", 0}, {"\0\0\1"s, 0}, {"\0\0\1\2"s, 258}, {"\xFF\xFF\xFF\xFF"s, 0}};
  const TempFolder folder;
  const SFileSpec spec = SpecOn(folder.Path());
  EXPECT_EQ(ReadIndexCount(spec), 0);
  FaultFileServices counted(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &counted);
  for (const auto& c : cases) {
    folder.WriteFile("index.kiv", c.bytes);
    counted.ClearLog();
    EXPECT_EQ(ReadIndexCount(spec), c.count);
    EXPECT_EQ(counted.Count(), 2);
  }
}

TEST(SIndexObj, PicksFilesByExtensionIgnoringCase) {
  SPtrArray all, picked, moved;
  for (const char* const ending : {"zep", "ZEP", "txt", ""}) {
    all.Add(new SOurFileObj(ending, "", ending));
  }
  SIndexObj index(nullptr, &all);
  EXPECT_EQ(index.CountFilesOf("Zep"), 2);
  index.CopyFilesOf(&picked, "txt");
  ASSERT_EQ(picked.GetSize(), 1);
  EXPECT_EQ(FileIn(picked, 0)->extension, "txt");
  index.RemoveFilesOf("TXT");
  EXPECT_EQ(Told(index), "(zep||zep)(ZEP||ZEP)(||)");
  index.ownsFiles = false;
  index.MoveFilesOf(&moved, "zep");
  EXPECT_EQ(moved.GetSize(), 2);
  EXPECT_EQ(Told(index), "(zep||zep)(ZEP||ZEP)");
  DeleteFiles(moved);
}

TEST(IndexLookup, FindsFilesByLongNameByteForByte) {
  const TempFolder folder;
  folder.WriteFile("index.kiv",
                   "\0\0\0\0\0\0\0\3a.zep\0Game\0zep\0b.txt\0Note\0txt\0c.zep\0Game\0zep\0"s);
  folder.WriteFile("b.txt", "");
  for (const SFileSpec& spec : {SpecOn(folder.Path()), SpecOn(folder.Path("b.txt"))}) {
    EXPECT_TRUE(FindEntryByLongName(spec, "Game", "ZEP"));
    EXPECT_TRUE(FindEntryByLongName(spec, "Note", ""));
    EXPECT_FALSE(FindEntryByLongName(spec, "game", "zep"));
    EXPECT_EQ(FindFileOfLongName(spec, "Game", "zep"), "a.zep");
  }
  EXPECT_EQ(FindLongNameOfFile(SpecOn(folder.Path("b.txt")), "txt"), "Note");
  EXPECT_EQ(FindLongNameOfFile(SpecOn(folder.Path("B.TXT")), "txt"), "");
}

TEST(AddEntry, AppendsWithoutLookingAndForAClassInItsStudentsFolder) {
  const TempFolder folder;
  const std::string line = "a.zep\0A\0zep\0"s, one = "\0\0\0\0\0\0\0\1"s + line;
  const kivtest::SiteScope site(kSiteLocal);
  kivtest::AppScope scope;
  scope.app.SetProperty("Data", kivtest::Text(folder.Path()));
  RegisterFileType(kFileTypeGame, "Game File|Game Files|zep|Game|1");
  const SLoginNameObj room("Room", "", "Rm"), ann("Ann", "Lee", "AnnLee");
  const std::string students = "Classes.zep/Rm/Students/";
  folder.WriteFile("Classes.zep/index.kiv", kRoom);
  for (const SLoginNameObj* student : {static_cast<const SLoginNameObj*>(nullptr), &ann}) {
    const std::string index = students + (student != nullptr ? "AnnLee/" : "") + "index.kiv";
    folder.WriteFile(index, std::string(8, '\0'));
    EXPECT_TRUE(AddEntryFor(&room, student, "A", "a.zep", "zep", false));
    EXPECT_EQ(folder.ReadFile(index), one);
  }
  EXPECT_TRUE(AddEntry(SpecOn(folder.Path("Classes.zep/index.kiv")), "A", "a.zep", "zep"));
  EXPECT_TRUE(AddEntry(SpecOn(folder.Path("Classes.zep")), "A", "a.zep", "zep"));
  EXPECT_EQ(folder.ReadFile("Classes.zep/index.kiv"),
            kRoom.substr(0, 13) + "\0\0\0\2"s + line + line);
}

}  // namespace
