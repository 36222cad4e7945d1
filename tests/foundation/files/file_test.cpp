#include "foundation/files/file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

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

}  // namespace
}  // namespace kivstore
