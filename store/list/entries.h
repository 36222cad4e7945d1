// The entries of the store's lists and how they compare. See foundation/login_name.h for
// SLoginNameObj.
#pragma once

#include "foundation/containers/array.h"
#include "foundation/login_name.h"
#include "foundation/text/string.h"

namespace kivstore {

// One file in a folder.
struct SOurFileObj {
  SOurFileObj() = default;
  SOurFileObj(const SString& name, const SString& shown, const SString& ending)
      : fileName(name), longName(shown), extension(ending) {}
  virtual ~SOurFileObj() = default;

  SString fileName;   // on disk, extension included
  SString longName;   // as shown: what the student called a game
  SString extension;  // without the dot
};

inline constexpr int16_t kMaxTeachers = 1000;
inline constexpr int16_t kMaxClasses = 1000;
inline constexpr int16_t kMaxStudents = 1000;
inline constexpr int16_t kNoLimit = -1;

// Lists are SPtrArrays of entries; these are the typed ways in and out.
inline SLoginNameObj* LoginIn(const SPtrArray& list, int32_t index) {
  return static_cast<SLoginNameObj*>(list[index]);
}
inline SOurFileObj* FileIn(const SPtrArray& list, int32_t index) {
  return static_cast<SOurFileObj*>(list[index]);
}
void DeleteLogins(SPtrArray& list);  // the entries, and empties the list
void DeleteFiles(SPtrArray& list);

// Owns the entries of a list for a scope.
class SLoginList {
 public:
  SLoginList() = default;
  ~SLoginList() { DeleteLogins(list); }
  SLoginList(const SLoginList&) = delete;
  SLoginList& operator=(const SLoginList&) = delete;
  SPtrArray& Array() { return list; }
  int32_t GetSize() const { return list.GetSize(); }
  SLoginNameObj* At(int32_t index) const { return LoginIn(list, index); }

 private:
  SPtrArray list;
};

// Orders for SPtrArray's sort and searches, letter case ignored. Equal display names: the default
// entry comes first.
int CompareByFolder(void* const* a, void* const* b);
int CompareByDisplayName(void* const* a, void* const* b);
int CompareByFileName(void* const* a, void* const* b);

// Sort(CompareByFolder) of a list of logins, at the cost of one pass if it is in order already.
void SortByFolder(SPtrArray& list);

// First entry whose display name and folder name equal the given one's, letter case ignored; -1.
int32_t FindLogin(const SPtrArray& list, const SLoginNameObj& entry);
// By display name; `exact` compares bytes.
bool SameName(const SLoginNameObj& entry, const SString& first, const SString& last, bool exact);

}  // namespace kivstore
