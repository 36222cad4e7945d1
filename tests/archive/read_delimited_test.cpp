// ReadDelimited through every kind of stream that implements it, the base class's form included.
#include <gtest/gtest.h>

#include <memory>

#include "archive/stream_file.h"
#include "archive/stream_stream.h"
#include "tests/archive/archive_support.h"

namespace kivstore {
namespace {

using kivtest::SpecOf;
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

class ReadDelimited : public testing::TestWithParam<Kind> {
 protected:
  SStreamSource& StreamOf(const std::string& contents) {
    bytes = contents;
    auto* const start = bytes.data();
    const auto size = static_cast<int32_t>(bytes.size());
    switch (GetParam()) {
      case Kind::kFile:
        folder.WriteFile("f", contents);
        stream = std::make_unique<SStreamSrcFile>(SpecOf(folder, "f"));
        break;
      case Kind::kMemory:
        stream = std::make_unique<SStreamSrcMemory>(start, size);
        break;
      case Kind::kBase:
        stream = std::make_unique<SPlainStream>(start, size);
        break;
      case Kind::kForwarding:
        stream = std::make_unique<SStreamSrcStream>(
            new SBinaryStream(SBinaryStream::kRead, new SStreamSrcMemory(start, size), true), true);
    }
    EXPECT_TRUE(stream->Open(SStreamSource::kRead));
    return *stream;
  }

 private:
  kivtest::TempFolder folder;
  std::string bytes;
  std::unique_ptr<SStreamSource> stream;
};

struct DelimitedCase {
  std::string contents;
  const char* delimiters;
  bool skipRun;
  bool consumeOne;
  std::string expected;
  int32_t position;
};

TEST_P(ReadDelimited, StopsWhereToldAndConsumesWhatIsTold) {
  const DelimitedCase cases[] = {
      {"ab\0cd"s, nullptr, false, false, "ab", 3}, {"ab\0cd"s, "", true, true, "ab", 3},
      {"\0\0cd"s, nullptr, true, true, "", 1},     {"ab,cd", ",;", false, false, "ab", 2},
      {"ab,;cd", ",;", false, true, "ab", 3},      {"ab,;,cd", ",;", true, false, "ab", 5},
      {"ab,;,cd", ",;", true, true, "ab", 5},      {"ab\0cd"s, ",", false, false, "ab", 2},
      {"ab\0cd"s, ",", false, true, "ab", 3},      {",ab", ",", false, true, "", 1},
      {"ab,,", ",", true, false, "ab", 4},
  };
  for (const DelimitedCase& c : cases) {
    SStreamSource& stream = StreamOf(c.contents);
    SString text("left over");
    EXPECT_TRUE(stream.ReadDelimited(text, c.delimiters, c.skipRun, c.consumeOne)) << c.contents;
    EXPECT_EQ(text.View(), c.expected) << c.contents;
    EXPECT_EQ(stream.GetPosition(), c.position) << c.contents;
  }
}

TEST_P(ReadDelimited, DeliversALastTextWithoutItsStopAndThenFails) {
  SStreamSource& stream = StreamOf("a,last");
  SString text;
  EXPECT_TRUE(stream.ReadDelimited(text, ",", true, true));
  EXPECT_TRUE(stream.ReadDelimited(text, ",", true, true));
  EXPECT_STREQ(text.GetText(), "last");
  EXPECT_FALSE(stream.ReadDelimited(text, ",", true, true));
  EXPECT_TRUE(text.IsEmpty());
}

TEST_P(ReadDelimited, TakesTheLongestTextAndNoMore) {
  const std::string longest(32766, 'a');
  SString text;
  EXPECT_TRUE(StreamOf(longest + '\0').ReadDelimited(text, nullptr, true, true));
  EXPECT_EQ(text.View(), longest);
  EXPECT_FALSE(StreamOf(longest + "b\0"s).ReadDelimited(text, nullptr, true, true));
  EXPECT_EQ(text.View(), longest);
  EXPECT_TRUE(StreamOf(longest + '|').ReadDelimited(text, "|", false, true));
  EXPECT_FALSE(StreamOf(longest + "b|").ReadDelimited(text, "|", false, true));
}

INSTANTIATE_TEST_SUITE_P(Streams, ReadDelimited,
                         testing::Values(Kind::kFile, Kind::kMemory, Kind::kBase,
                                         Kind::kForwarding));

TEST(ReadDelimitedOfAFile, JoinsATextAcrossTheBuffersEnd) {
  kivtest::TempFolder folder;
  folder.WriteFile("f", std::string(65530, 'x') + ","s + "across the end\0rest\0"s);
  SStreamSrcFile stream(SpecOf(folder, "f"));
  stream.Open(SStreamSource::kRead);
  stream.Skip(65531);
  SString text;
  EXPECT_TRUE(stream.ReadDelimited(text, nullptr, true, true));
  EXPECT_STREQ(text.GetText(), "across the end");
  EXPECT_TRUE(stream.ReadDelimited(text, nullptr, true, true));
  EXPECT_STREQ(text.GetText(), "rest");
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
