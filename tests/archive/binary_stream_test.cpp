// Typed transfer: the bytes of every number, the sticky error, copies, and the forwarding source.
#include "archive/stream_stream.h"
#include "tests/archive/archive_support.h"

namespace kivstore {
namespace {

using kivtest::BytesOf;
using namespace std::string_literals;

TEST(SBinaryStream, ReadsBackAfterARewindAndAFailedReadLeavesTheVariable) {
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream s(SBinaryStream::kWrite, &memory, false);
  EXPECT_TRUE(s.WriteByte(0xAB) && s.WriteShort(-2) && s.WriteLong(0x00010000) &&
              s.WriteDouble(1.5) && s.WriteRaw("abc", 3));
  s.FinishWriting(true);
  EXPECT_FALSE(s.IsWriting());
  int16_t small;
  int32_t number;
  double real;
  EXPECT_TRUE(s.Skip(1) && s.ReadShort(small) && s.ReadLong(number) && s.ReadDouble(real) &&
              s.ReadAndCompareRaw("abc", 3));
  EXPECT_FALSE(s.ReadLong(number));
  EXPECT_TRUE(small == -2 && number == 0x10000 && real == 1.5);
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
  EXPECT_FALSE(SStreamSrcStream(nullptr, false).Open(SStreamSource::kRead));
  SStreamSrcMemory memory(nullptr, 0);
  SBinaryStream writing(SBinaryStream::kWrite, &memory, false);
  SStreamSrcStream target(&writing, false);
  EXPECT_FALSE(target.Open(SStreamSource::kRead));
  EXPECT_TRUE(target.Open(SStreamSource::kWrite) && target.WriteByte('a') && target.Close());
  EXPECT_FALSE(writing.IsWriting());
}

}  // namespace
}  // namespace kivstore
