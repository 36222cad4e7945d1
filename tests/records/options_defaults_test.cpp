// Every option with its key, type and default, against lists written out by hand.
#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "records/tutor_options_dob.h"

namespace kivtest {
namespace {

using namespace kivstore;

// Each option as key=value: a bool as yes or no, an array as its length in brackets, a fresh mark
// as a star.
class OptionLister {
 public:
  void operator()(const char* key, SStamped<int16_t>& field) {
    Add(key, std::to_string(field.value), field.stamp);
  }
  void operator()(const char* key, SStamped<bool>& field) {
    Add(key, field.value ? "yes" : "no", field.stamp);
  }
  void operator()(const char* key, SStamped<SHandleArray<bool>>& field) {
    Add(key, "[" + std::to_string(field.value.GetCount()) + "]", field.stamp);
  }

  std::string text;

 private:
  void Add(const std::string& key, const std::string& value, SDateTime stamp) {
    text += key + "=" + value + (stamp.IsFresh() ? "* " : " ");
    EXPECT_TRUE(stamp.IsFresh() || stamp == SDateTime::None()) << key;
  }
};

template <class Record>
std::string OptionsOf(Record& record) {
  OptionLister lister;
  record.ForEachField(lister);
  return lister.text;
}

std::string FrameworkOptions(const std::string& separateLastName,
                             const std::string& autoGameSaving) {
  return "SoundOn=2 StudAddOwnName=yes SeparateLastName=" + separateLastName +
         " DisplayFirstLastName=yes AutoGameSaving=" + autoGameSaving +
         " MaxGameFiles=10 AutoOpenStudFile=no UseSystemIODialogs=no StudentPrint=yes "
         "CentralFileLocation=yes RecordStudentProgress=yes TopScoreAllClasses=yes "
         "TopScoreIndivClass=yes TopScoreIndivStudent=yes StudentLevelRemembered=yes "
         "UseJournal=yes WordLists=yes UseCamera=yes KeyboardShortcut=yes TabBetweenAll=no "
         "StudentsHavePassword=no ";
}

const char kTutorOptions[] =
    "VocabLevel=1 AllowPrinting=yes SpacesAfterPeriod=1 KeyVoiceOver=yes "
    "InstructionalDirections=yes FatherTimeNarration=yes BackgroundMusic=yes SoundEffects=yes "
    "RolloverButtons=no TextSize=2 AllowPowerBooster=yes NumberErrorsPowerBooster=12 "
    "AllowAutoGoalAdj=yes MinAccuracyGoal=50 MinWPMGoal=1 Checkpoint=0 AllowPostTest=yes "
    "Teach6Key=1 GamebreakInterval=5 BackgroundAnimationOn=yes LeftRightGame=0 "
    "CurrentKeyProvided=yes AllowPause_DS=yes AllowRepeatLine=yes AllowCorrectionDuringTest_DS=yes "
    "AllowCorrectionDuringTest_Warp=yes AllowTimeLimit=no TimeLimitWarp=2 WarpspeedView=1 "
    "ShowTimer=yes AllowPause_Warp=yes AllowPlayandPracticeMode=yes ";

TEST(OptionsDefaults, AreThoseOfTheFramework) {
  SKivTeacherOptionsDob record;
  EXPECT_EQ(OptionsOf(record), FrameworkOptions("no", "no"));
  EXPECT_TRUE(record.IsDirty());
  ASSERT_NE(record.gameOptions, nullptr);
  EXPECT_EQ(record.gameOptions->GetClassId(), SKivTeacherOptionsGameDob::StaticClassId());
}

TEST(OptionsDefaults, OfTheTutorDecideTwoOfTheFrameworksAfresh) {
  STeacherOptionsDob record;
  EXPECT_EQ(OptionsOf(record), FrameworkOptions("yes*", "yes*") + kTutorOptions);
  EXPECT_TRUE(record.IsDirty());
  EXPECT_NE(record.GetGameOptions(), nullptr);
}

TEST(OptionsDefaults, AreAStudentAtTheStart) {
  STeacherOptionsGameDob record;
  EXPECT_EQ(OptionsOf(record),
            "CurrentMissionNumber=1 Accuracy=80 Speed=10 LessonDone=[25] NotebookDone=[25] "
            "TypelineDone=[25] WindshieldTypersDone=[25] WarpSpeedDone=[25] "
            "DictationStationDone=[25] KeyFiguresDone=[25] ");
  EXPECT_FALSE(record.AllMissionsCompleted);
  EXPECT_FALSE(record.IsDirty());
}

TEST(OptionsDefaults, ComeBackWithClear) {
  STeacherOptionsDob record;
  const std::string fresh = OptionsOf(record);
  record.ForEachField([](const char*, auto& field) {
    if constexpr (!std::is_class_v<std::remove_reference_t<decltype(field.value)>>) {
      field.Set(!field.value);
    }
  });
  record.missions.SetCount(40);
  record.Clear();
  EXPECT_EQ(OptionsOf(record), fresh);
  EXPECT_EQ(record.missions.GetCount(), 25);
}

// Mission by mission: the activity at 1. D dictation station, K key figures, T typeline, W warp
// speed, S windshield typers.
constexpr char kCourse[] = "KSKTDWTDSDTWTDWWKSTWSWDKK";

int CodeOf(char letter) {
  switch (letter) {
    case 'D':
      return 0;
    case 'K':
      return 1;
    case 'T':
      return 5;
    case 'W':
      return 6;
    default:
      return 7;
  }
}

TEST(OptionsDefaults, HoldTheStandardCourse) {
  STeacherOptionsDob record;
  ASSERT_EQ(record.missions.GetCount(), 25);
  for (int mission = 1; mission <= 25; ++mission) {
    const int centre = CodeOf(kCourse[mission - 1]);
    for (const int code : {0, 1, 4, 5, 6, 7}) {
      const int usual = code == 5 && mission <= 3 ? 0 : 2;
      EXPECT_EQ(record.GetMissionSetting(code, mission), code == centre ? 1 : usual)
          << "mission " << mission << ", activity " << code;
    }
    EXPECT_EQ(record.missions.At(mission - 1).GetModified().Raw(), 0xFFFFFFFF);
    EXPECT_EQ(record.missions.At(mission - 1).Typeline.stamp.Raw(), 0u);
  }
}

}  // namespace
}  // namespace kivtest
