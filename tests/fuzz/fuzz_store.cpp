// A whole store of any content, asked with any blocks: what a host gets, and what may happen to the
// files.
#include <algorithm>
#include <iterator>
#include <vector>

#include "app/library_state.h"
#include "platform/base/bytes.h"
#include "tests/fuzz/fuzz_site.h"
#include "tests/fuzz/fuzz_target.h"
#include "tests/fuzz/hostile_block.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/record_bytes.h"

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

// No name on a disk holds a NUL.
std::string NameFrom(FuzzInput& input) {
  const uint8_t number = input.Byte();
  const std::string name = number < std::size(kStoreNames) ? kStoreNames[number] : input.Text();
  return name.substr(0, name.find('\0'));
}

void LayStore(FuzzInput& input, MemoryFiles& files) {
  std::vector<std::string> folders{"root"};
  for (int count = input.Byte() % kMostPlaces; count > 0; --count) {
    const std::string path = folders[input.Byte() % folders.size()] + "/" + NameFrom(input);
    const uint8_t marks = input.Byte();
    const bool isFolder = (marks & kPlaceIsFolder) != 0;
    MemoryFiles::Entry* const entry =
        isFolder ? files.PutFolder(path) : files.Put(path, input.LongText());
    if (entry == nullptr) {
      continue;
    }
    entry->attributes.hidden = (marks & kPlaceIsHidden) != 0;
    entry->attributes.readOnly = (marks & kPlaceIsReadOnly) != 0;
    entry->heldElsewhere = !isFolder && (marks & kPlaceIsHeld) != 0;
    if (isFolder) {
      folders.push_back(path);
    }
  }
}

// Only an options file that no version of ours has written may go.
bool MayGo(const MemoryFiles::Entry& entry) {
  return EqualBytesNoCase(entry.name, "options.kiv") && !entry.attributes.folder &&
         !entry.bytes.starts_with(std::string("BIN\x01\x00\x01\x00\x00", 8));
}

bool IsRepaired(const MemoryFiles::Entry& entry) {
  return EqualBytesNoCase(entry.name, "index.kiv") || EqualBytesNoCase(entry.name, "longname.kiv");
}

bool IsVisibleFolder(const MemoryFiles::Tree& tree, const std::string& place) {
  const auto found = tree.find(place);
  return found != tree.end() && found->second.attributes.folder && !found->second.attributes.hidden;
}

void CheckIndex(const MemoryFiles::Tree& tree, const std::string& folder, const IndexImage& before,
                const std::string& bytesAfter) {
  const IndexImage after = ReadIndexBytes(bytesAfter);
  Require(!after.isTorn && after.length == bytesAfter.size(), "an index that is written is whole");
  Require(after.files == before.files, "the file half stays");
  for (const IndexLine& login : before.logins) {
    const auto isSame = [&](const IndexLine& other) {
      return EqualBytesNoCase(other.folder, login.folder);
    };
    Require(!IsVisibleFolder(tree, folder + MemoryFiles::Folded(login.folder)) ||
                std::any_of(after.logins.begin(), after.logins.end(), isSame),
            "who has a folder stays in the list");
  }
}

// Nothing is made; nothing goes but an options file of another kind or version; nothing is written
// but indexes and long names.
void CheckFiles(const MemoryFiles::Tree& before, const MemoryFiles::Tree& after) {
  for (const auto& [place, entry] : before) {
    const auto found = after.find(place);
    if (found == after.end()) {
      Require(MayGo(entry), "nothing goes but an options file of another kind or version");
      continue;
    }
    const MemoryFiles::Entry& now = found->second;
    Require(now.bytes == entry.bytes || IsRepaired(entry),
            "nothing is written but indexes and long names");
    Require(now.attributes.hidden == entry.attributes.hidden &&
                now.attributes.readOnly == entry.attributes.readOnly,
            "attributes stay");
  }
  for (const auto& [place, entry] : after) {
    Require(before.count(place) != 0, "nothing is made");
  }
}

// An index that was whole keeps every login whose folder is there, and its file half. Where no
// operation failed.
void CheckIndexes(const MemoryFiles::Tree& before, const MemoryFiles::Tree& after) {
  for (const auto& [place, entry] : before) {
    const auto now = after.find(place);
    if (now == after.end() || now->second.bytes == entry.bytes ||
        !EqualBytesNoCase(entry.name, "index.kiv")) {
      continue;
    }
    const IndexImage index = ReadIndexBytes(entry.bytes);
    if (!index.isTorn && index.length == entry.bytes.size()) {
      CheckIndex(before, place.substr(0, place.rfind('/') + 1), index, now->second.bytes);
    }
  }
}

void CheckSame(const MemoryFiles::Tree& before, const MemoryFiles::Tree& after) {
  Require(before.size() == after.size(), "a store that was put right keeps its files");
  for (const auto& [place, entry] : before) {
    const auto now = after.find(place);
    Require(now != after.end() && now->second.bytes == entry.bytes,
            "a store that was put right stays as it is");
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
  explicit Session(FuzzInput& input) {
    ResetLibrary();
    LayStore(input, site.files);
    const int failing = input.Number();
    const uint8_t kind = input.Byte();
    isFailing = failing > 0;
    if (isFailing) {
      const bool lasts = (kind & 1) != 0;
      faults.FailAt(failing, (kind & 2) != 0 ? SystemError::kSharingViolation : SystemError::kOther,
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
      CheckSettled(last);
    }
  }

 private:
  void Call(FuzzInput& input) {
    HostileBlock block(input);
    const MemoryFiles::Tree before = site.files.Entries();
    const int counted = faults.Count();
    block.Call("/root");
    const int cost = faults.Count() - counted;
    Require(cost < kCallCost + kPlaceCost * static_cast<int>(before.size()),
            "a call costs no more than the store is large");
    Require(site.files.OpenHandles() == 0, "a call leaves no file open");
    CheckFiles(before, site.files.Entries());
    if (!isFailing) {
      CheckIndexes(before, site.files.Entries());
    }
  }

  // What a call puts right it puts right at once.
  void CheckSettled(FuzzInput call) {
    FuzzInput again = call;
    Call(call);
    const MemoryFiles::Tree before = site.files.Entries();
    Call(again);
    CheckSame(before, site.files.Entries());
  }

  bool isFailing = false;
  FuzzSite site;
  FaultFileServices faults{site.files};
  SPlatformOverride<IFileServices> installed{Platform().files, &faults};
};

}  // namespace

void FuzzStore(FuzzInput input) {
  Session(input).Run(input);
}

}  // namespace kivtest
