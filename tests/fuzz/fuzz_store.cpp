// A whole store of any content, asked with any blocks: what a host gets, and what may happen to the
// files.
#include <vector>

#include "app/roster_caches.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/fuzz_site.h"
#include "tests/fuzz/hostile_block.h"
#include "tests/fuzz/store_names.h"
#include "tests/fuzz/store_rules.h"
#include "tests/support/fault_file_services.h"

namespace kivtest {
namespace {

using namespace kivstore;

constexpr int kMostPlaces = 64;
constexpr int kMostCalls = 12;
// Of file operations, for a call and for each place in the tree: three times the most that was
// seen, 100 in a small tree and 12 a place.
constexpr int kCallCost = 300;
constexpr int kPlaceCost = 36;

// No name on a disk holds a NUL.
std::string NameFrom(FuzzInput& input) {
  const uint8_t number = input.Byte();
  const std::string name = number < kStoreNameCount ? kStoreNames[number] : input.Text();
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

// What lives longer than a call, as the library starts with it.
void ResetLibrary() {
  gTeacherTier = 0;
  gSiteMode = 0;
  gStoreFailed = false;
  for (SLoginList* const cache : {&gTeacherCache, &gClassCache, &gStudentCache}) {
    DeleteLogins(cache->Array());
  }
  gClassCacheTeacher = gStudentCacheClass = 0;
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
}  // namespace kivtest

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kivtest::FuzzInput input(data, size);
  kivtest::Session(input).Run(input);
  return 0;
}
