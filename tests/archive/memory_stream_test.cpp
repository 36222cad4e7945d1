// Memory and string streams: growth, the phases of writing and reading, and their edges.
#include <gtest/gtest.h>

#include <climits>

#include "archive/stream_null.h"
#include "tests/archive/archive_support.h"

namespace kivstore {
namespace {

using kivtest::BytesOf;
using namespace std::string_literals;

TEST(SStreamSrcMemory, ReadsBackExactlyWhatWasWrittenWhateverTheCapacity) {
  for (const int32_t count : {0, 1, 1023, 1024, 1025, 5000}) {
    std::string bytes;
    for (int32_t i = 0; i < count; ++i) {
      bytes.push_back(static_cast<char>(i * 7));
    }
    SStreamSrcMemory stream(nullptr, 0);
    ASSERT_TRUE(stream.Open(SStreamSource::kWrite));
    EXPECT_TRUE(stream.Write(bytes.data(), count, false));
    EXPECT_TRUE(stream.Close());
    EXPECT_EQ(stream.GetLength(), count);
    EXPECT_EQ(BytesOf(stream), bytes);
  }
}

TEST(SStreamSrcMemory, GrowsByWholeUnitsAsFarAsAskedFor) {
  SStreamSrcMemory stream(nullptr, 0);
  stream.Open(SStreamSource::kWrite);
  EXPECT_EQ(stream.GetLength(), 1024);
  EXPECT_TRUE(stream.Extend(1024));
  EXPECT_EQ(stream.GetLength(), 1024);
  EXPECT_TRUE(stream.Extend(1025));
  EXPECT_EQ(stream.GetLength(), 2048);
  EXPECT_TRUE(stream.Skip(2047));
  EXPECT_TRUE(stream.Write("abcd", 4, true));
  EXPECT_EQ(stream.GetLength(), 3072);
  EXPECT_FALSE(stream.Extend(INT_MAX));
  EXPECT_TRUE(stream.HasError());
}

TEST(SStreamSrcMemory, NeverGrowsACallersBuffer) {
  char buffer[] = "----#";
  SStreamSrcMemory stream(buffer, 4);
  stream.Open(SStreamSource::kWrite);
  EXPECT_TRUE(stream.Write("abcd", 4, false));
  EXPECT_FALSE(stream.HasError());
  EXPECT_FALSE(stream.WriteByte('e'));
  EXPECT_TRUE(stream.HasError());
  EXPECT_STREQ(buffer, "abcd#");
}

TEST(SStreamSrcMemory, ReadIsAllOrNothing) {
  char buffer[] = "abcde";
  SStreamSrcMemory stream(buffer, 5);
  stream.Open(SStreamSource::kRead);
  char dest[] = "-----";
  EXPECT_TRUE(stream.Read(dest, 2, true));
  EXPECT_STREQ(dest, "ba---");
  EXPECT_FALSE(stream.Read(dest, 5, false));
  EXPECT_STREQ(dest, "ba---");
  EXPECT_TRUE(stream.HasError());
  EXPECT_EQ(stream.ReadByte(), 0);
  EXPECT_EQ(stream.GetPosition(), 2);
}

TEST(SStreamSrcMemory, CloseOfAReadStreamSetsTheError) {
  char buffer[] = "abc";
  SStreamSrcMemory stream(buffer, 3);
  stream.Open(SStreamSource::kRead);
  EXPECT_FALSE(stream.Close());
  EXPECT_TRUE(stream.HasError());
}

TEST(SStreamSrcMemory, GetBlockDeliversAllOrNothing) {
  char buffer[] = "abcdef";
  SStreamSrcMemory stream(buffer, 6);
  stream.Open(SStreamSource::kRead);
  int32_t count = 4;
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(stream.GetBlock(count)), 4), "abcd");
  count = 3;
  EXPECT_EQ(stream.GetBlock(count), nullptr);
  EXPECT_EQ(count, 0);
  EXPECT_TRUE(stream.HasError());
}

TEST(SStreamSrcMemory, MovesByPeekUnreadAndSkipWithinItsBytes) {
  char buffer[] = "abc";
  SStreamSrcMemory stream(buffer, 3);
  stream.Open(SStreamSource::kRead);
  EXPECT_FALSE(stream.UnreadByte());
  EXPECT_EQ(stream.PeekByte(), 'a');
  EXPECT_EQ(stream.ReadByte(), 'a');
  EXPECT_TRUE(stream.UnreadByte());
  EXPECT_TRUE(stream.Skip(3));
  EXPECT_EQ(stream.PeekByte(), 0);
  EXPECT_FALSE(stream.HasError());
  EXPECT_FALSE(stream.Skip(1));
  EXPECT_TRUE(stream.HasError());
}

TEST(SStreamSrcMemory, RefusesNegativeCounts) {
  using Operation = bool (*)(SStreamSource&);
  const Operation operations[] = {
      [](SStreamSource& s) { return s.Skip(-1); },
      [](SStreamSource& s) { return s.Extend(-1); },
      [](SStreamSource& s) { return s.Write("abc", -1, false); },
      [](SStreamSource& s) { return s.Write("abc", -1, true); },
      [](SStreamSource& s) {
        char dest[4];
        return s.Read(dest, -1, false) || s.Read(dest, -1, true);
      },
      [](SStreamSource& s) {
        int32_t count = -1;
        return s.GetBlock(count) != nullptr || count != 0;
      },
  };
  for (const Operation& operation : operations) {
    SStreamSrcMemory stream(nullptr, 0);
    stream.Open(SStreamSource::kWrite);
    stream.WriteByte('a');
    EXPECT_FALSE(operation(stream)) << &operation - operations;
    EXPECT_TRUE(stream.HasError()) << &operation - operations;
  }
}

TEST(SStreamSrcMemory, DetachedBlockIsTheCallersAndTheStreamHasNothing) {
  SStreamSrcMemory stream(nullptr, 0);
  stream.Open(SStreamSource::kWrite);
  stream.Write("abc", 3, false);
  MemoryHandle const handle = stream.DetachHandle();
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(std::string(static_cast<const char*>(LockBlock(handle)), 3), "abc");
  FreeBlock(handle);
  EXPECT_EQ(stream.GetLength(), 0);
  EXPECT_EQ(stream.GetPosition(), 0);
  EXPECT_EQ(stream.DetachHandle(), nullptr);
  EXPECT_FALSE(stream.WriteByte('a'));

  char buffer[4];
  EXPECT_EQ(SStreamSrcMemory(buffer, 4).DetachHandle(), nullptr);
}

TEST(SStreamSrcMemory, OpensForReadingOnlyWithABuffer) {
  SStreamSrcMemory stream(nullptr, 100);
  EXPECT_FALSE(stream.Open(SStreamSource::kRead));
  EXPECT_EQ(stream.GetLength(), 0);
  EXPECT_EQ(stream.ReadByte(), 0);
}

TEST(SStreamSrcString, IsTheTextWithoutItsTerminatorAndNeverWritten) {
  const SString text("abc");
  SStreamSrcString reader(text);
  ASSERT_TRUE(reader.Open(SStreamSource::kRead));
  EXPECT_EQ(BytesOf(reader), "abc");
  EXPECT_FALSE(reader.WriteByte('x'));

  SStreamSrcString writer(text);
  EXPECT_FALSE(writer.Open(SStreamSource::kWrite));
  EXPECT_FALSE(writer.Write("x", 1, false));
  EXPECT_STREQ(text.GetText(), "abc");
}

TEST(SStreamSrcNull, FailsEverythingAndDeliversNothing) {
  SStreamSrcNull& stream = SStreamSrcNull::Shared();
  char dest[2] = "-";
  int32_t count = 5;
  SString text("kept");
  EXPECT_FALSE(stream.Open(SStreamSource::kRead) || stream.Read(dest, 1, false) ||
               stream.Write(dest, 1, false) || stream.Skip(0) || stream.Rewind() ||
               stream.Close() || stream.ReadDelimited(text, nullptr, true, true));
  EXPECT_EQ(stream.GetBlock(count), nullptr);
  EXPECT_EQ(count, 0);
  EXPECT_STREQ(dest, "-");
}

}  // namespace
}  // namespace kivstore
