// What the POSIX services do to be the file system that the store was written for.
#ifndef _WIN32

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <numeric>
#include <set>
#include <string>

#include "foundation/files/file.h"
#include "foundation/files/file_finder.h"
#include "platform/platform.h"
#include "platform/posix/dos_attribute.h"
#include "platform/posix/file_locks.h"
#include "platform/posix/wildcard.h"
#include "tests/support/temp_folder.h"

namespace kivstore {
namespace {

class PosixServicesTest : public testing::Test {
 protected:
  SFileSpec Spec(const std::string& relative) const {
    return SFileSpec(temp.Path(relative).c_str());
  }

  SystemError Look(const std::string& relative) {
    SystemError error = SystemError::kOther;
    files.Attributes(temp.Path(relative).c_str(), attributes, error);
    return error;
  }

  SystemError Move(const std::string& from, const std::string& to) {
    SystemError error = SystemError::kOther;
    files.Move(temp.Path(from).c_str(), temp.Path(to).c_str(), error);
    return error;
  }

  SystemError Delete(const std::string& relative) {
    SystemError error = SystemError::kOther;
    files.Delete(temp.Path(relative).c_str(), error);
    return error;
  }

  bool Mark(const std::string& relative, const std::string& value) const {
    return setxattr(temp.Path(relative).c_str(), "user.DOSATTRIB", value.data(), value.size(), 0) ==
           0;
  }

  // The names that a walk shows, in order.
  std::string Find(uint16_t mask, const std::string& folder = "") const {
    SFileFinder finder(Spec(folder), mask);
    std::set<std::string> names;
    for (SFileSpec spec; finder.Next(spec);) {
      names.insert(spec.GetFileName().GetText() + std::string(" "));
    }
    return std::accumulate(names.begin(), names.end(), std::string());
  }

  kivtest::TempFolder temp;
  IFileServices& files = *Platform().files;
  FileAttributes attributes;
};

// Runs `body` in a process of its own.
bool HoldsInChild(const std::function<bool()>& body) {
  const pid_t child = fork();
  if (child == 0) {
    _exit(body() ? 0 : 1);
  }
  int status = 1;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// What no Windows folder can hold.
TEST_F(PosixServicesTest, OfNamesThatDifferInCaseTheExactOneWins) {
  for (const char* name : {"NAME", "name", "nAmE"}) {
    temp.WriteFile(std::string("both/") + name, name);
  }
  for (const std::string asked : {"both/name", "both/nAmE", "BOTH/Name"}) {
    SFile file;
    char text[4] = "";
    ASSERT_TRUE(file.Open(SFile::kRead, Spec(asked)) && file.Read(4, text) == 4);
    EXPECT_EQ(std::string(text, 4), asked == "BOTH/Name" ? "NAME" : asked.substr(5)) << asked;
  }
}

TEST_F(PosixServicesTest, ASmallFileIsReadWithItsSizeAndAPipeIsNoFileAndStopsNobody) {
  temp.WriteFile("file", "0123456789");
  ASSERT_EQ(mkfifo(temp.Path("pipe").c_str(), 0600), 0);
  SystemError error;
  const FileHandle file = files.Open(temp.Path("file").c_str(), FileAccess::kRead, error);
  ASSERT_TRUE(file != nullptr && files.Size(file) == 10);
  // What was read ahead is served though the file has changed behind everybody's back.
  ASSERT_EQ(truncate(temp.Path("file").c_str(), 0), 0);
  char bytes[16];
  EXPECT_EQ(files.Read(file, bytes, sizeof bytes), 10);
  files.Close(file);
  EXPECT_EQ(files.Open(temp.Path("pipe").c_str(), FileAccess::kRead, error), nullptr);
  EXPECT_EQ(error, SystemError::kNoPlainFile);
  EXPECT_EQ(Delete("pipe"), SystemError::kNone);
}

TEST_F(PosixServicesTest, BelowTheDataRootALinkIsFollowedOnlyForWhoIsTrusted) {
  constexpr uid_t kStranger = 65534;
  if (geteuid() != 0) {
    GTEST_SKIP() << "to give a link away takes root";
  }
  const auto link = [&](const std::string& target, const std::string& name, uid_t owner) {
    ASSERT_EQ(symlink(target.c_str(), temp.Path("Store/" + name).c_str()), 0);
    ASSERT_EQ(lchown(temp.Path("Store/" + name).c_str(), owner, owner), 0);
  };
  temp.WriteFile("Store/In/file", "in");
  temp.WriteFile("kept/file", "kept");
  link(temp.Path("kept"), "Planted", kStranger);
  link("../kept", "trusted", 0);
  link("Planted/../kept", "through", 0);
  link("In/../In/.", "within", 0);
  link("round", "round", 0);
  const std::map<std::string, SystemError> ways = {
      {"Store/In/file", SystemError::kNone},
      {"STORE/IN/FILE", SystemError::kNone},
      {"Store/Planted/file", SystemError::kForeignLink},
      {"store/planted/FILE", SystemError::kForeignLink},
      {"Store/trusted/file", SystemError::kNone},
      {"Store/trusted/none", SystemError::kFileNotFound},
      {"Store/through/file", SystemError::kForeignLink},
      {"Store/WITHIN/file", SystemError::kNone},
      {"Store/round/file", SystemError::kOther},
      {"kept/file", SystemError::kNone}};
  for (const char* root : {"STORE", "Store"}) {
    files.KeepDataRoot(temp.Path(root).c_str());
    for (const auto& [path, expected] : ways) {
      SystemError error = SystemError::kNone;
      if (const FileHandle file = files.Open(temp.Path(path).c_str(), FileAccess::kRead, error)) {
        files.Close(file);
      }
      EXPECT_EQ(error, expected) << path << " with the root told as " << root;
    }
  }
  EXPECT_EQ(files.LastForeignLink().owner, kStranger);
  EXPECT_EQ(Move("Store/Planted/file", "Store/file"), SystemError::kForeignLink);
  EXPECT_EQ(Move("Store/In/file", "Store/trusted/moved"), SystemError::kNone);
  EXPECT_EQ(Delete("Store/Planted"), SystemError::kNone);
  EXPECT_TRUE(temp.Exists("kept/file") && temp.Exists("kept/moved"));
  files.KeepDataRoot("");
}

TEST_F(PosixServicesTest, LinksAreEnteredAndRemovedAsThemselves) {
  kivtest::TempFolder outside;
  outside.WriteFile("kept/file", "kept");
  temp.MakeFolder("tree");
  ASSERT_EQ(symlink(outside.Path("kept").c_str(), temp.Path("tree/link").c_str()), 0);
  ASSERT_EQ(symlink(outside.Path("kept/file").c_str(), temp.Path("tree/file link").c_str()), 0);
  ASSERT_EQ(symlink("nowhere", temp.Path("tree/dangling").c_str()), 0);
  ASSERT_EQ(symlink(".", temp.Path("tree/self").c_str()), 0);
  EXPECT_TRUE(Spec("tree/link/file").IsExistingFile());
  EXPECT_TRUE(Spec("tree/link").IsExistingFolder());
  EXPECT_EQ(Look("tree/dangling"), SystemError::kFileNotFound);
  EXPECT_TRUE(Spec("tree").Delete(true));
  EXPECT_FALSE(temp.Exists("tree"));
  EXPECT_EQ(outside.ReadFile("kept/file"), "kept");
}

TEST_F(PosixServicesTest, DeletesATreeDownToABoundedDepth) {
  for (const int depth : {30, 140}) {
    std::string path = "deep";
    for (int i = 0; i < depth; ++i) {
      path += "/d";
    }
    temp.WriteFile(path + "/file", "x");
    EXPECT_EQ(Spec("deep").Delete(true), depth == 30);
  }
}

// As a user who owns nothing: the superuser may do everything.
TEST_F(PosixServicesTest, WithoutPermissionAccessIsDenied) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "needs another user to become";
  }
  temp.WriteFile("folder/Readable", "x");
  temp.WriteFile("folder/secret", "x");
  temp.WriteFile("unlisted/Name", "x");
  chmod(temp.Path("folder/secret").c_str(), 0600);
  chmod(temp.Path("unlisted").c_str(), 0711);
  const auto openError = [&](const char* name, FileAccess access) {
    SystemError error = SystemError::kNone;
    const FileHandle file = files.Open(temp.Path(name).c_str(), access, error);
    file != nullptr ? files.Close(file) : void();
    return error;
  };
  EXPECT_TRUE(HoldsInChild([&] {
    return setuid(65534) == 0 &&
           openError("folder/Readable", FileAccess::kRead) == SystemError::kNone &&
           openError("folder/READABLE", FileAccess::kReadWrite) == SystemError::kAccessDenied &&
           openError("folder/secret", FileAccess::kRead) == SystemError::kAccessDenied &&
           openError("unlisted/Name", FileAccess::kRead) == SystemError::kNone &&
           openError("unlisted/NAME", FileAccess::kRead) == SystemError::kFileNotFound &&
           Delete("folder/Readable") == SystemError::kAccessDenied &&
           Move("folder/Readable", "folder/other") == SystemError::kAccessDenied;
  }));
  EXPECT_TRUE(temp.Exists("folder/Readable"));
}

TEST_F(PosixServicesTest, AReadOnlyMarkHoldsForEverybodyAndGivesBackWhatItTook) {
  temp.WriteFile("folder/list", "x");
  const std::string path = temp.Path("folder/list");
  const auto modeOf = [&] {
    struct stat facts;
    return stat(path.c_str(), &facts) == 0 ? facts.st_mode & 0777 : 0;
  };
  for (const auto& [folderMode, mode] : {std::pair(0775, 0664), {0755, 0644}, {0777, 0640}}) {
    chmod(temp.Path("folder").c_str(), static_cast<mode_t>(folderMode));
    chmod(path.c_str(), static_cast<mode_t>(mode));
    SFileSpec spec = Spec("folder/list");
    EXPECT_TRUE(spec.SetReadOnly());
    EXPECT_FALSE(SFile().Open(SFile::kWrite, spec));
    EXPECT_EQ(SFileSpec::LastFailure().error, SystemError::kAccessDenied);
    EXPECT_TRUE(spec.ClearReadOnly());
    EXPECT_EQ(modeOf(), static_cast<mode_t>(folderMode == 0777 ? 0660 : mode));
    EXPECT_TRUE(SFile().Open(SFile::kWrite, spec));
    // The same by a file server's mark, which is cleared with it.
    if (Mark("folder/list", "0x21")) {
      EXPECT_TRUE(!SFile().Open(SFile::kWrite, spec) && !spec.Delete(false) && spec.IsReadOnly());
      EXPECT_TRUE(spec.ClearReadOnly() && SFile().Open(SFile::kWrite, spec));
    }
  }
}

// A login that comes between the look and the rename finds its lock file taken.
TEST_F(PosixServicesTest, AHoldKeepsOthersOutOfAFolder) {
  temp.WriteFile("folder/deep/index.lok", "");
  temp.WriteFile("folder/deep/game.zep", "");
  SFile login, game;
  {
    FolderHold hold;
    EXPECT_EQ(hold.Take(temp.Path("folder").c_str()), 0);
    EXPECT_FALSE(login.Open(SFile::kWrite, Spec("folder/deep/index.lok")));
    FolderHold second;
    EXPECT_EQ(second.Take(temp.Path("folder").c_str()), EAGAIN);
    EXPECT_EQ(second.GetBlocker(), temp.Path("folder/deep/index.lok"));
  }
  EXPECT_TRUE(login.Open(SFile::kWrite, Spec("folder/deep/index.lok")));
}

TEST_F(PosixServicesTest, NamesThatNoPathCanHaveAreSkippedAndTwoDotsAtAnEndAreNoStepUp) {
  temp.MakeFolder("odd..");
  temp.WriteFile("with\\backslash", "");
  EXPECT_EQ(Find(SFileFinder::kEverything), "odd.. ");
  SFileSpec spec = Spec("");
  EXPECT_TRUE(spec.Down("odd..") && spec.GetFileName() == "odd.." && spec.Delete(true));
}

TEST_F(PosixServicesTest, AMarkHidesFromWalksWhereTheFolderHasOneToo) {
  for (const char* name : {"plain", "marked", "in/file", ".dot"}) {
    temp.WriteFile(name, "");
  }
  temp.MakeFolder("folder");
  if (!Mark("marked", "0x22") || !Mark("folder", "0x12")) {
    GTEST_SKIP() << "no extended attributes here";
  }
  EXPECT_EQ(Find(SFileFinder::kVisibleFiles), "marked plain ");
  ASSERT_TRUE(Mark("", "0x10"));
  EXPECT_EQ(Find(SFileFinder::kVisibleFiles), "plain ");
  EXPECT_EQ(Find(SFileFinder::kVisibleFolders), "in ");
  EXPECT_EQ(Find(SFileFinder::kEverything), ".dot folder in marked plain ");
  SFileSpec file = Spec("in/file");
  EXPECT_FALSE(file.IsHidden() || file.SetHidden(false));
  EXPECT_TRUE(file.SetHidden(true) && file.IsHidden() && !file.SetHidden(true));
  EXPECT_EQ(Find(SFileFinder::kVisibleFiles, "in"), "");
  EXPECT_TRUE(file.SetHidden(false));
  EXPECT_EQ(Find(SFileFinder::kVisibleFiles, "in"), "file ");
  EXPECT_TRUE(Spec(".dot").IsHidden() && !Spec(".dot").SetHidden(false));
}

TEST(DosAttribute, ReadsTheTextAndTheLongForm) {
  using std::string_literals::operator""s;
  const struct {
    std::string value;
    unsigned bits;  // read-only 1, hidden 2
  } cases[] = {{"0x2", 2},
               {"0x22\0"s, 2},
               {"0x21", 1},
               {"0xF\0"s, 3},
               {"0x22x", 0},
               {"0x", 0},
               {"22", 0},
               {"", 0},
               // Version 3 behind a text that says otherwise; the long form goes first.
               {"0x20\0\0\3\0\3\0\0\0\x11\0\0\0\x22\0\0\0rest"s, 2},
               // Versions 4 and 5, without a text.
               {"\0\0\4\0\4\0\0\0\x51\0\0\0\x03\0\0\0"s, 3},
               {"\0\0\5\0\5\0\0\0\x11\0\0\0\x21\0\0\0"s, 1},
               // Versions of old, and flags that say nothing of the bits.
               {"0x20\0\0\1\0\1\0\0\0\x22\0\0\0\0\0\0\0"s, 2},
               {"\0\0\2\0\2\0\0\0\0\0\0\0\x21\0\0\0"s, 1},
               {"\0\0\4\0\4\0\0\0\x10\0\0\0\x02\0\0\0"s, 2},
               // A version of the future, none, a cut value.
               {"\0\0\0\0\0\0\0\0\x11\0\0\0\x02\0\0\0"s, 0},
               {"\0\0\6\0\6\0\0\0\x11\0\0\0\x02\0\0\0"s, 0},
               {"\0\0\4\0\4\0\0\0\x11\0\0\0\x02\0\0"s, 0},
               {"0x22\0\0\4\0\4\0\0\0"s, 2}};
  for (const auto& c : cases) {
    EXPECT_EQ(DosBits(c.value), c.bits) << testing::PrintToString(c.value);
    for (const unsigned bit : {kDosReadOnly, kDosHidden}) {
      std::string changed = c.value;
      const int length = static_cast<int>(changed.size());
      const bool isStated = ChangeDosBit(changed.data(), length, bit, (c.bits & bit) == 0);
      EXPECT_TRUE(isStated || c.bits == 0);
      EXPECT_EQ(DosBits(changed), isStated ? c.bits ^ bit : 0) << testing::PrintToString(changed);
    }
  }
}

TEST(MatchesWildcard, IgnoresLetterCaseAndEndsInTime) {
  const struct {
    const char *name, *mask;
    bool matches;
  } cases[] = {{"a.kiv", "*.KIV", true},   {"a.kiv", "?.kiv", true},
               {"ab.kiv", "?.kiv", false}, {"", "*", true},
               {"", "?", false},           {"abcabd", "*ab?", true},
               {"abc", "abc*", true},      {"abc", "ab", false},
               {"a.b.zep", "*.zep", true}, {"mississippi", "*s*p*i", true}};
  for (const auto& c : cases) {
    EXPECT_EQ(MatchesWildcard(c.name, c.mask), c.matches) << c.name << " " << c.mask;
  }
  EXPECT_FALSE(MatchesWildcard(std::string(255, 'a'), "a*a*a*a*a*a*a*a*a*a*a*a*a*a*b"));
}

TEST_F(PosixServicesTest, ADoubleSeparatorInFrontLeadsNowhereSpecial) {
  const SFileSpec spec(("/" + temp.Path()).c_str());
  EXPECT_TRUE(spec.IsExistingFolder());
  EXPECT_EQ(spec.GetRoot(), spec.GetPath()) << "up to the fourth backslash, or the whole path";
  EXPECT_EQ(Spec("").GetRoot(), spec.GetPath().Mid(1, 3));
}

TEST_F(PosixServicesTest, LeavesTheFolderThatIsToGo) {
  temp.MakeFolder("tree/inside");
  char before[4096], inside[4096];
  ASSERT_NE(getcwd(before, sizeof before), nullptr);
  ASSERT_TRUE(files.SetCurrentFolder(temp.Path("TREE\\inside").c_str()) &&
              files.CurrentFolder(inside, sizeof inside));
  EXPECT_TRUE(std::string(inside).ends_with("\\tree\\inside"));
  EXPECT_FALSE(files.CurrentFolder(inside, 5));
  EXPECT_TRUE(Spec("tree").Rename("other") && files.CurrentFolder(inside, sizeof inside));
  EXPECT_STREQ(inside, "\\");
  ASSERT_EQ(chdir(before), 0);
}

}  // namespace
}  // namespace kivstore

#endif
