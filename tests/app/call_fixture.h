// What the tests of the commands share: a block to call with, a process put back to how the library
// starts, and a small store.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "app/library_state.h"
#include "kivstore/general_proc.h"
#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"

namespace kivtest {

inline constexpr uint8_t kLocalMode = 0;
inline constexpr uint8_t kNetworkedMode = 1;

// The latch and the caches outlive a call, so each test begins without them.
class ProcessState : public testing::Test {
 protected:
  ProcessState() {
    LibraryState().site.ClearTeacherTier();
    LibraryState().caches = {};
  }

  static kivstore::SLibraryState& LibraryState() { return kivstore::LibraryState(); }
};

// A host with one block for one store.
class Host {
 public:
  Host(const std::string& dataPath, uint8_t mode) : path(dataPath) {
    block.mode = mode;
    block.dataPath = path.c_str();
    block.teacherNameSize = block.classNameSize = block.studentNameSize = 52;
    block.productIdSize = 10;
  }

  bool Call(int32_t command) {
    block.command = command;
    block.result = 0xEE;
    GeneralProc(&block);
    EXPECT_LE(block.result, 1) << "command " << command << " left no result";
    return block.result == 1;
  }
  // Whether it succeeds, and what the block then tells: the counts, and the names with their
  // indices.
  std::string Answer(int32_t command) {
    const auto number = [](int32_t value) { return std::to_string(value) + " "; };
    const std::string done = Call(command) ? "yes " : "no ";
    return done + number(block.topCount) + number(block.classCount) + number(block.studentCount) +
           block.teacherName + "|" + number(block.classIndex) + block.className + "|" +
           number(block.studentIndex) + block.studentName;
  }
  Host& Teacher(int32_t number) {
    block.teacherIndex = block.teacherListIndex = number;
    return *this;
  }
  Host& ListedClass(int32_t number) {
    block.classListIndex = number;
    return *this;
  }
  Host& Class(int32_t number) {
    block.classIndex = number - 1;
    return ListedClass(number);
  }
  Host& Student(int32_t number) {
    block.studentListIndex = number;
    return *this;
  }

  SGeneralParams block{};

 private:
  std::string path;
};

// A store in which Ann is the second student of Room 12, of two classes, and with teachers the
// first one's. Entries come in the order of their folder names.
class AnnsStore : public ProcessState {
 protected:
  explicit AnnsStore(Kind kind) { Lay(kind); }

  // In place of the store before.
  void Lay(Kind kind) {
    folder.Remove("Classes.zep");
    store = StoreBuilder(folder.Path(), kind);
    std::string hill;
    if (kind == Kind::kTeachers) {
      reyes = store.AddTeacher("Mr Reyes", "zReyes");
      hill = store.AddTeacher("Ms Hill", "Hill");
    }
    classes = StoreBuilder::ClassList(hill);
    store.AddClass(hill, "Room 14", "r14");
    room = store.AddClass(hill, "Room 12", "R12");
    students = StoreBuilder::StudentList(room);
    store.AddStudent(room, "Mei", "", "b");
    ann = store.AddStudent(room, "Ann", "Lee", "AnnLee");
    store.AddStudent(room, "Abe", "Young", "a");
    store.Finish();
    host.block.mode = kind == Kind::kTeachers ? kNetworkedMode : kLocalMode;
  }
  void Learn(const std::string& student, int mission, bool newKeys = true) {
    store.WriteOptions(student, OptionsBytes().SetMission(mission));
    GameBytes game;
    game.learnedNewKeys = newKeys;
    store.WriteGame(student, game);
  }
  bool AskForAnn() {
    host.block.currentMission = host.block.previousMission = host.block.vocabLevel = 77;
    host.block.studentName[0] = '\0';
    return host.Teacher(1).Class(1).Student(2).Call(KIV_STUDENT_PROGRESS);
  }

  TempFolder folder;
  StoreBuilder store{folder.Path(), Kind::kLocal};
  std::string reyes, classes, room, students, ann;
  const kivstore::SLoginNameObj classEntry{"Room 12", "", "R12"};
  const kivstore::SLoginNameObj annEntry{"Ann", "Lee", "AnnLee"};
  Host host{folder.Path(), kLocalMode};
};

}  // namespace kivtest
