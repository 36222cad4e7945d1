// The rules that every record with stamped fields follows.
#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "records/tutor_options_dob.h"
#include "tests/records/memory_archive.h"

namespace kivtest {
namespace {

using namespace kivstore;

constexpr uint32_t kFresh = 0xFFFFFFFF;

// How a test reaches two stamped fields of each record, one of them of the base record if there is
// one.
template <class Record>
struct FieldsOf;
template <>
struct FieldsOf<STOMissionDob> {
  static SStamped<int16_t>& First(STOMissionDob& r) { return r.Notebook; }
  static SStamped<int16_t>& Last(STOMissionDob& r) { return r.KeyFigures; }
};
template <>
struct FieldsOf<STeacherOptionsGameDob> {
  static SStamped<int16_t>& First(STeacherOptionsGameDob& r) { return r.CurrentMissionNumber; }
  static SStamped<int16_t>& Last(STeacherOptionsGameDob& r) { return r.Speed; }
};
template <>
struct FieldsOf<SKivTeacherOptionsDob> {
  static SStamped<int16_t>& First(SKivTeacherOptionsDob& r) { return r.SoundOn; }
  static SStamped<int16_t>& Last(SKivTeacherOptionsDob& r) { return r.MaxGameFiles; }
};
template <>
struct FieldsOf<STeacherOptionsDob> {
  static SStamped<int16_t>& First(STeacherOptionsDob& r) { return r.SoundOn; }
  static SStamped<int16_t>& Last(STeacherOptionsDob& r) { return r.WarpspeedView; }
};

template <class Record>
class StampedRecord : public testing::Test {
 protected:
  StampedRecord() {
    here.SetDirty(false);
    there.SetDirty(false);
  }
  static SStamped<int16_t>& First(Record& r) { return FieldsOf<Record>::First(r); }
  static SStamped<int16_t>& Last(Record& r) { return FieldsOf<Record>::Last(r); }
  static void Put(SStamped<int16_t>& field, int16_t value, uint32_t stamp) {
    field.value = value;
    field.stamp = SDateTime(stamp);
  }

  Record here;
  Record there;
};

using StampedRecords = testing::Types<STOMissionDob, STeacherOptionsGameDob, SKivTeacherOptionsDob,
                                      STeacherOptionsDob>;
TYPED_TEST_SUITE(StampedRecord, StampedRecords);

TYPED_TEST(StampedRecord, TakesTheNewestStampOfEachFieldAndATieFromTheOther) {
  struct {
    uint32_t here, there;
    bool taken;
  } const kCases[] = {{0, 0, true},  {5, 5, true},           {5, 6, true},
                      {6, 5, false}, {kFresh, 9, false},     {9, kFresh, true},
                      {0, 1, true},  {kFresh, kFresh, true}, {0x80000000, 0x7FFFFFFF, false}};
  for (const auto& c : kCases) {
    this->Put(this->First(this->here), 21, c.here);
    this->Put(this->First(this->there), 22, c.there);
    this->Put(this->Last(this->here), 31, 7);
    this->Put(this->Last(this->there), 32, 6);
    this->here.Merge(this->there);
    EXPECT_EQ(this->First(this->here).value, c.taken ? 22 : 21) << c.here << ' ' << c.there;
    EXPECT_EQ(this->First(this->here).stamp.Raw(), c.taken ? c.there : c.here);
    EXPECT_EQ(this->Last(this->here).value, 31);
  }
}

TYPED_TEST(StampedRecord, IsDirtyAfterMergingADirtyOne) {
  this->there.SetDirty(true);
  this->here.Merge(this->there);
  EXPECT_TRUE(this->here.IsDirty());
  this->there.SetDirty(false);
  this->here.Merge(this->there);
  EXPECT_TRUE(this->here.IsDirty());
}

TYPED_TEST(StampedRecord, FlagsTheFieldsThatDifferAndForgetsNone) {
  EXPECT_FALSE(this->here.HasDifferences());
  this->Put(this->Last(this->there), 77, 0);
  this->here.MarkDifferences(this->there);
  EXPECT_TRUE(this->Last(this->here).differs);
  EXPECT_FALSE(this->First(this->here).differs);
  EXPECT_FALSE(this->there.HasDifferences());
  this->Last(this->here).value = 77;
  this->here.MarkDifferences(this->there);
  EXPECT_TRUE(this->here.HasDifferences());
  this->here.Copy(this->there);
  EXPECT_FALSE(this->here.HasDifferences());
}

TYPED_TEST(StampedRecord, SetsAnOptionOnlyWhereThatChangesOrConfirmsSomething) {
  SStamped<int16_t>& field = this->First(this->here);
  const auto set = [&](int16_t value) {
    if (field.Set(value)) {
      this->here.SetDirty(true);
    }
  };
  set(field.value);
  EXPECT_FALSE(this->here.IsDirty());
  EXPECT_EQ(field.stamp.Raw(), 0u);
  field.differs = true;
  set(field.value);
  EXPECT_TRUE(this->here.IsDirty());
  EXPECT_FALSE(field.differs);
  EXPECT_EQ(field.stamp.Raw(), kFresh);
  this->here.SetDirty(false);
  set(static_cast<int16_t>(field.value + 1));
  EXPECT_TRUE(this->here.IsDirty());
  EXPECT_EQ(field.stamp.Raw(), kFresh);
}

TYPED_TEST(StampedRecord, ClearsTheStampsOfWhatWasStoredOnly) {
  this->Put(this->First(this->here), 1, 500);
  this->Put(this->Last(this->here), 1, kFresh);
  this->here.ClearStamps();
  EXPECT_EQ(this->First(this->here).stamp.Raw(), 0u);
  EXPECT_EQ(this->Last(this->here).stamp.Raw(), kFresh);
  this->here.SetDirty(false);
  EXPECT_EQ(this->Last(this->here).stamp.Raw(), 0u);
}

TYPED_TEST(StampedRecord, WasModifiedAtItsNewestStamp) {
  EXPECT_EQ(this->here.GetModified().Raw(), 0u);
  this->Put(this->First(this->here), 1, 0x80000001);
  this->Put(this->Last(this->here), 1, 700);
  EXPECT_EQ(this->here.GetModified().Raw(), 0x80000001);
  this->here.SetDirty(true);
  EXPECT_EQ(this->here.GetModified().Raw(), kFresh);
}

TYPED_TEST(StampedRecord, IsEqualByItsValuesAlone) {
  this->Put(this->First(this->here), this->First(this->there).value, 99);
  this->Last(this->here).differs = true;
  this->here.SetDirty(true);
  EXPECT_TRUE(this->here.IsEqual(this->there));
  this->Put(this->Last(this->here), 76, 0);
  EXPECT_TRUE(this->here.IsNotEqual(this->there));
}

TYPED_TEST(StampedRecord, CopiesStampsFlagsAndDirt) {
  this->Put(this->First(this->there), 40, 41);
  this->First(this->there).differs = true;
  this->there.SetDirty(true);
  this->here.Copy(this->there);
  EXPECT_EQ(this->First(this->here).value, 40);
  EXPECT_EQ(this->First(this->here).stamp.Raw(), 41u);
  EXPECT_TRUE(this->First(this->here).differs);
  EXPECT_TRUE(this->here.IsDirty());
}

TYPED_TEST(StampedRecord, LeavesItselfAlone) {
  this->Put(this->First(this->here), 40, kFresh);
  this->here.Merge(this->here);
  this->here.Copy(this->here);
  this->here.MarkDifferences(this->here);
  EXPECT_EQ(this->First(this->here).value, 40);
  EXPECT_FALSE(this->here.IsDirty());
}

TYPED_TEST(StampedRecord, SharesOnlyDirtWithAForeignRecord) {
  SDob plain;
  plain.SetDirty(true);
  this->Put(this->First(this->here), 40, 3);
  this->here.Copy(plain);
  EXPECT_EQ(this->First(this->here).value, 40);
  EXPECT_TRUE(this->here.IsDirty());
  plain.SetDirty(false);
  this->here.Merge(plain);
  EXPECT_TRUE(this->here.IsDirty());
  this->here.MarkDifferences(plain);
  EXPECT_FALSE(this->here.HasDifferences());
  EXPECT_FALSE(this->here.IsEqual(plain));
  EXPECT_TRUE(this->here.IsA(plain));
  EXPECT_FALSE(plain.IsA(this->here));
}

TYPED_TEST(StampedRecord, MakesASiblingAtItsDefaults) {
  const std::unique_ptr<SDob> sibling(this->here.CreateNew());
  ASSERT_NE(sibling, nullptr);
  EXPECT_TRUE(sibling->IsEqual(this->here));
  EXPECT_TRUE(sibling->IsA(this->here));
}

TYPED_TEST(StampedRecord, ComesBackWholeFromItsBytes) {
  this->Put(this->First(this->there), 40, 0x01020304);
  this->Put(this->Last(this->there), -2, 5);
  ASSERT_TRUE(Fill(this->here, BytesOf(this->there)));
  EXPECT_TRUE(this->here.IsEqual(this->there));
  EXPECT_EQ(this->First(this->here).stamp.Raw(), 0x01020304u);
  EXPECT_FALSE(this->here.IsDirty());
}

// Two stations change different options of one file; then both the same one.
TEST(StampMerge, KeepsTheChangesOfBothStations) {
  STeacherOptionsDob file;
  file.SetDirty(false);
  STeacherOptionsDob ours;
  ours.Copy(file);
  ours.SetOption(&STeacherOptionsDob::VocabLevel, 3);
  file.SoundOn = {7, SDateTime(100)};
  file.VocabLevel = {2, SDateTime(100)};

  ours.ClearStamps();
  file.Merge(ours);
  EXPECT_EQ(file.SoundOn.value, 7);
  EXPECT_EQ(file.VocabLevel.value, 3);
  EXPECT_TRUE(file.VocabLevel.stamp.IsFresh());
}

TEST(StampMerge, LetsTheNewestOfThreeLevelsDecideEachOption) {
  STeacherOptionsDob root;
  STeacherOptionsDob classLevel;
  STeacherOptionsDob student;
  for (STeacherOptionsDob* level : {&root, &classLevel, &student}) {
    level->SetDirty(false);
  }
  root.VocabLevel = {1, SDateTime(300)};
  classLevel.VocabLevel = {2, SDateTime(200)};
  classLevel.TextSize = {9, SDateTime(200)};
  student.GetGameOptions()->CurrentMissionNumber = {12, SDateTime(50)};
  student.missions.At(3).Typeline = {5, SDateTime(50)};
  root.Merge(classLevel);
  root.Merge(student);
  EXPECT_EQ(root.VocabLevel.value, 1);
  EXPECT_EQ(root.TextSize.value, 9);
  EXPECT_EQ(root.GetGameOptions()->CurrentMissionNumber.value, 12);
  EXPECT_EQ(root.GetMissionSetting(5, 4), 5);
  EXPECT_EQ(root.GetModified().Raw(), 300u);
}

}  // namespace
}  // namespace kivtest
