// The rules of the file system that the store was written for. One table, run on every platform: on
// Windows it says what the system does, elsewhere it proves that the file services do the same.
#include <gtest/gtest.h>

#include <numeric>
#include <set>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "tests/support/held_elsewhere.h"
#include "tests/support/temp_folder.h"
#include "tests/support/wine.h"

namespace kivstore {
namespace {

using Names = std::vector<std::string>;

using enum SystemError;

struct Answers {
  SystemError error;
  std::vector<const char*> acts;
};

class WindowsRules : public testing::Test {
 protected:
  WindowsRules() {
    temp.WriteFile("Folder/File.txt", "file");
    temp.WriteFile("Folder/Other.txt", "other");
    temp.WriteFile("Folder/Fixed.txt", "fixed");
    temp.MakeFolder("Empty");
    Set("Folder/Fixed.txt", {.readOnly = true});
  }

  // A path of the table, in the folder of the test.
  std::string At(const std::string& path) const { return temp.Path(path); }

  void Set(const std::string& path, const FileAttributes& attributes) const {
    SystemError error;
    ASSERT_TRUE(files.SetAttributes(At(path).c_str(), attributes, error));
  }

  // Of "read Folder/File.txt" or "move Folder/File.txt > Empty/x".
  SystemError Try(const std::string& act) const {
    const size_t space = act.find(' '), arrow = act.find(" > ");
    const std::string what = act.substr(0, space),
                      path = At(act.substr(space + 1, arrow - space - 1));
    SystemError error = kNone;
    FileAttributes attributes;
    if (what == "look") {
      files.Attributes(path.c_str(), attributes, error);
    } else if (what == "delete") {
      files.Delete(path.c_str(), error);
    } else if (what == "remove") {
      files.RemoveFolder(path.c_str(), error);
    } else if (what == "move") {
      files.Move(path.c_str(), At(act.substr(arrow + 3)).c_str(), error);
    } else if (what == "walk") {
      files.Walk(path.c_str(), "*.*", error);
    } else if (const FileHandle file = Open(what, path, error); file != nullptr) {
      files.Close(file);
    }
    return error;
  }

  FileHandle Open(const std::string& what, const std::string& path, SystemError& error) const {
    return files.Open(path.c_str(), what == "read" ? FileAccess::kRead : FileAccess::kReadWrite,
                      error);
  }

  void Check(const std::vector<Answers>& answers) const {
    for (const auto& [error, acts] : answers) {
      for (const char* act : acts) {
        EXPECT_EQ(Try(act), error) << act;
      }
    }
  }

  // The names that a walk shows, in order, folders with a slash.
  std::string Find(const std::string& folder, const char* mask) const {
    SystemError error;
    const auto walk = files.Walk(At(folder).c_str(), mask, error);
    std::set<std::string> names;
    for (FolderEntry entry; walk != nullptr && walk->Next(entry);) {
      names.insert(entry.name + std::string(entry.attributes.folder ? "/" : "") +
                   (entry.attributes.hidden ? " hidden, " : ", "));
    }
    names.erase("./, ");
    names.erase("../, ");
    return std::accumulate(names.begin(), names.end(), std::string());
  }

  kivtest::TempFolder temp;
  IFileServices& files = *Platform().files;
};

// Letter case, both separators, what is not there, what is no file; then moves, which never
// replace, and read-only files, which move but do not go.
TEST_F(WindowsRules, OfNamesMovesAndReadOnlyFiles) {
  const std::vector<Answers> answers{
      {kNone,
       {"look Folder/File.txt", "look FOLDER/file.TXT", "look folder\\FILE.txt",
        "look FOLDER\\\\file.txt", "look Folder//File.txt", "look folder/",
        "look folder/./../FOLDER\\file.txt", "read FOLDER/FILE.TXT", "write folder/file.txt",
        "read Folder/Fixed.txt", "walk FOLDER"}},
      {kFileNotFound,
       {"look Folder/missing", "read Folder/missing", "delete Folder/missing", "remove missing",
        "move Folder/missing > x"}},
      {kPathNotFound,
       {"look missing/File.txt", "look Folder/File.txt/below", "read missing/File.txt",
        "walk missing", "move Folder/File.txt > missing/x"}},
      {kAccessDenied, {"read Folder", "write Folder", "delete Folder", "delete folder/FIXED.txt"}},
      {kFolderNotEmpty, {"remove folder"}},
      {kAlreadyExists,
       {"move Folder/File.txt > Folder/Other.txt", "move Folder/File.txt > folder/OTHER.TXT",
        "move Folder/File.txt > Empty", "move Folder > EMPTY"}},
      {kNone,
       {"move folder/fixed.txt > EMPTY/x", "move folder > FOLDER", "delete folder/OTHER.txt",
        "delete folder/FILE.txt", "remove folder"}}};
  Check(answers);
  EXPECT_EQ(temp.List(), Names({"Empty"}));
  EXPECT_EQ(temp.List("Empty"), Names({"x"}));
  if (!kivtest::RunsUnderWine()) {
    EXPECT_EQ(Try("move empty/X > Empty/X"), kNone);
    EXPECT_EQ(temp.List("Empty"), Names({"X"}));
  }
}

// What one handle refuses to others, be they of this process or of another one.
TEST_F(WindowsRules, OfOpenFiles) {
  const std::vector<Answers> whileRead{
      {kNone,
       {"read FOLDER/File.txt", "write Folder/Other.txt", "look Folder/File.txt", "walk Folder"}},
      {kSharingViolation,
       {"write Folder/File.txt", "delete folder/file.txt", "move Folder/File.txt > moved"}},
      {kFolderNotEmpty, {"remove Folder"}}};
  const std::vector<Answers> whileWritten{
      {kNone, {"look Folder/File.txt"}},
      {kSharingViolation,
       {"read Folder/File.txt", "write folder/FILE.txt", "delete Folder/File.txt",
        "move Folder/File.txt > moved"}}};
  for (const bool reads : {true, false}) {
    SystemError error;
    const FileHandle ours = Open(reads ? "read" : "write", At("Folder/File.txt"), error);
    Check(reads ? whileRead : whileWritten);
    files.Close(ours);
    const kivtest::HeldElsewhere theirs(At("Folder/File.txt"), reads);
    Check(reads ? whileRead : whileWritten);
  }
  EXPECT_EQ(Try("write Folder/File.txt"), kNone) << "who ends holds nothing";
}

TEST_F(WindowsRules, AFolderThatHoldsAnOpenFileDoesNotMove) {
  if (kivtest::RunsUnderWine()) {
    GTEST_SKIP() << "under Wine it does";
  }
  temp.WriteFile("Folder/Deep/file", "");
  SystemError error;
  const FileHandle held = Open("read", At("Folder/Deep/file"), error);
  EXPECT_NE(Try("move Folder > moved"), kNone);
  EXPECT_NE(Try("move Folder/Deep > moved"), kNone);
  files.Close(held);
  EXPECT_EQ(Try("move Folder > moved"), kNone);
}

TEST_F(WindowsRules, OfWalks) {
  for (const char* name : {"a.kiv", "b.KIV", "kiv", "no ending", "two.dots.zep", "xkiv", ".dot"}) {
    temp.WriteFile(std::string("walk/") + name, "");
  }
  temp.MakeFolder("walk/sub.kiv");
  Set("walk/.dot", {.hidden = true});
  const char* const all =
      ".dot hidden, a.kiv, b.KIV, kiv, no ending, sub.kiv/, two.dots.zep, xkiv, ";
  const struct {
    const char *mask, *names;
  } cases[] = {{"*.*", all},
               {"*", all},
               {"*.kiv", "a.kiv, b.KIV, sub.kiv/, "},
               {"*.KIV", "a.kiv, b.KIV, sub.kiv/, "},
               {"*kiv", "a.kiv, b.KIV, kiv, sub.kiv/, xkiv, "},
               {"?kiv", "xkiv, "},
               {"*.zep", "two.dots.zep, "},
               {"KIV", "kiv, "},
               {"*.none", ""},
               {"*?kiv*", "a.kiv, b.KIV, sub.kiv/, xkiv, "}};
  for (const auto& c : cases) {
    if (c.mask != std::string("*?kiv*") || !kivtest::RunsUnderWine()) {
      EXPECT_EQ(Find("WALK", c.mask), c.names) << c.mask;
    }
  }
  FileAttributes attributes;
  SystemError error;
  EXPECT_TRUE(files.FullAttributes(At("walk/.DOT").c_str(), attributes, error) &&
              attributes.hidden);
}

}  // namespace
}  // namespace kivstore
