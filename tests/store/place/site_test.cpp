#include "store/place/site.h"

#include "foundation/files/file_failure.h"
#include "records/tutor_options_dob.h"
#include "store/place/failure_report.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class SiteTest : public SiteFixture {};

TEST_F(SiteTest, TheModeTellsWhoSharesItAndFourLatchesTheTeachers) {
  for (const int32_t mode : {-1, 0, 1, 2, 3, 4, 3, 1, 0}) {
    const bool hadTeachers = site.HasTeacherTier();
    site.SetSiteMode(mode);
    EXPECT_EQ(site.GetSiteMode(), mode);
    EXPECT_EQ(site.IsShared(), mode == 1 || mode == 4) << mode;
    EXPECT_EQ(site.IsMultiUser(), mode == 1 || mode == 4 || mode == 3) << mode;
    EXPECT_EQ(site.HasTeacherTier(), mode == 4 || hadTeachers);
  }
  EXPECT_TRUE(site.HasTeacherTier());
  site.ClearTeacherTier();
  EXPECT_FALSE(site.HasTeacherTier());
}

TEST_F(SiteTest, TheSelectedTeacherIsACopyThatGoesWithTheCall) {
  SLoginNameObj hill = Entry("MsHill", "Ms Hill");
  site.SelectTeacher(&hill);
  const SLoginNameObj* const selected = site.GetCurrentTeacher();
  hill.folderName = "changed";
  site.SelectTeacher(selected);
  EXPECT_EQ(site.GetCurrentTeacher(), selected);
  EXPECT_EQ(Selected(), "MsHill");
  site.NoteCountedClasses(SpecOn(temp.Path()));
  site.SelectTeacher(&hill);
  EXPECT_FALSE(site.GetCountedClasses().IsValid());  // another teacher's list is another list
  EXPECT_EQ(Selected(), "changed");
  EXPECT_EQ(Bytes(site.GetDataRoot()), temp.Path());
  site.NoteCountedClasses(SpecOn(temp.Path()));
  site.NoteStoreFailed();
  site.EndCall();
  EXPECT_EQ(Selected(), "-");
  EXPECT_EQ(site.GetOwner(), nullptr);
  EXPECT_EQ(site.GetDataRoot(true), "");
  EXPECT_EQ(site.GetOptionsInForce(), nullptr);
  EXPECT_FALSE(site.GetCountedClasses().IsValid());
  EXPECT_TRUE(site.HasStoreFailed());
}

// What could not be looked at is not told as missing.
TEST_F(SiteTest, AServerThatIsGoneIsNoMissingFolder) {
  FaultFileServices faults(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &faults);
  faults.FailAt(1, SystemError::kDeviceGone);
  SFileSpec folder = Spec("Classes.zep");
  site.NoteFailure(FailureKind::kMissing, folder.GetPath(), ListKind::kClasses);
  EXPECT_EQ(site.GetFailure().system, SystemError::kDeviceGone);
  EXPECT_EQ(Why(), "other classes Classes.zep");
  folder.Set("\\");
  site.NoteFailure(FailureKind::kMissing, folder.GetPath(), ListKind::kClasses);
  EXPECT_EQ(site.GetFailure().kind, FailureKind::kMissing);
}

TEST_F(SiteTest, TheFirstReasonIsKeptAndTheLastText) {
  EXPECT_EQ(Told(), "|");
  site.NoteFailure(FailureKind::kFull, "first", ListKind::kTeachers, SystemError::kOther);
  site.NoteFailure(FailureKind::kLocked, "second", ListKind::kFiles);
  site.TellFailure("one");
  site.TellFailure("two");
  EXPECT_EQ(site.GetFailure().system, SystemError::kOther);
  EXPECT_EQ(Told(), "two|full teachers first");
  EXPECT_EQ(site.GetFailure().text, "");
  for (const auto& [error, why] : {std::pair(SystemError::kSharingViolation, "in use"),
                                   {SystemError::kAccessDenied, "no permission"},
                                   {SystemError::kFileNotFound, "missing"},
                                   {SystemError::kPathNotFound, "missing"},
                                   {SystemError::kDiskFull, "disk full"},
                                   {SystemError::kOther, "other"}}) {
    kivstore::NoteFileFailure("x", error);
    site.NoteFileFailure(ListKind::kStudents);
    EXPECT_EQ(site.GetFailure().system, error);
    EXPECT_EQ(Why(), std::string(why) + " students x");
  }
}

class FailureReport : public SiteFixture {
 protected:
  FailureReport() { owner.options = &options; }

  STeacherOptionsDob options;
};

TEST_F(FailureReport, KnowsSixCodesAndSaysNothingForAnyOther) {
  UseSite(Kind::kLocal);
  options.CentralFileLocation.value = true;
  int16_t code = 999;
  for (const char* const what :
       {"", "save to", "open", "delete", "rename", "read", "write to", ""}) {
    EXPECT_EQ(ReportFileFailure(site, code++), *what != '\0');
    const std::string text = std::string("Unable to ") + what + " the file you selected.";
    EXPECT_EQ(Said(), *what != '\0' ? text : "");
  }
  EXPECT_EQ(owner.heard, Lines());
}

TEST_F(FailureReport, AsksForADiskWhereTheDataIsLocalAndForTheNetworkOnSharedSitesElse) {
  const std::string disk =
      "  Please make sure there is a writable disk in drive .  Also, make sure the disk is not "
      "full.";
  const std::string network =
      "  Make sure you are connected to the network or device on which the data files are stored.  "
      "Also, make sure nobody has the file open, there is enough disk space, and the necessary "
      "privileges to create, read, write, modify, and delete files and folders are set.";
  UseSite(Kind::kShared);
  for (const auto& [dialogs, central] :
       {std::pair(false, false), {true, false}, {true, true}, {false, true}}) {
    options.UseSystemIODialogs.value = dialogs;
    options.CentralFileLocation.value = central;
    EXPECT_EQ(UsesLocalDisk(site), !dialogs && !central);
    EXPECT_TRUE(ReportFileFailure(site, kFailRead));
    EXPECT_EQ(Said(),
              "Unable to read the file you selected." + (!dialogs && !central ? disk : network));
  }
  EXPECT_EQ(owner.heard, Lines{"PrepareMessage"});
  owner.options = nullptr;
  EXPECT_FALSE(UsesLocalDisk(site));
}

TEST_F(FailureReport, AStoreThatIsNotThereIsToldOnceAndADiskIsAskedForEachTime) {
  const std::string opening =
      "Unable to access the data files located in " + temp.Path() + ".  Make sure you are";
  for (const bool first : {true, false}) {
    ReportStoreFailure(site, Spec("Gone"), ListKind::kTeachers);
    EXPECT_EQ(site.GetFailure().text.View().substr(0, first ? opening.size() : 99),
              first ? opening : "");
    EXPECT_EQ(Why(), "missing teachers Gone");
    EXPECT_TRUE(site.HasStoreFailed());
  }
  for (const auto& [root, drive] : {std::pair("B:\\data\\", "B:"), {"/data", ""}}) {
    owner.root = root;
    ReportStoreFailure(site, SFileSpec(), ListKind::kClasses, true);
    EXPECT_EQ(Bytes(site.GetFailure().path), root);
    EXPECT_EQ(Said(), std::string("Please make sure there is a writable disk in drive ") + drive +
                          ".  Also, make sure the disk is not full.");
  }
  EXPECT_EQ(owner.heard, Lines(2, "PrepareMessage"));
}

}  // namespace
