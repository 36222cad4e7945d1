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
  std::string Classes() const {
    SFileSpec spec;
    ClassesFolder(site, spec);
    return PlaceAndKind(spec);
  }
};

TEST_F(DefaultEntriesTest, AnEmptyListGetsTheDefaultClassOrItsLineAlone) {
  for (const Kind kind : {Kind::kLocal, Kind::kShared}) {
    Build(kind);
    EXPECT_FALSE(PrepareClassList(site));
    EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), kDefaultLine);
    EXPECT_FALSE(temp.Exists("Classes.zep/Default"));
    EXPECT_TRUE(site.HasStoreFailed());
    EXPECT_EQ(Why(), "no permission classes Classes.zep/Default");

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

TEST_F(DefaultEntriesTest, AListThatWasCountedIsNotLookedAtAgain) {
  StoreBuilder store = Build(Kind::kTeachers);
  store.AddClass(store.AddTeacher("Ms Hill", "aHill"), "Room");
  store.AddClass(store.AddTeacher("Mr Oak", "Oak"), "Yard");
  store.Finish();
  const SLoginNameObj oak = Entry("Oak", "Mr Oak");
  FaultFileServices services(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &services);
  for (const bool first : {true, false}) {
    services.ClearLog();
    EXPECT_TRUE(PrepareClassList(site));
    EXPECT_EQ(services.Count() > 0, first);
  }
  EXPECT_EQ(Selected(), "aHill");
  site.SelectTeacher(&oak);
  EXPECT_TRUE(PrepareClassList(site));
  EXPECT_GT(services.Count(), 0);
}

TEST_F(DefaultEntriesTest, TheFirstTeacherIsSelectedWhereNoneIs) {
  StoreBuilder store = Build(Kind::kTeachers);
  store.AddTeacher("Aaron", "Zed");
  const std::string abe = store.AddTeacher("Zoe", "Abe");
  store.Finish();
  PrepareClassList(site);
  EXPECT_EQ(Selected(), "Abe");
  EXPECT_EQ(Classes(), "folder Classes.zep/Abe/Classes.zep/");
  const SLoginNameObj zed = Entry("Zed", "Aaron");
  site.SelectTeacher(&zed);
  PrepareClassList(site);
  EXPECT_EQ(Selected(), "Zed");

  // Where the folders of all are gone, nobody is added.
  site.SelectTeacher(nullptr);
  store.RemoveFolder(abe);
  store.RemoveFolder("Classes.zep/Zed");
  const CreatingScope creating;
  EXPECT_FALSE(PrepareClassList(site));
  EXPECT_EQ(Selected(), "-");
  EXPECT_EQ(temp.List("Classes.zep"), Lines({"index.kiv", "index.lok"}));
}

TEST_F(DefaultEntriesTest, AStoreWithoutTeachersGetsTheDefaultTeacher) {
  Build(Kind::kTeachers);
  EXPECT_FALSE(PrepareClassList(site));
  EXPECT_EQ(Selected(), "TDefault");
  EXPECT_EQ(Classes(), "none Classes.zep/TDefault");

  Build(Kind::kTeachers);
  const CreatingScope creating;
  EXPECT_TRUE(PrepareClassList(site));
  EXPECT_EQ(Classes(), "folder Classes.zep/TDefault/Classes.zep/");
  EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), IndexBytes({{"TDefault", "TDefault", ""}}));
  EXPECT_TRUE(temp.Exists("Classes.zep/TDefault/Classes.zep/Default/Students"));
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
    SLoginNameObj room = Entry("Room12", "Room 12"), lost = Entry("Lost", "Room 7");
    EXPECT_TRUE(PrepareStudentList(site, room));
    store.RemoveFolder(rooms);
    const auto before = Snapshot();
    SPlatformOverride<IFileServices> installed(Platform().files,
                                               makes ? &CreatingFileServices() : Platform().files);
    EXPECT_EQ(PrepareStudentList(site, room), makes);
    EXPECT_EQ(Why(), makes ? "" : "missing students " + rooms);
    EXPECT_EQ(Changes(before, Snapshot()), makes ? Lines{"+" + rooms} : Lines());
    EXPECT_EQ(PrepareStudentList(site, lost), makes);
    EXPECT_EQ(lost.folderName, makes ? "Room7" : "Lost");
    EXPECT_EQ(Why(), makes ? "" : "no permission classes Classes.zep/Room7");
    EXPECT_EQ(temp.Exists("Classes.zep/Room7/Students"), makes);
    SLoginNameObj hostile = Entry("..", "Room 8");
    EXPECT_EQ(WhyNot(PrepareStudentList(site, hostile)),
              "missing students " + WithSlashes(temp.Path()));
    EXPECT_FALSE(temp.Exists("Classes.zep/Room8"));
  }
}

TEST_F(DefaultEntriesTest, ARootThatIsNotThereIsToldOnce) {
  temp.MakeFolder("nowhere/Classes/Room12/Students");  // the plain stem is not looked at
  owner.root = temp.Path("nowhere");
  const struct {
    Kind kind;
    bool (*prepare)(SSite&);
    std::string why;
  } cases[] = {{Kind::kLocal, [](SSite& site) { return PrepareClassList(site); }, "classes"},
               {Kind::kTeachers, [](SSite& site) { return PrepareTeacherList(site); }, "teachers"},
               {Kind::kLocal, [](SSite& site) { return PrepareClassList(site, true); }, "classes"}};
  for (const auto& c : cases) {
    UseSite(c.kind);
    EXPECT_FALSE(c.prepare(site));
    EXPECT_TRUE(site.HasStoreFailed());
    EXPECT_EQ(site.GetFailure().text.IsEmpty(), &c == &cases[1]);
    EXPECT_EQ(Why(), "missing " + c.why + " nowhere/Classes.zep");
  }
  EXPECT_EQ(owner.heard, Lines{"PrepareMessage"});
}

}  // namespace
