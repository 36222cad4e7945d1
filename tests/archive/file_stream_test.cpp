// The buffered file stream: its buffer's edges, what Close leaves in the file, what it costs.
#include "archive/stream_file.h"
#include "tests/archive/archive_support.h"
#include "tests/support/fault_file_services.h"

namespace kivstore {
namespace {

constexpr int32_t kRead = SStreamSource::kRead;
constexpr int32_t kWrite = SStreamSource::kWrite;

std::string Pattern(size_t count) {
  std::string bytes;
  for (size_t i = 0; i < count; ++i) {
    bytes.push_back(static_cast<char>(i * 31 + i / 251));
  }
  return bytes;
}

using FileStreams = kivtest::FileTest;

TEST_F(FileStreams, CutTheFileBehindWhatWasWritten) {
  for (const size_t count : {0u, 1u, 4095u, 4096u, 4097u, 9000u}) {
    const std::string bytes = Pattern(count);
    {
      SStreamSrcFile stream(FileOf(std::string(10000, 'x')));
      ASSERT_TRUE(stream.Open(kWrite));
      EXPECT_TRUE(stream.Write(bytes.data(), static_cast<int32_t>(count), false));
      EXPECT_TRUE(stream.Close());
      EXPECT_EQ(stream.GetLength(), static_cast<int32_t>(count));
      EXPECT_EQ(kivtest::BytesOf(stream), bytes) << "read back by the same stream";
    }
    EXPECT_EQ(Stored(), bytes);
  }
}

TEST_F(FileStreams, FinishTheWritingOnDestructionAndLeaveAGapWhereTheySkipped) {
  EXPECT_TRUE([](SStreamSrcFile&& stream) {
    return stream.Open(kWrite) && stream.Skip(3) && stream.WriteByte('a');
  }(SStreamSrcFile(FileOf(""))));
  EXPECT_EQ(Stored(), std::string("\0\0\0a", 4));
}

TEST_F(FileStreams, WriteSwappedBytesAcrossTheBufferAndLargeBlocksPastIt) {
  const SFileSpec spec = FileOf("");
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  const std::string dots(4094, '.');
  const std::string large(100000, 'b');
  {
    SStreamSrcFile stream(spec);
    stream.Open(kWrite);
    stream.Write(dots.data(), 4094, false);
    EXPECT_EQ(files.CountOf("Write"), 0);
    EXPECT_TRUE(stream.Write("dcba", 4, true));
    EXPECT_EQ(files.CountOf("Write"), 1);
    EXPECT_EQ(stream.GetPosition(), 4098);
    EXPECT_TRUE(stream.Write(large.data(), 100000, false));
    EXPECT_EQ(files.CountOf("Write"), 3);
    EXPECT_TRUE(stream.WriteByte('e') && stream.Close());
  }
  EXPECT_EQ(Stored(), dots + "abcd" + large + "e");
}

TEST_F(FileStreams, DeliverWhatAShortFileHasThenFail) {
  for (const bool swap : {false, true}) {
    SStreamSrcFile stream(FileOf("abc"));
    stream.Open(kRead);
    std::string dest(5, '-');
    EXPECT_FALSE(stream.Read(dest.data(), 5, swap));
    EXPECT_EQ(dest, swap ? std::string("\0\0cba", 5) : "abc--");
    EXPECT_TRUE(stream.HasError());
  }
}

TEST_F(FileStreams, ReadAcrossTheBufferInEveryWay) {
  const std::string bytes = Pattern(300000);
  SStreamSrcFile stream(FileOf(bytes));
  ASSERT_TRUE(stream.Open(kRead));
  EXPECT_FALSE(stream.UnreadByte());
  std::string head(65535, '\0');
  ASSERT_TRUE(stream.Read(head.data(), 65535, false));
  EXPECT_EQ(head, bytes.substr(0, 65535));
  char four[4];
  ASSERT_TRUE(stream.Read(four, 4, true));
  EXPECT_TRUE(std::equal(four, four + 4, bytes.rend() - 65539));
  EXPECT_TRUE(stream.UnreadByte());
  EXPECT_EQ(stream.GetPosition(), 65538);
  EXPECT_TRUE(stream.Skip(1));
  EXPECT_TRUE(stream.Skip(100000)) << "beyond the buffer";

  std::string rest;
  for (int32_t count = 1000000; const uint8_t* block = stream.GetBlock(count); count = 1000000) {
    rest.append(reinterpret_cast<const char*>(block), static_cast<size_t>(count));
  }
  EXPECT_EQ(rest, bytes.substr(165539));
  EXPECT_TRUE(stream.HasError());
  EXPECT_TRUE(stream.Rewind());
  EXPECT_EQ(stream.ReadByte(), static_cast<uint8_t>(bytes[0]));
  EXPECT_FALSE(stream.Skip(-1));
}

TEST_F(FileStreams, UnreadAndPeekAtTheBuffersEndStayInsideIt) {
  std::string bytes = Pattern(70000);
  SStreamSrcFile unread(FileOf(bytes));
  SStreamSrcFile peeked(SpecOf("f"));
  unread.Open(kRead);
  unread.Read(bytes.data(), 65537, false);
  EXPECT_TRUE(unread.UnreadByte() && unread.UnreadByte());
  EXPECT_EQ(unread.GetPosition(), 65535);
  EXPECT_EQ(unread.ReadByte(), static_cast<uint8_t>(bytes[65535]));
  EXPECT_EQ(unread.ReadByte(), static_cast<uint8_t>(bytes[65536]));
  peeked.Open(kRead);
  peeked.Read(bytes.data(), 65536, false);
  peeked.PeekByte();
  EXPECT_FALSE(peeked.HasError());
}

TEST_F(FileStreams, OpenAnEmptyFileAndTheFirstReadFails) {
  SString text;
  int32_t count = 1;
  for (const char read : {'r', 'p', 'b', 'd'}) {
    SStreamSrcFile stream(FileOf(""));
    EXPECT_TRUE(stream.Open(kRead));
    EXPECT_FALSE(stream.HasError());
    if (read == 'r') stream.ReadByte();
    if (read == 'p') stream.PeekByte();
    if (read == 'b') stream.GetBlock(count);
    if (read == 'd') stream.ReadDelimited(text, nullptr, true, true);
    EXPECT_TRUE(stream.HasError()) << read;
  }
}

TEST_F(FileStreams, DoNotOpenWhatIsNoFileAndTellWhatHoldsOne) {
  SFile holder;
  ASSERT_TRUE(holder.Open(SFile::kWrite, FileOf("a")));
  for (const char* const name : {"missing", "", "f"}) {
    for (const int32_t mode : {kRead, kWrite}) {
      SStreamSrcFile stream(SpecOf(name));
      EXPECT_FALSE(stream.Open(mode) || stream.Open(mode)) << "a stream opens once";
      EXPECT_EQ(stream.GetOpenError() == SFile::kSharingViolation, *name == 'f');
      EXPECT_FALSE(stream.WriteByte(1));
      EXPECT_EQ(stream.ReadByte() + stream.GetLength(), 0);
    }
  }
}

TEST_F(FileStreams, EachDirectionRefusesTheOtherAndTheOldFileStays) {
  for (const bool writing : {false, true}) {
    {
      SStreamSrcFile stream(FileOf("abc"));
      stream.Open(writing ? kWrite : kRead);
      EXPECT_EQ(stream.WriteByte('x'), writing);
      EXPECT_EQ(stream.ReadByte(), 0);
      EXPECT_TRUE(stream.HasError());
      EXPECT_FALSE(stream.Close());
    }
    EXPECT_EQ(Stored(), "abc");
  }
}

TEST_F(FileStreams, AFailedWriteStaysAnErrorAndLeavesTheRestAlone) {
  const SFileSpec spec = FileOf("the old contents");
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  {
    SStreamSrcFile stream(spec);
    stream.Open(kWrite);
    stream.Write("NEW", 3, false);
    files.FallShortAt(1, 1);
    EXPECT_FALSE(stream.Close());
    EXPECT_TRUE(stream.HasError());
  }
  EXPECT_EQ(Stored(), "Nhe old contents");
}

TEST_F(FileStreams, ASmallFileCostsAnOpenASizeAndAReadAndACallersFileStaysOpen) {
  const SFileSpec spec = FileOf(Pattern(2400));
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  SFile file;
  ASSERT_TRUE(file.Open(SFile::kRead, spec));
  {
    SStreamSrcFile stream(&file);
    stream.Open(kRead);
    for (int i = 0; i < 2400; ++i) {
      stream.ReadByte();
    }
    EXPECT_FALSE(stream.HasError());
  }
  EXPECT_EQ(files.Count(), 3);
  EXPECT_TRUE(file.IsOpen());
}

}  // namespace
}  // namespace kivstore
