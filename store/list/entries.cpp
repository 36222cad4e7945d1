#include "store/list/entries.h"

#include <algorithm>
#include <memory>
#include <new>

#include "platform/base/bytes.h"
#include "store/list/name_derivation.h"

namespace kivstore {
namespace {

const SLoginNameObj& LoginOf(void* const* element) {
  return *static_cast<const SLoginNameObj*>(*element);
}

const SOurFileObj& FileOf(void* const* element) {
  return *static_cast<const SOurFileObj*>(*element);
}

template <class Entry>
void DeleteEntries(SPtrArray& list) {
  for (int32_t i = 0; i < list.GetSize(); ++i) {
    delete static_cast<Entry*>(list[i]);
  }
  list.RemoveAll();
}

// An entry with the first bytes of its folder name at hand, which nearly always decide.
struct KeyedLogin {
  uint64_t key;
  void* login;

  bool operator<(const KeyedLogin& other) const {
    return key != other.key ? key < other.key : CompareByFolder(&login, &other.login) < 0;
  }
};

}  // namespace

void DeleteLogins(SPtrArray& list) {
  DeleteEntries<SLoginNameObj>(list);
}

void DeleteFiles(SPtrArray& list) {
  DeleteEntries<SOurFileObj>(list);
}

int CompareByFolder(void* const* a, void* const* b) {
  return LoginOf(a).folderName.CompareNoCase(LoginOf(b).folderName);
}

int CompareByDisplayName(void* const* a, void* const* b) {
  const int order = CompareDisplayNames(LoginOf(a), LoginOf(b));
  return order != 0 ? order : IsDefaultEntry(&LoginOf(b)) - IsDefaultEntry(&LoginOf(a));
}

int CompareByFileName(void* const* a, void* const* b) {
  return FileOf(a).fileName.CompareNoCase(FileOf(b).fileName);
}

void SortByFolder(SPtrArray& list) {
  const int32_t count = list.GetSize();
  const std::unique_ptr<KeyedLogin[]> keyed(new (std::nothrow)
                                                KeyedLogin[static_cast<size_t>(count)]);
  if (keyed == nullptr) {
    list.Sort(CompareByFolder);
    return;
  }
  for (int32_t i = 0; i < count; ++i) {
    keyed[i] = {FoldedSortKey(LoginIn(list, i)->folderName.View()), list[i]};
  }
  if (std::is_sorted(keyed.get(), keyed.get() + count)) {
    return;
  }
  std::stable_sort(keyed.get(), keyed.get() + count);
  std::transform(keyed.get(), keyed.get() + count, list.Data(),
                 [](const KeyedLogin& entry) { return entry.login; });
}

int32_t FindLogin(const SPtrArray& list, const SLoginNameObj& entry) {
  for (int32_t i = 0; i < list.GetSize(); ++i) {
    const SLoginNameObj& other = *LoginIn(list, i);
    if (EqualBytesNoCase(other.folderName.View(), entry.folderName.View()) &&
        CompareDisplayNames(other, entry) == 0) {
      return i;
    }
  }
  return -1;
}

bool SameName(const SLoginNameObj& entry, const SString& first, const SString& last, bool exact) {
  if (exact) {
    return DisplayName(entry) == DisplayName(first, last);
  }
  return CompareDisplayNames(entry, SLoginNameObj(first, last, SString())) == 0;
}

}  // namespace kivstore
