// Preference files: in-place edits as before/after texts, what the scanner reads, and foreign
// bytes.
#include <chrono>

#include "archive/pref_file_chain.h"
#include "tests/archive/archive_support.h"
#include "tests/support/fault_file_services.h"

namespace kivstore {
namespace {

using namespace std::string_literals;

using PrefFiles = kivtest::FileTest;

// What GetValue delivers, or "(none)".
std::string ValueOf(SPrefFile& file, const char* section, const char* key) {
  SString value;
  return file.GetValue(section, key, value) ? std::string(value.View()) : "(none)";
}

TEST_F(PrefFiles, ReadsTheFirstMatchingLineToItsEnd) {
  const struct {
    std::string text;
    std::string value;  // of key "key" in section "sec"
  } cases[] = {
      {"[sec]\r\nkey=1\r\n", "1"},
      {"[sec]\rkey=1\r\r", "1"},
      {"\r\n \t [SEC] trailing\r\n\r\n\t Key=1\r\n", "1"},
      {"[sec]\r\nkey=  two words \r\n", "  two words "},
      {"[sec]\r\nkey=a=b;\"c\"\r\n", "a=b;\"c\""},
      {"[sec]\r\nkey=", ""},
      {"[sec]\r\n; key=0\r\nkeys=0\r\nkey =0\r\nke=0\r\nkey=1\r\nkey=2\r\n", "1"},
      {"[other]\r\nkey=0\r\n[sec]\r\nkey=1\r\n", "1"},
      {"[section]\r\nkey=0\r\n[sec\r\nkey=0\r\n[sec]\r\nkey=1\r\n", "1"},
      {"key=0\r\n[se]\r\n", "(none)"},
      {"[sec", "(none)"},
      {"[", "(none)"},
      {"[sec]\r\nkey", "(none)"},
      {"[sec]\r\n\0\0=\r\nkey=a\0b\r\n"s, "a\0b"s},
  };
  for (const auto& c : cases) {
    SPrefFile file(FileOf(c.text));
    EXPECT_EQ(ValueOf(file, "sec", "key"), c.value) << c.text;
    EXPECT_FALSE(file.IsOpen()) << "left as it was found";
    EXPECT_EQ(Stored(), c.text);
  }
}

TEST_F(PrefFiles, EditsInPlaceAndLeavesAllOtherBytesAlone) {
  const auto set = [](SPrefFile& f) { return f.SetValue("sec", "key", "val"); };
  const auto deleteKey = [](SPrefFile& f) { return f.DeleteKey("sec", "key"); };
  const auto deleteSection = [](SPrefFile& f) { return f.DeleteSection("sec"); };
  const struct {
    const char* what;
    std::string before;
    bool (*edit)(SPrefFile&);
    std::string after;
  } cases[] = {
      {"equal length moves nothing", "[sec]\nkey=old\nx", set, "[sec]\nkey=val\nx"},
      {"shorter leaves no rest", "[sec]\nkey=old value\nx", set, "[sec]\nkey=val\nx"},
      {"longer makes room", "[sec]\nkey=\nx=1", set, "[sec]\nkey=val\nx=1"},
      {"spelling and indent stay", "[SEC]\n  KEY=1\n", set, "[SEC]\n  KEY=val\n"},
      {"behind the last line", "[sec]\na=1\n\n\n[b]", set, "[sec]\na=1\r\nkey=val\n\n\n[b]"},
      {"an indented header stays whole", "[sec]\n  [b]\n", set, "[sec]\r\nkey=val\n  [b]\n"},
      {"new key at a torn end", "[sec]\na=1", set, "[sec]\na=1\r\nkey=val"},
      {"new section behind a line break", "[a]\nb=1\n", set, "[a]\nb=1\n[sec]\r\nkey=val\r\n"},
      {"new section behind text", "[a]\nb=1", set, "[a]\nb=1\r\n[sec]\r\nkey=val\r\n"},
      {"only the first section", "[sec]\n[sec]\nkey=", set, "[sec]\r\nkey=val\n[sec]\nkey="},
      {"a value ends at its line break", "[sec]\nkey=1\n",
       [](SPrefFile& f) { return f.SetValue("sec", "key", "v\r\n[b]\nc=1"); }, "[sec]\nkey=v\n"},
      {"key with its line break", "[sec]\r\nkey=1\r\n\r\nb=2", deleteKey, "[sec]\r\n\r\nb=2"},
      {"key with a single CR", "[sec]\rkey=1\r\rb=2", deleteKey, "[sec]\r\rb=2"},
      {"key at a torn end", "[sec]\nkey=1", deleteKey, "[sec]\n"},
      {"leading spaces of a key stay", "[sec]\n  key=1\nb=2\n", deleteKey, "[sec]\n  b=2\n"},
      {"to the next header", "[a]\n\n[sec] [x]\nkey=1\n\n[b]", deleteSection, "[a]\n\n[b]"},
      {"section to a bracket in a value", "[sec]\na=1[2]\n[b]\n", deleteSection, "[2]\n[b]\n"},
      {"last section leaves nothing", "[a]\nb=1\n\n[sec]\nkey=1\n", deleteSection, "[a]\nb=1\n\n"},
  };
  for (const auto& c : cases) {
    SPrefFile file(FileOf(c.before));
    EXPECT_TRUE(c.edit(file)) << c.what;
    EXPECT_EQ(Stored(), c.after) << c.what;
  }
}

TEST_F(PrefFiles, WhatIsNotThereOrHasNoNameIsFalseAndChangesNothing) {
  const std::string text = "[sec]\nkey=1\n";
  SPrefFile file(FileOf(text));
  for (const char* const name : {static_cast<const char*>(nullptr), "", "no", "k\ney", "[key"}) {
    EXPECT_FALSE(file.DeleteKey("sec", name));
    EXPECT_EQ(ValueOf(file, "sec", name), "(none)");
    EXPECT_FALSE(file.DeleteSection(name));
  }
  ASSERT_TRUE(file.Open(SPrefFile::kWrite));
  file.SetChanged(true);
  for (const char* const name :
       {static_cast<const char*>(nullptr), "", "k\ney", "[key", " key", "\tkey"}) {
    EXPECT_FALSE(file.SetValue("sec", name, "v") || file.SetValue("new", name, "v"));
  }
  file.Close();
  EXPECT_EQ(Stored(), text);
}

TEST_F(PrefFiles, OpenForReadingNothingIsChangedAndOpenForWritingAllGoesBackOnClose) {
  SPrefFile file(FileOf("[a]\nk=1\n"));
  ASSERT_TRUE(file.Open(SPrefFile::kRead));
  EXPECT_FALSE(file.Open(SPrefFile::kWrite)) << "open already";
  EXPECT_FALSE(file.SetValue("a", "k", "2") || file.DeleteKey("a", "k") || file.DeleteSection("a"));
  EXPECT_EQ(ValueOf(file, "a", "k"), "1");
  file.Close();
  ASSERT_TRUE(file.Open(SPrefFile::kWrite));
  file.SetFile(SFileSpec());
  EXPECT_TRUE(file.SetValue("a", "k", "2") && file.SetValue("a", "l", "3"));
  file.Close();
  EXPECT_EQ(Stored(), "[a]\nk=2\r\nl=3\n");
}

TEST_F(PrefFiles, GrowsByStepsRefusesWhatNoStepHoldsAndCutsAValueToWhatAStringHolds) {
  SPrefFile file(FileOf("[a]\n"));
  const std::string value(4000, 'x');
  ASSERT_TRUE(file.Open(SPrefFile::kWrite));
  EXPECT_TRUE(file.SetValue("a", "b", SString(value)) && file.SetValue("a", "c", SString(value)));
  for (const char* const section : {"a", "new"}) {
    EXPECT_FALSE(file.SetValue(section, "d", SString('z', 9000)));
  }
  file.Close();
  EXPECT_EQ(Stored(), "[a]\r\nb=" + value + "\r\nc=" + value + "\n");
  FileOf("[a]\nb=" + std::string(100000, 'x') + "\nc=1\n");
  EXPECT_EQ(ValueOf(file, "a", "b"), std::string(32766, 'x'));
  EXPECT_TRUE(file.SetValue("a", "b", "short"));
  EXPECT_EQ(Stored(), "[a]\nb=short\nc=1\n");
}

TEST_F(PrefFiles, AnyBytesAreReadInBounds) {
  std::string noise;
  for (int i = 0; i < 20000; ++i) {
    noise.push_back("[]=\r\n \tk\0\xFF"[(i * 7919 + i / 13) % 10]);
  }
  SPrefFile file(FileOf(noise));
  ASSERT_TRUE(file.Open(SPrefFile::kWrite));
  for (int i = 0; i < 50; ++i) {
    ValueOf(file, "k", "k");
    file.SetValue("k", "k", i % 2 == 0 ? "" : "kk");
    file.DeleteKey("k", "k");
    file.DeleteSection("k");
  }
  file.Close();
}

TEST_F(PrefFiles, TenTimesTheTextTakesAboutTenTimesAsLong) {
  const auto timeOf = [this](size_t size) {
    std::string text = "[sec]\n";
    while (text.size() < size) {
      text += "key of a line without a sign\n[key\n";
    }
    SPrefFile file(FileOf(text));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(file.SetValue("end", "key", "1"));
    EXPECT_EQ(ValueOf(file, "end", "key"), "1");
    const auto time = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(Stored(), text + "[end]\r\nkey=1\r\n");
    return time;
  };
  const auto small = std::max(timeOf(1 << 20), timeOf(1 << 20));
  EXPECT_LT(timeOf(10 << 20), 5 * 10 * small);
}

TEST_F(PrefFiles, TheTextGoesBackWhenTheMarkChangesWhileItIsOpenForWriting) {
  const struct {
    int32_t mode;
    std::vector<bool> marks;
    int writes;
  } cases[] = {{SPrefFile::kRead, {true}, 0},
               {SPrefFile::kWrite, {}, 0},
               {SPrefFile::kWrite, {false}, 0},
               {SPrefFile::kWrite, {true}, 1},
               {SPrefFile::kWrite, {true, false}, 1}};
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  for (const auto& c : cases) {
    SPrefFile file(FileOf("[a]\nk=1\n"));
    file.SetChanged(true);
    ASSERT_TRUE(file.Open(c.mode));
    for (const bool mark : c.marks) {
      file.SetChanged(mark);
    }
    files.ClearLog();
    file.Close();
    EXPECT_EQ(files.CountOf("Write"), c.writes) << c.marks.size() << " marks";
    EXPECT_EQ(Stored(), "[a]\nk=1\n");
  }
}

TEST_F(PrefFiles, ATextInMemoryIsOpenForReading) {
  const std::string text = "[sec]\nkey=1\n";
  const auto size = static_cast<int32_t>(text.size());
  MemoryHandle const handle = AllocateBlock(size);
  std::copy(text.begin(), text.end(), static_cast<char*>(LockBlock(handle)));
  for (const bool owns : {false, true}) {
    SPrefFile file(handle, size, owns);
    EXPECT_TRUE(file.IsOpen());
    EXPECT_EQ(ValueOf(file, "sec", "key"), "1");
    EXPECT_FALSE(file.SetValue("sec", "key", "2"));
    file.Close();
    EXPECT_EQ(ValueOf(file, "sec", "key"), "(none)");
  }
  EXPECT_FALSE(SPrefFile(nullptr, 5, true).IsOpen());
}

TEST_F(PrefFiles, AFailedReadOrAMissingFileDoesNotOpen) {
  SPrefFile file(FileOf("[a]\n"));
  for (const char* const name : {"missing", ""}) {
    SPrefFile missing(SpecOf(name));
    EXPECT_FALSE(missing.Open(SPrefFile::kRead) || missing.Open(SPrefFile::kWrite)) << name;
  }
  EXPECT_EQ(folder.List(), std::vector<std::string>{"f"});
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  files.FailAt(3, SystemError::kOther, true);
  EXPECT_FALSE(file.Open(SPrefFile::kRead));
  EXPECT_TRUE(files.OpenPaths().empty());
}

// Own file "own", then links "first" and "second": the walk is second, first, own.
class PrefChains : public PrefFiles {
 protected:
  PrefChains() {
    chain.SetFile(SFileSpec());
    chain.SetFile(FileOf("[a]\nk=own\no=own\n", "own"));
    chain.SetFile(FileOf("[a]\nk=first\nf=first\n", "first"));
    chain.SetFile(FileOf("[a]\nk=second\n", "second"));
  }

  SPrefFileChain chain;
};

TEST_F(PrefChains, ReadsFallThroughFromTheNewestLinkToTheOwnFile) {
  for (const bool open : {false, true}) {
    EXPECT_EQ(chain.IsOpen(), open);
    EXPECT_EQ(ValueOf(chain, "a", "k"), "second");
    EXPECT_EQ(ValueOf(chain, "a", "f"), "first");
    EXPECT_EQ(ValueOf(chain, "a", "o"), "own");
    EXPECT_EQ(ValueOf(chain, "a", "x"), "(none)");
    chain.Open(SPrefFile::kRead);
  }
}

TEST_F(PrefChains, AChangeLandsInTheFirstFileWhereverItWasReadFrom) {
  ASSERT_TRUE(chain.Open(SPrefFile::kWrite));
  EXPECT_FALSE(chain.Open(SPrefFile::kWrite));
  EXPECT_TRUE(chain.SetValue("a", "o", "new"));
  EXPECT_FALSE(chain.DeleteKey("a", "f")) << "the others refuse";
  EXPECT_FALSE(chain.DeleteSectionInChain("b"));
  EXPECT_TRUE(chain.DeleteKeyInChain("a", "k"));
  EXPECT_EQ(ValueOf(chain, "a", "k"), "first");
  chain.Close();
  EXPECT_EQ(Stored("second"), "[a]\no=new\n");
  EXPECT_EQ(Stored("own"), "[a]\nk=own\no=own\n");
}

TEST_F(PrefChains, OpensAllOrNone) {
  SFile holder;
  SFile second;
  ASSERT_TRUE(holder.Open(SFile::kWrite, SpecOf("first")));
  EXPECT_FALSE(chain.Open(SPrefFile::kRead));
  EXPECT_TRUE(second.Open(SFile::kWrite, SpecOf("second"))) << "closed again";
  second.Close();
  holder.Close();
  EXPECT_TRUE(chain.Open(SPrefFile::kRead));
}

}  // namespace
}  // namespace kivstore
