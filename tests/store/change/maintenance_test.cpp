#include "store/change/maintenance.h"

#include "store/change/last_file.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

const std::string kStudent = "Classes.zep/Room/Students/AnnLee";
const std::string kLast = kStudent + "/last.kiv";

std::string NameListBytes(const std::vector<std::string>& names) {
  ByteWriter writer;
  writer.Long(static_cast<uint32_t>(names.size()));
  for (const std::string& name : names) {
    writer.Text(name);
  }
  return writer.Bytes();
}

class MaintenanceTest : public SiteFixture {
 protected:
  MaintenanceTest() {
    UseSite(Kind::kLocal);
    StoreBuilder store(temp.Path(), Kind::kLocal);
    store.AddClass("", "Room", "Room");
    store.AddStudent("Classes.zep/Room", "Ann", "Lee", "AnnLee");
    store.Finish();
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
    std::vector<std::string> after;
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
       std::string("\xFF\xFF\xFF\xFF", 4) + std::string("old.zep\0b.txt", 13),
       {"new.zep", "b.txt"}},
  };
  for (const auto& c : cases) {
    temp.WriteFile(kLast, c.before);
    Record("new.zep");
    EXPECT_EQ(temp.ReadFile(kLast), NameListBytes(c.after)) << c.rule;
  }
}

TEST_F(MaintenanceTest, AMissingListIsMadeWhereFilesAreMadeAndABusyOneKept) {
  Record("new.zep");
  EXPECT_FALSE(temp.Exists(kLast));
  const CreatingScope creating;
  Record("new.zep");
  EXPECT_EQ(temp.ReadFile(kLast), NameListBytes({"new.zep"}));
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

TEST_F(MaintenanceTest, TopScoresAreMadeWhereFilesAreMade) {
  for (const bool makes : {false, true}) {
    SPlatformOverride<IFileServices> installed(Platform().files,
                                               makes ? &CreatingFileServices() : Platform().files);
    SFileSpec spec;
    MakeTopScoreFile(site, spec, &room, &ann);
    EXPECT_EQ(PlaceAndKind(spec), (makes ? "file " : "none ") + kStudent + "/topScore.kiv");
  }
}

TEST_F(MaintenanceTest, TheOptionsOfAllLevelsGoAndNothingElse) {
  const std::string list = "Classes.zep/";
  for (const char* gone :
       {"", "Room/", "Room/Students/AnnLee/", "Unlisted/", "Unlisted/Students/Nobody/"}) {
    temp.WriteFile(list + gone + "options.kiv", "options");
  }
  for (const char* kept : {"Room/Students/options.kiv", "Room/Shared/options.kiv", "topScore.kiv",
                           "Folder/options.kiv/file.kiv"}) {
    temp.WriteFile(list + kept, "kept");
  }
  const auto before = Snapshot();
  DeleteStoreFiles(site);
  EXPECT_EQ(Changes(before, Snapshot()),
            Lines({"-Classes.zep/Room/Students/AnnLee/options.kiv", "-Classes.zep/Room/options.kiv",
                   "-Classes.zep/Unlisted/Students/Nobody/options.kiv",
                   "-Classes.zep/Unlisted/options.kiv", "-Classes.zep/options.kiv"}));
  temp.Remove("Classes.zep");
  temp.WriteFile("folder/options.kiv", "");
  DeleteStoreFiles(site);  // a folder level higher up is nobody's class
  EXPECT_TRUE(temp.Exists("folder/options.kiv"));
}

}  // namespace
