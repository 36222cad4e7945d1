#include <functional>
#include <set>
#include <sstream>

#include "store/list/listing.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;
using namespace std::string_literals;

namespace {

const std::string kList = "Classes.zep/Room/Students";

// Of "folder:first:last,..."
std::vector<IndexLine> Parsed(const std::string& entries) {
  std::vector<IndexLine> lines;
  std::istringstream in(entries);
  for (IndexLine line; std::getline(in, line.folder, ':') && std::getline(in, line.first, ':');) {
    std::getline(in, line.last, ',');
    lines.push_back(line);
  }
  return lines;
}

// The list at hand is that of the students of one class.
class ReconcileTest : public SiteFixture {
 protected:
  StoreBuilder Build(Kind kind, const std::string& students) {
    UseSite(kind);
    temp.Remove("Classes.zep");
    StoreBuilder store(temp.Path(), kind);
    store.AddClass("", "Room", "Room");
    for (const IndexLine& student : Parsed(students)) {
      store.AddStudent("Classes.zep/Room", student.first, student.last, student.folder);
    }
    store.Finish();
    return store;
  }
  // A folder that the index does not know.
  void AddFolder(const std::string& folder, const std::string& first,
                 const std::string& last = "") const {
    temp.WriteFile(In(folder + "/longname.kiv"), LongNameBytes(first, last));
    temp.WriteFile(In(folder + "/index.lok"), "");
  }
  std::string Listed() {
    SLoginList list;
    LoadStudentList(site, list, Entry("Room", "Room"), true, true);
    std::string listed;
    for (const std::string& line : Described(list)) {
      listed += (listed.empty() ? "" : ",") + line;
    }
    return listed;
  }
  std::string Index() const { return temp.ReadFile(kList + "/index.kiv"); }
  static std::string In(const std::string& folder) { return kList + "/" + folder; }
};

TEST_F(ReconcileTest, AFolderThatTellsItsNameIsListedOnceInDisplayOrder) {
  const std::string repaired = "c:Ann:Lee,b:Bob:Ray,aaa:Mia:Kay,a:Zoe:";
  Build(Kind::kShared, "a:Zoe:,b:Bob:Ray,c:Ann:Lee");
  AddFolder("aaa", "Mia", "Kay");
  EXPECT_EQ(Listed(), repaired);
  EXPECT_EQ(Index(), IndexBytes(Parsed(repaired)));
  const auto before = Snapshot();
  EXPECT_EQ(Listed(), "a:Zoe:,aaa:Mia:Kay,b:Bob:Ray,c:Ann:Lee");
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
}

TEST_F(ReconcileTest, AnEntryWithoutAFolderOfItsOwnGoes) {
  const struct {
    const char* rule;
    Lines folders;
    const char *before, *after;
  } cases[] = {{"in display order", {"a", "c"}, "a:Zoe:,b:Bob:Ray,c:Ann:Lee", "c:Ann:Lee,a:Zoe:"},
               {"names that differ in letter case are one",
                {"annLee"},
                "ANNLEE:Ann:Lee,AnnLee:Ann:Twice",
                "ANNLEE:Ann:Lee"},
               {"long names are told apart behind the eighth character",
                {"Folder-number-2", "Folder-number-10"},
                "FOLDER-NUMBER-1:Ann:,FOLDER-NUMBER-2:Bob:",
                "FOLDER-NUMBER-2:Bob:"},
               {"a name of eight is told from a longer one",
                {"eightlet"},
                "eightlet:Ann:,eightlett:Bob:",
                "eightlet:Ann:"},
               {"names that lead elsewhere are no folders",
                {"a"},
                "..:Up:,..\\Students\\a:Round:,../Shared:Slash:,a:Zoe:",
                "a:Zoe:"}};
  for (const auto& c : cases) {
    Build(Kind::kLocal, "");
    temp.WriteFile(In("b"), "a file is no folder");
    for (const std::string& folder : c.folders) {
      temp.MakeFolder(In(folder));
    }
    temp.WriteFile(kList + "/index.kiv", IndexBytes(Parsed(c.before), {{"x.zep", "X", "zep"}}));
    EXPECT_EQ(Listed(), c.after) << c.rule;
    EXPECT_EQ(Index(), IndexBytes(Parsed(c.after), {{"x.zep", "X", "zep"}})) << c.rule;
  }
}

TEST_F(ReconcileTest, AFolderThatTellsNoNameStaysUnknown) {
  const StoreBuilder store = Build(Kind::kShared, "a:Zoe:,hidden:Hid:");
  temp.MakeFolder(In("silent"));
  AddFolder("nameless", "", "Lee");
  temp.WriteFile(In("lockless/longname.kiv"), LongNameBytes("Ann", "Lee"));
  AddFolder("busy", "Bob", "Ray");
  const auto before = Snapshot();
  {
    const Holder other(Spec(In("busy/index.lok")));
    EXPECT_EQ(Listed(), "a:Zoe:,hidden:Hid:");
    EXPECT_EQ(Why(), "locked students " + In("busy/index.lok"));
  }
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  const bool isHidden = store.Hide(In("hidden"));  // as good as gone, on a disk that can
  EXPECT_EQ(Listed(), isHidden ? "busy:Bob:Ray,a:Zoe:" : "busy:Bob:Ray,hidden:Hid:,a:Zoe:");
}

TEST_F(ReconcileTest, EntriesOfOneNameAreToldApartByTheirEnds) {
  const struct {
    const char *rule, *found, *listed;  // found by their folders alone
  } cases[] = {
      {"the second one's last name changes", "AnnLee:Ann:Lee,AnnLee0:ann:LEE",
       "AnnLee0:ann:LE0,AnnLee:Ann:Lee"},
      {"a first name alone changes itself",
       "R1:Room:,R2:Room:,R3:Room:", "R2:Roo0:,R3:Roo1:,R1:Room:"},
      {"behind others the first of the two is met first",
       "A:Amy:,B1:Bob:,B2:Bob:", "A:Amy:,B1:Bo0:,B2:Bob:"},
      {"the new name may sort behind the old", "F1:A-:,F2:A-:,F3:B:", "F1:A-:,F2:A0:,F3:B:"},
      {"one display name from different parts", "a:Ann Lee:,b:Ann:Lee", "b:Ann:Le0,a:Ann Lee:"},
      {"Default gives its folder's name",
       "Default:Default:,Other:Default:", "Default:Default:,Other:Other:"},
      {"and is varied where that is taken", "Default:Default:,Other:Default:,Third:Other:",
       "Default:Default:,Other:Othe0:,Third:Other:"}};
  for (const auto& c : cases) {
    Build(Kind::kShared, "");
    for (const IndexLine& folder : Parsed(c.found)) {
      AddFolder(folder.folder, folder.first, folder.last);
    }
    EXPECT_EQ(Listed(), c.listed) << c.rule;
    // The new name is in the folder too: the same comes out once the index is lost.
    temp.Remove(kList + "/index.kiv");
    EXPECT_EQ(Listed(), c.listed) << c.rule;
  }
}

TEST_F(ReconcileTest, ABusyFolderKeepsItsOldNameFile) {
  Build(Kind::kShared, "a:Ann:,b:Ann:,c:Cid:").RemoveFolder(In("c"));
  const Holder other(Spec(In("b/index.lok")));
  EXPECT_EQ(Listed(), "b:An0:,a:Ann:");
  EXPECT_EQ(Index(), IndexBytes(Parsed("b:An0:,a:Ann:")));
  EXPECT_EQ(temp.ReadFile(In("b/longname.kiv")), LongNameBytes("Ann"));
}

TEST_F(ReconcileTest, NamesThatRunOutOfVariantsEndTheSearch) {
  Build(Kind::kLocal, "");
  for (int i = 0; i < 40; ++i) {
    AddFolder("f" + std::to_string(i), "z");
  }
  std::set<std::string> names;
  const std::vector<IndexLine> listed = Parsed(Listed());
  for (const IndexLine& line : listed) {
    names.insert(line.first);
  }
  EXPECT_EQ(listed.size(), 40u);
  EXPECT_EQ(names.size(), 36u);
}

// An entry whose folder tells no name lives by its line in the index alone.
TEST_F(ReconcileTest, NoFailureOnTheWayCostsAnEntry) {
  Build(Kind::kShared, "b:Bob:,a:Zoe:").RemoveFile(In("a/longname.kiv"));
  const auto before = Snapshot();
  for (const bool forever : {false, true}) {
    FaultFileServices services(*Platform().files);
    const SPlatformOverride<IFileServices> installed(Platform().files, &services);
    bool struck = true;
    for (int n = 1; struck && n < 200; ++n) {
      services.FailAt(n, SystemError::kSharingViolation, forever);
      Listed();
      struck = services.HasStruck();
      services.FailNever();
      EXPECT_EQ(Changes(before, Snapshot()), Lines()) << n;
      EXPECT_EQ(services.OpenPaths(), Lines()) << n;
    }
    EXPECT_FALSE(struck);
  }
}

// A list above one buffer, and what a writer leaves that dies before, within and behind the write.
TEST_F(ReconcileTest, NoCutOfAnIndexLeavesAWrongName) {
  constexpr int kStudents = 330;
  std::vector<IndexLine> before;
  for (int i = 0; i < kStudents; ++i) {
    const std::string number = std::to_string(1000 + i);
    before.push_back({"Folder" + number, "First" + number, std::string(i % 7, 'x')});
  }
  std::vector<IndexLine> shorter(before.begin() + 1, before.end()), renamed = before;
  renamed[200].first = "Somebody else";
  StoreBuilder store = Build(Kind::kShared, "");
  for (const auto& after : {shorter, renamed}) {
    temp.Remove(kList);
    std::set<std::string> expected;
    for (const IndexLine& line : after) {
      AddFolder(line.folder, line.first, line.last);
      expected.insert(line.folder + ":" + line.first + ":" + line.last);
    }
    temp.WriteFile(In("index.lok"), "");
    const std::string from = IndexBytes(before), to = IndexBytes(after);
    const size_t longest = std::max(from.size(), to.size()) + 64;
    for (size_t cut = 0; cut <= to.size(); cut += cut % 4096 < 8 ? 1 : to.size() / 9) {
      std::string torn = to.substr(0, cut) + from.substr(std::min(cut, from.size()));
      torn.resize(longest);
      temp.WriteFile(kList + "/index.kiv", torn);
      std::set<std::string> listed;
      std::istringstream list(Listed());
      for (std::string line; std::getline(list, line, ',');) {
        listed.insert(line);
      }
      EXPECT_EQ(listed, expected) << cut;
      EXPECT_EQ(Index().size(), to.size()) << cut;
    }
  }
}

TEST_F(ReconcileTest, ATornIndexAsksEachFolderAlsoOfWhoIsAtWork) {
  Build(Kind::kShared, "a:Ann:,b:Bob:,c:Cid:");
  temp.WriteFile(In("b/longname.kiv"), LongNameBytes("Rob") + "torn");
  temp.Remove(In("c/longname.kiv"));
  AddFolder("d", "Dan");
  const Holder atWork(Spec(In("a/index.lok"))), another(Spec(In("d/index.lok")));
  const std::string torn = IndexBytes(Parsed("a:nn:,a:Ann:,b:Bob:,c:Cid:"));
  const std::string count = "\0\0\0"s;
  for (const std::string& bytes :
       {torn + '\0', torn.substr(0, torn.size() - 2), count + '\5' + torn.substr(4)}) {
    temp.WriteFile(kList + "/index.kiv", bytes);
    EXPECT_EQ(Listed(), "a:Ann:,b:Bob:,c:Cid:,d:Dan:");
    EXPECT_EQ(Index(), IndexBytes(Parsed("a:Ann:,b:Bob:,c:Cid:,d:Dan:")));
  }
}

// A file system that others change: each reading of the index shows what they have written since
// the last.
class SharedServices : public SForwardingFileServices {
 public:
  explicit SharedServices(std::function<void(int)> others)
      : SForwardingFileServices(*Platform().files), others(std::move(others)) {}
  bool IsShared() override { return true; }
  FileHandle Open(const char* path, FileAccess access, SystemError& error) override {
    if (access == FileAccess::kRead && std::string(path).ends_with("index.kiv")) {
      others(readings++);
    }
    return inner.Open(path, access, error);
  }

 private:
  std::function<void(int)> others;
  int readings = 0;
};

TEST_F(ReconcileTest, WhereOthersShareTheDiskARepairLeavesWhatTheyWroteMeanwhile) {
  const std::string old = IndexBytes(Parsed("a:Ann:,b:Bob:"));
  const auto listed = [&](const std::function<void(int)>& others) {
    Build(Kind::kShared, "a:Ann:,b:Bob:");
    AddFolder("d", "Dan");
    SharedServices services(others);
    const SPlatformOverride<IFileServices> installed(Platform().files, &services);
    return Listed();
  };
  const auto name = [](int n) {
    return IndexBytes(Parsed("a:Ann:,b:Rob" + std::to_string(n) + ":"));
  };
  EXPECT_EQ(listed([&](int n) { temp.WriteFile(In("index.kiv"), n == 0 ? old : name(0)); }),
            "a:Ann:,d:Dan:,b:Rob0:");
  EXPECT_EQ(Index(), IndexBytes(Parsed("a:Ann:,d:Dan:,b:Rob0:")));
  int last = 0;
  EXPECT_EQ(listed([&](int n) { temp.WriteFile(In("index.kiv"), name(last = n)); }).substr(0, 6),
            "a:Ann:");
  EXPECT_EQ(Index(), name(last));
}

}  // namespace
