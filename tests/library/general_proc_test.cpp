// The library as a host sees it: the public header and the shared library, nothing else.
#include <gtest/gtest.h>
#include <kivstore/general_proc.h>

#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

// All of them run into creating something: no folder, no file, no lock appears.
TEST(GeneralProc, CreatesNothingInAStoreThatLacksEverything) {
  const TempFolder folder;
  folder.MakeFolder("Classes.zep");
  folder.WriteFile("Classes.zep/index.lok", "");
  for (const bool networked : {true, false}) {
    for (int command = 1; command <= 14; ++command) {
      SGeneralParams block{};
      block.command = command;
      block.mode = networked ? 1 : 0;
      block.dataPath = folder.Path().c_str();
      block.teacherIndex = block.teacherListIndex = block.classListIndex = 1;
      block.studentListIndex = 1;
      GeneralProc(&block);
    }
  }
  EXPECT_EQ(folder.List(), std::vector<std::string>{"Classes.zep"});
  EXPECT_EQ(folder.List("Classes.zep"), std::vector<std::string>{"index.lok"});
}

}  // namespace
}  // namespace kivtest
