// The services that really create, and what the makers of a spec do with them.
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <filesystem>
#include <string>
#include <vector>

#include "foundation/files/file.h"
#include "foundation/files/file_spec.h"
#include "platform/platform.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/temp_folder.h"

namespace kivstore {
namespace {

using Names = std::vector<std::string>;

class CreatingServicesTest : public testing::Test {
 protected:
  CreatingServicesTest() : installed(Platform().files, &CreatingFileServices()) {}

  SFileSpec Spec(const std::string& relative) const {
    return SFileSpec((temp.Path() + relative).c_str());
  }

  void WriteTree() const {
    temp.WriteFile("tree/a.txt", "a");
    temp.WriteFile("tree/.hidden/b.txt", "b");
    temp.WriteFile("tree/sub/large.bin", std::string(200000, 'L'));
    temp.MakeFolder("tree/empty");
  }

  kivtest::TempFolder temp;
  SPlatformOverride<IFileServices> installed;
};

TEST_F(CreatingServicesTest, MakesFilesAndFoldersAndKeepsWhatIsThere) {
  temp.WriteFile("Taken.lok", "kept");
  temp.MakeFolder("folder");
  const struct {
    const char* path;
    bool made;
  } cases[] = {{"/new.lok", true},
               {"/taken.LOK", true},
               {"/FOLDER/new.lok", true},
               {"/FOLDER", false},
               {"/missing/new.lok", false}};
  for (const auto& c : cases) {
    SFileSpec spec = Spec(c.path);
    EXPECT_EQ(spec.CreateFile(FindFileType(kFileTypeLock), 0, 0, 0), c.made) << c.path;
    EXPECT_FALSE(Spec(c.path).CreateFolder(0x1FF)) << c.path;
  }
  SFileSpec made = Spec("/made");
  EXPECT_TRUE(made.CreateFolder(0));
  EXPECT_TRUE(made.Down("file") && made.CreateFile(0, 0, 0));
  EXPECT_EQ(temp.List(), Names({"Taken.lok", "folder", "made", "new.lok"}));
  EXPECT_EQ(temp.List("folder"), Names({"new.lok"}));
  EXPECT_EQ(temp.ReadFile("Taken.lok"), "kept");
}

TEST_F(CreatingServicesTest, CopiesFilesAndTreesToAFreeName) {
  WriteTree();
  temp.MakeFolder("target");
  const SFileSpec target = Spec("/target");
  EXPECT_TRUE(Spec("/tree/a.txt").CopyTo(target, "copy.txt"));
  EXPECT_FALSE(Spec("/tree/a.txt").CopyTo(target, "COPY.txt"));
  EXPECT_FALSE(Spec("/tree/missing").CopyTo(target, "missing"));
  EXPECT_FALSE(Spec("/tree/a.txt").CopyTo(Spec("/none"), "x"));
  EXPECT_TRUE(Spec("/tree").CopyTo(target, "tree"));
  EXPECT_FALSE(Spec("/tree").CopyTo(target, "TREE"));
  EXPECT_EQ(temp.List("target"), Names({"copy.txt", "tree"}));
  EXPECT_EQ(temp.List("target/tree"), Names({".hidden", "a.txt", "empty", "sub"}));
  EXPECT_EQ(temp.ReadFile("target/tree/.hidden/b.txt"), "b");
  EXPECT_EQ(temp.ReadFile("target/tree/sub/large.bin"), std::string(200000, 'L'));
  EXPECT_FALSE(Spec("/tree").CopyTo(Spec("/tree/empty"), "inside"));
  EXPECT_FALSE(temp.Exists("tree/empty/inside/empty/inside/empty/inside"));
  ASSERT_TRUE(Spec("/tree/a.txt").SetReadOnly());
  EXPECT_TRUE(Spec("/tree/a.txt").CopyTo(target, "stays"));
  EXPECT_TRUE(Spec("/target/stays").IsReadOnly());
  SFile open;
  ASSERT_TRUE(open.Open(SFile::kWrite, Spec("/tree/.hidden/b.txt")));
  EXPECT_FALSE(Spec("/tree/.hidden/b.txt").CopyTo(target, "busy"));
}

#ifndef _WIN32
TEST_F(CreatingServicesTest, AMoveBetweenTwoMountsCopiesAndRemovesTheSource) {
  namespace fs = std::filesystem;
  const fs::path other = fs::path("/dev/shm") / fs::path(temp.Path()).filename();
  struct stat here;
  struct stat there;
  if (stat(temp.Path().c_str(), &here) != 0 || stat("/dev/shm", &there) != 0 ||
      here.st_dev == there.st_dev) {
    GTEST_SKIP() << "no second file system to move to";
  }
  fs::create_directory(other);
  WriteTree();
  SFileSpec tree = Spec("/tree");
  EXPECT_TRUE(tree.MoveTo(SFileSpec(other.c_str())));
  EXPECT_FALSE(temp.Exists("tree"));
  EXPECT_EQ(200000u, fs::file_size(other / "tree/sub/large.bin"));
  EXPECT_TRUE(fs::is_directory(other / "tree/empty"));
  EXPECT_TRUE(fs::exists(other / "tree/.hidden/b.txt"));
  EXPECT_FALSE(tree.Exists());
  fs::remove_all(other);
}
#endif

// Whatever fails on the way, one whole tree is there at the end, and nothing stands half-made
// beside it unless taking it away failed too.
TEST_F(CreatingServicesTest, AMoveByCopyingThatFailsAnywhereLosesNothing) {
  for (int n = 1;; ++n) {
    temp.Remove("tree");
    temp.Remove("target");
    WriteTree();
    temp.MakeFolder("target");
    kivtest::FaultFileServices faults(*Platform().files);
    SFileSpec tree = Spec("/tree");
    SFileSpec place = Spec("/target/tree");
    SPlatformOverride<IFileServices> over(Platform().files, &faults);
    faults.FailAt(n);
    const bool moved = tree.MoveTree(place);
    const std::string whole = moved ? "target/tree" : "tree";
    EXPECT_EQ(temp.List(whole), Names({".hidden", "a.txt", "empty", "sub"})) << n;
    EXPECT_EQ(temp.ReadFile(whole + "/sub/large.bin").size(), 200000u) << n;
    EXPECT_TRUE(moved || !temp.Exists("target/tree")) << n;
    EXPECT_TRUE(faults.OpenPaths().empty());
    const size_t failed = static_cast<size_t>(n) - 1;
    // What cannot be renamed is copied.
    EXPECT_TRUE(moved || faults.Log()[failed].operation != "Move") << n;
    if (!faults.HasStruck()) {
      EXPECT_TRUE(moved);
      EXPECT_FALSE(temp.Exists("tree"));
      break;
    }
  }
}

}  // namespace
}  // namespace kivstore
