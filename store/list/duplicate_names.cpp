#include "store/list/duplicate_names.h"

#include <algorithm>

#include "platform/text_numbers.h"
#include "store/change/transaction.h"
#include "store/list/entries.h"
#include "store/list/name_derivation.h"
#include "store/place/cached_text.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

// What the tries of one pass may cost, in characters and a fixed part for each try. A thousand
// entries of one name, the most that a list may hold, take a quarter of it.
constexpr int64_t kMostEffort = int64_t{1} << 26;
constexpr int64_t kEffortOfTry = 16;

class NameVariation {
 public:
  NameVariation(const SFileSpec& folder, SPtrArray& logins) : folder(folder), logins(logins) {}
  void Run();

 private:
  SLoginNameObj& At(int32_t index) const { return *LoginIn(logins, index); }
  bool IsDuplicate(int32_t index) const;
  int32_t Rename(int32_t index);
  void MakeUnique(SLoginNameObj& entry);
  bool IsTaken(SLoginNameObj& entry);
  void WriteName(const SLoginNameObj& entry) const;
  int32_t Insert(SLoginNameObj* entry);

  const SFileSpec& folder;
  SPtrArray& logins;
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
  return CompareDisplayNames(At(index - 1), At(index)) == 0 ||
         (index + 1 < logins.GetSize() && CompareDisplayNames(At(index), At(index + 1)) == 0);
}

// Takes the entry out and answers the place of its new name.
int32_t NameVariation::Rename(int32_t index) {
  SLoginNameObj* const entry = &At(index);
  logins.RemoveAt(index);
  MakeUnique(*entry);
  WriteName(*entry);
  return Insert(entry);
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

bool NameVariation::IsTaken(SLoginNameObj& entry) {
  effort += entry.firstName.GetLength() + entry.lastName.GetLength() + kEffortOfTry;
  return logins.FindSorted(&entry, CompareByDisplayName) >= 0;
}

void NameVariation::WriteName(const SLoginNameObj& entry) const {
  SFileSpec spec(folder);
  if (!DownToEntry(spec, entry)) {
    return;
  }
  SLockFile lock;
  if (LockIndex(lock, spec, LockKind::kStudents, false)) {
    WriteLongName(spec, entry.firstName, entry.lastName);
  }
}

// InsertSorted without its walk: the first place whose entry is not before this one.
int32_t NameVariation::Insert(SLoginNameObj* entry) {
  void** const begin = logins.Data();
  void* element = entry;
  void** const place = std::partition_point(
      begin, begin + logins.GetSize(),
      [&element](void* const& other) { return CompareByDisplayName(&element, &other) > 0; });
  const int32_t index = static_cast<int32_t>(place - begin);
  logins.InsertAt(index, entry);
  return index;
}

}  // namespace

void VaryDuplicateNames(const SFileSpec& folder, SPtrArray& logins) {
  NameVariation(folder, logins).Run();
}

}  // namespace kivstore
