// What one kind of stream does and no other: what a file stream costs and leaves in the file, how
// memory grows, and where the two differ at the end of the bytes.
#include <climits>

#include "archive/stream_file.h"
#include "tests/archive/archive_support.h"
#include "tests/support/fault_file_services.h"

namespace kivstore {
namespace {

constexpr int32_t kRead = SStreamSource::kRead;
constexpr int32_t kWrite = SStreamSource::kWrite;

class FileStreams : public kivtest::FileTest {
 protected:
  kivtest::FaultFileServices files{*Platform().files};
  SPlatformOverride<IFileServices> installed{Platform().files, &files};
};

TEST_F(FileStreams, CutTheOldFileAlsoWithoutClose) {
  EXPECT_TRUE([](SStreamSrcFile&& stream) {
    return stream.Open(kWrite) && stream.Write("ab", 2, false);
  }(SStreamSrcFile(FileOf(std::string(10000, 'x')))));
  EXPECT_EQ(Stored(), "ab");
}

TEST_F(FileStreams, WriteWholeBuffersAndLargeBlocksPastThem) {
  const std::string dots(4094, '.'), large(100000, 'b');
  {
    SStreamSrcFile stream(FileOf(""));
    stream.Open(kWrite);
    stream.Write(dots.data(), 4094, false);
    EXPECT_EQ(files.CountOf("Write"), 0);
    EXPECT_TRUE(stream.Write("dcba", 4, true));
    EXPECT_EQ(files.CountOf("Write"), 1);
    EXPECT_TRUE(stream.Write(large.data(), 100000, false));
    EXPECT_EQ(files.CountOf("Write"), 3);
    EXPECT_TRUE(stream.WriteByte('e') && stream.Close());
    EXPECT_EQ(files.CountOf("Flush"), 1);
  }
  EXPECT_EQ(Stored(), dots + "abcd" + large + "e");
}

TEST_F(FileStreams, ReadASmallFileAtOnceAndACallersFileStaysOpen) {
  const SFileSpec spec = FileOf(std::string(2400, 'x'));
  files.ClearLog();
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
  EXPECT_EQ(files.Count(), 3) << "open, size, read";
  EXPECT_TRUE(file.IsOpen());
}

TEST_F(FileStreams, DeliverWhatAShortFileHasAndOpenAnEmptyOneOnlyToFail) {
  for (const bool swap : {false, true}) {
    SStreamSrcFile stream(FileOf("abc"));
    stream.Open(kRead);
    std::string dest(5, '-');
    EXPECT_FALSE(stream.Read(dest.data(), 5, swap));
    EXPECT_EQ(dest, swap ? std::string("\0\0cba", 5) : "abc--");
    SStreamSrcFile empty(FileOf("", "empty"));
    EXPECT_TRUE(empty.Open(kRead));
    swap ? empty.PeekByte() : empty.ReadByte();
    EXPECT_TRUE(empty.HasError());
  }
}

TEST_F(FileStreams, PeekingAtTheBuffersEndStaysInsideIt) {
  std::string bytes(70000, 'x');
  SStreamSrcFile stream(FileOf(bytes));
  stream.Open(kRead);
  EXPECT_EQ(stream.PeekByte(), 'x');
  stream.Read(bytes.data(), 65536, false);
  stream.PeekByte();
  EXPECT_FALSE(stream.HasError());
}

TEST_F(FileStreams, DoNotOpenWhatIsNoFileAndTellWhatHoldsOne) {
  SFile holder;
  ASSERT_TRUE(holder.Open(SFile::kWrite, FileOf("a")));
  for (const char* const name : {"missing", "", "f"}) {
    for (const int32_t mode : {kRead, kWrite}) {
      SStreamSrcFile stream(SpecOf(name));
      EXPECT_FALSE(stream.Open(mode) || stream.Open(mode)) << "a stream opens once";
      EXPECT_EQ(stream.GetOpenError() == SFile::kSharingViolation, *name == 'f');
      EXPECT_FALSE(stream.WriteByte(1) || stream.Skip(1) || stream.Extend(1));
      EXPECT_EQ(stream.ReadByte() + stream.GetLength(), 0);
    }
  }
}

TEST_F(FileStreams, AFailedWriteStaysAnErrorAndLeavesTheRestAlone) {
  for (const bool refuses : {false, true}) {
    {
      SStreamSrcFile stream(FileOf("the old contents"));
      stream.Open(kWrite);
      stream.Write("NEW", 3, false);
      if (refuses) {
        EXPECT_EQ(stream.ReadByte(), 0);
      } else {
        files.FallShortAt(1, 1);
      }
      EXPECT_FALSE(stream.Close());
      EXPECT_TRUE(stream.HasError());
    }
    EXPECT_EQ(Stored(), refuses ? "the old contents" : "Nhe old contents");
    files.FailNever();
  }
}

TEST(SStreamSrcMemory, GrowsByWholeUnitsAsFarAsAskedForButNeverACallersBuffer) {
  SStreamSrcMemory stream(nullptr, 0);
  stream.Open(kWrite);
  EXPECT_TRUE(stream.Extend(1024));
  EXPECT_EQ(stream.GetLength(), 1024);
  EXPECT_TRUE(stream.Extend(1025));
  EXPECT_EQ(stream.GetLength(), 2048);
  EXPECT_TRUE(stream.Skip(2047) && stream.Write("abcd", 4, true));
  EXPECT_EQ(stream.GetLength(), 3072);
  EXPECT_FALSE(stream.Extend(INT_MAX));
  EXPECT_TRUE(stream.HasError());
  char buffer[] = "----#";
  SStreamSrcMemory fixed(buffer, 4);
  fixed.Open(kWrite);
  EXPECT_TRUE(fixed.Write("abcd", 4, false));
  EXPECT_FALSE(fixed.WriteByte('e'));
  EXPECT_STREQ(buffer, "abcd#");
  EXPECT_EQ(fixed.DetachHandle(), nullptr);
}

TEST(SStreamSrcMemory, DeliversAllOrNothing) {
  char buffer[] = "abcdef", dest[] = "-----";
  SStreamSrcMemory stream(buffer, 6), blocks(buffer, 6), text(buffer, 6);
  EXPECT_TRUE(stream.Open(kRead) && blocks.Open(kRead) && text.Open(kRead));
  EXPECT_TRUE(stream.Read(dest, 2, true));
  EXPECT_FALSE(stream.Read(dest, 5, false));
  EXPECT_STREQ(dest, "ba---");
  EXPECT_EQ(stream.GetPosition(), 2);
  int32_t count = 4;
  EXPECT_EQ(blocks.GetBlock(count), reinterpret_cast<uint8_t*>(buffer));
  EXPECT_EQ(blocks.GetBlock(count), nullptr);
  EXPECT_EQ(count, 0);
  EXPECT_TRUE(blocks.HasError());
  SString last;
  EXPECT_TRUE(text.ReadDelimited(last, nullptr, true, true));
  EXPECT_EQ(text.GetPosition(), 7) << "one past the size, for a text without its NUL";
  EXPECT_FALSE(text.ReadDelimited(last, nullptr, true, true) || text.HasError());
  EXPECT_EQ(text.PeekByte() + text.ReadByte(), 0);
  EXPECT_TRUE(text.HasError());
  SStreamSrcMemory closed(buffer, 6);
  closed.Open(kRead);
  EXPECT_FALSE(closed.Close()) << "was not written";
  EXPECT_TRUE(closed.HasError());
}

TEST(SStreamSrcMemory, ADetachedBlockIsTheCallersAndTheStreamHasNothing) {
  SStreamSrcMemory stream(nullptr, 0);
  stream.Open(kWrite);
  stream.Write("abc", 3, false);
  MemoryHandle const handle = stream.DetachHandle();
  EXPECT_EQ(std::string(static_cast<const char*>(LockBlock(handle)), 3), "abc");
  FreeBlock(handle);
  EXPECT_EQ(stream.GetLength() + stream.GetPosition(), 0);
  EXPECT_EQ(stream.DetachHandle(), nullptr);
  EXPECT_FALSE(stream.WriteByte('a'));
}

TEST(SStreamSrcString, IsTheTextWithoutItsTerminatorAndNeverWritten) {
  SStreamSrcString reader("abc"), writer("abc");
  EXPECT_TRUE(reader.Open(kRead));
  EXPECT_EQ(kivtest::BytesOf(reader), "abc");
  EXPECT_FALSE(writer.Open(kWrite) || writer.Write("x", 1, false));
}

}  // namespace
}  // namespace kivstore
