// A store for the tests of broken-off transactions: three students who can be told apart by a file
// in their folders, whatever becomes of the folders' names.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "store/listing.h"
#include "tests/store/store_fixture.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/store_invariants.h"

namespace kivtest {

inline const std::string kHillList = "Classes.zep/aHill/Classes.zep";
inline const std::string kOakList = "Classes.zep/Oak/Classes.zep";
inline const std::string kRoomList = kHillList + "/Room/Students";
inline const std::string kDenList = kHillList + "/Den/Students";
inline const std::string kYardList = kOakList + "/Yard/Students";

class KillFixture : public StoreFixture {
 protected:
  using SLoginList = kivstore::SLoginList;

  // Ms Hill has the classes Room (Ann Lee, Bob) and Den, Mr Oak has Yard, with a student whose
  // folder is named like Ann's.
  void Build() {
    UseSite(Kind::kTeachers);
    temp.Remove("Classes.zep");
    StoreBuilder store(temp.Path(), Kind::kTeachers);
    store.AddTeacher("Ms Hill", "aHill");
    store.AddTeacher("Mr Oak", "Oak");
    store.AddClass("Classes.zep/aHill", "Room", "Room");
    store.AddClass("Classes.zep/aHill", "Den", "Den");
    store.AddClass("Classes.zep/Oak", "Yard", "Yard");
    store.AddStudent(kHillList + "/Room", "Ann", "Lee", "AnnLee");
    store.AddStudent(kHillList + "/Room", "Bob", "", "Bob");
    store.AddStudent(kOakList + "/Yard", "An", "Nlee", "AnnLee");
    store.WriteFile(kRoomList + "/AnnLee/mark", "Ann");
    store.WriteFile(kRoomList + "/Bob/mark", "Bob");
    store.WriteFile(kYardList + "/AnnLee/mark", "An");
    store.Finish();
    kivstore::SelectTeacher(&hill);
  }
  // The lists as a workstation would have them before it changes something.
  void Load() {
    for (SLoginList* list : {&teachers, &classes, &students}) {
      kivstore::DeleteLogins(list->Array());
    }
    kivstore::LoadTeacherList(teachers.Array());
    kivstore::SelectTeacher(&hill);
    kivstore::LoadClassList(classes.Array(), true);
    kivstore::LoadStudentList(students.Array(), room, true, true);
  }
  // What the next session does: it lists every level. Gives the store as it then is on disk.
  StoreImage ListAll() {
    SLoginList everyTeacher;
    kivstore::LoadTeacherList(everyTeacher.Array());
    for (int32_t i = 0; i < everyTeacher.GetSize(); ++i) {
      kivstore::SelectTeacher(everyTeacher.At(i));
      SLoginList everyClass;
      kivstore::LoadClassList(everyClass.Array(), true);
      for (int32_t j = 0; j < everyClass.GetSize(); ++j) {
        SLoginList list;
        kivstore::LoadStudentList(list.Array(), *everyClass.At(j), true, true);
      }
    }
    kivstore::SelectTeacher(&hill);
    return ReadStore(temp.Path(), Kind::kTeachers);
  }
  static kivstore::SLoginNameObj* Find(SLoginList& list, const char* folder) {
    for (int32_t i = 0; i < list.GetSize(); ++i) {
      if (list.At(i)->folderName == folder) {
        return list.At(i);
      }
    }
    return nullptr;
  }

  const SLoginNameObj hill = Entry("aHill", "Ms Hill");
  const SLoginNameObj oak = Entry("Oak", "Mr Oak");
  const SLoginNameObj room = Entry("Room", "Room");
  const SLoginNameObj den = Entry("Den", "Den");
  const SLoginNameObj yard = Entry("Yard", "Yard");
  SLoginList teachers, classes, students;
  CreatingScope creating;
};

}  // namespace kivtest
