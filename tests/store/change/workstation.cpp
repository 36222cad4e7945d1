// One of several workstations at work on the store of concurrency_test.cpp: it adds, renames, moves
// and deletes students of its own at random, and writes down at the end what it was told became of
// them.
//
//   workstation ROOT NUMBER LOG
#include <chrono>
#include <fstream>
#include <random>
#include <thread>

#include "store/change/default_entries.h"
#include "store/change/deleting.h"
#include "store/change/moving.h"
#include "store/change/renaming.h"
#include "store/list/listing.h"
#include "tests/store/change/class_places.h"

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

// What it was told of each of its students, by first name; the last name changes.
class Workstation {
 public:
  Workstation(SSite& site, int number)
      : site(site), name("P" + std::to_string(number)), random(number + 1u) {}

  void Act() {
    const unsigned choice = Below(10);
    if (students.empty() || (choice < 3 && students.size() < 12)) {
      Add(AnyPlace());
      return;
    }
    const auto student = std::next(students.begin(), Below(students.size()));
    site.SelectTeacher(&student->second.place->teacher);
    SLoginList list;
    LoadStudentList(site, list, student->second.place->entry, true, true);
    for (SLoginNameObj& entry : list) {
      if (entry.firstName == student->first.c_str()) {
        done += Change(choice, student->first, entry, list) ? 1 : 0;
        return;
      }
    }
  }
  void WriteLog(const std::string& path) const {
    std::ofstream out(path);
    for (const auto& [first, student] : students) {
      out << first << ' ' << student.last << ' ' << student.place->list << '\n';
    }
    out << "done " << done << '\n';
  }

 private:
  struct Student {
    std::string last;
    const ClassPlace* place;
  };

  unsigned Below(size_t count) { return static_cast<unsigned>(random() % count); }
  const ClassPlace& AnyPlace() { return places[Below(places.size())]; }

  void Add(const ClassPlace& place) {
    site.SelectTeacher(&place.teacher);
    const std::string first = name + "N" + std::to_string(++count);
    SString folder;
    if (AddStudent(site, place.entry, Text(first), "0", folder)) {
      students[first] = {"0", &place};
      ++done;
    }
  }
  bool Change(unsigned choice, const std::string& first, SLoginNameObj& entry, SLoginList& list) {
    Student& student = students[first];
    if (choice < 6) {
      const std::string last = std::to_string(++count);
      const bool renamed =
          RenameStudent(site, student.place->entry, entry, list, entry.firstName, Text(last));
      student.last = renamed ? last : student.last;
      return renamed;
    }
    if (choice < 9) {
      return Move(student, AnyPlace(), entry, list);
    }
    bool stop = false;
    return DeleteStudent(site, student.place->entry, entry, list, true, stop) &&
           students.erase(first) > 0;
  }
  bool Move(Student& student, const ClassPlace& to, SLoginNameObj& entry, SLoginList& list) {
    const ClassPlace& from = *student.place;
    const SString first = entry.firstName, last = Text(student.last);
    const bool moved =
        &to != &from && (from.teacher.folderName == to.teacher.folderName
                             ? MoveStudent(site, from.entry, to.entry, entry, list, first, last)
                             : MoveStudentAcross(site, from.teacher, to.teacher, from.entry,
                                                 to.entry, entry, list, first, last));
    student.place = moved ? &to : &from;
    return moved;
  }

  SSite& site;
  std::string name;
  std::minstd_rand random;
  const std::vector<ClassPlace> places = ClassPlaces();
  std::map<std::string, Student> students;
  int count = 0;
  int done = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
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
  for (const auto end = std::chrono::steady_clock::now() + kRunTime;
       std::chrono::steady_clock::now() < end;) {
    workstation.Act();
  }
  workstation.WriteLog(argv[3]);
  return 0;
}
