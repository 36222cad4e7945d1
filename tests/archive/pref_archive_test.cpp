// The text form of records: keys, texts, paths and their limits, and the operations for sections.
#include <gtest/gtest.h>

#include "archive/dob_pref_archive.h"
#include "tests/archive/archive_support.h"
#include "tests/support/test_clock.h"

namespace kivstore {
namespace {

using kivtest::SampleDob;
using kivtest::SpecOf;

class PrefArchives : public testing::Test {
 protected:
  SFileSpec FileOf(const std::string& bytes) const {
    folder.WriteFile("f", bytes);
    return SpecOf(folder, "f");
  }
  std::string Stored() const { return folder.ReadFile("f"); }

  // The text that these transfers write into an empty file.
  std::string Written(void (*transfer)(IDobArchive&)) const {
    const SFileSpec spec = FileOf("");
    SDobPrefArchive archive(SDobPrefArchive::kWrite, spec);
    transfer(archive);
    EXPECT_FALSE(archive.HasError());
    archive.Finish();
    return Stored();
  }

  kivtest::TempFolder folder;
  kivtest::TestClock clock;
};

TEST_F(PrefArchives, EveryTypeHasItsText) {
  EXPECT_EQ(Written([](IDobArchive& a) {
              bool flag = true;
              char letter = 'x';
              uint8_t byte = 200;
              int16_t small = -5;
              uint16_t count = 65535;
              int32_t number = INT32_MIN;
              uint32_t large = UINT32_MAX;
              double real = 0.1234567;
              SString text(" a b ");
              a.TransferBool("Bool", flag);
              a.TransferChar("Char", letter);
              a.TransferUChar("UChar", byte);
              a.TransferShort("Short", small);
              a.TransferUShort("UShort", count);
              a.TransferLong("Long", number);
              a.TransferULong("ULong", large);
              a.TransferDouble("Double", real);
              a.TransferString("String", text);
            }),
            "[_Default]\r\nBool=1\r\nChar=x\r\nUChar=200\r\nShort=-5\r\nUShort=65535\r\n"
            "Long=-2147483648\r\nULong=4294967295\r\nDouble=0.123457\r\nString= a b \r\n");
}

TEST_F(PrefArchives, CompositesAndLevelsJoinTheirNames) {
  EXPECT_EQ(Written([](IDobArchive& a) {
              SPoint point{1, 2};
              SSize size{3, 4};
              SRect rect{5, 6, 7, 8};
              SDateTime stamp(9);
              SDateTime fresh = SDateTime::Fresh();
              uint16_t count = 1;
              a.PushSection("Student");
              a.PushSectionNumber(7);
              a.TransferPoint("P", point);
              a.TransferSize("S", size);
              a.TransferRect("R", rect);
              a.PopSection();
              a.TransferTimeStamp("T", stamp);
              a.TransferTimeStamp("F", fresh);
              a.PushKey("Array");
              a.TransferUShort("Count", count);
              a.PushKeyNumber(0);
              a.TransferUShort(nullptr, count);
              a.PopKey();
              a.PopKey();
              a.PopSection();
            }),
            "[Student_7]\r\nP_x=1\r\nP_y=2\r\nS_cx=3\r\nS_cy=4\r\n"
            "R_left=5\r\nR_top=6\r\nR_right=7\r\nR_bottom=8\r\n"
            "[Student]\r\nT_ts_high=0\r\nT_ts_low=9\r\nF_ts_high=0\r\nF_ts_low=3064017906\r\n"
            "Array_Count=1\r\nArray_0=1\r\n");
}

struct ParseCase {
  const char* value;
  bool (*reads)(IDobArchive&);  // transferred as it should be
};

template <class T>
bool Gives(bool (IDobArchive::*transfer)(const char*, T&), IDobArchive& a, T expected) {
  T value = 77;
  return (a.*transfer)("k", value) && value == expected;
}

template <class T>
bool Fails(bool (IDobArchive::*transfer)(const char*, T&), IDobArchive& a) {
  T value = 77;
  return !(a.*transfer)("k", value) && value == 77 && a.HasError();
}

TEST_F(PrefArchives, ReadsWhatFitsAndLeavesTheVariableOtherwise) {
  using A = IDobArchive;
  const ParseCase cases[] = {
      {"255", [](A& a) { return Gives<uint8_t>(&A::TransferUChar, a, 255); }},
      {"256", [](A& a) { return Fails(&A::TransferUChar, a); }},
      {"-1", [](A& a) { return Fails(&A::TransferUChar, a); }},
      {"-32768", [](A& a) { return Gives<int16_t>(&A::TransferShort, a, -32768); }},
      {"32768", [](A& a) { return Fails(&A::TransferShort, a); }},
      {"65535", [](A& a) { return Gives<uint16_t>(&A::TransferUShort, a, 65535); }},
      {"65536", [](A& a) { return Fails(&A::TransferUShort, a); }},
      {"-9", [](A& a) { return Gives<int32_t>(&A::TransferLong, a, -9); }},
      {"no", [](A& a) { return Gives<int32_t>(&A::TransferLong, a, 0); }},
      {"", [](A& a) { return Fails(&A::TransferLong, a); }},
      {"4294967295", [](A& a) { return Gives<uint32_t>(&A::TransferULong, a, UINT32_MAX); }},
      {"x1", [](A& a) { return Fails(&A::TransferULong, a); }},
      {"-0.5", [](A& a) { return Gives<double>(&A::TransferDouble, a, -0.5); }},
      {"1.5x", [](A& a) { return Fails(&A::TransferDouble, a); }},
      {"yes", [](A& a) { return Gives<char>(&A::TransferChar, a, 'y'); }},
      {"", [](A& a) { return Fails(&A::TransferChar, a); }},
  };
  for (const ParseCase& c : cases) {
    SDobPrefArchive archive(SDobPrefArchive::kRead,
                            FileOf(std::string("[_Default]\nk=") + c.value + "\n"));
    EXPECT_TRUE(c.reads(archive)) << c.value << " " << &c - cases;
  }
}

TEST_F(PrefArchives, OnlyOneIsTrueAndAnEmptyTextIsATextButNoBool) {
  SDobPrefArchive archive(SDobPrefArchive::kRead, FileOf("[_Default]\none=1\ntwo=2\nnone=\n"));
  bool value = false;
  EXPECT_TRUE(archive.TransferBool("one", value));
  EXPECT_TRUE(value);
  EXPECT_TRUE(archive.TransferBool("two", value));
  EXPECT_FALSE(value);
  SString text("x");
  EXPECT_TRUE(archive.TransferString("none", text));
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_FALSE(archive.HasError());
  EXPECT_FALSE(archive.TransferBool("none", value));
  EXPECT_TRUE(archive.HasError());
}

TEST_F(PrefArchives, BlobsAreRefusedAndHeadersPass) {
  SDobPrefArchive archive(SDobPrefArchive::kWrite, FileOf(""));
  MemoryHandle handle = nullptr;
  int32_t length = 0;
  EXPECT_FALSE(archive.TransferBlob("b", handle, length));
  EXPECT_TRUE(archive.WriteTag(1) && archive.CheckTag(2) && archive.WriteBytes("", 0) &&
              archive.CheckBytes("", 0));
  EXPECT_FALSE(archive.HasError());
}

TEST_F(PrefArchives, PathsEndAt240Characters) {
  const std::string full(240, 'p');
  for (const size_t length : {240u, 241u}) {
    SDobPrefArchive archive(SDobPrefArchive::kRead, FileOf(""));
    archive.PushSection(std::string(length, 'p').c_str());
    EXPECT_EQ(archive.HasError(), length == 241);
    EXPECT_EQ(archive.GetSection(), length == 240 ? full : "_Default");
    archive.PopSection();
    EXPECT_STREQ(archive.GetSection(), "_Default");
  }
  SDobPrefArchive archive(SDobPrefArchive::kRead, FileOf(""));
  archive.PushKey(std::string(200, 'k').c_str());
  archive.PushKey(std::string(39, 'k').c_str());
  EXPECT_FALSE(archive.HasError());
  archive.PopKey();
  archive.PushKey(std::string(40, 'k').c_str());
  EXPECT_TRUE(archive.HasError());
  EXPECT_EQ(archive.GetKey(), std::string(200, 'k')) << "a level that adds nothing";
}

TEST_F(PrefArchives, PathsHave32SectionsAnd16Keys) {
  SDobPrefArchive archive(SDobPrefArchive::kRead, FileOf(""));
  for (int i = 0; i < 16; ++i) {
    archive.PushKey(i == 15 ? "last" : nullptr);
  }
  archive.PushKey("dropped");
  EXPECT_FALSE(archive.HasError());
  EXPECT_STREQ(archive.GetKey(), "last");
  archive.PopKey();
  EXPECT_STREQ(archive.GetKey(), "") << "its pop takes a level too many";

  for (int i = 0; i < 32; ++i) {
    archive.PushSection("s");
  }
  EXPECT_FALSE(archive.HasError());
  archive.PushSection("s");
  EXPECT_TRUE(archive.HasError());
  EXPECT_EQ(std::string(archive.GetSection()).size(), 63u);
}

TEST_F(PrefArchives, PoppingWhatWasNotPushedIsAnError) {
  SDobPrefArchive sections(SDobPrefArchive::kRead, FileOf(""));
  sections.PopSection();
  EXPECT_TRUE(sections.HasError());
  SDobPrefArchive keys(SDobPrefArchive::kRead, FileOf(""));
  keys.PopKey();
  EXPECT_TRUE(keys.HasError());
}

TEST_F(PrefArchives, AStampedRecordGoesThereAndBack) {
  const SFileSpec spec = FileOf("; kept\r\n");
  SampleDob record;
  record.SetSpeed(20);
  record.Name = "Ann";
  ASSERT_TRUE(record.SaveToPref(spec, "Student"));
  EXPECT_EQ(Stored(),
            "; kept\r\n[Student]\r\nSpeed=20\r\nSpeed_ts_high=0\r\nSpeed_ts_low=3064017906\r\n"
            "Sound=1\r\nSound_ts_high=0\r\nSound_ts_low=0\r\nName=Ann\r\n");
  SampleDob loaded;
  EXPECT_TRUE(loaded.LoadFromPref(spec, "student"));
  EXPECT_TRUE(loaded.IsEqual(record));
  EXPECT_EQ(loaded.Speed.stamp.Raw(), kivtest::kTestNow);

  EXPECT_TRUE(record.DeleteFromPref(spec, "Student"));
  EXPECT_EQ(Stored(), "; kept\r\n[Student]\r\n");
}

TEST_F(PrefArchives, AMissingKeyFailsTheLoadButNotTheFieldsBehindIt) {
  SampleDob record;
  EXPECT_FALSE(record.LoadFromPref(FileOf("[s]\nSpeed=20\nName=Ann\n"), "s"));
  EXPECT_EQ(record.Speed.value, 20);
  EXPECT_STREQ(record.Name.GetText(), "Ann");
}

TEST_F(PrefArchives, WithoutAFileNothingIsTransferred) {
  const SFileSpec missing = SpecOf(folder, "missing");
  SampleDob record;
  record.SetSpeed(20);
  EXPECT_FALSE(record.SaveToPref(missing, "s") || record.LoadFromPref(missing, "s") ||
               record.DeleteFromPref(missing, "s") || record.LoadAny(missing, "s") ||
               record.SaveMergedToPref(missing, "s") || record.MergeFromAny(missing, "s"));
  EXPECT_EQ(record.Speed.value, 20);
}

TEST_F(PrefArchives, MergesBySectionAsByFile) {
  const SFileSpec spec = FileOf("");
  SampleDob first;
  SampleDob second;
  ASSERT_TRUE(first.SaveToPref(spec, "s"));
  first.SetSpeed(20);
  second.SetSound(false);
  EXPECT_TRUE(first.SaveMergedToPref(spec, "s"));
  EXPECT_TRUE(second.SaveMergedToPref(spec, "s"));
  for (const bool any : {false, true}) {
    SampleDob merged;
    EXPECT_TRUE(any ? merged.MergeFromAny(spec, "s") : merged.MergeFromPref(spec, "s"));
    EXPECT_EQ(merged.Speed.value, 20);
    EXPECT_FALSE(merged.Sound.value);
  }
}

TEST_F(PrefArchives, LoadAnyTakesEitherForm) {
  SFileSpec spec = FileOf("[s]\n");
  SampleDob record;
  record.SetSpeed(20);
  record.SaveToPref(spec, "s");
  SampleDob fromText;
  EXPECT_TRUE(fromText.LoadAny(spec, "s"));
  EXPECT_EQ(fromText.Speed.value, 20);
  record.SaveToFile(spec);
  SampleDob fromRecord;
  EXPECT_TRUE(fromRecord.LoadAny(spec, "s"));
  EXPECT_EQ(fromRecord.Speed.value, 20);
}

}  // namespace
}  // namespace kivstore
