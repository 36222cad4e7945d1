// The game record, the lesson in it, and the silent ways into its file.
#include "game/game_dob.h"

#include "tests/records/record_laws.h"
#include "tests/support/site_fixture.h"
#include "tests/support/test_game.h"

namespace kivtest {
namespace {

using namespace kivstore;

INSTANTIATE_TEST_SUITE_P(Game, RecordLaws,
                         testing::Values(RecordSubject{"Game", MakeTestGame,
                                                       GameBytes().Fields()}));

class GameRecord : public SiteFixture {
 protected:
  TestGameHost host{site};
  const std::unique_ptr<SGameDob> made = MakeTestGame(), another = MakeTestGame();
  SGameDob &game = *made, &there = *another;
};

TEST_F(GameRecord, StartsCleanWithNothingDone) {
  EXPECT_FALSE(game.IsDirty() || game.lessonDob.HasLearnedNewKeys());
  EXPECT_EQ(game.GetStartScreen(), "MAIN");
  EXPECT_EQ(game.GetFileKey(), 0x67616D65u);
  EXPECT_EQ(game.GetVersion(), kDataVersion);
}

TEST_F(GameRecord, IsDirtyWithAnyOfItsParts) {
  void (*const kChanges[])(SGameDob&) = {
      [](SGameDob& g) { g.SetFirstName("Ann"); },     [](SGameDob& g) { g.SetLastName("Lee"); },
      [](SGameDob& g) { g.SetLongFileName("Mine"); }, [](SGameDob& g) { g.errorDob.Clear(); },
      [](SGameDob& g) { g.lessonDob.Clear(); },       [](SGameDob& g) { g.InitGraphData(); },
      [](SGameDob& g) { g.options->SetDirty(true); }, [](SGameDob& g) { g.ReleaseGraphData(); },
  };
  for (const auto& change : kChanges) {
    game.SetDirty(false);
    change(game);
    EXPECT_TRUE(game.IsDirty() && game.GetModified().IsFresh()) << &change - kChanges;
  }
  game.SetDirty(false);
  game.SetLastName("Lee");
  game.SetPublicFile(true);
  EXPECT_FALSE(game.IsDirty());
  EXPECT_TRUE(game.IsPublicFile());
}

// Whole, options too, whatever the stamps say; only the children's dirt adds up.
TEST_F(GameRecord, IsReplacedByAMerge) {
  Draw draw(1);
  const RecordFields table = Randomized(GameBytes().Fields(), draw, true);
  ASSERT_TRUE(Fill(game, BytesOf(Randomized(GameBytes().Fields(), draw, true))));
  ASSERT_TRUE(Fill(there, BytesOf(table)));
  game.SetDirty(true);
  game.lessonDob.SetDirty(true);
  game.Merge(game);
  EXPECT_FALSE(game.IsEqual(there));
  game.Merge(there);
  EXPECT_EQ(Differing(game, table), "");
  EXPECT_TRUE(game.IsDirty());
  game.lessonDob.SetDirty(false);
  EXPECT_FALSE(game.IsDirty());
}

TEST_F(GameRecord, IsCopiedWithItsPlaceAndTheExactSizeOfItsGraph) {
  game.graphData.SetAt(25, 1);
  game.SetFileSpec(SFileSpec("\\games\\mine.zep"));
  EXPECT_FALSE(there.IsEqual(game));
  const SGameDob copy(game);
  EXPECT_EQ(copy.graphData.GetCapacity(), 26);
  EXPECT_TRUE(copy.IsEqual(game));
  EXPECT_NE(copy.options, game.options);
  EXPECT_TRUE(copy.fileSpec.IsEqual(game.fileSpec));
}

TEST_F(GameRecord, TellsOnlyNotedDifferencesOfItsOptions) {
  auto& options = *static_cast<STeacherOptionsGameDob*>(game.options);
  options.Speed.value = 50;
  game.MarkDifferences(game);
  game.MarkDifferences(there);
  EXPECT_FALSE(game.HasDifferences());
  EXPECT_FALSE(game.IsEqual(there));
  options.Speed.differs = true;
  EXPECT_TRUE(game.HasDifferences());
}

TEST_F(GameRecord, RestoresTheLengthOfItsGraph) {
  game.graphData.SetSize(10);
  game.graphData.SetAt(3, 8);
  for (int i = 0; i < 2; ++i) {
    game.InitGraphData();
    EXPECT_EQ(game.graphData.GetCount(), 25);
    EXPECT_EQ(game.graphData.At(3), 8);
    EXPECT_EQ(game.graphData.At(24), -1);
    game.graphData.SetAt(30, 1);
  }
}

TEST_F(GameRecord, NamesItsOwner) {
  std::string told;
  for (const auto& [first, last] : {std::pair("", ""), {"", "Lee"}, {"Ann", ""}, {"Ann", "Lee"}}) {
    game.SetFirstName(first);
    game.SetLastName(last);
    for (const SString& name : {game.GetFullName(), game.GetFullNameUpper(),
                                game.GetFirstNameUpper(), game.GetLastNameUpper()}) {
      told += Bytes(name) + '|';
    }
  }
  EXPECT_EQ(told, "||||Lee|LEE||LEE|Ann|ANN|ANN||Ann Lee|ANN LEE|ANN|LEE|");
}

TEST_F(GameRecord, StartsALessonAnewForTheCurrentMission) {
  SGameDob hosted(&host);
  const auto reset = [&](SGameDob& game, bool learned) {
    game.lessonDob.learnedNewKeys = learned;
    game.lessonDob.numLinesPassed = 4;
    game.errorDob.keyTypedWrong.SetAt(0, 5);
    game.ResetProgress();
    EXPECT_EQ(game.lessonDob.learnedNewKeys, learned);
    EXPECT_EQ(game.lessonDob.numLinesPassed + game.errorDob.GetWrongByFinger(0), 0);
    return game.lessonDob.currentLessonNumber;
  };
  host.options->GetGameOptions()->CurrentMissionNumber.value = 7;
  EXPECT_EQ(reset(hosted, true), 7);
  EXPECT_EQ(reset(hosted, false), 7);
  EXPECT_EQ(reset(game, true), 1);  // without a host
  delete host.options->gameOptions;
  host.options->gameOptions = nullptr;
  EXPECT_EQ(reset(hosted, true), 1);
  host.options.reset();
  EXPECT_EQ(reset(hosted, true), 1);
}

// The framework's part of a game by itself.
struct PlainGame : SKivGameDob {
  using SKivGameDob::SKivGameDob;
  const SString& GetStartScreen() const override { return lastName; }
};

TEST_F(GameRecord, WithoutATutorsPartIsCleanOnceItIsRead) {
  PlainGame plain(&host);
  plain.SetFirstName("Bo");
  GameBytes bytes;
  bytes.firstName = "Ann";
  EXPECT_TRUE(plain.IsDirty() && Fill(plain, BytesOf(bytes.Fields())));
  EXPECT_FALSE(plain.IsDirty());
  EXPECT_EQ(plain.GetFullName(), "Ann");
}

class GameFile : public GameRecord {
 protected:
  SFileSpec Write(const std::string& bytes) {
    temp.WriteFile("game.zep", bytes);
    return Spec("game.zep");
  }
};

TEST_F(GameFile, IsKnownByItsTagAndExactVersion) {
  GameBytes bytes;
  bytes.lastName = "Lee";
  bytes.learnedNewKeys = true;
  const std::string good = bytes.Bytes();
  const auto with = [&](size_t at, const char* text) {
    return std::string(good).replace(at, 1, text);
  };
  using Row = std::tuple<const char*, std::string, bool>;
  for (const auto& [what, bytes, isGame] :
       {Row{"a game", good, true}, Row{"torn", good.substr(0, good.size() - 1), true},
        Row{"head only", good.substr(0, 8), true}, Row{"torn head", good.substr(0, 7), false},
        Row{"another tag", with(0, "g"), false}, Row{"a newer version", with(7, "\1"), false},
        Row{"empty", "", false}}) {
    const SFileSpec spec = Write(bytes);
    game.SetFirstName("Ann");
    game.handSkinTone = 3;
    EXPECT_EQ(game.LoadGame(spec), bytes == good) << what;
    EXPECT_EQ(SKivGameDob::IsGameFile(spec), isGame) << what;
    EXPECT_EQ(game.handSkinTone, isGame ? -1 : 3) << what;
    EXPECT_EQ(game.GetFullName(), isGame ? "Lee" : "Ann Lee") << what;
    EXPECT_FALSE(game.fileSpec.IsValid());
  }
  EXPECT_FALSE(game.LoadGame(Spec("missing.zep")));
  EXPECT_FALSE(game.LoadGame(SpecOn(temp.Path())));
}

TEST_F(GameFile, IsSharedByItsOwnWord) {
  GameBytes bytes;
  const SGameDob hosted(&host);
  EXPECT_FALSE(hosted.IsSharedGameFile(Write(bytes.Bytes())));
  bytes.publicFile = true;
  const std::string shared = bytes.Bytes();
  EXPECT_TRUE(hosted.IsSharedGameFile(Write(shared)));
  EXPECT_FALSE(hosted.IsSharedGameFile(Write(shared.substr(0, 800))));
  EXPECT_FALSE(game.IsSharedGameFile(Write(shared)));  // without a host
}

}  // namespace
}  // namespace kivtest
