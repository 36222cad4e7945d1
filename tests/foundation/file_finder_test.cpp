#include "foundation/files/file_finder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/temp_folder.h"

namespace kivstore {
namespace {

using Names = std::vector<std::string>;

class FileFinderTest : public testing::Test {
 protected:
  SFileSpec Folder() const { return SFileSpec(temp.Path().c_str()); }

  Names Find(uint16_t mask, const char* pattern = nullptr) const {
    SFileFinder finder(Folder(), mask, pattern);
    Names names;
    SFileSpec spec;
    while (finder.Next(spec)) {
      names.push_back(spec.GetFileName().GetText());
    }
    EXPECT_FALSE(finder.HasFailed());
    EXPECT_FALSE(finder.Next(spec));
    std::sort(names.begin(), names.end());
    return names;
  }

  void MakeHidden(const char* name) const {
#ifdef _WIN32
    const FileAttributes hidden{.hidden = true};
    SystemError error;
    Platform().files->SetAttributes(temp.Path(name).c_str(), hidden, error);
#else
    (void)name;  // the dot does it
#endif
  }

  kivtest::TempFolder temp;
};

TEST_F(FileFinderTest, TakesEntriesThatPassATypeBitAndAHiddenBit) {
  temp.WriteFile("file", "");
  temp.WriteFile(".hidden file", "");
  temp.MakeFolder("folder");
  temp.MakeFolder(".hidden folder");
  MakeHidden(".hidden file");
  MakeHidden(".hidden folder");
  EXPECT_EQ(Find(5), Names({"file"}));
  EXPECT_EQ(Find(6), Names({"folder"}));
  EXPECT_EQ(Find(9), Names({".hidden file"}));
  EXPECT_EQ(Find(10), Names({".hidden folder"}));
  EXPECT_EQ(Find(7), Names({"file", "folder"}));
  EXPECT_EQ(Find(15), Names({".hidden file", ".hidden folder", "file", "folder"}));
  EXPECT_EQ(Find(3), Names());
  EXPECT_EQ(Find(12), Names());
}

TEST_F(FileFinderTest, PutsAStarBeforeThePattern) {
  for (const char* name : {"a.kiv", "b.KIV", "kiv", "kiv.txt", "xkiv"}) {
    temp.WriteFile(name, "");
  }
  EXPECT_EQ(Find(15, ".kiv"), Names({"a.kiv", "b.KIV"}));
  EXPECT_EQ(Find(15, "kiv"), Names({"a.kiv", "b.KIV", "kiv", "xkiv"}));
  EXPECT_EQ(Find(15, "").size(), 5u);
  SFileSpec spec;
  EXPECT_FALSE(SFileFinder(Folder(), 15, std::string(5000, 'p').c_str()).Next(spec));
}

TEST_F(FileFinderTest, GivesTheSpecsThatSetWouldGive) {
  temp.WriteFile("file", "");
  temp.MakeFolder("folder");
  SFileFinder finder(Folder(), SFileFinder::kEverything);
  SFileSpec found;
  while (finder.Next(found)) {
    EXPECT_TRUE(found.IsEqual(SFileSpec(found.GetPath()))) << found.GetPathText();
  }
}

TEST_F(FileFinderTest, FindsNothingAndFailsWhereThereIsNoFolder) {
  temp.WriteFile("file", "");
  for (const std::string& path : {temp.Path("file"), temp.Path("missing"), std::string()}) {
    SFileFinder finder(SFileSpec(path.c_str()), SFileFinder::kEverything);
    SFileSpec spec;
    EXPECT_FALSE(finder.Next(spec));
    EXPECT_TRUE(finder.HasFailed());
  }
}

TEST_F(FileFinderTest, TellsAListingThatBrokeOff) {
  temp.WriteFile("a", "");
  temp.WriteFile("b", "");
  const SFileSpec folder = Folder();
  kivtest::FaultFileServices faults(*Platform().files);
  SPlatformOverride<IFileServices> installed(Platform().files, &faults);
  for (int n = 1; n <= 7; ++n) {
    faults.FailAt(n);
    SFileFinder finder(folder, SFileFinder::kEverything);
    FolderEntry entry;
    while (finder.NextEntry(entry)) {
    }
    EXPECT_EQ(finder.HasFailed(), faults.HasStruck()) << n;
  }
  EXPECT_FALSE(faults.HasStruck());  // opening, four entries with the dots, the end: six
}

TEST_F(FileFinderTest, ListsAFolderLargerThanItsBufferOnceEach) {
  Names written;
  for (int i = 0; i < 900; ++i) {
    written.push_back("a name long enough to fill the buffer " + std::to_string(10000 + i));
    temp.WriteFile(written.back(), "");
  }
  EXPECT_EQ(Find(SFileFinder::kVisibleFiles), written);
}

}  // namespace
}  // namespace kivstore
