// The binary form: the bytes of every transfer in both directions, and the stream below it: the
// sticky error, copies, and the forwarding source.
#include "archive/dob_binary_archive.h"
#include "archive/stream_stream.h"
#include "tests/archive/archive_support.h"
#include "tests/support/failing_memory.h"

namespace kivstore {
namespace {

using kivtest::BytesOf;
using namespace std::string_literals;

template <class Transfer>
std::string Written(Transfer transfer) {
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream stream(SBinaryStream::kWrite, &memory, false);
  SDobBinaryArchive archive(SDobBinaryArchive::kWrite, &stream);
  transfer(archive);
  EXPECT_FALSE(archive.HasError());
  archive.Finish();
  return BytesOf(memory);
}

// An archive reading these bytes.
struct Reading {
  explicit Reading(const std::string& bytes)
      : stream(SBinaryStream::kRead, new SStreamSrcString(SString(bytes)), true) {}
  IDobArchive* operator->() { return &archive; }

  SBinaryStream stream;
  SDobBinaryArchive archive{SDobBinaryArchive::kRead, &stream};
};

template <class T>
void ExpectForm(bool (IDobArchive::*transfer)(const char*, T&), T value, const std::string& bytes) {
  EXPECT_EQ(Written([&](IDobArchive& a) { (a.*transfer)("name", value); }), bytes);
  T back{};
  EXPECT_TRUE((Reading(bytes).archive.*transfer)("name", back)) << bytes;
  EXPECT_EQ(Written([&](IDobArchive& a) { (a.*transfer)("name", back); }), bytes);
  EXPECT_FALSE((Reading(bytes.substr(0, bytes.size() - 1)).archive.*transfer)("name", back))
      << "one byte short";
}

TEST(SDobBinaryArchive, EveryTypeHasItsBytesInBothDirections) {
  const kivtest::TestClock clock;
  using A = IDobArchive;
  ExpectForm(&A::TransferBool, true, "\x01"s);
  ExpectForm(&A::TransferBool, false, "\x00"s);
  ExpectForm(&A::TransferChar, 'x', "x");
  ExpectForm(&A::TransferUChar, uint8_t{0xFE}, "\xFE"s);
  ExpectForm(&A::TransferShort, int16_t{-2}, "\xFF\xFE"s);
  ExpectForm(&A::TransferUShort, uint16_t{0xFFFE}, "\xFF\xFE"s);
  ExpectForm(&A::TransferLong, -2, "\xFF\xFF\xFF\xFE"s);
  ExpectForm(&A::TransferULong, 0x80000001u, "\x80\x00\x00\x01"s);
  ExpectForm(&A::TransferDouble, -2.0, "\xC0\0\0\0\0\0\0\0"s);
  ExpectForm(&A::TransferString, SString(""), "\0"s);
  ExpectForm(&A::TransferString, SString("ab"), "ab\0"s);
  ExpectForm(&A::TransferPoint, SPoint{1, -1}, "\0\0\0\1\xFF\xFF\xFF\xFF"s);
  ExpectForm(&A::TransferSize, SSize{3, 4}, "\0\0\0\3\0\0\0\4"s);
  ExpectForm(&A::TransferRect, SRect{5, 6, 7, 8}, "\0\0\0\5\0\0\0\6\0\0\0\7\0\0\0\x08"s);
  ExpectForm(&A::TransferDateTime, SDateTime(0x01020304), "\0\0\0\0\1\2\3\4"s);
  ExpectForm(&A::TransferDateTime, SDateTime::Fresh(), std::string(8, '\xFF'));
  ExpectForm(&A::TransferTimeStamp, SDateTime(0x0A0B0C0D), "\0\0\0\0\x0A\x0B\x0C\x0D"s);
  ExpectForm(&A::TransferTimeStamp, SDateTime::Fresh(), "\0\0\0\0\xB6\xA1\x33\xF2"s);
  bool value = false;
  EXPECT_TRUE(Reading("\x80")->TransferBool(nullptr, value) && value) << "any byte but zero";
}

TEST(SDobBinaryArchive, AFreshStampIsNotOverwrittenByReading) {
  Reading archive("\0\0\0\0\0\0\0\x05\xFF\xFF\xFF\xFF\0\0\0\x06"s);
  SDateTime fresh = SDateTime::Fresh();
  SDateTime stamp = SDateTime::None();
  EXPECT_TRUE(archive->TransferTimeStamp("k", fresh) && archive->TransferTimeStamp("k", stamp));
  EXPECT_TRUE(fresh.IsFresh());
  EXPECT_EQ(stamp.Raw(), 6u) << "the high word is dropped";
}

TEST(SDobBinaryArchive, BlobIsItsLengthAndItsBytesAndNeverLongerThanTheStream) {
  MemoryHandle handle = AllocateBlock(3), none = nullptr;
  std::memcpy(LockBlock(handle), "abc", 3);
  int32_t length = 3;
  const std::string bytes = Written([&](IDobArchive& a) {
    for (int32_t written : {3, 0, -4}) {
      a.TransferBlob("b", handle, written);
    }
    EXPECT_FALSE(a.TransferBlob("b", none, length)) << "writes nothing and is no error";
  });
  FreeBlock(handle);
  EXPECT_EQ(bytes, "\0\0\0\3abc\0\0\0\0\0\0\0\0"s);
  Reading archive(bytes);
  ASSERT_TRUE(archive->TransferBlob("b", handle, length) && length == 3);
  EXPECT_EQ(std::string(static_cast<const char*>(LockBlock(handle)), 3), "abc");
  FreeBlock(handle);
  EXPECT_TRUE(archive->TransferBlob("b", handle, length) && handle == nullptr && length == 0);
  for (const std::string& torn : {"\x7F\xFF\xFF\xFF"s, "\0\0\0\4abc"s, "\0\0"s}) {
    Reading tornArchive(torn);
    EXPECT_FALSE(tornArchive->TransferBlob("b", handle, length));
    EXPECT_TRUE(tornArchive->HasError() && handle == nullptr) << "allocates nothing";
  }
  kivtest::FailingMemory memory;
  memory.exhausted = true;
  Reading full("\0\0\0\1a\7"s);
  EXPECT_FALSE(full->TransferBlob("b", handle, length) || handle != nullptr || length != 0);
  uint8_t next = 0;
  EXPECT_TRUE(full->TransferUChar("n", next) && next == 7) << "what has no room is read past";
}

using BytesOfAFile = kivtest::FileTest;

TEST_F(BytesOfAFile, AreTakenAtOnceOnlyWhereTheyLieReadyToTheLast) {
  SDobBinaryArchive archive(SDobBinaryArchive::kRead, FileOf("\0\1\xFF\xFE\0\1\2"s));
  int16_t number = 7;
  EXPECT_EQ(archive.TakeReady(2), nullptr) << "nothing is read yet";
  EXPECT_TRUE(archive.TransferShort(nullptr, number));
  for (const int32_t count : {6, -1, INT32_MAX}) {
    EXPECT_EQ(archive.TakeReady(count), nullptr) << "5 bytes are left";
  }
  EXPECT_TRUE(archive.TakeReady(0) != nullptr && *archive.TakeReady(1) == 0xFF);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(archive.TakeReady(4)), 4), "\xFE\0\1\2"s);
  EXPECT_FALSE(archive.HasError());
}

TEST(SBinaryStream, ReadsBackAfterARewindAndComparesWhatItReads) {
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream s(SBinaryStream::kWrite, &memory, false);
  const std::string row(200, 'a');
  EXPECT_TRUE(s.WriteByte(0xAB) && s.WriteLong(0x10000) && s.WriteDouble(1.5) &&
              s.WriteRaw((row + "BIN").c_str(), 203));
  s.FinishWriting(true);
  EXPECT_FALSE(s.IsWriting());
  double real = 0;
  int32_t number = 7;
  EXPECT_TRUE(s.Skip(1) && s.ReadAndCompareLong(0x10000) && s.ReadDouble(real) &&
              s.ReadAndCompareRaw(row.c_str(), 200));
  EXPECT_FALSE(s.ReadAndCompareRaw("BIM", 3) || s.HasError()) << "a difference is no error";
  EXPECT_FALSE(s.ReadAndCompareRaw("B", -1) || s.ReadLong(number));
  EXPECT_TRUE(s.HasError() && real == 1.5 && number == 7);
}

TEST(SBinaryStream, DoesNothingOnceItHasAnErrorOrWithoutASource) {
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream stream(SBinaryStream::kWrite, &memory, false);
  stream.WriteByte(1);
  stream.SetError(true);
  EXPECT_FALSE(stream.WriteByte(2) || stream.WriteLong(2) || stream.WriteText("x") ||
               stream.WriteRect({}) || stream.WriteDateTime(SDateTime(3)) || stream.Skip(1));
  EXPECT_EQ(memory.GetPosition(), 1);
  SBinaryStream nothing(SBinaryStream::kRead, nullptr, true);
  SDobBinaryArchive archive(SDobBinaryArchive::kRead, nullptr);
  int32_t number = 1;
  SString text("kept");
  MemoryHandle handle = nullptr;
  EXPECT_FALSE(nothing.ReadText(text) || archive.TransferLong("", number) ||
               archive.TransferString("", text) || archive.TransferBlob("", handle, number) ||
               archive.CheckTag(0) || archive.WriteBytes("", 0));
  archive.Finish();
  EXPECT_TRUE(archive.HasError() && text == "kept");
}

TEST(SBinaryStream, CopiesBlocksUntilTheCountIsUsedOrTheSinkRefuses) {
  struct STakenBytes : SBinaryStream::Sink {
    bool Take(const uint8_t* block, int32_t length) override {
      bytes.append(reinterpret_cast<const char*>(block), static_cast<size_t>(length));
      return bytes.size() < 3;
    }
    std::string bytes;
  };
  SBinaryStream source(SBinaryStream::kRead, new SStreamSrcString("abcdefg"), true);
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream copy(SBinaryStream::kWrite, &memory, false);
  EXPECT_TRUE(copy.CopyFrom(source, 4));
  EXPECT_TRUE(copy.CopyFrom(source, 0));
  EXPECT_TRUE(copy.CopyFrom(source, -5));
  STakenBytes sink;
  EXPECT_TRUE(source.CopyTo(sink, 2));
  EXPECT_FALSE(source.CopyTo(sink, 1));
  EXPECT_EQ(sink.bytes, "efg");
  EXPECT_TRUE(source.HasError());
  EXPECT_FALSE(copy.CopyFrom(source, 1));
  EXPECT_TRUE(copy.HasError());
  SBinaryStream own(SBinaryStream::kRead, new SStreamSrcString("abc"), true);
  EXPECT_TRUE(!own.CopyFrom(own, 1) && own.HasError()) << "not from itself";
  copy.FinishWriting(false);
  EXPECT_EQ(BytesOf(memory), "abcd");
}

TEST(SStreamSrcStream, OpensOnlyInTheDirectionOfItsStreamAndEndsItsWriting) {
  SBinaryStream reading(SBinaryStream::kRead, new SStreamSrcString(SString('b', 3000)), true);
  SStreamSrcStream source(&reading, false);
  EXPECT_TRUE(source.HasError());
  EXPECT_FALSE(source.Open(SStreamSource::kWrite));
  EXPECT_TRUE(source.Open(SStreamSource::kRead));
  EXPECT_TRUE(source.Extend(5)) << "nothing to extend";
  for (const int32_t expected : {2048, 952, 0}) {
    int32_t count = 100000;
    source.GetBlock(count);
    EXPECT_EQ(count, expected);
  }
  EXPECT_FALSE(SStreamSrcStream(nullptr, false).Open(SStreamSource::kRead) ||
               SStreamSrcStream(nullptr, false).Extend(1));
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream writing(SBinaryStream::kWrite, &memory, false);
  SStreamSrcStream target(&writing, false);
  EXPECT_FALSE(target.Open(SStreamSource::kRead));
  EXPECT_TRUE(target.Open(SStreamSource::kWrite) && target.WriteByte('a') && target.Close());
  EXPECT_FALSE(writing.IsWriting());
}

}  // namespace
}  // namespace kivstore
