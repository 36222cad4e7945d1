// The records as bytes, and bytes of any kind as records.
#include <gtest/gtest.h>

#include "game/game_dob.h"
#include "records/tutor_options_dob.h"
#include "tests/records/memory_archive.h"

namespace kivtest {
namespace {

using namespace kivstore;

std::string Zeros(size_t count) {
  return std::string(count, '\0');
}

// A stamp of 0.
const std::string kNoStamp = Zeros(8);

TEST(RecordLayout, OfTheGameOptions) {
  STeacherOptionsGameDob record;
  const std::string array = std::string("\0\x19", 2) + Zeros(25) + kNoStamp;
  std::string expected = std::string("\0\x01", 2) + kNoStamp + std::string("\0\x50", 2) + kNoStamp +
                         std::string("\0\x0A", 2) + kNoStamp;
  for (int i = 0; i < 7; ++i) {
    expected += array;
  }
  expected += '\0';
  ASSERT_EQ(expected.size(), 276u);
  EXPECT_EQ(BytesOf(record), expected);
}

TEST(RecordLayout, OfAMission) {
  STOMissionDob record;
  record.Typeline = {0x1234, SDateTime(0x01020304)};
  std::string expected =
      std::string("\0\x02", 2) + kNoStamp + "\x12\x34" + Zeros(4) + std::string("\x01\x02\x03\x04");
  for (int i = 0; i < 4; ++i) {
    expected += std::string("\0\x02", 2) + kNoStamp;
  }
  ASSERT_EQ(expected.size(), 60u);
  EXPECT_EQ(BytesOf(record), expected);
}

TEST(RecordLayout, OfTheKeystrokeCounts) {
  SDErrorDob record;
  const std::string table = std::string("\0\x30", 2) + Zeros(192);
  EXPECT_EQ(BytesOf(record), table + table);
}

TEST(RecordLayout, OfALessonWithEveryFieldDifferent) {
  SLessonDob record;
  record.lesnExStage = 0x0102;
  record.currentExString = -2;
  record.mainString = false;
  record.bestTotalTime = 0xFFEEDDCC;
  record.bestTotalKeystrokes = 3;
  record.bestCorrectKeystrokes = 4;
  record.aveTotalTime = 5;
  record.aveTotalKeystrokes = 6;
  record.aveCorrectKeystrokes = 7;
  record.accRetypes = 8;
  record.wpmRetypes = 9;
  record.generalRetypes = 10;
  record.numLinesPassed = 11;
  record.keyErrorsDuringExercises.SetAt(47, -1);
  record.currentLessonNumber = 12;
  record.learnedNewKeys = true;
  const std::string expected =
      std::string(
          "\x01\x02\xFF\xFE\x00\xFF\xEE\xDD\xCC\0\x03\0\x04\0\0\0\x05\0\x06\0\x07\0\x08\0\x09"
          "\0\x0A\0\x0B\0\x30",
          31) +
      Zeros(188) + std::string("\xFF\xFF\xFF\xFF\0\x0C\x01", 7);
  ASSERT_EQ(expected.size(), 226u);
  EXPECT_EQ(BytesOf(record), expected);
  SLessonDob read;
  ASSERT_TRUE(Fill(read, expected));
  EXPECT_TRUE(read.IsEqual(record));
}

TEST(RecordLayout, OfADefaultGame) {
  SGameDob record;
  EXPECT_EQ(BytesOf(record).size(), 949u);
  EXPECT_EQ(BytesOf(record), GameBytes().Bytes().substr(8));
}

TEST(RecordLayout, OfTheOptionsOfBothClasses) {
  STeacherOptionsDob record;
  record.SetDirty(false);
  EXPECT_EQ(BytesOf(record), OptionsBytes().Bytes().substr(8));
  // 4 shorts and 17 bools with their stamps, and the mark that no per-game fields follow.
  SKivTeacherOptionsDob framework;
  EXPECT_EQ(BytesOf(framework).size(), 2 * 10 + 19 * 9 + 2u);
}

// Torn after any byte: an error and no crash, with what was not reached at its default.
template <class Record>
void ExpectTornBytesFail(const std::string& bytes, bool (*lastIsDefault)(const Record&)) {
  for (size_t length = 0; length < bytes.size(); ++length) {
    Record record;
    ASSERT_FALSE(Fill(record, bytes.substr(0, length))) << length;
    ASSERT_TRUE(lastIsDefault(record)) << length;
    ASSERT_FALSE(record.IsDirty()) << length;
  }
  Record record;
  EXPECT_TRUE(Fill(record, bytes));
  EXPECT_FALSE(lastIsDefault(record));
}

TEST(TornRecord, OfAGameFailsAndKeepsDefaults) {
  GameBytes game;
  game.firstName = "Ann";
  game.displayFinalPayoff = false;
  game.graphData.assign(30, 5);
  ExpectTornBytesFail<SGameDob>(game.Bytes().substr(8),
                                [](const SGameDob& r) { return r.displayFinalPayoff; });
}

TEST(TornRecord, OfOptionsFailsAndKeepsDefaults) {
  OptionsBytes options;
  options.Set("AllowPlayandPracticeMode", 0, 5);
  options.missions.resize(30);
  ExpectTornBytesFail<STeacherOptionsDob>(options.Bytes().substr(8), [](const auto& r) {
    return r.AllowPlayandPracticeMode.stamp == SDateTime::None();
  });
}

// Each count of the files, set to what it must not be.
TEST(HostileRecord, CostsNothingWhateverItsCountsSay) {
  const std::string game = GameBytes().Bytes().substr(8);
  const std::string options = OptionsBytes().Bytes().substr(8);
  for (size_t i = 0; i + 2 <= options.size(); ++i) {
    std::string bytes = options;
    bytes.replace(i, 2, "\xFF\xFF");
    STeacherOptionsDob record;
    Fill(record, bytes);
    ASSERT_LE(record.missions.GetCount(), 32767);
  }
  for (size_t i = 0; i + 2 <= game.size(); ++i) {
    std::string bytes = game;
    bytes.replace(i, 2, "\xFF\xFF");
    SGameDob record;
    Fill(record, bytes);
    record.errorDob.GetTotalByFinger(11);
  }
}

}  // namespace
}  // namespace kivtest
