#include "store/list/reconcile.h"

#include <memory>
#include <utility>

#include "foundation/files/file_finder.h"
#include "platform/base/bytes.h"
#include "store/list/duplicate_names.h"
#include "store/list/file_extension.h"
#include "store/list/folder_match.h"
#include "store/list/index_file.h"
#include "store/list/long_name.h"
#include "store/lock/lock_file.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

bool TakeType(std::string_view name, const SString& extension) {
  constexpr size_t kShortName = 3;
  return name.size() > kShortName && HasExtension(name, extension.View());
}

// The names in `field` of the entries, which stand in the order of these names.
template <class Entry>
void AddNames(SFolderMatch& match, const SOwningList<Entry>& entries, SString Entry::*field) {
  for (const Entry& entry : entries) {
    match.Add(entry.*field);
  }
}

// Whether any had to go.
template <class Entry>
bool DropMissing(SOwningList<Entry>& entries, const SFolderMatch& match) {
  int32_t at = 0;
  return entries.RemoveIf([&](const Entry&) { return !match.IsOnDisk(at++); }) > 0;
}

template <class Entry>
bool Append(SOwningList<Entry>& entries, Entry* entry) {
  std::unique_ptr<Entry> owned(entry);
  return entries.GetSize() < kMostEntries && entries.Add(std::move(owned));
}

// Whom the folder says it belongs to; without its lock, or with no word of it, the texts stay.
void AskFolder(SSite& site, const SFileSpec& folder, SString& first, SString& last) {
  SFileSpec file(folder);
  if (!file.Down(CachedText<kTextLongNameFile>()) || !file.Exists()) {
    return;
  }
  SLockFile lock(site);
  if (LockIndex(lock, folder, ListKind::kStudents, false)) {
    ReadLongName(file, first, last);
  }
}

// New entries for the folders that tell a name; whether there are any.
bool AdoptFolders(SSite& site, const SFileSpec& list, SLoginList& logins,
                  const SStringArray& names) {
  bool adopted = false;
  SString first, last;
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    SFileSpec folder(list);
    first.Empty();
    if (folder.Down(names[i])) {
      AskFolder(site, folder, first, last);
    }
    if (!first.IsEmpty()) {
      adopted |= Append(logins, new (std::nothrow) SLoginNameObj(first, last, names[i]));
    }
  }
  return adopted;
}

bool AdoptFiles(SFileList& files, const SStringArray& names) {
  bool adopted = false;
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    const SString& name = names[i];
    const int dot = name.ReverseFind('.');
    adopted |=
        Append(files, new (std::nothrow) SOurFileObj(name, name.Left(dot), name.Mid(dot + 1)));
  }
  return adopted;
}

}  // namespace

bool ReconcileLogins(SSite& site, const SFileSpec& spec, SIndexObj& index) {
  if (!index.logins) {
    return false;
  }
  SLoginList& logins = *index.logins;
  SortByFolder(logins);
  SFolderMatch match(logins.GetSize());
  AddNames(match, logins, &SLoginNameObj::folderName);
  if (!match.Walk(spec, SFileFinder::kVisibleFolders, nullptr, SString())) {
    return false;
  }
  const bool dropped = DropMissing(logins, match);
  const bool adopted = AdoptFolders(site, spec, logins, match.unknown);
  if (dropped || adopted) {
    logins.Sort(CompareByDisplayName);
    VaryDuplicateNames(site, spec, logins);
    WriteIndex(spec, index);
  }
  return true;
}

void ReconcileFiles(const SFileSpec& spec, SIndexObj& index, const SString& extension) {
  SFileList others;
  if (!index.files || !index.files->MoveIf(others, [&](const SOurFileObj& file) {
        return !HasExtension(file, extension);
      })) {
    return;
  }
  SFileList& files = *index.files;
  files.Sort(CompareByFileName);
  SFolderMatch match(files.GetSize());
  AddNames(match, files, &SOurFileObj::fileName);
  bool changed = false;
  if (match.Walk(spec, SFileFinder::kVisibleFiles, TakeType, extension)) {
    const bool dropped = DropMissing(files, match);
    const bool adopted = AdoptFiles(files, match.unknown);
    files.Sort(CompareByFileName);
    changed = dropped || adopted;
  }
  files.Append(std::move(others));
  if (changed) {
    WriteIndex(spec, index);
  }
}

}  // namespace kivstore
