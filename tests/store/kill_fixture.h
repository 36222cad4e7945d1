// A store for the tests of broken-off transactions: three students who can be told apart by a file
// in their folders, whatever becomes of the folders' names.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "store/list/listing.h"
#include "tests/store/school_fixture.h"
#include "tests/support/store_invariants.h"

namespace kivtest {

class KillFixture : public TwoTeachers {
 protected:
  using SLoginList = kivstore::SLoginList;

  // Ann Lee and Bob are in Room, and in Yard is a student whose folder is named like Ann's.
  void Build() {
    UseSite(Kind::kTeachers);
    temp.Remove("Classes.zep");
    StoreBuilder store(temp.Path(), Kind::kTeachers);
    AddClasses(store);
    store.AddStudent(kHill + "/Room", "Ann", "Lee", "AnnLee");
    store.AddStudent(kHill + "/Room", "Bob", "", "Bob");
    store.AddStudent(kOak + "/Yard", "An", "Nlee", "AnnLee");
    store.WriteFile(kRoom + "/AnnLee/mark", "Ann");
    store.WriteFile(kRoom + "/Bob/mark", "Bob");
    store.WriteFile(kYard + "/AnnLee/mark", "An");
    store.Finish();
    kivstore::SelectTeacher(&hill);
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

  CreatingScope creating;
};

}  // namespace kivtest
