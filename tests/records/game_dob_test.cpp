// The game record and the lesson in it.
#include "game/game_dob.h"

#include <gtest/gtest.h>

#include <memory>

#include "foundation/application.h"
#include "records/tutor_options_dob.h"
#include "tests/records/memory_archive.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

using namespace kivstore;

// An application with options, as during a call.
class GameRecord : public testing::Test {
 protected:
  GameRecord() {
    RegisterFileType(kFileTypeGame, "Game File|Game Files|zep|Game|1");
    gFileVersion = kDataVersion;
    gApp = &application;
    application.options = application.CreateOptions();
  }
  ~GameRecord() override { gApp = nullptr; }

  STeacherOptionsGameDob& CurrentGameOptions() {
    return *static_cast<STeacherOptionsDob*>(application.options)->GetGameOptions();
  }

  SZEPApp application;
};

TEST_F(GameRecord, StartsCleanWithNothingDone) {
  SGameDob game;
  EXPECT_FALSE(game.IsDirty());
  EXPECT_EQ(game.GetModified().Raw(), 0u);
  EXPECT_EQ(game.graphData.GetCount(), 25);
  EXPECT_EQ(game.graphData.At(24), -1);
  EXPECT_EQ(game.handSkinTone, -1);
  EXPECT_TRUE(game.displayFinalPayoff);
  EXPECT_FALSE(game.lessonDob.HasLearnedNewKeys());
  EXPECT_EQ(game.lessonDob.currentExString, -1);
  EXPECT_TRUE(game.lessonDob.mainString);
  EXPECT_EQ(game.lessonDob.currentLessonNumber, 1);
  EXPECT_EQ(game.GetStartScreen(), "MAIN");
  EXPECT_EQ(game.GetFileKey(), 0x67616D65u);
  EXPECT_EQ(game.GetVersion(), 0x00010000u);
}

TEST_F(GameRecord, IsClearedToItsDefaultsButKeepsItsOwner) {
  SGameDob game;
  game.SetFirstName("Ann");
  game.SetPublicFile(true);
  game.graphData.SetAt(40, 3);
  game.handSkinTone = 0;
  game.lessonDob.learnedNewKeys = true;
  game.Clear();
  EXPECT_EQ(game.GetFirstName(), "Ann");
  EXPECT_FALSE(game.IsPublicFile());
  SGameDob usual;
  usual.SetFirstName("Ann");
  EXPECT_TRUE(game.IsEqual(usual));
  EXPECT_TRUE(game.IsDirty());
}

TEST_F(GameRecord, IsDirtyWithAnyOfItsParts) {
  void (*const kChanges[])(SGameDob&) = {
      [](SGameDob& g) { g.SetLastName("Lee"); }, [](SGameDob& g) { g.errorDob.Clear(); },
      [](SGameDob& g) { g.lessonDob.Clear(); },  [](SGameDob& g) { g.options->SetDirty(true); },
      [](SGameDob& g) { g.ReleaseGraphData(); },
  };
  for (const auto change : kChanges) {
    SGameDob game;
    change(game);
    EXPECT_TRUE(game.IsDirty());
    EXPECT_TRUE(game.GetModified().IsFresh());
    game.SetDirty(false);
    EXPECT_FALSE(game.IsDirty());
  }
  SGameDob game;
  game.SetLastName("");
  game.SetPublicFile(true);
  EXPECT_FALSE(game.IsDirty());
}

TEST_F(GameRecord, IsReplacedWholeByAMerge) {
  SGameDob here;
  SGameDob there;
  static_cast<STeacherOptionsGameDob*>(here.options)->Speed = {50, SDateTime::Fresh()};
  here.lessonDob.bestTotalTime = 10;
  there.lessonDob.bestTotalTime = 20;
  there.SetFirstName("Ann");
  there.graphData.SetAt(29, 4);
  there.SetDirty(false);
  here.SetDirty(true);
  here.lessonDob.SetDirty(true);
  here.Merge(there);
  EXPECT_TRUE(here.IsEqual(there));
  // The lesson or-s the flags, the rest takes the other's.
  EXPECT_TRUE(here.lessonDob.IsDirty());
  here.lessonDob.SetDirty(false);
  EXPECT_FALSE(here.IsDirty());
}

TEST_F(GameRecord, IsCopiedWithTheExactSizeOfItsGraph) {
  SGameDob game;
  game.graphData.SetAt(25, 1);
  ASSERT_EQ(game.graphData.GetCapacity(), 30);
  const SGameDob copy(game);
  EXPECT_EQ(copy.graphData.GetCapacity(), 26);
  EXPECT_TRUE(copy.IsEqual(game));
  EXPECT_NE(copy.options, game.options);
}

TEST_F(GameRecord, TellsNoDifferenceOfItsOptions) {
  SGameDob here;
  SGameDob there;
  static_cast<STeacherOptionsGameDob*>(there.options)->Speed.value = 50;
  here.MarkDifferences(there);
  EXPECT_FALSE(here.HasDifferences());
  EXPECT_FALSE(here.IsEqual(there));
}

TEST_F(GameRecord, RestoresTheLengthOfItsGraph) {
  SGameDob game;
  game.graphData.SetSize(10);
  game.graphData.SetAt(3, 8);
  game.InitGraphData();
  EXPECT_EQ(game.graphData.GetCount(), 25);
  EXPECT_EQ(game.graphData.At(3), 8);
  EXPECT_EQ(game.graphData.At(24), -1);
  game.graphData.SetAt(30, 1);
  game.InitGraphData();
  EXPECT_EQ(game.graphData.GetCount(), 25);
}

TEST_F(GameRecord, NamesItsOwner) {
  struct {
    const char *first, *last, *full, *upper;
  } const kOwners[] = {{"Ann", "Lee", "Ann Lee", "ANN LEE"},
                       {"", "Lee", "Lee", "LEE"},
                       {"Ann", "", "Ann", "ANN"},
                       {"", "", "", ""}};
  for (const auto& owner : kOwners) {
    SGameDob game;
    game.SetFirstName(owner.first);
    game.SetLastName(owner.last);
    EXPECT_EQ(game.GetFullName(), owner.full);
    EXPECT_EQ(game.GetFullNameUpper(), owner.upper);
  }
}

TEST_F(GameRecord, StartsALessonAnewForTheCurrentMission) {
  SGameDob game;
  game.lessonDob.learnedNewKeys = true;
  game.lessonDob.numLinesPassed = 4;
  game.errorDob.keyTypedWrong.SetAt(0, 5);
  CurrentGameOptions().CurrentMissionNumber.value = 7;
  game.ResetProgress();
  EXPECT_TRUE(game.lessonDob.learnedNewKeys);
  EXPECT_EQ(game.lessonDob.currentLessonNumber, 7);
  EXPECT_EQ(game.lessonDob.numLinesPassed, 0);
  EXPECT_EQ(game.errorDob.GetWrongByFinger(0), 0);
}

TEST_F(GameRecord, StartsALessonAtOneWithoutOptions) {
  SLessonDob lesson;
  lesson.currentLessonNumber = 9;
  delete application.options;
  application.options = nullptr;
  lesson.ResetKeepingKeys();
  EXPECT_EQ(lesson.currentLessonNumber, 1);
  lesson.currentLessonNumber = 9;
  gApp = nullptr;
  lesson.ResetKeepingKeys();
  EXPECT_EQ(lesson.currentLessonNumber, 1);
}

class GameFile : public GameRecord {
 protected:
  SFileSpec Write(const std::string& bytes) {
    folder.WriteFile("game.zep", bytes);
    return SFileSpec(folder.Path("game.zep").c_str());
  }

  TempFolder folder;
};

TEST_F(GameFile, IsKnownByItsTagAndExactVersion) {
  GameBytes bytes;
  bytes.lastName = "Lee";
  bytes.learnedNewKeys = true;
  const std::string good = bytes.Bytes();
  const auto with = [&](size_t at, const char* text) {
    return std::string(good).replace(at, 1, text);
  };
  struct {
    const char* what;
    std::string bytes;
    bool isGame, loads;
  } const kFiles[] = {
      {"a game", good, true, true},
      {"another tag", with(0, "g"), false, false},
      {"a newer version", with(7, "\1"), false, false},
      {"torn", good.substr(0, good.size() - 1), true, false},
      {"head only", good.substr(0, 8), true, false},
      {"torn head", good.substr(0, 7), false, false},
      {"empty", "", false, false},
  };
  for (const auto& file : kFiles) {
    const SFileSpec spec = Write(file.bytes);
    SGameDob game;
    EXPECT_EQ(game.LoadGame(spec), file.loads) << file.what;
    EXPECT_EQ(SKivGameDob::IsGameFile(spec), file.isGame) << file.what;
    EXPECT_EQ(game.lessonDob.HasLearnedNewKeys(), file.loads || file.what == kFiles[3].what);
    EXPECT_FALSE(game.fileSpec.IsValid());
  }
  SGameDob game;
  EXPECT_FALSE(game.LoadGame(SFileSpec(folder.Path("missing.zep").c_str())));
  EXPECT_FALSE(game.LoadGame(SFileSpec(folder.Path().c_str())));
}

TEST_F(GameFile, IsUntouchedByWhatIsNoGame) {
  SGameDob game;
  game.SetFirstName("Ann");
  game.handSkinTone = 3;
  EXPECT_FALSE(game.LoadGame(Write("Gama and the rest")));
  EXPECT_EQ(game.GetFirstName(), "Ann");
  EXPECT_EQ(game.handSkinTone, 3);
  EXPECT_TRUE(game.IsDirty());
}

TEST_F(GameFile, IsSharedByItsOwnWord) {
  GameBytes bytes;
  EXPECT_FALSE(SKivGameDob::IsSharedGameFile(Write(bytes.Bytes())));
  bytes.publicFile = true;
  const std::string shared = bytes.Bytes();
  EXPECT_TRUE(SKivGameDob::IsSharedGameFile(Write(shared)));
  EXPECT_FALSE(SKivGameDob::IsSharedGameFile(Write(shared.substr(0, 800))));
  const SFileSpec spec = Write(shared);
  gApp = nullptr;
  EXPECT_FALSE(SKivGameDob::IsSharedGameFile(spec));
}

}  // namespace
}  // namespace kivtest
