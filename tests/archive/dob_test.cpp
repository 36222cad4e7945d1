// Records and their files: identity, headers, torn files, and how concurrent changes meet.
#include <gtest/gtest.h>

#include "archive/dob_binary_archive.h"
#include "tests/archive/archive_support.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/test_clock.h"

namespace kivstore {
namespace {

using kivtest::DerivedSampleDob;
using kivtest::kTestNow;
using kivtest::SampleDob;
using kivtest::SpecOf;
using namespace std::string_literals;

const std::string kHeader = "BIN\1\0\1\0\0"s;
// Speed 10 and Sound true, undecided, and no name.
const std::string kDefaults = "\0\x0A\0\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0\0"s;

TEST(SDob, IsAKnowsItsClassAndItsAncestorsOnly) {
  const SDob base;
  const SampleDob sample;
  const DerivedSampleDob derived;
  EXPECT_TRUE(base.IsA(base) && sample.IsA(base) && sample.IsA(sample) && derived.IsA(sample));
  EXPECT_FALSE(base.IsA(sample) || sample.IsA(derived));
}

TEST(SDob, IsEqualComparesTheClassExactly) {
  const SampleDob sample;
  const SampleDob same;
  const DerivedSampleDob derived;
  EXPECT_TRUE(sample.IsEqual(same));
  EXPECT_TRUE(sample.IsNotEqual(derived));
  EXPECT_TRUE(SDob().IsEqual(SDob()));
  EXPECT_FALSE(SDob().IsEqual(sample));
}

TEST(SDob, ForeignClassesShareTheDirtyFlagOnly) {
  SampleDob sample;
  sample.SetSpeed(20);
  SDob base;
  base.Copy(sample);
  EXPECT_TRUE(base.IsDirty());
  SDob clean;
  base.Copy(clean);
  EXPECT_FALSE(base.IsDirty());
  base.Merge(sample);
  base.Merge(clean);
  EXPECT_TRUE(base.IsDirty()) << "or-ed";
  EXPECT_TRUE(base.GetModified().IsFresh());

  const std::unique_ptr<SDob> sibling(sample.CreateNew());
  EXPECT_EQ(sibling->GetClassId(), sample.GetClassId());
  EXPECT_FALSE(sibling->IsDirty());
}

class DobFiles : public testing::Test {
 protected:
  SFileSpec FileOf(const std::string& bytes) const {
    folder.WriteFile("f", bytes);
    return SpecOf(folder, "f");
  }
  std::string Stored() const { return folder.ReadFile("f"); }

  kivtest::TempFolder folder;
  kivtest::TestClock clock;
};

TEST_F(DobFiles, AFileIsTheHeaderAndTheFieldsAndNothingBehind) {
  SFileSpec spec = FileOf(std::string(100, 'x'));
  SampleDob record;
  record.SetSpeed(300);
  record.Name = "Ann";
  EXPECT_TRUE(record.SaveToFile(spec));
  EXPECT_EQ(Stored(), kHeader + "\1\x2C\0\0\0\0\xB6\xA1\x33\xF2\1\0\0\0\0\0\0\0\0Ann\0"s);
  EXPECT_TRUE(record.Speed.stamp.IsFresh()) << "saving does not clear the marks";

  SampleDob loaded;
  EXPECT_TRUE(loaded.LoadFromFile(spec));
  EXPECT_TRUE(loaded.IsEqual(record));
  EXPECT_FALSE(loaded.IsDirty());
  EXPECT_EQ(loaded.Speed.stamp.Raw(), kTestNow);
}

TEST_F(DobFiles, AFileTornAnywhereIsNotLoadedAndLeavesDefaultsBehindTheTear) {
  const std::string whole = kHeader + "\0\x63\0\0\0\0\0\0\0\5\0\0\0\0\0\0\0\0\6Ann\0"s;
  for (size_t length = 0; length < whole.size(); ++length) {
    const SFileSpec spec = FileOf(whole.substr(0, length));
    SampleDob record;
    record.SetSpeed(77);
    EXPECT_FALSE(record.LoadFromFile(spec)) << length;
    const int16_t expected = length < 8 ? 77 : length < 10 ? 10 : 99;
    EXPECT_EQ(record.Speed.value, expected) << length;
    EXPECT_EQ(record.Sound.value, length < 19) << length;
  }
  SampleDob record;
  EXPECT_TRUE(record.LoadFromFile(FileOf(whole)));
}

struct VersionCase {
  std::string bytes;
  int32_t status;
};

TEST_F(DobFiles, CheckFileVersionTellsWhatIsWrong) {
  const VersionCase cases[] = {
      {"", SDob::kWrongMagic},
      {"BI", SDob::kWrongMagic},
      {"BIN\2\0\1\0\0"s, SDob::kWrongMagic},
      {"BIN\1"s, SDob::kVersionUnreadable},
      {"BIN\1\0\1\0"s, SDob::kVersionUnreadable},
      {"BIN\1\0\0\xFF\xFF"s, SDob::kFileOlder},
      {"BIN\1\0\1\0\0"s, SDob::kVersionEqual},
      {"BIN\1\0\1\0\1"s, SDob::kFileNewer},
      {"BIN\1\x80\0\0\0"s, SDob::kFileNewer},
  };
  for (const VersionCase& c : cases) {
    int32_t status = -1;
    EXPECT_EQ(SDob::CheckFileVersion(status, FileOf(c.bytes), 0x00010000),
              c.status == SDob::kVersionEqual);
    EXPECT_EQ(status, c.status) << c.bytes;
    SampleDob record;
    EXPECT_EQ(record.LoadFromFile(FileOf(c.bytes + kDefaults)), c.status == SDob::kVersionEqual);
  }
  int32_t status = -1;
  EXPECT_FALSE(SDob::CheckFileVersion(status, SpecOf(folder, "missing"), 0));
  EXPECT_EQ(status, SDob::kCannotOpen);
}

TEST_F(DobFiles, WhereFilesCannotBeMadeAMissingOneIsNotSaved) {
  SFileSpec missing = SpecOf(folder, "missing");
  SFileSpec nowhere;
  EXPECT_FALSE(SampleDob().SaveToFile(missing));
  EXPECT_FALSE(SampleDob().SaveMergedToFile(missing));
  EXPECT_FALSE(SampleDob().SaveToFile(nowhere));
  EXPECT_TRUE(folder.List().empty());
}

TEST_F(DobFiles, ChangesOfTwoWorkstationsBothArriveByField) {
  SFileSpec spec = FileOf(kHeader + kDefaults);
  SampleDob first;
  SampleDob second;
  first.LoadFromFile(spec);
  second.LoadFromFile(spec);
  first.SetSpeed(20);
  second.SetSound(false);
  EXPECT_TRUE(first.SaveMergedToFile(spec));
  EXPECT_TRUE(second.SaveMergedToFile(spec));

  SampleDob merged;
  ASSERT_TRUE(merged.LoadFromFile(spec));
  EXPECT_EQ(merged.Speed.value, 20);
  EXPECT_FALSE(merged.Sound.value);
  EXPECT_EQ(merged.Speed.stamp.Raw(), kTestNow);
}

struct MergeCase {
  const char* what;
  uint32_t storedStamp;  // of Speed 50
  uint32_t ownStamp;     // of Speed 60
  int16_t speed;
  uint32_t stamp;
};

TEST_F(DobFiles, WhatTheFileKeepsIsDecidedByItsStampAgainstAFreshMark) {
  const MergeCase cases[] = {
      {"a fresh change wins over any time", 9000, SDateTime::kFresh, 60, kTestNow},
      {"an old stamp here counts as none", 1, 9000, 50, 1},
      {"a tie at none takes this record's", 0, 9000, 60, 0},
  };
  for (const MergeCase& c : cases) {
    SFileSpec spec = FileOf("");
    SampleDob stored;
    stored.Speed = {.value = 50, .stamp = SDateTime(c.storedStamp)};
    stored.SaveToFile(spec);
    SampleDob own;
    own.Speed = {.value = 60, .stamp = SDateTime(c.ownStamp)};
    EXPECT_TRUE(own.SaveMergedToFile(spec)) << c.what;
    SampleDob merged;
    merged.LoadFromFile(spec);
    EXPECT_EQ(merged.Speed.value, c.speed) << c.what;
    EXPECT_EQ(merged.Speed.stamp.Raw(), c.stamp) << c.what;
  }
}

TEST_F(DobFiles, SaveMergedReplacesWhatCannotBeRead) {
  SFileSpec spec = FileOf("no record at all, and longer than one");
  SampleDob record;
  EXPECT_TRUE(record.SaveMergedToFile(spec));
  EXPECT_EQ(Stored(), kHeader + kDefaults);
}

TEST_F(DobFiles, MergeFromFileTakesTheNewerFieldsAndLeavesTheFile) {
  SFileSpec spec = FileOf("");
  SampleDob stored;
  stored.Speed = {.value = 50, .stamp = SDateTime(5)};
  stored.Sound = {.value = false, .stamp = SDateTime(5)};
  stored.SaveToFile(spec);
  const std::string before = Stored();

  SampleDob own;
  own.Speed = {.value = 60, .stamp = SDateTime(6)};
  own.Sound = {.value = true, .stamp = SDateTime(4)};
  EXPECT_TRUE(own.MergeFromFile(spec));
  EXPECT_EQ(own.Speed.value, 60);
  EXPECT_FALSE(own.Sound.value);
  EXPECT_EQ(Stored(), before);

  EXPECT_FALSE(own.MergeFromFile(SpecOf(folder, "missing")));
  EXPECT_EQ(own.Speed.value, 60);
}

TEST_F(DobFiles, EveryFailingOperationShowsInTheResultOfASave) {
  SFileSpec spec = FileOf(kHeader + kDefaults);
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  for (int n = 1;; ++n) {
    files.FailAt(n, SystemError::kDiskFull);
    const bool saved = SampleDob().SaveToFile(spec);
    EXPECT_TRUE(files.OpenPaths().empty());
    if (!files.HasStruck()) {
      EXPECT_TRUE(saved);
      break;
    }
    EXPECT_FALSE(saved) << n;
  }
}

TEST_F(DobFiles, AnArchiveOverAnOpenStreamWritesWhereItStands) {
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream stream(SBinaryStream::kWrite, &memory, false);
  stream.WriteByte('>');
  SampleDob record;
  EXPECT_TRUE(record.SaveToStream(stream, true));
  EXPECT_EQ(kivtest::BytesOf(memory), ">" + kHeader + kDefaults);

  memory.Rewind();
  memory.ReadByte();
  SampleDob loaded;
  loaded.SetSpeed(5);
  EXPECT_TRUE(loaded.LoadFromStream(stream));
  EXPECT_TRUE(loaded.IsEqual(record));
}

}  // namespace
}  // namespace kivstore
