#include "foundation/files/file_spec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "foundation/files/file.h"
#include "foundation/files/path_steps.h"
#include "platform/platform.h"
#include "tests/support/draw.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/temp_folder.h"

namespace kivstore {
namespace {

using kivtest::Draw;
using kivtest::FaultFileServices;
using kivtest::ForSeeds;

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
               {"/folder/sub/../sub/../", "valid there folder %\\folder\\ | folder", 0},
               {"//folder//./sub/../file.txt", "valid there %\\folder\\file.txt | file.txt", 0},
               {"/folder/missing//", "valid %\\folder\\missing | missing", 2},
               {"/folder/missing/../sub", "valid there folder %\\folder\\sub\\ | sub", 0},
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

TEST(NormalizePath, TakesOutWhatMeansNothingAndStaysOnItsRoot) {
  const std::pair<std::string, std::string> cases[] = {
      {"a", "a"},
      {"a\\", "a"},
      {"a\\..\\b\\", "a\\..\\b"},
      {".\\a\\.\\b", ".\\a\\b"},
      {"..\\a\\..\\..\\b", "..\\..\\b"},
      {"\\", "\\"},
      {"\\\\", "\\"},
      {"\\..\\a", "\\..\\a"},
      {"\\a\\..", "\\"},
      {"C:\\a\\..\\..\\b", "C:\\..\\b"},
      {"\\\\server\\share\\..\\a", "\\\\server\\share\\..\\a"},
      {"\\\\\\server\\\\share\\a\\..\\b", "\\\\server\\share\\b"},
      {"\\a\\...\\..b\\c..\\", "\\a\\...\\..b\\c.."}};
  for (const auto& [asked, held] : cases) {
    std::string path = asked;
    path.resize(NormalizePath(path.data(), path.size()));
    EXPECT_EQ(path, held);
  }
}

// The flags speak of the held path.
TEST_F(FileSpecTest, AnyTextIsLookedAtAsItIsHeld) {
  ForSeeds(300, [&](Draw& draw) {
    std::string asked = draw.OneIn(9) ? "" : "/";
    for (int steps = draw.Below(8); steps > 0; --steps) {
      static const char* const kSteps[] = {"folder", "sub", "file.txt", "..", "..", ".", "", "no"};
      asked += std::string(kSteps[draw.Below(8)]) + (draw.OneIn(2) ? "/" : "\\");
    }
    SFileSpec spec = Spec(asked);
    const std::string set = Describe(spec);
    if (spec.IsValid()) {
      spec.Refresh();
      EXPECT_EQ(Describe(spec), set) << asked;
    }
  });
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
  EXPECT_EQ(Describe(root), "valid there folder \\ | ");
  EXPECT_TRUE(root.Refresh() && root.Down("no such name"));
  EXPECT_STREQ(root.GetPathText(), "\\no such name");
  EXPECT_TRUE(root.Up() && root.IsEqual(SFileSpec("/")));
  EXPECT_FALSE(root.Up() || root.IsValid());
}

TEST_F(FileSpecTest, RefusesAnEmptyPathAndAnyExcessiveLength) {
  SFileSpec spec = Spec("/folder");
  EXPECT_FALSE(spec.Set(""));
  EXPECT_EQ(Describe(spec), "invalid  | ");
  for (const size_t length : {5000, 32766, 40000}) {
    const std::string name(length, 'n');
    std::string folders;
    while (folders.size() < length) {
      folders += "/a";
    }
    spec = Spec("/folder");
    EXPECT_FALSE(spec.Down(name.c_str()) && spec.Exists());
    EXPECT_FALSE(Spec(folders).IsValid());
    EXPECT_FALSE(Spec("/folder").DownAssumed(name.c_str()) && length > 32000);
  }
}

TEST_F(FileSpecTest, DownFromAFolderOnly) {
  SFileSpec spec = Spec("/folder");
  EXPECT_TRUE(spec.Down(nullptr) && spec.IsEqual(Spec("/folder")));
  EXPECT_TRUE(spec.Down("missing") && !spec.Down("x") && spec.IsEqual(Spec("/folder/missing")));
  EXPECT_TRUE(spec.Up() && spec.Down("sub/deep.txt") && spec.IsExistingFile());
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
  EXPECT_TRUE(file.Up() && missing.Up() && missing.IsEqual(file));
  EXPECT_EQ(Describe(file), "valid there folder " + Held("/folder/") + " | folder");
  EXPECT_EQ(log.Count(), 0);
  EXPECT_FALSE(SFileSpec().Up());
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

TEST_F(FileSpecTest, TellsItsTypeItsFreeSpaceAndIfItMayBeWritten) {
  SFileSpec file = Spec("/folder/file.txt"), folder = Spec("/folder"), missing = Spec("/x.txt");
  const SFileType text("Text|Texts|txt|TEXT|1"), any("Text|Texts|E.TxT|TEXT|1");
  EXPECT_TRUE(file.HasType(text) && Spec("/folder/FILE.TXT").HasType(any));
  EXPECT_FALSE(missing.HasType(text) || folder.HasType(text) || file.HasType(SFileType("none")));
  EXPECT_FALSE(file.IsReadOnly());
  EXPECT_TRUE(file.ClearReadOnly() && file.SetReadOnly() && file.IsReadOnly());
  EXPECT_TRUE(file.SetReadOnly() && !file.Delete(false));
  EXPECT_TRUE(file.ClearReadOnly() && !file.IsReadOnly());
  EXPECT_FALSE(folder.SetReadOnly() || folder.ClearReadOnly() || folder.IsReadOnly());
  uint64_t total = 7, free = 7;
  uint32_t cluster = 7;
  EXPECT_TRUE(missing.GetFreeSpace(&total, &free, &cluster));
  EXPECT_TRUE(total > 0 && free <= total && cluster == 1);
  EXPECT_TRUE(folder.GetFreeSpace(nullptr, nullptr, nullptr));
  EXPECT_FALSE(SFileSpec().GetFreeSpace(&total, &free, &cluster));
  EXPECT_EQ(total + free, 0u);
}

TEST_F(FileSpecTest, OffersTheSameUniqueNameUntilItIsUsed) {
  const SFileSpec folder = Spec("/folder");
  SString first, again, dotted, next, bare;
  EXPECT_TRUE(folder.MakeUniqueName(first, "txt") && folder.MakeUniqueName(again, "txt") &&
              folder.MakeUniqueName(dotted, ".txt"));
  EXPECT_TRUE(first == again && first == dotted && first.GetLength() == 12);
  temp.WriteFile(std::string("folder/") + first.GetText(), "");
  EXPECT_TRUE(folder.MakeUniqueName(next, "txt") && folder.MakeUniqueName(bare, ""));
  EXPECT_EQ(std::stoi(next.GetText()), std::stoi(first.GetText()) + 1);
  EXPECT_EQ(bare, next.Left(8));
  EXPECT_FALSE(Spec("/folder/file.txt").MakeUniqueName(next, "txt"));
}

}  // namespace
}  // namespace kivstore
