#include "tests/support/record_bytes.h"

#include <sstream>

namespace kivtest {
namespace {

// Keys with their defaults: a bool as yes or no, a number of two bytes as itself, one of four with
// an L.
constexpr char kGeneralOptions[] =
    "SoundOn=2 StudAddOwnName=yes SeparateLastName=yes DisplayFirstLastName=yes "
    "AutoGameSaving=yes MaxGameFiles=10 AutoOpenStudFile=no UseSystemIODialogs=no "
    "StudentPrint=yes CentralFileLocation=yes RecordStudentProgress=yes TopScoreAllClasses=yes "
    "TopScoreIndivClass=yes TopScoreIndivStudent=yes StudentLevelRemembered=yes UseJournal=yes "
    "WordLists=yes UseCamera=yes KeyboardShortcut=yes TabBetweenAll=no";
constexpr char kBehindGameOptions[] =
    "StudentsHavePassword=no VocabLevel=1 AllowPrinting=yes SpacesAfterPeriod=1 KeyVoiceOver=yes "
    "InstructionalDirections=yes FatherTimeNarration=yes BackgroundMusic=yes SoundEffects=yes "
    "RolloverButtons=no TextSize=2 AllowPowerBooster=yes NumberErrorsPowerBooster=12 "
    "AllowAutoGoalAdj=yes MinAccuracyGoal=50 MinWPMGoal=1 Checkpoint=0 AllowPostTest=yes "
    "Teach6Key=1 GamebreakInterval=5 BackgroundAnimationOn=yes LeftRightGame=0 "
    "CurrentKeyProvided=yes AllowPause_DS=yes AllowRepeatLine=yes "
    "AllowCorrectionDuringTest_DS=yes AllowCorrectionDuringTest_Warp=yes AllowTimeLimit=no "
    "TimeLimitWarp=2 WarpspeedView=1 ShowTimer=yes AllowPause_Warp=yes";
constexpr char kBehindMissions[] = "AllowPlayandPracticeMode=yes";
constexpr char kMission[] =
    "Notebook=2 Typeline=2 WindshieldTypers=2 WarpSpeed=2 DictationStation=2 KeyFigures=2";
constexpr char kLesson[] =
    "LesnExStage=0 CurrentExString=-1 MainString=yes BestTotalTime=0L BestTotalKeystrokes=0 "
    "BestCorrectKeystrokes=0 AveTotalTime=0L AveTotalKeystrokes=0 AveCorrectKeystrokes=0 "
    "Acc_Retypes=0 WPM_Retypes=0 General_Retypes=0 NumLinesPassed=0";

// Mission by mission the activity it is built around: dictation station, key figures, typeline,
// warp speed, windshield typers.
constexpr char kStandardCourse[] = "KSKTDWTDSDTWTDWWKSTWSWDKK";

const char* ActivityOf(char letter) {
  return letter == 'D'   ? "DictationStation"
         : letter == 'K' ? "KeyFigures"
         : letter == 'W' ? "WarpSpeed"
         : letter == 'S' ? "WindshieldTypers"
                         : "";
}

// Calls function(key, type, value) for each option of a list.
template <class Function>
void ForEachOption(const char* list, Function function) {
  std::istringstream options(list);
  for (std::string option; options >> option;) {
    const size_t end = option.find('=');
    const std::string value = option.substr(end + 1);
    const bool isBool = value == "yes" || value == "no";
    function(option.substr(0, end),
             isBool                ? 'b'
             : value.back() == 'L' ? 'L'
                                   : 's',
             isBool ? value == "yes" : std::stoi(value));
  }
}

// Fields of one section, with or without stamps.
class FieldList {
 public:
  explicit FieldList(const std::string& section) : section(section) {}
  FieldList(const std::string& prefix, const Stamps& fieldStamps)
      : prefix(prefix), stamps(&fieldStamps) {}

  FieldList& Add(const std::string& key, char type, int64_t value) {
    return Add(key, type, false, {value});
  }
  template <class Elements>
  FieldList& AddArray(const std::string& key, char type, const Elements& elements) {
    return Add(key, type, true, {elements.begin(), elements.end()});
  }
  FieldList& AddText(const std::string& key, const std::string& text) {
    Add(key, 't', false, {});
    fields.back().text = text;
    return *this;
  }
  FieldList& Append(const RecordFields& more) {
    fields.insert(fields.end(), more.begin(), more.end());
    return *this;
  }
  // With these values in place of the defaults.
  FieldList& AddOptions(const char* list, const std::map<std::string, int64_t>& values) {
    ForEachOption(list, [&](const std::string& key, char type, int value) {
      const auto found = values.find(key);
      Add(key, type, found != values.end() ? found->second : value);
    });
    return *this;
  }
  operator RecordFields() const { return fields; }

 private:
  FieldList& Add(const std::string& key, char type, bool isArray, std::vector<int64_t> values) {
    const bool isStamped = stamps != nullptr;
    fields.push_back({section, prefix + key, type, isArray, isStamped, std::move(values),
                      isStamped ? stamps->Of(key) : 0});
    return *this;
  }

  std::string section, prefix;
  const Stamps* stamps = nullptr;
  RecordFields fields;
};

}  // namespace

std::string IndexBytes(const std::vector<IndexLine>& logins, const std::vector<FileLine>& files) {
  ByteWriter out;
  out.Long(std::ssize(logins));
  for (const IndexLine& line : logins) {
    out.Text(line.folder).Text(line.first).Text(line.last);
  }
  out.Long(std::ssize(files));
  for (const FileLine& line : files) {
    out.Text(line.fileName).Text(line.longName).Text(line.extension);
  }
  return out.Bytes();
}

IndexImage ReadIndexBytes(const std::string& bytes) {
  IndexImage image;
  const auto count = [&] {
    uint32_t value = 0;
    image.isTorn = image.isTorn || bytes.size() - image.length < 4;
    for (int i = 0; i < 4 && !image.isTorn; ++i) {
      value = value << 8 | static_cast<unsigned char>(bytes[image.length++]);
    }
    image.isTorn = image.isTorn || value > INT32_MAX;
    return value;
  };
  const auto text = [&] {
    const size_t start = image.length, end = bytes.find('\0', start);
    image.isTorn = image.isTorn || end == std::string::npos;
    image.length = image.isTorn ? start : end + 1;
    return bytes.substr(start, image.isTorn ? 0 : end - start);
  };
  for (uint32_t logins = count(); logins > 0 && !image.isTorn; --logins) {
    image.logins.push_back({text(), text(), text()});
  }
  for (uint32_t files = count(); files > 0 && !image.isTorn; --files) {
    image.files.push_back({text(), text(), text()});
  }
  return image;
}

std::string LongNameBytes(const std::string& first, const std::string& last) {
  return ByteWriter().Text(first).Text(last).Bytes();
}

std::string FieldBytes::Bytes() const {
  ByteWriter out;
  if (isArray) {
    out.Short(std::ssize(values));
  }
  for (const int64_t value : values) {
    type == 'b' ? out.Byte(value) : type == 's' || type == 'u' ? out.Short(value) : out.Long(value);
  }
  if (type == 't') {
    out.Text(text);
  }
  if (isStamped) {
    out.Stamp(stamp);
  }
  return out.Bytes();
}

std::string BytesOf(const RecordFields& fields) {
  std::string bytes;
  for (const FieldBytes& field : fields) {
    bytes += field.Bytes();
  }
  return bytes;
}

uint32_t Stamps::Of(const std::string& key) const {
  const auto found = byKey.find(key);
  return found != byKey.end() ? found->second : all;
}

RecordFields GameOptionsBytes::Fields(const std::string& prefix) const {
  FieldList fields(prefix, stamps);
  fields.Add("CurrentMissionNumber", 's', CurrentMissionNumber);
  fields.Add("Accuracy", 's', 80).Add("Speed", 's', 10);
  fields.AddArray("LessonDone", 'b', LessonDone).AddArray("NotebookDone", 'b', NotebookDone);
  for (const char* const key : {"TypelineDone", "WindshieldTypersDone", "WarpSpeedDone",
                                "DictationStationDone", "KeyFiguresDone"}) {
    fields.AddArray(key, 'b', Doneness(25));
  }
  return fields.Append({{"", prefix + "AllMissionsCompleted", 'b', false, false, {0}}});
}

RecordFields MissionBytes::Fields(const Stamps& stamps, const std::string& prefix) const {
  FieldList fields(prefix, stamps);
  return fields.AddOptions(kMission, {{"Typeline", Typeline}, {builtAround, 1}});
}

OptionsBytes::OptionsBytes() : missions(25) {
  for (const char* const list : {kGeneralOptions, kBehindGameOptions, kBehindMissions}) {
    ForEachOption(list, [&](const std::string& key, char, int value) { values[key] = value; });
  }
  for (size_t i = 0; i < missions.size(); ++i) {
    const char letter = kStandardCourse[i];
    missions[i] = {letter == 'T' ? 1 : i < 3 ? 0 : 2, ActivityOf(letter)};
  }
}

OptionsBytes& OptionsBytes::Set(const std::string& key, int value, uint32_t stamp) {
  values.at(key) = value;
  if (stamp != 0) {
    stamps.byKey[key] = stamp;
  }
  return *this;
}

OptionsBytes& OptionsBytes::SetMission(int mission, uint32_t stamp) {
  game.CurrentMissionNumber = mission;
  if (stamp != 0) {
    game.stamps.byKey["CurrentMissionNumber"] = stamp;
  }
  return *this;
}

OptionsBytes& OptionsBytes::SetLessonDone(int mission) {
  game.LessonDone.at(static_cast<size_t>(mission - 1)) = true;
  return *this;
}

RecordFields OptionsBytes::Fields() const {
  FieldList fields("", stamps);
  fields.AddOptions(kGeneralOptions, values);
  fields.Append({{"", "TOGameDob_Exists", 'u', false, false, {hasGameOptions}}});
  fields.Append(hasGameOptions ? game.Fields("TOGameDob_") : RecordFields());
  fields.AddOptions(kBehindGameOptions, values);
  RecordFields course = FieldList("_Missions").Add("Count", 'u', std::ssize(missions));
  for (const MissionBytes& mission : missions) {
    const std::string number = std::to_string(&mission - missions.data());
    for (FieldBytes& field : mission.Fields(stamps, number + "_")) {
      field.section = "_Missions";
      course.push_back(field);
    }
  }
  return fields.Append(course).AddOptions(kBehindMissions, values);
}

std::string OptionsBytes::Bytes() const {
  return ByteWriter().Raw("BIN\x01").Long(version).Raw(BytesOf(Fields())).Bytes();
}

RecordFields GameBytes::ErrorFields(const std::string& section) const {
  return FieldList(section)
      .AddArray("KeyTypedWrong", 'l', keyTypedWrong)
      .AddArray("KeyTypedTotal", 'l', std::vector<int>(48));
}

RecordFields GameBytes::LessonFields(const std::string& section) const {
  FieldList fields(section);
  fields.AddOptions(kLesson, {});
  fields.AddArray("KeyErrorsDuringExercises", 'l', std::vector<int>(48));
  fields.Add("CurrentLessonNumber", 's', currentLessonNumber);
  return fields.Add("LearnedNewKeys", 'b', learnedNewKeys);
}

RecordFields GameBytes::Fields() const {
  FieldList fields("");
  fields.AddText("FirstName", firstName).AddText("LastName", lastName);
  fields.AddText("LongFileName", longFileName).Add("PublicFile", 'b', publicFile);
  fields.Append(options.Fields()).Append(ErrorFields("_ErrorDob"));
  fields.AddArray("StudGraphData", 's', std::vector<int>(25, -1));
  fields.Append(LessonFields("_LessonDob")).Add("HandSkinTone", 's', -1);
  return fields.Add("DisplayFinalPayoff", 'b', 1);
}

std::string GameBytes::Bytes() const {
  return ByteWriter().Raw("Game").Long(version).Raw(BytesOf(Fields())).Bytes();
}

}  // namespace kivtest
