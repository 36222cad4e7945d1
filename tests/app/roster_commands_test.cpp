// Both chains of roster commands, on each kind of store.
#include <vector>

#include "tests/app/call_fixture.h"

namespace kivtest {
namespace {

using namespace kivstore;

struct Roster {
  Kind kind;
  uint8_t mode;
};

// Two classes and three students; with teachers a second one without classes. Entries come in the
// order of their folder names.
void LayRoster(const TempFolder& folder, Kind kind) {
  StoreBuilder store(folder.Path(), kind);
  std::string hill;
  if (kind == Kind::kTeachers) {
    store.AddTeacher("Mr Reyes", "zReyes");
    hill = store.AddTeacher("Ms Hill", "aHill");
  }
  store.AddClass(hill, "Room 14", "r14");
  const std::string room12 = store.AddClass(hill, "Room 12", "R12");
  store.AddStudent(room12, "Ben", "Okafor", "c");
  store.AddStudent(room12, "Mei", "", "b");
  store.AddStudent(room12, "Ann", "Lee", "A");
  store.Finish();
}

class BothChains : public ProcessState, public testing::WithParamInterface<Roster> {
 protected:
  BothChains() { LayRoster(folder, GetParam().kind); }

  TempFolder folder;
  Host host{folder.Path(), GetParam().mode};
};

std::string KindName(const testing::TestParamInfo<Roster>& row) {
  const char* const names[] = {"Local", "Shared", "Teachers"};
  return names[static_cast<int>(row.param.kind)];
}
INSTANTIATE_TEST_SUITE_P(Kinds, BothChains,
                         testing::Values(Roster{Kind::kLocal, kLocalMode},
                                         Roster{Kind::kShared, kLocalMode},
                                         Roster{Kind::kTeachers, kNetworkedMode}),
                         KindName);

TEST_P(BothChains, ThePlainChainWalksTheWholeRoster) {
  EXPECT_TRUE(host.Call(KIV_ANY_ENTRIES));
  EXPECT_TRUE(host.Call(KIV_COUNT_TEACHERS));
  EXPECT_EQ(host.block.topCount, 2);  // teachers, or the classes that stand at the top

  EXPECT_TRUE(host.Teacher(1).Call(KIV_COUNT_CLASSES));
  EXPECT_EQ(host.block.classCount, 2);
  EXPECT_TRUE(host.Class(1).Call(KIV_CLASS_NAME));
  EXPECT_STREQ(host.block.className, "Room 12");
  EXPECT_EQ(host.block.classIndex, 0);
  EXPECT_TRUE(host.Call(KIV_COUNT_STUDENTS));
  EXPECT_EQ(host.block.studentCount, 3);
  const char* const names[] = {"Ann Lee", "Mei", "Ben Okafor"};
  for (int number = 1; number <= 3; ++number) {
    EXPECT_TRUE(host.Student(number).Call(KIV_STUDENT_PROGRESS));
    EXPECT_STREQ(host.block.studentName, names[number - 1]);
    EXPECT_EQ(host.block.studentIndex, number - 1);
  }
  EXPECT_TRUE(host.Class(2).Call(KIV_COUNT_STUDENTS));
  EXPECT_EQ(host.block.studentCount, 0);
}

TEST_P(BothChains, TheCachedChainReadsEachListOnce) {
  const bool networked = GetParam().mode != 0;
  EXPECT_EQ(host.Call(KIV_CACHE_TEACHERS), networked);
  EXPECT_EQ(host.block.topCount, networked ? 2 : 0);
  EXPECT_TRUE(host.Teacher(1).Call(KIV_CACHE_CLASSES));
  EXPECT_EQ(host.block.classCount, 2);
  EXPECT_TRUE(host.Class(1).Call(KIV_CACHE_STUDENTS));
  EXPECT_EQ(host.block.studentCount, 3);

  folder.Remove("Classes.zep");
  EXPECT_EQ(host.Call(KIV_CACHED_TEACHER_NAME), networked);
  EXPECT_STREQ(host.block.teacherName, networked ? "Ms Hill" : "");
  EXPECT_TRUE(host.Class(2).Call(KIV_CACHED_CLASS_NAME));
  EXPECT_STREQ(host.block.className, "Room 14");
  EXPECT_EQ(host.block.classIndex, 1);
  EXPECT_TRUE(host.Class(1).Student(3).Call(KIV_CACHED_STUDENT_NAME));
  EXPECT_STREQ(host.block.studentName, "Ben Okafor");
  EXPECT_EQ(host.block.studentIndex, 2);
}

TEST_P(BothChains, NoCommandChangesAStoreInOrder) {
  const StoreBuilder store(folder.Path(), GetParam().kind);
  const auto before = store.Snapshot();
  for (int command = 1; command <= 14; ++command) {
    host.Teacher(1).Class(1).Student(1).Call(command);
  }
  EXPECT_EQ(store.Snapshot(), before);
}

TEST_P(BothChains, AnIndexOutsideItsListIsAnEntryThatIsNotThere) {
  host.Call(KIV_CACHE_TEACHERS);
  host.Teacher(1).Call(KIV_CACHE_CLASSES);
  host.Class(1).Call(KIV_CACHE_STUDENTS);
  for (const int32_t number : {4, 0, -1, INT32_MIN, INT32_MAX, 0x10001}) {
    host.Teacher(1).Class(1).Student(number);
    EXPECT_FALSE(host.Call(KIV_STUDENT_PROGRESS)) << number;
    EXPECT_FALSE(host.Call(KIV_CACHED_STUDENT_NAME)) << number;
    host.block.classListIndex = host.block.classIndex = number;
    for (const int command : {KIV_CLASS_NAME, KIV_COUNT_STUDENTS, KIV_STUDENT_PROGRESS,
                              KIV_CACHED_CLASS_NAME, KIV_CACHED_STUDENT_NAME}) {
      // Index 0 is the first class, number 0 is none.
      const bool first = number == 0 && command == KIV_COUNT_STUDENTS;
      EXPECT_EQ(host.Call(command), first) << number << " command " << command;
    }
    host.block.teacherListIndex = number;
    EXPECT_FALSE(host.Call(KIV_TEACHER_NAME)) << number;
    EXPECT_FALSE(host.Call(KIV_CACHED_TEACHER_NAME)) << number;
  }
  EXPECT_STREQ(host.block.className, "");
  EXPECT_STREQ(host.block.studentName, "");
}

class Commands : public ProcessState {
 protected:
  TempFolder folder;
};

TEST_F(Commands, ATeacherWhoIsNotThereFailsEveryCommandBelow) {
  LayRoster(folder, Kind::kTeachers);
  Host host(folder.Path(), kNetworkedMode);
  host.Call(KIV_CACHE_TEACHERS);
  for (const int32_t number : {3, 0, -1, INT32_MIN, INT32_MAX}) {
    host.Teacher(number).Class(1).Student(1);
    for (const int command :
         {KIV_TEACHER_NAME, KIV_COUNT_CLASSES, KIV_CLASS_NAME, KIV_COUNT_STUDENTS,
          KIV_STUDENT_PROGRESS, KIV_CACHED_TEACHER_NAME, KIV_CACHE_CLASSES, KIV_CACHE_STUDENTS}) {
      EXPECT_FALSE(host.Call(command)) << number << " command " << command;
    }
  }
  EXPECT_EQ(host.block.classCount, 0);
}

TEST_F(Commands, ACountOfZeroFailsForClassesButNotForStudents) {
  LayRoster(folder, Kind::kTeachers);
  folder.Remove("Classes.zep/zReyes/Classes.zep/index.lok");
  folder.Remove("Classes.zep/aHill/Classes.zep/R12/Students/index.lok");
  Host host(folder.Path(), kNetworkedMode);
  host.block.classCount = host.block.studentCount = 77;
  EXPECT_FALSE(host.Teacher(2).Call(KIV_COUNT_CLASSES));
  EXPECT_EQ(host.block.classCount, 0);
  EXPECT_TRUE(host.Teacher(1).Class(1).Call(KIV_COUNT_STUDENTS));
  EXPECT_EQ(host.block.studentCount, 0);
}

TEST_F(Commands, TheCachesKeepTheirTagsAndRefuseAnotherTeacherOrClass) {
  LayRoster(folder, Kind::kTeachers);
  Host host(folder.Path(), kNetworkedMode);
  EXPECT_TRUE(host.Call(KIV_CACHE_TEACHERS));
  EXPECT_TRUE(host.Teacher(1).Call(KIV_CACHE_CLASSES));
  EXPECT_TRUE(host.Class(1).Call(KIV_CACHE_STUDENTS));

  EXPECT_FALSE(host.Teacher(2).Call(KIV_CACHED_CLASS_NAME));
  EXPECT_FALSE(host.Student(1).Call(KIV_CACHED_STUDENT_NAME));
  EXPECT_FALSE(host.Teacher(1).Class(2).Call(KIV_CACHED_STUDENT_NAME));
  EXPECT_TRUE(host.Class(1).Call(KIV_CACHED_STUDENT_NAME));
  // Reading the teachers again leaves the lower lists valid.
  EXPECT_TRUE(host.Call(KIV_CACHE_TEACHERS));
  EXPECT_TRUE(host.Call(KIV_CACHED_STUDENT_NAME));
  // A teacher beyond the cache empties the classes; the old tag then finds nothing.
  EXPECT_FALSE(host.Teacher(3).Call(KIV_CACHE_CLASSES));
  EXPECT_FALSE(host.Teacher(1).Call(KIV_CACHED_CLASS_NAME));
}

TEST_F(Commands, AStudentCacheIsTaggedBeforeItsTeacherIsLookedUp) {
  LayRoster(folder, Kind::kTeachers);
  Host host(folder.Path(), kNetworkedMode);
  host.Call(KIV_CACHE_TEACHERS);
  host.Teacher(1).Call(KIV_CACHE_CLASSES);
  DeleteLogins(gTeacherCache.Array());
  EXPECT_FALSE(host.Class(2).Call(KIV_CACHE_STUDENTS));
  EXPECT_EQ(gStudentCacheClass, 1);
}

TEST_F(Commands, InALocalStoreTheTeacherNumberIsOnlyATag) {
  LayRoster(folder, Kind::kLocal);
  Host host(folder.Path(), kLocalMode);
  EXPECT_TRUE(host.Teacher(-5).Call(KIV_CACHE_CLASSES));
  EXPECT_TRUE(host.Class(1).Call(KIV_CACHED_CLASS_NAME));
  EXPECT_FALSE(host.Teacher(1).Call(KIV_CACHED_CLASS_NAME));
  // The tag has 16 bits: a larger number never fits it again.
  EXPECT_TRUE(host.Teacher(0x10001).Call(KIV_CACHE_CLASSES));
  EXPECT_EQ(gClassCacheTeacher, 1);
  EXPECT_FALSE(host.Call(KIV_CACHED_CLASS_NAME));
  EXPECT_TRUE(host.Teacher(1).Call(KIV_CACHED_CLASS_NAME));
}

TEST_F(Commands, AfterANetworkedCallALocalOneSeesTheFirstTeachersClasses) {
  LayRoster(folder, Kind::kTeachers);
  Host networked(folder.Path(), kNetworkedMode);
  EXPECT_TRUE(networked.Call(KIV_PRODUCT_ID));
  Host local(folder.Path(), kLocalMode);
  EXPECT_TRUE(local.Call(KIV_COUNT_CLASSES));
  EXPECT_EQ(local.block.classCount, 2);
  EXPECT_TRUE(local.Class(2).Call(KIV_CLASS_NAME));
  EXPECT_STREQ(local.block.className, "Room 14");
}

TEST_F(Commands, ThePathMayEndInTheClassesFolderAndASeparator) {
  LayRoster(folder, Kind::kLocal);
  for (const char* const ending :
       {"", "/", "\\", "/Classes.zep/", "\\classes.ZEP\\", "/Classes/"}) {
    Host host(folder.Path() + ending, kLocalMode);
    EXPECT_TRUE(host.Call(KIV_COUNT_CLASSES)) << ending;
  }
}

TEST_F(Commands, ACountIsTheIndexsAndAListTheFolders) {
  StoreBuilder store(folder.Path(), Kind::kLocal);
  store.AddClass("Room 12");
  const std::string gone = store.AddClass("Room 14");
  store.Finish();
  store.RemoveFolder(gone);
  Host host(folder.Path(), kLocalMode);
  EXPECT_TRUE(host.Call(KIV_COUNT_CLASSES));
  EXPECT_EQ(host.block.classCount, 2);
  EXPECT_TRUE(host.Call(KIV_CACHE_CLASSES));
  EXPECT_EQ(host.block.classCount, 1);
  // The listing has put the index right.
  EXPECT_TRUE(host.Call(KIV_COUNT_CLASSES));
  EXPECT_EQ(host.block.classCount, 1);
}

}  // namespace
}  // namespace kivtest
