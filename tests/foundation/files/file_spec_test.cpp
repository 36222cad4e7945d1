#include "foundation/files/file_spec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "foundation/files/file.h"
#include "platform/platform.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/temp_folder.h"
#include "tests/support/wine.h"

namespace kivstore {
namespace {

using kivtest::FaultFileServices;

// A tree of folder\sub\, folder\file.txt and folder\sub\deep.txt.
class FileSpecTest : public testing::Test {
 protected:
  FileSpecTest() {
    temp.WriteFile("folder/file.txt", "text");
    temp.WriteFile("folder/sub/deep.txt", "deep");
  }

  SFileSpec Spec(const std::string& relative) const {
    return SFileSpec((temp.Path() + relative).c_str());
  }
  // The Windows form of a path below the temporary folder.
  std::string Held(const std::string& relative) const {
    std::string path = temp.Path() + relative;
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
  }

  kivtest::TempFolder temp;
};

std::string Describe(const SFileSpec& spec) {
  return std::string(spec.IsValid() ? "valid " : "invalid ") + (spec.Exists() ? "there " : "") +
         (spec.IsFolder() ? "folder " : "") + spec.GetPathText() + " | " +
         spec.GetFileName().GetText();
}

TEST_F(FileSpecTest, SetTellsWhatStandsThere) {
  const struct {
    const char* asked;
    const char* description;  // with the tree's path left out
    int16_t lastError;
  } cases[] = {{"/folder", "valid there folder %\\folder\\ | folder", 0},
               {"/folder/", "valid there folder %\\folder\\ | folder", 0},
               {"\\folder\\sub\\", "valid there folder %\\folder\\sub\\ | sub", 0},
               {"/folder/file.txt", "valid there %\\folder\\file.txt | file.txt", 0},
               {"/folder/missing", "valid %\\folder\\missing | missing", 2},
               {"/folder/missing/", "valid %\\folder\\missing | missing", 2},
               {"/missing/x", "invalid  | ", 2},
               {"/folder/file.txt/x", "invalid  | ", 2},
               {"/folder/sub/../file.txt", "valid there %\\folder\\file.txt | file.txt", 0},
               {"/folder/sub/../sub/../", "valid there folder %\\folder\\ | folder", 0},
               {"/folder/sub/../../folder/sub/deep.txt",
                "valid there %\\folder\\sub\\deep.txt | deep.txt", 0},
               {"/folder/sub/..", "valid there folder %\\folder\\ | folder", 0}};
  for (const auto& c : cases) {
    std::string expected = c.description;
    if (const size_t at = expected.find('%'); at != std::string::npos) {
      expected.replace(at, 1, Held(""));
    }
    const SFileSpec spec = Spec(c.asked);
    EXPECT_EQ(Describe(spec), expected) << c.asked;
    EXPECT_EQ(SFileSpec::GetLastError(), c.lastError) << c.asked;
  }
}

TEST_F(FileSpecTest, SetKeepsTheSystemsErrorAndAsksForTheFolderIfItIsNoAnswer) {
  FaultFileServices faults(*Platform().files);
  SPlatformOverride<IFileServices> installed(Platform().files, &faults);
  const struct {
    SystemError system;
    int16_t told;
    bool valid;
    int looks;
  } cases[] = {{SystemError::kFileNotFound, 2, true, 1},
               {SystemError::kPathNotFound, 2, false, 1},
               {SystemError::kSharingViolation, 3, true, 2},
               {SystemError::kOther, 1, true, 2}};
  for (const auto& c : cases) {
    faults.FailAt(1, c.system);
    EXPECT_EQ(Spec("/folder/file.txt").IsValid(), c.valid);
    EXPECT_EQ(SFileSpec::GetLastError(), c.told);
    EXPECT_EQ(faults.Count(), c.looks);
  }
}

TEST_F(FileSpecTest, HoldsTheRoot) {
  SFileSpec root("/");
  EXPECT_TRUE(root.IsExistingFolder());
  EXPECT_STREQ(root.GetPathText(), "\\");
  EXPECT_TRUE(root.GetFileName().IsEmpty());
  EXPECT_TRUE(root.Refresh());
  EXPECT_TRUE(root.Down("no such name"));
  EXPECT_STREQ(root.GetPathText(), "\\no such name");
  EXPECT_TRUE(root.Up());
  EXPECT_STREQ(root.GetPathText(), "\\");
  EXPECT_FALSE(root.Up());
  EXPECT_FALSE(root.IsValid());
}

TEST_F(FileSpecTest, RefusesAnEmptyPathAndAnyExcessiveLength) {
  SFileSpec spec = Spec("/folder");
  EXPECT_FALSE(spec.Set(""));
  EXPECT_EQ(Describe(spec), "invalid  | ");
  for (const size_t length : {5000, 32766, 40000}) {
    spec = Spec("/folder");
    EXPECT_FALSE(spec.Down(std::string(length, 'n').c_str()) && spec.Exists());
    std::string folders;
    while (folders.size() < length) {
      folders += "/a";
    }
    EXPECT_FALSE(Spec(folders).IsValid());
    EXPECT_FALSE(Spec("/folder").DownAssumed(std::string(length, 'n').c_str()) && length > 32000);
  }
}

TEST_F(FileSpecTest, DownFromAFolderOnly) {
  SFileSpec spec = Spec("/folder");
  EXPECT_TRUE(spec.Down(nullptr));
  EXPECT_STREQ(spec.GetPathText(), Held("/folder/").c_str());
  EXPECT_TRUE(spec.Down("missing"));
  EXPECT_FALSE(spec.Down("x"));
  EXPECT_STREQ(spec.GetPathText(), Held("/folder/missing").c_str());
  EXPECT_TRUE(spec.Up());
  EXPECT_TRUE(spec.Down("sub/deep.txt"));
  EXPECT_TRUE(spec.IsExistingFile());
  EXPECT_FALSE(spec.Down("x"));
  EXPECT_EQ(Describe(spec), "invalid  | ");
  EXPECT_FALSE(spec.Down("x"));
}

TEST_F(FileSpecTest, UpTakesTheFolderToExistWithoutALook) {
  SFileSpec file = Spec("/folder/sub/deep.txt");
  SFileSpec missing = Spec("/folder/missing");
  FaultFileServices log(*Platform().files);
  SPlatformOverride<IFileServices> installed(Platform().files, &log);
  temp.Remove("folder");
  EXPECT_TRUE(file.Up());
  EXPECT_EQ(Describe(file), "valid there folder " + Held("/folder/sub/") + " | sub");
  EXPECT_TRUE(file.Up());
  EXPECT_EQ(Describe(file), "valid there folder " + Held("/folder/") + " | folder");
  EXPECT_TRUE(missing.Up());
  EXPECT_TRUE(missing.IsEqual(file));
  EXPECT_EQ(log.Count(), 0);
  SFileSpec none;
  EXPECT_FALSE(none.Up());
}

TEST_F(FileSpecTest, DownThroughEndsWhereTheSingleStepsEndAndMostlyLooksOnce) {
  const struct {
    SString names[3];
    int looks;
  } ways[] = {{{"folder", "sub", "deep.txt"}, 1},
              {{"folder", "sub", "missing"}, 1},
              {{"missing", "sub", "deep.txt"}, 3},
              {{"folder", "missing", "x"}, 4},
              {{"folder", "file.txt", "x"}, 3},
              {{"folder", "", "sub"}, 3},
              {{"folder", "..", "folder"}, 3},
              {{"folder", "sub\\", "deep.txt"}, 3},
              {{"", "", ""}, 3}};
  for (const auto& [names, looks] : ways) {
    SFileSpec single = Spec(""), whole = single;
    const bool answer = single.Down(names[0]) && single.Down(names[1]) && single.Down(names[2]);
    FaultFileServices log(*Platform().files);
    SPlatformOverride<IFileServices> installed(Platform().files, &log);
    EXPECT_EQ(whole.DownThrough({&names[0], &names[1], &names[2]}), answer) << Describe(single);
    EXPECT_EQ(Describe(whole), Describe(single));
    EXPECT_LE(log.Count(), looks) << Describe(single);
  }
}

TEST_F(FileSpecTest, DownAssumedTakesAFileToExistWithoutALook) {
  SFileSpec spec = Spec("/folder");
  FaultFileServices log(*Platform().files);
  SPlatformOverride<IFileServices> installed(Platform().files, &log);
  EXPECT_TRUE(spec.DownAssumed("not there.kiv"));
  EXPECT_EQ(Describe(spec), "valid there " + Held("/folder/not there.kiv") + " | not there.kiv");
  EXPECT_FALSE(spec.DownAssumed("x"));
  EXPECT_EQ(log.Count(), 0);
  SFile file;
  int32_t error = 0;
  EXPECT_FALSE(file.Open(SFile::kRead, spec, &error));
  EXPECT_EQ(error, SFile::kNotFound);
}

TEST_F(FileSpecTest, HasTypeByTheEndOfThePath) {
  const SFileType text("Text|Texts|txt|TEXT|1");
  EXPECT_TRUE(Spec("/folder/file.txt").HasType(text));
  EXPECT_TRUE(Spec("/folder/FILE.TXT").HasType(SFileType("Text|Texts|E.TxT|TEXT|1")));
  EXPECT_FALSE(Spec("/folder/missing.txt").HasType(text));
  EXPECT_FALSE(Spec("/folder").HasType(text));
  EXPECT_FALSE(Spec("/folder/file.txt").HasType(SFileType("invalid")));
}

TEST_F(FileSpecTest, ChangesReadOnlyOfFilesOnly) {
  SFileSpec file = Spec("/folder/file.txt"), folder = Spec("/folder");
  EXPECT_FALSE(file.IsReadOnly());
  EXPECT_TRUE(file.ClearReadOnly() && file.SetReadOnly() && file.IsReadOnly());
  EXPECT_TRUE(file.SetReadOnly());
  EXPECT_FALSE(file.Delete(false));
  EXPECT_TRUE(file.ClearReadOnly());
  EXPECT_FALSE(file.IsReadOnly());
  EXPECT_FALSE(folder.SetReadOnly() || folder.ClearReadOnly() || folder.IsReadOnly());
}

TEST_F(FileSpecTest, TellsFreeSpace) {
  uint64_t total = 7, free = 7;
  uint32_t cluster = 7;
  EXPECT_TRUE(Spec("/folder/missing").GetFreeSpace(&total, &free, &cluster));
  EXPECT_GT(total, 0u);
  EXPECT_LE(free, total);
  EXPECT_EQ(cluster, 1u);
  EXPECT_TRUE(Spec("/folder").GetFreeSpace(nullptr, nullptr, nullptr));
  EXPECT_FALSE(SFileSpec().GetFreeSpace(&total, &free, &cluster));
  EXPECT_EQ(total, 0u);
  EXPECT_EQ(free, 0u);
}

TEST_F(FileSpecTest, TheLibrarysMakersAreInert) {
  SFileSpec missing = Spec("/folder/missing"), file = Spec("/folder/file.txt"), none;
  const SFileSpec folder = Spec("/folder");
  EXPECT_FALSE(missing.CreateFile(FindFileType(kFileTypeLock), 0, 0, 0) ||
               file.CreateFile(0, 0, 0) || none.CreateFile(0, 0, 0) || missing.CreateFolder(0x1FF));
  EXPECT_TRUE(file.CopyTo(folder, "copy") && folder.CopyTo(folder, "copy") &&
              none.CopyTo(none, "copy"));
  EXPECT_FALSE(file.CopyToFolder(folder, "copy") || none.CopyToFolder(folder, "copy"));
  EXPECT_EQ(temp.List("folder"), std::vector<std::string>({"file.txt", "sub"}));
}

TEST_F(FileSpecTest, MakersThatCreateLetTheFlagsFollow) {
  SPlatformOverride<IFileServices> installed(Platform().files, &CreatingFileServices());
  SFileSpec file = Spec("/new file"), folder = Spec("/new");
  EXPECT_TRUE(file.CreateFile(0, 0, 0) && folder.CreateFolder(0) &&
              folder.CreateFolder(0) == false);
  EXPECT_TRUE(file.IsEqual(Spec("/new file")) && folder.IsEqual(Spec("/new")));
  EXPECT_TRUE(Spec("/folder").CopyTo(folder, "copy"));
  EXPECT_EQ(temp.ReadFile("new/copy/sub/deep.txt"), "deep");
  EXPECT_FALSE(Spec("/folder").CopyTo(Spec("/missing"), "copy"));
  SFileSpec tree = folder;
  EXPECT_TRUE(tree.MoveTree(Spec("/moved")));
  EXPECT_EQ(temp.ReadFile("moved/copy/sub/deep.txt"), "deep");
  EXPECT_FALSE(temp.Exists("new"));
}

TEST_F(FileSpecTest, DeletesFilesAndTrees) {
  SFileSpec missing = Spec("/folder/missing"), none;
  SFileSpec file = Spec("/folder/file.txt"), folder = Spec("/folder");
  EXPECT_TRUE(missing.Delete(false) && file.Delete(false));
  EXPECT_FALSE(none.Delete(true));
  EXPECT_EQ(Describe(file), "valid " + Held("/folder/file.txt") + " | file.txt");
  EXPECT_TRUE(folder.Delete(false));
  EXPECT_EQ(Describe(folder), "valid " + Held("/folder") + " | folder");
  EXPECT_TRUE(temp.List().empty());
}

TEST_F(FileSpecTest, DeleteEndsAtTheFirstFailureOnlyIfNotRecursive) {
  FaultFileServices faults(*Platform().files);
  SPlatformOverride<IFileServices> installed(Platform().files, &faults);
  faults.FailOn("stays", SystemError::kAccessDenied);
  for (const bool recursive : {false, true}) {
    temp.Remove("folder");
    for (const char* name : {"stays 1", "stays 2", "stays 3", "stays 4"}) {
      temp.WriteFile(std::string("folder/") + name, "");
    }
    SFileSpec folder = Spec("/folder");
    faults.ClearLog();
    EXPECT_FALSE(folder.Delete(recursive));
    EXPECT_EQ(faults.CountOf("Delete"), recursive ? 4 : 1);
    EXPECT_EQ(faults.CountOf("RemoveFolder"), 0);
    EXPECT_EQ(Describe(folder), "valid there folder " + Held("/folder/") + " | folder");
  }
}

TEST_F(FileSpecTest, RenamesFilesAndFoldersButToNoBadOrTakenName) {
  const std::string tooLong(256, 'n');
  SFileSpec file = Spec("/folder/file.txt"), folder = Spec("/folder"), none;
  for (const char* name :
       {"", "a\\b", "a/b", "a\tb", "a\nb", "a\rb", tooLong.c_str(), "..", "sub", "SUB"}) {
    EXPECT_FALSE(file.Rename(name)) << name;
    EXPECT_TRUE(file.IsEqual(Spec("/folder/file.txt")));
  }
  EXPECT_FALSE(none.Rename("x"));
  const std::string longest(kivtest::RunsUnderWine() ? 100 : 255, 'n');  // a path has 260 there
  EXPECT_TRUE(file.Rename(longest.c_str()) && file.Rename("other.txt"));
  EXPECT_EQ(Describe(file), "valid there " + Held("/folder/other.txt") + " | other.txt");
  EXPECT_TRUE(folder.Rename("place"));
  EXPECT_EQ(Describe(folder), "valid there folder " + Held("/place/") + " | place");
  EXPECT_EQ(temp.ReadFile("place/other.txt"), "text");
  SFileSpec missing = Spec("/place/missing");
  EXPECT_TRUE(missing.Rename("else"));
  EXPECT_EQ(Describe(missing), "valid " + Held("/place/else") + " | else");
}

TEST_F(FileSpecTest, RenameAndMoveLeaveAFolderThatHoldsAnOpenFile) {
  SFile open;
  ASSERT_TRUE(open.Open(SFile::kRead, Spec("/folder/sub/deep.txt")));
  temp.MakeFolder("target");
  for (const char* path : {"/folder", "/folder/sub", "/folder/sub/deep.txt"}) {
    const bool isFolder = std::string(path) != "/folder/sub/deep.txt";
    if (isFolder && kivtest::RunsUnderWine()) {
      continue;  // it moves though a file in it is open
    }
    SFileSpec spec = Spec(path);
    EXPECT_FALSE(spec.Rename("other")) << path;
    EXPECT_FALSE(spec.MoveTo(Spec("/target"))) << path;
    EXPECT_TRUE(spec.IsEqual(Spec(path)));
  }
  EXPECT_TRUE(temp.List("target").empty());
  open.Close();
  EXPECT_TRUE(Spec("/folder").Rename("other"));
}

TEST_F(FileSpecTest, MovesIntoAnotherFolderThatLacksTheName) {
  temp.WriteFile("target/SUB", "other");
  SFileSpec file = Spec("/folder/file.txt"), sub = Spec("/folder/sub"), none = Spec("/folder/no");
  EXPECT_FALSE(sub.MoveTo(Spec("/target")) || sub.MoveTo(Spec("/target/SUB")) ||
               sub.MoveTo(Spec("/missing")) || SFileSpec().MoveTo(Spec("/target")));
  EXPECT_TRUE(file.MoveTo(Spec("/target")));
  EXPECT_TRUE(file.IsEqual(Spec("/target/file.txt")));
  temp.Remove("target/SUB");
  EXPECT_TRUE(sub.MoveTo(Spec("/target")) && none.MoveTo(Spec("/target")));
  EXPECT_TRUE(sub.IsEqual(Spec("/target/sub")) && none.IsEqual(Spec("/target")));
  EXPECT_EQ(temp.ReadFile("target/sub/deep.txt"), "deep");
  EXPECT_TRUE(temp.List("folder").empty());
}

// Copying is inert here, so the way round a failed move leads nowhere and destroys nothing.
TEST_F(FileSpecTest, AFailedMoveLeavesSourceAndTarget) {
  temp.WriteFile("target/keep.txt", "keep");
  FaultFileServices faults(*Platform().files);
  SPlatformOverride<IFileServices> installed(Platform().files, &faults);
  SFileSpec folder = Spec("/folder");
  for (int n = 2; n <= 3; ++n) {  // the look at the target is 1
    SFileSpec target = Spec("/target");
    faults.FailAt(n, SystemError::kNotSameDevice, true);
    EXPECT_FALSE(folder.MoveTo(target));
  }
  faults.FailNever();
  EXPECT_FALSE(folder.MoveTree(Spec("/target")));
  EXPECT_EQ(temp.ReadFile("folder/sub/deep.txt"), "deep");
  EXPECT_EQ(temp.List("target"), std::vector<std::string>({"keep.txt"}));
}

TEST_F(FileSpecTest, OffersTheSameUniqueNameUntilItIsUsed) {
  const SFileSpec folder = Spec("/folder");
  SString first, again, dotted, next, bare;
  EXPECT_TRUE(folder.MakeUniqueName(first, "txt"));
  EXPECT_TRUE(folder.MakeUniqueName(again, "txt"));
  EXPECT_TRUE(folder.MakeUniqueName(dotted, ".txt"));
  EXPECT_EQ(first, again);
  EXPECT_EQ(first, dotted);
  EXPECT_EQ(first.GetLength(), 12);
  temp.WriteFile(std::string("folder/") + first.GetText(), "");
  EXPECT_TRUE(folder.MakeUniqueName(next, "txt"));
  EXPECT_EQ(std::stoi(next.GetText()), std::stoi(first.GetText()) + 1);
  EXPECT_TRUE(folder.MakeUniqueName(bare, ""));
  EXPECT_EQ(bare, next.Left(8));
  EXPECT_FALSE(Spec("/folder/file.txt").MakeUniqueName(next, "txt"));
}

}  // namespace
}  // namespace kivstore
