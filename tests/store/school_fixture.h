// The school that the transactions work on: two teachers, one of them selected, and the lists that
// a caller has loaded.
#pragma once

#include "store/list/listing.h"
#include "tests/store/store_fixture.h"
#include "tests/support/fault_file_services.h"

namespace kivtest {

inline const std::string kHill = "Classes.zep/aHill/Classes.zep";
inline const std::string kOak = "Classes.zep/Oak/Classes.zep";
inline const std::string kDen = kHill + "/Den/Students";
inline const std::string kRoom = kHill + "/Room/Students";
inline const std::string kYard = kOak + "/Yard/Students";

// Ms Hill has the classes Den and Room, Mr Oak has Yard.
class TwoTeachers : public StoreFixture {
 protected:
  static void AddClasses(StoreBuilder& store) {
    store.AddTeacher("Ms Hill", "aHill");
    store.AddTeacher("Mr Oak", "Oak");
    store.AddClass("Classes.zep/aHill", "Den", "Den");
    store.AddClass("Classes.zep/aHill", "Room", "Room");
    store.AddClass("Classes.zep/Oak", "Yard", "Yard");
  }
  // The lists as a workstation has them before it changes something in Room.
  void Load() {
    for (kivstore::SLoginList* list : {&teachers, &classes, &students}) {
      kivstore::DeleteLogins(list->Array());
    }
    LoadTeacherList(teachers.Array());
    SelectTeacher(&hill);
    LoadClassList(classes.Array(), true);
    LoadStudentList(students.Array(), room, true, true);
  }

  const SLoginNameObj hill = Entry("aHill", "Ms Hill"), oak = Entry("Oak", "Mr Oak");
  const SLoginNameObj den = Entry("Den", "Den"), room = Entry("Room", "Room");
  const SLoginNameObj yard = Entry("Yard", "Yard");
  kivstore::SLoginList teachers, classes, students;
};

// With students, and nothing in the store but what the tests look at.
class SchoolFixture : public TwoTeachers {
 protected:
  SchoolFixture() {
    UseSite(Kind::kTeachers);
    AddClasses(store);
    store.AddStudent(kHill + "/Room", "Ann", "Lee", "AnnLee");
    store.AddStudent(kHill + "/Room", "Bob", "", "Bob");
    store.AddStudent(kHill + "/Room", "Cid", "", "Cid");
    store.AddStudent(kHill + "/Den", "Zoe", "", "Zoe");
    store.AddStudent(kOak + "/Yard", "Yves", "", "Yves");
    store.WriteGame(kRoom + "/AnnLee", GameBytes());
    store.Finish();
    Load();
    built = store.Snapshot();
  }
  // What has changed on disk since the store was built.
  Lines Changed() const { return Changes(built, store.Snapshot()); }
  std::string Index(const std::string& list) const { return temp.ReadFile(list + "/index.kiv"); }

  StoreBuilder store{temp.Path(), Kind::kTeachers};
  std::map<std::string, std::string> built;
  const SLoginNameObj ann = Entry("AnnLee", "Ann", "Lee");
  kivstore::SString folder = "as it was";
};

}  // namespace kivtest
