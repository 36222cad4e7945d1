// Any bytes in the store and any path from the host: an answer, and no harm.
#include <random>

#include "tests/app/call_fixture.h"
#include "tests/support/test_clock.h"

namespace kivtest {
namespace {

using namespace kivstore;

class HostileInput : public ProcessState {
 protected:
  HostileInput() {
    const std::string teacher = store.AddTeacher("Ms Hill", "Hill");
    list = StoreBuilder::ClassList(teacher);
    room = store.AddClass(teacher, "Room 12", "R12");
    ann = store.AddStudent(room, "Ann", "Lee", "AnnLee");
    store.WriteOptions(list, OptionsBytes().Set("VocabLevel", 2));
    store.WriteOptions(ann, OptionsBytes().SetMission(7));
    GameBytes game;
    game.learnedNewKeys = true;
    store.WriteGame(ann, game);
    store.Finish();
  }

  // Every command with good indices; the answers are whatever they are.
  void CallEverything() {
    Host host(folder.Path(), kNetworkedMode);
    for (int command = 1; command <= 14; ++command) {
      host.Teacher(1).Class(1).Student(1).Call(command);
    }
  }
  void TryEveryLength(const std::string& file, size_t step) {
    const std::string whole = store.ReadFile(file);
    for (size_t length = 0; length < whole.size(); length += step) {
      store.WriteFile(file, whole.substr(0, length));
      Host host(folder.Path(), kNetworkedMode);
      host.Teacher(1).Class(1).Student(1).Call(KIV_STUDENT_PROGRESS);
    }
    store.WriteFile(file, whole);
  }

  // No wait takes real time.
  TestClock clock{1000};
  TempFolder folder;
  StoreBuilder store{folder.Path(), Kind::kTeachers};
  std::string list, room, ann;
};

TEST_F(HostileInput, PathsThatLeadNowhereFailEveryCommand) {
  folder.WriteFile("plain", "a file");
  const std::string paths[] = {"",
                               "/",
                               "\\\\server\\share",
                               "X:\\",
                               "..",
                               folder.Path("missing"),
                               folder.Path("plain"),
                               folder.Path("plain/"),
                               folder.Path("a\nb"),
                               std::string(300, 'x'),
                               std::string(32000, 'x'),
                               std::string(32766, '/'),
                               std::string(70000, 'x'),
                               "/" + std::string(32000, 'y') + "/Classes.zep/"};
  for (const std::string& path : paths) {
    for (const uint8_t mode : {kNetworkedMode, kLocalMode}) {
      Host host(path, mode);
      for (int command = 1; command <= 8; ++command) {
        EXPECT_FALSE(host.Teacher(1).Class(1).Student(1).Call(command))
            << path.substr(0, 40) << " command " << command;
      }
    }
  }
}

TEST_F(HostileInput, TornFilesGiveAnAnswerAtEveryLength) {
  TryEveryLength(ann + "/autogame.zep", 7);
  TryEveryLength(ann + "/options.kiv", 23);
  TryEveryLength(ann + "/longname.kiv", 1);
  TryEveryLength(StoreBuilder::StudentList(room) + "/index.kiv", 1);
  TryEveryLength(list + "/index.kiv", 1);
  TryEveryLength("Classes.zep/index.kiv", 1);
}

TEST_F(HostileInput, ARebuiltIndexBringsTheStudentBack) {
  store.WriteFile(StoreBuilder::StudentList(room) + "/index.kiv", "");
  Host host(folder.Path(), kNetworkedMode);
  EXPECT_TRUE(host.Teacher(1).Class(1).Student(1).Call(KIV_STUDENT_PROGRESS));
  EXPECT_STREQ(host.block.studentName, "Ann Lee");
  EXPECT_EQ(host.block.currentMission, 7);
}

TEST_F(HostileInput, FilesOfNoiseGiveAnAnswer) {
  std::mt19937 random(20240229);
  const auto noise = [&](size_t length) {
    std::string bytes(length, '\0');
    for (char& byte : bytes) {
      byte = static_cast<char>(random());
    }
    return bytes;
  };
  const std::string files[] = {ann + "/autogame.zep",
                               ann + "/options.kiv",
                               ann + "/longname.kiv",
                               list + "/options.kiv",
                               StoreBuilder::StudentList(room) + "/index.kiv",
                               list + "/index.kiv",
                               "Classes.zep/index.kiv"};
  const std::string headers[] = {"", std::string("BIN\x01\0\1\0\0", 8),
                                 std::string("Game\0\1\0\0", 8), std::string("\0\0\0\3", 4)};
  for (const std::string& file : files) {
    const std::string whole = store.ReadFile(file);
    for (const std::string& header : headers) {
      store.WriteFile(file, header + noise(3000));
      CallEverything();
    }
    store.WriteFile(file, whole);
  }
}

TEST_F(HostileInput, CountsBeyondTheFileCostNeitherMemoryNorTime) {
  for (const char* const count : {"\x7F\xFF\xFF\xFF", "\xFF\xFF\xFF\xFF", "\x80\0\0\0"}) {
    const std::string bytes(count, 4);
    store.WriteFile(StoreBuilder::StudentList(room) + "/index.kiv", bytes + bytes + bytes);
    store.WriteFile(list + "/index.kiv", bytes);
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
  const std::string students = StoreBuilder::StudentList(room);
  for (const char* const name : {"..", ".", "", "..\\..", "../Students/AnnLee", "\\", "/etc"}) {
    store.WriteFile(students + "/index.kiv", IndexBytes({{name, "Eve", "Il"}}));
    store.SetLongName(ann, "");
    Host host(folder.Path(), kNetworkedMode);
    EXPECT_FALSE(host.Teacher(1).Class(1).Student(1).Call(KIV_STUDENT_PROGRESS)) << name;
    store.WriteFile(list + "/index.kiv", IndexBytes({{name, "Evil", ""}}));
    Host(folder.Path(), kNetworkedMode).Teacher(1).Class(1).Call(KIV_COUNT_STUDENTS);
    EXPECT_FALSE(folder.Exists("longname.kiv"));
  }
}

TEST_F(HostileInput, LongNamesAreCutToTheField) {
  store.SetLongName(ann, std::string(5000, 'A'), std::string(32766, 'L'));
  store.DropIndexLine(ann);
  Host host(folder.Path(), kNetworkedMode);
  EXPECT_TRUE(host.Teacher(1).Class(1).Student(1).Call(KIV_STUDENT_PROGRESS));
  EXPECT_EQ(host.block.studentName, std::string(51, 'A'));
  EXPECT_EQ(host.block.studentNameSize, 52);
}

}  // namespace
}  // namespace kivtest
