// The entries of the store's lists, the lists themselves, and how entries compare.
#pragma once

#include "foundation/containers/owning_list.h"
#include "foundation/text/string.h"
#include "platform/base/bytes.h"
#include "store/place/login_name.h"

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

// Lists own their entries.
using SLoginList = SOwningList<SLoginNameObj>;
using SFileList = SOwningList<SOurFileObj>;

inline constexpr int16_t kMaxTeachers = 1000;
inline constexpr int16_t kMaxClasses = 1000;
inline constexpr int16_t kMaxStudents = 1000;
inline constexpr int16_t kNoLimit = -1;
// Lists are walked with 16-bit counters.
inline constexpr int32_t kMostEntries = 32767;

// Orders, letter case ignored: below, equal to or above 0. Of equal display names the default entry
// comes first.
int CompareByFolder(const SLoginNameObj& a, const SLoginNameObj& b);
int CompareByDisplayName(const SLoginNameObj& a, const SLoginNameObj& b);
int CompareByFileName(const SOurFileObj& a, const SOurFileObj& b);

// By CompareByFolder, at the cost of one pass if the list is in order already.
void SortByFolder(SLoginList& list);
// The same, in which tell(entry, key) is called for each entry in its place, with the FoldedSortKey
// of its folder name.
template <class Tell>
void SortByFolder(SLoginList& list, Tell tell) {
  list.SortByKey([](const SLoginNameObj& entry) { return FoldedSortKey(entry.folderName.View()); },
                 CompareByFolder, tell);
}

// First entry whose display name and folder name equal the given one's, letter case ignored; -1.
int32_t FindLogin(const SLoginList& list, const SLoginNameObj& entry);

// Whether the entry lies in the folder of that name, letter case ignored.
bool IsInFolder(const SLoginNameObj& entry, const SString& folder);
bool HasExtension(const SOurFileObj& file, const SString& extension);

}  // namespace kivstore
