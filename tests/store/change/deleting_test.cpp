#include "store/change/deleting.h"

#include "store/change/deleting_files.h"
#include "tests/support/school_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

const std::string kPrivileges =
    " could not be deleted.  Make sure you have the necessary privileges to create, read, write, "
    "modify, and delete files and folders.  Also, make sure nobody is accessing the folder.";

class DeletingTest : public SchoolFixture {
 public:
  bool DeleteBob(bool standAlone = true) {
    return DeleteStudent(site, room, students[1], students, standAlone, stop);
  }
  bool DeleteRoom() { return DeleteClass(site, room, classes, true, stop); }
  bool DeleteHill() { return DeleteTeacher(site, hill, teachers); }
};

TEST_F(DeletingTest, AnEntryGoesWithEverythingBelowItAndWaitsForNoLockOfItsOwn) {
  NoteCounted();
  EXPECT_TRUE(DeleteBob());
  EXPECT_FALSE(site.GetCountedClasses().IsValid());
  EXPECT_EQ(temp.List(kRoom), Lines({"AnnLee", "Cid", "index.kiv", "index.lok"}));
  EXPECT_EQ(Index(kRoom), IndexBytes({{"AnnLee", "Ann", "Lee"}, {"Cid", "Cid", ""}}));
  EXPECT_EQ(Described(students), Lines({"AnnLee:Ann:Lee", "Cid:Cid:"}));
  EXPECT_TRUE(DeleteRoom());
  EXPECT_EQ(temp.List(kHill), Lines({"Den", "index.kiv", "index.lok"}));
  EXPECT_EQ(Index(kHill), IndexBytes({{"Den", "Den", ""}}));
  EXPECT_EQ(Described(classes), Lines({"Den:Den:"}));
  EXPECT_TRUE(DeleteHill());
  EXPECT_EQ(temp.List(kTop), Lines({"Oak", "index.kiv", "index.lok"}));
  EXPECT_EQ(Index(kTop), IndexBytes({{"Oak", "Mr Oak", ""}}));
  EXPECT_EQ(Described(teachers), Lines({"Oak:Mr Oak:"}));
  EXPECT_EQ(Why(), "");
  EXPECT_EQ(clock.TicksCalls(), 0);
}

TEST_F(DeletingTest, AnOldListTakesOutItsOwnLineOnly) {
  temp.WriteFile(kRoom + "/index.kiv",
                 IndexBytes({{"AnnLee", "Anna", "Leigh"}, {"Bob", "Bob", ""}, {"Dan", "Dan", ""}}));
  EXPECT_TRUE(DeleteBob());
  EXPECT_EQ(Index(kRoom),
            IndexBytes({{"AnnLee", "Anna", "Leigh"}, {"Cid", "Cid", ""}, {"Dan", "Dan", ""}}));
}

TEST_F(DeletingTest, AStudentWhoIsGoneAlreadyIsASuccess) {
  store.RemoveFolder(kRoom + "/Bob");
  const auto before = Snapshot();
  EXPECT_TRUE(DeleteBob());
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  EXPECT_EQ(students.GetSize(), 3);
  temp.WriteFile(kRoom + "/Bob", "a file in the way");
  EXPECT_TRUE(DeleteBob());
  EXPECT_EQ(Why(), "");
}

TEST_F(DeletingTest, NobodyIsDeletedOutsideTheList) {
  for (const char* name : {"", "..", "..\\..\\Den", "."}) {
    const SLoginNameObj hostile = Entry(name, "Ann");
    EXPECT_FALSE(DeleteStudent(site, room, hostile, students, true, stop)) << name;
    EXPECT_FALSE(DeleteClass(site, hostile, classes, true, stop)) << name;
    EXPECT_FALSE(DeleteTeacher(site, hostile, teachers)) << name;
  }
  EXPECT_EQ(Why(), "no entry students ");
  EXPECT_EQ(WhyNot(DeleteClass(site, Entry("Gone", "Gone"), classes, true, stop)),
            "no entry classes " + kHill + "/Gone");
  EXPECT_EQ(WhyNot(DeleteTeacher(site, Entry("Gone", "Gone"), teachers)),
            "no entry teachers " + kTop + "/Gone");
  EXPECT_EQ(Changed(), Lines());
}

TEST_F(DeletingTest, AFolderThatCannotGoIsReportedAndStopsAGroup) {
  const Holder other(Spec(kRoom + "/Bob/mark"));
  for (const bool standAlone : {true, false}) {
    temp.WriteFile(kRoom + "/Bob/index.lok", "");  // the first try takes it along
    EXPECT_FALSE(DeleteBob(standAlone));
    EXPECT_EQ(stop, !standAlone);
    EXPECT_EQ(Bytes(site.GetFailure().text),
              "Unable to delete the student Bob because the student folder " +
                  Bytes(Spec(kRoom + "/Bob").GetPath()) + kPrivileges);
    EXPECT_EQ(Why(), "in use students " + kRoom + "/Bob/mark");
  }
  temp.WriteFile(kRoom + "/Bob/index.lok", "");
  EXPECT_FALSE(DeleteRoom());
  EXPECT_TRUE(stop);
  EXPECT_FALSE(temp.Exists(kRoom + "/AnnLee"));
  EXPECT_TRUE(temp.Exists(kRoom + "/Cid"));
}

TEST_F(DeletingTest, OneStudentInUseKeepsClassAndTeacherButNotTheOthers) {
  const std::string index = Index(kRoom);
  const Holder other(Spec(kRoom + "/Bob/index.lok"));
  EXPECT_FALSE(DeleteRoom());
  EXPECT_EQ(WhyNot(stop), "locked students " + kRoom + "/Bob/index.lok");
  EXPECT_EQ(temp.List(kRoom), Lines({"Bob", "index.kiv", "index.lok"}));
  EXPECT_EQ(Index(kRoom), index);
  EXPECT_EQ(classes.GetSize(), 2);
  EXPECT_FALSE(DeleteHill());
  EXPECT_EQ(teachers.GetSize(), 2);
  EXPECT_EQ(temp.List(kHill), Lines({"Room", "index.kiv", "index.lok"}));
  EXPECT_EQ(Bytes(site.GetFailure().text),
            "Unable to delete the teacher Ms Hill because the teacher folder " +
                Bytes(Spec(kHill).GetPath()) + kPrivileges);
  EXPECT_EQ(Why(), "locked students " + kRoom + "/Bob/index.lok");
}

TEST_F(DeletingTest, AClassThatCannotGoIsReported) {
  temp.WriteFile(kHill + "/Den/busy", "");
  const Holder other(Spec(kHill + "/Den/busy"));
  EXPECT_FALSE(DeleteClass(site, den, classes, true, stop));
  EXPECT_EQ(Bytes(site.GetFailure().text),
            "Unable to delete the class Den because the class folder " +
                Bytes(Spec(kHill + "/Den").GetPath()) + kPrivileges);
  EXPECT_EQ(Why(), "in use classes " + kHill + "/Den/busy");
  temp.WriteFile(kDen + "/index.lok", "");
  EXPECT_FALSE(DeleteHill());
  EXPECT_TRUE(temp.Exists(kHill + "/Room"));  // a folder that stays ends the group
}

TEST_F(DeletingTest, ASelectionThatWasThereNamesTheDeletedTeacherAfterwards) {
  EXPECT_TRUE(DeleteTeacher(site, oak, teachers));
  EXPECT_EQ(Selected(), "Oak");
  site.SelectTeacher(nullptr);
  EXPECT_TRUE(DeleteHill());
  EXPECT_EQ(Selected(), "-");
}

TEST_F(DeletingTest, ATeacherWithoutClassesGoesAtOnceOnSharedSitesOnly) {
  site.SetSiteMode(kSiteLocal);
  EXPECT_FALSE(DeleteHill());
  EXPECT_EQ(Changed(), Lines());
  {
    const Holder other(Spec(kHill + "/index.lok"));
    EXPECT_TRUE(DeleteRoom());
  }
  site.SetSiteMode(kSiteSharedTeachers);
  store.RemoveFolder(kHill);
  EXPECT_TRUE(DeleteHill());
  EXPECT_FALSE(temp.Exists("Classes.zep/aHill"));
}

// The lost class comes back ahead of it, and nobody is in it.
TEST_F(DeletingTest, AStudentOfALostClassIsGoneAlready) {
  store.RemoveFolder(kHill + "/Room");
  EXPECT_FALSE(DeleteBob());
  const CreatingScope creating;
  EXPECT_TRUE(DeleteBob());
  EXPECT_TRUE(temp.Exists(kRoom));
}

class DeletingFilesTest : public SchoolFixture {
 protected:
  DeletingFilesTest() {
    store.AddFileLine(home, {"a.zep", "A", "zep"});
    store.AddFileLine(home, {"b.TXT", "B", "TXT"});
    store.AddFileLine(home, {"c.doc", "C", "doc"});
    store.Finish();
    for (const char* file : {"/a.zep", "/b.TXT", "/c.doc", "/zep", "/sub/d.zep"}) {
      temp.WriteFile(home + file, "");
    }
    built = Snapshot();
  }
  void DeleteSuffixes(const std::vector<const char*>& endings, const char* subfolder) {
    SStringArray suffixes;
    for (const char* ending : endings) {
      suffixes.Add(ending);
    }
    DeleteFilesBySuffix(site, &room, &ann, suffixes, subfolder);
  }
  const std::string home = kRoom + "/AnnLee";
};

TEST_F(DeletingFilesTest, FilesOfASuffixGoWithTheirLines) {
  DeleteSuffixes({}, "");
  EXPECT_EQ(Changed(), Lines());
  DeleteSuffixes({"ZEP", "txt"}, "");
  EXPECT_EQ(Changed(),
            Lines({"*" + home + "/index.kiv", "-" + home + "/a.zep", "-" + home + "/b.TXT"}));
  EXPECT_EQ(Index(home), IndexBytes({}, {{"c.doc", "C", "doc"}}));
}

TEST_F(DeletingFilesTest, FilesOfAFolderInsideGoAndTheLinesOfTheEntrysOwn) {
  DeleteSuffixes({"zep"}, "sub");
  EXPECT_EQ(Changed(), Lines({"*" + home + "/index.kiv", "-" + home + "/sub/d.zep"}));
  EXPECT_EQ(Index(home), IndexBytes({}, {{"b.TXT", "B", "TXT"}, {"c.doc", "C", "doc"}}));
}

TEST_F(DeletingFilesTest, OneFileGoesWithItsFirstLine) {
  temp.WriteFile(
      home + "/index.kiv",
      IndexBytes({}, {{"a.zep", "A", "zep"}, {"B.txt", "B", "txt"}, {"b.txt", "C", ""}}));
  for (const char* file : {"/B.txt", "/nothing.zep"}) {
    SFileSpec spec = Spec(home + file);
    EXPECT_TRUE(DeleteUserFile(site, spec, true));
  }
  EXPECT_EQ(Changed(), Lines({"*" + home + "/index.kiv", "-" + home + "/b.TXT"}));
  EXPECT_EQ(Index(home), IndexBytes({}, {{"a.zep", "A", "zep"}, {"b.txt", "C", ""}}));
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
    EXPECT_EQ(site.GetFailure().text.View().substr(0, 40),
              "Unable to delete the file you selected. ");
    EXPECT_EQ(Why(), c.why);
  }
  const SFileSpec busy = Spec(home + "/c.doc");
  {
    const Holder other(busy);
    DeleteSuffixes({"doc"}, "");
  }
  EXPECT_EQ(Bytes(site.GetFailure().text),
            "The file '" + Bytes(busy.GetPath()) +
                "' could not be %2d.  Make sure you have the necessary privileges to create, read, "
                "write, modify, and delete files and folders.  Also, make sure nobody has the file "
                "open.");
  EXPECT_EQ(Why(), "in use files " + home + "/c.doc");
  EXPECT_EQ(Changed(), Lines());
}

}  // namespace
