#include "store/change/default_entries.h"

#include "store/place/placing.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

const std::string kDefaultLine = IndexBytes({{"Default", "Default", ""}});

class DefaultEntriesTest : public SiteFixture {
 protected:
  StoreBuilder Build(Kind kind) {
    UseSite(kind);
    site.EndCall();
    site.SetOwner(&owner);
    temp.Remove("Classes.zep");
    StoreBuilder store(temp.Path(), kind);
    store.Finish();
    return store;
  }
  // With the selected teacher.
  std::string Classes() const {
    SFileSpec spec;
    ClassesFolder(site, spec);
    return Selected() + " " + PlaceAndKind(spec);
  }
};

TEST_F(DefaultEntriesTest, AnEmptyListGetsTheDefaultClassOrItsLineAlone) {
  for (const Kind kind : {Kind::kLocal, Kind::kShared}) {
    Build(kind);
    EXPECT_FALSE(PrepareClassList(site));
    EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), kDefaultLine);
    EXPECT_FALSE(temp.Exists("Classes.zep/Default"));
    EXPECT_TRUE(site.HasStoreFailed());
    EXPECT_EQ(Why(), "no permission classes Default.new");

    Build(kind);
    const CreatingScope creating;
    EXPECT_TRUE(PrepareTeacherList(site));  // without teachers the same
    EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), kDefaultLine);
    EXPECT_EQ(temp.ReadFile("Classes.zep/Default/longname.kiv"), LongNameBytes("Default"));
    EXPECT_TRUE(temp.Exists("Classes.zep/Default/Students"));
    EXPECT_EQ(Why(), "");
  }
}

TEST_F(DefaultEntriesTest, AListIsLeftAloneWhereItMayHaveEntries) {
  const CreatingScope creating;
  Build(Kind::kShared);
  {
    const Holder other(Spec("Classes.zep/index.lok"));
    EXPECT_TRUE(PrepareClassList(site));
    EXPECT_EQ(Why(), "locked classes Classes.zep/index.lok");
    EXPECT_FALSE(site.GetCountedClasses().IsValid());
  }
  EXPECT_EQ(temp.List("Classes.zep"), Lines({"index.kiv", "index.lok"}));
  temp.MakeFolder("Classes.zep/Default");
  EXPECT_TRUE(PrepareClassList(site));
  EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), IndexBytes({}));
  EXPECT_FALSE(site.HasStoreFailed());
  temp.Remove("Classes.zep/Default");
  temp.WriteFile("Classes.zep/index.kiv", IndexBytes({{"a", "One", ""}}));
  EXPECT_TRUE(PrepareClassList(site));
  EXPECT_FALSE(temp.Exists("Classes.zep/Default"));
  site.ForgetCountedClasses();
  site.SetSiteMode(0);  // for one user nothing is counted
  EXPECT_TRUE(PrepareClassList(site));
  EXPECT_TRUE(temp.Exists("Classes.zep/Default"));
}

TEST_F(DefaultEntriesTest, TheFirstTeacherIsSelectedAndAListThatWasCountedIsNotLookedAtAgain) {
  StoreBuilder store = Build(Kind::kTeachers);
  const std::string zed = store.AddTeacher("Aaron", "Zed"), abe = store.AddTeacher("Zoe", "Abe");
  store.AddClass(zed, "Room");
  store.AddClass(abe, "Yard");
  store.Finish();
  const SLoginNameObj aaron = Entry("Zed", "Aaron");
  {
    FaultFileServices services(*Platform().files);
    const SPlatformOverride<IFileServices> installed(Platform().files, &services);
    EXPECT_TRUE(PrepareClassList(site));
    EXPECT_EQ(Classes(), "Abe folder Classes.zep/Abe/Classes.zep/");
    services.ClearLog();
    EXPECT_TRUE(PrepareClassList(site));
    EXPECT_EQ(services.Count(), 0);
    site.SelectTeacher(&aaron);
    EXPECT_TRUE(PrepareClassList(site));
    EXPECT_GT(services.Count(), 0);
    EXPECT_EQ(Selected(), "Zed");
  }
  // Where the folders of all are gone, nobody is added.
  site.SelectTeacher(nullptr);
  store.RemoveFolder(abe);
  store.RemoveFolder(zed);
  const CreatingScope creating;
  EXPECT_FALSE(PrepareClassList(site));
  EXPECT_EQ(Selected(), "-");
  EXPECT_EQ(temp.List("Classes.zep"), Lines({"index.kiv", "index.lok"}));
}

TEST_F(DefaultEntriesTest, AStoreWithoutTeachersGetsTheDefaultTeacher) {
  Build(Kind::kTeachers);
  EXPECT_FALSE(PrepareClassList(site));
  EXPECT_EQ(Classes(), "TDefault none Classes.zep/TDefault");

  Build(Kind::kTeachers);
  const CreatingScope creating;
  EXPECT_TRUE(PrepareClassList(site));
  EXPECT_EQ(Classes(), "TDefault folder Classes.zep/TDefault/Classes.zep/");
  EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), IndexBytes({{"TDefault", "TDefault", ""}}));
  EXPECT_TRUE(temp.Exists("Classes.zep/TDefault/Classes.zep/Default/Students"));
  // Somebody has deleted the teacher meanwhile.
  temp.Remove("Classes.zep/TDefault");
  site.ForgetCountedClasses();
  EXPECT_FALSE(PrepareClassList(site));
  EXPECT_FALSE(temp.Exists("Classes.zep/TDefault"));
  // A whole store out of nothing.
  temp.Remove("Classes.zep");
  site.SelectTeacher(nullptr);
  EXPECT_TRUE(PrepareTeacherList(site));
  EXPECT_EQ(temp.List("Classes.zep"), Lines());
}

TEST_F(DefaultEntriesTest, WhatIsLostIsPutBackWhereFilesAreMade) {
  for (const bool makes : {false, true}) {
    StoreBuilder store = Build(Kind::kShared);
    const std::string rooms = store.AddClass("", "Room 12", "Room12") + "/Students";
    store.Finish();
    SLoginNameObj room = Entry("Room12", "Room 12"), lost = Entry("Lost", "Room 7"),
                  hostile = Entry("..", "Room 8"), deleted = Entry("Room9", "Room 9");
    EXPECT_TRUE(PrepareStudentList(site, room));
    store.RemoveFolder(rooms);
    temp.WriteFile("Classes.zep/index.kiv",
                   IndexBytes({{"Room12", "Room 12", ""}, {"Lost", "Room 7", ""}}));
    const auto before = Snapshot();
    SPlatformOverride<IFileServices> installed(Platform().files,
                                               makes ? &CreatingFileServices() : Platform().files);
    EXPECT_EQ(PrepareStudentList(site, room), makes);
    EXPECT_EQ(Why(), makes ? "" : "missing students " + rooms);
    EXPECT_EQ(Changes(before, Snapshot()), makes ? Lines{"+" + rooms} : Lines());
    EXPECT_EQ(PrepareStudentList(site, lost), makes);
    EXPECT_EQ(lost.folderName, makes ? "Room7" : "Lost");
    EXPECT_EQ(Why(), makes ? "" : "no permission classes Room7.new");
    EXPECT_EQ(temp.Exists("Classes.zep/Room7/Students"), makes);
    EXPECT_EQ(WhyNot(PrepareStudentList(site, hostile)),
              "missing students " + WithSlashes(temp.Path()));
    EXPECT_FALSE(PrepareStudentList(site, deleted));
    Why();
    EXPECT_FALSE(temp.Exists("Classes.zep/Room8") || temp.Exists("Classes.zep/Room9"));
  }
}

TEST_F(DefaultEntriesTest, ARootThatIsNotThereIsToldOnce) {
  temp.MakeFolder("nowhere/Classes/Room12/Students");  // the plain stem is not looked at
  owner.root = temp.Path("nowhere");
  UseSite(Kind::kLocal);
  EXPECT_FALSE(PrepareClassList(site));
  EXPECT_TRUE(Told().ends_with(".|missing classes nowhere/Classes.zep"));
  EXPECT_TRUE(site.HasStoreFailed());
  UseSite(Kind::kTeachers);
  EXPECT_FALSE(PrepareTeacherList(site));
  EXPECT_EQ(Told(), "|missing teachers nowhere/Classes.zep");
  UseSite(Kind::kLocal);
  EXPECT_FALSE(PrepareClassList(site, true));
  EXPECT_TRUE(Told().ends_with(".|missing classes nowhere/Classes.zep"));
  EXPECT_EQ(owner.heard, Lines{"PrepareMessage"});
}

}  // namespace
