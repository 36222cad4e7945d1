#include "store/change/maintenance.h"

#include "store/change/last_file.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

const std::string kStudent = "Classes.zep/Room/Students/AnnLee";
const std::string kLast = kStudent + "/last.kiv";

std::string NameListBytes(const Lines& names) {
  ByteWriter writer;
  writer.Long(std::ssize(names));
  for (const std::string& name : names) {
    writer.Text(name);
  }
  return writer.Bytes();
}

class MaintenanceTest : public SiteFixture {
 protected:
  MaintenanceTest() {
    UseSite(Kind::kLocal);
    temp.MakeFolder(kStudent);
  }
  void Record(const char* name) { RecordLastFile(site, &room, &ann, name, "zep"); }
  std::string Find(const char* extension, bool removable = false) {
    SFileSpec spec;
    const bool found = FindLastFile(site, spec, &room, &ann, extension, removable);
    return (found ? "found " : "not found ") + PlaceAndKind(spec);
  }

  const SLoginNameObj room = Entry("Room", "Room");
  const SLoginNameObj ann = Entry("AnnLee", "Ann", "Lee");
};

TEST_F(MaintenanceTest, AFileIsRecordedInPlaceOfTheOneOfItsType) {
  const struct {
    const char* rule;
    std::string before;
    Lines after;
  } cases[] = {
      {"an empty file is an empty list", "", {"new.zep"}},
      {"the first of the type is replaced",
       NameListBytes({"a.txt", "old.ZEP", "older.zep"}),
       {"a.txt", "new.zep", "older.zep"}},
      {"another type is added to an empty list only", NameListBytes({"a.txt"}), {"a.txt"}},
      {"the same name stays as it is spelt", NameListBytes({"NEW.zep"}), {"NEW.zep"}},
      {"names no longer than the extension go with the next writing",
       NameListBytes({"zep", "", "old.zep"}),
       {"new.zep"}},
      {"a name without a dot has no type", NameListBytes({"oldzep"}), {"oldzep"}},
      {"a count beyond the file ends with it",
       ByteWriter().Long(-1).Text("old.zep").Raw("b.txt").Bytes(),
       {"new.zep", "b.txt"}},
  };
  for (const auto& c : cases) {
    temp.WriteFile(kLast, c.before);
    Record("new.zep");
    EXPECT_EQ(temp.ReadFile(kLast), NameListBytes(c.after)) << c.rule;
  }
}

TEST_F(MaintenanceTest, FilesAreMadeWhereFilesAreMadeAndABusyOneIsKept) {
  for (const bool makes : {false, true}) {
    SPlatformOverride<IFileServices> installed(Platform().files,
                                               makes ? &CreatingFileServices() : Platform().files);
    SFileSpec spec;
    MakeTopScoreFile(site, spec, &room, &ann);
    EXPECT_EQ(PlaceAndKind(spec), (makes ? "file " : "none ") + kStudent + "/topScore.kiv");
    Record("new.zep");
    EXPECT_EQ(temp.Exists(kLast), makes);
  }
  {
    const Holder other(Spec(kLast));
    Record("newer.zep");
  }
  EXPECT_EQ(temp.ReadFile(kLast), NameListBytes({"new.zep"}));
}

TEST_F(MaintenanceTest, TheFirstFileOfTheTypeIsFoundUnlessItsNameLeadsElsewhere) {
  EXPECT_EQ(Find("zep"), "not found none " + kLast);
  temp.WriteFile(kLast, NameListBytes({"a.txt", "mine.ZEP", "other.zep"}));
  temp.WriteFile(kStudent + "/mine.zep", "");
  EXPECT_EQ(Find("zep").substr(0, 11), "found file ");
  EXPECT_EQ(Find("txt", true), "found none " + kStudent + "/a.txt");
  EXPECT_EQ(Find("doc"), "not found file " + kLast);
  for (const char* name : {"..\\other.zep", "../x.zep", "\\x.zep"}) {
    temp.WriteFile(kLast, NameListBytes({name}));
    EXPECT_EQ(Find("zep"), "not found file " + kLast) << name;
  }
}

TEST_F(MaintenanceTest, TheOptionsOfAllLevelsGoAndNothingElse) {
  Lines gone;
  for (const std::string place :
       {"Room/Students/AnnLee/", "Room/", "Unlisted/Students/Nobody/", "Unlisted/", ""}) {
    temp.WriteFile("Classes.zep/" + place + "options.kiv", "options");
    gone.push_back("-Classes.zep/" + place + "options.kiv");
  }
  for (const std::string kept : {"Room/Students/options.kiv", "Room/Shared/options.kiv",
                                 "topScore.kiv", "Folder/options.kiv/file.kiv"}) {
    temp.WriteFile("Classes.zep/" + kept, "kept");
  }
  const auto before = Snapshot();
  DeleteStoreFiles(site);
  EXPECT_EQ(Changes(before, Snapshot()), gone);
  temp.Remove("Classes.zep");
  temp.WriteFile("folder/options.kiv", "");
  DeleteStoreFiles(site);  // a folder level higher up is nobody's class
  EXPECT_TRUE(temp.Exists("folder/options.kiv"));
}

}  // namespace
