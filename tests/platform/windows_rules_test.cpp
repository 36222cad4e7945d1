// The rules of the file system that the store was written for. One table, run on every platform: on
// Windows it says what the system does, elsewhere it proves that the file services do the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "tests/support/held_elsewhere.h"
#include "tests/support/temp_folder.h"
#include "tests/support/wine.h"

namespace kivstore {
namespace {

using Names = std::vector<std::string>;

constexpr auto kNone = SystemError::kNone;
constexpr auto kNoFile = SystemError::kFileNotFound;
constexpr auto kNoPath = SystemError::kPathNotFound;
constexpr auto kDenied = SystemError::kAccessDenied;
constexpr auto kSharing = SystemError::kSharingViolation;
constexpr auto kTaken = SystemError::kAlreadyExists;
constexpr auto kNotEmpty = SystemError::kFolderNotEmpty;

enum class Act { kLook, kRead, kWrite, kDelete, kRemove, kMove, kWalk };

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

  SystemError TryOpen(const std::string& path, FileAccess access) const {
    SystemError error = kNone;
    if (const FileHandle file = files.Open(path.c_str(), access, error)) {
      files.Close(file);
    }
    return error;
  }

  SystemError Try(Act act, const std::string& path, const std::string& to) const {
    SystemError error = kNone;
    FileAttributes attributes;
    switch (act) {
      case Act::kLook:
        files.Attributes(path.c_str(), attributes, error);
        break;
      case Act::kRead:
        return TryOpen(path, FileAccess::kRead);
      case Act::kWrite:
        return TryOpen(path, FileAccess::kReadWrite);
      case Act::kDelete:
        files.Delete(path.c_str(), error);
        break;
      case Act::kRemove:
        files.RemoveFolder(path.c_str(), error);
        break;
      case Act::kMove:
        files.Move(path.c_str(), to.c_str(), error);
        break;
      case Act::kWalk:
        files.Walk(path.c_str(), "*.*", error);
        break;
    }
    return error;
  }

  Names Find(const std::string& folder, const char* mask) const {
    SystemError error;
    const auto walk = files.Walk(At(folder).c_str(), mask, error);
    Names names;
    FolderEntry entry;
    while (walk != nullptr && walk->Next(entry)) {
      if (entry.name != std::string(".") && entry.name != std::string("..")) {
        names.push_back(entry.name + std::string(entry.attributes.hidden ? " hidden" : "") +
                        (entry.attributes.folder ? "/" : ""));
      }
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  kivtest::TempFolder temp;
  IFileServices& files = *Platform().files;
};

struct Case {
  Act act;
  const char* path;
  SystemError error;
  const char* to = "";
  bool onWine = true;
};

// Letter case, both separators, what is not there, what is no file; then moves, which never
// replace, and read-only files, which move but do not go.
TEST_F(WindowsRules, OfNamesMovesAndReadOnlyFiles) {
  const Case cases[] = {{Act::kLook, "Folder/File.txt", kNone},
                        {Act::kLook, "FOLDER/file.TXT", kNone},
                        {Act::kLook, "folder\\FILE.txt", kNone},
                        {Act::kLook, "FOLDER\\\\file.txt", kNone},
                        {Act::kLook, "Folder//File.txt", kNone},
                        {Act::kLook, "folder/", kNone},
                        {Act::kLook, "folder/./../FOLDER\\file.txt", kNone},
                        {Act::kLook, "Folder/missing", kNoFile},
                        {Act::kLook, "missing/File.txt", kNoPath},
                        {Act::kLook, "Folder/File.txt/below", kNoPath},
                        {Act::kRead, "FOLDER/FILE.TXT", kNone},
                        {Act::kRead, "Folder/missing", kNoFile},
                        {Act::kRead, "missing/File.txt", kNoPath},
                        {Act::kRead, "Folder", kDenied},
                        {Act::kWrite, "Folder", kDenied},
                        {Act::kWrite, "folder/file.txt", kNone},
                        {Act::kRead, "Folder/Fixed.txt", kNone},
                        {Act::kWalk, "FOLDER", kNone},
                        {Act::kWalk, "missing", kNoPath},
                        {Act::kDelete, "Folder", kDenied},
                        {Act::kDelete, "Folder/missing", kNoFile},
                        {Act::kDelete, "folder/FIXED.txt", kDenied},
                        {Act::kRemove, "folder", kNotEmpty},
                        {Act::kRemove, "missing", kNoFile},
                        {Act::kMove, "Folder/File.txt", kTaken, "Folder/Other.txt"},
                        {Act::kMove, "Folder/File.txt", kTaken, "folder/OTHER.TXT"},
                        {Act::kMove, "Folder/File.txt", kTaken, "Empty"},
                        {Act::kMove, "Folder", kTaken, "EMPTY"},
                        {Act::kMove, "Folder/missing", kNoFile, "x"},
                        {Act::kMove, "Folder/File.txt", kNoPath, "missing/x"},
                        {Act::kMove, "folder/fixed.txt", kNone, "EMPTY/x"},
                        {Act::kMove, "empty/X", kNone, "Empty/X", false},
                        {Act::kMove, "folder", kNone, "FOLDER"},
                        {Act::kDelete, "folder/OTHER.txt", kNone},
                        {Act::kDelete, "folder/FILE.txt", kNone},
                        {Act::kRemove, "folder", kNone}};
  for (const Case& c : cases) {
    if (!c.onWine && kivtest::RunsUnderWine()) {
      continue;
    }
    EXPECT_EQ(Try(c.act, At(c.path), At(c.to)), c.error)
        << static_cast<int>(c.act) << " " << c.path << " " << c.to;
  }
  EXPECT_EQ(temp.List(), Names({"Empty"}));
  EXPECT_EQ(temp.List("Empty"), Names({kivtest::RunsUnderWine() ? "x" : "X"}));
}

// What one handle refuses to others, be they of this process or of another one.
TEST_F(WindowsRules, OfOpenFiles) {
  const struct {
    bool heldForReading;
    Act act;
    const char* path;
    SystemError error;
  } cases[] = {{true, Act::kRead, "FOLDER/File.txt", kNone},
               {true, Act::kWrite, "Folder/File.txt", kSharing},
               {true, Act::kDelete, "folder/file.txt", kSharing},
               {true, Act::kMove, "Folder/File.txt", kSharing},
               {true, Act::kRemove, "Folder", kNotEmpty},
               {true, Act::kWrite, "Folder/Other.txt", kNone},
               {true, Act::kLook, "Folder/File.txt", kNone},
               {true, Act::kWalk, "Folder", kNone},
               {false, Act::kRead, "Folder/File.txt", kSharing},
               {false, Act::kWrite, "folder/FILE.txt", kSharing},
               {false, Act::kDelete, "Folder/File.txt", kSharing},
               {false, Act::kMove, "Folder/File.txt", kSharing},
               {false, Act::kLook, "Folder/File.txt", kNone}};
  for (const bool elsewhere : {false, true}) {
    for (const auto& c : cases) {
      std::optional<kivtest::HeldElsewhere> theirs;
      FileHandle ours = nullptr;
      SystemError error;
      if (elsewhere) {
        theirs.emplace(At("Folder/File.txt"), c.heldForReading);
      } else {
        ours = files.Open(At("Folder/File.txt").c_str(),
                          c.heldForReading ? FileAccess::kRead : FileAccess::kReadWrite, error);
        ASSERT_NE(ours, nullptr);
      }
      EXPECT_EQ(Try(c.act, At(c.path), At("moved")), c.error)
          << (elsewhere ? "elsewhere " : "here ") << c.heldForReading << " "
          << static_cast<int>(c.act) << " " << c.path;
      if (ours != nullptr) {
        files.Close(ours);
      }
    }
  }
  EXPECT_EQ(Try(Act::kWrite, At("Folder/File.txt"), ""), kNone) << "who ends holds nothing";
}

TEST_F(WindowsRules, AFolderThatHoldsAnOpenFileDoesNotMove) {
  if (kivtest::RunsUnderWine()) {
    GTEST_SKIP() << "under Wine it does";
  }
  temp.WriteFile("Folder/Deep/file", "");
  SystemError error;
  const FileHandle held = files.Open(At("Folder/Deep/file").c_str(), FileAccess::kRead, error);
  EXPECT_NE(Try(Act::kMove, At("Folder"), At("moved")), kNone);
  EXPECT_NE(Try(Act::kMove, At("Folder/Deep"), At("moved")), kNone);
  files.Close(held);
  EXPECT_EQ(Try(Act::kMove, At("Folder"), At("moved")), kNone);
}

TEST_F(WindowsRules, OfWalks) {
  for (const char* name : {"a.kiv", "b.KIV", "kiv", "no ending", "two.dots.zep", "xkiv"}) {
    temp.WriteFile(std::string("walk/") + name, "");
  }
  temp.MakeFolder("walk/sub.kiv");
  temp.WriteFile("walk/.dot", "");
  Set("walk/.dot", {.hidden = true});
  const Names all{".dot hidden", "a.kiv",    "b.KIV",        "kiv",
                  "no ending",   "sub.kiv/", "two.dots.zep", "xkiv"};
  const struct {
    const char* mask;
    Names names;
    bool onWine = true;
  } cases[] = {{"*.*", all},
               {"*", all},
               {"*.kiv", {"a.kiv", "b.KIV", "sub.kiv/"}},
               {"*.KIV", {"a.kiv", "b.KIV", "sub.kiv/"}},
               {"*kiv", {"a.kiv", "b.KIV", "kiv", "sub.kiv/", "xkiv"}},
               {"?kiv", {"xkiv"}},
               {"*.zep", {"two.dots.zep"}},
               {"KIV", {"kiv"}},
               {"*.none", {}},
               {"*?kiv*", {"a.kiv", "b.KIV", "sub.kiv/", "xkiv"}, false}};
  for (const auto& c : cases) {
    if (c.onWine || !kivtest::RunsUnderWine()) {
      EXPECT_EQ(Find("WALK", c.mask), c.names) << c.mask;
    }
  }
  FileAttributes attributes;
  SystemError error;
  EXPECT_TRUE(files.FullAttributes(At("walk/.DOT").c_str(), attributes, error));
  EXPECT_TRUE(attributes.hidden);
}

}  // namespace
}  // namespace kivstore
