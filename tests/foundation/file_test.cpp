#include "foundation/files/file.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/platform.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/temp_folder.h"

namespace kivstore {
namespace {

class FileTest : public testing::Test {
 protected:
  SFileSpec Spec(const std::string& name) const { return SFileSpec(temp.Path(name).c_str()); }

  kivtest::TempFolder temp;
};

std::string Pattern(size_t size) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<char>(i * 7 + i / 251);
  }
  return bytes;
}

TEST_F(FileTest, OpensOnlyWhatIsValidAndExistsAndAsksTheSystemForNothingElse) {
  const SFileSpec missing = Spec("missing");
  const SFileSpec nowhere = Spec("no/where");
  kivtest::FaultFileServices log(*Platform().files);
  SPlatformOverride<IFileServices> installed(Platform().files, &log);
  SFile file;
  int32_t error = 0;
  for (const SFileSpec& spec : {missing, nowhere, SFileSpec()}) {
    EXPECT_FALSE(file.Open(SFile::kRead, spec, 0, &error));
    EXPECT_EQ(error, SFile::kNotFound);
  }
  EXPECT_EQ(log.Count(), 0);
}

TEST_F(FileTest, TellsWhyItDidNotOpen) {
  temp.WriteFile("file", "x");
  kivtest::FaultFileServices faults(*Platform().files);
  SPlatformOverride<IFileServices> installed(Platform().files, &faults);
  const SFileSpec spec = Spec("file");
  const struct {
    SystemError system;
    int32_t told;
  } cases[] = {{SystemError::kFileNotFound, 2},
               {SystemError::kPathNotFound, 2},
               {SystemError::kSharingViolation, 3},
               {SystemError::kAccessDenied, 1},
               {SystemError::kOther, 1}};
  SFile file;
  int32_t error = 77;
  for (const auto& c : cases) {
    faults.FailAt(1, c.system);
    EXPECT_FALSE(file.Open(SFile::kWrite, spec, 0, &error));
    EXPECT_EQ(error, c.told);
  }
  EXPECT_TRUE(file.Open(SFile::kWrite, spec, 0, &error));
  EXPECT_EQ(error, 0);
}

TEST_F(FileTest, DoesNothingWhenClosed) {
  SFile file;
  char byte = 'k';
  EXPECT_FALSE(file.Close());
  EXPECT_EQ(file.Read(1, &byte), 0);
  EXPECT_EQ(file.Write(1, &byte), 0);
  EXPECT_FALSE(file.Seek(0, 0));
  EXPECT_EQ(file.Tell(), 0);
  EXPECT_EQ(file.Size(), 0);
  EXPECT_FALSE(file.SetSize(1));
  EXPECT_FALSE(file.Truncate());
  EXPECT_FALSE(file.Flush());
  EXPECT_EQ(byte, 'k');
}

TEST_F(FileTest, MovesItsPositionFromThreeOrigins) {
  temp.WriteFile("file", "0123456789");
  const struct {
    int32_t origin, offset;
    bool worked;
    int32_t position;
  } cases[] = {{0, 4, true, 4},  {2, 2, true, 6},   {2, -3, true, 3},   {1, -2, true, 8},
               {1, 5, true, 15}, {0, -1, false, 0}, {1, -11, false, 0}, {3, 1, false, 0}};
  for (const int32_t mode : {SFile::kRead, SFile::kWrite}) {
    SFile file;
    ASSERT_TRUE(file.Open(mode, Spec("file")));
    int32_t last = 0;
    for (const auto& c : cases) {
      EXPECT_EQ(file.Seek(c.origin, c.offset), c.worked) << c.origin << " " << c.offset;
      last = c.worked ? c.position : last;
      EXPECT_EQ(file.Tell(), last);
    }
    EXPECT_TRUE(file.AtEnd());
    char byte;
    EXPECT_EQ(file.Read(1, &byte), 0);
    file.Seek(0, 9);
    EXPECT_FALSE(file.AtEnd());
    EXPECT_EQ(file.Read(5, &byte), 1);
    EXPECT_EQ(byte, '9');
    EXPECT_EQ(file.Read(0, &byte), 0);
    EXPECT_EQ(file.Read(-1, &byte), 0);
  }
}

// Around the size up to which a file is read ahead, with the size asked first, late and never.
TEST_F(FileTest, ReadsFilesOfEverySizeWhole) {
  for (const size_t size :
       {size_t{0}, size_t{1}, size_t{65535}, size_t{65536}, size_t{65537}, size_t{200000}}) {
    const std::string bytes = Pattern(size);
    temp.WriteFile("file", bytes);
    for (const int askSizeAfter : {0, 1, 1000}) {
      SFile file;
      SFile second;
      ASSERT_TRUE(file.Open(SFile::kRead, Spec("file")));
      ASSERT_TRUE(second.Open(SFile::kRead, Spec("file")));
      std::string read;
      char part[30011];
      for (int step = 0; step < 100; ++step) {
        if (step == askSizeAfter) {
          EXPECT_EQ(file.Size(), static_cast<int32_t>(size));
          EXPECT_EQ(second.Size(), static_cast<int32_t>(size));
        }
        const int32_t count = file.Read(sizeof part, part);
        if (count == 0) {
          break;
        }
        read.append(part, static_cast<size_t>(count));
      }
      EXPECT_TRUE(read == bytes) << size << " " << askSizeAfter;
      EXPECT_EQ(second.Tell(), 0);
    }
  }
}

TEST_F(FileTest, WritesInPlaceAndSetsItsSize) {
  temp.WriteFile("file", "0123456789");
  SFile file;
  ASSERT_TRUE(file.Open(SFile::kWrite, Spec("file")));
  EXPECT_TRUE(file.Seek(0, 3));
  EXPECT_EQ(file.Write(2, "ab"), 2);
  EXPECT_EQ(file.Size(), 10);
  EXPECT_TRUE(file.SetSize(7));
  EXPECT_EQ(file.Tell(), 5);
  EXPECT_EQ(file.Size(), 7);
  EXPECT_TRUE(file.Truncate());
  EXPECT_EQ(file.Write(2, "yz"), 2);
  EXPECT_TRUE(file.SetSize(9));
  EXPECT_FALSE(file.SetSize(-1));
  EXPECT_EQ(file.Tell(), 7);
  EXPECT_TRUE(file.Flush());
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(temp.ReadFile("file"), std::string("012abyz\0\0", 9));
}

TEST_F(FileTest, DoesNotWriteWhatIsOpenForReading) {
  temp.WriteFile("file", "abc");
  SFile file;
  ASSERT_TRUE(file.Open(SFile::kRead, Spec("file")));
  EXPECT_EQ(file.Write(1, "x"), 0);
  EXPECT_FALSE(file.SetSize(1));
  file.Close();
  EXPECT_EQ(temp.ReadFile("file"), "abc");
}

TEST_F(FileTest, DoesNotOpenAFolder) {
  temp.MakeFolder("folder");
  SFile file;
  int32_t error = 0;
  EXPECT_FALSE(file.Open(SFile::kRead, Spec("folder"), 0, &error));
  EXPECT_FALSE(file.Open(SFile::kWrite, Spec("folder"), 0, &error));
}

TEST_F(FileTest, ReadersShareAndAWriterIsAlone) {
  temp.WriteFile("file", "x");
  const struct {
    int32_t first, second;
    bool opens;
  } cases[] = {{SFile::kRead, SFile::kRead, true},
               {SFile::kRead, SFile::kWrite, false},
               {SFile::kWrite, SFile::kRead, false},
               {SFile::kWrite, SFile::kWrite, false}};
  for (const auto& c : cases) {
    SFile first, second;
    int32_t error = 0;
    ASSERT_TRUE(first.Open(c.first, Spec("file")));
    EXPECT_EQ(second.Open(c.second, Spec("file"), 0, &error), c.opens);
    EXPECT_EQ(error, c.opens ? SFile::kSuccess : SFile::kSharingViolation);
    first.Close();
    EXPECT_TRUE(second.Open(c.second, Spec("file"), 0, &error));
  }
}

}  // namespace
}  // namespace kivstore
