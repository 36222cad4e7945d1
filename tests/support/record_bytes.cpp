#include "tests/support/record_bytes.h"

#include <stdexcept>

namespace kivtest {
namespace {

struct Option {
  const char* key;
  char type;  // 's' two bytes, 'b' one
  int value;
};

constexpr Option kGeneralOptions[] = {
    {"SoundOn", 's', 2},
    {"StudAddOwnName", 'b', 1},
    {"SeparateLastName", 'b', 1},
    {"DisplayFirstLastName", 'b', 1},
    {"AutoGameSaving", 'b', 1},
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
};
// Behind the game options.
constexpr Option kPasswordOption[] = {{"StudentsHavePassword", 'b', 0}};
constexpr Option kTutorOptions[] = {
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
};
// Behind the missions.
constexpr Option kPlayOption[] = {{"AllowPlayandPracticeMode", 'b', 1}};

// The activity that each mission of the standard course is built around.
constexpr int MissionBytes::*kStandardCourse[25] = {
    &MissionBytes::KeyFigures,       &MissionBytes::WindshieldTypers,
    &MissionBytes::KeyFigures,       &MissionBytes::Typeline,
    &MissionBytes::DictationStation, &MissionBytes::WarpSpeed,
    &MissionBytes::Typeline,         &MissionBytes::DictationStation,
    &MissionBytes::WindshieldTypers, &MissionBytes::DictationStation,
    &MissionBytes::Typeline,         &MissionBytes::WarpSpeed,
    &MissionBytes::Typeline,         &MissionBytes::DictationStation,
    &MissionBytes::WarpSpeed,        &MissionBytes::WarpSpeed,
    &MissionBytes::KeyFigures,       &MissionBytes::WindshieldTypers,
    &MissionBytes::Typeline,         &MissionBytes::WarpSpeed,
    &MissionBytes::WindshieldTypers, &MissionBytes::WarpSpeed,
    &MissionBytes::DictationStation, &MissionBytes::KeyFigures,
    &MissionBytes::KeyFigures,
};

template <size_t kCount>
void AddDefaults(std::map<std::string, int>& values, const Option (&options)[kCount]) {
  for (const Option& option : options) {
    values[option.key] = option.value;
  }
}

template <size_t kCount>
void WriteOptions(ByteWriter& out, const Option (&options)[kCount], const OptionsBytes& record) {
  for (const Option& option : options) {
    const int value = record.values.at(option.key);
    option.type == 's' ? out.Short(value) : out.Byte(value);
    out.Stamp(record.stamps.Of(option.key));
  }
}

void WriteDone(ByteWriter& out, const Doneness& done, uint32_t stamp) {
  out.Short(static_cast<int>(done.size()));
  for (const bool element : done) {
    out.Byte(element);
  }
  out.Stamp(stamp);
}

void WriteCounts(ByteWriter& out, const std::vector<int32_t>& counts) {
  out.Short(static_cast<int>(counts.size()));
  for (const int32_t count : counts) {
    out.Long(static_cast<uint32_t>(count));
  }
}

}  // namespace

ByteWriter& ByteWriter::Byte(int value) {
  bytes.push_back(static_cast<char>(value));
  return *this;
}

ByteWriter& ByteWriter::Short(int value) {
  return Byte(value >> 8).Byte(value);
}

ByteWriter& ByteWriter::Long(uint32_t value) {
  return Short(static_cast<int>(value >> 16)).Short(static_cast<int>(value & 0xFFFF));
}

ByteWriter& ByteWriter::Text(const std::string& text) {
  return Raw(text).Byte(0);
}

ByteWriter& ByteWriter::Stamp(uint32_t seconds) {
  return Long(0).Long(seconds);
}

ByteWriter& ByteWriter::Raw(const std::string& more) {
  bytes += more;
  return *this;
}

std::string IndexBytes(const std::vector<IndexLine>& logins, const std::vector<FileLine>& files) {
  ByteWriter out;
  out.Long(static_cast<uint32_t>(logins.size()));
  for (const IndexLine& line : logins) {
    out.Text(line.folder).Text(line.first).Text(line.last);
  }
  out.Long(static_cast<uint32_t>(files.size()));
  for (const FileLine& line : files) {
    out.Text(line.fileName).Text(line.longName).Text(line.extension);
  }
  return out.Bytes();
}

std::string LongNameBytes(const std::string& first, const std::string& last) {
  return ByteWriter().Text(first).Text(last).Bytes();
}

uint32_t Stamps::Of(const std::string& key) const {
  const auto found = byKey.find(key);
  return found != byKey.end() ? found->second : all;
}

std::string GameOptionsBytes::Bytes() const {
  ByteWriter out;
  out.Short(CurrentMissionNumber).Stamp(stamps.Of("CurrentMissionNumber"));
  out.Short(Accuracy).Stamp(stamps.Of("Accuracy"));
  out.Short(Speed).Stamp(stamps.Of("Speed"));
  WriteDone(out, LessonDone, stamps.Of("LessonDone"));
  WriteDone(out, NotebookDone, stamps.Of("NotebookDone"));
  WriteDone(out, TypelineDone, stamps.Of("TypelineDone"));
  WriteDone(out, WindshieldTypersDone, stamps.Of("WindshieldTypersDone"));
  WriteDone(out, WarpSpeedDone, stamps.Of("WarpSpeedDone"));
  WriteDone(out, DictationStationDone, stamps.Of("DictationStationDone"));
  WriteDone(out, KeyFiguresDone, stamps.Of("KeyFiguresDone"));
  out.Byte(AllMissionsCompleted);
  return out.Bytes();
}

std::string MissionBytes::Bytes(const Stamps& stamps) const {
  ByteWriter out;
  out.Short(Notebook).Stamp(stamps.Of("Notebook"));
  out.Short(Typeline).Stamp(stamps.Of("Typeline"));
  out.Short(WindshieldTypers).Stamp(stamps.Of("WindshieldTypers"));
  out.Short(WarpSpeed).Stamp(stamps.Of("WarpSpeed"));
  out.Short(DictationStation).Stamp(stamps.Of("DictationStation"));
  out.Short(KeyFigures).Stamp(stamps.Of("KeyFigures"));
  return out.Bytes();
}

OptionsBytes::OptionsBytes() : missions(25) {
  AddDefaults(values, kGeneralOptions);
  AddDefaults(values, kPasswordOption);
  AddDefaults(values, kTutorOptions);
  AddDefaults(values, kPlayOption);
  for (size_t i = 0; i < missions.size(); ++i) {
    if (i < 3) {
      missions[i].Typeline = 0;
    }
    missions[i].*kStandardCourse[i] = 1;
  }
}

OptionsBytes& OptionsBytes::Set(const std::string& key, int value) {
  values.at(key) = value;
  return *this;
}

OptionsBytes& OptionsBytes::Set(const std::string& key, int value, uint32_t stamp) {
  stamps.byKey[key] = stamp;
  return Set(key, value);
}

OptionsBytes& OptionsBytes::SetMission(int mission) {
  game.CurrentMissionNumber = mission;
  return *this;
}

OptionsBytes& OptionsBytes::SetMission(int mission, uint32_t stamp) {
  game.stamps.byKey["CurrentMissionNumber"] = stamp;
  return SetMission(mission);
}

OptionsBytes& OptionsBytes::SetLessonDone(int mission, bool done) {
  game.LessonDone.at(static_cast<size_t>(mission - 1)) = done;
  return *this;
}

std::string OptionsBytes::Bytes() const {
  ByteWriter out;
  out.Raw("BIN\x01").Long(version);
  WriteOptions(out, kGeneralOptions, *this);
  out.Short(hasGameOptions);
  if (hasGameOptions) {
    out.Raw(game.Bytes());
  }
  WriteOptions(out, kPasswordOption, *this);
  WriteOptions(out, kTutorOptions, *this);
  out.Short(static_cast<int>(missions.size()));
  for (const MissionBytes& mission : missions) {
    out.Raw(mission.Bytes(stamps));
  }
  WriteOptions(out, kPlayOption, *this);
  return out.Bytes();
}

std::string GameBytes::LessonBytes() const {
  ByteWriter out;
  out.Short(lesnExStage).Short(currentExString).Byte(mainString);
  out.Long(bestTotalTime).Short(bestTotalKeystrokes).Short(bestCorrectKeystrokes);
  out.Long(aveTotalTime).Short(aveTotalKeystrokes).Short(aveCorrectKeystrokes);
  out.Short(accRetypes).Short(wpmRetypes).Short(generalRetypes).Short(numLinesPassed);
  WriteCounts(out, keyErrorsDuringExercises);
  out.Short(currentLessonNumber).Byte(learnedNewKeys);
  return out.Bytes();
}

std::string GameBytes::Bytes() const {
  ByteWriter out;
  out.Raw("Game").Long(version);
  out.Text(firstName).Text(lastName).Text(longFileName).Byte(publicFile);
  out.Raw(options.Bytes());
  WriteCounts(out, keyTypedWrong);
  WriteCounts(out, keyTypedTotal);
  out.Short(static_cast<int>(graphData.size()));
  for (const int value : graphData) {
    out.Short(value);
  }
  out.Raw(LessonBytes());
  out.Short(handSkinTone).Byte(displayFinalPayoff);
  return out.Bytes();
}

}  // namespace kivtest
