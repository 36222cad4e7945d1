// Every transaction that changes the lists, broken off at every file operation: the process dies
// there, or that operation fails and the others go on. Whatever is left, the next listing puts it
// in order, loses no student and lists nobody twice; and what was answered true is so on disk.
#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "store/change/adding.h"
#include "store/change/deleting.h"
#include "store/change/moving.h"
#include "store/change/renaming.h"
#include "tests/store/kill_fixture.h"

using namespace kivstore;
using kivtest::FaultFileServices;
using kivtest::FindMarks;
using kivtest::kDen;
using kivtest::kHill;
using kivtest::Kind;
using kivtest::kOak;
using kivtest::kRoom;
using kivtest::kYard;
using kivtest::Lines;
using kivtest::ListedEntry;
using kivtest::StoreImage;

namespace {

constexpr int kMostOperations = 1000;

enum class Break { kOneFailure, kDeath };

class KillTable : public kivtest::KillFixture {
 protected:
  struct Transaction {
    std::string name;
    std::function<bool()> run;
    // Whether a store put in order shows what was wanted.
    std::function<bool(const StoreImage&)> isDone;
    std::set<std::string> mayGo;  // students, by their marks
    // Answers true even where nothing works any more: a rename does not look at how its writing
    // went, and a teacher is left alone, with true, when the classes folder cannot be named.
    bool promisesLittle = false;
    // Between the copy of a folder and the removal of its source both are there.
    bool copies = false;
  };

  static bool Lists(const std::vector<ListedEntry>& entries, const std::string& name,
                    const Lines& lists) {
    return StoreImage::ListsWith(entries, name) == lists;
  }
  // The new name has reached the index or at least the folder, from where it comes back when the
  // index is lost.
  bool IsRenamed(const std::vector<ListedEntry>& entries, const std::string& list,
                 const std::string& folder, const std::string& first,
                 const std::string& last) const {
    const std::string file = list + "/" + folder + "/longname.kiv";
    return Lists(entries, last.empty() ? first : first + " " + last, {list}) ||
           (temp.Exists(file) && temp.ReadFile(file) == kivtest::LongNameBytes(first, last));
  }

  std::vector<Transaction> Transactions();
  std::vector<Transaction> Moves();
  std::vector<Transaction> Deletes();

  void CheckStore(const Transaction& transaction, const StoreImage& image) {
    EXPECT_EQ(image.faults, Lines());
    const auto marks = FindMarks(temp.Path(), image.students, "mark");
    for (const char* student : {"Ann", "Bob", "An"}) {
      const auto found = marks.find(student);
      const size_t places = found != marks.end() ? found->second.size() : 0;
      EXPECT_TRUE(places == 1 || (places == 0 && transaction.mayGo.count(student) > 0) ||
                  (places == 2 && transaction.copies))
          << student << " in " << places << " places";
    }
  }
  // Most operations look and change nothing; the store then serves for the next one.
  void BuildIfTouched() {
    if (!isFresh) {
      Build();
    }
    isFresh = false;
  }
  static bool HasChanged(const std::vector<kivtest::FileCall>& log, int n, Break how) {
    static const std::set<std::string> kChanging = {"Write",    "SetEnd",       "SetAttributes",
                                                    "Delete",   "RemoveFolder", "Move",
                                                    "MakeFile", "MakeFolder",   "CopyFileTo"};
    const auto broken = static_cast<size_t>(n) - 1;
    for (size_t i = 0; i < log.size() && (how == Break::kOneFailure || i < broken); ++i) {
      if (i != broken && kChanging.count(log[i].operation) > 0) {
        return true;
      }
    }
    return false;
  }
  // True as long as there was something to break off.
  bool BreakAt(const Transaction& transaction, int n, Break how) {
    BuildIfTouched();
    Load();
    FaultFileServices services(*Platform().files);
    const SPlatformOverride<IFileServices> installed(Platform().files, &services);
    if (how == Break::kDeath) {
      services.DieAt(n);
    } else {
      services.FailAt(n);
    }
    const bool answer = transaction.run();
    const bool struck = services.HasStruck();
    const std::string where = struck ? services.Log()[static_cast<size_t>(n) - 1].operation + " " +
                                           services.Log()[static_cast<size_t>(n) - 1].path
                                     : "";
    const bool changed = HasChanged(services.Log(), n, how);
    services.FailNever();
    SCOPED_TRACE(transaction.name + ", operation " + std::to_string(n) + ": " + where +
                 (how == Break::kDeath ? ", and all that follow" : "") +
                 (answer ? ", answered true" : ", answered false"));
    EXPECT_EQ(services.OpenPaths(), Lines());
    const StoreImage image = changed ? ListAll() : ReadStore(temp.Path(), Kind::kTeachers);
    CheckStore(transaction, image);
    isFresh = !changed;
    const bool isFirm = !transaction.promisesLittle || how == Break::kOneFailure || !struck;
    EXPECT_TRUE(!answer || !isFirm || transaction.isDone(image)) << "was answered true";
    EXPECT_TRUE(struck || (answer && transaction.isDone(image))) << "untouched";
    return struck;
  }
  void BreakEverywhere(const std::vector<Transaction>& transactions, Break how) {
    for (const Transaction& transaction : transactions) {
      isFresh = false;
      int n = 1;
      while (n < kMostOperations && BreakAt(transaction, n, how)) {
        ++n;
      }
      EXPECT_LT(n, kMostOperations) << transaction.name;
      EXPECT_GT(n, 10) << transaction.name;
    }
  }

  SString folderOut;
  bool stop = false;
  bool isFresh = false;
};

std::vector<KillTable::Transaction> KillTable::Transactions() {
  const auto renamed = [this](const char* list, const char* folder, const char* first,
                              const char* last) {
    return [=, this](const StoreImage& image) {
      std::vector<ListedEntry> all = image.teachers;
      all.insert(all.end(), image.classes.begin(), image.classes.end());
      all.insert(all.end(), image.students.begin(), image.students.end());
      return IsRenamed(all, list, folder, first, last);
    };
  };
  return {
      {"AddTeacher",
       [this] { return AddTeacher("Mx New", folderOut); },
       [](const StoreImage& image) { return Lists(image.teachers, "Mx New", {"Classes.zep"}); },
       {}},
      {"AddClass",
       [this] { return AddClass("Attic", folderOut); },
       [](const StoreImage& image) { return Lists(image.classes, "Attic", {kHill}); },
       {}},
      {"AddStudent",
       [this] { return AddStudent(room, "Cid", "Roe", folderOut); },
       [](const StoreImage& image) { return Lists(image.students, "Cid Roe", {kRoom}); },
       {}},
      {"RenameTeacher",
       [this] { return RenameTeacher(&hill, &teachers.Array(), "Ms H", folderOut); },
       [renamedTeacher = renamed("Classes.zep", "aHill", "Ms H", "")](const StoreImage& image) {
         return renamedTeacher(image) && Lists(image.classes, "Default", {});
       },
       {},
       true},
      {"RenameClass",
       [this] { return RenameClass(&room, &classes.Array(), "R", folderOut); },
       renamed(kHill.c_str(), "Room", "R", ""),
       {},
       true},
      {"RenameStudent",
       [this] {
         return RenameStudent(&room, Find(students, "AnnLee"), &students.Array(), "Anna", "Leigh");
       },
       renamed(kRoom.c_str(), "AnnLee", "Anna", "Leigh"),
       {},
       true},
  };
}

std::vector<KillTable::Transaction> KillTable::Moves() {
  return {
      {"MoveClass",
       [this] { return MoveClass(&hill, &oak, Find(classes, "Room"), &classes.Array(), "Room"); },
       [](const StoreImage& image) { return Lists(image.classes, "Room", {kOak}); },
       {}},
      {"MoveStudent",
       [this] {
         return MoveStudent(&room, &den, Find(students, "AnnLee"), &students.Array(), "Ann", "Lee");
       },
       [](const StoreImage& image) { return Lists(image.students, "Ann Lee", {kDen}); },
       {}},
      {"MoveStudentAcross",
       [this] {
         return MoveStudentAcross(&hill, &oak, &room, &yard, Find(students, "Bob"),
                                  &students.Array(), "Bob", "");
       },
       [](const StoreImage& image) { return Lists(image.students, "Bob", {kYard}); },
       {}},
      {"MoveStudentAcross to a folder name that is taken",
       [this] {
         return MoveStudentAcross(&hill, &oak, &room, &yard, Find(students, "AnnLee"),
                                  &students.Array(), "Ann", "Lee");
       },
       [](const StoreImage& image) { return Lists(image.students, "Ann Lee", {kYard}); },
       {},
       false,
       true},
  };
}

std::vector<KillTable::Transaction> KillTable::Deletes() {
  return {
      {"DeleteStudent",
       [this] {
         return DeleteStudent(&room, Find(students, "AnnLee"), &students.Array(), true, stop);
       },
       [](const StoreImage& image) { return Lists(image.students, "Ann Lee", {}); },
       {"Ann"}},
      {"DeleteClass",
       [this] { return DeleteClass(Find(classes, "Room"), &classes.Array(), true, stop); },
       [](const StoreImage& image) { return Lists(image.classes, "Room", {}); },
       {"Ann", "Bob"}},
      {"DeleteTeacher",
       [this] { return DeleteTeacher(Find(teachers, "aHill"), &teachers.Array()); },
       [](const StoreImage& image) { return Lists(image.teachers, "Ms Hill", {}); },
       {"Ann", "Bob"},
       true},
  };
}

TEST_F(KillTable, AddsAndRenamesSurviveTheDeathOfTheProcess) {
  BreakEverywhere(Transactions(), Break::kDeath);
}

TEST_F(KillTable, MovesSurviveTheDeathOfTheProcess) {
  BreakEverywhere(Moves(), Break::kDeath);
}

TEST_F(KillTable, DeletesSurviveTheDeathOfTheProcess) {
  BreakEverywhere(Deletes(), Break::kDeath);
}

TEST_F(KillTable, AddsAndRenamesThatAnswerTrueAreDoneWhateverFailed) {
  BreakEverywhere(Transactions(), Break::kOneFailure);
}

TEST_F(KillTable, MovesThatAnswerTrueAreDoneWhateverFailed) {
  BreakEverywhere(Moves(), Break::kOneFailure);
}

TEST_F(KillTable, DeletesThatAnswerTrueAreDoneWhateverFailed) {
  BreakEverywhere(Deletes(), Break::kOneFailure);
}

#ifndef _WIN32
// With a real end: no destructor runs, and the system lets go of the locks.
TEST_F(KillTable, ARealEndAtEveryOperationLeavesWhatTheTableSays) {
  const Transaction move = Moves()[1];
  const Transaction removal = Deletes()[0];
  for (const Transaction* transaction : {&move, &removal}) {
    bool died = true;
    int n = 1;
    for (; died && n < kMostOperations; ++n) {
      Build();
      Load();
      const pid_t child = fork();
      ASSERT_GE(child, 0);
      if (child == 0) {
        FaultFileServices services(*Platform().files);
        Platform().files = &services;
        services.DieAt(n, [] { _exit(7); });
        _exit(transaction->run() ? 0 : 1);
      }
      int status = -1;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      ASSERT_TRUE(WIFEXITED(status));
      died = WEXITSTATUS(status) == 7;
      SCOPED_TRACE(transaction->name + ", death at operation " + std::to_string(n));
      EXPECT_TRUE(died || WEXITSTATUS(status) == 0);
      const StoreImage image = ListAll();
      CheckStore(*transaction, image);
      EXPECT_TRUE(died || transaction->isDone(image));
    }
    EXPECT_LT(n, kMostOperations);
  }
}
#endif

}  // namespace
