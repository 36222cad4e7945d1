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

struct Transaction {
  // Afterwards an entry of this name stands in these lists and no other, in a store put in order.
  std::string name, entry;
  Lines lists;
  std::function<bool()> run;
  Lines goes = {};  // students, by their marks
  // A new name has reached the index or at least this folder, from where it comes back when the
  // index is lost.
  std::string renamed = "";

  bool NeedsRoom() const { return name.starts_with("Add"); }
  // Answers true even where nothing works any more: a rename does not look at how its writing
  // went, and a teacher is left alone, with true, when the classes folder cannot be named.
  bool PromisesLittle() const { return !renamed.empty() || name == "DeleteTeacher"; }
};

class TransactionFixture : public SchoolFixture {
 protected:
  TransactionFixture() {
    Note("AddTeacher", "New", {kTop}, [this] { return AddTeacher(site, "New", folder); });
    Note("AddClass", "Attic", {kHill}, [this] { return AddClass(site, "Attic", folder); });
    Note("AddStudent", "Dan Roe", {kRoom},
         [this] { return AddStudent(site, room, "Dan", "Roe", folder); });
    Note("RenameTeacher", "H", {kTop}, [this] {
      return RenameTeacher(site, hill, teachers, "H");
    }).renamed = kTop + "/aHill";
    Note("RenameClass", "R", {kHill}, [this] {
      return RenameClass(site, room, classes, "R");
    }).renamed = kHill + "/Room";
    Note("RenameStudent", "Eve Ray", {kRoom}, [this] {
      return RenameStudent(site, room, ann, students, "Eve", "Ray");
    }).renamed = kRoom + "/AnnLee";
    Note("MoveClass", "Room", {kOak},
         [this] { return MoveClass(site, hill, oak, In(classes, "Room"), classes, "Room"); });
    Note("MoveStudent", "Ann Lee", {kDen},
         [this] { return MoveStudent(site, room, den, students[0], students, "Ann", "Lee"); });
    Note("MoveStudentAcross", "Bob", {kYard}, [this] { return MoveToYard("Bob"); });
    Note("MoveStudentAcross to a folder name that is taken", "Ann Lee", {kYard},
         [this] { return MoveToYard("AnnLee"); });
    Note("DeleteStudent", "Ann Lee", {}, [this] {
      return DeleteStudent(site, room, ann, students, true, stop);
    }).goes = {"Ann"};
    Note("DeleteClass", "Room", {}, [this] {
      return DeleteClass(site, room, classes, true, stop);
    }).goes = {"Ann", "Bob", "Cid"};
    Note("DeleteTeacher", "Ms Hill", {}, [this] {
      return DeleteTeacher(site, hill, teachers);
    }).goes = {"Ann", "Bob", "Cid", "Zoe"};
  }
  Transaction& Note(const char* name, const char* entry, const Lines& lists,
                    std::function<bool()> run) {
    return transactions.emplace_back(Transaction{name, entry, lists, std::move(run)});
  }
  const Transaction& Named(const std::string& name) const {
    return *std::find_if(transactions.begin(), transactions.end(),
                         [&](const Transaction& one) { return one.name == name; });
  }
  bool MoveToYard(const char* name) {
    SLoginNameObj& entry = In(students, name);
    const kivstore::SString first = entry.firstName, last = entry.lastName;
    return MoveStudentAcross(site, hill, oak, room, yard, entry, students, first, last);
  }

  // What the next session does: it lists every level. Gives the store as it then is on disk.
  StoreImage ListAll() {
    SLoginList everyTeacher;
    LoadTeacherList(site, everyTeacher);
    for (const SLoginNameObj& teacher : everyTeacher) {
      site.SelectTeacher(&teacher);
      SLoginList everyClass, list;
      LoadClassList(site, everyClass, true);
      for (const SLoginNameObj& entry : everyClass) {
        LoadStudentList(site, list, entry, true, true);
      }
    }
    site.SelectTeacher(&hill);
    return ReadStore(temp.Path());
  }
  static Lines ListsWith(const StoreImage& image, const std::string& name) {
    Lines lists;
    for (const ListedEntry& entry : image.entries) {
      if (entry.Name() == name) {
        lists.push_back(entry.list);
      }
    }
    return lists;
  }
  bool IsDone(const Transaction& transaction, const StoreImage& image) const {
    if (transaction.name == "RenameTeacher" && !ListsWith(image, "Default").empty()) {
      return false;  // as if she had no classes
    }
    const std::string file = transaction.renamed + "/longname.kiv";
    return ListsWith(image, transaction.entry) == transaction.lists ||
           (!transaction.renamed.empty() && temp.Exists(file) &&
            temp.ReadFile(file).starts_with(
                transaction.entry.substr(0, transaction.entry.find(' '))));
  }
  // The store is in order and has each student once, but for those who may be gone.
  void CheckStore(const Transaction& transaction, const StoreImage& image, bool mayStay) const {
    EXPECT_EQ(image.faults, Lines());
    std::map<std::string, int> places;
    for (const ListedEntry& entry : image.entries) {
      const std::string mark = entry.Path() + "/mark";
      places[temp.Exists(mark) ? temp.ReadFile(mark) : ""] += 1;
    }
    for (const std::string& student : kMarks) {
      const auto& goes = transaction.goes;
      const bool isGoing = std::find(goes.begin(), goes.end(), student) != goes.end();
      const int count = places[student];
      EXPECT_GE(count, isGoing ? 0 : 1) << student;
      EXPECT_LE(count, isGoing && !mayStay ? 0 : 1) << student;
    }
  }

  std::vector<Transaction> transactions;
  const CreatingScope creating;
};

}  // namespace kivtest
