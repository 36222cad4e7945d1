#include "foundation/site_mode.h"

#include <gtest/gtest.h>

namespace kivstore {
namespace {

TEST(SiteMode, SharedIsOneOrFourAndLocalIsMultiUserToo) {
  const int32_t before = gSiteMode;
  for (const int32_t mode : {-1, 0, 1, 2, 3, 4}) {
    SetSiteMode(mode);
    EXPECT_EQ(IsSharedSite(), mode == 1 || mode == 4) << mode;
    EXPECT_EQ(IsMultiUserSite(), mode == 1 || mode == 4 || mode == 3) << mode;
  }
  SetSiteMode(before);
}

TEST(SiteMode, AVersionIsPackedAsDecimalNibbles) {
  const struct {
    const char* text;
    uint32_t packed;
    int major, minor;
  } cases[] = {
      {"0.01", 0x00010000, 0, 1},
      {"12.34", 0x12340000, 12, 34},
      {"1.5", 0x01050000, 1, 5},
      {" \t\r\n3", 0x03000000, 3, 0},
      {"7.", 0x07000000, 7, 0},
      {"99.999", 0x99990000, 99, 99},
      {"v1.2", 0, 0, 0},
      {".5", 0, 0, 0},
      {"", 0, 0, 0},
      {nullptr, 0, 0, 0},
  };
  for (const auto& c : cases) {
    const uint32_t packed = PackVersion(c.text);
    EXPECT_EQ(packed, c.packed) << (c.text != nullptr ? c.text : "null");
    EXPECT_EQ(VersionMajor(packed), c.major);
    EXPECT_EQ(VersionMinor(packed), c.minor);
  }
  EXPECT_EQ(gFileVersion, 0x00010000u);
}

TEST(SiteMode, TheSelectedTeacherIsACopy) {
  SelectTeacher(nullptr);
  SLoginNameObj hill("Ms Hill", "", "MsHill");
  SelectTeacher(&hill);
  ASSERT_NE(gCurrentTeacher, nullptr);
  EXPECT_NE(gCurrentTeacher, &hill);
  hill.firstName = "changed";
  SelectTeacher(gCurrentTeacher);
  EXPECT_STREQ(gCurrentTeacher->firstName.GetText(), "Ms Hill");
  EXPECT_STREQ(gCurrentTeacher->folderName.GetText(), "MsHill");
  SelectTeacher(nullptr);
  EXPECT_EQ(gCurrentTeacher, nullptr);
}

}  // namespace
}  // namespace kivstore
