#include "store/list/entries.h"

#include "platform/base/bytes.h"
#include "store/place/display_name.h"

namespace kivstore {

int CompareByFolder(const SLoginNameObj& a, const SLoginNameObj& b) {
  return a.folderName.CompareNoCase(b.folderName);
}

int CompareByDisplayName(const SLoginNameObj& a, const SLoginNameObj& b) {
  const int order = CompareDisplayNames(a, b);
  return order != 0 ? order : IsDefaultEntry(&b) - IsDefaultEntry(&a);
}

int CompareByFileName(const SOurFileObj& a, const SOurFileObj& b) {
  return a.fileName.CompareNoCase(b.fileName);
}

// The first bytes of a folder name nearly always decide.
void SortByFolder(SLoginList& list) {
  SortByFolder(list, [](const SLoginNameObj&, uint64_t) {});
}

int32_t FindLogin(const SLoginList& list, const SLoginNameObj& entry) {
  for (int32_t i = 0; i < list.GetSize(); ++i) {
    if (IsInFolder(list[i], entry.folderName) && CompareDisplayNames(list[i], entry) == 0) {
      return i;
    }
  }
  return -1;
}

bool IsInFolder(const SLoginNameObj& entry, const SString& folder) {
  return EqualBytesNoCase(entry.folderName.View(), folder.View());
}

bool HasExtension(const SOurFileObj& file, const SString& extension) {
  return EqualBytesNoCase(file.extension.View(), extension.View());
}

}  // namespace kivstore
