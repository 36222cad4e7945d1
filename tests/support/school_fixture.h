// The school that the transactions work on: two teachers, one of them selected, and the lists that
// a workstation has loaded before it changes something in Room. Each student's folder has a file
// "mark" with the first name in it, by which it is known whatever becomes of the folder's name.
#pragma once

#include "store/list/listing.h"
#include "tests/support/site_fixture.h"

namespace kivtest {

inline const std::string kTop = "Classes.zep";
inline const std::string kHill = "Classes.zep/aHill/Classes.zep";
inline const std::string kOak = "Classes.zep/Oak/Classes.zep";
inline const std::string kDen = kHill + "/Den/Students";
inline const std::string kRoom = kHill + "/Room/Students";
inline const std::string kYard = kOak + "/Yard/Students";
inline const Lines kMarks = {"Ann", "Bob", "Cid", "Zoe", "Yves", "An"};

class SchoolFixture : public SiteFixture {
 protected:
  using SLoginList = kivstore::SLoginList;

  // In Yard is a student whose folder is named like Ann's.
  SchoolFixture() {
    UseSite(Kind::kTeachers);
    store.AddTeacher("Ms Hill", "aHill");
    store.AddTeacher("Mr Oak", "Oak");
    store.AddClass(kTop + "/aHill", "Den", "Den");
    store.AddClass(kTop + "/aHill", "Room", "Room");
    store.AddClass(kTop + "/Oak", "Yard", "Yard");
    Add(kHill + "/Room", "Ann", "Lee", "AnnLee");
    Add(kHill + "/Room", "Bob", "", "Bob");
    Add(kHill + "/Room", "Cid", "", "Cid");
    Add(kHill + "/Den", "Zoe", "", "Zoe");
    Add(kOak + "/Yard", "Yves", "", "Yves");
    Add(kOak + "/Yard", "An", "Nlee", "AnnLee");
    store.Finish();
    built = Snapshot();
    Load();
  }
  // The school as it was built.
  void Restore() {
    temp.Restore(built);
    Load();
  }
  void Load() {
    LoadTeacherList(site, teachers);
    site.SelectTeacher(&hill);
    LoadClassList(site, classes, true);
    LoadStudentList(site, students, room, true, true);
  }
  static SLoginNameObj& In(SLoginList& list, const char* folder) {
    for (SLoginNameObj& entry : list) {
      if (entry.folderName == folder) {
        return entry;
      }
    }
    throw std::runtime_error(std::string("not listed: ") + folder);
  }
  // What has changed on disk since the store was built.
  Lines Changed() const { return Changes(built, Snapshot()); }
  std::string Index(const std::string& list) const { return temp.ReadFile(list + "/index.kiv"); }

  StoreBuilder store{temp.Path(), Kind::kTeachers};
  std::map<std::string, std::string> built;
  const SLoginNameObj hill = Entry("aHill", "Ms Hill"), oak = Entry("Oak", "Mr Oak");
  const SLoginNameObj den = Entry("Den", "Den"), room = Entry("Room", "Room");
  const SLoginNameObj yard = Entry("Yard", "Yard"), ann = Entry("AnnLee", "Ann", "Lee");
  SLoginList teachers, classes, students;
  kivstore::SString folder = "as it was";
  bool stop = true;

 private:
  void Add(const std::string& toClass, const char* first, const char* last, const char* name) {
    store.WriteFile(store.AddStudent(toClass, first, last, name) + "/mark", first);
  }
};

}  // namespace kivtest
