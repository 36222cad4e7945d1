// Files, walks through folders, and file types.
#include "foundation/files/file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>
#include <string>

#include "foundation/files/file_finder.h"
#include "platform/platform.h"
#include "tests/support/draw.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/temp_folder.h"

namespace kivstore {
namespace {

class FileTest : public testing::Test {
 protected:
  SFileSpec Spec(const std::string& name) const { return SFileSpec(temp.Path(name).c_str()); }

  kivtest::TempFolder temp;
};

TEST_F(FileTest, DoesWhatAStringOfBytesDoes) {
  kivtest::ForSeeds(20, [&](kivtest::Draw& draw) {
    std::string model = draw.Text(20, "0123456789");
    temp.WriteFile("file", model);
    SFile file;
    ASSERT_TRUE(file.Open(SFile::kWrite, Spec("file")));
    for (int step = 0; step < 60 && !HasFailure(); ++step) {
      const int32_t size = file.Size(), at = file.Tell(), count = draw.Between(-1, 9);
      const int32_t origin = draw.Below(4), offset = draw.Between(-12, 12);
      const int32_t from[] = {0, size, at, -99};
      char read[9];
      switch (draw.Below(6)) {
        case 0:
        case 1:
          EXPECT_EQ(file.Seek(origin, offset), from[origin] + offset >= 0);
          EXPECT_EQ(file.Tell(), from[origin] + offset >= 0 ? from[origin] + offset : at);
          break;
        case 2: {
          const int32_t moved = file.Read(count, read);
          EXPECT_EQ(moved, std::clamp(std::min(count, size - at), 0, 9));
          EXPECT_EQ(std::string(read, size_t(moved)),
                    moved > 0 ? model.substr(size_t(at), size_t(moved)) : "");
          break;
        }
        case 3:
          EXPECT_EQ(file.Write(count, "abcdefghi"), std::max(count, 0));
          if (count > 0) {
            model.resize(std::max(model.size(), size_t(at + count)));
            model.replace(size_t(at), size_t(count), "abcdefghi", size_t(count));
          }
          break;
        case 4:
          EXPECT_EQ(file.SetSize(offset), offset >= 0);
          EXPECT_EQ(file.Tell(), at);
          model.resize(offset >= 0 ? size_t(offset) : model.size());
          break;
        default:
          EXPECT_TRUE(file.Truncate() && file.Flush());
          model.resize(size_t(at));
      }
      EXPECT_EQ(file.Size(), static_cast<int32_t>(model.size()));
      EXPECT_EQ(file.AtEnd(), file.Tell() >= file.Size());
    }
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(temp.ReadFile("file"), model);
  });
}

TEST_F(FileTest, OpensWhatIsThereTellsWhyItDoesNotAndDoesNothingClosed) {
  temp.WriteFile("file", "x");
  const SFileSpec spec = Spec("file"), missing = Spec("missing"), nowhere = Spec("no/where");
  kivtest::FaultFileServices faults(*Platform().files);
  SPlatformOverride<IFileServices> installed(Platform().files, &faults);
  SFile file;
  int32_t error = 77;
  for (const SFileSpec& none : {missing, nowhere, SFileSpec()}) {
    EXPECT_FALSE(file.Open(SFile::kRead, none, &error));
    EXPECT_EQ(error, SFile::kNotFound);
  }
  EXPECT_EQ(faults.Count(), 0);
  const struct {
    SystemError system;
    int32_t told;
  } cases[] = {{SystemError::kFileNotFound, 2},
               {SystemError::kPathNotFound, 2},
               {SystemError::kSharingViolation, 3},
               {SystemError::kAccessDenied, 1}};
  for (const auto& c : cases) {
    faults.FailAt(1, c.system);
    EXPECT_FALSE(file.Open(SFile::kWrite, spec, &error));
    EXPECT_EQ(error, c.told);
  }
  char byte = 'k';
  EXPECT_FALSE(file.IsOpen() || file.Close() || file.Seek(0, 0) || file.SetSize(1) ||
               file.Truncate() || file.Flush());
  EXPECT_EQ(file.Read(1, &byte) + file.Write(1, &byte) + file.Tell() + file.Size(), 0);
  EXPECT_TRUE(file.AtEnd());
  EXPECT_TRUE(file.Open(SFile::kWrite, spec, &error));
  EXPECT_EQ(error, 0);
  EXPECT_TRUE(file.Open(SFile::kRead, spec)) << "lets go of what it held";
  EXPECT_EQ(file.Write(1, "y"), 0);
  EXPECT_FALSE(file.SetSize(0));
}

// Around the size up to which a file is read ahead, with the size asked first, late and never.
TEST_F(FileTest, ReadsFilesOfEverySizeWhole) {
  for (const size_t size : {0, 1, 65535, 65536, 65537, 200000}) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i) {
      bytes[i] = static_cast<char>(i * 7 + i / 251);
    }
    temp.WriteFile("file", bytes);
    for (const int askSizeAfter : {0, 1, 1000}) {
      SFile file;
      ASSERT_TRUE(file.Open(SFile::kRead, Spec("file")));
      std::string read;
      char part[30011];
      int32_t count = 1;
      for (int step = 0; count > 0; ++step) {
        EXPECT_TRUE(step != askSizeAfter || file.Size() == static_cast<int32_t>(size));
        count = file.Read(sizeof part, part);
        read.append(part, static_cast<size_t>(count));
      }
      EXPECT_TRUE(read == bytes) << size << " " << askSizeAfter;
    }
  }
}

class FileFinderTest : public testing::Test {
 protected:
  FileFinderTest() {
    temp.WriteFile("a.kiv", "");
    temp.WriteFile(".hidden", "");
    temp.MakeFolder("folder");
    temp.MakeFolder(".folder");
    SystemError error;
    for (const char* name : {".hidden", ".folder"}) {  // elsewhere than on Windows the dot does it
      Platform().files->SetAttributes(temp.Path(name).c_str(), {.hidden = true}, error);
    }
  }

  SFileSpec Folder() const { return SFileSpec(temp.Path().c_str()); }

  std::string Find(uint16_t mask, const char* pattern) const {
    SFileFinder finder(Folder(), mask, pattern);
    std::set<std::string> names;
    SFileSpec spec;
    while (finder.Next(spec)) {
      names.insert(spec.GetFileName().GetText() + std::string(" "));
      EXPECT_TRUE(spec.IsEqual(SFileSpec(spec.GetPath()))) << "as Set would give it";
    }
    EXPECT_FALSE(finder.HasFailed() || finder.Next(spec));
    return std::accumulate(names.begin(), names.end(), std::string());
  }

  kivtest::TempFolder temp;
};

TEST_F(FileFinderTest, TakesEntriesThatPassATypeBitAHiddenBitAndThePattern) {
  const struct {
    uint16_t mask;
    const char *pattern, *names;
  } cases[] = {{SFileFinder::kVisibleFiles, nullptr, "a.kiv "},
               {SFileFinder::kVisibleFolders, nullptr, "folder "},
               {SFileFinder::kEverything, nullptr, ".folder .hidden a.kiv folder "},
               {9, nullptr, ".hidden "},
               {10, nullptr, ".folder "},
               {3, nullptr, ""},
               {12, nullptr, ""},
               {15, ".KIV", "a.kiv "},
               {15, "iv", "a.kiv "},
               {15, "", ".folder .hidden a.kiv folder "}};
  for (const auto& c : cases) {
    EXPECT_EQ(Find(c.mask, c.pattern), c.names) << c.mask;
  }
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

TEST(SFileType, HasFiveFieldsOfWhichTheStringsMustBeThereAndTheFlagIsOneDigitOne) {
  const SFileType type("Kiv File|Kiv Files|kiv|KivF|1"), set("a|b|c|code|1");
  EXPECT_EQ(type.GetName() + type.GetPlural() + type.GetExtension(), "Kiv FileKiv Fileskiv");
  EXPECT_EQ(type.GetCode(), 0x4B697646u);
  for (const char* text :
       {"", "a", "a|b|c|code", "a|b|c", "|b|c|code|1", "a||c|code|1", "a|b||code|1", "||||"}) {
    EXPECT_FALSE(SFileType(text).IsValid()) << text;
  }
  for (const char* text : {"a|b|c|code|0", "a|b|c|code|", "a|b|c|code|11", "x|b|c|code|1",
                           "a|x|c|code|1", "a|b|x|code|1", "a|b|c||1", "a|b|c|longer|1|more"}) {
    EXPECT_TRUE(SFileType(text).IsValid() && !(set == SFileType(text))) << text;
  }
  EXPECT_TRUE(set == SFileType("a|b|c|code and more|1"));
}

TEST(FileTypeRegistry, KnowsTheStandardTypesAndKeepsTheFirstRowOfAKey) {
  RegisterFileType(FourCharCode("tst1"), "First|Firsts|one|Cod1|1");
  RegisterFileType(FourCharCode("tst1"), "Second|Seconds|two|Cod2|1");
  RegisterFileType(FourCharCode("tst2"), 4005);
  const struct {
    const char (&key)[5];
    const char* text;
  } rows[] = {{"TEXT", "Text File|Text Files|txt|TEXT|1"},
              {"PREF", "Preference File|Preference Files|ini|pref|1"},
              {"QQBS", "QBundle File|QBundle Files|qbs|Qqbs|1"},
              {"PICT", "PICT File|PICT Files|pic|PICT|0"},
              {"BMP ", "BMP File|BMP Files|bmp|BMP |1"},
              {"EXEC", "Executable|Executables|exe|APPL|0"},
              {"QQBC", "QBun Script File|QBun Script Files|qbc|Qqbc|1"},
              {"QQBM", "QBun Make File|QBun Make Files|qbm|Qqbm|1"},
              {"KIVA", "Kiv File|Kiv Files|kiv|KivF|1"},
              {"DAT ", "DAT File|DAT Files|dat|TEXT|1"},
              {"JRNL", "Journal File|Journal Files|jnl|JDOC|0"},
              {"LOCK", "Lock File|Lock Files|lok|Lock|1"},
              {"tst1", "First|Firsts|one|Cod1|1"},
              {"tst2", "Executable|Executables|exe|APPL|0"},
              {"none", ""}};
  for (const auto& row : rows) {
    EXPECT_TRUE(FindFileType(FourCharCode(row.key)) == SFileType(row.text)) << row.key;
  }
}

}  // namespace
}  // namespace kivstore
