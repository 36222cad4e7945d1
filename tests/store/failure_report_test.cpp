#include "store/place/failure_report.h"

#include <gtest/gtest.h>

#include <string>

#include "records/teacher_options_dob.h"
#include "tests/store/store_scope.h"

using namespace kivstore;

namespace {

std::string gLastMessage;

class ReportFileFailureTest : public testing::Test {
 protected:
  ReportFileFailureTest() {
    gLastMessage.clear();
    gDropMessage = [](const SString& message) { gLastMessage = kivtest::Bytes(message); };
  }
  ~ReportFileFailureTest() override {
    gDropMessage = previous;
    gDataPathOverride = SString();
  }

  void SetOptions(bool systemDialogs, bool central) {
    scope.app.options->UseSystemIODialogs.value = systemDialogs;
    scope.app.options->CentralFileLocation.value = central;
  }

  const DropMessageHook previous = gDropMessage;
  kivtest::AppScope scope;
};

const std::string kNetwork =
    "  Make sure you are connected to the network or device on which the data files are stored.  "
    "Also, make sure nobody has the file open, there is enough disk space, and the necessary "
    "privileges to create, read, write, modify, and delete files and folders are set.";

TEST_F(ReportFileFailureTest, KnowsSixCodesAndSaysNothingForAnyOther) {
  const kivtest::SiteScope site(kSiteLocal);
  SetOptions(false, true);
  const struct {
    int16_t code;
    const char* text;
  } cases[] = {{1000, "Unable to save to the file you selected."},
               {1001, "Unable to open the file you selected."},
               {1002, "Unable to delete the file you selected."},
               {1003, "Unable to rename the file you selected."},
               {1004, "Unable to read the file you selected."},
               {1005, "Unable to write to the file you selected."},
               {999, ""},
               {1006, ""}};
  for (const auto& c : cases) {
    gLastMessage.clear();
    EXPECT_EQ(ReportFileFailure(c.code), *c.text != 0) << c.code;
    EXPECT_EQ(gLastMessage, c.text);
  }
  EXPECT_EQ(scope.app.prepared, 0);
}

TEST_F(ReportFileFailureTest, AsksForADiskWhereTheDataIsLocal) {
  const kivtest::SiteScope site(kSiteShared);
  SetOptions(false, false);
  for (const auto& [path, drive] : {std::pair("A:\\", "A:"), {"", ""}, {"B:\\\\", "B:\\"}}) {
    gDataPathOverride = path;
    EXPECT_TRUE(ReportFileFailure(kFailOpen));
    EXPECT_EQ(gLastMessage,
              "Unable to open the file you selected.  Please make sure there is a writable disk in "
              "drive " +
                  std::string(drive) + ".  Also, make sure the disk is not full.");
  }
  EXPECT_EQ(scope.app.prepared, 3);
}

TEST_F(ReportFileFailureTest, NamesTheNetworkOnSharedSitesElse) {
  const kivtest::SiteScope site(kSiteShared);
  for (const auto& [dialogs, central] : {std::pair(true, false), {true, true}, {false, true}}) {
    SetOptions(dialogs, central);
    EXPECT_TRUE(ReportFileFailure(kFailRead));
    EXPECT_EQ(gLastMessage, "Unable to read the file you selected." + kNetwork);
  }
  gApp = nullptr;
  EXPECT_FALSE(UsesLocalDisk());
}

}  // namespace
