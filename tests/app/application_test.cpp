// The application object: its path, its user, its games.
#include "foundation/application.h"

#include "app/general_call.h"
#include "app/library_entry.h"
#include "foundation/bytes.h"
#include "foundation/file_type.h"
#include "foundation/platform/platform.h"
#include "records/game_dob.h"
#include "records/tutor_options_dob.h"
#include "store/failure_report.h"
#include "store/lock_file.h"
#include "tests/app/call_fixture.h"
#include "tests/support/test_clock.h"

namespace kivtest {
namespace {

using namespace kivstore;

class Application : public ProcessState {
 protected:
  TempFolder folder;
};

TEST_F(Application, TheDataPropertyIsStoredByItsKeyAndReadByAny) {
  SZEPApp app;
  app.SetProperty("dATA", "X:\\Root\\");
  EXPECT_EQ(app.GetProperty("Data"), "X:\\Root\\");
  EXPECT_EQ(app.GetProperty("install"), "X:\\Root\\");
  app.SetProperty("Path", "Y:\\");
  app.SetProperty("Data ", "Y:\\");
  app.SetProperty(nullptr, "Y:\\");
  EXPECT_EQ(app.GetProperty("Data"), "X:\\Root\\");
}

TEST_F(Application, ATrailingClassesFolderIsCutOffThePath) {
  RegisterFileType(kFileTypeGame, "Game File|Game Files|zep|Game|1");
  const char* const rows[][2] = {
      {"X:\\Root\\Classes\\", "X:\\Root\\"},
      {"X:\\Root\\Classes", "X:\\Root\\Classes"},
      {"X:\\Root\\Classes.zep\\", "X:\\Root\\"},
      {"X:\\Root\\classes.ZEP\\", "X:\\Root\\"},
      {"X:\\Root\\cLASSES/", "X:\\Root\\"},
      {"X:\\Root\\Classes.zep", "X:\\Root\\Classes.zep"},
      {"Classes\\", "Classes\\"},
      {"\\Classes\\", "\\"},
      {"Classes.zep\\", "Classes.zep\\"},
      {"/Classes.zep/", "/"},
      {"X:\\OurClasses\\", "X:\\Our"},
      {"X:\\Root\\Classes\\Classes\\", "X:\\Root\\Classes\\"},
      {"X:\\Root\\Classes.zip\\", "X:\\Root\\Classes.zip\\"},
      {"", ""},
      {"\\", "\\"},
  };
  for (const auto& row : rows) {
    SZEPApp app;
    app.SetProperty("Data", row[0]);
    app.ApplyDataPath();
    EXPECT_EQ(app.GetProperty("Data"), row[1]) << row[0];
  }
}

TEST_F(Application, ACurrentUserBeginsAsNobodyInTheDefaultClass) {
  const SZEPApp app;
  EXPECT_EQ(app.currentUser.classEntry.firstName, "Default");
  EXPECT_EQ(app.currentUser.classEntry.lastName, "");
  EXPECT_EQ(app.currentUser.classEntry.folderName, "Default");
  EXPECT_EQ(app.currentUser.studentEntry.firstName, "");
  EXPECT_EQ(app.currentUser.teacherEntry, nullptr);
  EXPECT_FALSE(app.currentUser.valid);
}

TEST_F(Application, AssigningAUserCopiesTheTeacherToo) {
  CurrentUser source, target;
  source.SetTeacher({"Ms Hill", "", "MsHill"});
  source.studentEntry.firstName = "Ann";
  source.valid = true;
  target = source;
  ASSERT_NE(target.teacherEntry, nullptr);
  EXPECT_NE(target.teacherEntry, source.teacherEntry);
  EXPECT_EQ(target.teacherEntry->folderName, "MsHill");
  EXPECT_EQ(target.studentEntry.firstName, "Ann");
  EXPECT_TRUE(target.valid);
  const CurrentUser& self = target;
  target = self;
  EXPECT_NE(target.teacherEntry, nullptr);
  target = CurrentUser();
  EXPECT_EQ(target.teacherEntry, nullptr);
}

TEST_F(Application, ACurrentStudentNeedsAValidUserAndAName) {
  SZEPApp app;
  app.currentUser.valid = true;
  EXPECT_FALSE(app.HasCurrentStudent());
  app.currentUser.studentEntry.lastName = "Lee";
  EXPECT_TRUE(app.HasCurrentStudent());
  app.currentUser.valid = false;
  EXPECT_FALSE(app.HasCurrentStudent());
}

// A game that says when it is deleted and started.
class WatchedGame : public SGameDob {
 public:
  explicit WatchedGame(std::string& events, char name) : events(events), name(name) {}
  ~WatchedGame() override { events += std::string("-") + name; }
  void OnActivated() override { events += std::string("+") + name; }

 private:
  std::string& events;
  char name;
};

TEST_F(Application, APendingGameBelongsToTheApplication) {
  std::string events;
  Host host(folder.Path(), kLocalMode);
  {
    const SGeneralCall call(host.block);
    auto* const a = new WatchedGame(events, 'a');
    gApp->SetPendingGame(a);
    gApp->SetPendingGame(a);
    EXPECT_EQ(events, "");
    gApp->SetPendingGame(new WatchedGame(events, 'b'));
    EXPECT_EQ(events, "-a");
    gApp->CommitPendingGame();
    EXPECT_EQ(events, "-a+b");
    EXPECT_EQ(gApp->pendingGame, nullptr);
    // The current game may be the pending one.
    gApp->SetPendingGame(gApp->game);
    gApp->SetPendingGame(nullptr);
    gApp->SetPendingGame(gApp->game);
    gApp->CommitPendingGame();
    EXPECT_EQ(events, "-a+b+b");
    gApp->CommitPendingGame();
    EXPECT_EQ(events, "-a+b+b");
    gApp->SetPendingGame(new WatchedGame(events, 'c'));
  }
  EXPECT_EQ(events, "-a+b+b-b-c");
}

TEST_F(Application, AutomaticSavingAimsTheGameAtTheCurrentStudent) {
  StoreBuilder store(folder.Path(), Kind::kLocal);
  const std::string ann =
      store.AddStudent(store.AddClass("", "Room 12", "R12"), "Ann", "Lee", "AnnLee");
  store.WriteGame(ann, GameBytes());
  store.Finish();
  Host host(folder.Path(), kLocalMode);
  for (const bool saving : {false, true}) {
    for (const bool valid : {false, true}) {
      const SGeneralCall call(host.block);
      gApp->options->AutoGameSaving.value = saving;
      gApp->currentUser.classEntry = {"Room 12", "", "R12"};
      gApp->currentUser.studentEntry = {"Ann", "Lee", "AnnLee"};
      gApp->currentUser.valid = valid;
      gApp->SetPendingGame(gApp->CreateGame());
      gApp->CommitPendingGame();
      EXPECT_EQ(gApp->game->fileSpec.IsExistingFile(), saving && valid);
      EXPECT_EQ(gApp->game->fileSpec.GetFileName(), saving && valid ? "autogame.zep" : "");
    }
  }
}

TEST_F(Application, TheLastUsersFileIsRememberedForAValidUserOnly) {
  StoreBuilder store(folder.Path(), Kind::kLocal);
  const std::string ann =
      store.AddStudent(store.AddClass("", "Room 12", "R12"), "Ann", "Lee", "AnnLee");
  store.Finish();
  store.WriteFile(ann + "/last.kiv", std::string(4, '\0'));
  Host host(folder.Path(), kLocalMode);
  const SGeneralCall call(host.block);
  gApp->currentUser.classEntry = {"Room 12", "", "R12"};
  gApp->currentUser.studentEntry = {"Ann", "Lee", "AnnLee"};
  gApp->SaveLastUser("first.zep", "zep");
  EXPECT_EQ(store.ReadFile(ann + "/last.kiv"), std::string(4, '\0'));
  gApp->currentUser.valid = true;
  gApp->SaveLastUser("first.zep", "zep");
  EXPECT_EQ(store.ReadFile(ann + "/last.kiv"), std::string("\0\0\0\1first.zep\0", 14));
}

std::string gDropped;

TEST_F(Application, AStudentIsMarkedInUseByALockThatStaysHeld) {
  StoreBuilder store(folder.Path(), Kind::kTeachers);
  const std::string room = store.AddClass(store.AddTeacher("Ms Hill"), "Room 12", "R12");
  const std::string ann = store.AddStudent(room, "Ann", "Lee", "AnnLee");
  store.Finish();
  const TestClock clock(10);
  Host host(folder.Path(), kNetworkedMode);
  const SGeneralCall call(host.block);
  const SLoginNameObj student{"Ann", "Lee", "AnnLee"};
  gApp->currentUser.classEntry = {"Room 12", "", "R12"};
  gDropped.clear();
  gDropMessage = [](const SString& message) { gDropped += message.GetText(); };
  const DropMessageHook quiet = [](const SString&) {};

  EXPECT_FALSE(gApp->CheckStudentFree(nullptr));
  EXPECT_TRUE(gApp->CheckStudentFree(&student));
  EXPECT_TRUE(gApp->CheckStudentFree(&student));  // lets go of its own lock first
  EXPECT_EQ(gApp->studentLock->timeoutSeconds, 6);
  EXPECT_EQ(gApp->studentLock->waitText, "Trying to access the student list.\nPlease wait.");
  EXPECT_EQ(gDropped, "");

  SZEPApp other;
  other.currentUser.classEntry = gApp->currentUser.classEntry;
  EXPECT_FALSE(other.CheckStudentFree(&student));
  EXPECT_EQ(gDropped, "The student Ann Lee is already in use.");
  gDropMessage = quiet;
}

TEST_F(Application, TheLibraryEntryKeepsTheModuleOnAttachAlone) {
  const ModuleHandle before = gModuleHandle;
  int module = 0;
  for (const uint32_t reason : {0u, 2u, 3u, 77u}) {
    EXPECT_TRUE(LibraryEntry(&module, reason));
    EXPECT_EQ(gModuleHandle, before);
  }
  EXPECT_TRUE(LibraryEntry(&module, 1));
  EXPECT_EQ(gModuleHandle, &module);
  gModuleHandle = before;
}

}  // namespace
}  // namespace kivtest
