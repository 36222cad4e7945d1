#include "store/list/duplicate_names.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "store/list/long_name.h"
#include "store/list/name_derivation.h"
#include "store/lock/lock_file.h"
#include "store/place/display_name.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

// What the tries of one pass may cost, in characters and a fixed part for each try. A thousand
// entries of one name, the most that a list may hold, take a quarter of it.
constexpr int64_t kMostEffort = int64_t{1} << 26;
constexpr int64_t kEffortOfTry = 16;

class NameVariation {
 public:
  NameVariation(SSite& site, const SFileSpec& folder, SLoginList& logins)
      : site(site), folder(folder), logins(logins) {}
  void Run();

 private:
  bool IsDuplicate(int32_t index) const;
  int32_t Rename(int32_t index);
  void MakeUnique(SLoginNameObj& entry);
  bool IsTaken(const SLoginNameObj& entry);
  void WriteName(const SLoginNameObj& entry) const;

  SSite& site;
  const SFileSpec& folder;
  SLoginList& logins;
  int64_t effort = 0;
};

void NameVariation::Run() {
  // An entry that sorts behind its old place comes up again; each at most a few times.
  int64_t steps = 4 * static_cast<int64_t>(logins.GetSize());
  for (int32_t i = 1; i < logins.GetSize() && steps > 0 && effort < kMostEffort; ++i, --steps) {
    if (IsDuplicate(i)) {
      const int32_t place = Rename(i);
      if (i < place) {
        --i;
      }
    }
  }
}

// In a sorted list an equal name stands beside it.
bool NameVariation::IsDuplicate(int32_t index) const {
  return CompareDisplayNames(logins[index - 1], logins[index]) == 0 ||
         (index + 1 < logins.GetSize() &&
          CompareDisplayNames(logins[index], logins[index + 1]) == 0);
}

// Takes the entry out and answers the place of its new name.
int32_t NameVariation::Rename(int32_t index) {
  std::unique_ptr<SLoginNameObj> entry = logins.Take(index);
  MakeUnique(*entry);
  WriteName(*entry);
  return logins.InsertSorted(std::move(entry), CompareByDisplayName);
}

void NameVariation::MakeUnique(SLoginNameObj& entry) {
  const SString name = DisplayName(entry);
  if (name == CachedText<kTextDefault>()) {
    entry.firstName = entry.folderName;
    entry.lastName.Empty();
    if (!IsTaken(entry)) {
      return;
    }
  }
  SString& varied = entry.lastName.IsEmpty() ? entry.firstName : entry.lastName;
  // A place behind the end of the text changes nothing and finds the name taken as before, so that
  // the tries begin at the last character.
  int position = std::min(name.GetLength(), varied.GetLength()) - 1;
  int digit = -1;
  while ((position >= 0 || digit >= 0) && effort < kMostEffort) {
    NextVariant(varied, position, digit);
    if (!IsTaken(entry)) {
      return;
    }
  }
}

bool NameVariation::IsTaken(const SLoginNameObj& entry) {
  effort += entry.firstName.GetLength() + entry.lastName.GetLength() + kEffortOfTry;
  return logins.FindSorted(entry, CompareByDisplayName) >= 0;
}

void NameVariation::WriteName(const SLoginNameObj& entry) const {
  SFileSpec spec(folder);
  if (!DownToEntry(spec, entry)) {
    return;
  }
  SLockFile lock(site);
  if (LockIndex(lock, spec, ListKind::kStudents, false)) {
    WriteLongName(spec, entry.firstName, entry.lastName);
  }
}

}  // namespace

void VaryDuplicateNames(SSite& site, const SFileSpec& folder, SLoginList& logins) {
  NameVariation(site, folder, logins).Run();
}

}  // namespace kivstore
