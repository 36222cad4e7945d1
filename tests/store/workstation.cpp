// One of several workstations at work on a networked store with the classes of class_places.h: it
// adds, renames, moves and deletes students of its own at random, and writes down at the end what
// it was told became of them.
//
//   workstation ROOT NUMBER LOG
#include <chrono>
#include <fstream>
#include <map>
#include <random>
#include <thread>

#include "foundation/application.h"
#include "foundation/files/file_type.h"
#include "platform/platform.h"
#include "store/change/adding.h"
#include "store/change/deleting.h"
#include "store/change/moving.h"
#include "store/change/renaming.h"
#include "store/list/listing.h"
#include "tests/store/class_places.h"

using namespace kivstore;
using namespace kivtest;

namespace {

constexpr std::chrono::milliseconds kRunTime{2500};

// Waits pass by themselves while the process really gives way, so that a lock's backoff is short.
class YieldingClock : public IClock {
 public:
  uint32_t Ticks() override {
    std::this_thread::sleep_for(std::chrono::microseconds(200));
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

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    return 2;
  }
  RegisterFileType(kFileTypeGame, "Game File|Game Files|zep|Game|1");
  const CreatingScope creating;
  const SiteScope site(kSiteSharedTeachers);
  gTeacherTier = 1;
  AppScope app;
  app.app.SetProperty("Data", Text(argv[1]));
  YieldingClock clock;
  const SPlatformOverride<IClock> installed(Platform().clock, &clock);
  Workstation workstation(std::stoi(argv[2]));
  workstation.Run();
  workstation.WriteLog(argv[3]);
  return 0;
}
