// Four processes at work on one networked store, as four workstations are: they add, rename, move
// and delete at random. Each student belongs to one of them, so that what it was told is the whole
// truth about that student; the lists they stand in are everyone's.
#ifndef _WIN32
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <random>

#include "store/adding.h"
#include "store/deleting.h"
#include "store/listing.h"
#include "store/moving.h"
#include "store/renaming.h"
#include "tests/store/store_fixture.h"
#include "tests/support/store_invariants.h"

using namespace kivstore;
using kivtest::Bytes;
using kivtest::Kind;
using kivtest::Lines;
using kivtest::ListedEntry;
using kivtest::StoreBuilder;
using kivtest::Text;

namespace {

constexpr int kProcesses = 4;
constexpr std::chrono::milliseconds kRunTime{2500};

struct ClassPlace {
  const char* teacher;
  const char* teacherName;
  const char* folder;
};
constexpr ClassPlace kClassPlaces[] = {
    {"aHill", "Ms Hill", "Room"}, {"aHill", "Ms Hill", "Den"}, {"Oak", "Mr Oak", "Yard"}};

SLoginNameObj TeacherOf(const ClassPlace& place) {
  return {Text(place.teacherName), SString(), Text(place.teacher)};
}
SLoginNameObj ClassOf(const ClassPlace& place) {
  return {Text(place.folder), SString(), Text(place.folder)};
}
std::string ListOf(const ClassPlace& place) {
  return std::string("Classes.zep/") + place.teacher + "/Classes.zep/" + place.folder + "/Students";
}

// Waits pass by themselves while the process really gives way, so that a lock's backoff is short.
class YieldingClock : public IClock {
 public:
  uint32_t Ticks() override {
    usleep(200);
    return ticks += 40;
  }
  LocalTime Now() override { return {2001, 2, 3, 4, 5, 6}; }
  void Beep(uint32_t) override {}

 private:
  uint32_t ticks = 0;
};

// One workstation. What it was told of each of its students, by first name; the last name changes.
class Workstation {
 public:
  explicit Workstation(int number) : name("P" + std::to_string(number)), random(number + 1u) {}

  void Run() {
    const auto end = std::chrono::steady_clock::now() + kRunTime;
    while (std::chrono::steady_clock::now() < end) {
      Act();
    }
  }
  void WriteLog(const std::string& path) const {
    std::ofstream out(path);
    for (const auto& [first, student] : students) {
      out << first << ' ' << student.last << ' ' << ListOf(*student.place) << '\n';
    }
    out << "done " << done << '\n';
  }

 private:
  struct Student {
    std::string last;
    const ClassPlace* place;
  };

  unsigned Below(size_t count) { return static_cast<unsigned>(random() % count); }
  const ClassPlace& AnyPlace() { return kClassPlaces[Below(std::size(kClassPlaces))]; }

  void Act() {
    const unsigned choice = Below(10);
    if (students.empty() || (choice < 3 && students.size() < 12)) {
      Add();
      return;
    }
    auto student = students.begin();
    std::advance(student, Below(students.size()));
    const SLoginNameObj teacher = TeacherOf(*student->second.place);
    SelectTeacher(&teacher);
    SLoginList list;
    LoadStudentList(list.Array(), ClassOf(*student->second.place), true, true);
    for (int32_t i = 0; i < list.GetSize(); ++i) {
      if (list.At(i)->firstName == student->first.c_str()) {
        Change(choice, student->first, *list.At(i), list.Array());
        return;
      }
    }
  }
  void Add() {
    const ClassPlace& place = AnyPlace();
    const SLoginNameObj teacher = TeacherOf(place);
    SelectTeacher(&teacher);
    const std::string first = name + "N" + std::to_string(++count);
    SString folder;
    if (AddStudent(ClassOf(place), Text(first), "0", folder)) {
      students[first] = {"0", &place};
      ++done;
    }
  }
  void Change(unsigned choice, const std::string& first, SLoginNameObj& entry, SPtrArray& list) {
    const bool changed = choice < 6   ? Rename(students[first], entry, list)
                         : choice < 9 ? Move(students[first], entry, list)
                                      : Delete(first, entry, list);
    done += changed ? 1 : 0;
  }
  bool Rename(Student& student, SLoginNameObj& entry, SPtrArray& list) {
    const std::string last = std::to_string(++count);
    const SString first = entry.firstName;
    if (!RenameStudent(Class(student), &entry, &list, first, Text(last))) {
      return false;
    }
    student.last = last;
    return true;
  }
  bool Move(Student& student, SLoginNameObj& entry, SPtrArray& list) {
    const ClassPlace& to = AnyPlace();
    if (&to == student.place) {
      return false;
    }
    const SLoginNameObj from = TeacherOf(*student.place);
    const SLoginNameObj there = TeacherOf(to);
    const SLoginNameObj newClass = ClassOf(to);
    const SString first = entry.firstName;
    const bool sameTeacher = from.folderName == there.folderName;
    const bool moved = sameTeacher ? MoveStudent(Class(student), &newClass, &entry, &list, first,
                                                 Text(student.last))
                                   : MoveStudentAcross(&from, &there, Class(student), &newClass,
                                                       &entry, &list, first, Text(student.last));
    if (moved) {
      student.place = &to;
    }
    return moved;
  }
  bool Delete(const std::string& first, SLoginNameObj& entry, SPtrArray& list) {
    bool stop = false;
    if (!DeleteStudent(Class(students[first]), &entry, &list, true, stop)) {
      return false;
    }
    students.erase(first);
    return true;
  }
  const SLoginNameObj* Class(const Student& student) {
    classEntry = ClassOf(*student.place);
    return &classEntry;
  }

  std::string name;
  std::minstd_rand random;
  std::map<std::string, Student> students;
  SLoginNameObj classEntry;
  int count = 0;
  int done = 0;
};

class ConcurrencyTest : public kivtest::StoreFixture {
 protected:
  ConcurrencyTest() {
    UseSite(Kind::kTeachers);
    StoreBuilder store(temp.Path(), Kind::kTeachers);
    store.AddTeacher("Ms Hill", "aHill");
    store.AddTeacher("Mr Oak", "Oak");
    for (const ClassPlace& place : kClassPlaces) {
      store.AddClass(std::string("Classes.zep/") + place.teacher, place.folder, place.folder);
    }
    store.Finish();
  }
  std::string LogPath(int number) const { return logs.Path("log" + std::to_string(number)); }
  void RunAll() {
    std::vector<pid_t> children;
    for (int i = 0; i < kProcesses; ++i) {
      const pid_t child = fork();
      if (child == 0) {
        YieldingClock yielding;
        Platform().clock = &yielding;
        Workstation workstation(i);
        workstation.Run();
        workstation.WriteLog(LogPath(i));
        _exit(0);
      }
      children.push_back(child);
    }
    for (const pid_t child : children) {
      int status = -1;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      ASSERT_EQ(status, 0);
    }
  }
  void ListAll() {
    for (const ClassPlace& place : kClassPlaces) {
      const SLoginNameObj teacher = TeacherOf(place);
      SelectTeacher(&teacher);
      SLoginList list;
      LoadStudentList(list.Array(), ClassOf(place), true, true);
    }
  }
  // "First Last list", sorted, and how much was done.
  Lines Told(int& done) const {
    Lines told;
    for (int i = 0; i < kProcesses; ++i) {
      std::ifstream in(LogPath(i));
      std::string first, last, list;
      while (in >> first >> last && first != "done" && in >> list) {
        told.push_back(first + " " + last + " " + list);
      }
      done += std::stoi("0" + last);
    }
    std::sort(told.begin(), told.end());
    return told;
  }

  kivtest::CreatingScope creating;
  kivtest::TempFolder logs;
};

TEST_F(ConcurrencyTest, WhatAProcessWasToldIsTrueIsSoOnDisk) {
  RunAll();
  ListAll();
  const kivtest::StoreImage image = kivtest::ReadStore(temp.Path(), Kind::kTeachers);
  EXPECT_EQ(image.faults, Lines());
  Lines listed;
  for (const ListedEntry& student : image.students) {
    listed.push_back(student.Name() + " " + student.list);
    EXPECT_EQ(temp.ReadFile(student.Path() + "/longname.kiv").substr(0, student.first.size()),
              student.first);
  }
  std::sort(listed.begin(), listed.end());
  int done = 0;
  EXPECT_EQ(listed, Told(done));
  RecordProperty("changes", done);
  EXPECT_GT(done, kProcesses * 5);
}

}  // namespace
#endif
