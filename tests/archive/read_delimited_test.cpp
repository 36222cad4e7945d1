// ReadDelimited through every kind of stream that implements it, the base class's form included.
#include <memory>

#include "archive/stream_file.h"
#include "archive/stream_stream.h"
#include "tests/archive/archive_support.h"

namespace kivstore {
namespace {

using namespace std::string_literals;

// A memory stream that leaves ReadDelimited to the base class.
class SPlainStream : public SStreamSrcMemory {
 public:
  using SStreamSrcMemory::SStreamSrcMemory;
  bool ReadDelimited(SString& dest, const char* delimiters, bool skipRun,
                     bool consumeOne) override {
    return SStreamSource::ReadDelimited(dest, delimiters, skipRun, consumeOne);
  }
};

enum class Kind { kFile, kMemory, kBase, kForwarding };

class ReadDelimited : public kivtest::FileTest, public testing::WithParamInterface<Kind> {
 protected:
  SStreamSource& StreamOf(const std::string& contents) {
    bytes = contents;
    stream.reset();  // lets go of the file
    stream.reset(Make(static_cast<int32_t>(bytes.size())));
    EXPECT_TRUE(stream->Open(SStreamSource::kRead));
    return *stream;
  }

  SString text;

 private:
  SStreamSource* Make(int32_t size) {
    if (GetParam() == Kind::kFile) return new SStreamSrcFile(FileOf(bytes));
    if (GetParam() == Kind::kBase) return new SPlainStream(bytes.data(), size);
    auto* const memory = new SStreamSrcMemory(bytes.data(), size);
    if (GetParam() == Kind::kMemory) return memory;
    return new SStreamSrcStream(new SBinaryStream(SBinaryStream::kRead, memory, true), true);
  }

  std::string bytes;
  std::unique_ptr<SStreamSource> stream;
};

INSTANTIATE_TEST_SUITE_P(Streams, ReadDelimited,
                         testing::Values(Kind::kFile, Kind::kMemory, Kind::kBase,
                                         Kind::kForwarding));

TEST_P(ReadDelimited, StopsWhereToldAndConsumesWhatIsTold) {
  const struct {
    std::string contents;
    const char* delimiters;
    bool skipRun, consumeOne;
    std::string expected;
    int32_t position;
  } cases[] = {
      {"ab\0cd"s, nullptr, false, false, "ab", 3}, {"ab\0cd"s, "", true, true, "ab", 3},
      {"\0\0cd"s, nullptr, true, true, "", 1},     {"ab,cd", ",;", false, false, "ab", 2},
      {"ab,;cd", ",;", false, true, "ab", 3},      {"ab,;,cd", ",;", true, false, "ab", 5},
      {"ab,;,cd", ",;", true, true, "ab", 5},      {"ab\0cd"s, ",", false, false, "ab", 2},
      {"ab\0cd"s, ",", false, true, "ab", 3},      {",ab", ",", false, true, "", 1},
      {"ab,,", ",", true, false, "ab", 4},
  };
  for (const auto& c : cases) {
    SStreamSource& stream = StreamOf(c.contents);
    text = "left over";
    EXPECT_TRUE(stream.ReadDelimited(text, c.delimiters, c.skipRun, c.consumeOne)) << c.contents;
    EXPECT_EQ(text.View(), c.expected) << c.contents;
    EXPECT_EQ(stream.GetPosition(), c.position) << c.contents;
  }
}

TEST_P(ReadDelimited, JoinsATextAcrossABufferAndDeliversALastOneWithoutItsStop) {
  SStreamSource& stream = StreamOf(std::string(65530, 'x') + ",across the end,last");
  stream.Skip(65531);
  EXPECT_TRUE(stream.ReadDelimited(text, ",", true, true));
  EXPECT_STREQ(text.GetText(), "across the end");
  EXPECT_TRUE(stream.ReadDelimited(text, ",", true, true));
  EXPECT_STREQ(text.GetText(), "last");
  EXPECT_FALSE(stream.ReadDelimited(text, ",", true, true));
  EXPECT_TRUE(text.IsEmpty());
}

TEST_P(ReadDelimited, TakesTheLongestTextAndNoMore) {
  const std::string longest(32766, 'a');
  EXPECT_TRUE(StreamOf(longest + '\0').ReadDelimited(text, nullptr, true, true));
  EXPECT_EQ(text.View(), longest);
  EXPECT_FALSE(StreamOf(longest + "b\0"s).ReadDelimited(text, nullptr, true, true));
  EXPECT_EQ(text.View(), longest);
  EXPECT_TRUE(StreamOf(longest + '|').ReadDelimited(text, "|", false, true));
  EXPECT_FALSE(StreamOf(longest + "b|").ReadDelimited(text, "|", false, true));
}

TEST(ReadDelimitedOfMemory, PassesTheSizeByOneForATextWithoutItsNul) {
  char buffer[] = {'a', 'b'};
  SStreamSrcMemory stream(buffer, 2);
  stream.Open(SStreamSource::kRead);
  SString text;
  EXPECT_TRUE(stream.ReadDelimited(text, nullptr, true, true));
  EXPECT_EQ(stream.GetPosition(), 3);
  EXPECT_EQ(stream.PeekByte(), 0);
  EXPECT_FALSE(stream.ReadDelimited(text, nullptr, true, true));
  EXPECT_FALSE(stream.HasError());
  EXPECT_EQ(stream.ReadByte(), 0);
  EXPECT_TRUE(stream.HasError());
}

}  // namespace
}  // namespace kivstore
