// Every option with its key, type and default, against lists written out by hand.
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "records/tutor_options_dob.h"

namespace kivtest {
namespace {

using namespace kivstore;

struct Option {
  std::string key;
  char type;  // 's' short, 'b' bool, 'a' array
  int value;
  uint32_t stamp = 0;

  bool operator==(const Option&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Option& option) {
  return out << option.key << ' ' << option.type << ' ' << option.value << ' ' << option.stamp;
}

class OptionLister {
 public:
  template <class T>
  void operator()(const char* key, SStamped<T>& field) {
    const char type = std::is_same_v<T, bool> ? 'b' : 's';
    options.push_back({key, type, static_cast<int>(field.value), field.stamp.Raw()});
  }
  template <class T>
  void operator()(const char* key, SStamped<SHandleArray<T>>& field) {
    options.push_back({key, 'a', field.value.GetCount(), field.stamp.Raw()});
  }

  std::vector<Option> options;
};

template <class Record>
std::vector<Option> OptionsOf(Record& record) {
  OptionLister lister;
  record.ForEachField(lister);
  return lister.options;
}

const std::vector<Option> kFrameworkOptions = {
    {"SoundOn", 's', 2},
    {"StudAddOwnName", 'b', 1},
    {"SeparateLastName", 'b', 0},
    {"DisplayFirstLastName", 'b', 1},
    {"AutoGameSaving", 'b', 0},
    {"MaxGameFiles", 's', 10},
    {"AutoOpenStudFile", 'b', 0},
    {"UseSystemIODialogs", 'b', 0},
    {"StudentPrint", 'b', 1},
    {"CentralFileLocation", 'b', 1},
    {"RecordStudentProgress", 'b', 1},
    {"TopScoreAllClasses", 'b', 1},
    {"TopScoreIndivClass", 'b', 1},
    {"TopScoreIndivStudent", 'b', 1},
    {"StudentLevelRemembered", 'b', 1},
    {"UseJournal", 'b', 1},
    {"WordLists", 'b', 1},
    {"UseCamera", 'b', 1},
    {"KeyboardShortcut", 'b', 1},
    {"TabBetweenAll", 'b', 0},
    {"StudentsHavePassword", 'b', 0},
};

const std::vector<Option> kTutorOptions = {
    {"VocabLevel", 's', 1},
    {"AllowPrinting", 'b', 1},
    {"SpacesAfterPeriod", 's', 1},
    {"KeyVoiceOver", 'b', 1},
    {"InstructionalDirections", 'b', 1},
    {"FatherTimeNarration", 'b', 1},
    {"BackgroundMusic", 'b', 1},
    {"SoundEffects", 'b', 1},
    {"RolloverButtons", 'b', 0},
    {"TextSize", 's', 2},
    {"AllowPowerBooster", 'b', 1},
    {"NumberErrorsPowerBooster", 's', 12},
    {"AllowAutoGoalAdj", 'b', 1},
    {"MinAccuracyGoal", 's', 50},
    {"MinWPMGoal", 's', 1},
    {"Checkpoint", 's', 0},
    {"AllowPostTest", 'b', 1},
    {"Teach6Key", 's', 1},
    {"GamebreakInterval", 's', 5},
    {"BackgroundAnimationOn", 'b', 1},
    {"LeftRightGame", 's', 0},
    {"CurrentKeyProvided", 'b', 1},
    {"AllowPause_DS", 'b', 1},
    {"AllowRepeatLine", 'b', 1},
    {"AllowCorrectionDuringTest_DS", 'b', 1},
    {"AllowCorrectionDuringTest_Warp", 'b', 1},
    {"AllowTimeLimit", 'b', 0},
    {"TimeLimitWarp", 's', 2},
    {"WarpspeedView", 's', 1},
    {"ShowTimer", 'b', 1},
    {"AllowPause_Warp", 'b', 1},
    {"AllowPlayandPracticeMode", 'b', 1},
};

TEST(OptionsDefaults, AreThoseOfTheFramework) {
  SKivTeacherOptionsDob record;
  EXPECT_EQ(OptionsOf(record), kFrameworkOptions);
  EXPECT_TRUE(record.IsDirty());
  ASSERT_NE(record.gameOptions, nullptr);
  EXPECT_EQ(record.gameOptions->GetClassId(), SKivTeacherOptionsGameDob::StaticClassId());
}

TEST(OptionsDefaults, OfTheTutorDecideTwoOfTheFrameworksAfresh) {
  std::vector<Option> expected = kFrameworkOptions;
  expected[2] = {"SeparateLastName", 'b', 1, 0xFFFFFFFF};
  expected[4] = {"AutoGameSaving", 'b', 1, 0xFFFFFFFF};
  expected.insert(expected.end(), kTutorOptions.begin(), kTutorOptions.end());
  STeacherOptionsDob record;
  EXPECT_EQ(OptionsOf(record), expected);
  EXPECT_TRUE(record.IsDirty());
  EXPECT_NE(record.GetGameOptions(), nullptr);
}

TEST(OptionsDefaults, AreAStudentAtTheStart) {
  STeacherOptionsGameDob record;
  const std::vector<Option> expected = {{"CurrentMissionNumber", 's', 1},
                                        {"Accuracy", 's', 80},
                                        {"Speed", 's', 10},
                                        {"LessonDone", 'a', 25},
                                        {"NotebookDone", 'a', 25},
                                        {"TypelineDone", 'a', 25},
                                        {"WindshieldTypersDone", 'a', 25},
                                        {"WarpSpeedDone", 'a', 25},
                                        {"DictationStationDone", 'a', 25},
                                        {"KeyFiguresDone", 'a', 25}};
  EXPECT_EQ(OptionsOf(record), expected);
  EXPECT_FALSE(record.AllMissionsCompleted);
  EXPECT_FALSE(record.IsDirty());
}

TEST(OptionsDefaults, ComeBackWithClear) {
  STeacherOptionsDob record;
  const std::vector<Option> fresh = OptionsOf(record);
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
