#include "store/place/failure_report.h"

#include "records/tutor_options_dob.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

const std::string kNetwork =
    "  Make sure you are connected to the network or device on which the data files are stored.  "
    "Also, make sure nobody has the file open, there is enough disk space, and the necessary "
    "privileges to create, read, write, modify, and delete files and folders are set.";

class FailureReport : public SiteFixture {
 protected:
  FailureReport() { owner.options = &options; }
  // What is said of a file that could not be opened; "?" for an unknown code.
  std::string Told(int16_t code) { return ReportFileFailure(site, code) ? Said() : "?"; }

  STeacherOptionsDob options;
};

TEST_F(FailureReport, KnowsSixCodesAndSaysNothingForAnyOther) {
  UseSite(Kind::kLocal);
  options.CentralFileLocation.value = true;
  const struct {
    int16_t code;
    const char* text;
  } cases[] = {{1000, "Unable to save to the file you selected."},
               {1001, "Unable to open the file you selected."},
               {1002, "Unable to delete the file you selected."},
               {1003, "Unable to rename the file you selected."},
               {1004, "Unable to read the file you selected."},
               {1005, "Unable to write to the file you selected."},
               {999, "?"},
               {1006, "?"}};
  for (const auto& c : cases) {
    EXPECT_EQ(Told(c.code), c.text);
  }
  EXPECT_EQ(owner.heard, Lines());
}

TEST_F(FailureReport, AsksForADiskWhereTheDataIsLocalAndForTheNetworkOnSharedSitesElse) {
  UseSite(Kind::kShared);
  for (const auto& [dialogs, central] :
       {std::pair(false, false), {true, false}, {true, true}, {false, true}}) {
    options.UseSystemIODialogs.value = dialogs;
    options.CentralFileLocation.value = central;
    const bool isLocal = !dialogs && !central;
    EXPECT_EQ(UsesLocalDisk(site), isLocal);
    EXPECT_EQ(Told(kFailRead),
              "Unable to read the file you selected." +
                  (isLocal ? "  Please make sure there is a writable disk in drive .  Also, make "
                             "sure the disk is not full."
                           : kNetwork));
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
