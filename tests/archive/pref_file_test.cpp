// Preference files: in-place edits as before/after texts, what the scanner reads, and foreign
// bytes.
#include <gtest/gtest.h>

#include "archive/pref_file_chain.h"
#include "tests/archive/archive_support.h"
#include "tests/support/fault_file_services.h"

namespace kivstore {
namespace {

using kivtest::SpecOf;
using namespace std::string_literals;

class PrefFiles : public testing::Test {
 protected:
  SFileSpec FileOf(const std::string& bytes, const char* name = "f") const {
    folder.WriteFile(name, bytes);
    return SpecOf(folder, name);
  }
  std::string Stored(const char* name = "f") const { return folder.ReadFile(name); }

  kivtest::TempFolder folder;
};

// What GetValue delivers, or "(none)".
std::string ValueOf(SPrefFile& file, const char* section, const char* key) {
  SString value;
  return file.GetValue(section, key, value) ? std::string(value.View()) : "(none)";
}

struct ReadCase {
  std::string text;
  std::string value;  // of key "key" in section "sec"
};

TEST_F(PrefFiles, ReadsTheFirstMatchingLineToItsEnd) {
  const ReadCase cases[] = {
      {"[sec]\r\nkey=1\r\n", "1"},
      {"[sec]\nkey=1", "1"},
      {"[sec]\rkey=1\r\r", "1"},
      {"\r\n \t [SEC] trailing\r\n\r\n\t Key=1\r\n", "1"},
      {"[sec]\r\nkey=  two words \r\n", "  two words "},
      {"[sec]\r\nkey=a=b;\"c\"\r\n", "a=b;\"c\""},
      {"[sec]\r\nkey=\r\n", ""},
      {"[sec]\r\nkey=", ""},
      {"[sec]\r\n; key=0\r\nkeys=0\r\nkey =0\r\nke=0\r\nkey=1\r\nkey=2\r\n", "1"},
      {"[sec]\r\nother=1\r\n[sec]\r\nkey=2\r\n", "(none)"},
      {"[other]\r\nkey=0\r\n[sec]\r\nkey=1\r\n", "1"},
      {"[section]\r\nkey=0\r\n[sec\r\nkey=0\r\n[sec]\r\nkey=1\r\n", "1"},
      {"key=0\r\n[se]\r\n", "(none)"},
      {"[sec]", "(none)"},
      {"[sec", "(none)"},
      {"[", "(none)"},
      {"", "(none)"},
      {"[sec]\r\nkey", "(none)"},
      {"[sec]\r\n\0\0=\r\nkey=a\0b\r\n"s, "a\0b"s},
  };
  for (const ReadCase& c : cases) {
    SPrefFile file(FileOf(c.text));
    EXPECT_EQ(ValueOf(file, "sec", "key"), c.value) << c.text;
    EXPECT_FALSE(file.IsOpen()) << "left as it was found";
    EXPECT_EQ(Stored(), c.text);
  }
}

struct EditCase {
  const char* what;
  std::string before;
  bool (*edit)(SPrefFile&);
  std::string after;
};

TEST_F(PrefFiles, EditsInPlaceAndLeavesAllOtherBytesAlone) {
  const auto set = [](SPrefFile& f) { return f.SetValue("sec", "key", "val"); };
  const auto deleteKey = [](SPrefFile& f) { return f.DeleteKey("sec", "key"); };
  const auto deleteSection = [](SPrefFile& f) { return f.DeleteSection("sec"); };
  const EditCase cases[] = {
      {"equal length moves nothing", "[sec]\nkey=old\nx", set, "[sec]\nkey=val\nx"},
      {"shorter leaves no rest", "[sec]\nkey=old value\nx", set, "[sec]\nkey=val\nx"},
      {"longer makes room", "[sec]\nkey=\nx=1", set, "[sec]\nkey=val\nx=1"},
      {"spelling and indent stay", "[SEC]\n  KEY=1\n", set, "[SEC]\n  KEY=val\n"},
      {"new key behind the last line", "[sec]\r\na=1\r\n\r\n\r\n[b]\r\n", set,
       "[sec]\r\na=1\r\nkey=val\r\n\r\n\r\n[b]\r\n"},
      {"new key in an empty section", "[sec]\n[b]\n", set, "[sec]\r\nkey=val\n[b]\n"},
      {"an indented header stays whole", "[sec]\na=1\n  [b]\nc=2\n", set,
       "[sec]\na=1\r\nkey=val\n  [b]\nc=2\n"},
      {"new key at a torn end", "[sec]\na=1", set, "[sec]\na=1\r\nkey=val"},
      {"new section behind a line break", "[a]\nb=1\n", set, "[a]\nb=1\n[sec]\r\nkey=val\r\n"},
      {"new section behind text", "[a]\nb=1", set, "[a]\nb=1\r\n[sec]\r\nkey=val\r\n"},
      {"new section in an empty file", "", set, "[sec]\r\nkey=val\r\n"},
      {"only the first of two sections", "[sec]\n[sec]\nkey=1\n", set,
       "[sec]\r\nkey=val\n[sec]\nkey=1\n"},
      {"a value ends at its line break", "[sec]\nkey=1\n",
       [](SPrefFile& f) { return f.SetValue("sec", "key", "v\r\n[b]\nc=1"); }, "[sec]\nkey=v\n"},
      {"key goes with its line break", "[sec]\r\na=1\r\nkey=1\r\n\r\nb=2", deleteKey,
       "[sec]\r\na=1\r\n\r\nb=2"},
      {"key with a single LF", "[sec]\nkey=1\nb=2", deleteKey, "[sec]\nb=2"},
      {"key with a single CR", "[sec]\rkey=1\r\rb=2", deleteKey, "[sec]\r\rb=2"},
      {"key at a torn end", "[sec]\nkey=1", deleteKey, "[sec]\n"},
      {"leading spaces of a key stay", "[sec]\n  key=1\nb=2\n", deleteKey, "[sec]\n  b=2\n"},
      {"section to the next header", "[a]\n\n[sec] [x]\nkey=1\n\n[b]\n", deleteSection,
       "[a]\n\n[b]\n"},
      {"section to a bracket in a value", "[sec]\na=1[2]\n[b]\n", deleteSection, "[2]\n[b]\n"},
      {"last section leaves nothing", "[a]\nb=1\n\n[sec]\nkey=1\n", deleteSection, "[a]\nb=1\n\n"},
  };
  for (const EditCase& c : cases) {
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
  for (const char* const name : {static_cast<const char*>(nullptr), "", "k\ney", "[key"}) {
    EXPECT_FALSE(file.SetValue("sec", name, "v"));
  }
  EXPECT_EQ(Stored(), text);
}

TEST_F(PrefFiles, OpenForReadingWritesNothing) {
  SPrefFile file(FileOf("[sec]\nkey=1\n"));
  ASSERT_TRUE(file.Open(SPrefFile::kRead));
  EXPECT_FALSE(file.Open(SPrefFile::kWrite)) << "open already";
  file.SetChanged(true);
  EXPECT_FALSE(file.SetValue("sec", "key", "2") || file.DeleteKey("sec", "key") ||
               file.DeleteSection("sec"));
  EXPECT_EQ(ValueOf(file, "sec", "key"), "1");
  EXPECT_TRUE(file.IsOpen());
}

TEST_F(PrefFiles, OpenedOnceChangesGoBackTogetherOnClose) {
  const SFileSpec spec = FileOf("");
  SPrefFile file(spec);
  ASSERT_TRUE(file.Open(SPrefFile::kWrite));
  file.SetValue("a", "b", "1");
  file.SetValue("a", "c", "2");
  file.SetFile(SFileSpec());
  EXPECT_EQ(ValueOf(file, "a", "b"), "1");
  file.Close();
  EXPECT_EQ(Stored(), "[a]\r\nb=1\r\nc=2\r\n");
}

TEST_F(PrefFiles, OnlyAChangeIsWritten) {
  kivtest::FaultFileServices files(*Platform().files);
  SPrefFile file(FileOf("[a]\n"));
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  file.Open(SPrefFile::kWrite);
  file.SetChanged(false);
  file.Close();
  EXPECT_EQ(files.CountOf("Write"), 0);
  file.Open(SPrefFile::kWrite);
  file.SetChanged(true);
  file.Close();
  EXPECT_EQ(files.CountOf("Write"), 1);
}

TEST_F(PrefFiles, GrowsByStepsAndRefusesWhatNoStepHolds) {
  const SFileSpec spec = FileOf("[a]\n");
  SPrefFile file(spec);
  ASSERT_TRUE(file.Open(SPrefFile::kWrite));
  EXPECT_TRUE(file.SetValue("a", "b", SString('x', 4000)));
  EXPECT_TRUE(file.SetValue("a", "c", SString('y', 4000)));
  EXPECT_FALSE(file.SetValue("a", "d", SString('z', 9000)));
  EXPECT_EQ(ValueOf(file, "a", "c"), std::string(4000, 'y'));
  file.Close();
  EXPECT_EQ(Stored().substr(0, 4014), "[a]\r\nb=" + std::string(4000, 'x') + "\r\nc=yyy");
}

TEST_F(PrefFiles, AValueIsCutToWhatAStringHolds) {
  const std::string text = "[a]\nb=" + std::string(100000, 'x') + "\nc=1\n";
  SPrefFile file(FileOf(text));
  EXPECT_EQ(ValueOf(file, "a", "b"), std::string(32766, 'x'));
  EXPECT_TRUE(file.SetValue("a", "b", "short"));
  EXPECT_EQ(Stored(), "[a]\nb=short\nc=1\n");
}

TEST_F(PrefFiles, AnyBytesAreReadInBoundsAndLinearTime) {
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

  std::string large = "[a]\n";
  while (large.size() < 10000000) {
    large += "line\n";
  }
  SPrefFile largeFile(FileOf(large + "key=1\n"));
  EXPECT_EQ(ValueOf(largeFile, "a", "key"), "1");
  EXPECT_EQ(ValueOf(largeFile, "b", "key"), "(none)");
}

TEST_F(PrefFiles, ATextInMemoryIsOpenForReading) {
  const std::string text = "[sec]\nkey=1\n";
  MemoryHandle const handle = AllocateBlock(static_cast<int64_t>(text.size()));
  std::copy(text.begin(), text.end(), static_cast<char*>(LockBlock(handle)));
  {
    SPrefFile file(handle, static_cast<int32_t>(text.size()), false);
    EXPECT_TRUE(file.IsOpen());
    EXPECT_EQ(ValueOf(file, "sec", "key"), "1");
    EXPECT_FALSE(file.SetValue("sec", "key", "2"));
  }
  SPrefFile owner(handle, static_cast<int32_t>(text.size()), true);
  EXPECT_EQ(ValueOf(owner, "sec", "key"), "1");
  owner.Close();
  EXPECT_EQ(ValueOf(owner, "sec", "key"), "(none)");
  EXPECT_FALSE(SPrefFile(nullptr, 5, true).IsOpen());
}

TEST_F(PrefFiles, AFailedReadOrAMissingFileDoesNotOpen) {
  FileOf("[a]\n");
  for (const char* const name : {"missing", ""}) {
    SPrefFile file(SpecOf(folder, name));
    EXPECT_FALSE(file.Open(SPrefFile::kRead) || file.Open(SPrefFile::kWrite)) << name;
  }
  EXPECT_EQ(folder.List(), std::vector<std::string>{"f"});

  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  SPrefFile file(SpecOf(folder, "f"));
  files.FailAt(3, SystemError::kOther, true);
  EXPECT_FALSE(file.Open(SPrefFile::kRead));
  EXPECT_TRUE(files.OpenPaths().empty());
}

class PrefChains : public PrefFiles {
 protected:
  // Own file "own", then links "first" and "second": the walk is second, first, own.
  void Build(SPrefFileChain& chain) const {
    chain.SetFile(SFileSpec());
    chain.SetFile(FileOf("[a]\nk=own\no=own\n", "own"));
    chain.SetFile(FileOf("[a]\nk=first\nf=first\n", "first"));
    chain.SetFile(FileOf("[a]\nk=second\n", "second"));
  }
};

TEST_F(PrefChains, ReadsFallThroughFromTheNewestLinkToTheOwnFile) {
  SPrefFileChain chain;
  Build(chain);
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
  SPrefFileChain chain;
  Build(chain);
  ASSERT_TRUE(chain.Open(SPrefFile::kWrite));
  EXPECT_FALSE(chain.Open(SPrefFile::kWrite));
  EXPECT_EQ(ValueOf(chain, "a", "o"), "own");
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
  SPrefFileChain chain;
  Build(chain);
  SFile holder;
  ASSERT_TRUE(holder.Open(SFile::kWrite, SpecOf(folder, "first")));
  EXPECT_FALSE(chain.Open(SPrefFile::kRead));
  SFile second;
  EXPECT_TRUE(second.Open(SFile::kWrite, SpecOf(folder, "second"))) << "closed again";
  second.Close();
  holder.Close();
  EXPECT_TRUE(chain.Open(SPrefFile::kRead));
}

}  // namespace
}  // namespace kivstore
