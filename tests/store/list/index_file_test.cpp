#include "store/list/index_file.h"

#include "store/list/index_lookup.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;
using namespace std::string_literals;

namespace {

const std::string kRoom = "\0\0\0\1Rm\0Room\0\0\0\0\0\0"s;
const std::string kBoth = "\0\0\0\1Rm\0Room\0\0\0\0\0\1a.zep\0A game\0zep\0"s;

struct Whole : SIndexObj {
  explicit Whole(bool withLogins = true) {
    if (withLogins) {
      NeedLogins();
    }
    NeedFiles();
  }
};

class IndexFile : public SiteFixture {
 protected:
  bool Read(SIndexObj& index) const {
    SFileSpec spec = Spec("index.kiv");
    const bool read = ReadIndex(spec, index);
    EXPECT_EQ(spec.GetPath(), folder.GetPath());
    return read;
  }
  static std::string Told(SIndexObj& index) {
    std::string told;
    for (int i = 0; index.logins && i < index.logins->GetSize(); ++i) {
      const SLoginNameObj& login = *index.LoginAt(i);
      told += "[" + Bytes(login.folderName + "|" + login.firstName + "|" + login.lastName) + "]";
    }
    for (int i = 0; index.files && i < index.files->GetSize(); ++i) {
      const SOurFileObj& file = *index.FileAt(i);
      told += "(" + Bytes(file.fileName + "|" + file.longName + "|" + file.extension) + ")";
    }
    return told;
  }
  bool Ensure(const char* name, const char* first, const char* last, int16_t limit) {
    return EnsureEntry(site, folder, name, first, last, limit, ListKind::kStudents);
  }
  std::string Stored() const { return temp.ReadFile("index.kiv"); }

  const SFileSpec folder = SpecOn(temp.Path());
};

TEST_F(IndexFile, IsReadForWhatItHolds) {
  const struct {
    std::string bytes, told;
  } cases[] = {
      {kBoth, "[Rm|Room|](a.zep|A game|zep)"},
      {"", ""},
      {"\0\0\0\1\xC4\0\xFF\x80\0\xE9\0\0\0\0\0"s, "[\xC4|\xFF\x80|\xE9]"},
      // torn: what was counted is made, with empty texts
      {"\0\0\0\2Rm\0Room\0\0"s, "[Rm|Room|][||]"},
      {"\0\0\0\3Rm\0Room\0Ro"s, "[Rm|Room|Ro][||][||]"},
      {"\0\0\0\2"s, "[||]"},
      {"\0\0\0\0\0\0\0\2a.zep\0A"s, "(a.zep|A|)(||)"},
      // counts that nothing backs
      {"\xFF\xFF\xFF\xFF\0\0\0\1a\0b\0c\0"s, "(a|b|c)"},
      {"\x7F\xFF\xFF\xFF\x61\0b\0c\0"s, "[a|b|c][||][||]"},
      {"\0\0\0\0\x7F\xFF\xFF\xFF"s, "(||)"},
  };
  for (const auto& c : cases) {
    temp.WriteFile("index.kiv", c.bytes);
    Whole index, files(false);
    EXPECT_TRUE(Read(index) && Read(files));
    EXPECT_EQ(Told(index), c.told) << testing::PrintToString(c.bytes);
    EXPECT_FALSE(index.incomplete);
    EXPECT_EQ(Told(files), c.told.substr(std::min(c.told.find('('), c.told.size())));
  }
  temp.Remove("index.kiv");
  Whole index;
  EXPECT_FALSE(Read(index));
  SFileSpec assumed = folder;
  ASSERT_TRUE(assumed.DownAssumed("index.kiv"));
  EXPECT_FALSE(ReadIndex(assumed, index));
  EXPECT_FALSE(index.incomplete);
  temp.MakeFolder("index.kiv/deeper");
  EXPECT_FALSE(Read(index));
}

TEST_F(IndexFile, KeepsNoMoreEntriesThanAListIsWalkedFor) {
  temp.WriteFile("index.kiv", IndexBytes(std::vector<IndexLine>(0x8001, IndexLine{"F", "N", ""}),
                                         {{"a", "b", "c"}}));
  Whole index;
  EXPECT_TRUE(Read(index));
  EXPECT_EQ(index.logins->GetSize(), 32767);
  ASSERT_EQ(index.files->GetSize(), 1);
  EXPECT_EQ(index.FileAt(0)->extension, "c");
  EXPECT_TRUE(index.incomplete);
}

TEST_F(IndexFile, IsWrittenByteForByteAndKeepsTheHalfThatIsNotHeld) {
  const std::string ann = "\0\0\0\1AnnLee\0Ann\0Lee\0"s;
  Whole whole;
  whole.logins->Add(std::make_unique<SLoginNameObj>("Room", "", "Rm"));
  EXPECT_TRUE(WriteIndex(folder, whole));
  EXPECT_FALSE(temp.Exists("index.kiv"));  // nothing is made
  temp.WriteFile("index.kiv", std::string(200, 'x'));
  EXPECT_TRUE(WriteIndex(folder, whole));
  EXPECT_EQ(Stored(), kRoom);
  whole.files->Add(std::make_unique<SOurFileObj>("a.zep", "A game", "zep"));
  temp.Remove("index.kiv");
  const CreatingScope creating;
  EXPECT_TRUE(WriteIndex(folder, whole));
  EXPECT_EQ(Stored(), kBoth);

  SIndexObj logins;
  logins.NeedLogins();
  logins.logins->Add(std::make_unique<SLoginNameObj>("Ann", "Lee", "AnnLee"));
  EXPECT_TRUE(WriteIndex(folder, logins));
  EXPECT_EQ(Stored(), ann + "\0\0\0\1a.zep\0A game\0zep\0"s);
  Whole files(false);
  EXPECT_TRUE(WriteIndex(folder, files));
  EXPECT_EQ(Stored(), ann + std::string(4, '\0'));
}

TEST_F(IndexFile, StaysAsItWasWhileInUseAndWhereItWasNotSeen) {
  temp.WriteFile("index.kiv", kBoth);
  Whole index;
  {
    const Holder other(Spec("index.kiv"));
    EXPECT_FALSE(Read(index));
    EXPECT_TRUE(index.incomplete);
    EXPECT_TRUE(WriteIndex(folder, index));
    EXPECT_TRUE(Ensure("New", "New", "", kNoLimit));
    EXPECT_EQ(site.GetShortfall().kind, FailureKind::kInUse);
  }
  // Free again, but this index never saw what the file holds.
  EXPECT_TRUE(WriteIndex(folder, index));
  EXPECT_EQ(Stored(), kBoth);
}

// Whatever operation fails, once or from then on: the file holds the old list or the new one.
TEST_F(IndexFile, LosesNothingWhenAnOperationFails) {
  const std::string added = "\0\0\0\2Rm\0Room\0\0AnnLee\0Ann\0Lee\0\0\0\0\1a.zep\0A game\0zep\0"s;
  FaultFileServices faults(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &faults);
  for (const bool forever : {false, true}) {
    bool struck = true;
    for (int n = 1; struck; ++n) {
      temp.WriteFile("index.kiv", kBoth);
      const SFileSpec spec = SpecOn(temp.Path());
      faults.FailAt(n, SystemError::kSharingViolation, forever);
      EnsureEntry(site, spec, "AnnLee", "Ann", "Lee", kNoLimit, ListKind::kStudents);
      struck = faults.HasStruck();
      faults.FailNever();
      // Behind the bytes of a torn one stand zeros.
      const std::string stored = Stored();
      const auto holds = [&](const std::string& list) {
        return stored.starts_with(list) && stored.find_first_not_of('\0', list.size()) == ""s.npos;
      };
      EXPECT_TRUE(stored == added || (struck && (holds(kBoth) || holds(added)))) << n;
      EXPECT_EQ(faults.OpenPaths(), Lines());
    }
  }
}

TEST_F(IndexFile, TakesANewLineOnceAndCountsAheadOfLooking) {
  temp.WriteFile("index.kiv", kRoom);
  EXPECT_FALSE(Ensure("Rm", "Room", "", 1));
  EXPECT_FALSE(Ensure("Rm", "Room", "", 0));
  EXPECT_TRUE(Ensure("RM", "ROOM", "", 2));
  EXPECT_EQ(Stored(), kRoom);
  EXPECT_TRUE(Ensure("Rm0", "Room", "", 2));
  EXPECT_EQ(Stored(), "\0\0\0\2Rm\0Room\0\0Rm0\0Room\0\0\0\0\0\0"s);
  EXPECT_FALSE(Ensure("Rm1", "Room", "", 2));
}

TEST_F(IndexFile, IsCountedByOpeningItAndReadingFourBytes) {
  EXPECT_EQ(ReadIndexCount(folder), 0);
  FaultFileServices counted(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &counted);
  for (const auto& [bytes, count] : {std::pair("\0\0\1"s, 0),
                                     {"\0\0\1\2"s, 258},
                                     {"\x7F\xFF\xFF\xFE"s, 0x7FFFFFFE},
                                     {"\xFF\xFF\xFF\xFF"s, 0}}) {
    temp.WriteFile("index.kiv", bytes);
    counted.ClearLog();
    EXPECT_EQ(ReadIndexCount(folder), count);
    EXPECT_EQ(counted.Count(), 2);
  }
}

TEST_F(IndexFile, GivesTheFilesOfAnExtensionIgnoringCase) {
  SFileList moved;
  Whole index(false);
  for (const char* const ending : {"zep", "ZEP", "txt", ""}) {
    index.files->Add(std::make_unique<SOurFileObj>(ending, "", ending));
  }
  EXPECT_EQ(index.CountFilesOf("Zep"), 2);
  EXPECT_EQ(index.LoginAt(0), nullptr);
  index.RemoveFilesOf("");
  index.RemoveFilesOf("TXT");
  EXPECT_EQ(Told(index), "(zep||zep)(ZEP||ZEP)(||)");
  index.MoveFilesOf(moved, "zep");
  EXPECT_EQ(moved.GetSize(), 2);
  EXPECT_EQ(Told(index), "");
  index.files->Add(std::make_unique<SOurFileObj>("a", "", ""));
  index.MoveFilesOf(moved, "");
  EXPECT_EQ(moved.GetSize(), 3);
  EXPECT_EQ(SIndexObj().CountFilesOf("zep"), 0);
}

TEST_F(IndexFile, FindsFilesByLongNameByteForByte) {
  temp.WriteFile("index.kiv", IndexBytes({}, {{"a.zep", "Game", "zep"},
                                              {"b.txt", "Note", "txt"},
                                              {"c.zep", "Game", "zep"}}));
  temp.WriteFile("b.txt", "");
  for (const SFileSpec& spec : {folder, Spec("b.txt")}) {
    EXPECT_TRUE(FindEntryByLongName(spec, "Game", "ZEP") && FindEntryByLongName(spec, "Note", ""));
    EXPECT_FALSE(FindEntryByLongName(spec, "game", "zep"));
    EXPECT_FALSE(FindEntryByLongName(spec, "Note", "zep"));
    EXPECT_EQ(FindFileOfLongName(spec, "Game", "zep"), "a.zep");
  }
  EXPECT_EQ(FindLongNameOfFile(Spec("b.txt"), "txt"), "Note");
  EXPECT_EQ(FindLongNameOfFile(Spec("B.TXT"), "txt"), "");
}

TEST_F(IndexFile, TakesAFilesLineWithoutLookingAndForAClassAmongItsStudents) {
  UseSite(Kind::kLocal);
  const SLoginNameObj room = Entry("Rm", "Room"), ann = Entry("AnnLee", "Ann", "Lee");
  const FileLine line{"a.zep", "A", "zep"};
  const struct {
    const SLoginNameObj *group, *student;
    std::string index;
  } cases[] = {{nullptr, nullptr, "Classes.zep/index.kiv"},
               {&room, nullptr, "Classes.zep/Rm/Students/index.kiv"},
               {&room, &ann, "Classes.zep/Rm/Students/AnnLee/index.kiv"}};
  for (const auto& c : cases) {
    temp.WriteFile(c.index, kRoom);
    EXPECT_TRUE(AddEntryFor(site, c.group, c.student, "A", "a.zep", "zep"));
    EXPECT_TRUE(AddEntry(Spec(c.index), "A", "a.zep", "zep"));
    EXPECT_EQ(temp.ReadFile(c.index), IndexBytes({{"Rm", "Room", ""}}, {line, line}));
  }
}

}  // namespace
