#include <new>

#include "foundation/files/file_finder.h"
#include "platform/base/bytes.h"
#include "platform/text_numbers.h"
#include "store/change/transaction.h"
#include "store/list/duplicate_names.h"
#include "store/list/folder_match.h"
#include "store/list/listing.h"
#include "store/list/name_derivation.h"
#include "store/place/cached_text.h"
#include "store/place/file_extension.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

constexpr int32_t kMostEntries = 32767;

bool TakeType(std::string_view name, const SString& extension) {
  constexpr size_t kShortName = 3;
  return name.size() > kShortName && HasExtension(name, extension.View());
}

template <class Entry>
Entry& EntryAt(const SPtrArray& entries, int32_t index) {
  return *static_cast<Entry*>(entries[index]);
}

// The names in `field` of the entries, which stand in the order of these names.
template <class Entry>
void AddNames(SFolderMatch& match, const SPtrArray& entries, SString Entry::*field) {
  for (int32_t i = 0; i < entries.GetSize(); ++i) {
    match.Add(EntryAt<Entry>(entries, i).*field);
  }
}

// Whether any had to go.
template <class Entry>
bool DropMissing(SPtrArray& entries, const SFolderMatch& match) {
  int32_t kept = 0;
  const int32_t count = entries.GetSize();
  for (int32_t i = 0; i < count; ++i) {
    if (match.IsOnDisk(i)) {
      entries[kept++] = entries[i];
    } else {
      delete &EntryAt<Entry>(entries, i);
    }
  }
  entries.SetSize(kept);
  return kept != count;
}

// The list takes the entry over; without room for it the entry goes.
template <class Entry>
bool Append(SPtrArray& entries, Entry* entry) {
  const int32_t before = entries.GetSize();
  if (entry != nullptr && before < kMostEntries) {
    entries.Add(entry);
  }
  if (entries.GetSize() == before) {
    delete entry;
    return false;
  }
  return true;
}

// Whom the folder says it belongs to; without its lock, or with no word of it, the texts stay.
void AskFolder(const SFileSpec& folder, SString& first, SString& last) {
  SFileSpec file(folder);
  if (!file.Down(CachedText<kTextLongNameFile>()) || !file.Exists()) {
    return;
  }
  SLockFile lock;
  if (LockIndex(lock, folder, LockKind::kStudents, false)) {
    ReadLongName(file, first, last);
  }
}

// New entries for the folders that tell a name; whether there are any.
bool AdoptFolders(const SFileSpec& list, SPtrArray& logins, const SStringArray& names) {
  bool adopted = false;
  SString first, last;
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    SFileSpec folder(list);
    first.Empty();
    if (folder.Down(names[i])) {
      AskFolder(folder, first, last);
    }
    if (!first.IsEmpty()) {
      adopted |= Append(logins, new (std::nothrow) SLoginNameObj(first, last, names[i]));
    }
  }
  return adopted;
}

bool AdoptFiles(SPtrArray& files, const SStringArray& names) {
  bool adopted = false;
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    const SString& name = names[i];
    const int dot = name.ReverseFind('.');
    adopted |=
        Append(files, new (std::nothrow) SOurFileObj(name, name.Left(dot), name.Mid(dot + 1)));
  }
  return adopted;
}

// Moves the files of other extensions into `others`; false, with all in place, without memory.
bool SetAside(SPtrArray& files, SPtrArray& others, const SString& extension) {
  const int32_t count = files.GetSize();
  others.SetSize(count);
  if (others.GetSize() != count) {
    return false;
  }
  int32_t kept = 0;
  int32_t aside = 0;
  for (int32_t i = 0; i < count; ++i) {
    SOurFileObj* const file = FileIn(files, i);
    if (EqualBytesNoCase(file->extension.View(), extension.View())) {
      files[kept++] = file;
    } else {
      others[aside++] = file;
    }
  }
  files.SetSize(kept);
  others.SetSize(aside);
  return true;
}

}  // namespace

void ReconcileLogins(const SFileSpec& spec, SIndexObj* index) {
  if (index == nullptr || index->logins == nullptr) {
    return;
  }
  SPtrArray& logins = *index->logins;
  SortByFolder(logins);
  SFolderMatch match(logins.GetSize());
  AddNames(match, logins, &SLoginNameObj::folderName);
  if (!match.Walk(spec, SFileFinder::kVisibleFolders, nullptr, SString())) {
    return;
  }
  const bool dropped = DropMissing<SLoginNameObj>(logins, match);
  const bool adopted = AdoptFolders(spec, logins, match.unknown);
  if (dropped || adopted) {
    logins.Sort(CompareByDisplayName);
    VaryDuplicateNames(spec, logins);
    WriteIndex(spec, *index);
  }
}

void ReconcileFiles(const SFileSpec& spec, SIndexObj* index, const SString& extension) {
  if (index == nullptr || index->files == nullptr) {
    return;
  }
  SPtrArray& files = *index->files;
  SPtrArray others;
  if (!SetAside(files, others, extension)) {
    return;
  }
  files.Sort(CompareByFileName);
  SFolderMatch match(files.GetSize());
  AddNames(match, files, &SOurFileObj::fileName);
  bool changed = false;
  if (match.Walk(spec, SFileFinder::kVisibleFiles, TakeType, extension)) {
    const bool dropped = DropMissing<SOurFileObj>(files, match);
    const bool adopted = AdoptFiles(files, match.unknown);
    files.Sort(CompareByFileName);
    changed = dropped || adopted;
  }
  files.Append(others);
  if (changed) {
    WriteIndex(spec, *index);
  }
}

}  // namespace kivstore
