#include "store/place/site.h"

#include "foundation/files/file_failure.h"
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
  EXPECT_NE(selected, &hill);
  hill.folderName = "changed";
  site.SelectTeacher(selected);
  EXPECT_EQ(site.GetCurrentTeacher(), selected);
  EXPECT_EQ(Selected(), "MsHill");
  site.NoteCountedClasses(SpecOn(temp.Path()));
  site.SelectTeacher(&hill);
  EXPECT_FALSE(site.GetCountedClasses().IsValid());  // another teacher's list is another list
  EXPECT_EQ(Bytes(selected->folderName), "changed");
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

TEST_F(SiteTest, TheFirstReasonIsKeptAndTheLastText) {
  EXPECT_EQ(Why(), "");
  site.NoteFailure(FailureKind::kFull, "first", ListKind::kTeachers, SystemError::kOther);
  site.NoteFailure(FailureKind::kLocked, "second", ListKind::kFiles);
  site.TellFailure("one");
  site.TellFailure("two");
  EXPECT_EQ(site.GetFailure().system, SystemError::kOther);
  EXPECT_EQ(site.GetFailure().text, "two");
  EXPECT_EQ(Why(), "full teachers first");
  EXPECT_EQ(site.GetFailure().text, "");
  const struct {
    SystemError error;
    const char* why;
  } cases[] = {
      {SystemError::kSharingViolation, "in use"}, {SystemError::kAccessDenied, "no permission"},
      {SystemError::kFileNotFound, "missing"},    {SystemError::kPathNotFound, "missing"},
      {SystemError::kDiskFull, "disk full"},      {SystemError::kOther, "other"}};
  for (const auto& c : cases) {
    kivstore::NoteFileFailure("x", c.error);
    site.NoteFileFailure(ListKind::kStudents);
    EXPECT_EQ(site.GetFailure().system, c.error);
    EXPECT_EQ(Why(), std::string(c.why) + " students x");
  }
}

}  // namespace
