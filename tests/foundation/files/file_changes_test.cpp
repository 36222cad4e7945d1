// What making, copying, moving, renaming and deleting do to a tree, and where and why they failed.
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>

#include "foundation/files/file.h"
#include "foundation/files/file_finder.h"
#include "platform/platform.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/temp_folder.h"
#include "tests/support/wine.h"

namespace kivstore {
namespace {

using kivtest::FaultFileServices;
using kivtest::Snapshot;
using Act = std::function<bool(SFileSpec&)>;

using enum SystemError;

class FileChanges : public testing::Test {
 protected:
  FileChanges() {
    temp.WriteFile("tree/a", "a");
    temp.WriteFile("tree/.sub/held", std::string(70000, 'h'));
    temp.WriteFile("file", "text");
    temp.WriteFile("other", "text");
    temp.WriteFile("to/file", "");
    laid = kivtest::SnapshotOf(temp.Path());
  }

  SFileSpec Spec(const std::string& relative) const {
    return SFileSpec(temp.Path(relative).c_str());
  }
  // The path of the last failure below the folder of the test, with slashes, and its error.
  std::string Told() const {
    std::string path = SFileSpec::LastFailure().path.GetText(), root = temp.Path() + "/";
    std::replace(path.begin(), path.end(), '\\', '/');
    std::replace(root.begin(), root.end(), '\\', '/');
    return (path.starts_with(root) ? path.substr(root.size()) : path) + " " +
           std::to_string(static_cast<int>(SFileSpec::LastFailure().error));
  }
  // What an act did to the tree as it was laid, behind its answer: "done", or where it failed. The
  // spec must tell what stands there then.
  std::string Outcome(const Act& act, const std::string& path) const {
    temp.Restore(laid);
    SFileSpec spec = Spec(path);
    const uint32_t known = SFileSpec::LastFailure().number;
    const bool done = act(spec);
    std::string outcome = done                                       ? "done"
                          : SFileSpec::LastFailure().number != known ? Told()
                                                                     : "refused";
    const Snapshot now = kivtest::SnapshotOf(temp.Path());
    for (const auto& [path, bytes] : laid) {
      outcome += now.count(path) == 0 ? " -" + path : now.at(path) != bytes ? " ~" + path : "";
    }
    for (const auto& [path, bytes] : now) {
      outcome += laid.count(path) == 0 ? " +" + path : "";
    }
    EXPECT_TRUE(spec.IsEqual(SFileSpec(spec.GetPath()))) << outcome;
    return outcome;
  }

  kivtest::TempFolder temp;
  Snapshot laid;
  IFileServices& own = *Platform().files;
  FaultFileServices faults{CreatingFileServices()};
  SPlatformOverride<IFileServices> installed{Platform().files, &faults};
};

TEST_F(FileChanges, LeaveWhatTheyNameAndNothingElse) {
  const Act remove = [](SFileSpec& s) { return s.Delete(false); };
  const Act removeAll = [](SFileSpec& s) { return s.Delete(true); };
  const Act make = [](SFileSpec& s) { return s.CreateFile(0, 0, 0); };
  const Act makeFolder = [](SFileSpec& s) { return s.CreateFolder(0); };
  // Another program comes first, with a folder or a file.
  const Act ensure = [](SFileSpec& s) { return SFileSpec(s).CreateFolder(0), s.EnsureFolder(); };
  const Act ensureLate = [](SFileSpec& s) {
    return SFileSpec(s).CreateFile(0, 0, 0) && s.EnsureFolder();
  };
  const Act fix = [](SFileSpec& s) { return s.SetReadOnly(); };
  const Act hide = [](SFileSpec& s) { return s.SetHidden(true); };
  const Act open = [](SFileSpec& s) { return SFile().Open(SFile::kRead, s); };
  const auto rename = [](const std::string& name) -> Act {
    return [=](SFileSpec& s) { return s.Rename(name.c_str()); };
  };
  const auto move = [&](const char* to) -> Act {
    return [=, this](SFileSpec& s) { return s.MoveTo(Spec(to)); };
  };
  const auto copy = [&](const char* to, const char* name) -> Act {
    return [=, this](SFileSpec& s) { return s.CopyTo(Spec(to), name); };
  };
  const std::string longest(kivtest::RunsUnderWine() ? 100 : 255, 'n');  // a path has 260 there
  const std::string treeGone = " -tree -tree/.sub -tree/.sub/held -tree/a";
  const std::string treeMoved =
      "done" + treeGone + " +to/tree +to/tree/.sub +to/tree/.sub/held +to/tree/a";
  const struct {
    const char* path;
    Act act;
    std::string outcome;
    const char* call = "-";  // of the system, that fails for paths that hold this part
    const char* part = "kivstore";
    SystemError error = kOther;
  } cases[] = {
      {"tree/missing", remove, "done"},
      {"no/where", remove, " 3"},
      {"file", remove, "done -file"},
      {"tree", remove, "done" + treeGone},
      {"tree/a", remove, "tree/a 5", "Delete", "a", kAccessDenied},
      {"tree", removeAll, "tree/.sub/held 32 -tree/a", "Delete", "held", kSharingViolation},
      {"tree", removeAll, "tree/.sub 32 -tree/.sub/held -tree/a", "RemoveFolder", "sub",
       kSharingViolation},
      {"tree", removeAll, "tree/.sub/ 5 -tree/a", "Walk", "sub", kAccessDenied},
      {"new", make, "done +new"},
      {"FILE", make, "done"},
      {"new", make, "new 112", "MakeFile", "new", kDiskFull},
      {"no/where", make, " 3"},
      {"new", makeFolder, "done +new"},
      {"new", makeFolder, "new 19", "MakeFolder", "new", kWriteProtected},
      {"FILE", makeFolder, "FILE 183"},
      {"to", makeFolder, "to/ 183"},
      {"no/where", makeFolder, " 3"},
      {"new", ensure, "done +new"},
      {"to", ensure, "done"},
      {"FILE", ensure, "FILE 183"},
      {"new", ensureLate, "new 183 +new"},
      {"new", ensure, "new 19", "MakeFolder", "new", kWriteProtected},
      {"file", rename(longest), "done -file +" + longest},
      {"to", rename("new"), "done -to -to/file +new +new/file"},
      {"to/missing", rename("x"), "done"},
      {"tree", rename("b"), "tree 32", "Move", "tree", kSharingViolation},
      {"to", rename("TREE"), "TREE/ 183"},
      {"no/where", rename("x"), "refused"},
      {"other", move("to"), "done -other +to/other"},
      {"tree", move("to"), treeMoved},
      {"tree", move("to"), treeMoved, "Move", "tree", kNotSameDevice},
      {"missing", move("to"), "done"},
      {"file", move("to"), "to/file 183"},
      {"other", move("to"), "other 5", "Move", "other", kAccessDenied},
      {"file", move("missing"), "missing 3"},
      {"file", move("other"), "other 3"},
      {"no/where", move("to"), " 3"},
      {"file", copy("to", "new"), "done +to/new"},
      {"tree", copy("to", "b"), "done +to/b +to/b/.sub +to/b/.sub/held +to/b/a"},
      {"other", copy("to", "FILE"), "to/FILE 183"},
      {"tree", copy("to", "FILE"), "to/FILE 183"},
      {"file", copy("to", "x"), "file 32", "CopyFileTo", "file", kSharingViolation},
      {"file", copy("to", "x"), "to/x 112", "CopyFileTo", "file", kDiskFull},
      {"file", copy("to", "x"), "to/x 19", "CopyFileTo", "file", kWriteProtected},
      {"file", [](SFileSpec& s) { return s.Refresh(); }, "file 55", "Attributes", "file",
       kDeviceGone},
      {"file", open, "file 55", "OpenRead", "file", kDeviceGone},
      {"none", open, "none 2"},
      {"file", fix, "file 19", "SetAttributes", "file", kWriteProtected},
      {"file", hide, "file 19", "SetAttributes", "file", kWriteProtected}};
  for (const auto& c : cases) {
    faults.FailOn(c.part, c.error, c.call);
    EXPECT_EQ(Outcome(c.act, c.path), c.outcome) << c.path << " " << c.call;
  }
  const std::string tooLong(256, 'n');
  for (const char* bad : {"", "a\\b", "a/b", "a\tb", "a\nb", "a\rb", tooLong.c_str()}) {
    EXPECT_EQ(Outcome(rename(bad), "file"), "refused") << bad;
  }
}

// What was found on the way into the tree is told, or that the move itself was refused.
TEST_F(FileChanges, OfATreeThatCannotBeMovedNeitherWay) {
  const struct {
    SystemError ofMove, ofCopy;
    const char* told;
  } cases[] = {{kNotSameDevice, kDiskFull, "to/tree/.sub/held 112"},
               {kNotSameDevice, kSharingViolation, "tree/.sub/held 32"},
               {kSharingViolation, kSharingViolation, "tree/.sub/held 32"},
               {kSharingViolation, kDiskFull, "tree 32"}};
  FaultFileServices copying(static_cast<IFileServices&>(faults));
  SPlatformOverride<IFileServices> both(Platform().files, &copying);
  for (const auto& c : cases) {
    faults.FailOn("tree", c.ofMove, "Move");
    copying.FailOn("held", c.ofCopy, "CopyFileTo");
    EXPECT_EQ(Outcome([&](SFileSpec& s) { return s.MoveTo(Spec("to")); }, "tree"), c.told);
  }
}

// Whatever fails on the way, one whole tree is there at the end, and nothing stands half-made
// beside it unless taking it away failed too.
TEST_F(FileChanges, AMoveByCopyingThatFailsAnywhereLosesNothing) {
  const Snapshot tree = kivtest::SnapshotOf(temp.Path("tree"));
  for (int n = 1; n == 1 || faults.HasStruck(); ++n) {
    temp.Restore(laid);
    SFileSpec source = Spec("tree");
    const SFileSpec place = Spec("to/tree");
    faults.FailAt(n);
    const bool moved = source.MoveTree(place);
    EXPECT_EQ(kivtest::SnapshotOf(temp.Path(moved ? "to/tree" : "tree")), tree) << n;
    EXPECT_TRUE(moved || !temp.Exists("to/tree")) << n;
    EXPECT_TRUE(faults.OpenPaths().empty());
    EXPECT_TRUE(faults.HasStruck() || (moved && !temp.Exists("tree")));
  }
}

// A failed move's way round leads nowhere where nothing is made, and destroys nothing.
TEST_F(FileChanges, AreNoneOfTheLibrarysOwnMakers) {
  FaultFileServices inert(own);
  SPlatformOverride<IFileServices> library(Platform().files, &inert);
  const SFileSpec to = Spec("to"), place = Spec("to/tree");
  inert.FailOn("tree", kNotSameDevice, "Move");
  const struct {
    const char* path;
    Act act;
    const char* outcome;
  } cases[] = {{"new", [](SFileSpec& s) { return s.CreateFile(0, 0, 0); }, "new 5"},
               {"file", [](SFileSpec& s) { return s.CreateFile(SFileType(), 0, 0, 0); }, "file 5"},
               {"new", [](SFileSpec& s) { return s.CreateFolder(0x1FF); }, "new 5"},
               {"file", [&](SFileSpec& s) { return s.CopyTo(to, "copy"); }, "done"},
               {"tree", [&](SFileSpec& s) { return s.CopyTo(to, "copy"); }, "done"},
               {"no/where", [&](SFileSpec& s) { return s.CopyTo(s, "copy"); }, "done"},
               {"file", [&](SFileSpec& s) { return s.CopyToFolder(to, "copy"); }, "refused"},
               {"tree", [&](SFileSpec& s) { return s.MoveTo(to); }, "to/tree 5"},
               {"tree", [&](SFileSpec& s) { return s.MoveTree(place); }, "to/tree 5"},
               {"tree", [&](SFileSpec& s) { return s.MoveTree(to); }, "refused"}};
  for (const auto& c : cases) {
    EXPECT_EQ(Outcome(c.act, c.path), c.outcome) << c.path;
  }
}

#ifndef _WIN32
TEST_F(FileChanges, BetweenTwoMountsCopyAndRemoveTheSource) {
  namespace fs = std::filesystem;
  const fs::path other = fs::path("/dev/shm") / fs::path(temp.Path()).filename();
  struct stat here, there;
  if (stat(temp.Path().c_str(), &here) != 0 || stat("/dev/shm", &there) != 0 ||
      here.st_dev == there.st_dev) {
    GTEST_SKIP() << "no second file system to move to";
  }
  fs::create_directory(other);
  SFileSpec file = Spec("file"), tree = Spec("tree"), fixed = Spec("other");
  EXPECT_TRUE(fixed.SetReadOnly() && !fixed.MoveTo(SFileSpec(other.c_str())));
  EXPECT_TRUE(file.MoveTo(SFileSpec(other.c_str())) && tree.MoveTo(SFileSpec(other.c_str())));
  EXPECT_TRUE(file.Exists() && !tree.Exists() && !temp.Exists("file") && !temp.Exists("tree"));
  Snapshot moved = laid;
  std::erase_if(moved,
                [](const auto& e) { return e.first[0] == 'o' || e.first.starts_with("to"); });
  EXPECT_EQ(kivtest::SnapshotOf(other.string()), moved);
  // What a link leads to is no part of the tree, which stays where it is.
  fs::create_directories(temp.Path("linked/sub"));
  fs::create_directory_symlink(temp.Path("to"), temp.Path("linked/sub/link"));
  EXPECT_FALSE(Spec("linked").MoveTo(SFileSpec(other.c_str())));
  EXPECT_EQ(kivtest::SnapshotOf(other.string()), moved);
  EXPECT_TRUE(fs::is_symlink(temp.Path("linked/sub/link")) && temp.Exists("to/file"));
  fs::remove_all(other);
}
#endif

TEST_F(FileChanges, DeletingEndsAtTheFirstFailureOnlyIfNotRecursive) {
  for (const char* name : {"to/2", "to/3", "to/4"}) {
    temp.WriteFile(name, "");
  }
  faults.FailOn("to", kAccessDenied, "Delete");
  for (const bool recursive : {false, true}) {
    faults.ClearLog();
    EXPECT_FALSE(Spec("to").Delete(recursive));
    EXPECT_EQ(faults.CountOf("Delete"), recursive ? 4 : 1);
    EXPECT_EQ(faults.CountOf("RemoveFolder"), 0);
  }
}

TEST_F(FileChanges, OfAFolderThatHoldsAnOpenFileAreRefused) {
  SPlatformOverride<IFileServices> library(Platform().files, &own);
  SFile open;
  ASSERT_TRUE(open.Open(SFile::kRead, Spec("tree/.sub/held")));
  for (const char* path : {"tree/.sub/held", "tree", "tree/.sub"}) {
    SFileSpec spec = Spec(path);
    EXPECT_FALSE(spec.Rename("free") || spec.MoveTo(Spec("to"))) << path;
    EXPECT_TRUE(spec.IsEqual(Spec(path)));
    if (kivtest::RunsUnderWine()) {
      break;  // a folder moves though a file in it is open
    }
  }
  EXPECT_EQ(kivtest::SnapshotOf(temp.Path("to")).size(), 1u);
  open.Close();
  EXPECT_TRUE(Spec("tree").Rename("free"));
}

TEST_F(FileChanges, OfAnOpenFileAndAWalkThatFailAreTold) {
  char bytes[8] = "bytes";
  SFile file;
  ASSERT_TRUE(file.Open(SFile::kWrite, Spec("file")));
  const std::function<bool()> acts[] = {
      [&] { return file.Write(5, bytes) == 5; }, [&] { return file.Read(5, bytes) == 5; },
      [&] { return file.SetSize(3); }, [&] { return file.Truncate(); },
      [&] { return file.Flush(); }};
  for (const auto& act : acts) {
    NoteFileFailure("", kNone);
    faults.FailAt(1, kDiskFull);
    EXPECT_FALSE(act());
    EXPECT_EQ(Told(), "file 112");
  }
  faults.FailNever();
  const uint32_t known = SFileSpec::LastFailure().number;
  EXPECT_TRUE(file.Write(5, bytes) == 5 && file.SetSize(3) && file.Flush());
  EXPECT_EQ(file.Read(5, bytes), 0) << "the end of the file is no failure";
  EXPECT_EQ(SFileSpec::LastFailure().number, known);
  faults.FailAt(3);
  SFileFinder finder(Spec("tree"), SFileFinder::kEverything);
  for (SFileSpec found; finder.Next(found);) {
  }
  EXPECT_EQ(Told(), "tree/ 31");
}

TEST_F(FileChanges, CopiesAreReadOnlyAsTheirSourcesAndEndAtThemselvesAndAtOpenFiles) {
  ASSERT_TRUE(Spec("file").SetReadOnly());
  EXPECT_TRUE(Spec("file").CopyTo(Spec("to"), "stays") && Spec("to/stays").IsReadOnly());
  EXPECT_FALSE(Spec("missing").CopyTo(Spec("to"), "x") || Spec("file").CopyTo(Spec("no"), "x") ||
               Spec("tree").CopyTo(Spec("tree/.sub"), "in") || Spec("to").CreateFile(0, 0, 0));
  EXPECT_FALSE(temp.Exists("tree/.sub/in/.sub/in/.sub/in"));
  SFile open;
  ASSERT_TRUE(open.Open(SFile::kWrite, Spec("other")));
  EXPECT_FALSE(Spec("other").CopyTo(Spec("to"), "busy"));
}

}  // namespace
}  // namespace kivstore
