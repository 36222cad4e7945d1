// Opening and saving games.
#include "tests/app/game_flow_fixture.h"
#include "tests/support/fault_file_services.h"

namespace kivtest {
namespace {

using namespace kivstore;
using Codes = std::vector<int>;
using Strings = std::vector<std::string>;

constexpr char kIndexOfMine[] = "\0\0\0\0\0\0\0\1ann.zep\0Mine\0zep";

std::string IndexOfMine() {
  return std::string(kIndexOfMine, sizeof kIndexOfMine);
}

GameBytes AnnsGame() {
  GameBytes bytes;
  bytes.firstName = "Ann";
  bytes.lastName = "Lee";
  bytes.longFileName = "Mine";
  bytes.learnedNewKeys = true;
  return bytes;
}

class SavingAGame : public GameFlow {
 protected:
  SavingAGame() {
    Game().lessonDob.learnedNewKeys = true;
    Game().longFileName = "Mine";
    Game().SetDirty(true);
    PickForSaving("ann.zep", "Mine");
  }
};

TEST_F(SavingAGame, MakesNothingWithServicesThatMakeNothing) {
  EXPECT_FALSE(Game().Save(true, nullptr));
  EXPECT_EQ(dialogue.errors, Codes{1000});
  EXPECT_TRUE(folder.List().empty());
  EXPECT_TRUE(Game().IsDirty());
  EXPECT_FALSE(Game().fileSpec.IsValid());
}

TEST_F(SavingAGame, WritesTheFileAndItsLineInTheIndex) {
  LetFilesBeMade();
  ASSERT_TRUE(Game().Save(true, nullptr));
  EXPECT_EQ(folder.ReadFile("ann.zep"), AnnsGame().Bytes());
  EXPECT_EQ(folder.ReadFile("index.kiv"), IndexOfMine());
  EXPECT_EQ(folder.List(), (Strings{"ann.zep", "index.kiv"}));
  EXPECT_FALSE(Game().IsDirty());
  EXPECT_EQ(Game().fileSpec.GetFileName(), "ann.zep");

  // Again, to the place it has by now: no question, no second line, no longer file.
  dialogue.events.clear();
  Game().lessonDob.numLinesPassed = 7;
  ASSERT_TRUE(Game().Save(false, nullptr));
  EXPECT_TRUE(dialogue.events.empty());
  EXPECT_EQ(folder.ReadFile("ann.zep").size(), AnnsGame().Bytes().size());
  EXPECT_EQ(folder.ReadFile("index.kiv"), IndexOfMine());
}

TEST_F(SavingAGame, StopsWhenTheUserPicksNoPlace) {
  LetFilesBeMade();
  dialogue.pickSave = [](auto&, auto&, auto&) { return false; };
  EXPECT_FALSE(Game().Save(false, nullptr));
  EXPECT_EQ(dialogue.events, Strings{"pick zep"});
  EXPECT_TRUE(dialogue.errors.empty());
}

TEST_F(SavingAGame, AsksAgainInsteadOfWritingOverASharedGame) {
  LetFilesBeMade();
  GameBytes shared;
  shared.publicFile = true;
  folder.WriteFile("shared.zep", shared.Bytes());
  int asked = 0;
  dialogue.pickSave = [&](auto& spec, auto&, auto&) {
    spec = Spec(++asked < 3 ? "shared.zep" : "ann.zep");
    return true;
  };
  EXPECT_TRUE(Game().Save(true, nullptr));
  EXPECT_EQ(asked, 3);
  EXPECT_EQ(dialogue.errors, (Codes{3, 3}));
  EXPECT_EQ(folder.ReadFile("shared.zep"), shared.Bytes());
}

// What goes to the shared file is a game of its own: the owner's name and nothing of the progress.
TEST_F(SavingAGame, SharesADefaultGame) {
  LetFilesBeMade();
  GameBytes expected;
  expected.firstName = "Ann";
  expected.lastName = "Lee";
  expected.publicFile = true;
  PickForSaving("all.zep", "For all", true);
  ASSERT_TRUE(Game().Save(true, nullptr));
  EXPECT_EQ(folder.ReadFile("all.zep"), expected.Bytes());
  EXPECT_TRUE(Game().IsDirty());
  EXPECT_FALSE(Game().fileSpec.IsValid());

  PickForSaving("more.zep", "For all too", true);
  ASSERT_TRUE(Game().SaveSharedCopy(nullptr));
  EXPECT_EQ(folder.ReadFile("more.zep"), expected.Bytes());
  application.outOfMemory = true;
  EXPECT_FALSE(Game().SaveSharedCopy(nullptr));
}

TEST_F(SavingAGame, LocksTheFolderOfASharedGameOnly) {
  gSiteMode = kSiteShared;
  Game().publicFile = true;
  SFileSpec spec = Spec("ann.zep");
  EXPECT_FALSE(Game().SaveFile(spec, "Mine", nullptr));
  EXPECT_TRUE(dialogue.errors.empty());

  LetFilesBeMade();
  EXPECT_TRUE(Game().SaveFile(spec, "Mine", nullptr));
  EXPECT_TRUE(folder.Exists("index.lok"));
  folder.Remove("index.lok");
  Game().publicFile = false;
  EXPECT_TRUE(Game().SaveFile(spec, "Mine", nullptr));
  EXPECT_FALSE(folder.Exists("index.lok"));
}

TEST_F(SavingAGame, RemembersTheFileOfTheCurrentUser) {
  LetFilesBeMade();
  application.currentUser.valid = true;
  application.currentUser.studentEntry = SLoginNameObj("Ann", "Lee", "AnnLee");
  folder.MakeFolder("Classes.zep/Default/Students/AnnLee");
  folder.WriteFile("Classes.zep/Default/Students/AnnLee/last.kiv", std::string(4, '\0'));
  ASSERT_TRUE(Game().Save(true, nullptr));
  EXPECT_EQ(folder.ReadFile("Classes.zep/Default/Students/AnnLee/last.kiv"),
            std::string("\0\0\0\1ann.zep", 12));
}

// Whatever fails: no file is left of a first save, and the record still knows that it is unsaved.
TEST_F(SavingAGame, LeavesNothingOfAFirstSaveThatFailed) {
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
    EXPECT_EQ(folder.Exists("ann.zep"), saved) << n;
    EXPECT_TRUE(faults.OpenPaths().empty()) << n;
    if (saved) {
      EXPECT_EQ(folder.ReadFile("ann.zep"), AnnsGame().Bytes()) << n;
      folder.Remove("ann.zep");
    }
    if (folder.Exists("index.kiv")) {
      folder.Remove("index.kiv");
    }
  }
}

class OpeningAGame : public GameFlow {
 protected:
  bool Load(const std::string& bytes, const char* longName = "Picked") {
    folder.WriteFile("game.zep", bytes);
    dialogue.errors.clear();
    dialogue.events.clear();
    return Game().LoadFile(Spec("game.zep"), longName, nullptr);
  }
};

TEST_F(OpeningAGame, DecidesWhoseItIs) {
  struct {
    const char* what;
    const char *first, *last;
    bool shared, agrees, opens;
    bool ours;  // it lies in the file that was opened
    Strings events;
  } const kGames[] = {
      {"the owner's", "Ann", "Lee", false, false, true, true, {"loaded"}},
      {"in other letters", "ANN", "lee", false, false, true, true, {"loaded"}},
      {"one name", "", "Ann Lee", false, false, true, true, {"loaded"}},
      {"nobody's", "", "", false, false, true, false, {"loaded"}},
      {"refused", "Bob", "Ray", false, false, false, false, {"foreign?"}},
      {"agreed to", "Bob", "Ray", false, true, true, false, {"foreign?", "loaded"}},
      {"shared", "Bob", "Ray", true, false, true, false, {"loaded"}},
      {"shared by the owner", "Ann", "Lee", true, false, true, false, {"loaded"}},
  };
  for (const auto& c : kGames) {
    application.SetPendingGame(nullptr);
    dialogue.openForeign = c.agrees;
    GameBytes bytes = AnnsGame();
    bytes.firstName = c.first;
    bytes.lastName = c.last;
    bytes.publicFile = c.shared;
    Game().SetDirty(true);
    EXPECT_EQ(Load(bytes.Bytes()), c.opens) << c.what;
    EXPECT_EQ(dialogue.events, c.events) << c.what;
    EXPECT_TRUE(dialogue.errors.empty()) << c.what;
    EXPECT_EQ(Game().IsDirty(), !c.opens) << c.what;
    ASSERT_EQ(Pending() != nullptr, c.opens) << c.what;
    if (!c.opens) {
      continue;
    }
    EXPECT_EQ(Pending()->fileSpec.IsValid(), c.ours) << c.what;
    EXPECT_EQ(Pending()->IsDirty(), !c.ours) << c.what;
    EXPECT_EQ(Pending()->GetFullNameUpper(), "ANN LEE") << c.what;
    EXPECT_EQ(Pending()->longFileName, "Picked") << c.what;
    EXPECT_FALSE(Pending()->publicFile) << c.what;
    EXPECT_TRUE(Pending()->lessonDob.learnedNewKeys) << c.what;
  }
}

TEST_F(OpeningAGame, FindsTheLongNameInTheIndex) {
  folder.WriteFile("index.kiv", IndexBytes({}, {{"game.zep", "Monday", "zep"}}));
  ASSERT_TRUE(Load(AnnsGame().Bytes(), ""));
  EXPECT_EQ(Pending()->longFileName, "Monday");
}

TEST_F(OpeningAGame, ReportsWhyItFailed) {
  const std::string good = AnnsGame().Bytes();
  GameBytes newer = AnnsGame();
  newer.version += 1;
  struct {
    const char* what;
    std::string bytes;
    Codes errors;
  } const kFiles[] = {{"another kind of file", "BIN\1" + good.substr(4), {0}},
                      {"another version", newer.Bytes(), {0}},
                      {"empty", "", {0}},
                      {"torn", good.substr(0, good.size() - 1), {1004}}};
  Game().SetDirty(true);
  for (const auto& file : kFiles) {
    EXPECT_FALSE(Load(file.bytes)) << file.what;
    EXPECT_EQ(dialogue.errors, file.errors) << file.what;
  }
  application.outOfMemory = true;
  EXPECT_FALSE(Load(good));
  EXPECT_EQ(dialogue.errors, Codes{1});
  dialogue.errors.clear();
  EXPECT_FALSE(Game().LoadFile(Spec("missing.zep"), "", nullptr));
  EXPECT_EQ(dialogue.errors, Codes{1001});
  EXPECT_TRUE(Game().IsDirty());
  EXPECT_EQ(Pending(), nullptr);
}

TEST_F(OpeningAGame, AsksForThePlaceOnceTheOldGameMayGo) {
  folder.WriteFile("game.zep", AnnsGame().Bytes());
  dialogue.pickOpen = [&](auto& spec, auto& longName) {
    EXPECT_TRUE(spec.IsExistingFolder());
    spec = Spec("game.zep");
    longName = "Picked";
    return true;
  };
  Game().SetDirty(true);
  dialogue.saveChanges = 2;
  EXPECT_FALSE(Game().Open(nullptr));
  dialogue.saveChanges = 4;
  EXPECT_TRUE(Game().Open(nullptr));
  EXPECT_EQ(Pending()->longFileName, "Picked");
  dialogue.pickOpen = [](auto&, auto&) { return false; };
  EXPECT_FALSE(Game().Open(nullptr));
}

TEST_F(OpeningAGame, MayComeFromTheGameThatIsPending) {
  ASSERT_TRUE(Load(AnnsGame().Bytes()));
  const SString longName("Second");
  EXPECT_TRUE(Pending()->LoadFile(Spec("game.zep"), longName, nullptr));
  EXPECT_EQ(Pending()->longFileName, "Second");
}

}  // namespace
}  // namespace kivtest
