// Opening, saving and changing games, with a user who answers as the test says.
#include <functional>

#include "store/list/listing.h"
#include "store/place/failure_report.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/site_fixture.h"
#include "tests/support/test_game.h"

namespace kivtest {
namespace {

using namespace kivstore;
using Codes = std::vector<int>;

// With the answers of a test's user.
class TalkingHost : public TestGameHost {
 public:
  using TestGameHost::TestGameHost;
  SKivGameDob* CreateGame() override;

  std::vector<SFileSpec> picks;  // one after the other; none: nothing is picked
  std::string longName = "Mine";
  bool picksShared = false;
  int saveChanges = 0;
  bool openForeign = false;
  bool declines = false;  // the game that was loaded
  Codes errors;
};

class TalkingGame : public SGameDob {
 public:
  explicit TalkingGame(TalkingHost* host) : SGameDob(host), host(*host) {}

  bool PickSaveFile(SFileSpec& spec, SString& longName, bool& shared, const SFileType&,
                    void*) override {
    shared = host.picksShared;
    return Pick(spec, longName);
  }
  bool PickOpenFile(SFileSpec& spec, SString& longName, const SFileType&, void*) override {
    return Pick(spec, longName);
  }
  int AskSaveChanges(void*) override { return host.saveChanges; }
  bool ConfirmForeignGame(void*) override {
    host.events.push_back("foreign?");
    return host.openForeign;
  }
  void ReportError(int16_t code) override {
    host.errors.push_back(code);
    SGameDob::ReportError(code);
  }
  void OnLoaded() override {
    host.events.push_back("loaded");
    host.declines ? host.SetPendingGame(nullptr) : void();
  }
  void OnReplaced() override { host.events.push_back("replaced"); }

 private:
  bool Pick(SFileSpec& spec, SString& pickedName) {
    host.events.push_back("pick");
    if (host.picks.empty()) {
      return false;
    }
    spec = host.picks.front();
    pickedName = host.longName.c_str();
    host.picks.erase(host.picks.begin());
    return true;
  }

  TalkingHost& host;
};

SKivGameDob* TalkingHost::CreateGame() {
  return outOfMemory ? nullptr : new TalkingGame(this);
}

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
class GameFlow : public SiteFixture {
 protected:
  GameFlow() {
    site.SetSiteMode(kSiteLocal);
    host.options->UseSystemIODialogs.value = true;
    host.game.reset(host.CreateGame());
    Game().firstName = "Ann";
    Game().lastName = "Lee";
    Game().longFileName = "Mine";
    Game().lessonDob.learnedNewKeys = true;
    Game().SetDirty(true);
  }

  TalkingGame& Game() { return *static_cast<TalkingGame*>(host.GetGame()); }
  TalkingGame* Pending() { return static_cast<TalkingGame*>(host.pending); }
  bool Load(const std::string& bytes) {
    temp.WriteFile("game.zep", bytes);
    host.errors.clear();
    host.events.clear();
    return Game().LoadFile(Spec("game.zep"), "Picked", nullptr);
  }
  static void LetFilesBeMade() { Platform().files = &CreatingFileServices(); }

  TalkingHost host{site};
  // Puts back what the test changed.
  SPlatformOverride<IFileServices> services{Platform().files, Platform().files};
};

TEST_F(GameFlow, SavingWritesTheFileItsLineInTheIndexAndTheUsersMemory) {
  host.picks = {Spec("ann.zep"), Spec("ann.zep")};
  EXPECT_FALSE(Game().Save(true, nullptr));  // where no file is made
  EXPECT_EQ(host.errors, Codes{1000});
  EXPECT_TRUE(temp.List().empty() && Game().IsDirty() && !Game().fileSpec.IsValid());
  host.events.clear();
  LetFilesBeMade();
  // The second time to the place it has by then: no question, no second line, no longer file.
  for (const bool first : {true, false}) {
    ASSERT_TRUE(Game().Save(first, nullptr));
    EXPECT_EQ(temp.ReadFile("ann.zep"), AnnsGame());
    EXPECT_EQ(temp.ReadFile("index.kiv"), IndexBytes({}, {{"ann.zep", "Mine", "zep"}}));
    EXPECT_EQ(temp.List(), (Lines{"ann.zep", "index.kiv"}));
    EXPECT_FALSE(Game().IsDirty());
    EXPECT_EQ(host.events, first ? (Lines{"pick", "ann.zep as zep"}) : Lines{"ann.zep as zep"});
    host.events.clear();
  }
}

TEST_F(GameFlow, SavingAsksAgainInsteadOfWritingOverASharedGame) {
  LetFilesBeMade();
  const std::string shared = GameOf("", "", true, false).Bytes();
  temp.WriteFile("shared.zep", shared);
  host.picks = {Spec("shared.zep"), Spec("shared.zep"), Spec("ann.zep")};
  EXPECT_TRUE(Game().Save(true, nullptr));
  EXPECT_FALSE(Game().Save(true, nullptr));  // no place is picked
  EXPECT_EQ(host.events, (Lines{"pick", "pick", "pick", "ann.zep as zep", "pick"}));
  EXPECT_EQ(host.errors, (Codes{3, 3}));
  EXPECT_EQ(temp.ReadFile("shared.zep"), shared);
}

// What goes to the shared file is a game of its own: the owner's name and nothing of the progress.
// Only its folder is locked.
TEST_F(GameFlow, SharingSavesADefaultGameUnderTheFoldersLock) {
  site.SetSiteMode(kSiteShared);
  SFileSpec spec = Spec("ann.zep");
  Game().publicFile = true;
  EXPECT_FALSE(Game().SaveFile(spec, "Mine", nullptr));
  EXPECT_TRUE(host.errors.empty());
  LetFilesBeMade();
  Game().publicFile = false;
  EXPECT_TRUE(Game().SaveFile(spec, "Mine", nullptr));
  EXPECT_FALSE(temp.Exists("index.lok"));
  Game().fileSpec.Reset();
  Game().SetDirty(true);
  host.picksShared = true;
  host.picks = {Spec("all.zep"), Spec("more.zep")};
  ASSERT_TRUE(Game().Save(true, nullptr));
  ASSERT_TRUE(Game().SaveSharedCopy(nullptr));
  for (const char* file : {"all.zep", "more.zep"}) {
    EXPECT_EQ(temp.ReadFile(file), GameOf("Ann", "Lee", true, false).Bytes());
  }
  EXPECT_TRUE(temp.Exists("index.lok"));
  EXPECT_TRUE(Game().IsDirty());
  EXPECT_FALSE(Game().fileSpec.IsValid());
}

// Whatever fails: no file is left of a first save, and the record still knows that it is unsaved.
// If the process dies the file may be torn, but a listing has it once.
TEST_F(GameFlow, AFirstSaveIsBrokenOffAnywhere) {
  LetFilesBeMade();
  for (const bool dies : {false, true}) {
    bool struck = true;
    for (int n = 1; struck && n < 100; ++n) {
      Game().fileSpec.Reset();
      Game().SetDirty(true);
      SFileSpec spec = Spec("ann.zep");
      FaultFileServices faults(*Platform().files);
      const SPlatformOverride<IFileServices> installed(Platform().files, &faults);
      dies ? faults.DieAt(n) : faults.FailAt(n, SystemError::kDiskFull);
      const bool saved = Game().SaveFile(spec, "Mine", nullptr);
      struck = faults.HasStruck();
      faults.FailNever();
      EXPECT_TRUE(Game().IsDirty() != saved && Game().fileSpec.IsValid() == saved) << n;
      EXPECT_TRUE(faults.OpenPaths().empty()) << n;
      const bool isThere = temp.Exists("ann.zep");
      EXPECT_TRUE(isThere == saved || (dies && struck)) << n;
      EXPECT_TRUE(!saved || temp.ReadFile("ann.zep") == AnnsGame()) << n;
      SFileList files;
      LoadFileListAt(site, files, SpecOn(temp.Path()), "zep", true);
      EXPECT_EQ(files.GetSize(), isThere ? 1 : 0) << n;
      for (const std::string& file : temp.List()) {
        temp.Remove(file);
      }
    }
    EXPECT_FALSE(struck);
  }
}

TEST_F(GameFlow, OpeningDecidesWhoseTheGameIs) {
  const Lines ours{"game.zep as zep", "loaded"}, copied{" as zep", "loaded"};
  const Lines refused{"foreign?"}, agreed{"foreign?", " as zep", "loaded"};
  const struct {
    const char *first, *last;
    bool shared, agrees;
    Lines events;
  } games[] = {{"ANN", "lee", false, false, ours},  {"", "Ann Lee", false, false, ours},
               {"", "", false, false, copied},      {"Bob", "Ray", false, false, refused},
               {"Bob", "Ray", false, true, agreed}, {"Bob", "Ray", true, false, copied},
               {"Ann", "Lee", true, false, copied}};
  for (const auto& c : games) {
    SCOPED_TRACE(&c - games);
    const bool opens = c.events != refused;
    host.SetPendingGame(nullptr);
    host.openForeign = c.agrees;
    Game().SetDirty(true);
    EXPECT_EQ(Load(GameOf(c.first, c.last, c.shared, true).Bytes()), opens);
    EXPECT_EQ(host.events, c.events);
    EXPECT_TRUE(host.errors.empty());
    EXPECT_EQ(Game().IsDirty(), !opens);
    ASSERT_EQ(Pending() != nullptr, opens);
    if (opens) {
      EXPECT_EQ(Pending()->fileSpec.IsValid(), c.events == ours);
      EXPECT_EQ(Pending()->IsDirty(), c.events != ours);
      EXPECT_EQ(Pending()->GetFullNameUpper(), "ANN LEE");
      EXPECT_EQ(Pending()->longFileName, "Picked");
      EXPECT_TRUE(Pending()->lessonDob.learnedNewKeys && !Pending()->publicFile);
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
    EXPECT_EQ(host.errors, Codes{code}) << bytes.size();
  }
  host.outOfMemory = true;
  EXPECT_FALSE(Load(AnnsGame()));
  EXPECT_FALSE(Game().LoadFile(Spec("missing.zep"), "", nullptr));
  EXPECT_EQ(host.errors, (Codes{1, 1001}));
  EXPECT_TRUE(Game().IsDirty());
  EXPECT_EQ(Pending(), nullptr);
  std::string texts;
  for (const int16_t code : std::vector<int16_t>{0, 1, 2, 3, 1001, 4}) {
    site.ClearFailure();
    Game().ReportError(code);
    texts += Said() + '\n';
  }
  EXPECT_EQ(texts,
            "Unable to open the file you selected because the file is not a valid zep game file.\n"
            "There is not enough memory to open that file.\n"
            "This game was not saved under your name. Do you want to open it anyway?\n"
            "You cannot save over that file because it is a shared file.\n"
            "Unable to open the file you selected.\n\n");
}

TEST_F(GameFlow, OpeningAsksForThePlaceOnceTheOldGameMayGo) {
  temp.WriteFile("game.zep", AnnsGame());
  temp.WriteFile("index.kiv", IndexBytes({}, {{"game.zep", "Monday", "zep"}}));
  host.longName = "";
  host.picks = {Spec("game.zep")};
  host.saveChanges = 2;
  EXPECT_FALSE(Game().Open(nullptr));
  host.saveChanges = 4;
  EXPECT_TRUE(Game().Open(nullptr));
  EXPECT_EQ(Pending()->longFileName, "Monday");  // from the index
  EXPECT_FALSE(Game().Open(nullptr));
}

TEST_F(GameFlow, AnUnsavedGameIsClosedAsTheAnswerSays) {
  LetFilesBeMade();
  for (const auto& [answer, closes] :
       {std::pair(-1, false), {0, true}, {1, true}, {2, false}, {3, false}, {4, true}, {5, true}}) {
    host.saveChanges = answer;
    EXPECT_EQ(Game().ConfirmClose(nullptr), closes) << answer;
  }
  host.saveChanges = 3;
  host.picks = {Spec("ann.zep")};
  EXPECT_TRUE(Game().ConfirmClose(nullptr));
  EXPECT_FALSE(Game().IsDirty());
  host.saveChanges = -1;
  EXPECT_TRUE(Game().ConfirmClose(nullptr));
}

STeacherOptionsGameDob& OptionsOf(const SKivGameDob& game) {
  return *static_cast<STeacherOptionsGameDob*>(game.GetOptions());
}

TEST_F(GameFlow, ANewGameStartsWithTheOptionsOfItsKind) {
  host.options->GetGameOptions()->Speed.value = 20;
  OptionsOf(Game()).Speed.value = 30;
  STeacherOptionsGameDob chosen;
  chosen.Speed.value = 40;
  const std::pair<int16_t, std::function<bool()>> starts[] = {
      {20, [&] { return Game().NewGame(nullptr); }},
      {40, [&] { return Game().NewGameWithOptions(chosen, nullptr); }},
      {30, [&] { return Game().NewGameKeepingOptions(nullptr); }}};
  for (const auto& [speed, start] : starts) {
    host.SetPendingGame(nullptr);
    host.events.clear();
    host.saveChanges = 2;
    EXPECT_FALSE(start());
    host.saveChanges = 0;
    host.outOfMemory = true;
    EXPECT_FALSE(start());
    EXPECT_EQ(Pending(), nullptr);
    host.outOfMemory = false;
    ASSERT_TRUE(start());
    EXPECT_EQ(OptionsOf(*Pending()).Speed.value, speed);
    EXPECT_EQ(Pending()->GetFullName(), "Ann Lee");
    EXPECT_FALSE(Pending()->IsDirty());
    EXPECT_EQ(host.events, speed == 20 ? Lines{"replaced"} : Lines{});
  }
  host.events.clear();
  Game().OnActivated();
  EXPECT_EQ(host.events, Lines{"options"});
}

TEST_F(GameFlow, TheGameThatIsReplacedMayBeThePendingOne) {
  ASSERT_TRUE(Game().NewDefaultGame(nullptr));
  ASSERT_TRUE(Pending()->NewDefaultGame(nullptr));
  temp.WriteFile("game.zep", AnnsGame());
  EXPECT_TRUE(Pending()->LoadFile(Spec("game.zep"), "Second", nullptr));
  EXPECT_EQ(Pending()->longFileName, "Second");
  EXPECT_EQ(host.events, (Lines{"replaced", "game.zep as zep"}));
  host.declines = true;
  EXPECT_TRUE(Load(AnnsGame()));
  EXPECT_EQ(Pending(), &Game()) << "a change is asked for all the same";
}

TEST_F(GameFlow, GamesGoWhereTheOptionsSay) {
  StoreBuilder store(temp.Path(), Kind::kLocal);
  store.AddStudent(store.AddClass("", "Default", "Default"), "Ann", "Lee", "AnnLee");
  store.Finish();
  host.user.studentEntry = Entry("AnnLee", "Ann", "Lee");
  SFileSpec spec;
  Game().DefaultGameFolder(spec);
  EXPECT_EQ(spec.GetPath(), Spec("").GetPath());
  host.options->UseSystemIODialogs.value = false;
  Game().DefaultGameFolder(spec);
  EXPECT_EQ(PlaceAndKind(spec), "folder Classes.zep/Default/Students/AnnLee/");
  SGameDob().DefaultGameFolder(spec);
  EXPECT_FALSE(spec.IsValid());
}

}  // namespace
}  // namespace kivtest
