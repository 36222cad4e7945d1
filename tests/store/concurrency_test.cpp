// Four processes at work on one networked store, as four workstations are (workstation.cpp). Each
// student belongs to one of them, so that what it was told is the whole truth about that student;
// the lists they stand in are everyone's.
#include <gtest/gtest.h>

#include <fstream>

#include "store/list/listing.h"
#include "tests/store/class_places.h"
#include "tests/store/store_fixture.h"
#include "tests/support/started_program.h"
#include "tests/support/store_invariants.h"

using namespace kivstore;
using kivtest::ClassPlace;
using kivtest::kClassPlaces;
using kivtest::Kind;
using kivtest::Lines;
using kivtest::ListedEntry;
using kivtest::StoreBuilder;

namespace {

constexpr int kProcesses = 4;

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
    std::vector<kivtest::StartedProgram> workstations;
    for (int i = 0; i < kProcesses; ++i) {
      workstations.emplace_back(std::vector<std::string>{
          KIVSTORE_BINARY_DIR "/bin/workstation", temp.Path(), std::to_string(i), LogPath(i)});
    }
    for (kivtest::StartedProgram& workstation : workstations) {
      EXPECT_TRUE(workstation.Finish());
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
