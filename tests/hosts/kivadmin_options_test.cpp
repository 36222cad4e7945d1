// kivadmin's options, progress and dump from its command line, on stores laid out by hand.
#include "tests/hosts/host_programs.h"
#include "tests/support/wine.h"

namespace kivtest {
namespace {

// The low word of the stamp that begins at `offset`.
uint32_t StampAt(const std::string& bytes, size_t offset) {
  uint32_t stamp = 0;
  for (const char byte : bytes.substr(offset + 4, 4)) {
    stamp = stamp << 8 | static_cast<uint8_t>(byte);
  }
  return stamp;
}

class KivAdminOptions : public SchoolTest {
 protected:
  std::string Set(const Arguments& more) const {
    return Do(Arguments{"options", "set", root} + more);
  }
  std::string Progress(const Arguments& more) const {
    return Do(Arguments{"progress", root} + ofAnn + more);
  }
  Json Shown(const Arguments& level) const {
    return Json::parse(Do(Arguments{"options", "show", root, "--format", "json"} + level));
  }
  Json Dumped(const std::string& file, int exitCode = 0) const {
    const RunResult result = Admin({"dump", store.Path(file)});
    EXPECT_EQ(exitCode, result.exitCode) << result.errors;
    return Json::parse(result.output, nullptr, false);
  }
  // The student's two missions as a report tells them, "current,previous".
  std::string Reported() const {
    const std::string csv = Report({root, "--format", "csv", "--quiet"}).output;
    const size_t name = csv.find("Ann Lee,") + 8;
    return csv.substr(name, csv.rfind(',') - name);
  }
};

TEST_F(KivAdminOptions, TheNewestStampDecidesAndATieGoesDown) {
  // 21 and 32 options, 11 of the game, 6 of each mission.
  EXPECT_EQ(21u + 32 + 11 + 25 * 6, Shown(ofAnn).size());
  OptionsBytes ofStore, ofClass;
  ofStore.Set("SoundOn", 1, 300).Set("VocabLevel", 4, 100).Set("TextSize", 1, 100);
  ofClass.Set("SoundOn", 0, 200).Set("VocabLevel", 5, 100).Set("TextSize", 3, 200);
  store.WriteOptions(list, ofStore);
  store.WriteOptions(room, ofClass);
  store.WriteOptions(ann, OptionsBytes().SetMission(7, 200).Set("Checkpoint", 9));
  const Json shown = Shown(ofAnn);
  const std::tuple<const char*, int, const char*, const char*> expected[] = {
      {"SoundOn", 1, "store", "1904-01-01T00:05:00"},
      {"VocabLevel", 5, "class", "1904-01-01T00:01:40"},
      {"TextSize", 3, "class", "1904-01-01T00:03:20"},
      {"TOGameDob.CurrentMissionNumber", 7, "student", "1904-01-01T00:03:20"},
      {"Checkpoint", 9, "student", ""},  // nobody decided it, and yet it is in force
      {"GamebreakInterval", 5, "default", ""},
      {"Missions.4.Typeline", 1, "default", ""}};
  for (const auto& [key, value, level, changed] : expected) {
    EXPECT_EQ(Json({{"value", value}, {"level", level}, {"changed", changed}}), shown[key]) << key;
  }
  EXPECT_EQ(4, Shown({})["VocabLevel"]["value"]);
  ExpectIn("\nVocabLevel                      5      class    1904-01-01T00:01:40\n",
           Do(Arguments{"options", "show", root} + ofAnn));
}

TEST_F(KivAdminOptions, AMissingFileIsMadeWithItsLockAndOnlyWhatWasSetIsDecided) {
  store.WriteOptions(list, OptionsBytes().Set("SoundOn", 0, 100));
  const auto before = store.Snapshot();
  const Arguments line{"--class", "Room 12", "SoundOn=2", "VocabLevel=3"};  // one is the default
  const std::string said = "set SoundOn=2, VocabLevel=3 for class \"Room 12\"\n";
  EXPECT_EQ("dry run: " + said, Set(line + Arguments{"--dry-run"}));
  Progress({"--mission", "7", "--dry-run"});
  EXPECT_EQ(before, store.Snapshot());

  EXPECT_EQ(said, Set(line));
  const std::string bytes = store.ReadFile(room + "/options.kiv");
  const uint32_t now = StampAt(bytes, 10);
  EXPECT_NE(0u, now);
  EXPECT_EQ(OptionsBytes().Set("SoundOn", 2, now).Set("VocabLevel", 3, now).Bytes(), bytes);
  EXPECT_EQ("", store.ReadFile(room + "/options.lok"));
  EXPECT_EQ("class", Shown(inRoom)["SoundOn"]["level"]);
}

TEST_F(KivAdminOptions, EachKindOfOptionIsStoredInItsPlace) {
  const OptionsBytes before = OptionsBytes().Set("Checkpoint", 4, 77).Set("WordLists", 0, 78);
  store.WriteOptions(ann, before);
  Set(ofAnn + Arguments{"SoundOn=0", "UseCamera=NO", "Missions.3.typeline=1",
                        "TOGameDob.LessonDone=1-3,25", "TOGameDob.CurrentMissionNumber=4",
                        "TOGameDob.AllMissionsCompleted=true"});
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

TEST_F(KivAdminOptions, AllWhoChangeDifferentOptionsAtOnceWin) {
  const Arguments set{"options", "set", root};
  ExpectEach(kAdmin, {{set + Arguments{"TextSize=1"}, 0, ""},
                      {set + Arguments{"Checkpoint=2"}, 0, ""},
                      {set + Arguments{"Teach6Key=3"}, 0, ""}});
  const Json shown = Shown({});
  EXPECT_EQ(Json({1, 2, 3}), Json({shown["TextSize"]["value"], shown["Checkpoint"]["value"],
                                   shown["Teach6Key"]["value"]}));
}

TEST_F(KivAdminOptions, WhatCannotBeDoneIsNamedAndNothingChanges) {
  if (RunsUnderWine()) {
    GTEST_SKIP() << "its expectations have the paths of POSIX";
  }
  Do({"init", root});  // every lock file
  store.WriteOptions(list, OptionsBytes());
  // What a tutor would delete, an administrator may still want to look at.
  OptionsBytes newer;
  newer.version = 0x00020000;
  store.WriteFile(room + "/options.kiv", newer.Bytes());
  store.WriteFile(other + "/options.kiv", "rubbish");
  store.WriteGame(ann, GameBytes());
  store.Tear(ann + "/autogame.zep", 500);
  const auto before = store.Snapshot();
  const Arguments show{"options", "show", root}, set{"options", "set", root};
  const Arguments progress = Arguments{"progress", root} + ofAnn;
  std::vector<Line> lines{
      {show + Arguments{"--student", "Ann Lee"}, 2, "--class"},
      {show + Arguments{"--class", "Nobody"}, 1, "no class \"Nobody\""},
      {{"options", "show", root + "/missing"}, 3, "no such folder"},
      {set, 2, "KEY=VALUE"},
      {show + inRoom, 3, "options file of the class is of another version"},
      {set + inRoom + Arguments{"SoundOn=1"}, 3, "options file of the class is of another version"},
      {show + inOther, 3, "options file of the class is no options file"},
      {set + inOther + Arguments{"SoundOn=1"}, 3, "is no options file"},
      {progress, 2, "one of --mission"},
      {progress + Arguments{"--mission", "3"}, 3, "AnnLee/autogame.zep is damaged"},
      {progress + Arguments{"--mission", "26"}, 2, "a mission from 1 to 25"},
      {progress + Arguments{"--lessons-done", "26"}, 2, "missions from 1 to 25"},
      {progress + Arguments{"--learned-keys", "x"}, 2, "yes or no"},
      {{"dump", root + "/missing"}, 3, "cannot be read"},
      {{"dump", root}, 3, "cannot be read"},
      {{"progress", "--help"}, 0, ""}};
  const std::pair<const char*, Arguments> bad[] = {
      {"", {"NoSuchKey=1", "SoundOn=", "SoundOn=two", "SoundOn=1x", "UseCamera=2"}},
      {"", {"CurrentMissionNumber=3", "Missions.0.Typeline=1", "Missions.26.Typeline=1"}},
      {"", {"Missions.4.Lesson=1", "TOGameDob.LessonDone=0-3", "TOGameDob.LessonDone=1,,2"}},
      {"", {"TOGameDob.LessonDone=4-2", "TOGameDob.LessonDone=26"}},
      {"KEY=VALUE", {"SoundOn"}},
      {"0 to 32767", {"SoundOn=-1", "SoundOn=32768", "SoundOn=99999999999"}},
      {"1 to 25", {"TOGameDob.CurrentMissionNumber=0", "TOGameDob.CurrentMissionNumber=26"}},
      {"0 to 2", {"Missions.4.Typeline=3"}}};
  for (const auto& [named, assignments] : bad) {
    for (const std::string& assignment : assignments) {
      lines.push_back({set + Arguments{"VocabLevel=5", assignment}, 2,
                       *named != '\0' ? named : assignment.substr(0, assignment.find('='))});
    }
  }
  ExpectEach(kAdmin, lines);
  EXPECT_EQ(before, store.Snapshot());
}

TEST_F(KivAdminOptions, ProgressShowsInTheReport) {
  EXPECT_EQ("1,1", Reported());
  EXPECT_EQ("student \"Ann Lee\": mission 7, lessons done 1-6, new keys learned\n",
            Progress({"--mission", "7", "--lessons-done", "1-6", "--learned-keys", "yes"}));
  EXPECT_EQ("7,6", Reported());
  Progress({"--learned-keys", "no"});
  EXPECT_EQ("6,6", Reported());
  Progress({"--lessons-done", "1-7"});
  EXPECT_EQ("7,6", Reported());
}

TEST_F(KivAdminOptions, ProgressMakesTheGameInTheStudentsNameAndKeepsTheRestOfOne) {
  GameBytes game;
  game.firstName = "Ann";
  game.lastName = "Lee";
  game.options.CurrentMissionNumber = game.currentLessonNumber = 3;
  game.learnedNewKeys = true;
  Progress({"--mission", "3", "--learned-keys", "yes"});
  const std::string bytes = store.ReadFile(ann + "/autogame.zep");
  // Behind the head, "Ann", "Lee", the empty long name, the flag and the mission.
  game.options.stamps.byKey["CurrentMissionNumber"] = StampAt(bytes, 8 + 4 + 4 + 1 + 1 + 2);
  EXPECT_EQ(game.Bytes(), bytes);

  game.longFileName = "Mine";
  game.bestTotalTime = 1234;
  game.keyTypedWrong[5] = 17;
  game.options.NotebookDone[3] = true;
  store.WriteGame(ann, game);
  Progress({"--learned-keys", "no"});
  game.learnedNewKeys = false;
  EXPECT_EQ(game.Bytes(), store.ReadFile(ann + "/autogame.zep"));
}

TEST_F(KivAdminOptions, DumpKnowsEveryFileOfAStoreAndRefusesTheRest) {
  const std::string index = IndexBytes({{"Zo", "Zo\xEB", "Ray"}}, {{"a.zep", "Mine", "zep"}});
  OptionsBytes newer;
  newer.version = 0x00020000;
  const std::tuple<const char*, std::string, const char*> files[] = {
      {"index.kiv", index,
       R"({"kind":"index","logins":[{"folder":"Zo","first_name":"Zoë","last_name":"Ray"}],
           "files":[{"file":"a.zep","long_name":"Mine","extension":"zep"}]})"},
      {"longname.kiv", LongNameBytes("Zo\xEB"),
       R"({"kind":"longname","first_name":"Zoë","last_name":""})"},
      {"last.kiv", ByteWriter().Long(1).Text("autogame.zep").Bytes(),
       R"({"kind":"last","files":["autogame.zep"]})"},
      {"options.lok", "", R"({"kind":"lock","bytes":0})"},
      {"options.kiv", "Game", nullptr},
      {"options.kiv", newer.Bytes(), nullptr},
      {"mine.zep", OptionsBytes().Bytes().substr(4), nullptr},
      {"notes.txt", "hello", nullptr},
      {"index.kiv", ByteWriter().Long(0x7FFFFFFF).Bytes(), nullptr},
      {"last.kiv", ByteWriter().Long(0xFFFFFFFF).Bytes(), nullptr}};
  for (const auto& [name, bytes, expected] : files) {
    store.WriteFile(name, bytes);
    const Json dumped = Dumped(name, expected != nullptr ? 0 : 1);
    EXPECT_TRUE(expected != nullptr ? Json::parse(expected) == dumped
                                    : dumped.is_object() && !dumped.contains("fields"))
        << name << dumped;
  }
}

TEST_F(KivAdminOptions, DumpTellsEachFieldOfARecordWithItsTime) {
  OptionsBytes options = OptionsBytes().Set("SoundOn", 1, 86400).SetMission(5, 100);
  options.SetLessonDone(2);
  store.WriteOptions(room, options);
  const Json dumped = Dumped(room + "/options.kiv");
  EXPECT_EQ("0.01", dumped["version"]);
  const Json &fields = dumped["fields"], &lessons = fields["TOGameDob"]["LessonDone"]["value"];
  EXPECT_EQ(R"({"value":1,"changed":"1904-01-02T00:00:00"})"_json, fields["SoundOn"]);
  EXPECT_EQ(R"({"value":true,"changed":null})"_json, fields["WordLists"]);
  EXPECT_EQ(Json({5, 25, true, 25, 1}),
            Json({fields["TOGameDob"]["CurrentMissionNumber"]["value"], lessons.size(), lessons[1],
                  fields["Missions"].size(), fields["Missions"][3]["Typeline"]["value"]}));
  GameBytes game;
  game.firstName = "Zo\xEB";
  game.keyTypedWrong[47] = -3;
  game.bestTotalTime = 4000000000;
  store.WriteGame(ann, game);
  const Json played = Dumped(ann + "/autogame.zep")["fields"];
  EXPECT_EQ(Json({"Zoë", -3, 4000000000u, -1, true}),
            Json({played["FirstName"], played["ErrorDob"]["KeyTypedWrong"][47],
                  played["LessonDob"]["BestTotalTime"], played["StudGraphData"][0],
                  played["DisplayFinalPayoff"]}));
}

// Cut anywhere, it is JSON and an error; whole, neither less nor more.
TEST_F(KivAdminOptions, DumpOfATornFileGivesWhatCouldBeReadAndSaysSo) {
  const std::string options = OptionsBytes().Set("SoundOn", 1).Bytes();
  for (const size_t length : {0, 3, 4, 7, 8, 9, 18, 20, 300, 400, 1000, 2000}) {
    store.WriteFile("options.kiv", options.substr(0, length));
    const Json fields = Dumped("options.kiv", 1)["fields"];
    EXPECT_EQ(length >= 18, fields.contains("SoundOn")) << length;
    EXPECT_EQ(length >= 300, fields.contains("WordLists")) << length;
  }
  for (const std::string behind : {"", "xy"}) {
    store.WriteFile("options.kiv", options + behind);
    EXPECT_EQ(behind.size(), Dumped("options.kiv").value("bytes_behind", 0u));
  }
  const std::string index = IndexBytes({{"Zo", "Zoe", "Ray"}, {"Al", "Al", "May"}});
  store.WriteFile("index.kiv", index.substr(0, 14));
  const Json logins = Dumped("index.kiv", 1)["logins"];
  EXPECT_EQ(R"([{"folder":"Zo","first_name":"Zoe","last_name":"Ray"}])"_json, logins);
}

}  // namespace
}  // namespace kivtest
