// Which game comes next, and whether the one before may go.
#include "tests/app/game_flow_fixture.h"
#include "tests/support/store_builder.h"

namespace kivtest {
namespace {

using namespace kivstore;
using Strings = std::vector<std::string>;

TEST_F(GameFlow, ClosesADirtyGameAsTheAnswerSays) {
  struct {
    int answer;
    bool closes;
  } const kAnswers[] = {{-1, false}, {0, true}, {1, true}, {2, false},
                        {3, false},  {4, true}, {5, true}, {-2, true}};
  for (const auto& c : kAnswers) {
    dialogue.saveChanges = c.answer;
    Game().SetDirty(false);
    EXPECT_TRUE(Game().ConfirmClose(nullptr)) << c.answer;
    Game().SetDirty(true);
    EXPECT_EQ(Game().ConfirmClose(nullptr), c.closes) << c.answer;
  }
  LetFilesBeMade();
  PickForSaving("ann.zep", "Mine");
  dialogue.saveChanges = 3;
  EXPECT_TRUE(Game().ConfirmClose(nullptr));
  EXPECT_FALSE(Game().IsDirty());
}

STeacherOptionsGameDob& OptionsOf(const SKivGameDob& game) {
  return *static_cast<STeacherOptionsGameDob*>(game.GetOptions());
}

TEST_F(GameFlow, StartsANewGameWithTheOptionsOfItsKind) {
  static_cast<STeacherOptionsDob*>(application.options)->GetGameOptions()->Speed.value = 20;
  OptionsOf(Game()).Speed.value = 30;
  STeacherOptionsGameDob chosen;
  chosen.Speed.value = 40;
  struct {
    std::function<bool()> start;
    int16_t speed;
    Strings events;
  } const kStarts[] = {
      {[&] { return Game().NewGame(nullptr); }, 20, {"replaced"}},
      {[&] { return Game().NewDefaultGame(nullptr); }, 20, {"replaced"}},
      {[&] { return Game().NewGameWithOptions(chosen, nullptr); }, 40, {}},
      {[&] { return Game().NewGameKeepingOptions(nullptr); }, 30, {}},
  };
  for (const auto& c : kStarts) {
    dialogue.events.clear();
    ASSERT_TRUE(c.start());
    ASSERT_NE(Pending(), nullptr);
    EXPECT_EQ(OptionsOf(*Pending()).Speed.value, c.speed);
    EXPECT_EQ(Pending()->GetFullName(), "Ann Lee");
    EXPECT_FALSE(Pending()->IsDirty());
    EXPECT_EQ(dialogue.events, c.events);
    EXPECT_NE(Pending(), &Game());
  }
}

TEST_F(GameFlow, StartsNoNewGameAgainstTheUserOrWithoutMemory) {
  Game().SetDirty(true);
  dialogue.saveChanges = 2;
  EXPECT_FALSE(Game().NewDefaultGame(nullptr));
  dialogue.saveChanges = 0;
  application.outOfMemory = true;
  EXPECT_FALSE(Game().NewDefaultGame(nullptr));
  EXPECT_EQ(Pending(), nullptr);
  EXPECT_TRUE(dialogue.events.empty());
}

TEST_F(GameFlow, MayStartFromTheGameThatItReplaces) {
  ASSERT_TRUE(Game().NewDefaultGame(nullptr));
  const SKivGameDob* const first = Pending();
  ASSERT_TRUE(Pending()->NewDefaultGame(nullptr));
  EXPECT_NE(Pending(), first);
  EXPECT_EQ(dialogue.events, Strings{"replaced"});
}

TEST_F(GameFlow, InitialisesAGameFromTheApplication) {
  TalkingGame game(dialogue);
  game.fileSpec = Spec("old.zep");
  game.longFileName = "Old";
  game.publicFile = true;
  game.Init(nullptr);
  EXPECT_FALSE(game.fileSpec.IsValid());
  EXPECT_TRUE(game.longFileName.IsEmpty());
  EXPECT_EQ(game.GetFullName(), "Ann Lee");
  EXPECT_FALSE(game.publicFile);
  EXPECT_FALSE(game.IsDirty());

  gApp = nullptr;
  game.firstName = "Bob";
  game.Init(nullptr);
  EXPECT_EQ(game.firstName, "Bob");
  EXPECT_FALSE(game.NewDefaultGame(nullptr));
}

TEST_F(GameFlow, TellsTheApplicationWhenAGameStarts) {
  Game().OnActivated();
  EXPECT_EQ(dialogue.events, Strings{"options"});
}

TEST_F(GameFlow, SavesWhereTheOptionsSay) {
  StoreBuilder store(folder.Path(), Kind::kLocal);
  const std::string room = store.AddClass("", "Room", "Room");
  store.AddStudent(room, "Ann", "Lee", "AnnLee");
  store.Finish();
  application.currentUser.classEntry = SLoginNameObj("Room", "", "Room");
  application.currentUser.studentEntry = SLoginNameObj("Ann", "Lee", "AnnLee");

  SFileSpec spec;
  Game().DefaultGameFolder(spec);
  EXPECT_TRUE(spec.IsExistingFolder());
  EXPECT_EQ(spec.GetPath(), SFileSpec(folder.Path().c_str()).GetPath());

  application.options->UseSystemIODialogs.value = false;
  Game().DefaultGameFolder(spec);
  EXPECT_TRUE(spec.IsExistingFolder());
  EXPECT_EQ(spec.GetFileName(), "AnnLee");

  gApp = nullptr;
  Game().DefaultGameFolder(spec);
  EXPECT_FALSE(spec.IsValid());
}

TEST_F(GameFlow, ComposesTheTextOfEachError) {
  struct {
    int16_t code;
    const char* text;
  } const kErrors[] = {
      {0, "Unable to open the file you selected because the file is not a valid zep game file."},
      {1, "There is not enough memory to open that file."},
      {2, "This game was not saved under your name. Do you want to open it anyway?"},
      {3, "You cannot save over that file because it is a shared file."},
      {1000, "Unable to save to the file you selected."},
      {1005, "Unable to write to the file you selected."},
      {4, nullptr},
      {-1, nullptr},
  };
  for (const auto& error : kErrors) {
    messages.clear();
    Game().ReportError(error.code);
    EXPECT_EQ(messages, error.text != nullptr ? Strings{error.text} : Strings()) << error.code;
  }
}

TEST_F(GameFlow, HasQuietHooksByItself) {
  SGameDob game;
  SFileSpec spec = Spec("some.zep");
  SString longName("Some");
  bool shared = true;
  EXPECT_FALSE(game.PickSaveFile(spec, longName, shared, SFileType(), nullptr));
  EXPECT_TRUE(game.PickOpenFile(spec, longName, SFileType(), nullptr));
  EXPECT_EQ(longName, "Some");
  EXPECT_EQ(game.AskSaveChanges(nullptr), 0);
  EXPECT_FALSE(game.ConfirmForeignGame(nullptr));
}

}  // namespace
}  // namespace kivtest
