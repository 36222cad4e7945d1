// kivadmin's options as text files, out of a store and back, on stores laid out by hand.
#include "tests/hosts/host_programs.h"

namespace kivtest {
namespace {

constexpr uint32_t kLongAgo = 1000;
constexpr uint32_t kRecently = 3'800'000'000;  // in May 2024

class KivAdminPref : public SchoolTest {
 protected:
  std::string Exported(const Arguments& level) const {
    Do(Arguments{"options", "export", root} + level + Arguments{texts.Path("out.txt"), "--force"});
    return texts.ReadFile("out.txt");
  }
  RunResult Import(const Arguments& level, const std::string& text,
                   const Arguments& more = {}) const {
    texts.WriteFile("in.txt", text);
    return Admin(Arguments{"options", "import", root, texts.Path("in.txt")} + level + more);
  }
  std::string Options(const std::string& place) const {
    return store.ReadFile(place + "/options.kiv");
  }
  static uint32_t StampOf(const std::string& text, const std::string& key) {
    const std::string line = '\n' + key + "_ts_low=";
    ExpectIn(line, text);
    return static_cast<uint32_t>(std::stoul('0' + text.substr(text.find(line) + line.size())));
  }
  static std::string Edited(std::string text, const std::string& from, const std::string& to) {
    ExpectIn(from, text);
    return text.replace(text.find(from), from.size(), to);
  }

  TempFolder texts;
};

TEST_F(KivAdminPref, AnExportCarriesEveryLevelIntoAnyOtherToTheByte) {
  OptionsBytes full = OptionsBytes().Set("SoundOn", 1, kLongAgo).Set("UseCamera", 0, 2000);
  full.SetMission(7, 3000).SetLessonDone(25).game.stamps.byKey["LessonDone"] = 4000;
  full.Set("Checkpoint", -5, 4294967294);  // what a file holds, no limit of the command line stops
  full.missions.resize(30);
  full.stamps.all = 5;
  full.game.LessonDone.resize(27);
  full.game.AllMissionsCompleted = true;
  OptionsBytes gameless = OptionsBytes().Set("VocabLevel", 3, kLongAgo);
  gameless.hasGameOptions = false;
  const std::pair<std::string, Arguments> levels[] = {{list, {}}, {room, inRoom}, {ann, ofAnn}};
  store.WriteOptions(other, OptionsBytes().Set("Checkpoint", 1, 10));  // the others find no file
  for (const auto& [place, level] : levels) {
    for (const OptionsBytes& options : {full, gameless}) {
      store.WriteOptions(place, options);
      const auto before = store.Snapshot();
      const std::string text = Exported(level);
      EXPECT_EQ(0u, text.find("[Options]\r\nSoundOn=")) << text.substr(0, 40);
      EXPECT_EQ(0, Import(level, text).exitCode);
      EXPECT_EQ(before, store.Snapshot()) << place;  // unedited
    }
    store.WriteOptions(place, full);
    EXPECT_EQ(0, Import(inOther, Edited(Exported(level), "=-5", "=6")).exitCode);
    EXPECT_EQ(OptionsBytes(full).Set("Checkpoint", 6).Bytes(), Options(other));
    store.RemoveFile(other + "/options.kiv");
  }
}

TEST_F(KivAdminPref, AnUndecidedLevelIsExportedAsDefaultsThatAnEditDecides) {
  const std::string text = Exported(inRoom);
  EXPECT_EQ("nothing to change for class \"Room 12\"\n", Import(inRoom, text).output);
  EXPECT_FALSE(folder.Exists("store/" + room + "/options.kiv"));
  EXPECT_EQ("set VocabLevel=4 for class \"Room 12\"\n",
            Import(inRoom, Edited(text, "VocabLevel=1", "VocabLevel=4")).output);
  const std::string after = Exported(inRoom);
  EXPECT_GT(StampOf(after, "VocabLevel"), kRecently);
  EXPECT_EQ(0u, StampOf(after, "SoundOn"));
}

TEST_F(KivAdminPref, WhatIsEditedIsDecidedNowAndTheRestKeepsItsTime) {
  const OptionsBytes before = OptionsBytes().Set("SoundOn", 1, kLongAgo).SetMission(3, kLongAgo);
  store.WriteOptions(room, before);
  std::string text = Exported(inRoom);
  text = Edited(text, "\r\nSoundOn=1", "\r\n; louder\r\n  soundon=2");
  text = Edited(text, "3_Typeline=1", "3_Typeline=0");
  text = Edited(text, "NotebookDone_1=0", "NotebookDone_1=1");
  const std::string said =
      "set SoundOn=2, TOGameDob.NotebookDone=2, Missions.4.Typeline=0 for class \"Room 12\"\n";
  EXPECT_EQ("dry run: " + said, Import(inRoom, text, {"--dry-run"}).output);
  EXPECT_EQ(before.Bytes(), Options(room));
  EXPECT_EQ(said, Import(inRoom, text).output);
  const std::string after = Exported(inRoom);
  for (const char* const key : {"SoundOn", "3_Typeline", "TOGameDob_NotebookDone"}) {
    EXPECT_GT(StampOf(after, key), kRecently) << key;
  }
  EXPECT_EQ(kLongAgo, StampOf(after, "TOGameDob_CurrentMissionNumber"));
}

TEST_F(KivAdminPref, ALineThatIsMissingKeepsAndAValueWithoutTimeIsDecidedNow) {
  store.WriteOptions(room, OptionsBytes().Set("SoundOn", 1, kLongAgo).Set("TextSize", 3, kLongAgo));
  const char* const text =
      "\xEF\xBB\xBF[options]\nSoundOn=1\nTextSize_ts_low=2000\nTOGameDob_LessonDone_4=1\n"
      "[Mine]\nNoSuchKey=1\n";
  EXPECT_EQ("set SoundOn=1, TOGameDob.LessonDone=5 for class \"Room 12\"\n",
            Import(inRoom, text).output);
  const std::string after = Exported(inRoom);
  EXPECT_GT(StampOf(after, "SoundOn"), kRecently);
  EXPECT_EQ(kLongAgo, StampOf(after, "TextSize"));
  EXPECT_EQ(0, Import(inRoom,
                      "[Options]\n[Options_Missions]\nCount=26\n25_Notebook=1\n25_Typeline=2\n"
                      "25_WindshieldTypers=2\n25_WarpSpeed=2\n25_DictationStation=2\n"
                      "25_KeyFigures=2\n")
                   .exitCode);
  EXPECT_GT(StampOf(Exported(inRoom), "25_Notebook"), kRecently);
}

TEST_F(KivAdminPref, WhatTheStoreDecidedLaterStaysAndIsNamed) {
  store.WriteOptions(room, OptionsBytes().Set("SoundOn", 1, kLongAgo).Set("TextSize", 3, kLongAgo));
  const std::string text = Exported(inRoom);
  const OptionsBytes later = OptionsBytes().Set("SoundOn", 0, 2000).Set("TextSize", 3, 2000);
  store.WriteOptions(room, later);
  const RunResult result = Import(inRoom, text);
  EXPECT_EQ(0, result.exitCode);
  EXPECT_EQ("kivadmin: SoundOn stays 0, decided 1904-01-01T00:33:20, which is after the file's 1\n",
            result.errors);
  EXPECT_EQ(later.Bytes(), Options(room));
}

TEST_F(KivAdminPref, AFileWithAFaultIsRefusedWholeAndTheFaultNamed) {
  store.WriteOptions(room, OptionsBytes().Set("SoundOn", 1, kLongAgo));
  const std::string head = "[Options]\r\nVocabLevel=5\r\n";
  const std::pair<std::string, const char*> bad[] = {
      {"", "no section [Options]"},
      {std::string(head + '\0'), "no text file"},
      {head + "SoundOn=two", "in.txt:3: SoundOn=two: a number from 0 to 32767"},
      {head + "\r\nSoundOn=99999", "in.txt:4: SoundOn=99999"},
      {head + "UseCamera=yes", "UseCamera=yes: 1 or 0"},
      {head + "TOGameDob_CurrentMissionNumber=26", "1 to 25"},
      {head + "[Options_Missions]\n3_Typeline=3", "in.txt:4: 3_Typeline=3: a number from 0 to 2"},
      {head + "[Options_Missions]\n25_Typeline=1", "25_Typeline=1: there is no such option"},
      {head + "[Options_Missions]\nCount=26", "25_Notebook: is missing"},
      {head + "[Options_Mission]\n3_Typeline=0", "no such option in [Options_Mission]"},
      {head + "[Options_Missions\n3_Typeline=0", "[Options_Missions: "},
      {head + "TOGameDob_LessonDone_Count=65535", "LessonDone_25: is missing"},
      {head + "SoundOn_ts_low=4294967296", "SoundOn_ts_low=4294967296"},
      {head + "NoSuchKey=1", "in.txt:3: NoSuchKey=1: there is no such option"},
      {head + "SoundOn =1", "no blank"},
      {head + "vocablevel=6", "in.txt:3: vocablevel=6: stands there twice, first in line 2"},
      {head + head, "in.txt:3: [Options]: the section stands there twice"}};
  const auto before = store.Snapshot();
  for (const auto& [text, told] : bad) {
    const RunResult result = Import(inRoom, text);
    EXPECT_EQ(2, result.exitCode) << text;
    ExpectIn(told, result.errors);
  }
  ExpectEach(kAdmin, {{{"options", "import", root, texts.Path("no.txt")}, 2, "cannot be read"}});
  EXPECT_EQ(before, store.Snapshot());
}

TEST_F(KivAdminPref, AFileThatIsThereIsReplacedOnlyByForce) {
  texts.WriteFile("out.txt", "mine");
  const Arguments command{"options", "export", root};
  ExpectEach(kAdmin, {{command + Arguments{texts.Path("out.txt")}, 2, "--force"},
                      {command + Arguments{texts.Path("no/out.txt")}, 2, "could not be written"}});
  EXPECT_EQ("mine", texts.ReadFile("out.txt"));
  EXPECT_EQ(0u, Exported(inRoom).find("[Options]"));
  EXPECT_EQ(Arguments{"out.txt"}, texts.List());
}

}  // namespace
}  // namespace kivtest
