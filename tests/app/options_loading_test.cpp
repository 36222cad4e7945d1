// Laying the options of the levels over each other, with locks, retries and bad files.
#include "app/general_call.h"
#include "foundation/application.h"
#include "foundation/platform/platform.h"
#include "records/tutor_options_dob.h"
#include "store/lock_file.h"
#include "tests/app/call_fixture.h"
#include "tests/support/test_clock.h"

namespace kivtest {
namespace {

using namespace kivstore;

// Reading options.kiv is refused, as while another workstation writes it, until some tries are
// over.
class BusyOptions : public SForwardingFileServices {
 public:
  explicit BusyOptions(int refusals)
      : SForwardingFileServices(*Platform().files), refusals(refusals) {}

  FileHandle Open(const char* path, FileAccess access, SystemError& error) override {
    if (!std::string(path).ends_with("options.kiv")) {
      return inner.Open(path, access, error);
    }
    ++tries;
    if (tries > refusals) {
      return inner.Open(path, access, error);
    }
    error = SystemError::kSharingViolation;
    return nullptr;
  }

  int tries = 0;

 private:
  int refusals;
  SPlatformOverride<IFileServices> installed{Platform().files, this};
};

class OptionsLoading : public ProcessState {
 protected:
  // A call in `mode` on a store with one class and one student.
  void Begin(uint8_t mode) {
    const Kind kind = mode == kLocalMode ? Kind::kLocal : Kind::kTeachers;
    store = std::make_unique<StoreBuilder>(folder.Path(), kind);
    const std::string teacher = kind == Kind::kTeachers ? store->AddTeacher("Hill") : "";
    top = StoreBuilder::ClassList(teacher);
    room = store->AddClass(teacher, "Room 12", "R12");
    ann = store->AddStudent(room, "Ann", "Lee", "AnnLee");
    store->Finish();
    host = std::make_unique<Host>(folder.Path(), mode);
    call = std::make_unique<SGeneralCall>(host->block);
  }
  void WriteEveryLevel() {
    store->WriteOptions(top, OptionsBytes().Set("TextSize", 3).Set("Checkpoint", 1));
    store->WriteOptions(room, OptionsBytes().Set("TextSize", 4).Set("Checkpoint", 1));
    store->WriteOptions(ann, OptionsBytes().Set("TextSize", 5).Set("Checkpoint", 1));
  }
  bool Load(const SLoginNameObj* ofClass, const SLoginNameObj* ofStudent) {
    return gApp->LoadTeacherOptions(ofClass, ofStudent, false, nullptr, nullptr, nullptr, nullptr);
  }
  static const STeacherOptionsDob& Options() {
    return *static_cast<const STeacherOptionsDob*>(gApp->options);
  }

  TempFolder folder;
  std::unique_ptr<StoreBuilder> store;
  std::string top, room, ann;
  std::unique_ptr<Host> host;
  std::unique_ptr<SGeneralCall> call;
  const SLoginNameObj classEntry{"Room 12", "", "R12"};
  const SLoginNameObj student{"Ann", "Lee", "AnnLee"};
};

TEST_F(OptionsLoading, EachLevelThatIsAskedForIsLaidOver) {
  Begin(kLocalMode);
  WriteEveryLevel();
  EXPECT_TRUE(Load(nullptr, nullptr));
  EXPECT_EQ(Options().TextSize.value, 3);
  EXPECT_TRUE(Load(&classEntry, nullptr));
  EXPECT_EQ(Options().TextSize.value, 4);
  EXPECT_TRUE(Load(&classEntry, &student));
  EXPECT_EQ(Options().TextSize.value, 5);
  // Every load begins at the defaults.
  EXPECT_TRUE(Load(nullptr, nullptr));
  EXPECT_EQ(Options().TextSize.value, 3);
}

TEST_F(OptionsLoading, ALevelWithoutAFileKeepsWhatTheUpperOnesGave) {
  Begin(kNetworkedMode);
  EXPECT_TRUE(Load(&classEntry, &student));
  EXPECT_EQ(Options().TextSize.value, 2);
  store->WriteOptions(room, OptionsBytes().Set("TextSize", 4));
  EXPECT_TRUE(Load(&classEntry, &student));
  EXPECT_EQ(Options().TextSize.value, 4);
  EXPECT_FALSE(folder.Exists(top + "/options.kiv"));
}

TEST_F(OptionsLoading, AnotherRecordMayTakeTheOptionsAndNoneAtAllFails) {
  Begin(kLocalMode);
  WriteEveryLevel();
  STeacherOptionsDob record;
  EXPECT_TRUE(
      gApp->LoadTeacherOptions(&classEntry, nullptr, false, &record, nullptr, nullptr, nullptr));
  EXPECT_EQ(record.TextSize.value, 4);
  EXPECT_EQ(Options().TextSize.value, 2);
  delete gApp->options;
  gApp->options = nullptr;
  EXPECT_FALSE(Load(nullptr, nullptr));
  EXPECT_FALSE(gApp->ReloadCurrentOptions());
}

TEST_F(OptionsLoading, TheCurrentUserStandsInOnlyWhenItIsAskedForAndValid) {
  Begin(kLocalMode);
  WriteEveryLevel();
  gApp->currentUser.classEntry = classEntry;
  gApp->currentUser.studentEntry = student;
  EXPECT_TRUE(gApp->ReloadCurrentOptions());
  EXPECT_EQ(Options().TextSize.value, 3);
  gApp->currentUser.valid = true;
  EXPECT_TRUE(gApp->ReloadCurrentOptions());
  EXPECT_EQ(Options().TextSize.value, 5);
  EXPECT_TRUE(Load(nullptr, nullptr));
  EXPECT_EQ(Options().TextSize.value, 3);
}

TEST_F(OptionsLoading, OutsideMultiUserSitesTheClassLevelIsPassedOver) {
  Begin(kLocalMode);
  WriteEveryLevel();
  SetSiteMode(0);
  EXPECT_TRUE(Load(&classEntry, nullptr));
  EXPECT_EQ(Options().TextSize.value, 3);
}

TEST_F(OptionsLoading, LocksAreTakenFromTheRootAndStayHeld) {
  Begin(kNetworkedMode);
  WriteEveryLevel();
  SLockFile ofRoot, ofClass, ofStudent;
  EXPECT_TRUE(gApp->LoadTeacherOptions(&classEntry, &student, false, nullptr, &ofRoot, &ofClass,
                                       &ofStudent));
  EXPECT_EQ(Options().TextSize.value, 5);
  for (const SLockFile* const lock : {&ofRoot, &ofClass, &ofStudent}) {
    EXPECT_TRUE(lock->IsFileOpen());
    EXPECT_EQ(lock->failText, "");
    EXPECT_EQ(lock->lockedText,
              "The options are currently locked by someone else.  Press OK to try reading the "
              "options again.  Press CANCEL to stop trying to read the options.");
  }
  EXPECT_EQ(ofRoot.waitText, "Trying to access the options of all classes.\nPlease wait.");
  EXPECT_EQ(ofClass.waitText, "Trying to access the options of the class Room 12.\nPlease wait.");
  EXPECT_EQ(ofStudent.waitText,
            "Trying to access the options of the student Ann Lee.\nPlease wait.");
}

TEST_F(OptionsLoading, ALockThatCannotBeHadEndsTheLoadWithTheLevelsReadSoFar) {
  Begin(kNetworkedMode);
  WriteEveryLevel();
  store->RemoveFile(room + "/options.lok");
  SLockFile ofRoot, ofClass, ofStudent;
  EXPECT_FALSE(gApp->LoadTeacherOptions(&classEntry, &student, false, nullptr, &ofRoot, &ofClass,
                                        &ofStudent));
  EXPECT_EQ(Options().TextSize.value, 3);
  EXPECT_TRUE(ofRoot.IsFileOpen());
  EXPECT_FALSE(ofStudent.IsFileOpen());
}

TEST_F(OptionsLoading, ABusySharedFileIsTriedSevenTimesWithGrowingWaits) {
  Begin(kNetworkedMode);
  store->WriteOptions(top, OptionsBytes().Set("TextSize", 3));
  TestClock clock(1);
  BusyOptions busy(1000);
  EXPECT_FALSE(Load(nullptr, nullptr));
  EXPECT_EQ(busy.tries, 7 + 1);  // and one look at the version
  EXPECT_GE(clock.CurrentTicks(), 6300u);
  EXPECT_LE(clock.CurrentTicks(), 12700u);
  EXPECT_EQ(Options().TextSize.value, 2);
}

TEST_F(OptionsLoading, ABusySharedFileThatIsLetGoIsRead) {
  Begin(kNetworkedMode);
  store->WriteOptions(top, OptionsBytes().Set("TextSize", 3));
  TestClock clock(1);
  BusyOptions busy(3);
  EXPECT_TRUE(Load(nullptr, nullptr));
  EXPECT_EQ(Options().TextSize.value, 3);
  EXPECT_GE(clock.CurrentTicks(), 300u);
  EXPECT_LE(clock.CurrentTicks(), 700u);
}

TEST_F(OptionsLoading, ABusyLocalFileLeavesTheDefaultsWithoutAWait) {
  Begin(kLocalMode);
  store->WriteOptions(top, OptionsBytes().Set("TextSize", 3));
  TestClock clock(1);
  BusyOptions busy(1000);
  EXPECT_TRUE(Load(nullptr, nullptr));
  EXPECT_EQ(Options().TextSize.value, 2);
  EXPECT_EQ(clock.CurrentTicks(), 0u);
  EXPECT_TRUE(folder.Exists(top + "/options.kiv"));
}

TEST_F(OptionsLoading, AFileThatIsBadForGoodIsDeletedInEverySiteMode) {
  std::string newer = OptionsBytes().Bytes();
  newer[6] = 1;
  std::string older = newer;
  older[5] = 0;
  const std::string bad[] = {newer, older, "KIV\x01" + newer.substr(4), "BIN\x01", "B", ""};
  for (const uint8_t mode : {kLocalMode, kNetworkedMode}) {
    Begin(mode);
    TestClock clock(1);
    for (const std::string& bytes : bad) {
      store->WriteOptions(top, OptionsBytes().Set("TextSize", 3));
      store->WriteFile(room + "/options.kiv", bytes);
      EXPECT_TRUE(Load(&classEntry, &student));
      EXPECT_FALSE(folder.Exists(room + "/options.kiv")) << bytes.substr(0, 8);
      EXPECT_EQ(Options().TextSize.value, 3);
      EXPECT_EQ(clock.CurrentTicks(), 0u);
    }
    call.reset();
    folder.Remove("Classes.zep");
  }
}

TEST_F(OptionsLoading, AFolderInTheFilesPlaceIsNoFile) {
  Begin(kLocalMode);
  folder.MakeFolder(top + "/options.kiv");
  EXPECT_TRUE(Load(nullptr, nullptr));
  EXPECT_TRUE(folder.Exists(top + "/options.kiv"));
}

}  // namespace
}  // namespace kivtest
