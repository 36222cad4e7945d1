#include "store/change/deleting.h"

#include "store/change/deleting_files.h"
#include "store/change/moving.h"
#include "store/change/renaming.h"
#include "store/change/setting_aside.h"
#include "store/list/entry_lock.h"
#include "tests/support/school_fixture.h"
#include "tests/support/wine.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class DeletingTest : public SchoolFixture {
 protected:
  bool DeleteBob(bool standAlone = true) {
    return DeleteStudent(site, room, students[1], students, standAlone, stop);
  }
  bool DeleteRoom() { return DeleteClass(site, room, classes, true, stop); }
  bool DeleteHill() { return DeleteTeacher(site, hill, teachers); }
  std::string NotDeleted(const std::string& level, const std::string& name,
                         const std::string& folder, const std::string& why) const {
    return "Unable to delete the " + level + " " + name + " because the " + level + " folder " +
           Bytes(Spec(folder).GetPath()) +
           " could not be deleted.  Make sure you have the necessary privileges to create, read, "
           "write, modify, and delete files and folders.  Also, make sure nobody is accessing the "
           "folder.|" +
           why;
  }
};

TEST_F(DeletingTest, AStudentWhoIsGoneAlreadyIsASuccess) {
  store.RemoveFolder(kRoom + "/Bob");
  const auto before = Snapshot();
  EXPECT_TRUE(DeleteBob());
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  EXPECT_EQ(students.GetSize(), 3);
  temp.WriteFile(kRoom + "/Bob", "a file in the way");
  EXPECT_TRUE(DeleteBob());
  EXPECT_EQ(Why(), "");
  // A lost class comes back ahead of it where folders are made, and nobody is in it.
  store.RemoveFolder(kHill + "/Room");
  EXPECT_FALSE(DeleteBob());
  const CreatingScope creating;
  EXPECT_TRUE(DeleteBob());
  EXPECT_TRUE(temp.Exists(kRoom));
}

TEST_F(DeletingTest, NobodyIsDeletedOutsideTheList) {
  for (const char* name : {"", "..", "..\\..\\Den", ".", "Gone"}) {
    const SLoginNameObj other = Entry(name, "Ann");
    const std::string folder = name == std::string("Gone") ? "/Gone" : "";
    EXPECT_EQ(WhyNot(DeleteClass(site, other, classes, true, stop)),
              "no entry classes " + (folder.empty() ? "" : kHill + folder));
    EXPECT_EQ(WhyNot(DeleteTeacher(site, other, teachers)),
              "no entry teachers " + (folder.empty() ? "" : kTop + folder));
    EXPECT_EQ(DeleteStudent(site, room, other, students, true, stop), !folder.empty());
    EXPECT_EQ(Why(), folder.empty() ? "no entry students " : "");
  }
  EXPECT_EQ(Changed(), Lines());
}

TEST_F(DeletingTest, AFolderThatCannotGoIsReportedAndStopsAGroup) {
  const std::string bob = kRoom + "/Bob", busy = kHill + "/Den/busy";
  {
    const Holder other(Spec(bob + "/mark"));
    for (const bool standAlone : {true, false}) {
      temp.WriteFile(bob + "/index.lok", "");  // the first try takes it along
      EXPECT_FALSE(DeleteBob(standAlone));
      EXPECT_EQ(stop, !standAlone);
      EXPECT_EQ(Told(), NotDeleted("student", "Bob", bob, "in use students " + bob + "/mark"));
    }
    temp.WriteFile(bob + "/index.lok", "");
    EXPECT_FALSE(DeleteRoom());
    EXPECT_TRUE(stop);
    EXPECT_EQ(temp.List(kRoom), Lines({"Bob", "Cid", "index.kiv", "index.lok"}));
    Why();
  }
  temp.WriteFile(bob + "/index.lok", "");
  temp.WriteFile(busy, "");
  const Holder other(Spec(busy));
  EXPECT_FALSE(DeleteClass(site, den, classes, true, stop));
  EXPECT_EQ(Told(), NotDeleted("class", "Den", kHill + "/Den", "in use classes " + busy));
  temp.WriteFile(kDen + "/index.lok", "");
  EXPECT_FALSE(DeleteHill());
  EXPECT_TRUE(temp.Exists(kHill + "/Room"));
}

TEST_F(DeletingTest, OneStudentInUseKeepsClassAndTeacherButNotTheOthers) {
  const std::string index = Index(kRoom), why = "locked students " + kRoom + "/Bob/index.lok";
  const Holder other(Spec(kRoom + "/Bob/index.lok"));
  EXPECT_EQ(WhyNot(DeleteRoom()), why);
  EXPECT_FALSE(stop);
  EXPECT_EQ(temp.List(kRoom), Lines({"Bob", "index.kiv", "index.lok"}));
  EXPECT_EQ(Index(kRoom), index);
  EXPECT_EQ(classes.GetSize(), 2);
  EXPECT_FALSE(DeleteHill());
  EXPECT_EQ(Told(), NotDeleted("teacher", "Ms Hill", kHill, why));
  EXPECT_EQ(temp.List(kHill), Lines({"Room", "index.kiv", "index.lok"}));
  EXPECT_EQ(teachers.GetSize(), 2);
}

TEST_F(DeletingTest, ASelectionThatWasThereNamesTheDeletedTeacherAfterwards) {
  EXPECT_TRUE(DeleteTeacher(site, oak, teachers));
  EXPECT_EQ(Selected(), "Oak");
  site.SelectTeacher(nullptr);
  store.RemoveFolder(kHill);  // without classes she goes at once
  EXPECT_TRUE(DeleteHill());
  EXPECT_EQ(Selected(), "-");
  EXPECT_FALSE(temp.Exists("Classes.zep/aHill"));
}

TEST_F(DeletingTest, ALocalSiteHasNoTeachersAndNoLocks) {
  site.SetSiteMode(kSiteLocal);
  EXPECT_FALSE(DeleteHill());
  EXPECT_EQ(Changed(), Lines());
  const Holder other(Spec(kHill + "/index.lok"));
  EXPECT_TRUE(DeleteRoom());
}

class DeletingFilesTest : public SchoolFixture {
 protected:
  DeletingFilesTest() {
    temp.WriteFile(home + "/index.kiv", IndexBytes({}, {{"a.zep", "A", "zep"},
                                                        {"b.TXT", "B", "TXT"},
                                                        {"c.doc", "C", "doc"},
                                                        {"C.doc", "Last", ""}}));
    for (const char* file : {"/a.zep", "/b.TXT", "/c.doc", "/zep", "/sub/d.zep"}) {
      temp.WriteFile(home + file, "");
    }
    built = Snapshot();
  }
  void DeleteSuffixes(const Lines& endings, const char* subfolder) {
    SStringArray suffixes;
    for (const std::string& ending : endings) {
      suffixes.Add(Text(ending));
    }
    DeleteFilesBySuffix(site, &room, &ann, suffixes, subfolder);
  }
  const std::string home = kRoom + "/AnnLee";
};

TEST_F(DeletingFilesTest, FilesOfASuffixGoWithTheLinesOfTheEntrysOwn) {
  const FileLine a{"a.zep", "A", "zep"}, b{"b.TXT", "B", "TXT"};
  const FileLine c{"c.doc", "C", "doc"}, last{"C.doc", "Last", ""};
  const struct {
    Lines suffixes;
    const char* subfolder;
    Lines gone;
    std::vector<FileLine> lines;
  } cases[] = {{{}, "", {}, {a, b, c, last}},
               {{"ZEP", "txt"}, "", {"-" + home + "/a.zep", "-" + home + "/b.TXT"}, {c, last}},
               {{"zep"}, "sub", {"-" + home + "/sub/d.zep"}, {b, c, last}}};
  for (const auto& test : cases) {
    temp.Restore(built);
    DeleteSuffixes(test.suffixes, test.subfolder);
    Lines changed = Changed();
    std::erase(changed, "*" + home + "/index.kiv");
    EXPECT_EQ(changed, test.gone);
    EXPECT_EQ(Index(home), IndexBytes({}, test.lines));
  }
  temp.Restore(built);
  for (const char* file : {"/c.doc", "/nothing.zep"}) {
    SFileSpec spec = Spec(home + file);
    EXPECT_TRUE(DeleteUserFile(site, spec, true));  // with its first line
  }
  EXPECT_EQ(Changed(), Lines({"*" + home + "/index.kiv", "-" + home + "/c.doc"}));
  EXPECT_EQ(Index(home), IndexBytes({}, {a, b, last}));
}

TEST_F(DeletingFilesTest, AFileThatCannotGoLeavesTheIndexAlone) {
  const struct {
    std::string file, busy, why;
    bool lockIt;
  } cases[] = {{home + "/c.doc", home + "/c.doc", "in use files " + home + "/c.doc", false},
               {home + "/c.doc", home + "/index.lok", "locked files " + home + "/index.lok", true},
               {home + "/sub", home + "/zep", "other files " + home + "/sub/", false},
               {"none/c.doc", home + "/zep", "missing files ", false}};
  for (const auto& c : cases) {
    const Holder other(Spec(c.busy));
    SFileSpec spec = Spec(c.file);
    EXPECT_FALSE(DeleteUserFile(site, spec, c.lockIt));
    EXPECT_TRUE(
        site.GetFailure().text.StartsWith("Unable to delete the file you selected. ", true));
    EXPECT_EQ(Why(), c.why);
  }
  const SFileSpec busy = Spec(home + "/c.doc");
  {
    const Holder other(busy);
    DeleteSuffixes({"doc"}, "");
  }
  EXPECT_EQ(Told(),
            "The file '" + Bytes(busy.GetPath()) +
                "' could not be %2d.  Make sure you have the necessary privileges to create, read, "
                "write, modify, and delete files and folders.  Also, make sure nobody has the file "
                "open.|in use files " +
                home + "/c.doc");
  EXPECT_EQ(Changed(), Lines());
}

// Between the list that was read and the change she has gone, and her folder's name is another's.
TEST_F(DeletingTest, NobodyElseIsTouched) {
  temp.WriteFile(kRoom + "/index.kiv",
                 IndexBytes({{"AnnLee", "An", "NLee"}, {"Bob", "Bob", ""}, {"Cid", "Cid", ""}}));
  const auto before = Snapshot();
  const std::string why = "no entry students " + kRoom + "/";
  EXPECT_EQ(WhyNot(DeleteStudent(site, room, ann, students, true, stop)), why);
  EXPECT_EQ(WhyNot(RenameStudent(site, room, ann, students, "Eve", "")), why);
  EXPECT_EQ(WhyNot(MoveStudent(site, room, den, students[0], students, "Ann", "Lee")),
            "missing students " + kRoom + "/AnnLee/");
  EXPECT_EQ(WhyNot(SetAside(site, Spec(kRoom), ListKind::kStudents, ann, Spec("x"))), why);
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
}

// Behind the lock of her folder: she may be elsewhere by now, and somebody else there.
TEST_F(DeletingTest, ALockHoldsTheEntryOnlyWhereItIs) {
  const SFileSpec home = Spec(kRoom + "/AnnLee");
  const auto holds = [&] {
    SLockFile lock(site);
    EXPECT_TRUE(LockIndex(lock, home, ListKind::kStudents, true));
    const bool isHeld = HoldsEntry(site, lock, home, ann, ListKind::kStudents);
    EXPECT_EQ(lock.IsFileOpen(), isHeld);
    return isHeld;
  };
  EXPECT_TRUE(holds());
  temp.WriteFile(kRoom + "/AnnLee/longname.kiv", LongNameBytes("An", "NLee"));
  EXPECT_TRUE(holds());  // a rename that died half way
  temp.WriteFile(kRoom + "/index.kiv", IndexBytes({{"AnnLee", "An", "NLee"}}));
  EXPECT_FALSE(holds());
  EXPECT_EQ(Why(), "no entry students " + kRoom + "/AnnLee/");
  Restore();
  SLockFile lock(site);
  EXPECT_TRUE(LockIndex(lock, home, ListKind::kStudents, true));
  // Where a folder with an open file can be renamed at all.
  if (!RunsUnderWine() &&
      rename(temp.Path(kRoom + "/AnnLee").c_str(), temp.Path("x").c_str()) == 0) {
    temp.WriteFile(kRoom + "/AnnLee/longname.kiv", LongNameBytes("Ann", "Lee"));
    temp.WriteFile(kRoom + "/AnnLee/index.lok", "");
    EXPECT_FALSE(HoldsEntry(site, lock, home, ann, ListKind::kStudents));
  }
}

TEST_F(DeletingTest, WhoIsSetAsideComesBackUnderAFreeName) {
  const auto setAside = [&](const char* to) {
    return SetAside(site, Spec(kRoom), ListKind::kStudents, ann, Spec(to));
  };
  bool isMeant = true;
  const auto putBack = [&](const char* from, SLoginNameObj& entry) {
    const auto ask = [&](const SLoginNameObj& owner) { return isMeant && owner.lastName == "Lee"; };
    return PutBack(site, Spec(kRoom), ListKind::kStudents, Spec(from), ask, entry);
  };
  if (!RunsUnderWine()) {  // where a folder moves though a file in it is open
    {
      const Holder other(Spec(kRoom + "/AnnLee/mark"));
      EXPECT_EQ(WhyNot(setAside("1")).substr(0, 16), "in use students ");
    }
    EXPECT_EQ(Changed(), Lines());
  }
  EXPECT_TRUE(setAside("1"));
  temp.WriteFile(kRoom + "/1/longname.kiv", LongNameBytes("One"));
  SLoginNameObj entry;
  isMeant = false;
  EXPECT_EQ(WhyNot(putBack("1", entry)), "no entry students 1/");
  isMeant = true;
  EXPECT_TRUE(putBack("1", entry));
  EXPECT_EQ(WhyNot(putBack("1", entry)), "no entry students 1") << "by two at once";
  EXPECT_EQ(entry.folderName, "AnnLee");  // the name of her own, where "1" is taken
  EXPECT_EQ(temp.ReadFile(kRoom + "/AnnLee/mark"), "Ann");
  EXPECT_TRUE(setAside("2"));
  temp.WriteFile(kRoom + "/AnnLee/longname.kiv", LongNameBytes("Ann", "Lee"));
  EXPECT_EQ(WhyNot(putBack("2", entry)), "name taken students " + kRoom + "/");
  temp.Remove("2/longname.kiv");
  EXPECT_EQ(WhyNot(putBack("2", entry)), "damaged students 2/longname.kiv");
}

}  // namespace
