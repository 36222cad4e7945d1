// Records and their files: identity, headers, torn files, and how concurrent changes meet.
#include "archive/dob_binary_archive.h"
#include "tests/archive/archive_support.h"
#include "tests/support/fault_file_services.h"

namespace kivstore {
namespace {

using kivtest::kTestNow;
using kivtest::SampleDob;
using namespace std::string_literals;

const std::string kHeader = "BIN\1\0\1\0\0"s;
// Speed 10 and Sound true, undecided, and no name.
const std::string kDefaults = "\0\x0A\0\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0\0"s;

TEST(SDob, OfAnotherClassSharesOnlyTheDirtyFlag) {
  SDob base;
  SampleDob sample;
  EXPECT_TRUE(base.IsA(base) && sample.IsA(base) && sample.IsA(sample) && !base.IsA(sample));
  EXPECT_TRUE(sample.IsEqual(SampleDob()) && base.IsNotEqual(sample) && sample.IsNotEqual(base));
  const std::unique_ptr<SDob> sibling(base.CreateNew());
  EXPECT_TRUE(sibling->IsEqual(base) && !sibling->IsDirty() && !base.HasDifferences());
  EXPECT_EQ(base.GetVersion(), 0u);
  sample.SetSpeed(20);
  base.Copy(sample);
  EXPECT_TRUE(base.GetModified().IsFresh());
  base.Copy(SDob());
  EXPECT_FALSE(base.IsDirty());
  base.Merge(sample);
  base.Merge(SDob());
  EXPECT_TRUE(base.IsDirty()) << "or-ed";
  SDobBinaryArchive nowhere(SDobBinaryArchive::kRead, nullptr);
  base.Serialize(nowhere);
  EXPECT_FALSE(base.IsDirty()) << "as read";
}

using DobFiles = kivtest::FileTest;

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

TEST_F(DobFiles, CheckFileVersionTellsWhatIsWrong) {
  const struct {
    std::string bytes;
    int32_t status;
  } cases[] = {{"BI", SDob::kWrongMagic},
               {"BIN\2\0\1\0\0"s, SDob::kWrongMagic},
               {"BIN\1"s, SDob::kVersionUnreadable},
               {"BIN\1\0\1\0"s, SDob::kVersionUnreadable},
               {"BIN\1\0\0\xFF\xFF"s, SDob::kFileOlder},
               {"BIN\1\0\1\0\0"s, SDob::kVersionEqual},
               {"BIN\1\0\1\0\1"s, SDob::kFileNewer},
               {"BIN\1\x80\0\0\0"s, SDob::kFileNewer}};
  int32_t status = -1;
  for (const auto& c : cases) {
    const bool equal = c.status == SDob::kVersionEqual;
    EXPECT_EQ(SDob::CheckFileVersion(status, FileOf(c.bytes), 0x00010000), equal);
    EXPECT_EQ(status, c.status) << c.bytes;
    SampleDob record;
    record.SetSpeed(77);
    EXPECT_FALSE(record.LoadFromFile(FileOf(c.bytes))) << c.bytes;
    EXPECT_EQ(record.Speed.value, equal ? 10 : 77) << c.bytes;
    EXPECT_EQ(record.LoadFromFile(FileOf(c.bytes + kDefaults)), equal) << c.bytes;
  }
  EXPECT_FALSE(SDob::CheckFileVersion(status, SpecOf("missing"), 0));
  EXPECT_EQ(status, SDob::kCannotOpen);
}

TEST_F(DobFiles, EveryFailingOperationShowsInTheResult) {
  SFileSpec spec = FileOf(kHeader + kDefaults);
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  for (const bool saving : {false, true}) {
    int n = 0, status = -1;
    do {
      files.FailAt(++n, SystemError::kDiskFull);
      const bool done =
          saving ? SampleDob().SaveToFile(spec) : SDob::CheckFileVersion(status, spec, 0x00010000);
      EXPECT_NE(done, files.HasStruck()) << n;
      EXPECT_TRUE(saving || done || status == SDob::kCannotOpen) << "not a wrong head";
      EXPECT_TRUE(files.OpenPaths().empty());
    } while (files.HasStruck());
  }
}

TEST_F(DobFiles, WhereFilesCannotBeMadeOnlyWhatIsThereIsReplaced) {
  SFileSpec missing = SpecOf("missing"), nowhere;
  EXPECT_FALSE(SampleDob().SaveToFile(missing) || SampleDob().SaveMergedToFile(missing) ||
               SampleDob().SaveToFile(nowhere) || !folder.List().empty());
  SFileSpec noRecord = FileOf("no record at all, and longer than one");
  EXPECT_TRUE(SampleDob().SaveMergedToFile(noRecord));
  EXPECT_EQ(Stored(), kHeader + kDefaults);
}

TEST_F(DobFiles, WhatTheFileKeepsIsDecidedByItsStampAgainstAFreshMark) {
  const struct {
    uint32_t storedStamp, ownStamp;  // of Speed 50 and of Speed 60
    int16_t speed;
    uint32_t stamp;
  } cases[] = {{9000, SDateTime::kFresh, 60, kTestNow},  // a fresh change wins over any time
               {1, 9000, 50, 1},                         // an old stamp here counts as none
               {0, 9000, 60, 0}};                        // a tie at none takes this record's
  for (const auto& c : cases) {
    SFileSpec spec = FileOf("");
    SampleDob record;
    record.Speed = {.value = 50, .stamp = SDateTime(c.storedStamp)};
    record.SaveToFile(spec);
    record.Speed = {.value = 60, .stamp = SDateTime(c.ownStamp)};
    EXPECT_TRUE(record.SaveMergedToFile(spec) && record.LoadFromFile(spec));
    EXPECT_EQ(record.Speed.value, c.speed);
    EXPECT_EQ(record.Speed.stamp.Raw(), c.stamp);
  }
}

TEST_F(DobFiles, MergeFromFileTakesTheNewerFieldsAndLeavesTheFile) {
  const std::string stored = kHeader + "\0\x32\0\0\0\0\0\0\0\5\0\0\0\0\0\0\0\0\5\0"s;
  SampleDob own;
  own.Speed = {.value = 60, .stamp = SDateTime(6)};
  own.Sound = {.value = true, .stamp = SDateTime(4)};
  EXPECT_TRUE(own.MergeFromFile(FileOf(stored)) && !own.MergeFromFile(SpecOf("missing")));
  EXPECT_TRUE(own.Speed.value == 60 && !own.Sound.value);
  EXPECT_EQ(Stored(), stored);
}

TEST(SDob, GoesThroughAnOpenStreamFromWhereItStands) {
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream stream(SBinaryStream::kWrite, &memory, false);
  stream.WriteByte('>');
  SampleDob record;
  EXPECT_TRUE(record.SaveToStream(stream));
  EXPECT_EQ(kivtest::BytesOf(memory), ">" + kHeader + kDefaults);
  EXPECT_TRUE(memory.Rewind() && stream.Skip(1) && record.LoadFromStream(stream));
}

}  // namespace
}  // namespace kivstore
