// The store that the transactions work on: two teachers, one of them selected, and the lists that a
// caller has loaded. Nothing stands in it but what the tests look at.
#pragma once

#include "store/listing.h"
#include "tests/store/store_fixture.h"
#include "tests/support/fault_file_services.h"

namespace kivtest {

inline const std::string kHill = "Classes.zep/aHill/Classes.zep";
inline const std::string kOak = "Classes.zep/Oak/Classes.zep";
inline const std::string kDen = kHill + "/Den/Students";
inline const std::string kRoom = kHill + "/Room/Students";
inline const std::string kYard = kOak + "/Yard/Students";

class SchoolFixture : public StoreFixture {
 protected:
  SchoolFixture() {
    UseSite(Kind::kTeachers);
    store.AddTeacher("Ms Hill", "aHill");
    store.AddTeacher("Mr Oak", "Oak");
    store.AddClass("Classes.zep/aHill", "Den", "Den");
    store.AddClass("Classes.zep/aHill", "Room", "Room");
    store.AddClass("Classes.zep/Oak", "Yard", "Yard");
    store.AddStudent(kHill + "/Room", "Ann", "Lee", "AnnLee");
    store.AddStudent(kHill + "/Room", "Bob", "", "Bob");
    store.AddStudent(kHill + "/Room", "Cid", "", "Cid");
    store.AddStudent(kHill + "/Den", "Zoe", "", "Zoe");
    store.AddStudent(kOak + "/Yard", "Yves", "", "Yves");
    store.WriteGame(kRoom + "/AnnLee", GameBytes());
    store.Finish();
    SelectTeacher(&hill);
    LoadTeacherList(teachers.Array());
    LoadClassList(classes.Array(), true);
    LoadStudentList(students.Array(), room, true, true);
    built = store.Snapshot();
  }
  // What has changed on disk since the store was built.
  Lines Changed() const { return Changes(built, store.Snapshot()); }
  std::string Index(const std::string& list) const { return temp.ReadFile(list + "/index.kiv"); }

  StoreBuilder store{temp.Path(), Kind::kTeachers};
  std::map<std::string, std::string> built;
  const SLoginNameObj hill = Entry("aHill", "Ms Hill"), oak = Entry("Oak", "Mr Oak");
  const SLoginNameObj den = Entry("Den", "Den"), room = Entry("Room", "Room");
  const SLoginNameObj yard = Entry("Yard", "Yard"), ann = Entry("AnnLee", "Ann", "Lee");
  kivstore::SLoginList teachers, classes, students;
  kivstore::SString folder = "as it was";
};

}  // namespace kivtest
