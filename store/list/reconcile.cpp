#include "store/list/reconcile.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "foundation/files/file_finder.h"
#include "platform/base/bytes.h"
#include "platform/platform.h"
#include "store/list/duplicate_names.h"
#include "store/list/file_extension.h"
#include "store/list/folder_match.h"
#include "store/list/index_file.h"
#include "store/list/long_name.h"
#include "store/lock/lock_file.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

bool TakeType(std::string_view name, const SString& extension) {
  constexpr size_t kShortName = 3;
  return name.size() > kShortName && HasExtension(name, extension.View());
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

// Whom the folder says it belongs to; false without its lock, or with no word of it. Where the
// index is torn the lock is not asked for: whoever is at work there must not vanish from the list.
bool AskFolder(SSite& site, const SFileSpec& folder, bool lockIt, SString& first, SString& last) {
  SFileSpec file(folder);
  if (!file.Down(CachedText<kTextLongNameFile>()) || !file.Exists()) {
    return false;
  }
  SLockFile lock(site);
  return (!lockIt || LockIndex(lock, folder, ListKind::kStudents, false)) &&
         ReadLongName(file, first, last) && !first.IsEmpty();
}

// New entries for the folders that tell a name; whether there are any.
bool AdoptFolders(SSite& site, const SFileSpec& list, SLoginList& logins, const SStringArray& names,
                  bool lockThem) {
  bool adopted = false;
  SString first, last;
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    SFileSpec folder(list);
    if (folder.Down(names[i]) && AskFolder(site, folder, lockThem, first, last)) {
      adopted |= Append(logins, new (std::nothrow) SLoginNameObj(first, last, names[i]));
    }
  }
  return adopted;
}

// What a torn index says of the folders that are there counts only where a folder has no name of
// its own, and once.
void AskEachFolder(SSite& site, const SFileSpec& list, SLoginList& logins) {
  SString first, last;
  for (SLoginNameObj& login : logins) {
    if (AskFolder(site, ListedFolder(list, login.folderName), false, first, last)) {
      login.firstName = first;
      login.lastName = last;
    }
  }
  const SLoginNameObj* before = nullptr;
  logins.RemoveIf([&](const SLoginNameObj& login) {
    const bool isAgain = before != nullptr && CompareByFolder(*before, login) == 0;
    before = isAgain ? before : &login;
    return isAgain;
  });
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

bool AreSame(const SLoginNameObj& a, const SLoginNameObj& b) {
  return a.folderName == b.folderName && a.firstName == b.firstName && a.lastName == b.lastName;
}

// Where other machines share the file system what was read may be older than the lock, and a repair
// would write it back. Whether the index still is what was read; if not it is taken as it is now.
bool IsStillSo(const SFileSpec& list, SIndexObj& index) {
  if (!Platform().files->IsShared()) {
    return true;
  }
  SIndexObj again;
  ReadWholeIndex(list, again);
  SortByFolder(*again.logins);
  if (index.torn == again.torn && std::equal(index.logins->begin(), index.logins->end(),
                                             again.logins->begin(), again.logins->end(), AreSame)) {
    return true;
  }
  *index.logins = std::move(*again.logins);
  index.torn = again.torn;
  index.incomplete = again.incomplete;
  return false;
}

bool IsAmiss(const SIndexObj& index, const SFolderMatch& match) {
  return index.torn || match.unknown.GetSize() > 0 || !match.AreAllOnDisk();
}

void Repair(SSite& site, const SFileSpec& list, SIndexObj& index, const SFolderMatch& match,
            bool mayWrite) {
  SLoginList& logins = *index.logins;
  const bool dropped = DropMissing(logins, match);
  const bool wasTorn = index.torn;
  if (wasTorn) {
    AskEachFolder(site, list, logins);
    index.NeedFiles();
    index.torn = false;
  }
  const bool adopted = AdoptFolders(site, list, logins, match.unknown, !wasTorn);
  if (mayWrite && (dropped || adopted || wasTorn)) {
    logins.Sort(CompareByDisplayName);
    VaryDuplicateNames(site, list, logins);
    WriteIndex(list, index);
  }
}

// `readings`: how often the index may turn out to be another than was read. One that goes on
// changing behind its lock is not written.
bool Reconcile(SSite& site, const SFileSpec& list, SIndexObj& index, int readings) {
  SLoginList& logins = *index.logins;
  SFolderMatch match(logins.GetSize());
  SortByFolder(logins,
               [&](const SLoginNameObj& login, uint64_t key) { match.Add(login.folderName, key); });
  if (!match.Walk(list, SFileFinder::kVisibleFolders, nullptr, SString())) {
    return false;
  }
  if (IsAmiss(index, match)) {
    if (readings > 0 && !IsStillSo(list, index)) {
      return Reconcile(site, list, index, readings - 1);
    }
    Repair(site, list, index, match, readings > 0);
  }
  return true;
}

}  // namespace

bool ReconcileLogins(SSite& site, const SFileSpec& spec, SIndexObj& index) {
  constexpr int kReadings = 3;
  return index.logins && Reconcile(site, spec, index, kReadings);
}

// Where the folder has no logins that could still be put right the files alone mend it.
void ForgetTornFiles(const SFileSpec& spec, SIndexObj& index) {
  index.files->RemoveAll();
  SIndexObj stored;
  ReadWholeIndex(spec, stored);
  if (stored.logins->IsEmpty()) {
    index.NeedLogins();
    index.torn = false;
  }
}

void ReconcileFiles(const SFileSpec& spec, SIndexObj& index, const SString& extension) {
  SFileList others;
  const bool wasTorn = index.torn && index.files.has_value();
  if (wasTorn) {
    ForgetTornFiles(spec, index);
  }
  if (!index.files || !index.files->MoveIf(others, [&](const SOurFileObj& file) {
        return !HasExtension(file, extension);
      })) {
    return;
  }
  SFileList& files = *index.files;
  files.Sort(CompareByFileName);
  SFolderMatch match(files.GetSize());
  for (const SOurFileObj& file : files) {
    match.Add(file.fileName, FoldedSortKey(file.fileName.View()));
  }
  bool changed = wasTorn;
  if (match.Walk(spec, SFileFinder::kVisibleFiles, TakeType, extension)) {
    const bool dropped = DropMissing(files, match);
    const bool adopted = AdoptFiles(files, match.unknown);
    files.Sort(CompareByFileName);
    changed |= dropped || adopted;
  }
  files.Append(std::move(others));
  if (changed) {
    WriteIndex(spec, index);
  }
}

}  // namespace kivstore
