// Four processes at work on one networked store, as four workstations are (workstation.cpp). Each
// student belongs to one of them, so that what it was told is the whole truth about that student;
// the lists they stand in are everyone's.
#include <fstream>

#include "store/list/listing.h"
#include "tests/store/change/class_places.h"
#include "tests/support/started_program.h"
#include "tests/support/store_invariants.h"

using namespace kivstore;
using namespace kivtest;

namespace {

constexpr int kProcesses = 4;

class ConcurrencyTest : public SiteFixture {
 protected:
  std::string LogPath(int number) const { return logs.Path("log" + std::to_string(number)); }
  void LayStore() {
    UseSite(Kind::kTeachers);
    StoreBuilder store(temp.Path(), Kind::kTeachers);
    store.AddTeacher("Hill");
    store.AddTeacher("Oak");
    for (const ClassPlace& place : ClassPlaces()) {
      store.AddClass("Classes.zep/" + Bytes(place.teacher.folderName),
                     Bytes(place.entry.firstName));
    }
    store.Finish();
  }
  void RunAll() {
    std::vector<StartedProgram> workstations;
    for (int i = 0; i < kProcesses; ++i) {
      workstations.emplace_back(std::vector<std::string>{
          KIVSTORE_BINARY_DIR "/bin/workstation", temp.Path(), std::to_string(i), LogPath(i)});
    }
    for (StartedProgram& workstation : workstations) {
      EXPECT_TRUE(workstation.Finish());
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

  const CreatingScope creating;
  const TempFolder logs;
};

TEST_F(ConcurrencyTest, WhatAProcessWasToldIsTrueIsSoOnDisk) {
  LayStore();
  RunAll();
  for (const ClassPlace& place : ClassPlaces()) {
    site.SelectTeacher(&place.teacher);
    SLoginList list;
    LoadStudentList(site, list, place.entry, true, true);
  }
  const StoreImage image = ReadStore(temp.Path(), Kind::kTeachers);
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
