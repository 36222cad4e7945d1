// Every kind of stream against plain bytes: random reading, and random writing read back; what a
// file stream costs and leaves in the file, how memory grows, and where the two differ at the end.
#include <climits>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

#include "archive/stream_file.h"
#include "archive/stream_stream.h"
#include "tests/archive/archive_support.h"
#include "tests/support/draw.h"
#include "tests/support/fault_file_services.h"

namespace kivstore {
namespace {

using kivtest::Draw;
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

class Streams : public kivtest::FileTest, public testing::WithParamInterface<Kind> {
 protected:
  SStreamSource& Reading(const std::string& contents) {
    bytes = contents;
    stream.reset();  // lets go of the file
    stream.reset(MakeReading(static_cast<int32_t>(bytes.size())));
    EXPECT_TRUE(stream->Open(SStreamSource::kRead));
    return *stream;
  }

  SStreamSource& Writing() {
    stream.reset();
    auto* const memory = new SStreamSrcMemory(nullptr, 0);
    stream.reset(memory);
    if (GetParam() == Kind::kFile) {
      stream.reset(new SStreamSrcFile(FileOf("")));
    } else if (GetParam() == Kind::kForwarding) {
      stream.release();
      stream.reset(
          new SStreamSrcStream(new SBinaryStream(SBinaryStream::kWrite, memory, true), true));
    }
    EXPECT_TRUE(stream->Open(SStreamSource::kWrite));
    return *stream;
  }

  std::string bytes;
  std::unique_ptr<SStreamSource> stream;

 private:
  SStreamSource* MakeReading(int32_t size) {
    if (GetParam() == Kind::kFile) return new SStreamSrcFile(FileOf(bytes));
    if (GetParam() == Kind::kBase) return new SPlainStream(bytes.data(), size);
    auto* const memory = new SStreamSrcMemory(bytes.data(), size);
    if (GetParam() == Kind::kMemory) return memory;
    return new SStreamSrcStream(new SBinaryStream(SBinaryStream::kRead, memory, true), true);
  }
};

INSTANTIATE_TEST_SUITE_P(All, Streams,
                         testing::Values(Kind::kFile, Kind::kMemory, Kind::kBase,
                                         Kind::kForwarding));

std::string Turned(std::string bytes, bool swap) {
  return swap ? std::string(bytes.rbegin(), bytes.rend()) : bytes;
}

// The text from `at`, which moves behind it as the delimiters tell; a run is of these bytes.
std::string TakeText(const std::string& bytes, size_t& at, const std::string& delimiters, bool one,
                     const std::string& run) {
  const size_t end = bytes.find_first_of(delimiters + '\0', at);
  const std::string text = bytes.substr(at, end - at);
  at = end + (delimiters.empty() || one || !run.empty() ? 1 : 0);
  while (!delimiters.empty() && at < bytes.size() && run.find(bytes[at]) != std::string::npos) {
    ++at;
  }
  return text;
}

// One step within the bytes; `at` is where the stream must stand.
void ReadSomething(SStreamSource& s, const std::string& bytes, size_t& at, Draw& draw, Kind kind) {
  const bool peeks = kind != Kind::kFile, isBase = kind == Kind::kBase;
  const auto left = static_cast<int32_t>(bytes.size() - at);
  const int32_t most = draw.OneIn(10) ? 70000 : 6;
  const int32_t count = std::min(draw.Between(0, most), left);
  const bool swap = draw.OneIn(2), run = draw.OneIn(2), one = draw.OneIn(2);
  const std::string next = bytes.substr(at, static_cast<size_t>(count));
  std::string dest(next.size(), '-');
  SString text("left over");
  int32_t wanted = count;
  switch (draw.Below(left > 1 ? 7 : left > 0 ? 5 : 2)) {
    case 0:
      EXPECT_EQ(s.UnreadByte(), at > 0);
      at -= at > 0 ? 1 : 0;
      break;
    case 1:
      EXPECT_TRUE(s.Read(dest.data(), count, swap));
      EXPECT_TRUE(dest == Turned(next, swap));
      at += next.size();
      break;
    case 2:
      EXPECT_TRUE(!peeks || s.PeekByte() == static_cast<uint8_t>(bytes[at]));
      EXPECT_EQ(s.ReadByte(), static_cast<uint8_t>(bytes[at++]));
      break;
    case 3:
      EXPECT_TRUE(s.Skip(count));
      at += next.size();
      break;
    case 4:
      if (const uint8_t* block = s.GetBlock(wanted); block != nullptr) {
        EXPECT_LE(wanted, count);
        EXPECT_EQ(std::memcmp(block, next.data(), static_cast<size_t>(wanted)), 0);
      }
      at += static_cast<size_t>(wanted);
      break;
    case 5:
      EXPECT_TRUE(s.Rewind());
      at = 0;
      break;
    default: {
      const char* const delimiters = draw.OneIn(2) ? "ab" : draw.OneIn(2) ? "" : nullptr;
      EXPECT_TRUE(s.ReadDelimited(text, delimiters, run, one));
      // The base class's run does not take NULs along.
      const std::string runs = run ? (isBase ? "ab" : "ab\0"s) : "";
      EXPECT_TRUE(text.View() ==
                  TakeText(bytes, at, delimiters != nullptr ? delimiters : "", one, runs));
    }
  }
}

TEST_P(Streams, ReadWhatTheBytesSay) {
  kivtest::ForSeeds(60, [&](Draw& draw) {
    std::string head(static_cast<size_t>(draw.OneIn(3) ? draw.Between(65500, 65540) : 0), 'c');
    for (size_t i = 0; i < head.size(); i += 50) {
      head[i] = "ab\0"[i % 3];
    }
    // With a stop near the end: a last text without one is another rule.
    SStreamSource& s = Reading(head + draw.Text(60, "abcd\0e"s) + "b\0c"s);
    const std::string copy = bytes;
    size_t at = 0;
    for (int step = 0; step < 80 && !HasFailure(); ++step) {
      ReadSomething(s, copy, at, draw, GetParam());
      ASSERT_FALSE(s.HasError());
      ASSERT_EQ(s.GetPosition(), static_cast<int32_t>(at));
      ASSERT_EQ(s.BytesLeft(), static_cast<int32_t>(copy.size() - at));
      ASSERT_EQ(s.GetLength(), static_cast<int32_t>(copy.size()));
    }
  });
}

TEST_P(Streams, KeepWhatWasWrittenAndNothingBehindIt) {
  if (GetParam() == Kind::kBase) {
    return;  // writes as memory does
  }
  kivtest::ForSeeds(40, [&](Draw& draw) {
    SStreamSource& s = Writing();
    std::string model;
    for (int step = 0; step < 25; ++step) {
      const std::string text = draw.Text(draw.OneIn(4) ? 6000 : 9, "abc\0"s);
      const auto count = static_cast<int32_t>(text.size());
      const bool swap = draw.OneIn(2);
      if (draw.OneIn(5)) {
        EXPECT_TRUE(s.Skip(count) && s.Extend(3));
        model.append(text.size(), '\0');
      } else if (draw.OneIn(4)) {
        EXPECT_TRUE(s.WriteByte('!'));
        model += '!';
      } else {
        EXPECT_TRUE(s.Write(text.data(), count, swap));
        model += Turned(text, swap);
      }
      ASSERT_EQ(s.GetPosition(), static_cast<int32_t>(model.size()));
    }
    EXPECT_TRUE(s.Close());
    EXPECT_EQ(s.GetLength(), static_cast<int32_t>(model.size()));
    EXPECT_TRUE(kivtest::BytesOf(s) == model) << "read back by the same stream";
    stream.reset();  // nobody else may read a file that is open alone
    EXPECT_TRUE(GetParam() != Kind::kFile || Stored() == model);
  });
}

TEST_P(Streams, DeliverALastTextWithoutItsStopAndTheLongestButNoLonger) {
  SString text;
  SStreamSource& s = Reading(std::string(65530, 'x') + ",across the end,last");
  s.Skip(65531);
  for (const char* expected : {"across the end", "last"}) {
    EXPECT_TRUE(s.ReadDelimited(text, ",", true, true));
    EXPECT_STREQ(text.GetText(), expected);
  }
  EXPECT_FALSE(s.ReadDelimited(text, ",", true, true));
  EXPECT_TRUE(text.IsEmpty());
  const std::string longest(32766, 'a');
  for (const char* stop : {"", "|"}) {
    const std::string end(1, *stop);
    EXPECT_TRUE(Reading(longest + end).ReadDelimited(text, stop, false, true));
    EXPECT_TRUE(text.View() == longest);
    EXPECT_FALSE(Reading(longest + 'b' + end).ReadDelimited(text, stop, false, true));
    EXPECT_TRUE(text.View() == longest);
  }
}

TEST_P(Streams, KeepTheFirstErrorAndRefuseWhatDoesNotFit) {
  char dest[6] = "-----";
  int32_t count = -1;
  const std::function<bool(SStreamSource&)> refused[] = {
      [&](SStreamSource& s) { return s.Read(dest, 4, false) || s.Read(dest, 1, false); },
      [&](SStreamSource& s) { return s.Read(dest, 4, true); },
      [&](SStreamSource& s) { return s.Read(dest, -1, false) || s.Read(dest, -1, true); },
      [&](SStreamSource& s) { return s.Skip(-1); },
      [&](SStreamSource& s) { return s.WriteByte('x'); },
      [&](SStreamSource& s) { return s.Write("x", 1, false); },
      [&](SStreamSource& s) { return s.Write("x", 1, true) && !s.HasError(); },
      [&](SStreamSource& s) { return s.Skip(3) && (s.ReadByte() != 0 || !s.HasError()); },
      [&](SStreamSource& s) { return s.Skip(3) && s.GetBlock(count = 1) != nullptr && count > 0; }};
  for (const auto& act : refused) {
    SStreamSource& s = Reading("abc");
    EXPECT_FALSE(act(s)) << &act - refused;
    EXPECT_TRUE(s.HasError() || &act - refused == 8) << &act - refused;
    EXPECT_TRUE(!s.HasError() || s.ReadByte() == 0);
  }
  for (const int32_t negative : {-1, -5}) {
    SStreamSource& s = Writing();
    EXPECT_FALSE(s.Write("abc", negative, false) || s.Extend(negative) || s.Skip(negative));
    EXPECT_TRUE(s.HasError());
  }
}

// What one kind of stream does and no other.
constexpr int32_t kRead = SStreamSource::kRead, kWrite = SStreamSource::kWrite;

class FileStreams : public kivtest::FileTest {
 protected:
  kivtest::FaultFileServices files{*Platform().files};
  SPlatformOverride<IFileServices> installed{Platform().files, &files};
};

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
    SStreamSrcFile last(FileOf("z", "last")), empty(FileOf("", "empty"));
    EXPECT_TRUE(last.Open(kRead) && last.PeekByte() == 'z' && last.ReadByte() == 'z');
    EXPECT_TRUE(empty.Open(kRead));
    EXPECT_EQ(swap ? empty.PeekByte() : empty.ReadByte(), 0);
    EXPECT_TRUE(empty.HasError());
  }
}

TEST_F(FileStreams, PeekingAtTheBuffersEndStaysInsideItAndNoCloseCutsTheOldFile) {
  std::string bytes(70000, 'x');
  {
    SStreamSrcFile stream(FileOf(bytes)), written(FileOf(bytes, "old"));
    EXPECT_TRUE(stream.Open(kRead) && stream.PeekByte() == 'x');
    stream.Read(bytes.data(), 65536, false);
    files.FallShortAt(1, 1000);
    stream.PeekByte();
    EXPECT_EQ(stream.BytesLeft(), 3464) << "the position stands behind the end";
    EXPECT_TRUE(stream.Read(bytes.data(), 3464, false) && stream.BytesLeft() == 0);
    EXPECT_TRUE(written.Open(kWrite) && written.Write("ab", 2, false));
  }
  EXPECT_EQ(Stored("old"), "ab");
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
  for (const int32_t room : {1024, 1025}) {
    EXPECT_TRUE(stream.Extend(room));
    EXPECT_EQ(stream.GetLength(), room == 1024 ? 1024 : 2048);
  }
  EXPECT_TRUE(stream.Skip(2047) && stream.Write("abcd", 4, true));
  EXPECT_EQ(stream.GetLength(), 3072);
  EXPECT_FALSE(stream.Extend(INT_MAX) || !stream.HasError());
  char buffer[] = "----#";
  SStreamSrcMemory fixed(buffer, 4);
  EXPECT_TRUE(fixed.Open(kWrite) && fixed.Write("abcd", 4, false) && !fixed.WriteByte('e'));
  EXPECT_STREQ(buffer, "abcd#");
  EXPECT_EQ(fixed.DetachHandle(), nullptr);
}

TEST(SStreamSrcMemory, DeliversAllOrNothing) {
  char buffer[] = "abcdef", dest[] = "-----";
  SStreamSrcMemory stream(buffer, 6), blocks(buffer, 6), text(buffer, 6), closed(buffer, 6);
  EXPECT_TRUE(stream.Open(kRead) && blocks.Open(kRead) && text.Open(kRead) && closed.Open(kRead));
  EXPECT_TRUE(stream.Read(dest, 2, true) && !stream.Read(dest, 5, false));
  EXPECT_STREQ(dest, "ba---");
  EXPECT_EQ(stream.GetPosition(), 2);
  int32_t count = 4;
  EXPECT_EQ(blocks.GetBlock(count), reinterpret_cast<uint8_t*>(buffer));
  EXPECT_TRUE(blocks.GetBlock(count) == nullptr && count == 0 && blocks.HasError());
  SString last;
  EXPECT_TRUE(text.ReadDelimited(last, nullptr, true, true));
  EXPECT_EQ(text.GetPosition(), 7) << "one past the size, for a text without its NUL";
  EXPECT_EQ(text.BytesLeft(), 0);
  EXPECT_FALSE(text.ReadDelimited(last, nullptr, true, true) || text.HasError());
  EXPECT_EQ(text.PeekByte() + text.ReadByte(), 0);
  EXPECT_TRUE(text.HasError());
  EXPECT_TRUE(!closed.Close() && closed.HasError()) << "was not written";
}

TEST(SStreamSrcMemory, ADetachedBlockIsTheCallersAndTheStreamHasNothing) {
  SStreamSrcMemory stream(nullptr, 0);
  EXPECT_TRUE(stream.Open(kWrite) && stream.Write("abc", 3, false));
  MemoryHandle const handle = stream.DetachHandle();
  EXPECT_EQ(std::string(static_cast<const char*>(LockBlock(handle)), 3), "abc");
  FreeBlock(handle);
  EXPECT_EQ(stream.GetLength() + stream.GetPosition(), 0);
  EXPECT_TRUE(stream.DetachHandle() == nullptr && !stream.WriteByte('a'));
}

TEST(SStreamSrcString, IsTheTextWithoutItsTerminatorAndNeverWritten) {
  SStreamSrcString reader("abc"), writer("abc");
  EXPECT_TRUE(reader.Open(kRead));
  EXPECT_EQ(kivtest::BytesOf(reader), "abc");
  EXPECT_FALSE(writer.Open(kWrite) || writer.Write("x", 1, false));
}

}  // namespace
}  // namespace kivstore
