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
  FileFinderTest() {
    for (const char* name : {"a.kiv", ".hidden"}) {
      temp.WriteFile(name, "");
    }
    for (const char* name : {"folder", ".folder"}) {
      temp.MakeFolder(name);
    }
    SystemError error;
    for (const char* name : {".hidden", ".folder"}) {  // elsewhere than on Windows the dot does it
      Platform().files->SetAttributes(temp.Path(name).c_str(), {.hidden = true}, error);
    }
  }

  SFileSpec Folder() const { return SFileSpec(temp.Path().c_str()); }

  Names Find(uint16_t mask, const char* pattern = nullptr) const {
    SFileFinder finder(Folder(), mask, pattern);
    Names names;
    SFileSpec spec;
    while (finder.Next(spec)) {
      names.push_back(spec.GetFileName().GetText());
      EXPECT_TRUE(spec.IsEqual(SFileSpec(spec.GetPath()))) << "as Set would give it";
    }
    EXPECT_FALSE(finder.HasFailed() || finder.Next(spec));
    std::sort(names.begin(), names.end());
    return names;
  }

  kivtest::TempFolder temp;
};

TEST_F(FileFinderTest, TakesEntriesThatPassATypeBitAHiddenBitAndThePattern) {
  EXPECT_EQ(Find(SFileFinder::kVisibleFiles), Names({"a.kiv"}));
  EXPECT_EQ(Find(SFileFinder::kVisibleFolders), Names({"folder"}));
  EXPECT_EQ(Find(9), Names({".hidden"}));
  EXPECT_EQ(Find(10), Names({".folder"}));
  EXPECT_EQ(Find(SFileFinder::kEverything), Names({".folder", ".hidden", "a.kiv", "folder"}));
  EXPECT_EQ(Find(3), Names());
  EXPECT_EQ(Find(12), Names());
  EXPECT_EQ(Find(15, ".KIV"), Names({"a.kiv"}));
  EXPECT_EQ(Find(15, "iv"), Names({"a.kiv"}));
  EXPECT_EQ(Find(15, "").size(), 4u);
  SFileSpec spec;
  EXPECT_FALSE(SFileFinder(Folder(), 15, std::string(5000, 'p').c_str()).Next(spec));
}

TEST_F(FileFinderTest, TellsAListingThatBrokeOffOrCouldNotBegin) {
  for (const std::string& path : {temp.Path("a.kiv"), temp.Path("missing"), std::string()}) {
    SFileFinder finder(SFileSpec(path.c_str()), SFileFinder::kEverything);
    SFileSpec spec;
    EXPECT_FALSE(finder.Next(spec));
    EXPECT_TRUE(finder.HasFailed());
  }
  const SFileSpec folder = Folder();
  kivtest::FaultFileServices faults(*Platform().files);
  SPlatformOverride<IFileServices> installed(Platform().files, &faults);
  int n = 0;
  do {
    faults.FailAt(++n);
    SFileFinder finder(folder, SFileFinder::kEverything);
    FolderEntry entry;
    while (finder.NextEntry(entry)) {
    }
    EXPECT_EQ(finder.HasFailed(), faults.HasStruck()) << n;
  } while (faults.HasStruck());
  EXPECT_EQ(n, 9);  // opening, six entries with the dots, the end, nothing
}

}  // namespace
}  // namespace kivstore
