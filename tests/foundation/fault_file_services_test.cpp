#include "tests/support/fault_file_services.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/files/file.h"
#include "platform/platform.h"
#include "tests/support/temp_folder.h"

namespace kivstore {
namespace {

using kivtest::FaultFileServices;
using kivtest::FileCall;

class FaultFileServicesTest : public testing::Test {
 protected:
  FaultFileServicesTest() : faults(*Platform().files), installed(Platform().files, &faults) {
    temp.WriteFile("file", "0123456789");
  }

  // Four operations: a look, opening, reading, writing.
  std::string Run() {
    SFile file;
    char bytes[4] = "";
    std::string done;
    const SFileSpec spec(temp.Path("file").c_str());
    done += spec.Exists() ? 'L' : '-';
    done += file.Open(SFile::kWrite, spec) ? 'O' : '-';
    done += std::to_string(file.Read(3, bytes));
    done += std::to_string(file.Write(3, "abc"));
    return done;
  }

  kivtest::TempFolder temp;
  FaultFileServices faults;
  SPlatformOverride<IFileServices> installed;
};

TEST_F(FaultFileServicesTest, FailsTheNthOperationOnceOrForEver) {
  const struct {
    int n;
    bool forever;
    const char* done;
  } cases[] = {{1, false, "--00"}, {2, false, "L-00"}, {3, false, "LO03"},
               {3, true, "LO00"},  {4, false, "LO30"}, {5, false, "LO33"}};
  for (const auto& c : cases) {
    faults.FailAt(c.n, SystemError::kDiskFull, c.forever);
    EXPECT_EQ(Run(), c.done) << c.n;
    EXPECT_EQ(faults.HasStruck(), c.n < 5);
    EXPECT_TRUE(faults.OpenPaths().empty());
  }
}

TEST_F(FaultFileServicesTest, LetsAReadOrWriteFallShort) {
  faults.FallShortAt(3, 1);
  EXPECT_EQ(Run(), "LO13");
  faults.FallShortAt(4, 2);
  EXPECT_EQ(Run(), "LO32");
  faults.FallShortAt(2, 2);
  EXPECT_EQ(Run(), "L-00");
}

TEST_F(FaultFileServicesTest, NothingWorksAfterDeath) {
  int deaths = 0;
  faults.DieAt(2, [&] { ++deaths; });
  EXPECT_EQ(Run(), "L-00");
  EXPECT_EQ(Run(), "--00");
  EXPECT_EQ(deaths, 1);
  faults.FailNever();
  EXPECT_EQ(Run(), "LO33");
}

TEST_F(FaultFileServicesTest, LogsWhatWasAskedAndKnowsTheOpenHandles) {
  faults.ClearLog();
  Run();
  const std::string path = SFileSpec(temp.Path("file").c_str()).GetPathText();
  faults.ClearLog();
  Run();
  EXPECT_EQ(faults.Log(),
            std::vector<FileCall>(
                {{"Attributes", path}, {"OpenAlone", path}, {"Read", path}, {"Write", path}}));
  EXPECT_EQ(faults.CountOf("Read"), 1);
  SFile file;
  file.Open(SFile::kRead, SFileSpec(temp.Path("file").c_str()));
  EXPECT_EQ(faults.OpenPaths(), std::vector<std::string>({path}));
}

}  // namespace
}  // namespace kivstore
