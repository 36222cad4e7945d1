// Typed transfer: the bytes of every number, the sticky error, copies, and the forwarding source.
#include <gtest/gtest.h>

#include <climits>

#include "archive/stream_stream.h"
#include "tests/archive/archive_support.h"

namespace kivstore {
namespace {

using kivtest::BytesOf;
using namespace std::string_literals;

struct WireCase {
  bool (*write)(SBinaryStream&);
  std::string bytes;
};

TEST(SBinaryStream, WritesEveryNumberBigEndian) {
  const WireCase cases[] = {
      {[](SBinaryStream& s) { return s.WriteByte(0xAB); }, "\xAB"s},
      {[](SBinaryStream& s) { return s.WriteShort(-2); }, "\xFF\xFE"s},
      {[](SBinaryStream& s) { return s.WriteLong(0x00010000); }, "\x00\x01\x00\x00"s},
      {[](SBinaryStream& s) { return s.WriteLong(INT_MIN); }, "\x80\x00\x00\x00"s},
      {[](SBinaryStream& s) { return s.WriteDouble(1.5); }, "\x3F\xF8\0\0\0\0\0\0"s},
      {[](SBinaryStream& s) { return s.WriteRaw("abc", 3); }, "abc"},
      {[](SBinaryStream& s) { return s.WriteText("ab"); }, "ab\0"s},
      {[](SBinaryStream& s) { return s.WriteText(""); }, "\0"s},
      {[](SBinaryStream& s) { return s.WriteDateTime(SDateTime(0x01020304)); },
       "\0\0\0\0\x01\x02\x03\x04"s},
      {[](SBinaryStream& s) { return s.WriteDateTime(SDateTime::Fresh()); },
       "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s},
      {[](SBinaryStream& s) {
         return s.WritePoint({1, -1});
       },
       "\0\0\0\x01\xFF\xFF\xFF\xFF"s},
      {[](SBinaryStream& s) {
         return s.WriteSize({2, 3});
       },
       "\0\0\0\x02\0\0\0\x03"s},
      {[](SBinaryStream& s) {
         return s.WriteRect({1, 2, 3, 4});
       },
       "\0\0\0\x01\0\0\0\x02\0\0\0\x03\0\0\0\x04"s},
  };
  for (const WireCase& c : cases) {
    SStreamSrcMemory memory(nullptr, 0);
    {
      SBinaryStream stream(SBinaryStream::kWrite, &memory, false);
      EXPECT_TRUE(c.write(stream)) << &c - cases;
    }
    EXPECT_EQ(BytesOf(memory), c.bytes) << &c - cases;
  }
}

TEST(SBinaryStream, ReadsBackWhatItWroteAfterFinishWritingWithRewind) {
  SBinaryStream stream(SBinaryStream::kWrite, new SStreamSrcMemory(nullptr, 0), true);
  stream.WriteShort(-7);
  stream.WriteText("Ann");
  stream.WriteDouble(-0.25);
  stream.WriteRect({1, 2, 3, -4});
  stream.WriteDateTime(SDateTime(77));
  stream.FinishWriting(true);
  EXPECT_FALSE(stream.IsWriting());

  int16_t number = 0;
  SString text;
  double real = 0;
  SRect rect;
  SDateTime time = SDateTime::Fresh();
  EXPECT_TRUE(stream.ReadShort(number) && stream.ReadText(text) && stream.ReadDouble(real) &&
              stream.ReadRect(rect) && stream.ReadDateTime(time));
  EXPECT_EQ(number, -7);
  EXPECT_STREQ(text.GetText(), "Ann");
  EXPECT_EQ(real, -0.25);
  EXPECT_EQ(rect.bottom, -4);
  EXPECT_EQ(time.Raw(), 77u);
  EXPECT_FALSE(stream.ReadShort(number));
  EXPECT_EQ(number, -7) << "a failed read leaves the variable";
}

TEST(SBinaryStream, ComparesWhatItReads) {
  const std::string bytes = "\x00\x01\x00\x00"s + std::string(200, 'a') + "BIN";
  SBinaryStream stream(SBinaryStream::kRead, new SStreamSrcString(SString(bytes)), true);
  EXPECT_TRUE(stream.ReadAndCompareLong(0x10000));
  EXPECT_TRUE(stream.ReadAndCompareRaw(std::string(200, 'a').c_str(), 200));
  EXPECT_FALSE(stream.ReadAndCompareRaw("BIM", 3));
  EXPECT_FALSE(stream.HasError()) << "a difference is no error";
  EXPECT_FALSE(stream.ReadAndCompareRaw("B", -1));
  EXPECT_FALSE(stream.ReadAndCompareRaw("B", 1));
  EXPECT_TRUE(stream.HasError());
}

TEST(SBinaryStream, DoesNothingOnceItHasAnError) {
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream stream(SBinaryStream::kWrite, &memory, false);
  stream.WriteByte(1);
  stream.SetError(true);
  EXPECT_FALSE(stream.WriteByte(2) || stream.WriteLong(2) || stream.WriteText("x") ||
               stream.WriteRect({}) || stream.WriteDateTime(SDateTime(3)) || stream.Skip(1));
  EXPECT_EQ(memory.GetPosition(), 1);
}

TEST(SBinaryStream, OverNoSourceHasItsErrorFromTheStart) {
  SBinaryStream stream(SBinaryStream::kRead, nullptr, true);
  EXPECT_TRUE(stream.HasError());
  int32_t number = 5;
  SString text("kept");
  EXPECT_FALSE(stream.ReadLong(number) || stream.ReadText(text));
  EXPECT_EQ(number, 5);
  EXPECT_STREQ(text.GetText(), "kept");
}

// Of a two-part transfer only the last part's result is kept: a source that fails once shows it.
class SFailsOnce : public SStreamSrcMemory {
 public:
  SFailsOnce() : SStreamSrcMemory(nullptr, 0) {}
  bool Write(const void* source, int32_t count, bool swap) override {
    const bool fails = !failed;
    failed = true;
    return !fails && SStreamSrcMemory::Write(source, count, swap);
  }

 private:
  bool failed = false;
};

TEST(SBinaryStream, KeepsOnlyTheLastPartsErrorOfATransferInParts) {
  SBinaryStream stream(SBinaryStream::kWrite, new SFailsOnce, true);
  EXPECT_TRUE(stream.WritePoint({1, 2}));
  EXPECT_FALSE(stream.HasError());
}

class STakenBytes : public SBinaryStream::Sink {
 public:
  bool Take(const uint8_t* block, int32_t length) override {
    bytes.append(reinterpret_cast<const char*>(block), static_cast<size_t>(length));
    return bytes.size() < limit;
  }
  std::string bytes;
  size_t limit = 1000;
};

TEST(SBinaryStream, CopiesBlocksUntilTheCountIsUsed) {
  SBinaryStream source(SBinaryStream::kRead, new SStreamSrcString("abcdef"), true);
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream copy(SBinaryStream::kWrite, &memory, false);
  EXPECT_TRUE(copy.CopyFrom(source, 4));
  EXPECT_TRUE(copy.CopyFrom(source, 0));
  EXPECT_TRUE(copy.CopyFrom(source, -5));
  STakenBytes sink;
  EXPECT_TRUE(source.CopyTo(sink, 2));
  EXPECT_EQ(sink.bytes, "ef");
  EXPECT_FALSE(copy.CopyFrom(source, 1)) << "no more there";
  EXPECT_TRUE(copy.HasError());
  copy.FinishWriting(false);
  EXPECT_EQ(BytesOf(memory), "abcd");
}

TEST(SBinaryStream, CopyEndsWhereTheSinkRefuses) {
  SBinaryStream source(SBinaryStream::kRead, new SStreamSrcString("abcdef"), true);
  STakenBytes sink;
  sink.limit = 1;
  EXPECT_FALSE(source.CopyTo(sink, 3));
  EXPECT_TRUE(source.HasError());
}

TEST(SStreamHolder, DeletesWhatItOwnsAndNothingElse) {
  struct SCounted : SStreamSrcMemory {
    explicit SCounted(int& count) : SStreamSrcMemory(nullptr, 0), deleted(count) {}
    ~SCounted() override { ++deleted; }
    int& deleted;
  };
  int deleted = 0;
  SCounted local(deleted);
  {
    SStreamHolder holder(new SCounted(deleted), true);
    holder.Set(holder.Get(), true);
    EXPECT_EQ(deleted, 0);
    holder.Set(&local, false);
    EXPECT_EQ(deleted, 1);
    holder.Set(nullptr, true);
    EXPECT_EQ(holder.Get(), &SStreamSrcNull::Shared());
  }
  EXPECT_EQ(deleted, 1);
}

TEST(SStreamSrcStream, OpensOnlyInTheDirectionOfItsStream) {
  SBinaryStream reading(SBinaryStream::kRead, new SStreamSrcString("abc"), true);
  SStreamSrcStream source(&reading, false);
  EXPECT_TRUE(source.HasError());
  EXPECT_FALSE(source.Open(SStreamSource::kWrite));
  EXPECT_TRUE(source.Open(SStreamSource::kRead));
  EXPECT_TRUE(source.Extend(5)) << "nothing to extend";
  char dest[] = "---";
  EXPECT_TRUE(source.Read(dest, 3, true));
  EXPECT_STREQ(dest, "cba");
  EXPECT_FALSE(source.Read(dest, 1, false));
  EXPECT_TRUE(source.HasError());

  SStreamSrcStream nothing(nullptr, false);
  EXPECT_FALSE(nothing.Open(SStreamSource::kRead));
  EXPECT_EQ(nothing.GetLength(), 0);
}

TEST(SStreamSrcStream, HandsOutBlocksThroughItsScratch) {
  const std::string bytes(5000, 'b');
  SStreamSrcStream source(
      new SBinaryStream(SBinaryStream::kRead, new SStreamSrcString(SString(bytes)), true), true);
  source.Open(SStreamSource::kRead);
  for (const int32_t expected : {2048, 2048, 904, 0}) {
    int32_t count = 100000;
    source.GetBlock(count);
    EXPECT_EQ(count, expected);
  }
}

TEST(SStreamSrcStream, WritesBackwardsByteByByteAndEndsTheWriting) {
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream writing(SBinaryStream::kWrite, &memory, false);
  SStreamSrcStream source(&writing, false);
  ASSERT_TRUE(source.Open(SStreamSource::kWrite));
  EXPECT_TRUE(source.Write("cba", 3, true));
  EXPECT_TRUE(source.Write("de", 2, false));
  EXPECT_TRUE(source.Close());
  EXPECT_FALSE(writing.IsWriting());
  EXPECT_EQ(BytesOf(memory), "abcde");
}

}  // namespace
}  // namespace kivstore
