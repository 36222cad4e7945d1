// The text form of records: keys, texts, paths and their limits, and the operations for sections.
#include <optional>

#include "archive/dob_pref_archive.h"
#include "tests/archive/archive_support.h"

namespace kivstore {
namespace {

using A = IDobArchive;
using kivtest::SampleDob;

class PrefArchives : public kivtest::FileTest {
 protected:
  SDobPrefArchive Reading(const std::string& text) const {
    return SDobPrefArchive(SDobPrefArchive::kRead, FileOf(text));
  }
  // The value of a text; nothing if the transfer failed, the variable kept and the error set.
  template <class T>
  std::optional<T> ValueOf(bool (A::*transfer)(const char*, T&), const std::string& text) const {
    SDobPrefArchive archive = Reading("[_Default]\nk=" + text + "\n");
    const auto before = static_cast<T>(77);
    T value = before;
    const bool succeeded = (archive.*transfer)("k", value);
    EXPECT_NE(succeeded, archive.HasError()) << text;
    EXPECT_TRUE(succeeded || value == before) << text;
    return succeeded ? std::optional<T>(value) : std::nullopt;
  }
};

TEST_F(PrefArchives, EveryTypeHasItsTextAndLevelsJoinTheirNames) {
  SDobPrefArchive archive(SDobPrefArchive::kWrite, FileOf(""));
  const auto put = [&](auto transfer, const char* name, auto value) {
    EXPECT_TRUE((archive.*transfer)(name, value)) << name;
  };
  put(&A::TransferBool, "Bool", true);
  put(&A::TransferChar, "Char", 'x');
  put(&A::TransferUChar, "UChar", uint8_t{200});
  put(&A::TransferShort, "Short", int16_t{-5});
  put(&A::TransferUShort, "UShort", uint16_t{65535});
  put(&A::TransferLong, "Long", INT32_MIN);
  put(&A::TransferULong, "ULong", UINT32_MAX);
  put(&A::TransferDouble, "Double", 0.1234567);
  put(&A::TransferString, "String", SString(" a b "));
  archive.PushSection("Student");
  archive.PushSectionNumber(7);
  put(&A::TransferPoint, "P", SPoint{1, 2});
  put(&A::TransferSize, "S", SSize{3, 4});
  put(&A::TransferRect, "R", SRect{5, 6, 7, 8});
  archive.PopSection();
  put(&A::TransferTimeStamp, "T", SDateTime(9));
  put(&A::TransferTimeStamp, "F", SDateTime::Fresh());
  archive.PushKey("Array");
  put(&A::TransferUShort, "Count", uint16_t{1});
  archive.PushKeyNumber(0);
  archive.PushKey(nullptr);
  put(&A::TransferUShort, nullptr, uint16_t{6});
  MemoryHandle handle = nullptr;
  int32_t length = 0;
  EXPECT_FALSE(archive.TransferBlob("b", handle, length)) << "refused, and no error";
  EXPECT_TRUE(archive.WriteTag(1) && archive.CheckBytes("BIN", 3)) << "headers pass";
  EXPECT_FALSE(archive.HasError());
  archive.Finish();
  EXPECT_EQ(Stored(),
            "[_Default]\r\nBool=1\r\nChar=x\r\nUChar=200\r\nShort=-5\r\nUShort=65535\r\n"
            "Long=-2147483648\r\nULong=4294967295\r\nDouble=0.123457\r\nString= a b \r\n"
            "[Student_7]\r\nP_x=1\r\nP_y=2\r\nS_cx=3\r\nS_cy=4\r\n"
            "R_left=5\r\nR_top=6\r\nR_right=7\r\nR_bottom=8\r\n"
            "[Student]\r\nT_ts_high=0\r\nT_ts_low=9\r\nF_ts_high=0\r\nF_ts_low=3064017906\r\n"
            "Array_Count=1\r\nArray_0=6\r\n");
}

TEST_F(PrefArchives, ReadsWhatFitsAndLeavesTheVariableOtherwise) {
  EXPECT_EQ(ValueOf(&A::TransferUChar, "255"), 255);
  EXPECT_EQ(ValueOf(&A::TransferUChar, "256"), std::nullopt);
  EXPECT_EQ(ValueOf(&A::TransferUChar, "-1"), std::nullopt);
  EXPECT_EQ(ValueOf(&A::TransferShort, "-32768"), -32768);
  EXPECT_EQ(ValueOf(&A::TransferShort, "32768"), std::nullopt);
  EXPECT_EQ(ValueOf(&A::TransferUShort, "65535"), 65535);
  EXPECT_EQ(ValueOf(&A::TransferUShort, "65536"), std::nullopt);
  EXPECT_EQ(ValueOf(&A::TransferLong, "-9"), -9);
  EXPECT_EQ(ValueOf(&A::TransferLong, "no"), 0);
  EXPECT_EQ(ValueOf(&A::TransferLong, ""), std::nullopt);
  EXPECT_EQ(ValueOf(&A::TransferULong, "4294967295"), UINT32_MAX);
  EXPECT_EQ(ValueOf(&A::TransferULong, "x1"), std::nullopt);
  EXPECT_EQ(ValueOf(&A::TransferDouble, "-0.5"), -0.5);
  EXPECT_EQ(ValueOf(&A::TransferDouble, "1.5x"), std::nullopt);
  EXPECT_EQ(ValueOf(&A::TransferChar, "yes"), 'y');
  EXPECT_EQ(ValueOf(&A::TransferBool, "1"), true);
  EXPECT_EQ(ValueOf(&A::TransferBool, "2"), false);
  EXPECT_EQ(ValueOf(&A::TransferBool, ""), std::nullopt);
  SString text("x");
  EXPECT_TRUE(Reading("[_Default]\nk=\n").TransferString("k", text));
  EXPECT_TRUE(text.IsEmpty());
}

TEST_F(PrefArchives, PathsEndAt240Characters) {
  for (const size_t length : {240u, 241u}) {
    SDobPrefArchive archive = Reading(""), keys(SDobPrefArchive::kRead, SpecOf("f"));
    const std::string name(length, 'p');
    archive.PushSection(name.c_str());
    EXPECT_EQ(archive.HasError(), length == 241);
    EXPECT_EQ(archive.GetSection(), length == 240 ? name : "_Default");
    archive.PopSection();
    EXPECT_STREQ(archive.GetSection(), "_Default");
    keys.PushKey("k");
    keys.PushKey(name.c_str() + 2);
    EXPECT_EQ(keys.HasError(), length == 241) << "one less for the line between";
    keys.PopKey();
    EXPECT_STREQ(keys.GetKey(), "k");
  }
}

TEST_F(PrefArchives, PathsHave32SectionsAnd16KeysAndNoneToPopAtFirst) {
  SDobPrefArchive archive = Reading("");
  for (int i = 0; i < 17; ++i) {
    archive.PushKey(i == 15 ? "last" : i == 16 ? "dropped" : nullptr);
  }
  EXPECT_STREQ(archive.GetKey(), "last");
  archive.PopKey();
  EXPECT_STREQ(archive.GetKey(), "") << "the dropped one's pop takes a level too many";
  for (int i = 0; i < 33; ++i) {
    EXPECT_FALSE(archive.HasError());
    archive.PushSection("s");
  }
  EXPECT_TRUE(archive.HasError());
  EXPECT_EQ(std::string(archive.GetSection()).size(), 63u);
  for (void (A::*const pop)() : {&A::PopSection, &A::PopKey}) {
    SDobPrefArchive fresh(SDobPrefArchive::kRead, SpecOf("f"));
    (fresh.*pop)();
    EXPECT_TRUE(fresh.HasError());
  }
}

TEST_F(PrefArchives, AMissingKeyFailsTheLoadButNotTheFieldsBehindItAndAMissingFileAll) {
  SampleDob record;
  EXPECT_FALSE(record.LoadFromPref(FileOf("[s]\nSpeed=20\nName=Ann\n"), "s"));
  const SFileSpec missing = SpecOf("missing");
  EXPECT_FALSE(record.SaveToPref(missing, "s") || record.LoadFromPref(missing, "s") ||
               record.DeleteFromPref(missing, "s") || record.LoadAny(missing, "s") ||
               record.SaveMergedToPref(missing, "s") || record.MergeFromAny(missing, "s"));
  EXPECT_TRUE(record.Speed.value == 20 && record.Name == "Ann");
}

TEST_F(PrefArchives, ARecordThatNoTextCanHoldIsRefusedBeforeItsFirstKey) {
  const std::string text = "[s]\r\nSpeed=20\r\n";
  for (const SString& name : {SString("two\nlines"), SString('z', 9000)}) {
    SampleDob record;
    record.Name = name;
    EXPECT_FALSE(record.SaveToPref(FileOf(text), "s") || record.SaveToPref(SpecOf("f"), "new"));
    EXPECT_EQ(Stored(), text);
  }
}

TEST_F(PrefArchives, SectionsMergeAsFilesDoAndAnyFormLoads) {
  SFileSpec spec = FileOf("");
  SampleDob first, second, merged;
  ASSERT_TRUE(first.SaveToPref(spec, "s"));
  first.SetSpeed(20);
  second.SetSound(false);
  EXPECT_TRUE(first.SaveMergedToPref(spec, "s") && second.SaveMergedToPref(spec, "s") &&
              merged.MergeFromPref(spec, "s"));
  EXPECT_TRUE(merged.Speed.value == 20 && !merged.Sound.value);
  for (const bool binary : {false, true}) {
    SampleDob any, loaded;
    EXPECT_TRUE(!binary || merged.SaveToFile(spec));
    EXPECT_TRUE(any.MergeFromAny(spec, "s") && any.IsEqual(merged));
    EXPECT_TRUE(loaded.LoadAny(spec, "s") && loaded.IsEqual(merged));
  }
}

}  // namespace
}  // namespace kivstore
