// Any bytes in the store and any path from the host: an answer, and no harm.
#include <random>

#include "tests/app/call_fixture.h"
#include "tests/support/test_clock.h"

namespace kivtest {
namespace {

using namespace kivstore;

class HostileInput : public AnnsStore {
 protected:
  HostileInput() : AnnsStore(Kind::kTeachers) {
    store.WriteOptions(classes, OptionsBytes().Set("VocabLevel", 2));
    Learn(ann, 7);
  }
  // Every command with good indices; the answers are whatever they are.
  void CallEverything() {
    for (int command = 1; command <= 14; ++command) {
      host.Teacher(1).Class(1).Student(2).Call(command);
    }
  }

  // No wait takes real time.
  TestClock clock{1000};
};

TEST_F(HostileInput, PathsThatLeadNowhereFailEveryCommand) {
  folder.WriteFile("plain", "a file");
  for (const std::string& path : std::vector<std::string>{
           "", "/", "\\\\server\\share", "X:\\", "..", folder.Path("missing"), folder.Path("plain"),
           folder.Path("plain/"), folder.Path("a\nb"), std::string(300, 'x'),
           std::string(32000, 'x'), std::string(32766, '/'), std::string(70000, 'x'),
           "/" + std::string(32000, 'y') + "/Classes.zep/"}) {
    for (const uint8_t mode : {kNetworkedMode, kLocalMode}) {
      Host lost(path, mode);
      for (int command = 1; command <= 8; ++command) {
        EXPECT_FALSE(lost.Teacher(1).Class(1).Student(1).Call(command))
            << path.substr(0, 40) << " command " << command;
      }
    }
  }
}

TEST_F(HostileInput, TornFilesLoseNobodyAtAnyLength) {
  using Row = std::tuple<std::string, size_t>;
  for (const auto& [file, step] :
       {Row{ann + "/autogame.zep", 7}, Row{ann + "/options.kiv", 23}, Row{ann + "/longname.kiv", 1},
        Row{students + "/index.kiv", 1}, Row{classes + "/index.kiv", 1},
        Row{"Classes.zep/index.kiv", 1}}) {
    const std::string whole = store.ReadFile(file);
    for (size_t length = 0; length < whole.size(); length += step) {
      store.WriteFile(file, whole.substr(0, length));
      AskForAnn();  // repairs, and comes in the order of the names
      EXPECT_TRUE(AskForAnn()) << file << " of " << length;
      if (length == 0 && step == 1) {
        EXPECT_STREQ(host.block.studentName, "Ann Lee") << file;
        EXPECT_EQ(host.block.currentMission, 7) << file;
      }
    }
    store.WriteFile(file, whole);
  }
}

TEST_F(HostileInput, FilesOfNoiseGiveAnAnswer) {
  std::mt19937 random(20240229);
  std::string noise(3000, '\0');
  for (const std::string& file :
       {ann + "/autogame.zep", ann + "/options.kiv", ann + "/longname.kiv",
        classes + "/options.kiv", students + "/index.kiv", classes + "/index.kiv",
        std::string("Classes.zep/index.kiv")}) {
    const std::string whole = store.ReadFile(file);
    for (const std::string& header : {std::string(), std::string("BIN\x01\0\1\0\0", 8),
                                      std::string("Game\0\1\0\0", 8), std::string("\0\0\0\3", 4)}) {
      for (char& byte : noise) {
        byte = static_cast<char>(random());
      }
      store.WriteFile(file, header + noise);
      CallEverything();
    }
    store.WriteFile(file, whole);
  }
}

TEST_F(HostileInput, CountsBeyondTheFileCostNeitherMemoryNorTime) {
  for (const char* const count : {"\x7F\xFF\xFF\xFF", "\xFF\xFF\xFF\xFF", "\x80\0\0\0"}) {
    const std::string bytes(count, 4);
    store.WriteFile(students + "/index.kiv", bytes + bytes + bytes);
    store.WriteFile(classes + "/index.kiv", bytes);
    CallEverything();
  }
  OptionsBytes options;
  options.game.LessonDone.assign(65535, true);
  options.missions.assign(65535, MissionBytes());
  const std::string bytes = options.Bytes();
  for (const size_t length : {bytes.size(), bytes.size() / 2, size_t{500}}) {
    store.WriteFile(ann + "/options.kiv", bytes.substr(0, length));
    CallEverything();
  }
}

TEST_F(HostileInput, AnEntryCannotLeadOutOfItsList) {
  for (const char* const name : {"..", ".", "", "..\\..", "../Students/AnnLee", "\\", "/etc"}) {
    store.WriteFile(students + "/index.kiv", IndexBytes({{name, "Eve", "Il"}}));
    store.SetLongName(ann, "");
    EXPECT_FALSE(host.Teacher(1).Class(1).Student(3).Call(KIV_STUDENT_PROGRESS)) << name;
    store.WriteFile(classes + "/index.kiv", IndexBytes({{name, "Evil", ""}}));
    host.Call(KIV_COUNT_STUDENTS);
    EXPECT_FALSE(folder.Exists("longname.kiv"));
  }
}

TEST_F(HostileInput, LongNamesAreCutToTheField) {
  store.SetLongName(ann, std::string(5000, 'A'), std::string(32766, 'L'));
  store.DropIndexLine(ann);
  EXPECT_TRUE(host.Teacher(1).Class(1).Student(1).Call(KIV_STUDENT_PROGRESS));
  EXPECT_EQ(host.block.studentName, std::string(51, 'A'));
  EXPECT_EQ(host.block.studentNameSize, 52);
}

}  // namespace
}  // namespace kivtest
