// Where and why a file operation failed.
#include "foundation/files/file_failure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

#include "foundation/files/file.h"
#include "foundation/files/file_finder.h"
#include "platform/platform.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/temp_folder.h"

namespace kivstore {
namespace {

constexpr auto kFull = SystemError::kDiskFull;
constexpr auto kDenied = SystemError::kAccessDenied;
constexpr auto kSharing = SystemError::kSharingViolation;
constexpr auto kNoFile = SystemError::kFileNotFound;
constexpr auto kNoPath = SystemError::kPathNotFound;
constexpr auto kTaken = SystemError::kAlreadyExists;
constexpr auto kOtherDevice = SystemError::kNotSameDevice;
constexpr auto kFixed = SystemError::kWriteProtected;
constexpr auto kGone = SystemError::kDeviceGone;
constexpr auto kOther = SystemError::kOther;

class FileFailureTest : public testing::Test {
 protected:
  FileFailureTest() { Lay(); }

  void Lay() const {
    for (const std::string& name : temp.List()) {
      temp.Remove(name);
    }
    temp.WriteFile("tree/a", "a");
    temp.WriteFile("tree/sub/held", "held");
    temp.WriteFile("file", "text");
    temp.WriteFile("other", "text");
    temp.WriteFile("to/file", "");
  }

  SFileSpec Spec(const std::string& relative) const {
    return SFileSpec(temp.Path(relative).c_str());
  }
  // The path of the last failure below the folder of the test, with slashes.
  std::string Where() const {
    std::string path = SFileSpec::LastFailure().path.GetText();
    std::string root = temp.Path() + "/";
    std::replace(path.begin(), path.end(), '\\', '/');
    std::replace(root.begin(), root.end(), '\\', '/');
    return path.starts_with(root) ? path.substr(root.size()) : path;
  }

  kivtest::TempFolder temp;
  kivtest::FaultFileServices faults{CreatingFileServices()};
  SPlatformOverride<IFileServices> installed{Platform().files, &faults};
};

TEST_F(FileFailureTest, NamesTheInnermostPlaceThatWasRefused) {
  const struct {
    const char* call;  // of the system, and what its path holds
    const char* part;
    SystemError error;
    std::function<bool()> act;
    const char* where;
    SystemError told;
  } cases[] = {
      {"Delete", "a", kDenied, [&] { return Spec("tree/a").Delete(false); }, "tree/a", kDenied},
      {"Delete", "held", kSharing, [&] { return Spec("tree").Delete(false); }, "tree/sub/held",
       kSharing},
      {"Delete", "held", kSharing, [&] { return Spec("tree").Delete(true); }, "tree/sub/held",
       kSharing},
      {"RemoveFolder", "sub", kSharing, [&] { return Spec("tree").Delete(true); }, "tree/sub",
       kSharing},
      {"Walk", "sub", kDenied, [&] { return Spec("tree").Delete(true); }, "tree/sub/", kDenied},
      {"", "", kOther, [&] { return SFileSpec().Delete(true); }, "", kNoPath},
      {"Move", "", kSharing, [&] { return Spec("tree").Rename("b"); }, "tree", kSharing},
      {"", "", kOther, [&] { return Spec("to").Rename("tree"); }, "tree/", kTaken},
      {"", "", kOther, [&] { return Spec("file").MoveTo(Spec("to")); }, "to/file", kTaken},
      {"Move", "", kDenied, [&] { return Spec("other").MoveTo(Spec("to")); }, "other", kDenied},
      {"", "", kOther, [&] { return Spec("file").MoveTo(Spec("missing")); }, "missing", kNoPath},
      {"", "", kOther, [&] { return SFileSpec().MoveTo(Spec("to")); }, "", kNoPath},
      {"MakeFile", "", kFull, [&] { return Spec("new").CreateFile(0, 0, 0); }, "new", kFull},
      {"MakeFolder", "", kFixed, [&] { return Spec("new").CreateFolder(0); }, "new", kFixed},
      {"", "", kOther, [&] { return SFileSpec().CreateFolder(0); }, "", kNoPath},
      {"CopyFileTo", "", kSharing, [&] { return Spec("file").CopyTo(Spec("to"), "x"); }, "file",
       kSharing},
      {"CopyFileTo", "", kFull, [&] { return Spec("file").CopyTo(Spec("to"), "x"); }, "to/x",
       kFull},
      {"CopyFileTo", "", kFixed, [&] { return Spec("file").CopyTo(Spec("to"), "x"); }, "to/x",
       kFixed},
      {"", "", kOther, [&] { return Spec("other").CopyTo(Spec("to"), "file"); }, "to/file", kTaken},
      {"Attributes", "", kGone, [&] { return Spec("file").Exists(); }, "file", kGone},
      {"OpenRead", "", kGone, [&] { return SFile().Open(SFile::kRead, Spec("file")); }, "file",
       kGone},
      {"", "", kOther, [&] { return SFile().Open(SFile::kRead, Spec("none")); }, "none", kNoFile},
      {"SetAttributes", "", kFixed, [&] { return Spec("file").SetReadOnly(); }, "file", kFixed},
      {"SetAttributes", "", kFixed, [&] { return Spec("file").SetHidden(true); }, "file", kFixed}};
  for (const auto& c : cases) {
    Lay();
    const uint32_t before = SFileSpec::LastFailure().number;
    faults.FailOn(c.part[0] != '\0' ? c.part : "kivstore", c.error, *c.call != '\0' ? c.call : "-");
    EXPECT_FALSE(c.act()) << c.call << " " << c.where;
    EXPECT_GT(SFileSpec::LastFailure().number, before) << c.call << " " << c.where;
    EXPECT_EQ(Where(), c.where) << c.call;
    EXPECT_EQ(SFileSpec::LastFailure().error, c.told) << c.call << " " << c.where;
  }
}

// What was found on the way into the tree is told, or that the move itself was refused.
TEST_F(FileFailureTest, OfATreeThatCannotBeMoved) {
  const struct {
    SystemError ofMove, ofCopy;
    const char* where;
    SystemError told;
  } cases[] = {{kOtherDevice, kFull, "to/tree/sub/held", kFull},
               {kOtherDevice, kSharing, "tree/sub/held", kSharing},
               {kSharing, kSharing, "tree/sub/held", kSharing},
               {kSharing, kFull, "tree", kSharing}};
  for (const auto& c : cases) {
    Lay();
    kivtest::FaultFileServices copying(static_cast<IFileServices&>(faults));
    SPlatformOverride<IFileServices> both(Platform().files, &copying);
    faults.FailOn("tree", c.ofMove, "Move");
    copying.FailOn("held", c.ofCopy, "CopyFileTo");
    EXPECT_FALSE(Spec("tree").MoveTo(Spec("to")));
    EXPECT_EQ(Where(), c.where);
    EXPECT_EQ(SFileSpec::LastFailure().error, c.told) << c.where;
    EXPECT_FALSE(temp.Exists("to/tree"));
  }
}

TEST_F(FileFailureTest, OfAnOpenFileAndOfAWalk) {
  char bytes[8] = "bytes";
  SFile file;
  ASSERT_TRUE(file.Open(SFile::kWrite, Spec("file")));
  const std::function<bool()> acts[] = {
      [&] { return file.Write(5, bytes) == 5; }, [&] { return file.Read(5, bytes) == 5; },
      [&] { return file.SetSize(3); }, [&] { return file.Truncate(); },
      [&] { return file.Flush(); }};
  for (const auto& act : acts) {
    NoteFileFailure("", SystemError::kNone);
    faults.FailAt(1, kFull);
    EXPECT_FALSE(act());
    EXPECT_EQ(Where(), "file");
    EXPECT_EQ(SFileSpec::LastFailure().error, kFull);
  }
  faults.FailNever();
  const uint32_t known = SFileSpec::LastFailure().number;
  EXPECT_TRUE(file.Write(5, bytes) == 5 && file.SetSize(3) && file.Flush());
  EXPECT_EQ(file.Read(5, bytes), 0) << "the end of the file is no failure";
  EXPECT_EQ(SFileSpec::LastFailure().number, known);
  faults.FailAt(3);
  SFileFinder finder(Spec("tree"), SFileFinder::kEverything);
  SFileSpec found;
  while (finder.Next(found)) {
  }
  EXPECT_EQ(Where(), "tree/");
}

}  // namespace
}  // namespace kivstore
