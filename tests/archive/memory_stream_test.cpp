// Memory and string streams: growth, the phases of writing and reading, and their edges.
#include <climits>

#include "tests/archive/archive_support.h"

namespace kivstore {
namespace {

using kivtest::BytesOf;

TEST(SStreamSrcMemory, ReadsBackExactlyWhatWasWrittenWhateverTheCapacity) {
  for (const int32_t count : {0, 1, 1023, 1024, 1025, 5000}) {
    std::string bytes;
    for (int32_t i = 0; i < count; ++i) {
      bytes.push_back(static_cast<char>(i * 7));
    }
    SStreamSrcMemory stream(nullptr, 0);
    EXPECT_TRUE(stream.Open(SStreamSource::kWrite) && stream.Write(bytes.data(), count, false) &&
                stream.Close());
    EXPECT_EQ(stream.GetLength(), count);
    EXPECT_EQ(BytesOf(stream), bytes);
  }
}

TEST(SStreamSrcMemory, GrowsByWholeUnitsAsFarAsAskedFor) {
  SStreamSrcMemory stream(nullptr, 0);
  stream.Open(SStreamSource::kWrite);
  EXPECT_TRUE(stream.Extend(1024));
  EXPECT_EQ(stream.GetLength(), 1024);
  EXPECT_TRUE(stream.Extend(1025));
  EXPECT_EQ(stream.GetLength(), 2048);
  EXPECT_TRUE(stream.Skip(2047) && stream.Write("abcd", 4, true));
  EXPECT_EQ(stream.GetLength(), 3072);
  EXPECT_FALSE(stream.Extend(INT_MAX));
  EXPECT_TRUE(stream.HasError());
}

TEST(SStreamSrcMemory, NeverGrowsACallersBuffer) {
  char buffer[] = "----#";
  SStreamSrcMemory stream(buffer, 4);
  stream.Open(SStreamSource::kWrite);
  EXPECT_TRUE(stream.Write("abcd", 4, false));
  EXPECT_FALSE(stream.WriteByte('e'));
  EXPECT_TRUE(stream.HasError());
  EXPECT_STREQ(buffer, "abcd#");
  EXPECT_EQ(stream.DetachHandle(), nullptr);
}

// Reading "abcdef" from memory.
class MemoryReading : public testing::Test {
 protected:
  MemoryReading() { stream.Open(SStreamSource::kRead); }

  char buffer[7] = "abcdef";
  SStreamSrcMemory stream{buffer, 6};
};

TEST_F(MemoryReading, DeliversAllOrNothing) {
  char dest[] = "-----";
  EXPECT_TRUE(stream.Read(dest, 2, true));
  EXPECT_FALSE(stream.Read(dest, 5, false));
  EXPECT_STREQ(dest, "ba---");
  EXPECT_TRUE(stream.HasError());
  EXPECT_EQ(stream.ReadByte(), 0);
  EXPECT_EQ(stream.GetPosition(), 2);
  SStreamSrcMemory blocks(buffer, 6);
  blocks.Open(SStreamSource::kRead);
  int32_t count = 4;
  EXPECT_EQ(blocks.GetBlock(count), reinterpret_cast<uint8_t*>(buffer));
  EXPECT_EQ(blocks.GetBlock(count), nullptr);
  EXPECT_EQ(count, 0);
  EXPECT_TRUE(blocks.HasError());
  count = -1;
  EXPECT_EQ(blocks.GetBlock(count), nullptr);
}

TEST_F(MemoryReading, MovesByPeekUnreadAndSkipWithinItsBytesAndFailsOnClose) {
  EXPECT_FALSE(stream.UnreadByte());
  EXPECT_EQ(stream.PeekByte(), 'a');
  EXPECT_EQ(stream.ReadByte(), 'a');
  EXPECT_TRUE(stream.UnreadByte() && stream.Skip(6));
  EXPECT_EQ(stream.PeekByte(), 0);
  EXPECT_FALSE(stream.HasError());
  EXPECT_FALSE(stream.Close());
  EXPECT_TRUE(stream.HasError());
}

TEST(SStreamSrcMemory, RefusesNegativeCounts) {
  bool (*const operations[])(SStreamSource&) = {
      [](SStreamSource& s) { return s.Skip(-1); },
      [](SStreamSource& s) { return s.Extend(-1); },
      [](SStreamSource& s) { return s.Write("abc", -1, false); },
      [](SStreamSource& s) { return s.Write("abc", -1, true); },
      [](SStreamSource& s) { return s.Read(nullptr, -1, false) || s.Read(nullptr, -1, true); },
  };
  for (const auto& operation : operations) {
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
  EXPECT_EQ(stream.GetLength() + stream.GetPosition(), 0);
  EXPECT_EQ(stream.DetachHandle(), nullptr);
  EXPECT_FALSE(stream.WriteByte('a'));
}

TEST(SStreamSrcString, IsTheTextWithoutItsTerminatorAndNeverWritten) {
  const SString text("abc");
  SStreamSrcString reader(text);
  EXPECT_TRUE(reader.Open(SStreamSource::kRead));
  EXPECT_EQ(BytesOf(reader), "abc");
  SStreamSrcString writer(text);
  EXPECT_FALSE(writer.Open(SStreamSource::kWrite) || writer.Write("x", 1, false));
  EXPECT_STREQ(text.GetText(), "abc");
}

}  // namespace
}  // namespace kivstore
