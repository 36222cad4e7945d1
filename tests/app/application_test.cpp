// One call: what it sets up, what it takes away, what it leaves, and how texts come back. And the
// application object that it makes: its path, its user, its games.
#include <cstring>

#include "app/commands.h"
#include "app/general_call.h"
#include "game/game_dob.h"
#include "platform/platform.h"
#include "records/tutor_options_dob.h"
#include "tests/app/call_fixture.h"
#include "tests/support/test_clock.h"

namespace kivtest {
namespace {

using namespace kivstore;

class GeneralCall : public ProcessState {};

TEST_F(GeneralCall, StandsOnlyBetweenItsSetUpAndItsTearDown) {
  const Host host("/nowhere/Classes.zep/", kNetworkedMode);
  SSite& site = LibraryState().site;
  site.NoteFailure(FailureKind::kOther, "old", ListKind::kFiles);
  {
    const SGeneralCall call(host.block);
    EXPECT_EQ(&call.GetSite(), &site);
    EXPECT_EQ(site.GetOwner(), call.GetApp());
    EXPECT_FALSE(site.GetFailure());
    EXPECT_EQ(site.GetOptionsInForce(), nullptr);
    EXPECT_TRUE(STeacherOptionsDob().IsA(*call.GetApp()->OwnOptions()));
    EXPECT_TRUE(SGameDob().IsA(*call.GetApp()->GetGame()));
    EXPECT_EQ(site.GetDataRoot(), "/nowhere/");
    EXPECT_EQ(site.GetOptionsInForce(), call.GetApp()->options.get());
    site.SelectTeacher(&call.GetApp()->currentUser.classEntry);
  }
  EXPECT_EQ(site.GetOwner(), nullptr);
  EXPECT_EQ(site.GetCurrentTeacher(), nullptr);
}

TEST_F(GeneralCall, AnyModeButZeroIsANetworkedStoreAndLatchesTheTeacherLevel) {
  using Row = std::tuple<uint8_t, int32_t, bool>;
  for (const auto& [mode, siteMode, tier] :
       {Row{0, 3, false}, Row{1, 4, true}, Row{0, 3, true}, Row{255, 4, true}}) {
    const SGeneralCall call(Host("/nowhere", mode).block);
    EXPECT_EQ(call.GetSite().GetSiteMode(), siteMode);
    EXPECT_EQ(call.GetSite().HasTeacherTier(), tier);
  }
}

TEST_F(GeneralCall, UnknownCommandsFailAndTouchNothing) {
  GeneralProc(nullptr);
  for (const int32_t command : {0, 7, 15, 77, 79, -1, INT32_MIN, INT32_MAX}) {
    Host host("/nowhere", kNetworkedMode);
    SGeneralParams expected = host.block;
    expected.command = command;
    EXPECT_FALSE(host.Call(command));
    EXPECT_EQ(std::memcmp(&host.block, &expected, sizeof expected), 0) << command;
  }
}

TEST_F(GeneralCall, TheProductIsNamedWithoutAStore) {
  using Row = std::tuple<uint8_t, int16_t, const char*>;
  for (const auto& [mode, size, id] : {Row{0, 10, "zep"}, Row{7, 10, "zep_net"}, Row{1, 4, "zep"},
                                       Row{1, 8, "zep_net"}, Row{1, 7, "zep_ne"}}) {
    Host host("", mode);
    host.block.dataPath = nullptr;
    host.block.productIdSize = size;
    EXPECT_TRUE(host.Call(KIV_PRODUCT_ID));
    EXPECT_STREQ(host.block.productId, id);
    EXPECT_EQ(host.block.productGeneration, 3);
    EXPECT_FALSE(host.Call(KIV_COUNT_TEACHERS));
  }
}

TEST_F(GeneralCall, TextsAreCutAndPaddedToExactlyTheirSize) {
  using Row = std::tuple<int32_t, const char*, std::string>;
  for (const auto& [size, text, bytes] :
       {Row{6, "Alice", {"Alice\0", 6}}, Row{5, "Alice", {"Alic\0", 5}},
        Row{10, "Alice", {"Alice\0\0\0\0\0", 10}}, Row{1, "Alice", {"\0", 1}}, Row{0, "Alice", ""},
        Row{INT32_MIN, "Alice", ""}, Row{4, "", {"\0\0\0\0", 4}},
        Row{52, "Fran\xE7ois", "Fran\xE7ois" + std::string(44, '\0')}}) {
    SGeneralParams block;
    std::memset(static_cast<void*>(&block), '#', sizeof block);
    commands::ReturnText(block, block.studentName, size, text);
    const std::string field(block.studentName, sizeof block.studentName);
    EXPECT_EQ(field, bytes + std::string(52 - bytes.size(), '#')) << size;
    EXPECT_EQ(block.studentNameSize, 0x23232323);
  }
}

TEST_F(GeneralCall, ASizeBeyondTheFieldRunsIntoTheNextOnesButNotBeyondTheBlock) {
  SGeneralParams block;
  std::memset(static_cast<void*>(&block), '#', sizeof block);
  commands::ReturnText(block, block.teacherName, 56, "Ms Hill");
  EXPECT_EQ(block.teacherNameSize, 0);
  EXPECT_EQ(block.teacherIndex, 0x23232323);
  commands::ReturnText(block, block.productId, INT16_MAX, "zep");
  EXPECT_STREQ(block.productId, "zep");
  EXPECT_EQ(block.productIdSize, 0);
  EXPECT_EQ(block.gapF6[0], '#');
}

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
    app.OwnOptions()->AutoGameSaving.value = saving;
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
