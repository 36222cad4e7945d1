// Stores kept as files, each with the report that was right for it: no later change may stop
// reading an old store, or read it differently.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

std::string FileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

class GoldenStore : public testing::TestWithParam<const char*> {};

TEST_P(GoldenStore, IsReportedAsEver) {
  const std::string golden = std::string(KIVSTORE_SOURCE_DIR "/tests/golden/") + GetParam();
  const TempFolder folder;
  std::filesystem::copy(golden + "/store", folder.Path("store"),
                        std::filesystem::copy_options::recursive);
  const RunResult result = RunProgram({KIVSTORE_BINARY_DIR "/bin/kivreport", folder.Path("store")});
  EXPECT_EQ(0, result.exitCode) << result.errors;
  EXPECT_EQ(FileText(golden + "/report.txt"), result.output);
}

INSTANTIATE_TEST_SUITE_P(Kinds, GoldenStore, testing::Values("local", "shared", "teachers"),
                         [](const auto& kind) { return std::string(kind.param); });

}  // namespace
}  // namespace kivtest
