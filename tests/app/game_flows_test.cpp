// Opening, saving and changing games, with a user who answers as the test says.
#include <functional>
#include <new>

#include "foundation/application.h"
#include "game/game_dob.h"
#include "platform/platform.h"
#include "records/tutor_options_dob.h"
#include "store/place/failure_report.h"
#include "tests/app/call_fixture.h"
#include "tests/support/fault_file_services.h"

namespace kivtest {
namespace {

using namespace kivstore;
using Codes = std::vector<int>;
using Strings = std::vector<std::string>;

// The answers of a test's user, and what happened.
struct User {
  std::vector<SFileSpec> picks;  // one after the other; none: nothing is picked
  std::string longName = "Mine";
  bool shared = false;
  int saveChanges = 0;
  bool openForeign = false;
  bool outOfMemory = false;
  Codes errors;
  Strings messages;
  Strings events;

  bool Pick(SFileSpec& spec, SString& pickedName) {
    events.push_back("pick");
    if (picks.empty()) {
      return false;
    }
    spec = picks.front();
    pickedName = longName.c_str();
    picks.erase(picks.begin());
    return true;
  }
};

User gUser;

class TalkingGame : public SGameDob {
 public:
  bool PickSaveFile(SFileSpec& spec, SString& longName, bool& shared, const SFileType&,
                    void*) override {
    shared = gUser.shared;
    return gUser.Pick(spec, longName);
  }
  bool PickOpenFile(SFileSpec& spec, SString& longName, const SFileType&, void*) override {
    return gUser.Pick(spec, longName);
  }
  int AskSaveChanges(void*) override { return gUser.saveChanges; }
  bool ConfirmForeignGame(void*) override {
    gUser.events.push_back("foreign?");
    return gUser.openForeign;
  }
  void ReportError(int16_t code) override {
    gUser.errors.push_back(code);
    SGameDob::ReportError(code);
  }
  void OnLoaded() override { gUser.events.push_back("loaded"); }
  void OnReplaced() override { gUser.events.push_back("replaced"); }
};

class TalkingApplication : public SZEPApp {
 public:
  SKivGameDob* CreateGame() override {
    return gUser.outOfMemory ? nullptr : new (std::nothrow) TalkingGame;
  }
  void OptionsChanged() override { gUser.events.push_back("options"); }
};

GameBytes GameOf(const char* first, const char* last, bool shared, bool progress) {
  GameBytes bytes;
  bytes.firstName = first;
  bytes.lastName = last;
  bytes.longFileName = progress ? "Mine" : "";
  bytes.publicFile = shared;
  bytes.learnedNewKeys = progress;
  return bytes;
}

std::string AnnsGame() {
  return GameOf("Ann", "Lee", false, true).Bytes();
}

// A local site whose games go to the test's folder, and Ann Lee's unsaved game as the current one.
// Files are made only after LetFilesBeMade.
class GameFlow : public ProcessState {
 protected:
  GameFlow() {
    RegisterFileType(kFileTypeGame, "Game File|Game Files|zep|Game|1");
    gFileVersion = kDataVersion;
    gSiteMode = kSiteLocal;
    gDropMessage = [](const SString& text) { gUser.messages.push_back(text.GetText()); };
    gUser = User();
    gApp = &application;
    application.SetProperty("Data", folder.Path().c_str());
    application.options = application.CreateOptions();
    application.options->UseSystemIODialogs.value = true;
    application.game = application.CreateGame();
    Game().firstName = "Ann";
    Game().lastName = "Lee";
    Game().longFileName = "Mine";
    Game().lessonDob.learnedNewKeys = true;
    Game().SetDirty(true);
  }
  ~GameFlow() override {
    gApp = nullptr;
    gDropMessage = [](const SString&) {};
  }

  TalkingGame& Game() { return *static_cast<TalkingGame*>(application.game); }
  TalkingGame* Pending() { return static_cast<TalkingGame*>(application.pendingGame); }
  bool Load(const std::string& bytes) {
    folder.WriteFile("game.zep", bytes);
    gUser.errors.clear();
    gUser.events.clear();
    return Game().LoadFile(Spec("game.zep"), "Picked", nullptr);
  }
  SFileSpec Spec(const std::string& name) { return SFileSpec(folder.Path(name).c_str()); }
  static void LetFilesBeMade() { Platform().files = &CreatingFileServices(); }

  TempFolder folder;
  TalkingApplication application;
  // Puts back what the test changed.
  SPlatformOverride<IFileServices> services{Platform().files, Platform().files};
};

TEST_F(GameFlow, NoFileIsMadeWithServicesThatMakeNothing) {
  gUser.picks = {Spec("ann.zep")};
  EXPECT_FALSE(Game().Save(true, nullptr));
  EXPECT_EQ(gUser.errors, Codes{1000});
  EXPECT_TRUE(folder.List().empty());
  EXPECT_TRUE(Game().IsDirty());
  EXPECT_FALSE(Game().fileSpec.IsValid());
}

TEST_F(GameFlow, SavingWritesTheFileItsLineInTheIndexAndTheUsersMemory) {
  LetFilesBeMade();
  const std::string last = "Classes.zep/Default/Students/AnnLee/last.kiv";
  application.currentUser.valid = true;
  application.currentUser.studentEntry = SLoginNameObj("Ann", "Lee", "AnnLee");
  folder.WriteFile(last, std::string(4, '\0'));
  const std::string index("\0\0\0\0\0\0\0\1ann.zep\0Mine\0zep", 25);
  gUser.picks = {Spec("ann.zep")};
  // The second time to the place it has by then: no question, no second line, no longer file.
  for (const bool first : {true, false}) {
    ASSERT_TRUE(Game().Save(first, nullptr));
    EXPECT_EQ(folder.ReadFile("ann.zep"), AnnsGame());
    EXPECT_EQ(folder.ReadFile("index.kiv"), index);
    EXPECT_EQ(folder.ReadFile(last), std::string("\0\0\0\1ann.zep", 12));
    EXPECT_EQ(folder.List(), (Strings{"Classes.zep", "ann.zep", "index.kiv"}));
    EXPECT_FALSE(Game().IsDirty());
    EXPECT_EQ(gUser.events, Strings{"pick"});
  }
}

TEST_F(GameFlow, SavingAsksAgainInsteadOfWritingOverASharedGame) {
  LetFilesBeMade();
  const std::string shared = GameOf("", "", true, false).Bytes();
  folder.WriteFile("shared.zep", shared);
  gUser.picks = {Spec("shared.zep"), Spec("shared.zep"), Spec("ann.zep")};
  EXPECT_TRUE(Game().Save(true, nullptr));
  EXPECT_FALSE(Game().Save(true, nullptr));  // no place is picked
  EXPECT_EQ(gUser.events, Strings(4, "pick"));
  EXPECT_EQ(gUser.errors, (Codes{3, 3}));
  EXPECT_EQ(folder.ReadFile("shared.zep"), shared);
}

// What goes to the shared file is a game of its own: the owner's name and nothing of the progress.
TEST_F(GameFlow, SharingSavesADefaultGame) {
  LetFilesBeMade();
  const std::string expected = GameOf("Ann", "Lee", true, false).Bytes();
  gUser.shared = true;
  gUser.picks = {Spec("all.zep"), Spec("more.zep")};
  ASSERT_TRUE(Game().Save(true, nullptr));
  ASSERT_TRUE(Game().SaveSharedCopy(nullptr));
  EXPECT_EQ(folder.ReadFile("all.zep"), expected);
  EXPECT_EQ(folder.ReadFile("more.zep"), expected);
  EXPECT_TRUE(Game().IsDirty());
  EXPECT_FALSE(Game().fileSpec.IsValid());
}

TEST_F(GameFlow, OnlyTheFolderOfASharedGameIsLocked) {
  gSiteMode = kSiteShared;
  Game().publicFile = true;
  SFileSpec spec = Spec("ann.zep");
  EXPECT_FALSE(Game().SaveFile(spec, "Mine", nullptr));
  EXPECT_TRUE(gUser.errors.empty());
  LetFilesBeMade();
  for (const bool shared : {false, true}) {
    Game().publicFile = shared;
    EXPECT_TRUE(Game().SaveFile(spec, "Mine", nullptr));
    EXPECT_EQ(folder.Exists("index.lok"), shared);
  }
}

// Whatever fails: no file is left of a first save, and the record still knows that it is unsaved.
TEST_F(GameFlow, AFirstSaveThatFailedLeavesNothing) {
  LetFilesBeMade();
  FaultFileServices faults(*Platform().files);
  Platform().files = &faults;
  bool struck = true;
  for (int n = 1; struck; ++n) {
    ASSERT_LT(n, 100);
    Game().fileSpec.Reset();
    Game().SetDirty(true);
    SFileSpec spec = Spec("ann.zep");
    faults.FailAt(n, SystemError::kDiskFull);
    const bool saved = Game().SaveFile(spec, "Mine", nullptr);
    struck = faults.HasStruck();
    faults.FailNever();
    EXPECT_EQ(Game().IsDirty(), !saved) << n;
    EXPECT_EQ(Game().fileSpec.IsValid(), saved) << n;
    EXPECT_TRUE(faults.OpenPaths().empty()) << n;
    ASSERT_EQ(folder.Exists("ann.zep"), saved) << n;
    EXPECT_TRUE(!saved || folder.ReadFile("ann.zep") == AnnsGame()) << n;
    for (const std::string& file : folder.List()) {
      folder.Remove(file);
    }
  }
}

TEST_F(GameFlow, OpeningDecidesWhoseTheGameIs) {
  const struct {
    const char *first, *last;
    bool shared, agrees, opens;
    bool ours;  // it lies in the file that was opened
    Strings events;
  } games[] = {{"ANN", "lee", false, false, true, true, {"loaded"}},
               {"", "Ann Lee", false, false, true, true, {"loaded"}},
               {"", "", false, false, true, false, {"loaded"}},
               {"Bob", "Ray", false, false, false, false, {"foreign?"}},
               {"Bob", "Ray", false, true, true, false, {"foreign?", "loaded"}},
               {"Bob", "Ray", true, false, true, false, {"loaded"}},
               {"Ann", "Lee", true, false, true, false, {"loaded"}}};
  for (const auto& c : games) {
    SCOPED_TRACE(&c - games);
    application.SetPendingGame(nullptr);
    gUser.openForeign = c.agrees;
    Game().SetDirty(true);
    EXPECT_EQ(Load(GameOf(c.first, c.last, c.shared, true).Bytes()), c.opens);
    EXPECT_EQ(gUser.events, c.events);
    EXPECT_TRUE(gUser.errors.empty());
    EXPECT_EQ(Game().IsDirty(), !c.opens);
    ASSERT_EQ(Pending() != nullptr, c.opens);
    if (c.opens) {
      EXPECT_EQ(Pending()->fileSpec.IsValid(), c.ours);
      EXPECT_EQ(Pending()->IsDirty(), !c.ours);
      EXPECT_EQ(Pending()->GetFullNameUpper(), "ANN LEE");
      EXPECT_EQ(Pending()->longFileName, "Picked");
      EXPECT_FALSE(Pending()->publicFile);
      EXPECT_TRUE(Pending()->lessonDob.learnedNewKeys);
    }
  }
}

TEST_F(GameFlow, OpeningReportsWhyItFailed) {
  std::string newer = AnnsGame();
  newer[7] = 1;
  for (const auto& [bytes, code] : {std::pair("BIN\1" + AnnsGame().substr(4), 0),
                                    {newer, 0},
                                    {"", 0},
                                    {AnnsGame().substr(0, AnnsGame().size() - 1), 1004}}) {
    EXPECT_FALSE(Load(bytes)) << bytes.size();
    EXPECT_EQ(gUser.errors, Codes{code}) << bytes.size();
  }
  gUser.outOfMemory = true;
  EXPECT_FALSE(Load(AnnsGame()));
  EXPECT_FALSE(Game().LoadFile(Spec("missing.zep"), "", nullptr));
  EXPECT_EQ(gUser.errors, (Codes{1, 1001}));
  EXPECT_TRUE(Game().IsDirty());
  EXPECT_EQ(Pending(), nullptr);
}

TEST_F(GameFlow, OpeningAsksForThePlaceOnceTheOldGameMayGo) {
  folder.WriteFile("game.zep", AnnsGame());
  folder.WriteFile("index.kiv", IndexBytes({}, {{"game.zep", "Monday", "zep"}}));
  gUser.longName = "";
  gUser.picks = {Spec("game.zep")};
  gUser.saveChanges = 2;
  EXPECT_FALSE(Game().Open(nullptr));
  gUser.saveChanges = 4;
  EXPECT_TRUE(Game().Open(nullptr));
  EXPECT_EQ(Pending()->longFileName, "Monday");  // from the index
  EXPECT_FALSE(Game().Open(nullptr));
}

TEST_F(GameFlow, AnUnsavedGameIsClosedAsTheAnswerSays) {
  LetFilesBeMade();
  for (const auto& [answer, closes] :
       {std::pair(-1, false), {0, true}, {1, true}, {2, false}, {3, false}, {4, true}, {5, true}}) {
    gUser.saveChanges = answer;
    EXPECT_EQ(Game().ConfirmClose(nullptr), closes) << answer;
  }
  gUser.saveChanges = 3;
  gUser.picks = {Spec("ann.zep")};
  EXPECT_TRUE(Game().ConfirmClose(nullptr));
  EXPECT_FALSE(Game().IsDirty());
  gUser.saveChanges = -1;
  EXPECT_TRUE(Game().ConfirmClose(nullptr));
}

STeacherOptionsGameDob& OptionsOf(const SKivGameDob& game) {
  return *static_cast<STeacherOptionsGameDob*>(game.GetOptions());
}

TEST_F(GameFlow, ANewGameStartsWithTheOptionsOfItsKind) {
  static_cast<STeacherOptionsDob*>(application.options)->GetGameOptions()->Speed.value = 20;
  OptionsOf(Game()).Speed.value = 30;
  STeacherOptionsGameDob chosen;
  chosen.Speed.value = 40;
  const struct {
    std::function<bool()> start;
    int16_t speed;
    Strings events;
  } starts[] = {{[&] { return Game().NewGame(nullptr); }, 20, {"replaced"}},
                {[&] { return Game().NewGameWithOptions(chosen, nullptr); }, 40, {}},
                {[&] { return Game().NewGameKeepingOptions(nullptr); }, 30, {}}};
  for (const auto& c : starts) {
    application.SetPendingGame(nullptr);
    gUser = User();
    gUser.saveChanges = 2;
    EXPECT_FALSE(c.start());
    gUser = User();
    gUser.outOfMemory = true;
    EXPECT_FALSE(c.start());
    EXPECT_EQ(Pending(), nullptr);
    gUser = User();
    ASSERT_TRUE(c.start());
    EXPECT_EQ(OptionsOf(*Pending()).Speed.value, c.speed);
    EXPECT_EQ(Pending()->GetFullName(), "Ann Lee");
    EXPECT_FALSE(Pending()->IsDirty());
    EXPECT_EQ(gUser.events, c.events);
  }
  application.CommitPendingGame();
  EXPECT_EQ(gUser.events, Strings{"options"});
}

TEST_F(GameFlow, TheGameThatIsReplacedMayBeThePendingOne) {
  ASSERT_TRUE(Game().NewDefaultGame(nullptr));
  ASSERT_TRUE(Pending()->NewDefaultGame(nullptr));
  folder.WriteFile("game.zep", AnnsGame());
  EXPECT_TRUE(Pending()->LoadFile(Spec("game.zep"), "Second", nullptr));
  EXPECT_EQ(Pending()->longFileName, "Second");
  EXPECT_EQ(gUser.events, Strings{"replaced"});
}

TEST_F(GameFlow, GamesGoWhereTheOptionsSay) {
  folder.MakeFolder("Classes.zep/Default/Students/AnnLee");
  application.currentUser.studentEntry = SLoginNameObj("Ann", "Lee", "AnnLee");
  SFileSpec spec;
  Game().DefaultGameFolder(spec);
  EXPECT_TRUE(spec.IsExistingFolder());
  EXPECT_EQ(spec.GetPath(), Spec("").GetPath());
  application.options->UseSystemIODialogs.value = false;
  Game().DefaultGameFolder(spec);
  EXPECT_TRUE(spec.IsExistingFolder());
  EXPECT_EQ(spec.GetFileName(), "AnnLee");
}

TEST_F(GameFlow, EachErrorHasItsText) {
  for (const auto& [code, texts] : std::vector<std::pair<int16_t, Strings>>{
           {0,
            {"Unable to open the file you selected because the file is not a valid zep game "
             "file."}},
           {1, {"There is not enough memory to open that file."}},
           {2, {"This game was not saved under your name. Do you want to open it anyway?"}},
           {3, {"You cannot save over that file because it is a shared file."}},
           {4, {}}}) {
    gUser.messages.clear();
    Game().ReportError(code);
    EXPECT_EQ(gUser.messages, texts) << code;
  }
}

}  // namespace
}  // namespace kivtest
