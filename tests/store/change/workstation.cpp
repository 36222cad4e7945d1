// One of several workstations at work on the store of concurrency_test.cpp: it adds, renames, moves
// and deletes students of its own at random, and prints at the end what it was told became of them.
//
//   workstation ROOT NUMBER
#include <chrono>
#include <iostream>
#include <thread>

#include "store/change/default_entries.h"
#include "store/change/deleting.h"
#include "store/change/moving.h"
#include "store/change/renaming.h"
#include "store/list/listing.h"
#include "tests/support/draw.h"
#include "tests/support/site_fixture.h"

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

class Workstation {
 public:
  Workstation(SSite& site, int number)
      : site(site), name("P" + std::to_string(number)), draw(static_cast<uint32_t>(number) + 1) {
    while (places.empty()) {  // the lists may be in the others' hands for longer than is waited
      FindPlaces();
    }
  }

  void Act() {
    const int choice = draw.Below(10);
    SString folder;
    if (students.empty() || (choice < 3 && students.size() < 12)) {
      const Student added{name + "N" + std::to_string(++count), "0", &AnyPlace()};
      site.SelectTeacher(&added.place->teacher);
      if (AddStudent(site, added.place->entry, Text(added.first), "0", folder)) {
        students.push_back(added);
      }
      return;
    }
    const int number = draw.Below(static_cast<int>(students.size()));
    const Student student = students[static_cast<size_t>(number)];
    site.SelectTeacher(&student.place->teacher);
    SLoginList list;
    LoadStudentList(site, list, student.place->entry, true, true);
    for (SLoginNameObj& entry : list) {
      if (entry.firstName == student.first.c_str()) {
        students.erase(students.begin() + number);
        Change(choice, student, entry, list);
        return;
      }
    }
  }
  void Print() const {
    for (const Student& student : students) {
      std::cout << student.first << ' ' << student.last << " Classes.zep/"
                << student.place->teacher.folderName.View() << "/Classes.zep/"
                << student.place->entry.folderName.View() << "/Students\n";
    }
  }

 private:
  struct Place {
    SLoginNameObj teacher, entry;
  };
  // What it was told of one of its own.
  struct Student {
    std::string first, last;
    const Place* place;
  };

  void FindPlaces() {
    SLoginList teachers, classes;
    LoadTeacherList(site, teachers);
    for (const SLoginNameObj& teacher : teachers) {
      site.SelectTeacher(&teacher);
      LoadClassList(site, classes, true);
      for (const SLoginNameObj& entry : classes) {
        places.push_back({teacher, entry});
      }
    }
  }

  const Place& AnyPlace() {
    return places[static_cast<size_t>(draw.Below(static_cast<int>(places.size())))];
  }

  void Change(int choice, Student student, SLoginNameObj& entry, SLoginList& list) {
    const Place &from = *student.place, &to = AnyPlace();
    const SString first = entry.firstName, last = Text(student.last);
    bool stop = false;
    if (choice < 6) {
      const std::string renamed = std::to_string(++count);
      if (RenameStudent(site, from.entry, entry, list, first, Text(renamed))) {
        student.last = renamed;
      }
    } else if (choice < 9 && &to != &from) {
      const bool moved = from.teacher.folderName == to.teacher.folderName
                             ? MoveStudent(site, from.entry, to.entry, entry, list, first, last)
                             : MoveStudentAcross(site, from.teacher, to.teacher, from.entry,
                                                 to.entry, entry, list, first, last);
      student.place = moved ? &to : &from;
    } else if (choice == 9 && DeleteStudent(site, from.entry, entry, list, true, stop)) {
      return;
    }
    students.push_back(student);
  }

  SSite& site;
  std::string name;
  Draw draw;
  std::vector<Place> places;
  std::vector<Student> students;
  int count = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    return 2;
  }
  RegisterGameType();
  const CreatingScope creating;
  TestOwner owner;
  owner.root = argv[1];
  SSite site;
  site.SetOwner(&owner);
  site.SetSiteMode(kSiteSharedTeachers);
  YieldingClock clock;
  const SPlatformOverride<IClock> installed(Platform().clock, &clock);
  Workstation workstation(site, std::stoi(argv[2]));
  const auto end = std::chrono::steady_clock::now() + kRunTime;
  while (std::chrono::steady_clock::now() < end) {
    workstation.Act();
  }
  workstation.Print();
  return 0;
}
