// The records as text in a preference file.
#include <gtest/gtest.h>

#include "game/game_dob.h"
#include "records/tutor_options_dob.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

using namespace kivstore;

class TextForm : public testing::Test {
 protected:
  SFileSpec Write(const std::string& text) {
    folder.WriteFile("tutor.ini", text);
    return SFileSpec(folder.Path("tutor.ini").c_str());
  }
  bool HasLine(const std::string& line) const {
    return ("\n" + folder.ReadFile("tutor.ini")).find("\n" + line + "\r\n") != std::string::npos;
  }

  TempFolder folder;
};

TEST_F(TextForm, HoldsAWholeOptionsRecord) {
  const SFileSpec spec = Write("");
  STeacherOptionsDob record;
  record.SetMissionSetting(5, 27, 9);
  record.TextSize = {-3, SDateTime(77)};
  record.GetGameOptions()->SetDone(2, 3, true);
  ASSERT_TRUE(record.SaveToPref(spec, "Options"));
  EXPECT_TRUE(HasLine("TextSize=-3"));
  EXPECT_TRUE(HasLine("TextSize_ts_low=77"));
  EXPECT_TRUE(HasLine("TOGameDob_Exists=1"));
  EXPECT_TRUE(HasLine("TOGameDob_LessonDone_Count=25"));
  EXPECT_TRUE(HasLine("TOGameDob_LessonDone_2=1"));
  EXPECT_TRUE(HasLine("[Options_Missions]"));
  EXPECT_TRUE(HasLine("26_Typeline=9"));
  STeacherOptionsDob read;
  EXPECT_TRUE(read.LoadFromPref(spec, "Options"));
  EXPECT_TRUE(read.IsEqual(record));
  EXPECT_EQ(read.TextSize.stamp.Raw(), 77u);
}

TEST_F(TextForm, HoldsAWholeGame) {
  const SFileSpec spec = Write("");
  SGameDob game;
  game.firstName = "Ann";
  game.graphData.SetAt(29, 5);
  game.lessonDob.bestTotalTime = 0xFFFFFFF0;
  ASSERT_TRUE(game.SaveToPref(spec, "Game"));
  EXPECT_TRUE(HasLine("StudGraphData_29=5"));
  EXPECT_TRUE(HasLine("[Game_LessonDob]"));
  SGameDob read;
  EXPECT_TRUE(read.LoadFromPref(spec, "Game"));
  EXPECT_TRUE(read.IsEqual(game));
  EXPECT_TRUE(game.DeleteFromPref(spec, "Game"));
  EXPECT_FALSE(HasLine("FirstName=Ann"));
  EXPECT_FALSE(HasLine("StudGraphData_29=5"));
}

// An absent key is a failure, but the rest is read.
TEST_F(TextForm, KeepsTheDefaultOfWhatItLacks) {
  SDErrorDob counts;
  EXPECT_FALSE(counts.LoadFromPref(
      Write("[Counts]\r\nKeyTypedWrong_Count=3\r\nKeyTypedWrong_2=7\r\n"), "Counts"));
  ASSERT_EQ(counts.keyTypedWrong.GetCount(), 3);
  EXPECT_EQ(counts.keyTypedWrong.At(1), 0);
  EXPECT_EQ(counts.keyTypedWrong.At(2), 7);
  EXPECT_EQ(counts.keyTypedTotal.GetCount(), 48);
}

TEST_F(TextForm, BelievesNoCountThatItDoesNotBack) {
  SDErrorDob counts;
  EXPECT_FALSE(counts.LoadFromPref(
      Write("[Counts]\r\nKeyTypedWrong_Count=65535\r\nKeyTypedWrong_9=1\r\n"), "Counts"));
  EXPECT_LE(counts.keyTypedWrong.GetCount(), 1024);
  EXPECT_EQ(counts.keyTypedWrong.At(9), 1);
  STeacherOptionsDob options;
  EXPECT_FALSE(
      options.LoadFromPref(Write("[O]\r\n[O_Missions]\r\nCount=65535\r\n40_Typeline=8\r\n"), "O"));
  EXPECT_LE(options.missions.GetCount(), 400);
  EXPECT_EQ(options.GetMissionSetting(5, 41), 8);
}

}  // namespace
}  // namespace kivtest
