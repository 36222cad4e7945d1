// kivadmin's options, progress and dump from its command line, on stores laid out by hand.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/run_program.h"
#include "tests/support/started_program.h"
#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

using Json = nlohmann::json;
using Arguments = std::vector<std::string>;

constexpr const char* kAdmin = KIVSTORE_BINARY_DIR "/bin/kivadmin";

RunResult Admin(Arguments arguments) {
  arguments.insert(arguments.begin(), kAdmin);
  return RunProgram(arguments);
}

// The low word of the stamp that begins at `offset`.
uint32_t StampAt(const std::string& bytes, size_t offset) {
  uint32_t stamp = 0;
  for (size_t i = offset + 4; i < offset + 8; ++i) {
    stamp = stamp << 8 | static_cast<uint8_t>(bytes.at(i));
  }
  return stamp;
}

class KivAdminOptions : public testing::Test {
 protected:
  KivAdminOptions() : store(folder.Path(), Kind::kTeachers) {
    const std::string hill = store.AddTeacher("Ms Hill", "Hill");
    list = StoreBuilder::ClassList(hill);
    room = store.AddClass(hill, "Room 12", "Room12");
    ann = store.AddStudent(room, "Ann", "Lee", "AnnLee");
    store.Finish();
  }

  Arguments Class() const { return {"--class", "room 12"}; }
  Arguments Student() const { return {"--class", "Room 12", "--student", "Ann Lee"}; }

  RunResult Set(const Arguments& more) const { return Run({"options", "set", root}, more); }
  RunResult Progress(const Arguments& more) const {
    Arguments all = Student();
    all.insert(all.end(), more.begin(), more.end());
    return Run({"progress", root}, all);
  }
  Json Shown(const Arguments& level) const {
    const RunResult result = Run({"options", "show", root, "--format", "json"}, level);
    EXPECT_EQ(0, result.exitCode) << result.errors;
    return Json::parse(result.output, nullptr, false);
  }
  Json Dumped(const std::string& file, int exitCode = 0) const {
    const RunResult result = Admin({"dump", store.Path(file)});
    EXPECT_EQ(exitCode, result.exitCode) << result.errors;
    return Json::parse(result.output, nullptr, false);
  }
  // The student's two missions as a report tells them, "current,previous".
  std::string Reported() const {
    const RunResult csv =
        RunProgram({KIVSTORE_BINARY_DIR "/bin/kivreport", root, "--format", "csv", "--quiet"});
    const size_t name = csv.output.find("Ann Lee,");
    return name == std::string::npos
               ? csv.errors
               : csv.output.substr(name + 8, csv.output.rfind(',') - name - 8);
  }

  static RunResult Run(Arguments arguments, const Arguments& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Admin(arguments);
  }

  TempFolder folder;
  const std::string root = folder.Path();
  StoreBuilder store;
  std::string list, room, ann;
};

TEST_F(KivAdminOptions, WithoutFilesEverythingIsDefault) {
  const Json shown = Shown(Student());
  const Json soundOn{{"value", 2}, {"level", "default"}, {"changed", ""}};
  EXPECT_EQ(soundOn, shown["SoundOn"]);
  EXPECT_EQ("default", shown["AutoGameSaving"]["level"]);
  EXPECT_EQ(1, shown["Missions.4.Typeline"]["value"]);
  EXPECT_EQ(Json::array(), shown["TOGameDob.LessonDone"]["value"]);
  // 21 and 32 options, 11 of the game, 6 of each mission.
  EXPECT_EQ(21u + 32 + 11 + 25 * 6, shown.size());
}

TEST_F(KivAdminOptions, TheNewestStampDecidesAndATieGoesDown) {
  // 1904-01-01T00:01:40, T00:03:20, T00:05:00
  store.WriteOptions(
      list,
      OptionsBytes().Set("SoundOn", 1, 300).Set("VocabLevel", 4, 100).Set("TextSize", 1, 100));
  store.WriteOptions(
      room,
      OptionsBytes().Set("SoundOn", 0, 200).Set("VocabLevel", 5, 100).Set("TextSize", 3, 200));
  store.WriteOptions(ann, OptionsBytes().SetMission(7, 200).Set("Checkpoint", 9));
  const Json shown = Shown(Student());
  const std::vector<std::tuple<const char*, Json, const char*, const char*>> expected{
      {"SoundOn", 1, "store", "1904-01-01T00:05:00"},
      {"VocabLevel", 5, "class", "1904-01-01T00:01:40"},
      {"TextSize", 3, "class", "1904-01-01T00:03:20"},
      {"TOGameDob.CurrentMissionNumber", 7, "student", "1904-01-01T00:03:20"},
      {"Checkpoint", 9, "student", ""},  // nobody decided it, and yet it is in force
      {"GamebreakInterval", 5, "default", ""},
  };
  for (const auto& [key, value, level, changed] : expected) {
    const Json wanted{{"value", value}, {"level", level}, {"changed", changed}};
    EXPECT_EQ(wanted, shown[key]) << key;
  }
  EXPECT_EQ(4, Shown({})["VocabLevel"]["value"]);

  const RunResult table = Run({"options", "show", root}, Student());
  EXPECT_NE(std::string::npos, table.output.find("VocabLevel                      5      class    "
                                                 "1904-01-01T00:01:40\n"))
      << table.output;
}

TEST_F(KivAdminOptions, AMissingFileIsMadeWithItsLockAndOnlyWhatWasSetIsDecided) {
  const RunResult set = Set({"--class", "Room 12", "SoundOn=1", "VocabLevel=3"});
  EXPECT_EQ(0, set.exitCode) << set.errors;
  EXPECT_EQ("set SoundOn=1, VocabLevel=3 for class \"Room 12\"\n", set.output);
  const std::string bytes = store.ReadFile(room + "/options.kiv");
  const uint32_t now = StampAt(bytes, 10);
  EXPECT_NE(0u, now);
  EXPECT_EQ(OptionsBytes().Set("SoundOn", 1, now).Set("VocabLevel", 3, now).Bytes(), bytes);
  EXPECT_EQ("", store.ReadFile(room + "/options.lok"));
  EXPECT_FALSE(folder.Exists(list + "/options.kiv"));
}

TEST_F(KivAdminOptions, EachKindOfOptionIsStoredInItsPlace) {
  const OptionsBytes before = OptionsBytes().Set("Checkpoint", 4, 77).Set("WordLists", 0, 78);
  store.WriteOptions(ann, before);
  Arguments line = Student();
  for (const char* const assignment :
       {"SoundOn=0", "UseCamera=NO", "Missions.3.typeline=1", "TOGameDob.LessonDone=1-3,25",
        "TOGameDob.CurrentMissionNumber=4", "TOGameDob.AllMissionsCompleted=true"}) {
    line.push_back(assignment);
  }
  const RunResult set = Set(line);
  EXPECT_EQ(0, set.exitCode) << set.errors;
  const std::string bytes = store.ReadFile(ann + "/options.kiv");
  const uint32_t now = StampAt(bytes, 10);
  OptionsBytes wanted = before;
  wanted.Set("SoundOn", 0, now).Set("UseCamera", 0, now).SetMission(4, now);
  for (const int mission : {1, 2, 3, 25}) {
    wanted.SetLessonDone(mission);
  }
  wanted.game.stamps.byKey["LessonDone"] = now;
  wanted.game.AllMissionsCompleted = true;
  wanted.missions[2].Typeline = 1;
  // The stamp of that one mission's field: 8 bytes behind its value.
  std::string expected = wanted.Bytes();
  const size_t mission3 = expected.size() - 9 - 25 * 60 + 2 * 60;
  expected.replace(mission3 + 12, 8, ByteWriter().Stamp(now).Bytes());
  EXPECT_EQ(expected, bytes);
}

TEST_F(KivAdminOptions, AValueThatIsThereAlreadyIsDecidedAnew) {
  store.WriteOptions(list, OptionsBytes().Set("SoundOn", 0, 100));
  EXPECT_EQ(0, Set({"--class", "Room 12", "SoundOn=2"}).exitCode);
  EXPECT_EQ(2, Shown(Class())["SoundOn"]["value"]);
  EXPECT_EQ("class", Shown(Class())["SoundOn"]["level"]);
}

TEST_F(KivAdminOptions, TwoWhoChangeDifferentOptionsBothWin) {
  EXPECT_EQ(0, Set({"SoundOn=1"}).exitCode);
  EXPECT_EQ(0, Set({"VocabLevel=3"}).exitCode);
  {
    std::vector<StartedProgram> admins;
    for (const char* const setting : {"TextSize=1", "Checkpoint=2", "Teach6Key=3"}) {
      admins.emplace_back(std::vector<std::string>{kAdmin, "options", "set", root, setting});
    }
  }
  const Json late = Shown({});
  EXPECT_EQ(1, late["TextSize"]["value"]);
  EXPECT_EQ(2, late["Checkpoint"]["value"]);
  EXPECT_EQ(3, late["Teach6Key"]["value"]);
  const Json shown = Shown({});
  EXPECT_EQ(1, shown["SoundOn"]["value"]);
  EXPECT_EQ(3, shown["VocabLevel"]["value"]);
  EXPECT_EQ("store", shown["SoundOn"]["level"]);
}

TEST_F(KivAdminOptions, WhatCannotBeSetIsNamedAndNothingChanges) {
  store.WriteOptions(list, OptionsBytes());
  const auto before = store.Snapshot();
  const std::vector<std::pair<const char*, const char*>> bad{
      {"NoSuchKey=1", "NoSuchKey"},
      {"SoundOn", "KEY=VALUE"},
      {"SoundOn=", "SoundOn"},
      {"SoundOn=two", "SoundOn=two"},
      {"SoundOn=-1", "0 to 32767"},
      {"SoundOn=32768", "0 to 32767"},
      {"SoundOn=99999999999", "0 to 32767"},
      {"SoundOn=1x", "SoundOn=1x"},
      {"UseCamera=2", "UseCamera"},
      {"TOGameDob.CurrentMissionNumber=0", "1 to 25"},
      {"TOGameDob.CurrentMissionNumber=26", "1 to 25"},
      {"CurrentMissionNumber=3", "CurrentMissionNumber"},
      {"TOGameDob.LessonDone=0-3", "LessonDone"},
      {"TOGameDob.LessonDone=4-2", "LessonDone"},
      {"TOGameDob.LessonDone=1,,2", "LessonDone"},
      {"TOGameDob.LessonDone=26", "LessonDone"},
      {"Missions.4.Typeline=3", "0 to 2"},
      {"Missions.0.Typeline=1", "Missions.0"},
      {"Missions.26.Typeline=1", "Missions.26"},
      {"Missions.4.Lesson=1", "Missions.4.Lesson"},
  };
  for (const auto& [assignment, named] : bad) {
    const RunResult result = Set({"VocabLevel=5", assignment});
    EXPECT_EQ(2, result.exitCode) << assignment;
    EXPECT_NE(std::string::npos, result.errors.find(named)) << assignment << result.errors;
  }
  EXPECT_EQ(before, store.Snapshot());
}

TEST_F(KivAdminOptions, ExitCodesTellWhy) {
  const std::vector<std::pair<Arguments, int>> lines{
      {{"options", "show", root, "--student", "Ann Lee"}, 2},  // without its class
      {{"options", "show", root, "--class", "Nobody"}, 1},
      {{"options", "show", root + "/missing"}, 3},
      {{"options", "set", root}, 2},
      {{"progress", root, "--class", "Room 12", "--student", "Ann Lee"}, 2},
      {{"progress", root, "--class", "Room 12", "--student", "Ann Lee", "--mission", "26"}, 2},
      {{"progress", root, "--class", "Room 12", "--student", "Bob", "--mission", "2"}, 1},
      {{"dump", root + "/missing"}, 3},
      {{"dump", root}, 3},
      {{"options", "show", "--help"}, 0},
      {{"options", "set", "--help"}, 0},
      {{"progress", "--help"}, 0},
      {{"dump", "--help"}, 0},
  };
  const auto before = store.Snapshot();
  for (const auto& [line, code] : lines) {
    const RunResult result = Admin(line);
    EXPECT_EQ(code, result.exitCode) << testing::PrintToString(line) << result.errors;
  }
  EXPECT_EQ(before, store.Snapshot());
}

// What a tutor would delete, an administrator may still want to look at.
TEST_F(KivAdminOptions, AFileThatCannotBeReadStays) {
  OptionsBytes newer;
  newer.version = 0x00020000;
  for (const std::string& bytes : {newer.Bytes(), std::string("rubbish")}) {
    store.WriteFile(room + "/options.kiv", bytes);
    for (const char* const command : {"show", "set"}) {
      Arguments line = Class();
      if (std::string(command) == "set") {
        line.push_back("SoundOn=1");
      }
      const RunResult result = Run({"options", command, root}, line);
      EXPECT_EQ(3, result.exitCode) << command;
      EXPECT_NE(std::string::npos, result.errors.find("class")) << result.errors;
      EXPECT_EQ(bytes, store.ReadFile(room + "/options.kiv"));
    }
  }
}

TEST_F(KivAdminOptions, ADryRunChangesNothing) {
  const auto before = store.Snapshot();
  const RunResult set = Set({"--dry-run", "SoundOn=1"});
  EXPECT_EQ(0, set.exitCode) << set.errors;
  EXPECT_EQ("dry run: set SoundOn=1 for teacher \"Ms Hill\"\n", set.output);
  const RunResult progress = Progress({"--mission", "7", "--dry-run"});
  EXPECT_EQ(0, progress.exitCode) << progress.errors;
  EXPECT_EQ(before, store.Snapshot());
}

TEST_F(KivAdminOptions, ProgressShowsInTheReport) {
  EXPECT_EQ("1,1", Reported());
  const RunResult result =
      Progress({"--mission", "7", "--lessons-done", "1-6", "--learned-keys", "yes"});
  EXPECT_EQ(0, result.exitCode) << result.errors;
  EXPECT_EQ("student \"Ann Lee\": mission 7, lessons done 1-6, new keys learned\n", result.output);
  EXPECT_EQ("7,6", Reported());
  EXPECT_EQ(0, Progress({"--learned-keys", "no"}).exitCode);
  EXPECT_EQ("6,6", Reported());
  EXPECT_EQ(0, Progress({"--lessons-done", "1-7"}).exitCode);
  EXPECT_EQ("7,6", Reported());
}

TEST_F(KivAdminOptions, ProgressMakesTheGameInTheStudentsName) {
  EXPECT_EQ(0, Progress({"--mission", "3", "--learned-keys", "yes"}).exitCode);
  const std::string bytes = store.ReadFile(ann + "/autogame.zep");
  GameBytes game;
  game.firstName = "Ann";
  game.lastName = "Lee";
  game.options.CurrentMissionNumber = 3;
  // Behind the head, "Ann", "Lee", the empty long name, the flag and the mission.
  game.options.stamps.byKey["CurrentMissionNumber"] = StampAt(bytes, 8 + 4 + 4 + 1 + 1 + 2);
  game.currentLessonNumber = 3;
  game.learnedNewKeys = true;
  EXPECT_EQ(game.Bytes(), bytes);
}

TEST_F(KivAdminOptions, ProgressKeepsTheRestOfAGame) {
  GameBytes game;
  game.firstName = "Ann";
  game.lastName = "Lee";
  game.longFileName = "Mine";
  game.bestTotalTime = 1234;
  game.keyTypedWrong[5] = 17;
  game.options.NotebookDone[3] = true;
  store.WriteGame(ann, game);
  EXPECT_EQ(0, Progress({"--learned-keys", "yes"}).exitCode);
  game.learnedNewKeys = true;
  EXPECT_EQ(game.Bytes(), store.ReadFile(ann + "/autogame.zep"));
}

TEST_F(KivAdminOptions, ProgressLeavesATornGameAndTheOptionsAlone) {
  store.WriteGame(ann, GameBytes());
  store.Tear(ann + "/autogame.zep", 500);
  const RunResult result = Progress({"--mission", "3"});
  EXPECT_EQ(3, result.exitCode);
  EXPECT_NE(std::string::npos, result.errors.find("game")) << result.errors;
  EXPECT_EQ(500u, store.ReadFile(ann + "/autogame.zep").size());
  EXPECT_FALSE(folder.Exists(ann + "/options.kiv"));
}

TEST_F(KivAdminOptions, DumpKnowsEveryFileOfAStore) {
  store.WriteFile("index.kiv", IndexBytes({{"Zo", "Zo\xEB", "Ray"}}, {{"a.zep", "Mine", "zep"}}));
  store.WriteFile("longname.kiv", LongNameBytes("Zo\xEB"));
  store.WriteFile("last.kiv", ByteWriter().Long(1).Text("autogame.zep").Bytes());
  store.WriteFile("options.lok", "");
  const std::vector<std::pair<const char*, const char*>> files{
      {"index.kiv",
       R"({"kind":"index","logins":[{"folder":"Zo","first_name":"Zoë","last_name":"Ray"}],
           "files":[{"file":"a.zep","long_name":"Mine","extension":"zep"}]})"},
      {"longname.kiv", R"({"kind":"longname","first_name":"Zoë","last_name":""})"},
      {"last.kiv", R"({"kind":"last","files":["autogame.zep"]})"},
      {"options.lok", R"({"kind":"lock","bytes":0})"},
  };
  for (const auto& [file, expected] : files) {
    EXPECT_EQ(Json::parse(expected), Dumped(file)) << file;
  }
}

TEST_F(KivAdminOptions, DumpTellsEachFieldOfARecordWithItsTime) {
  OptionsBytes options = OptionsBytes().Set("SoundOn", 1, 86400).SetMission(5, 100);
  options.SetLessonDone(2);
  store.WriteOptions(room, options);
  const Json dumped = Dumped(room + "/options.kiv");
  EXPECT_EQ("0.01", dumped["version"]);
  const Json& fields = dumped["fields"];
  EXPECT_EQ(Json::parse(R"({"value":1,"changed":"1904-01-02T00:00:00"})"), fields["SoundOn"]);
  EXPECT_EQ(Json::parse(R"({"value":true,"changed":null})"), fields["WordLists"]);
  EXPECT_EQ(5, fields["TOGameDob"]["CurrentMissionNumber"]["value"]);
  const Json& lessons = fields["TOGameDob"]["LessonDone"]["value"];
  ASSERT_EQ(25u, lessons.size());
  EXPECT_EQ(Json::parse("[false,true,false]"), Json({lessons[0], lessons[1], lessons[2]}));
  ASSERT_EQ(25u, fields["Missions"].size());
  EXPECT_EQ(1, fields["Missions"][3]["Typeline"]["value"]);
  EXPECT_EQ(true, fields["AllowPlayandPracticeMode"]["value"]);

  GameBytes game;
  game.firstName = "Zo\xEB";
  game.keyTypedWrong[47] = -3;
  game.bestTotalTime = 4000000000;
  store.WriteGame(ann, game);
  const Json played = Dumped(ann + "/autogame.zep")["fields"];
  EXPECT_EQ("Zoë", played["FirstName"]);
  EXPECT_EQ(-3, played["ErrorDob"]["KeyTypedWrong"][47]);
  EXPECT_EQ(4000000000u, played["LessonDob"]["BestTotalTime"]);
  EXPECT_EQ(-1, played["StudGraphData"][0]);
  EXPECT_EQ(true, played["DisplayFinalPayoff"]);
}

TEST_F(KivAdminOptions, DumpOfATornFileGivesWhatCouldBeReadAndSaysSo) {
  const std::string options = OptionsBytes().Set("SoundOn", 1).Bytes();
  const std::string index = IndexBytes({{"Zo", "Zoe", "Ray"}, {"Al", "Al", "May"}});
  store.WriteFile("options.kiv", options.substr(0, 20));  // SoundOn, and a half of the next
  Json dumped = Dumped("options.kiv", 1);
  EXPECT_EQ(1, dumped["fields"]["SoundOn"]["value"]);
  EXPECT_FALSE(dumped["fields"].contains("WordLists"));
  store.WriteFile("index.kiv", index.substr(0, 14));
  dumped = Dumped("index.kiv", 1);
  ASSERT_EQ(1u, dumped["logins"].size());
  EXPECT_EQ("Zoe", dumped["logins"][0]["first_name"]);
  // Cut anywhere, it is JSON and an error; whole, neither less nor more.
  for (const size_t length : {0, 3, 4, 7, 8, 9, 18, 300, 400, 1000, 2000}) {
    store.WriteFile("options.kiv", options.substr(0, length));
    EXPECT_TRUE(Dumped("options.kiv", 1).is_object()) << length;
  }
  store.WriteFile("options.kiv", options);
  EXPECT_FALSE(Dumped("options.kiv").contains("bytes_behind"));
  store.WriteFile("options.kiv", options + "xy");
  EXPECT_EQ(2, Dumped("options.kiv")["bytes_behind"]);
}

TEST_F(KivAdminOptions, DumpRefusesWhatIsNoFileOfAStore) {
  OptionsBytes other;
  other.version = 0x00020000;
  const std::vector<std::pair<std::string, std::string>> files{
      {"options.kiv", "Game"},
      {"options.kiv", other.Bytes()},
      {"mine.zep", OptionsBytes().Bytes().substr(4)},
      {"notes.txt", "hello"},
      {"index.kiv", ByteWriter().Long(0x7FFFFFFF).Bytes()},
      {"last.kiv", ByteWriter().Long(0xFFFFFFFF).Bytes()},
  };
  for (const auto& [name, bytes] : files) {
    store.WriteFile(name, bytes);
    const Json dumped = Dumped(name, 1);
    EXPECT_TRUE(dumped.is_object()) << name;
    EXPECT_FALSE(dumped.contains("fields")) << name;
  }
}

// Without teachers, and without locks.
TEST(KivAdminLocalOptions, ALocalStoreNeedsNoLockFile) {
  const TempFolder folder;
  StoreBuilder store(folder.Path(), Kind::kLocal);
  const std::string room = store.AddClass("Room 12");
  store.AddStudent(room, "Ann");
  store.Finish();
  const RunResult set = Admin({"options", "set", folder.Path(), "--class", "#1", "SoundOn=1"});
  EXPECT_EQ(0, set.exitCode) << set.errors;
  EXPECT_TRUE(folder.Exists(room + "/options.kiv"));
  EXPECT_FALSE(folder.Exists(room + "/options.lok"));
  EXPECT_EQ(2, Admin({"options", "show", folder.Path(), "--teacher", "Ms Hill"}).exitCode);
}

}  // namespace
}  // namespace kivtest
