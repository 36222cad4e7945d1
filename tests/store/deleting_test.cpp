#include "store/change/deleting.h"

#include "store/change/deleting_files.h"
#include "tests/store/school_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class DeletingTest : public SchoolFixture {
 protected:
  bool DeleteBob(bool standAlone = true) {
    return DeleteStudent(&room, students.At(1), &students.Array(), standAlone, stop);
  }
  bool DeleteRoom() { return DeleteClass(&room, &classes.Array(), true, stop); }
  // A file of Bob's that another workstation is working on.
  SFileSpec BusyFile() const {
    temp.WriteFile(kRoom + "/Bob/busy.zep", "");
    return Spec(kRoom + "/Bob/busy.zep");
  }

  bool stop = true;
};

TEST_F(DeletingTest, AnEntryGoesWithEverythingBelowIt) {
  EXPECT_TRUE(DeleteBob());
  EXPECT_EQ(temp.List(kRoom), Lines({"AnnLee", "Cid", "index.kiv", "index.lok"}));
  EXPECT_EQ(Index(kRoom), IndexBytes({{"AnnLee", "Ann", "Lee"}, {"Cid", "Cid", ""}}));
  EXPECT_EQ(Described(students.Array()), Lines({"AnnLee:Ann:Lee", "Cid:Cid:"}));
  EXPECT_TRUE(DeleteRoom());
  EXPECT_EQ(temp.List(kHill), Lines({"Den", "index.kiv", "index.lok"}));
  EXPECT_EQ(Index(kHill), IndexBytes({{"Den", "Den", ""}}));
  EXPECT_EQ(Described(classes.Array()), Lines({"Den:Den:"}));
  EXPECT_TRUE(DeleteTeacher(&hill, &teachers.Array()));
  EXPECT_EQ(temp.List("Classes.zep"), Lines({"Oak", "index.kiv", "index.lok"}));
  EXPECT_EQ(Index("Classes.zep"), IndexBytes({{"Oak", "Mr Oak", ""}}));
  EXPECT_EQ(Described(teachers.Array()), Lines({"Oak:Mr Oak:"}));
  EXPECT_TRUE(Dropped().empty());
}

TEST_F(DeletingTest, AStudentInUseStaysAndOneWhoIsGoneAlreadyIsASuccess) {
  {
    const Holder other(Spec(kRoom + "/Bob/index.lok"));
    EXPECT_FALSE(DeleteBob());
    EXPECT_FALSE(stop);
  }
  EXPECT_EQ(Changed(), Lines());
  store.RemoveFolder(kRoom + "/Bob");
  const auto before = store.Snapshot();
  EXPECT_TRUE(DeleteBob());
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
  EXPECT_EQ(students.GetSize(), 3);
}

TEST_F(DeletingTest, NobodyIsDeletedOutsideTheList) {
  for (const char* name : {"", "..", "..\\..\\Den", "."}) {
    const SLoginNameObj hostile = Entry(name, "Ann");
    EXPECT_FALSE(DeleteStudent(&room, &hostile, &students.Array(), true, stop)) << name;
    EXPECT_FALSE(DeleteClass(&hostile, &classes.Array(), true, stop)) << name;
    EXPECT_FALSE(DeleteTeacher(&hostile, &teachers.Array())) << name;
  }
  EXPECT_EQ(Changed(), Lines());
}

TEST_F(DeletingTest, AFolderThatCannotGoIsReportedAndStopsAGroup) {
  const Holder other(BusyFile());
  for (const bool standAlone : {true, false}) {
    Dropped().clear();
    temp.WriteFile(kRoom + "/Bob/index.lok", "");  // the first try takes it along
    EXPECT_FALSE(DeleteBob(standAlone));
    EXPECT_EQ(stop, !standAlone);
    EXPECT_EQ(Dropped(), Lines({"Unable to delete the student Bob because the student folder " +
                                Bytes(Spec(kRoom + "/Bob").GetPath()) +
                                " could not be deleted.  Make sure you have the necessary "
                                "privileges to create, read, write, modify, and delete files and "
                                "folders.  Also, make sure nobody is accessing the folder."}));
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
  EXPECT_FALSE(stop);
  EXPECT_EQ(temp.List(kRoom), Lines({"Bob", "index.kiv", "index.lok"}));
  EXPECT_EQ(Index(kRoom), index);
  EXPECT_EQ(classes.GetSize(), 2);
  EXPECT_FALSE(DeleteTeacher(&hill, &teachers.Array()));
  EXPECT_EQ(teachers.GetSize(), 2);
  EXPECT_EQ(temp.List(kHill), Lines({"Room", "index.kiv", "index.lok"}));
  ASSERT_EQ(Dropped().size(), 1u);
  EXPECT_EQ(Dropped()[0].substr(0, 41), "Unable to delete the teacher Ms Hill beca");
}

TEST_F(DeletingTest, ASelectionThatWasThereNamesTheDeletedTeacherAfterwards) {
  EXPECT_TRUE(DeleteTeacher(&oak, &teachers.Array()));
  EXPECT_EQ(gCurrentTeacher->folderName, "Oak");
  SelectTeacher(nullptr);
  EXPECT_TRUE(DeleteTeacher(&hill, &teachers.Array()));
  EXPECT_EQ(gCurrentTeacher, nullptr);
}

TEST_F(DeletingTest, ATeacherWithoutClassesGoesAtOnceOnSharedSitesOnly) {
  {
    const SiteScope local(kSiteLocal);
    EXPECT_FALSE(DeleteTeacher(&hill, &teachers.Array()));
    const Holder other(Spec(kHill + "/index.lok"));
    EXPECT_TRUE(DeleteRoom());
  }
  store.RemoveFolder(kHill);
  EXPECT_TRUE(DeleteTeacher(&hill, &teachers.Array()));
  EXPECT_FALSE(temp.Exists("Classes.zep/aHill"));
}

class DeletingFilesTest : public SchoolFixture {
 protected:
  void SetUp() override {
    store.AddFileLine(home, {"a.zep", "A", "zep"});
    store.AddFileLine(home, {"b.TXT", "B", "TXT"});
    store.AddFileLine(home, {"c.doc", "C", "doc"});
    store.Finish();
    for (const char* file : {"/a.zep", "/b.TXT", "/c.doc", "/zep", "/sub/d.zep"}) {
      temp.WriteFile(home + file, "");
    }
    built = store.Snapshot();
  }
  void DeleteSuffixes(const std::vector<const char*>& endings, const char* subfolder) const {
    SStringArray suffixes;
    for (const char* ending : endings) {
      suffixes.Add(ending);
    }
    DeleteFilesBySuffix(&room, &ann, suffixes, subfolder);
  }
  const std::string home = kRoom + "/AnnLee";
};

TEST_F(DeletingFilesTest, FilesOfASuffixGoWithTheirLines) {
  DeleteSuffixes({}, "");
  EXPECT_EQ(Changed(), Lines());
  DeleteSuffixes({"ZEP", "txt"}, "");
  EXPECT_EQ(Changed(), Lines({"*" + home + "/index.kiv", "-" + home + "/a.zep",
                              "-" + home + "/autogame.zep", "-" + home + "/b.TXT"}));
  EXPECT_EQ(Index(home), IndexBytes({}, {{"c.doc", "C", "doc"}}));
}

TEST_F(DeletingFilesTest, FilesOfAFolderInsideGoAndTheLinesOfTheEntrysOwn) {
  DeleteSuffixes({"zep"}, "sub");
  EXPECT_EQ(Changed(), Lines({"*" + home + "/index.kiv", "-" + home + "/sub/d.zep"}));
  EXPECT_EQ(Index(home), IndexBytes({}, {{"b.TXT", "B", "TXT"}, {"c.doc", "C", "doc"}}));
}

TEST_F(DeletingFilesTest, OneFileGoesWithItsLine) {
  for (const char* file : {"/B.txt", "/nothing.zep"}) {
    SFileSpec spec = Spec(home + file);
    EXPECT_TRUE(DeleteUserFile(spec, true));
  }
  EXPECT_EQ(Changed(), Lines({"*" + home + "/index.kiv", "-" + home + "/b.TXT"}));
  EXPECT_EQ(Index(home), IndexBytes({}, {{"a.zep", "A", "zep"}, {"c.doc", "C", "doc"}}));
}

TEST_F(DeletingFilesTest, AFileThatCannotGoLeavesTheIndexAlone) {
  SFileSpec busy = Spec(home + "/c.doc"), aFolder = Spec(home + "/sub"), nowhere;
  {
    const Holder other(busy);
    EXPECT_FALSE(DeleteUserFile(busy, false));
    Dropped().clear();
    DeleteSuffixes({"doc"}, "");
    EXPECT_EQ(Dropped(), Lines({"The file '" + Bytes(busy.GetPath()) +
                                "' could not be %2d.  Make sure you have the necessary privileges "
                                "to create, read, write, modify, and delete files and folders.  "
                                "Also, make sure nobody has the file open."}));
  }
  EXPECT_FALSE(DeleteUserFile(aFolder, false));
  EXPECT_FALSE(DeleteUserFile(nowhere, false));
  {
    const Holder other(Spec(home + "/index.lok"));
    EXPECT_FALSE(DeleteUserFile(busy, true));
  }
  EXPECT_EQ(Changed(), Lines());
}

}  // namespace
