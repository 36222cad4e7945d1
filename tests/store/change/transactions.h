// Every transaction that changes the lists, with what is to be seen in the store afterwards.
#pragma once

#include <functional>

#include "store/change/default_entries.h"
#include "store/change/deleting.h"
#include "store/change/moving.h"
#include "store/change/renaming.h"
#include "tests/support/school_fixture.h"
#include "tests/support/store_invariants.h"

namespace kivtest {

class TransactionFixture : public SchoolFixture {
 protected:
  using Level = std::vector<ListedEntry> StoreImage::*;
  static constexpr Level kTeacherLevel = &StoreImage::teachers;
  static constexpr Level kClassLevel = &StoreImage::classes;
  static constexpr Level kStudentLevel = &StoreImage::students;

  struct Transaction {
    std::string name;
    std::function<bool()> run;
    // Afterwards this name stands in these lists of the level and no other, in a store put in
    // order.
    Level level;
    std::string entry;
    Lines lists;
    Lines goes = {};         // students, by their marks
    bool onFullDisk = true;  // the answer there
    // Answers true even where nothing works any more: a rename does not look at how its writing
    // went, and a teacher is left alone, with true, when the classes folder cannot be named.
    bool promisesLittle = false;
    // Between the copy of a folder and the removal of its source both are there.
    bool copies = false;
    // A new name has reached the index or at least this folder, from where it comes back when the
    // index is lost.
    std::string renamed = "";
  };

  std::vector<Transaction> Adds() {
    const auto add =
        [this](bool (*add)(kivstore::SSite&, const kivstore::SString&, kivstore::SString&),
               const char* name) { return [=, this] { return add(site, name, folder); }; };
    return {
        {"AddTeacher", add(kivstore::AddTeacher, "New"), kTeacherLevel, "New", {kTop}, {}, false},
        {"AddClass", add(kivstore::AddClass, "Attic"), kClassLevel, "Attic", {kHill}, {}, false},
        {"AddStudent",
         [this] { return AddStudent(site, room, "Dan", "Roe", folder); },
         kStudentLevel,
         "Dan Roe",
         {kRoom},
         {},
         false}};
  }
  std::vector<Transaction> Renames() {
    std::vector<Transaction> all = {
        {"RenameTeacher",
         [this] { return RenameTeacher(site, hill, teachers, "H"); },
         kTeacherLevel,
         "H",
         {kTop}},
        {"RenameClass",
         [this] { return RenameClass(site, room, classes, "R"); },
         kClassLevel,
         "R",
         {kHill}},
        {"RenameStudent",
         [this] { return RenameStudent(site, room, ann, students, "A", ""); },
         kStudentLevel,
         "A",
         {kRoom}}};
    const Lines folders = {kTop + "/aHill", kHill + "/Room", kRoom + "/AnnLee"};
    for (size_t i = 0; i < all.size(); ++i) {
      all[i].promisesLittle = true;
      all[i].renamed = folders[i];
    }
    return all;
  }
  std::vector<Transaction> Moves() {
    const auto across = [this](const char* folder) {
      return [=, this] {
        SLoginNameObj& entry = In(students, folder);
        const kivstore::SString first = entry.firstName, last = entry.lastName;
        return MoveStudentAcross(site, hill, oak, room, yard, entry, students, first, last);
      };
    };
    return {{"MoveClass",
             [this] { return MoveClass(site, hill, oak, In(classes, "Room"), classes, "Room"); },
             kClassLevel,
             "Room",
             {kOak}},
            {"MoveStudent",
             [this] { return MoveStudent(site, room, den, students[0], students, "Ann", "Lee"); },
             kStudentLevel,
             "Ann Lee",
             {kDen}},
            {"MoveStudentAcross", across("Bob"), kStudentLevel, "Bob", {kYard}},
            {"MoveStudentAcross to a folder name that is taken",
             across("AnnLee"),
             kStudentLevel,
             "Ann Lee",
             {kYard},
             {},
             false,
             false,
             true}};
  }
  std::vector<Transaction> Deletes() {
    return {{"DeleteStudent",
             [this] { return DeleteStudent(site, room, ann, students, true, stop); },
             kStudentLevel,
             "Ann Lee",
             {},
             {"Ann"}},
            {"DeleteClass",
             [this] { return DeleteClass(site, room, classes, true, stop); },
             kClassLevel,
             "Room",
             {},
             {"Ann", "Bob", "Cid"}},
            {"DeleteTeacher",
             [this] { return DeleteTeacher(site, hill, teachers); },
             kTeacherLevel,
             "Ms Hill",
             {},
             {"Ann", "Bob", "Cid", "Zoe"},
             true,
             true}};
  }

  // What the next session does: it lists every level. Gives the store as it then is on disk.
  StoreImage ListAll() {
    SLoginList everyTeacher;
    LoadTeacherList(site, everyTeacher);
    for (const SLoginNameObj& teacher : everyTeacher) {
      site.SelectTeacher(&teacher);
      SLoginList everyClass;
      LoadClassList(site, everyClass, true);
      for (const SLoginNameObj& entry : everyClass) {
        SLoginList list;
        LoadStudentList(site, list, entry, true, true);
      }
    }
    site.SelectTeacher(&hill);
    return ReadStore(temp.Path(), Kind::kTeachers);
  }
  bool IsDone(const Transaction& transaction, const StoreImage& image) const {
    const std::string file = transaction.renamed + "/longname.kiv";
    if (transaction.renamed == kTop + "/aHill" &&
        !StoreImage::ListsWith(image.classes, "Default").empty()) {
      return false;  // as if she had no classes
    }
    return StoreImage::ListsWith(image.*transaction.level, transaction.entry) ==
               transaction.lists ||
           (!transaction.renamed.empty() && temp.Exists(file) &&
            temp.ReadFile(file) == LongNameBytes(transaction.entry));
  }
  // The store is in order and has each student once, but for those who may be gone.
  void CheckStore(const Transaction& transaction, const StoreImage& image, bool mayStay) const {
    EXPECT_EQ(image.faults, Lines());
    const auto marks = FindMarks(temp.Path(), image.students, "mark");
    for (const std::string& student : kMarks) {
      const auto found = marks.find(student);
      const size_t places = found != marks.end() ? found->second.size() : 0;
      const auto& goes = transaction.goes;
      const bool isGoing = std::find(goes.begin(), goes.end(), student) != goes.end();
      EXPECT_TRUE((places == 1 && (!isGoing || mayStay)) || (places == 0 && isGoing) ||
                  (places == 2 && transaction.copies && mayStay))
          << student << " in " << places << " places";
    }
  }

  const CreatingScope creating;
};

}  // namespace kivtest
