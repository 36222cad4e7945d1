// The buffered file stream: its buffer's edges, what Close leaves in the file, what it costs.
#include <gtest/gtest.h>

#include "archive/stream_file.h"
#include "tests/archive/archive_support.h"
#include "tests/support/fault_file_services.h"

namespace kivstore {
namespace {

using kivtest::BytesOf;
using kivtest::SpecOf;

std::string Pattern(size_t count) {
  std::string bytes;
  for (size_t i = 0; i < count; ++i) {
    bytes.push_back(static_cast<char>(i * 31 + i / 251));
  }
  return bytes;
}

class SStreamSrcFileTest : public testing::Test {
 protected:
  // A file of these bytes, as a spec on it.
  SFileSpec FileOf(const std::string& bytes) const {
    folder.WriteFile("f", bytes);
    return SpecOf(folder, "f");
  }
  std::string Stored() const { return folder.ReadFile("f"); }

  kivtest::TempFolder folder;
};

TEST_F(SStreamSrcFileTest, CutsTheFileBehindWhatWasWritten) {
  for (const size_t count : {0u, 1u, 4095u, 4096u, 4097u, 9000u}) {
    const std::string bytes = Pattern(count);
    const SFileSpec spec = FileOf(std::string(10000, 'x'));
    SStreamSrcFile stream(spec);
    ASSERT_TRUE(stream.Open(SStreamSource::kWrite));
    EXPECT_TRUE(stream.Write(bytes.data(), static_cast<int32_t>(count), false));
    EXPECT_TRUE(stream.Close());
    EXPECT_EQ(stream.GetLength(), static_cast<int32_t>(count));
    EXPECT_EQ(BytesOf(stream), bytes) << "read back by the same stream";
    EXPECT_EQ(Stored(), bytes);
  }
}

TEST_F(SStreamSrcFileTest, DestructorFinishesTheWriting) {
  const SFileSpec spec = FileOf("old and long");
  {
    SStreamSrcFile stream(spec);
    stream.Open(SStreamSource::kWrite);
    stream.Write("new", 3, false);
  }
  EXPECT_EQ(Stored(), "new");
}

TEST_F(SStreamSrcFileTest, SwappedWriteCrossesTheBufferByteByByte) {
  const SFileSpec spec = FileOf("");
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  SStreamSrcFile stream(spec);
  stream.Open(SStreamSource::kWrite);
  stream.Write(std::string(4094, '.').data(), 4094, false);
  EXPECT_EQ(files.CountOf("Write"), 0);
  EXPECT_TRUE(stream.Write("dcba", 4, true));
  EXPECT_EQ(files.CountOf("Write"), 1);
  EXPECT_EQ(stream.GetPosition(), 4098);
  EXPECT_EQ(Stored(), std::string(4094, '.') + "ab");
  EXPECT_TRUE(stream.WriteByte('e'));
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ(Stored(), std::string(4094, '.') + "abcde");
}

TEST_F(SStreamSrcFileTest, LargeWritePassesTheBuffer) {
  const SFileSpec spec = FileOf("");
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  SStreamSrcFile stream(spec);
  stream.Open(SStreamSource::kWrite);
  stream.WriteByte('a');
  stream.Write(std::string(100000, 'b').data(), 100000, false);
  EXPECT_EQ(files.CountOf("Write"), 2);
}

TEST_F(SStreamSrcFileTest, ShortFileDeliversWhatItHasThenFails) {
  const SFileSpec spec = FileOf("abc");
  SStreamSrcFile plain(spec);
  plain.Open(SStreamSource::kRead);
  char dest[] = "-----";
  EXPECT_FALSE(plain.Read(dest, 5, false));
  EXPECT_STREQ(dest, "abc--");
  EXPECT_TRUE(plain.HasError());

  SStreamSrcFile swapped(spec);
  swapped.Open(SStreamSource::kRead);
  char turned[] = "-----";
  EXPECT_FALSE(swapped.Read(turned, 5, true));
  EXPECT_EQ(std::string(turned, 5), std::string("\0\0cba", 5));
}

TEST_F(SStreamSrcFileTest, ReadsAcrossTheBufferInEveryWay) {
  const std::string bytes = Pattern(150001);
  const SFileSpec spec = FileOf(bytes);
  SStreamSrcFile stream(spec);
  ASSERT_TRUE(stream.Open(SStreamSource::kRead));
  std::string head(65535, '\0');
  ASSERT_TRUE(stream.Read(head.data(), 65535, false));
  EXPECT_EQ(head, bytes.substr(0, 65535));
  char four[4];
  ASSERT_TRUE(stream.Read(four, 4, true));
  EXPECT_EQ(std::string(four, 4), std::string(bytes.rbegin() + 84462, bytes.rbegin() + 84466));
  EXPECT_EQ(stream.GetPosition(), 65539);

  std::string rest;
  for (int32_t count = 1000000; const uint8_t* block = stream.GetBlock(count); count = 1000000) {
    rest.append(reinterpret_cast<const char*>(block), static_cast<size_t>(count));
  }
  EXPECT_EQ(rest, bytes.substr(65539));
  EXPECT_TRUE(stream.HasError());
  EXPECT_TRUE(stream.Rewind());
  EXPECT_EQ(stream.ReadByte(), static_cast<uint8_t>(bytes[0]));
}

TEST_F(SStreamSrcFileTest, SkipsWithinAndBeyondTheBuffer) {
  const std::string bytes = Pattern(200000);
  const SFileSpec spec = FileOf(bytes);
  SStreamSrcFile stream(spec);
  stream.Open(SStreamSource::kRead);
  EXPECT_EQ(stream.ReadByte(), static_cast<uint8_t>(bytes[0]));
  EXPECT_TRUE(stream.Skip(999));
  EXPECT_EQ(stream.GetPosition(), 1000);
  EXPECT_EQ(stream.ReadByte(), static_cast<uint8_t>(bytes[1000]));
  EXPECT_TRUE(stream.Skip(100000));
  EXPECT_EQ(stream.ReadByte(), static_cast<uint8_t>(bytes[101001]));
  EXPECT_FALSE(stream.Skip(-1));
}

TEST_F(SStreamSrcFileTest, SkipWhileWritingLeavesAGap) {
  const SFileSpec spec = FileOf("");
  {
    SStreamSrcFile stream(spec);
    stream.Open(SStreamSource::kWrite);
    EXPECT_TRUE(stream.Skip(3));
    EXPECT_TRUE(stream.WriteByte('a'));
  }
  EXPECT_EQ(Stored(), std::string("\0\0\0a", 4));
}

TEST_F(SStreamSrcFileTest, UnreadsAcrossARefill) {
  const std::string bytes = Pattern(70000);
  const SFileSpec spec = FileOf(bytes);
  SStreamSrcFile stream(spec);
  stream.Open(SStreamSource::kRead);
  EXPECT_FALSE(stream.UnreadByte());
  std::string head(65537, '\0');
  stream.Read(head.data(), 65537, false);
  EXPECT_TRUE(stream.UnreadByte());
  EXPECT_TRUE(stream.UnreadByte());
  EXPECT_EQ(stream.GetPosition(), 65535);
  EXPECT_EQ(stream.ReadByte(), static_cast<uint8_t>(bytes[65535]));
  EXPECT_EQ(stream.ReadByte(), static_cast<uint8_t>(bytes[65536]));
}

TEST_F(SStreamSrcFileTest, PeekAtTheBuffersEndStaysInsideIt) {
  const SFileSpec spec = FileOf(Pattern(70000));
  SStreamSrcFile stream(spec);
  stream.Open(SStreamSource::kRead);
  EXPECT_EQ(stream.PeekByte(), 0u) << "the first byte of the pattern";
  std::string head(65536, '\0');
  stream.Read(head.data(), 65536, false);
  stream.PeekByte();
  EXPECT_FALSE(stream.HasError());
}

TEST_F(SStreamSrcFileTest, EmptyFileOpensAndTheFirstReadFails) {
  using Operation = void (*)(SStreamSource&);
  const Operation reads[] = {
      [](SStreamSource& s) { s.ReadByte(); },
      [](SStreamSource& s) { s.PeekByte(); },
      [](SStreamSource& s) {
        int32_t count = 1;
        s.GetBlock(count);
      },
      [](SStreamSource& s) {
        SString text;
        s.ReadDelimited(text, nullptr, true, true);
      },
  };
  const SFileSpec spec = FileOf("");
  for (const Operation& read : reads) {
    SStreamSrcFile stream(spec);
    EXPECT_TRUE(stream.Open(SStreamSource::kRead));
    EXPECT_FALSE(stream.HasError());
    read(stream);
    EXPECT_TRUE(stream.HasError()) << &read - reads;
  }
}

TEST_F(SStreamSrcFileTest, WhatIsNoFileDoesNotOpen) {
  FileOf("");
  for (const char* const name : {"missing", ""}) {
    for (const int32_t mode : {SStreamSource::kRead, SStreamSource::kWrite}) {
      SStreamSrcFile stream(SpecOf(folder, name));
      EXPECT_FALSE(stream.Open(mode)) << name;
      EXPECT_FALSE(stream.Open(mode)) << "a stream opens once";
      EXPECT_EQ(stream.GetLength(), 0);
      EXPECT_FALSE(stream.WriteByte(1));
      EXPECT_EQ(stream.ReadByte(), 0);
    }
  }
}

TEST_F(SStreamSrcFileTest, TellsWhyAFileDidNotOpen) {
  const SFileSpec spec = FileOf("a");
  SFile holder;
  ASSERT_TRUE(holder.Open(SFile::kWrite, spec));
  SStreamSrcFile stream(spec);
  EXPECT_FALSE(stream.Open(SStreamSource::kRead));
  EXPECT_EQ(stream.GetOpenError(), SFile::kSharingViolation);
}

TEST_F(SStreamSrcFileTest, EachDirectionRefusesTheOther) {
  const SFileSpec spec = FileOf("abc");
  SStreamSrcFile reader(spec);
  reader.Open(SStreamSource::kRead);
  EXPECT_FALSE(reader.Extend(1));
  EXPECT_FALSE(reader.HasError());
  EXPECT_FALSE(reader.WriteByte('x'));
  EXPECT_TRUE(reader.HasError());
}

TEST_F(SStreamSrcFileTest, ReadingWhileWritingFailsAndKeepsTheOldFile) {
  const SFileSpec spec = FileOf("abc");
  {
    SStreamSrcFile stream(spec);
    stream.Open(SStreamSource::kWrite);
    stream.WriteByte('x');
    EXPECT_EQ(stream.ReadByte(), 0);
    EXPECT_TRUE(stream.HasError());
  }
  EXPECT_EQ(Stored(), "abc");
}

TEST_F(SStreamSrcFileTest, FailedWriteStaysAnErrorAndLeavesTheRestAlone) {
  const SFileSpec spec = FileOf("the old contents");
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  SStreamSrcFile stream(spec);
  stream.Open(SStreamSource::kWrite);
  stream.Write("NEW", 3, false);
  files.FallShortAt(1, 1);
  EXPECT_FALSE(stream.Close());
  EXPECT_TRUE(stream.HasError());
  EXPECT_EQ(Stored(), "Nhe old contents");
}

TEST_F(SStreamSrcFileTest, CallersFileStaysOpen) {
  const SFileSpec spec = FileOf("abc");
  SFile file;
  ASSERT_TRUE(file.Open(SFile::kRead, spec));
  {
    SStreamSrcFile stream(&file);
    EXPECT_TRUE(stream.Open(SStreamSource::kRead));
    EXPECT_EQ(stream.ReadByte(), 'a');
  }
  EXPECT_TRUE(file.IsOpen());
}

TEST_F(SStreamSrcFileTest, SmallFileCostsAnOpenASizeAndARead) {
  const SFileSpec spec = FileOf(Pattern(2400));
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  SStreamSrcFile stream(spec);
  stream.Open(SStreamSource::kRead);
  for (int i = 0; i < 2400; ++i) {
    stream.ReadByte();
  }
  EXPECT_FALSE(stream.HasError());
  EXPECT_EQ(files.Count(), 3);
}

}  // namespace
}  // namespace kivstore
