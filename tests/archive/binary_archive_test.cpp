// The binary form: the bytes of every transfer, in both directions.
#include <gtest/gtest.h>

#include "archive/dob_binary_archive.h"
#include "tests/archive/archive_support.h"
#include "tests/support/test_clock.h"

namespace kivstore {
namespace {

using kivtest::BytesOf;
using kivtest::kTestNow;
using namespace std::string_literals;

std::string Written(void (*transfer)(IDobArchive&)) {
  SStreamSrcMemory memory(nullptr, 0);
  {
    SBinaryStream stream(SBinaryStream::kWrite, &memory, false);
    SDobBinaryArchive archive(SDobBinaryArchive::kWrite, &stream);
    transfer(archive);
    EXPECT_FALSE(archive.HasError());
    archive.Finish();
  }
  return BytesOf(memory);
}

// An archive reading these bytes.
class Reading {
 public:
  explicit Reading(const std::string& bytes)
      : stream(SBinaryStream::kRead, new SStreamSrcString(SString(bytes)), true),
        archive(SDobBinaryArchive::kRead, &stream) {}
  IDobArchive* operator->() { return &archive; }
  IDobArchive& operator*() { return archive; }

 private:
  SBinaryStream stream;
  SDobBinaryArchive archive;
};

struct FormCase {
  const char* what;
  void (*write)(IDobArchive&);
  bool (*reads)(IDobArchive&);  // the same value
  std::string bytes;
};

// One value for both directions.
#define KIV_FORM(operation, type, ...) \
#operation " " #__VA_ARGS__,                 \
      [](IDobArchive& a) {                     \
        type value{__VA_ARGS__};               \
        a.operation("name", value);            \
      },                                       \
      [](IDobArchive& a) {                     \
        type value{};                          \
        const type expected{__VA_ARGS__};      \
        return a.operation("name", value) && value == expected; \
      }

TEST(SDobBinaryArchive, EveryScalarHasItsBytesInBothDirections) {
  const FormCase cases[] = {
      {KIV_FORM(TransferBool, bool, true), "\x01"s},
      {KIV_FORM(TransferBool, bool, false), "\x00"s},
      {KIV_FORM(TransferChar, char, 'x'), "x"},
      {KIV_FORM(TransferUChar, uint8_t, 0xFE), "\xFE"s},
      {KIV_FORM(TransferShort, int16_t, -2), "\xFF\xFE"s},
      {KIV_FORM(TransferUShort, uint16_t, 0xFFFE), "\xFF\xFE"s},
      {KIV_FORM(TransferLong, int32_t, -2), "\xFF\xFF\xFF\xFE"s},
      {KIV_FORM(TransferULong, uint32_t, 0x80000001), "\x80\x00\x00\x01"s},
      {KIV_FORM(TransferDouble, double, -2.0), "\xC0\0\0\0\0\0\0\0"s},
      {KIV_FORM(TransferString, SString, "a b"), "a b\0"s},
      {KIV_FORM(TransferString, SString, ""), "\0"s},
  };
  for (const FormCase& c : cases) {
    EXPECT_EQ(Written(c.write), c.bytes) << c.what;
    EXPECT_TRUE(c.reads(*Reading(c.bytes))) << c.what;
    EXPECT_FALSE(c.reads(*Reading(c.bytes.substr(0, c.bytes.size() - 1)))) << c.what;
  }
}

TEST(SDobBinaryArchive, AnyByteButZeroReadsAsTrue) {
  bool value = false;
  EXPECT_TRUE(Reading("\x80")->TransferBool(nullptr, value));
  EXPECT_TRUE(value);
}

TEST(SDobBinaryArchive, AStringIsCutAtItsNulWhenReadBack) {
  const std::string bytes = Written([](IDobArchive& a) {
    SString text("ab\0cd", 5);
    a.TransferString(nullptr, text);
  });
  EXPECT_EQ(bytes, "ab\0cd\0"s);
  SString text;
  Reading(bytes)->TransferString(nullptr, text);
  EXPECT_STREQ(text.GetText(), "ab");
}

TEST(SDobBinaryArchive, CompositesAreTheirPartsInOrder) {
  EXPECT_EQ(Written([](IDobArchive& a) {
              SPoint point{1, 2};
              SSize size{3, 4};
              SRect rect{5, 6, 7, 8};
              a.TransferPoint("p", point);
              a.TransferSize("s", size);
              a.TransferRect("r", rect);
            }),
            "\0\0\0\1\0\0\0\2"
            "\0\0\0\3\0\0\0\4"
            "\0\0\0\5\0\0\0\6\0\0\0\7\0\0\0\x08"s);
}

TEST(SDobBinaryArchive, WritesTheFreshMarkOfAStampAsItsOwnTimeOnly) {
  const kivtest::TestClock clock;
  EXPECT_EQ(Written([](IDobArchive& a) {
              SDateTime known(0x0A0B0C0D);
              SDateTime fresh = SDateTime::Fresh();
              a.TransferTimeStamp("k", known);
              a.TransferTimeStamp("k", fresh);
              a.TransferDateTime("k", fresh);
            }),
            "\0\0\0\0\x0A\x0B\x0C\x0D"
            "\0\0\0\0\xB6\xA1\x33\xF2"
            "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s);
}

TEST(SDobBinaryArchive, AFreshStampIsNotOverwrittenByReading) {
  Reading archive("\0\0\0\0\0\0\0\x05\xFF\xFF\xFF\xFF\0\0\0\x06"s);
  SDateTime fresh = SDateTime::Fresh();
  EXPECT_TRUE(archive->TransferTimeStamp("k", fresh));
  EXPECT_TRUE(fresh.IsFresh());
  SDateTime stamp = SDateTime::None();
  EXPECT_TRUE(archive->TransferTimeStamp("k", stamp));
  EXPECT_EQ(stamp.Raw(), 6u) << "the high word is dropped";
}

TEST(SDobBinaryArchive, BlobIsItsLengthAndItsBytes) {
  const auto write = [](IDobArchive& a) {
    MemoryHandle handle = AllocateBlock(3);
    std::memcpy(LockBlock(handle), "abc", 3);
    int32_t length = 3;
    a.TransferBlob("b", handle, length);
    length = 0;
    a.TransferBlob("b", handle, length);
    length = -4;
    a.TransferBlob("b", handle, length);
    FreeBlock(handle);
  };
  const std::string bytes = Written(write);
  EXPECT_EQ(bytes, "\0\0\0\3abc\0\0\0\0\0\0\0\0"s);

  Reading archive(bytes);
  MemoryHandle handle = nullptr;
  int32_t length = 0;
  ASSERT_TRUE(archive->TransferBlob("b", handle, length));
  EXPECT_EQ(length, 3);
  EXPECT_EQ(std::string(static_cast<const char*>(LockBlock(handle)), 3), "abc");
  FreeBlock(handle);
  EXPECT_TRUE(archive->TransferBlob("b", handle, length));
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(length, 0);
}

TEST(SDobBinaryArchive, BlobLongerThanTheStreamIsAnErrorAndAllocatesNothing) {
  for (const std::string& bytes : {"\x7F\xFF\xFF\xFF"s, "\0\0\0\4abc"s, "\0\0"s}) {
    Reading archive(bytes);
    MemoryHandle handle = nullptr;
    int32_t length = 1;
    EXPECT_FALSE(archive->TransferBlob("b", handle, length));
    EXPECT_TRUE(archive->HasError());
    EXPECT_EQ(handle, nullptr);
  }
}

TEST(SDobBinaryArchive, WritingABlobWithoutABlockWritesNothingAndIsNoError) {
  EXPECT_EQ(Written([](IDobArchive& a) {
              MemoryHandle none = nullptr;
              int32_t length = 3;
              EXPECT_FALSE(a.TransferBlob("b", none, length));
            }),
            "");
}

TEST(SDobBinaryArchive, TagsAndBytesAreComparedAsTheyStand) {
  EXPECT_EQ(Written([](IDobArchive& a) {
              a.WriteTag(0x47616D65);
              a.WriteBytes("BIN\1", 4);
            }),
            "GameBIN\1"s);
  Reading archive("GameBIN\1"s);
  EXPECT_TRUE(archive->CheckTag(0x47616D65));
  EXPECT_FALSE(archive->CheckBytes("BIN\2", 4));
  EXPECT_FALSE(archive->HasError());
}

TEST(SDobBinaryArchive, TakesARowAtOnceOnlyWhereItLiesReadyToTheLast) {
  const kivtest::TempFolder folder;
  folder.WriteFile("f", "\0\1\xFF\xFE\0\1\2"s);
  SDobBinaryArchive archive(SDobBinaryArchive::kRead, kivtest::SpecOf(folder, "f"));
  int16_t numbers[3] = {7, 7, 7};
  EXPECT_FALSE(archive.TakeRow(numbers, 2)) << "nothing is read yet";
  EXPECT_TRUE(archive.TransferShort(nullptr, numbers[2]));
  EXPECT_EQ(numbers[2], 1);
  EXPECT_FALSE(archive.TakeRow(numbers, 3)) << "5 bytes are left";
  EXPECT_FALSE(archive.TakeRow(numbers, -1));
  EXPECT_FALSE(archive.TakeRow(numbers, INT32_MAX));
  EXPECT_EQ(numbers[0], 7);
  EXPECT_TRUE(archive.TakeRow(numbers, 1));
  EXPECT_EQ(numbers[0], -2);
  bool flags[3] = {true, false, false};
  EXPECT_TRUE(archive.TakeRow(flags, 3));
  EXPECT_FALSE(flags[0]);
  EXPECT_TRUE(flags[1] && flags[2]);
  EXPECT_FALSE(archive.HasError());
}

TEST(SDobBinaryArchive, WithoutAStreamEverythingFails) {
  SDobBinaryArchive archive(SDobBinaryArchive::kRead, nullptr);
  IDobArchive& a = archive;
  bool flag = true;
  int32_t number = 1;
  SString text("kept");
  SRect rect;
  SDateTime time = SDateTime::None();
  MemoryHandle handle = nullptr;
  EXPECT_TRUE(a.HasError());
  EXPECT_FALSE(a.TransferBool("", flag) || a.TransferLong("", number) ||
               a.TransferString("", text) || a.TransferRect("", rect) ||
               a.TransferTimeStamp("", time) || a.TransferBlob("", handle, number) ||
               a.CheckTag(0) || a.WriteTag(0) || a.CheckBytes("", 0) || a.WriteBytes("", 0));
  a.Finish();
  EXPECT_STREQ(text.GetText(), "kept");
}

}  // namespace
}  // namespace kivstore
