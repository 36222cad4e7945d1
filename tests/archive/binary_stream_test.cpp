// Typed transfer: the bytes of every number, the sticky error, copies, and the forwarding source.
#include "archive/stream_stream.h"
#include "tests/archive/archive_support.h"

namespace kivstore {
namespace {

using kivtest::BytesOf;
using namespace std::string_literals;

TEST(SBinaryStream, WritesNumbersBigEndianAndReadsThemBackAfterARewind) {
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream s(SBinaryStream::kWrite, &memory, false);
  EXPECT_TRUE(s.WriteByte(0xAB) && s.WriteShort(-2) && s.WriteLong(0x00010000) &&
              s.WriteLong(INT32_MIN) && s.WriteDouble(1.5) && s.WriteText("ab") &&
              s.WriteText("") && s.WriteDateTime(SDateTime(0x01020304)) &&
              s.WriteDateTime(SDateTime::Fresh()) && s.WritePoint({1, -1}) && s.WriteSize({2, 3}) &&
              s.WriteRect({1, 2, 3, 4}) && s.WriteRaw("abc", 3));
  s.FinishWriting(true);
  EXPECT_FALSE(s.IsWriting());
  EXPECT_EQ(BytesOf(memory),
            "\xAB\xFF\xFE\0\1\0\0\x80\0\0\0\x3F\xF8\0\0\0\0\0\0"s
            "ab\0\0"s
            "\0\0\0\0\1\2\3\4\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s
            "\0\0\0\1\xFF\xFF\xFF\xFF\0\0\0\2\0\0\0\3\0\0\0\1\0\0\0\2\0\0\0\3\0\0\0\4"s
            "abc");
  memory.Rewind();
  int16_t small;
  int32_t number;
  double real;
  SString text, empty("x");
  SDateTime time = SDateTime::Fresh();
  SPoint point;
  SRect rect;
  EXPECT_TRUE(s.Skip(1) && s.ReadShort(small) && s.ReadLong(number) &&
              s.ReadAndCompareLong(INT32_MIN) && s.ReadDouble(real) && s.ReadText(text) &&
              s.ReadText(empty) && s.ReadDateTime(time) && s.Skip(8) && s.ReadPoint(point) &&
              s.Skip(8) && s.ReadRect(rect));
  EXPECT_TRUE(small == -2 && number == 0x10000 && real == 1.5 && text == "ab" && empty.IsEmpty());
  EXPECT_TRUE(time.Raw() == 0x01020304 && point.y == -1 && rect.left == 1 && rect.bottom == 4);
  EXPECT_FALSE(s.ReadLong(number));
  EXPECT_EQ(number, 0x10000) << "a failed read leaves the variable";
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

  SBinaryStream nothing(SBinaryStream::kRead, nullptr, true);
  SString text("kept");
  EXPECT_FALSE(nothing.ReadText(text));
  EXPECT_STREQ(text.GetText(), "kept");
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
  copy.FinishWriting(false);
  EXPECT_EQ(BytesOf(memory), "abcd");
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
  EXPECT_FALSE(SStreamSrcStream(nullptr, false).Open(SStreamSource::kRead));
}

TEST(SStreamSrcStream, HandsOutBlocksThroughItsScratch) {
  SBinaryStream reading(SBinaryStream::kRead, new SStreamSrcString(SString('b', 3000)), true);
  SStreamSrcStream source(&reading, false);
  source.Open(SStreamSource::kRead);
  for (const int32_t expected : {2048, 952, 0}) {
    int32_t count = 100000;
    source.GetBlock(count);
    EXPECT_EQ(count, expected);
  }
}

TEST(SStreamSrcStream, WritesBackwardsByteByByteAndEndsTheWriting) {
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream writing(SBinaryStream::kWrite, &memory, false);
  SStreamSrcStream source(&writing, false);
  EXPECT_TRUE(source.Open(SStreamSource::kWrite) && source.Write("cba", 3, true) &&
              source.Write("de", 2, false) && source.Close());
  EXPECT_FALSE(writing.IsWriting());
  EXPECT_EQ(BytesOf(memory), "abcde");
}

}  // namespace
}  // namespace kivstore
