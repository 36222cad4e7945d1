// The application object: its path, its user, its games.
#include "app/general_call.h"
#include "game/game_dob.h"
#include "platform/platform.h"
#include "records/tutor_options_dob.h"
#include "tests/app/call_fixture.h"
#include "tests/support/test_clock.h"

namespace kivtest {
namespace {

using namespace kivstore;

class Application : public AnnsStore {
 protected:
  Application() : AnnsStore(Kind::kTeachers) {}
};

TEST_F(Application, ATrailingClassesFolderIsCutOffThePath) {
  RegisterFileType(kFileTypeGame, "Game File|Game Files|zep|Game|1");
  const char* const rows[][2] = {{"X:\\Root\\Classes\\", "X:\\Root\\"},
                                 {"X:\\Root\\Classes", "X:\\Root\\Classes"},
                                 {"X:\\Root\\classes.ZEP\\", "X:\\Root\\"},
                                 {"X:\\Root\\cLASSES/", "X:\\Root\\"},
                                 {"Classes\\", "Classes\\"},
                                 {"\\Classes\\", "\\"},
                                 {"/Classes.zep/", "/"},
                                 {"X:\\OurClasses\\", "X:\\Our"},
                                 {"X:\\Root\\Classes\\Classes\\", "X:\\Root\\Classes\\"},
                                 {"X:\\Root\\Classes.zip\\", "X:\\Root\\Classes.zip\\"},
                                 {"", ""}};
  for (const auto& [path, root] : rows) {
    SSite site;
    SZEPApp app(site);
    app.SetProperty("dATA", path);
    app.SetProperty("Path", "Y:\\");
    app.ApplyDataPath();
    EXPECT_EQ(app.GetProperty("install"), root) << path;
    EXPECT_EQ(site.GetDataRoot(), root) << path;
  }
}

TEST_F(Application, AssigningAUserCopiesTheTeacherToo) {
  CurrentUser source, target;
  source.SetTeacher({"Ms Hill", "", "MsHill"});
  source.studentEntry = annEntry;
  source.valid = true;
  target = source;
  source.Clear();
  const CurrentUser& self = target;
  target = self;
  ASSERT_NE(target.teacherEntry, nullptr);
  EXPECT_EQ(target.teacherEntry->folderName + target.studentEntry.folderName, "MsHillAnnLee");
  EXPECT_TRUE(target.valid);
  target = source;
  EXPECT_EQ(target.teacherEntry, nullptr);
  EXPECT_EQ(target.classEntry.folderName + target.studentEntry.folderName, "Default");
  EXPECT_FALSE(target.valid);
}

// A game that says when it is deleted and started.
class WatchedGame : public SGameDob {
 public:
  WatchedGame(std::string& events, char name) : events(events), name(name) {}
  ~WatchedGame() override { events += std::string("-") + name; }
  void OnActivated() override { events += std::string("+") + name; }

 private:
  std::string& events;
  char name;
};

TEST_F(Application, APendingGameBelongsToTheApplication) {
  std::string events;
  {
    const SGeneralCall call(host.block);
    SZEPApp& app = *call.GetApp();
    auto* const a = new WatchedGame(events, 'a');
    app.SetPendingGame(a);
    app.SetPendingGame(a);
    app.SetPendingGame(new WatchedGame(events, 'b'));
    EXPECT_EQ(events, "-a");
    app.CommitPendingGame();
    // The current game may be the pending one.
    app.SetPendingGame(app.game);
    app.SetPendingGame(nullptr);
    app.SetPendingGame(app.game);
    app.CommitPendingGame();
    app.CommitPendingGame();
    EXPECT_EQ(events, "-a+b+b");
    app.SetPendingGame(new WatchedGame(events, 'c'));
  }
  EXPECT_EQ(events, "-a+b+b-c-b");
}

TEST_F(Application, GamesAreSavedAndRememberedForAValidUserOnly) {
  for (const auto& [saving, valid] : {std::pair(true, false), {false, true}, {true, true}}) {
    const SGeneralCall call(host.block);
    SZEPApp& app = *call.GetApp();
    app.options->AutoGameSaving.value = saving;
    app.currentUser.valid = valid;
    EXPECT_FALSE(app.HasCurrentStudent());
    app.currentUser.classEntry = classEntry;
    app.currentUser.studentEntry = annEntry;
    app.SetPendingGame(app.CreateGame());
    app.CommitPendingGame();
    EXPECT_EQ(app.game->fileSpec.GetFileName(), saving && valid ? "autogame.zep" : "");
    store.WriteFile(ann + "/last.kiv", std::string(4, '\0'));
    app.SaveLastUser("first.zep", "zep");
    EXPECT_EQ(store.ReadFile(ann + "/last.kiv"),
              valid ? std::string("\0\0\0\1first.zep\0", 14) : std::string(4, '\0'));
  }
}

TEST_F(Application, AStudentIsMarkedInUseByALockThatStaysHeld) {
  const TestClock clock(10);
  const SGeneralCall call(host.block);
  SZEPApp& app = *call.GetApp();
  app.currentUser.classEntry = classEntry;
  EXPECT_FALSE(app.CheckStudentFree(nullptr));
  EXPECT_TRUE(app.CheckStudentFree(&annEntry));
  EXPECT_TRUE(app.CheckStudentFree(&annEntry));  // lets go of its own lock first
  EXPECT_EQ(app.studentLock->timeoutSeconds, 6);
  EXPECT_EQ(app.studentLock->list, ListKind::kStudents);
  EXPECT_FALSE(call.GetSite().GetFailure());
  SZEPApp other(call.GetSite());
  other.SetProperty("Data", folder.Path().c_str());
  other.currentUser.classEntry = classEntry;
  EXPECT_FALSE(other.CheckStudentFree(&annEntry));
  EXPECT_EQ(call.GetSite().GetFailure().kind, FailureKind::kLocked);
  EXPECT_EQ(call.GetSite().GetFailure().text, "The student Ann Lee is already in use.");
}

}  // namespace
}  // namespace kivtest
