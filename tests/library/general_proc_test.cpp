// The library as a host sees it: the public header and the shared library, nothing else.
#include <gtest/gtest.h>
#include <kivstore/general_proc.h>

#include <cstddef>
#include <string>

#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

TEST(GeneralProc, TellsTheProgressOfAStudentThroughTheLibrary) {
  const TempFolder folder;
  StoreBuilder store(folder.Path(), Kind::kTeachers);
  const std::string hill = store.AddTeacher("Ms Hill");
  const std::string room = store.AddClass(hill, "Room 12");
  const std::string ann = store.AddStudent(room, "Ann", "Lee");
  GameBytes game;
  game.learnedNewKeys = true;
  store.WriteGame(ann, game);
  store.WriteOptions(ann, OptionsBytes().SetMission(9).Set("VocabLevel", 3));
  store.Finish();
  const auto before = store.Snapshot();

  SGeneralParams block{};
  block.command = KIV_STUDENT_PROGRESS;
  block.mode = 1;
  block.dataPath = folder.Path().c_str();
  block.teacherIndex = 1;
  block.studentListIndex = 1;
  block.studentNameSize = sizeof block.studentName;
  GeneralProc(&block);
  EXPECT_EQ(block.result, 1);
  EXPECT_STREQ(block.studentName, "Ann Lee");
  EXPECT_EQ(block.currentMission, 9);
  EXPECT_EQ(block.previousMission, 8);
  EXPECT_EQ(block.vocabLevel, 3);
  EXPECT_EQ(store.Snapshot(), before);
}

// The other commands run into creating something: no folder, no file, no lock appears.
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
