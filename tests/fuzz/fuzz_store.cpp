// A whole store of any content, asked with any blocks: what a host gets, and what may happen to the
// files.
#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <vector>

#include "app/library_state.h"
#include "platform/base/bytes.h"
#include "store/place/store_names.h"
#include "tests/fuzz/fuzz_site.h"
#include "tests/fuzz/hostile_block.h"
#include "tests/support/record_bytes.h"
#include "tests/support/wine.h"

namespace kivtest {
namespace {

using namespace kivstore;

constexpr int kMostPlaces = 64;
constexpr int kMostCalls = 12;
// Of file operations, for a call and for each place in the tree: three times the most that was
// seen, 100 in a small tree and 12 a place.
constexpr int kCallCost = 300;
constexpr int kPlaceCost = 36;

// The names that a store's tree is made of, so that an input tells them in one byte; behind any
// other byte the name itself follows.
constexpr const char* kStoreNames[] = {
    "Classes.zep", "Students",     "Shared",   "index.kiv",    "index.lok", "options.kiv",
    "options.lok", "longname.kiv", "last.kiv", "autogame.zep", "a",         "b",
    "AnnLee",      "Room12",       "Hill",     "Default",      "TDefault"};

// What stands at a place.
constexpr uint8_t kPlaceIsFolder = 1;
constexpr uint8_t kPlaceIsHidden = 2;
constexpr uint8_t kPlaceIsReadOnly = 4;
constexpr uint8_t kPlaceIsHeld = 8;  // by another workstation

struct Place {
  std::string bytes;
  bool isFolder, isHidden, isReadOnly;
  bool operator==(const Place&) const = default;
};
using Tree = std::map<std::string, Place>;  // by path below the root

// Files of a tree as an input tells it.
class LaidStore : public FuzzSite {
 public:
  explicit LaidStore(FuzzInput& input) {
    std::vector<std::string> folders{""};
    for (int count = input.Byte() % kMostPlaces; count > 0; --count) {
      const std::string path = folders[input.Byte() % folders.size()] + NameFrom(input);
      const uint8_t marks = input.Byte();
      const bool isFolder = (marks & kPlaceIsFolder) != 0;
      if (Lay(path, marks, isFolder ? "" : input.LongText()) && isFolder) {
        folders.push_back(path + "/");
      }
    }
  }
  ~LaidStore() {
    for (const auto& [path, file] : held) {
      disk.Close(file.handle);
    }
  }

  Tree Entries() const {
    Tree tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path())) {
      const std::string path = entry.path().generic_string().substr(folder.Path().size() + 1);
      const FileAttributes there = AttributesOf(path);
      const auto file = held.find(path);
      tree[path] = {there.folder         ? ""
                    : file != held.end() ? file->second.bytes
                                         : folder.ReadFile(path),
                    there.folder, there.hidden, there.readOnly};
    }
    return tree;
  }
  FileAttributes AttributesOf(const std::string& path) const {
    FileAttributes attributes;
    SystemError error;
    disk.FullAttributes(folder.Path(path).c_str(), attributes, error);
    return attributes;
  }

 private:
  // No name on a disk holds a NUL. One that leads elsewhere is none.
  static std::string NameFrom(FuzzInput& input) {
    const uint8_t number = input.Byte();
    const std::string name = number < std::size(kStoreNames) ? kStoreNames[number] : input.Text();
    const std::string whole = name.substr(0, name.find('\0'));
    return IsSafeName(Text(whole)) ? whole : std::string();
  }
  // False where another file stands in the way, or the disk knows no such name.
  bool Lay(const std::string& path, uint8_t marks, const std::string& bytes) {
    const bool isFolder = (marks & kPlaceIsFolder) != 0;
    FileAttributes there;
    SystemError error;
    if (path.empty() || path.back() == '/') {
      return false;
    }
    if (disk.Attributes(folder.Path(path).c_str(), there, error)) {
      return isFolder && there.folder;
    }
    try {
      isFolder ? folder.MakeFolder(path) : folder.WriteFile(path, bytes);
    } catch (const std::exception&) {
      return false;
    }
    const FileAttributes asked{.hidden = (marks & kPlaceIsHidden) != 0,
                               .readOnly = (marks & kPlaceIsReadOnly) != 0};
    disk.SetAttributes(folder.Path(path).c_str(), asked, error);
    if ((marks & kPlaceIsHeld) != 0 && !isFolder && !RunsUnderWine()) {
      const FileHandle handle = disk.Open(folder.Path(path).c_str(), FileAccess::kReadWrite, error);
      if (handle != nullptr) {
        held[path] = {handle, bytes};
      }
    }
    return true;
  }

  // Open alone: nobody writes it, and whoever reads it without asking waits.
  struct HeldFile {
    FileHandle handle;
    std::string bytes;
  };
  std::map<std::string, HeldFile> held;
};

bool IsNamed(const std::string& path, const char* name) {
  return EqualBytesNoCase(path.substr(path.rfind('/') + 1), name);
}

// Nothing is made; nothing goes but an options file that no version of ours has written; nothing is
// written but indexes and long names.
void CheckFiles(const Tree& before, const Tree& after) {
  const std::string ours("BIN\x01\x00\x01\x00\x00", 8);
  for (const auto& [path, entry] : before) {
    const auto found = after.find(path);
    if (found == after.end()) {
      Require(IsNamed(path, "options.kiv") && !entry.isFolder && !entry.bytes.starts_with(ours),
              "nothing goes but an options file of another kind or version");
      continue;
    }
    const bool isRepaired = IsNamed(path, "index.kiv") || IsNamed(path, "longname.kiv");
    Place expected = entry;
    expected.bytes = isRepaired ? found->second.bytes : entry.bytes;
    Require(found->second == expected,
            "nothing is written but indexes and long names, and attributes stay");
  }
  for (const auto& [path, entry] : after) {
    Require(before.count(path) != 0, "nothing is made");
  }
}

void CheckIndex(const LaidStore& store, const std::string& folder, const IndexImage& before,
                const std::string& bytesAfter) {
  const IndexImage after = ReadIndexBytes(bytesAfter);
  Require(!after.isTorn && after.length == bytesAfter.size(), "an index that is written is whole");
  Require(after.files == before.files, "the file half stays");
  for (const IndexLine& login : before.logins) {
    const auto isSame = [&](const IndexLine& other) {
      return EqualBytesNoCase(other.folder, login.folder);
    };
    const FileAttributes there = store.AttributesOf(folder + login.folder);
    Require(!IsSafeName(Text(login.folder)) || !there.folder || there.hidden ||
                std::any_of(after.logins.begin(), after.logins.end(), isSame),
            "who has a folder stays in the list");
  }
}

// An index that was whole keeps every login whose folder is there, and its file half. Where no
// operation failed.
void CheckIndexes(const LaidStore& store, const Tree& before, const Tree& after) {
  for (const auto& [path, entry] : before) {
    if (!IsNamed(path, "index.kiv") || after.at(path).bytes == entry.bytes) {
      continue;
    }
    const IndexImage index = ReadIndexBytes(entry.bytes);
    if (!index.isTorn && index.length == entry.bytes.size()) {
      CheckIndex(store, path.substr(0, path.rfind('/') + 1), index, after.at(path).bytes);
    }
  }
}

// What lives longer than a call, as the library starts with it.
void ResetLibrary() {
  SLibraryState& state = LibraryState();
  state.site.ClearTeacherTier();
  state.site.SetSiteMode(0);
  state.caches = {};
}

class Session {
 public:
  explicit Session(FuzzInput& input) : store((ResetLibrary(), input)) {
    const int failing = input.Number();
    const uint8_t kind = input.Byte();
    isFailing = failing > 0;
    const bool lasts = (kind & 1) != 0, isHeld = (kind & 2) != 0;
    if (isFailing) {
      store.files.FailAt(failing, isHeld ? SystemError::kSharingViolation : SystemError::kOther,
                         lasts);
    }
  }
  ~Session() { ResetLibrary(); }

  void Run(FuzzInput& input) {
    FuzzInput last = input;
    for (int calls = kMostCalls; calls > 0 && !input.IsEmpty(); --calls) {
      last = input;
      Call(input);
    }
    if (!isFailing) {
      FuzzInput again = last;
      Call(last);
      const Tree before = now;
      Call(again);
      Require(now == before, "what a call puts right it puts right at once");
    }
  }

 private:
  void Call(FuzzInput& input) {
    HostileBlock block(input);
    const Tree before = std::move(now);
    const int counted = store.files.Count();
    block.Call(store.folder.Path());
    const int cost = store.files.Count() - counted;
    Require(cost < kCallCost + kPlaceCost * static_cast<int>(before.size() + 1),
            "a call costs no more than the store is large");
    Require(store.files.OpenPaths().empty(), "a call leaves no file open");
    now = store.Entries();
    CheckFiles(before, now);
    if (!isFailing) {
      CheckIndexes(store, before, now);
    }
  }

  bool isFailing = false;
  LaidStore store;
  Tree now = store.Entries();
};

}  // namespace

void FuzzStore(FuzzInput input) {
  Session(input).Run(input);
}

}  // namespace kivtest
