// Preference files: in-place edits as before/after texts, what the scanner reads, and foreign
// bytes.
#include "archive/pref_file_chain.h"
#include "tests/archive/archive_support.h"
#include "tests/support/draw.h"
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
  } cases[] = {{"[sec]\r\nkey=1\r\n", "1"},
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
               {"[sec]\r\n\0\0=\r\nkey=a\0b\r\n"s, "a\0b"s}};
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
      {"key with its line break", "[sec]\r\nkey=1\r\n\r\nb=2", deleteKey, "[sec]\r\n\r\nb=2"},
      {"key with a single CR", "[sec]\rkey=1\r\rb=2", deleteKey, "[sec]\r\rb=2"},
      {"key at a torn end", "[sec]\nkey=1", deleteKey, "[sec]\n"},
      {"leading spaces of a key stay", "[sec]\n  key=1\nb=2\n", deleteKey, "[sec]\n  b=2\n"},
      {"to the next header", "[a]\n\n[sec] [x]\nkey=1\n\n[b]", deleteSection, "[a]\n\n[b]"},
      {"section to a bracket in a value", "[sec]\na=1[2]\n[b]\n", deleteSection, "[2]\n[b]\n"},
      {"last section leaves nothing", "[a]\nb=1\n\n[sec]\nkey=1\n", deleteSection, "[a]\nb=1\n\n"}};
  for (const auto& c : cases) {
    SPrefFile file(FileOf(c.before));
    EXPECT_TRUE(c.edit(file)) << c.what;
    EXPECT_EQ(Stored(), c.after) << c.what;
  }
}

// The index and the gap follow every edit: one opening comes to what an opening for each comes to.
TEST_F(PrefFiles, ManyEditsInOneOpeningComeToTheSameAsOneByOne) {
  constexpr const char* kNames[] = {"a", "A", "b", "c", "d", "e", "a=b", "b]"};
  kivtest::ForSeeds(150, [&](kivtest::Draw& draw) {
    const int names = draw.OneIn(3) ? 8 : 6;  // the last two are the scanner's alone
    std::string text;
    for (int line = draw.Below(25); line > 0; --line) {
      const std::string name = kNames[draw.Below(names)];
      text += draw.OneIn(4) ? "[" + name + "]" : draw.Text(2, " \t\n[\xE9") + name + "=" + name;
      text += draw.Text(2, "\r\n");
    }
    SPrefFile whole(FileOf(text, "whole")), single(FileOf(text));
    whole.Open(SPrefFile::kWrite);
    for (int edit = 0; edit < 40; ++edit) {
      const char *const section = kNames[draw.Below(names)], *const key = kNames[draw.Below(names)];
      const SString value('v', draw.Below(4));
      const int kind = draw.Below(8);
      for (SPrefFile* const file : {&whole, &single}) {
        kind > 2     ? file->SetValue(section, key, value)
        : kind > 0   ? file->DeleteKey(section, key)
        : edit == 20 ? file->DeleteSection(section)
                     : false;
      }
      ASSERT_EQ(ValueOf(whole, section, key), ValueOf(single, section, key));
    }
    whole.Close();
    EXPECT_EQ(Stored("whole"), Stored()) << text;
  });
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
  EXPECT_FALSE(file.SetValue("sec", "key", "v\rw") || file.SetValue("new", "key", "v\n"));
  file.Close();
  EXPECT_EQ(Stored(), text);
}

TEST_F(PrefFiles, OpenForReadingNothingIsChangedAndOpenForWritingAllGoesBackOnClose) {
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  SPrefFile file(FileOf("[a]\nk=1\n"));
  file.SetChanged(true);
  ASSERT_TRUE(file.Open(SPrefFile::kRead));
  file.SetChanged(true);
  EXPECT_FALSE(file.Open(SPrefFile::kWrite)) << "open already";
  EXPECT_FALSE(file.SetValue("a", "k", "2") || file.DeleteKey("a", "k") || file.DeleteSection("a"));
  EXPECT_EQ(ValueOf(file, "a", "k"), "1");
  file.Close();
  for (const bool mark : {false, true}) {
    ASSERT_TRUE(file.Open(SPrefFile::kWrite));
    file.SetChanged(mark);
    file.Close();
    EXPECT_EQ(files.CountOf("Write"), mark ? 1 : 0) << "goes back when the mark changes";
  }
  ASSERT_TRUE(file.Open(SPrefFile::kWrite));
  file.SetFile(SFileSpec());
  EXPECT_TRUE(file.SetValue("a", "k", "2") && file.SetValue("a", "l", "3"));
  file.Close();
  EXPECT_EQ(Stored(), "[a]\nk=2\r\nl=3\n");
  for (const char* const name : {"missing", ""}) {
    SPrefFile missing(SpecOf(name));
    EXPECT_FALSE(missing.Open(SPrefFile::kRead) || missing.Open(SPrefFile::kWrite)) << name;
  }
  files.FailAt(3, SystemError::kOther, true);
  EXPECT_FALSE(file.Open(SPrefFile::kRead)) << "cannot be read";
  EXPECT_TRUE(files.OpenPaths().empty());
}

TEST_F(PrefFiles, AFileThatGetsShorterEndsInNoRestOfTheOldTextBeforeItIsCut) {
  kivtest::FaultFileServices files(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &files);
  SPrefFile file(FileOf("[a]\nk=long\nl=1\n"));
  ASSERT_TRUE(file.Open(SPrefFile::kWrite) && file.SetValue("a", "k", "s"));
  files.FailAt(2);
  file.Close();
  EXPECT_EQ(Stored(), "[a]\nk=s\nl=1\n\n\n\n");
}

TEST_F(PrefFiles, GrowsByStepsRefusesWhatNoStepHoldsAndCutsAValueToWhatAStringHolds) {
  SPrefFile file(FileOf("[a]\n"));
  const std::string value(4000, 'x');
  ASSERT_TRUE(file.Open(SPrefFile::kWrite));
  EXPECT_TRUE(file.SetValue("a", "b", SString(value)) && file.SetValue("a", "c", SString(value)));
  for (const char* const section : {"a", "new"}) {
    EXPECT_FALSE(file.SetValue(section, "d", SString('z', 8200)));
  }
  file.Close();
  EXPECT_EQ(Stored(), "[a]\r\nb=" + value + "\r\nc=" + value + "\n");
  FileOf("[a]\nb=" + std::string(100000, 'x') + "\nc=1\n");
  EXPECT_EQ(ValueOf(file, "a", "b"), std::string(32766, 'x'));
  EXPECT_TRUE(file.SetValue("a", "b", "short"));
  EXPECT_EQ(Stored(), "[a]\nb=short\nc=1\n");
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

TEST_F(PrefChains, ReadsFallThroughAndAChangeLandsInTheFirstFileWhereverItWasReadFrom) {
  for (const bool open : {false, true}) {
    EXPECT_EQ(chain.IsOpen(), open);
    EXPECT_EQ(ValueOf(chain, "a", "k") + ValueOf(chain, "a", "f") + ValueOf(chain, "a", "o") +
                  ValueOf(chain, "a", "x"),
              "secondfirstown(none)");
    EXPECT_EQ(chain.Open(SPrefFile::kWrite), !open);
  }
  EXPECT_TRUE(chain.SetValue("a", "o", "new"));
  EXPECT_FALSE(chain.DeleteKey("a", "f")) << "the others refuse";
  EXPECT_FALSE(chain.DeleteSectionInChain("b"));
  EXPECT_TRUE(chain.DeleteKeyInChain("a", "k"));
  EXPECT_EQ(ValueOf(chain, "a", "k"), "first");
  chain.Close();
  EXPECT_EQ(Stored("second"), "[a]\no=new\n");
  EXPECT_EQ(Stored("own"), "[a]\nk=own\no=own\n");
  EXPECT_TRUE(chain.DeleteSection("a"));
  EXPECT_EQ(Stored("second"), "");
}

TEST_F(PrefChains, OpensAllOrNone) {
  SFile holder, second;
  ASSERT_TRUE(holder.Open(SFile::kWrite, SpecOf("first")));
  EXPECT_FALSE(chain.Open(SPrefFile::kRead));
  EXPECT_TRUE(second.Open(SFile::kWrite, SpecOf("second"))) << "closed again";
}

}  // namespace
}  // namespace kivstore
