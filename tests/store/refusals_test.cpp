// What every transaction answers, and what it leaves, where the folder takes no writing or the disk
// has no room. (Full lists and busy locks stand with each transaction's own tests.)
#include "store/change/adding.h"
#include "store/change/deleting.h"
#include "store/change/moving.h"
#include "store/change/renaming.h"
#include "tests/store/kill_fixture.h"

using namespace kivstore;
using kivtest::FindMarks;
using kivtest::kHill;
using kivtest::Kind;
using kivtest::Lines;
using kivtest::StoreBuilder;
using kivtest::StoreImage;

namespace {

enum class Trouble { kReadOnly, kDiskFull };

// Reading goes on. A read-only folder lets nothing be opened for writing, made, moved or deleted; a
// full disk takes no byte and no name more, but gives back and moves what it has.
class TroubledFileServices : public SForwardingFileServices {
 public:
  TroubledFileServices(IFileServices& inner, Trouble trouble)
      : SForwardingFileServices(inner), trouble(trouble) {}

  FileHandle Open(const char* path, FileAccess access, SystemError& error) override {
    const bool refused = access == FileAccess::kReadWrite && IsReadOnly(error);
    return refused ? nullptr : SForwardingFileServices::Open(path, access, error);
  }
  int32_t Write(FileHandle, const void*, int32_t) override { return 0; }
  bool Delete(const char* path, SystemError& error) override {
    return !IsReadOnly(error) && SForwardingFileServices::Delete(path, error);
  }
  bool RemoveFolder(const char* path, SystemError& error) override {
    return !IsReadOnly(error) && SForwardingFileServices::RemoveFolder(path, error);
  }
  bool Move(const char* from, const char* to, SystemError& error) override {
    return !IsReadOnly(error) && SForwardingFileServices::Move(from, to, error);
  }
  bool MakeFile(const char*, SystemError& error) override { return Refuse(error); }
  bool MakeFolder(const char*, uint32_t, SystemError& error) override { return Refuse(error); }
  bool CopyFileTo(const char*, const char*, SystemError& error) override { return Refuse(error); }

 private:
  bool Refuse(SystemError& error) const {
    error = trouble == Trouble::kReadOnly ? SystemError::kAccessDenied : SystemError::kDiskFull;
    return false;
  }
  bool IsReadOnly(SystemError& error) const {
    Refuse(error);
    return trouble == Trouble::kReadOnly;
  }

  Trouble trouble;
};

class Refusals : public kivtest::KillFixture {
 protected:
  struct Case {
    const char* name;
    std::function<bool()> run;
    bool onFullDisk;  // the answer there
    std::set<std::string> goes;
  };
  std::vector<Case> Cases() {
    return {
        {"AddTeacher", [this] { return AddTeacher("Mx New", folder); }, false, {}},
        {"AddClass", [this] { return AddClass("Attic", folder); }, false, {}},
        {"AddStudent", [this] { return AddStudent(room, "Cid", "Roe", folder); }, false, {}},
        {"RenameTeacher",
         [this] { return RenameTeacher(&hill, &teachers.Array(), "Ms H", folder); },
         true,
         {}},
        {"RenameClass",
         [this] { return RenameClass(&room, &classes.Array(), "R", folder); },
         true,
         {}},
        {"RenameStudent",
         [this] { return RenameStudent(&room, Ann(), &students.Array(), "Anna", "Leigh"); },
         true,
         {}},
        {"MoveClass",
         [this] { return MoveClass(&hill, &oak, Find(classes, "Room"), &classes.Array(), "Room"); },
         true,
         {}},
        {"MoveStudent",
         [this] { return MoveStudent(&room, &den, Ann(), &students.Array(), "Ann", "Lee"); },
         true,
         {}},
        {"MoveStudentAcross to a folder name that is taken",
         [this] {
           return MoveStudentAcross(&hill, &oak, &room, &yard, Ann(), &students.Array(), "Ann",
                                    "Lee");
         },
         false,
         {}},
        {"DeleteStudent",
         [this] { return DeleteStudent(&room, Ann(), &students.Array(), true, stop); },
         true,
         {"Ann"}},
        {"DeleteClass",
         [this] { return DeleteClass(Find(classes, "Room"), &classes.Array(), true, stop); },
         true,
         {"Ann", "Bob"}},
        {"DeleteTeacher",
         [this] { return DeleteTeacher(Find(teachers, "aHill"), &teachers.Array()); },
         true,
         {"Ann", "Bob"}},
    };
  }
  SLoginNameObj* Ann() { return Find(students, "AnnLee"); }
  std::map<std::string, std::string> Snapshot() const {
    return StoreBuilder(temp.Path(), Kind::kTeachers).Snapshot();
  }
  bool RunIn(Trouble trouble, const Case& one) {
    Build();
    Load();
    TroubledFileServices services(*Platform().files, trouble);
    const SPlatformOverride<IFileServices> installed(Platform().files, &services);
    return one.run();
  }

  SString folder;
  bool stop = false;
};

TEST_F(Refusals, AReadOnlyStoreAnswersFalseAndIsNotTouched) {
  Build();
  const auto before = Snapshot();
  for (const Case& one : Cases()) {
    EXPECT_FALSE(RunIn(Trouble::kReadOnly, one)) << one.name;
    EXPECT_EQ(Changes(before, Snapshot()), Lines()) << one.name;
  }
}

// Nothing is made where there is no room; what needs none is done, and the next listing, which
// finds room again, has everybody else.
TEST_F(Refusals, AFullDiskCostsNobody) {
  for (const Case& one : Cases()) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(RunIn(Trouble::kDiskFull, one), one.onFullDisk);
    const StoreImage image = ListAll();
    EXPECT_EQ(image.faults, Lines());
    const auto marks = FindMarks(temp.Path(), image.students, "mark");
    for (const char* student : {"Ann", "Bob", "An"}) {
      const auto found = marks.find(student);
      const size_t places = found != marks.end() ? found->second.size() : 0;
      EXPECT_EQ(places, one.goes.count(student) > 0 ? 0u : 1u) << student;
    }
  }
}

}  // namespace
